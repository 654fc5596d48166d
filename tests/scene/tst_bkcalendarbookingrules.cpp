// Where a booking may lie: runs of bookable plans, the plan under a time, double booking of a
// resource, the snap grid and moving a booking into a column by the rules.

#include "BkBookingScene.h"
#include "FwTestApplication.h"

#include <QSignalSpy>
#include <QtTest>

using namespace BkTest;

namespace {

const QDate Day(2024, 3, 11);
const QDate OtherDay(2024, 3, 12);
const BkCalendarResource Anna(QVariant(17), QStringLiteral("Anna"), 0);
const BkCalendarResource Bert(QVariant(18), QStringLiteral("Bert"), 0);

// "08:00-12:00" is a bookable plan, "!10:00-11:00" one that is not.
void addPlans(BookingScene& s, const QDate& date, const BkCalendarResource& who, const QString& plans)
{
    const QStringList list = plans.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString plan : list) {
        const bool bookable = !plan.startsWith(QLatin1Char('!'));
        if (!bookable)
            plan.remove(0, 1);
        const QStringList parts = plan.split(QLatin1Char('-'));
        s.addPlan(date, who, QTime::fromString(parts.at(0), QStringLiteral("hh:mm")),
                  QTime::fromString(parts.at(1), QStringLiteral("hh:mm")), bookable);
    }
}

} // namespace

class tst_BkCalendarBookingRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { setSetting(QStringLiteral("set_snaponmovebooking"), 15); }

    void allowBookingFollowsRunsOfBookablePlans_data();
    void allowBookingFollowsRunsOfBookablePlans();
    void allowBookingRefusesBadSpans();
    void columnWithoutPlansAllowsNothing();

    void planAtFindsTheFirstHoldingPlan();
    void planAtRefusesBadSpans();

    void resourceBookedOnlyByStrictOverlapOnTheSameResource();
    void resourceBookedSeesTheBookingAsMoved();
    void resourceBookedWithoutResourceOrModelFindsNothing();
    void resourceBookedOfABookingTakenAwayByTheReadFindsNothing();

    void tryToMoveItemRoundsToTheSnapGrid_data();
    void tryToMoveItemRoundsToTheSnapGrid();
    void tryToMoveItemWithoutPositiveSnapKeepsTheMinute_data();
    void tryToMoveItemWithoutPositiveSnapKeepsTheMinute();
    void tryToMoveItemKeepsTheLengthWithSeconds();
    void tryToMoveItemRefusedChangesNothing();
    void tryToMoveItemIntoAnotherColumnTakesItsKeys();
    void tryToMoveItemGivesABookingWithoutBoxABox();
    void tryToMoveItemNullItem();
};

void tst_BkCalendarBookingRules::allowBookingFollowsRunsOfBookablePlans_data()
{
    QTest::addColumn<QString>("plans");
    QTest::addColumn<QTime>("start");
    QTest::addColumn<QTime>("end");
    QTest::addColumn<bool>("allowed");

    QTest::newRow("abutting plans chain") << "08:00-12:00,12:00-16:00" << t(11, 0) << t(13, 0) << true;
    QTest::newRow("abutting plans added backwards chain")
        << "12:00-16:00,08:00-12:00" << t(11, 0) << t(13, 0) << true;
    QTest::newRow("three plans chain")
        << "08:00-10:00,10:00-12:00,12:00-14:00" << t(9, 0) << t(13, 0) << true;
    QTest::newRow("gap between plans refuses the span")
        << "08:00-12:00,12:30-16:00" << t(11, 0) << t(13, 0) << false;
    QTest::newRow("only the second plan touched")
        << "08:00-12:00,12:30-16:00" << t(13, 0) << t(14, 0) << true;
    QTest::newRow("span in the gap touches nothing")
        << "08:00-12:00,12:30-16:00" << t(12, 5) << t(12, 20) << false;
    QTest::newRow("overlapping plans do not join")
        << "08:00-12:00,10:00-14:00" << t(9, 0) << t(13, 0) << false;
    QTest::newRow("closed block inside an open one")
        << "08:00-16:00,!10:00-11:00" << t(10, 0) << t(10, 30) << true;
    QTest::newRow("closed block alone") << "!08:00-16:00" << t(9, 0) << t(10, 0) << false;
    QTest::newRow("end exactly at the plan's end") << "08:00-10:00" << t(9, 0) << t(10, 0) << true;
    QTest::newRow("start exactly at the plan's start") << "08:00-10:00" << t(8, 0) << t(9, 0) << true;
    QTest::newRow("start before the plan") << "08:00-12:00" << t(7, 45) << t(9, 0) << false;
    QTest::newRow("end after the plan") << "08:00-12:00" << t(11, 0) << t(12, 1) << false;
    QTest::newRow("whole plan inside a longer span") << "09:00-10:00" << t(8, 0) << t(11, 0) << false;
    QTest::newRow("a second of overhang") << "08:00-12:00" << t(11, 0) << t(12, 0, 1) << false;
}

