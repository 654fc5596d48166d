// How long the demo takes to open a group view of 30 resources on a practice of 100,000 bookings: from
// the show operation, through loadData's queries on the SQLite file and the layout of every column, to
// the first full paint of the viewport into an image. Then one step to the next day.
//
//   build-bench/bin/bench_demo_group [runs]

#include <DemoDatabase.h>
#include <DemoStore.h>

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarModel.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <SQLQuery.h>

#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace {

const int Resources = 30;
const int Bookings = 100000;
const QDate Today(2026, 11, 25);

// 100,000 bookings of 30 resources over 400 days round today, and every resource's plan for each day.
bool fill()
{
    QSqlDatabase db = QSqlDatabase::database();
    db.transaction();
    SQLQuery resource;
    resource.prepare(QStringLiteral("INSERT INTO tbl_resource (id, fw_text) VALUES (?, ?)"));
    for (int r = 1; r <= Resources; ++r) {
        resource.bindValue(0, 100 + r);
        resource.bindValue(1, QStringLiteral("Resource %1").arg(r));
        if (!resource.exec())
            return false;
    }
    SQLQuery plan;
    plan.prepare(
        QStringLiteral("INSERT INTO demo_plan (pl_date, pl_type, pl_key, pl_start, pl_end, pl_bookable, "
                       "pl_info) VALUES (?, 1, ?, '07:00:00', '19:00:00', 1, 2)"));
    const QDate first = Today.addDays(-200);
    for (int d = 0; d < 400; ++d)
        for (int r = 1; r <= Resources; ++r) {
            plan.bindValue(0, first.addDays(d));
            plan.bindValue(1, 100 + r);
            if (!plan.exec())
                return false;
        }
    SQLQuery booking;
    booking.prepare(
        QStringLiteral("INSERT INTO demo_booking (bk_date, bk_resource, bk_start, bk_end, bk_title, "
                       "bk_text, bk_type, bk_flags, bk_status, bk_top, bk_bottom) VALUES (?, ?, ?, ?, ?, "
                       "?, 0, 0, 1, '#d6e4fa', '#96b6e8')"));
    for (int i = 0; i < Bookings; ++i) {
        const int r = i % Resources;
        const int d = (i / Resources) % 400;
        const int slot = i / (Resources * 400);
        const QTime start = QTime(7, 30).addSecs((slot * 80 + (r % 4) * 10) * 60);
        booking.bindValue(0, first.addDays(d));
        booking.bindValue(1, 101 + r);
        booking.bindValue(2, start.toString(QStringLiteral("HH:mm:ss")));
        booking.bindValue(3, start.addSecs(60 * 60).toString(QStringLiteral("HH:mm:ss")));
        booking.bindValue(4, QStringLiteral("Booking %1").arg(i));
        booking.bindValue(5, QStringLiteral("Text of <b>booking</b> %1").arg(i));
        if (!booking.exec())
            return false;
    }
    return db.commit();
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    FwApplication app(argc, argv);
    const int runs = argc > 1 ? qMax(1, QString::fromLocal8Bit(argv[1]).toInt()) : 7;
    BkCalendarClock::setFixedNow(QDateTime(Today, QTime(10, 0)));
    QTemporaryDir dir;
    DemoDatabase database;
    DemoConnection connection;
    connection.file = dir.filePath(QStringLiteral("large.sqlite"));
    if (!database.open(connection, Today) || !fill()) {
        QTextStream(stderr) << "Cannot build the practice: " << database.lastError() << '\n';
        return 1;
    }
    QList<BkCalendarResource> group;
    for (int r = 1; r <= Resources; ++r)
        group << BkCalendarResource(100 + r, QStringLiteral("Resource %1").arg(r), 1);
    SQLQuery count;
    count.exec(QStringLiteral("SELECT COUNT(*) FROM demo_booking"));
    count.next();

    QVector<double> open;
    QVector<double> next;
    int shown = 0;
    for (int run = 0; run < runs; ++run) {
        BkCalendar calendar(nullptr, BkCalendar::ShowGroup | BkCalendar::NoDocks);
        DemoStore store(calendar.model());
        QObject::connect(&calendar, &BkCalendar::loadData, &store, &DemoStore::loadData);
        calendar.resize(1920, 1080);
        calendar.setMinWidth(60);
        calendar.setResourceList(group);
        calendar.show();
        QCoreApplication::processEvents();
        QImage image(calendar.view()->viewport()->size(), QImage::Format_ARGB32_Premultiplied);

        QElapsedTimer timer;
        timer.start();
        calendar.showGroup();
        {
            QPainter painter(&image);
            calendar.view()->render(&painter);
        }
        open << timer.nsecsElapsed() / 1e6;
        shown = 0;
        for (BkCalendarColumn* column : calendar.view()->getColumnList())
            shown += column->getItems(false).size();

        timer.restart();
        calendar.setDate(Today.addDays(1));
        {
            QPainter painter(&image);
            calendar.view()->render(&painter);
        }
        next << timer.nsecsElapsed() / 1e6;
    }
    QTextStream out(stdout);
    out << "bookings in the file: " << count.value(0).toInt() << ", resources in the group: " << Resources
        << ", bookings on show: " << shown << '\n';
    out << "open the group view and paint it: median " << median(open) << " ms over " << runs << " runs\n";
    out << "step to the next day and paint: median " << median(next) << " ms\n";
    return 0;
}
