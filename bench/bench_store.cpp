// The booking store at the size of a practice's years: 400,000 bookings of 500 users and resources over
// 400 days. Time per operation and resident memory per booking.
//
//   build-bench/bin/bench_store

#include "BenchTable.h"

#include <BkCalendarItem.h>
#include <BkCalendarModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QVector>

#include <unistd.h>

namespace {

const int Bookings = 400000;
const int Keys = 500;
const int Days = 400;
const QDate First(2026, 1, 1);

// Resident set size in bytes, from the kernel's own count.
qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

BkCalendarItem* makeBooking(int i)
{
    auto* item = new BkCalendarItem;
    item->id = i + 1;
    item->setTitle(QStringLiteral("Booking %1").arg(i));
    item->setDate(First.addDays(i % Days));
    // Half the keys are users, half resources; a booking has one of each.
    item->setUserId((i / Days) % (Keys / 2) + 1);
    item->setResourceId((i / Days + 7) % (Keys / 2) + 1);
    const QTime start = QTime(7, 0).addSecs(((i / (Days * Keys / 2)) % 40) * 15 * 60);
    item->setTime(start, start.addSecs(30 * 60));
    return item;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    BenchTable table(QStringLiteral("Store: %1 bookings, %2 users and resources, %3 days")
                         .arg(Bookings)
                         .arg(Keys)
                         .arg(Days));

    // The bookings themselves count with the store's containers.
    const qint64 before = residentBytes();
    QVector<BkCalendarItem*> items;
    items.reserve(Bookings);
    for (int i = 0; i < Bookings; ++i)
        items << makeBooking(i);

    BkCalendarModel model;
    QElapsedTimer timer;
    timer.start();
    for (BkCalendarItem* item : qAsConst(items))
        model.addItem(item);
    const double add = timer.nsecsElapsed() / 1e3 / Bookings;
    const qint64 after = residentBytes();
    table.add(QStringLiteral("addItem"), add, QStringLiteral("µs"));

    QRandomGenerator random(42);
    const int lookups = 200000;
    int found = 0;
    timer.restart();
    for (int i = 0; i < lookups; ++i) {
        const BkCalendarResource key(int(random.bounded(Keys / 2)) + 1, QString(), int(random.bounded(2)));
        found += model.items(First.addDays(int(random.bounded(Days))), key).size();
    }
    table.add(QStringLiteral("items(date, key)"), timer.nsecsElapsed() / 1e3 / lookups, QStringLiteral("µs"));

    timer.restart();
    for (int i = 0; i < lookups; ++i)
        found += model.findId(int(random.bounded(Bookings)) + 1) != nullptr;
    table.add(QStringLiteral("findId"), timer.nsecsElapsed() / 1e3 / lookups, QStringLiteral("µs"));

    // Moves of a sample spread over the whole store, to a day and back.
    const int sample = 20000;
    QVector<BkCalendarItem*> moved;
    for (int i = 0; i < sample; ++i)
        moved << items.at(int(random.bounded(Bookings)));
    for (bool silent : {true, false}) {
        timer.restart();
        for (BkCalendarItem* item : qAsConst(moved))
            item->setDate(item->date().addDays(1), silent);
        table.add(silent ? QStringLiteral("setDate move, silent") : QStringLiteral("setDate move"),
                  timer.nsecsElapsed() / 1e3 / sample, QStringLiteral("µs"));
        model.commitToDatabase();
    }
    timer.restart();
    for (BkCalendarItem* item : qAsConst(moved))
        item->setUserId(item->userId().toInt() % (Keys / 2) + 1);
    table.add(QStringLiteral("setUserId move"), timer.nsecsElapsed() / 1e3 / sample, QStringLiteral("µs"));
    model.commitToDatabase();

    timer.restart();
    for (BkCalendarItem* item : qAsConst(moved))
        item->setTime(item->start().addSecs(15 * 60), item->end().addSecs(15 * 60));
    table.add(QStringLiteral("setTime"), timer.nsecsElapsed() / 1e3 / sample, QStringLiteral("µs"));
    model.commitToDatabase();

    // A commit of 1,000 changed bookings: the changes, and the batch handed to the host.
    int saved = 0;
    QObject::connect(&model, &BkCalendarModel::saveItems,
                     [&saved](const QList<BkCalendarItem*>& batch) { saved += batch.size(); });
    timer.restart();
    for (int i = 0; i < 1000; ++i) {
        BkCalendarItem* item = moved.at(i);
        item->setDate(item->date().addDays(-1));
    }
    model.commitToDatabase();
    table.add(QStringLiteral("commit of 1,000 moved bookings"), timer.nsecsElapsed() / 1e6,
              QStringLiteral("ms"));

    table.add(QStringLiteral("memory per booking (resident: booking and store)"),
              double(after - before - Bookings * qint64(sizeof(void*))) / Bookings, QStringLiteral("bytes"));
    table.print();
    // The sample may hold a booking twice; the batch holds it once.
    const int distinct = QSet<BkCalendarItem*>(moved.cbegin(), moved.cbegin() + 1000).size();
    return (found > 0 && saved == distinct) ? 0 : 1;
}