void tst_BkCalendarBookingRules::allowBookingFollowsRunsOfBookablePlans()
{
    QFETCH(QString, plans);
    QFETCH(QTime, start);
    QFETCH(QTime, end);
    QFETCH(bool, allowed);

    BookingScene s;
    addPlans(s, Day, Anna, plans);
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QCOMPARE(column->plans().size(), plans.count(QLatin1Char(',')) + 1);
    QCOMPARE(column->allowBooking(start, end), allowed);
}

void tst_BkCalendarBookingRules::allowBookingRefusesBadSpans()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("08:00-12:00"));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    QVERIFY(!column->allowBooking(QTime(), t(9, 0)));
    QVERIFY(!column->allowBooking(t(10, 0), t(9, 0)));
    // An invalid end stands for the start: one moment.
    QVERIFY(column->allowBooking(t(10, 0), QTime()));
    QVERIFY(column->allowBooking(t(12, 0), QTime()));
    QVERIFY(!column->allowBooking(t(12, 1), QTime()));
    // A span of no length is a moment too.
    QVERIFY(column->allowBooking(t(8, 0), t(8, 0)));
}

void tst_BkCalendarBookingRules::columnWithoutPlansAllowsNothing()
{
    BookingScene s;
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    QVERIFY(column->plans().isEmpty());
    QVERIFY(!column->allowBooking(t(9, 0), t(10, 0)));
    QVERIFY(!column->planAt(t(9, 0), QTime()));
    QVERIFY(!column->tryToMoveItem(item, t(11, 0)));
    QCOMPARE(item->start(), t(9, 0));
    QCOMPARE(item->end(), t(10, 0));
}

void tst_BkCalendarBookingRules::planAtFindsTheFirstHoldingPlan()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("!08:00-12:00,10:00-14:00"));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    const QList<BkCalendarPlan*> plans = column->plans();
    QCOMPARE(plans.size(), 2);

    // A closed block refuses every booking and is still found.
    QVERIFY(!column->allowBooking(t(9, 0), t(9, 30)));
    QCOMPARE(column->planAt(t(9, 0), QTime()), plans.at(0));
    // Where both hold the span, the first one counts, whatever its bookable.
    QCOMPARE(column->planAt(t(10, 30), t(11, 0)), plans.at(0));
    // A span that only the second holds whole.
    QCOMPARE(column->planAt(t(11, 0), t(13, 0)), plans.at(1));
    QCOMPARE(column->planAt(t(14, 0), QTime()), plans.at(1));
    QVERIFY(!column->planAt(t(7, 0), t(9, 0)));
    QVERIFY(!column->planAt(t(14, 1), QTime()));
}

void tst_BkCalendarBookingRules::planAtRefusesBadSpans()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("08:00-12:00"));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QVERIFY(!column->planAt(QTime(), t(9, 0)));
    QVERIFY(!column->planAt(t(10, 0), t(9, 0)));
    QVERIFY(column->planAt(t(10, 0), t(10, 0)));
}

void tst_BkCalendarBookingRules::resourceBookedOnlyByStrictOverlapOnTheSameResource()
{
    BookingScene s;
    const QVariant room(5);
    BkCalendarItem* mine = s.addItem(1, Day, Anna.id, room, t(9, 0), t(10, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    // Alone on its resource: the booking itself does not count.
    QVERIFY(!column->isResourceBooked(mine));

    // Touching is no double booking.
    BkCalendarItem* before = s.addItem(2, Day, Bert.id, room, t(8, 0), t(9, 0));
    BkCalendarItem* after = s.addItem(3, Day, Bert.id, room, t(10, 0), t(11, 0));
    QVERIFY(!column->isResourceBooked(mine));

    // Another room, another day, or the same user elsewhere: no double booking of this room.
    s.addItem(4, Day, Anna.id, QVariant(6), t(9, 30), t(9, 45));
    s.addItem(5, OtherDay, Bert.id, room, t(9, 30), t(9, 45));
    QVERIFY(!column->isResourceBooked(mine));

    // A minute of overlap is one.
    after->setTime(t(9, 59), t(11, 0));
    QVERIFY(column->isResourceBooked(mine));
    QVERIFY(column->isResourceBooked(after));
    QVERIFY(!column->isResourceBooked(before));
}

void tst_BkCalendarBookingRules::resourceBookedSeesTheBookingAsMoved()
{
    BookingScene s;
    const QVariant room(5);
    BkCalendarItem* mine = s.addItem(1, Day, Anna.id, room, t(9, 0), t(10, 0));
    s.addItem(2, Day, Bert.id, room, t(11, 0), t(12, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QVERIFY(!column->isResourceBooked(mine));
    mine->setTime(t(10, 30), t(11, 30));
    QVERIFY(column->isResourceBooked(mine));
}

void tst_BkCalendarBookingRules::resourceBookedWithoutResourceOrModelFindsNothing()
{
    BookingScene s;
    // Two bookings of no resource at the same time: the null resource is nobody's.
    BkCalendarItem* a = s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    s.addItem(2, Day, Bert.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QVERIFY(!column->isResourceBooked(a));
    QVERIFY(!column->isResourceBooked(nullptr));

    BkCalendarColumn lonely(nullptr, false);
    BkCalendarItem* b = s.addItem(3, Day, Anna.id, QVariant(5), t(9, 0), t(10, 0));
    s.addItem(4, Day, Bert.id, QVariant(5), t(9, 0), t(10, 0));
    QVERIFY(column->isResourceBooked(b));
    QVERIFY(!lonely.isResourceBooked(b));
}

void tst_BkCalendarBookingRules::resourceBookedOfABookingTakenAwayByTheReadFindsNothing()
{
    BookingScene s;
    const QVariant room(5);
    BkCalendarItem* mine = s.addItem(1, Day, Anna.id, room, t(9, 0), t(10, 0));
    s.addItem(2, Day, Bert.id, room, t(9, 30), t(10, 30));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    // The room's day is not read yet: the check asks the host for it, and the host's answer takes
    // the booking out of the model.
    int asked = 0;
    QObject::connect(&s.model, &BkCalendarModel::loadData,
                     [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                         if (resource.type != 1)
                             return;
                         ++asked;
                         s.model.removeItem(mine);
                     });
    QVERIFY(!column->isResourceBooked(mine));
    QCOMPARE(asked, 1);
    QVERIFY(!mine->model);
    delete mine;

    // The room's day is read now; a booking of this model that overlaps is a double booking.
    BkCalendarItem* third = s.addItem(3, Day, Anna.id, room, t(10, 0), t(11, 0));
    QVERIFY(column->isResourceBooked(third));
    QCOMPARE(asked, 1);
}

void tst_BkCalendarBookingRules::tryToMoveItemRoundsToTheSnapGrid_data()
{
    QTest::addColumn<int>("snap");
    QTest::addColumn<QTime>("to");
    QTest::addColumn<QTime>("expected");

    QTest::newRow("15: on the grid") << 15 << t(9, 30) << t(9, 30);
    QTest::newRow("15: minute 6 goes back") << 15 << t(9, 6) << t(9, 0);
    QTest::newRow("15: minute 7 goes forward") << 15 << t(9, 7) << t(9, 15);
    QTest::newRow("15: minute 52 goes to the next hour") << 15 << t(9, 52) << t(10, 0);
    QTest::newRow("15: minute 36 goes back") << 15 << t(9, 36) << t(9, 30);
    QTest::newRow("15: minute 38 goes forward") << 15 << t(9, 38) << t(9, 45);
    QTest::newRow("15: seconds stay") << 15 << t(9, 6, 40) << t(9, 0, 40);
    QTest::newRow("25: the grid restarts every hour") << 25 << t(9, 59) << t(9, 50);
    QTest::newRow("25: minute 11 goes back") << 25 << t(9, 11) << t(9, 0);
    QTest::newRow("25: a tie rounds up") << 25 << t(9, 12) << t(9, 25);
    QTest::newRow("25: minute 37 goes forward") << 25 << t(9, 37) << t(9, 50);
    QTest::newRow("1: every minute") << 1 << t(9, 7) << t(9, 7);
    QTest::newRow("2: a tie rounds up") << 2 << t(9, 7) << t(9, 8);
}

void tst_BkCalendarBookingRules::tryToMoveItemRoundsToTheSnapGrid()
{
    QFETCH(int, snap);
    QFETCH(QTime, to);
    QFETCH(QTime, expected);
    setSetting(QStringLiteral("set_snaponmovebooking"), snap);

    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("07:00-18:00"));
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(14, 0), t(15, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    QVERIFY(column->tryToMoveItem(item, to));
    QCOMPARE(item->start(), expected);
    QCOMPARE(item->end(), expected.addSecs(3600));
    // Live and uncommitted: the booking waits on the unsaved list.
    QVERIFY(s.model.isInvalid(item));
}

void tst_BkCalendarBookingRules::tryToMoveItemWithoutPositiveSnapKeepsTheMinute_data()
{
    QTest::addColumn<QVariant>("snap");
    QTest::newRow("zero") << QVariant(0);
    QTest::newRow("negative") << QVariant(-15);
    QTest::newRow("not a number") << QVariant(QStringLiteral("often"));
}

void tst_BkCalendarBookingRules::tryToMoveItemWithoutPositiveSnapKeepsTheMinute()
{
    QFETCH(QVariant, snap);
    setSetting(QStringLiteral("set_snaponmovebooking"), snap);

    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("07:00-18:00"));
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(14, 0), t(15, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    QVERIFY(column->tryToMoveItem(item, t(9, 7, 30)));
    QCOMPARE(item->start(), t(9, 7, 30));
    QCOMPARE(item->end(), t(10, 7, 30));
}

void tst_BkCalendarBookingRules::tryToMoveItemKeepsTheLengthWithSeconds()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("07:00-18:00"));
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(14, 0, 10), t(14, 45, 20));
    BkCalendarColumn* column = s.addColumn(Day, Anna);

    QVERIFY(column->tryToMoveItem(item, t(9, 2, 5)));
    QCOMPARE(item->start(), t(9, 0, 5));
    QCOMPARE(item->end(), t(9, 45, 15));
    QCOMPARE(item->start().secsTo(item->end()), 45 * 60 + 10);
}

void tst_BkCalendarBookingRules::tryToMoveItemRefusedChangesNothing()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("08:00-12:00"));
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    BkCalendarItemWidget* widget = item->widget;
    QVERIFY(widget);
    const QPointF pos = widget->pos();

    QSignalSpy changed(&s.model, &BkCalendarModel::itemChanged);
    QVERIFY(!column->tryToMoveItem(item, t(11, 30)));
    QCOMPARE(item->start(), t(9, 0));
    QCOMPARE(item->end(), t(10, 0));
    QCOMPARE(widget->pos(), pos);
    QCOMPARE(changed.count(), 0);
    QVERIFY(!s.model.isInvalid(item));

    // The last allowed minute of the plan.
    QVERIFY(column->tryToMoveItem(item, t(11, 0)));
    QCOMPARE(item->end(), t(12, 0));
    QVERIFY(widget->pos().y() > pos.y());
}

void tst_BkCalendarBookingRules::tryToMoveItemIntoAnotherColumnTakesItsKeys()
{
    BookingScene s;
    const BkCalendarResource room(QVariant(5), QStringLiteral("Room"), 1);
    addPlans(s, Day, Anna, QStringLiteral("08:00-16:00"));
    addPlans(s, OtherDay, Bert, QStringLiteral("08:00-16:00"));
    addPlans(s, Day, room, QStringLiteral("08:00-16:00"));
    BkCalendarItem* item = s.addItem(1, Day, Anna.id, QVariant(), t(9, 0), t(10, 0));
    BkCalendarColumn* from = s.addColumn(Day, Anna);
    BkCalendarColumn* to = s.addColumn(OtherDay, Bert);
    BkCalendarColumn* roomColumn = s.addColumn(Day, room, true, 1);
    BkCalendarItemWidget* widget = item->widget;
    QVERIFY(widget);
    QCOMPARE(widget->parentItem(), from);
    from->setSelected(true);

    QVERIFY(to->tryToMoveItem(item, t(13, 0)));
    QCOMPARE(item->widget, widget);
    QCOMPARE(widget->parentItem(), to);
    QCOMPARE(widget->column(), to);
    QVERIFY(to->isSelected());
    QVERIFY(!from->isSelected());
    QCOMPARE(item->date(), OtherDay);
    QCOMPARE(item->userId(), Bert.id);
    QCOMPARE(item->resourceId(), QVariant());
    QCOMPARE(item->start(), t(13, 0));
    QCOMPARE(s.model.items(OtherDay, Bert), QList<BkCalendarItem*>() << item);
    QVERIFY(s.model.items(Day, Anna).isEmpty());

    // A resource column gives the booking its resource and keeps its user.
    QVERIFY(roomColumn->tryToMoveItem(item, t(8, 0)));
    QCOMPARE(widget->parentItem(), roomColumn);
    QCOMPARE(item->date(), Day);
    QCOMPARE(item->userId(), Bert.id);
    QCOMPARE(item->resourceId(), room.id);

    // A refused step leaves the box where it is.
    QVERIFY(!from->tryToMoveItem(item, t(17, 0)));
    QCOMPARE(widget->parentItem(), roomColumn);
}

void tst_BkCalendarBookingRules::tryToMoveItemGivesABookingWithoutBoxABox()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("08:00-16:00"));
    // Outside the scale's span the booking has no box.
    BkCalendarItem* item = s.addItem(1, OtherDay, Anna.id, QVariant(), t(21, 0), t(22, 0));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QVERIFY(!item->widget);

    QVERIFY(column->tryToMoveItem(item, t(10, 0)));
    QVERIFY(item->widget);
    QCOMPARE(item->widget->parentItem(), column);
    QCOMPARE(item->date(), Day);
    QCOMPARE(item->start(), t(10, 0));
    QCOMPARE(item->widget->boxY(), 50.0 + 240 * 1.5);
}

void tst_BkCalendarBookingRules::tryToMoveItemNullItem()
{
    BookingScene s;
    addPlans(s, Day, Anna, QStringLiteral("08:00-16:00"));
    BkCalendarColumn* column = s.addColumn(Day, Anna);
    QVERIFY(!column->tryToMoveItem(nullptr, t(10, 0)));
}

FW_TEST_MAIN(tst_BkCalendarBookingRules)
#include "tst_bkcalendarbookingrules.moc"
