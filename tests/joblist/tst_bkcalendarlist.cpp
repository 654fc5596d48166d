// The job list: one person's bookings of one day, kept in step with the model, ordered by the hour.

#include "FwTestApplication.h"

#include <BkCalendarClock.h>
#include <BkCalendarItem.h>
#include <BkCalendarList.h>
#include <BkCalendarListDelegate.h>
#include <BkCalendarModel.h>

#include <QSignalSpy>

namespace {
const QDate Wednesday(2026, 11, 25);
const BkCalendarResource Anna(5, QStringLiteral("Anna"), 0);
const BkCalendarResource Ben(6, QStringLiteral("Ben"), 0);

BkCalendarItem* booking(BkCalendarModel& model, int id, const QDate& date, const BkCalendarResource& who,
                        QTime start, QTime end, const QString& title = QString())
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setTitle(title.isEmpty() ? QStringLiteral("Booking %1").arg(id) : title);
    item->setText(QStringLiteral("<b>text</b> %1").arg(id));
    item->topColor = QColor(200, 220, 255);
    item->bottomColor = QColor(120, 160, 230);
    item->setDate(date);
    if (who.type == 0)
        item->setUserId(who.id);
    else
        item->setResourceId(who.id);
    item->setTime(start, end);
    model.addItem(item);
    return item;
}

QStringList titles(const BkCalendarList& list)
{
    QStringList result;
    for (int i = 0; i < list.count(); ++i)
        result << list.item(i)->data(BkCalendarList::TitleRole).toString();
    return result;
}

struct JobList
{
    JobList()
    {
        list.setCalendarModel(&model);
        list.updateModel();
    }
    BkCalendarModel model;
    BkCalendarList list;
};
} // namespace

class tst_BkCalendarList : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void shouldStartOnTodayWithItsDelegate();
    void shouldShowTheBookingsOfTheDayAndKey();
    void shouldCopyEveryFieldIntoTheRoles();
    void shouldOrderByTheHourOnly();
    void shouldSortAnInvalidStartFirst();
    void shouldKeepTheRowsForANullOrUnknownKey_data();
    void shouldKeepTheRowsForANullOrUnknownKey();
    void shouldDoNothingWithoutAModel();
    void shouldAddABookingOfTheDayWhoeverItBelongsTo();
    void shouldIgnoreABookingOfAnotherDay();
    void shouldDropAStrangerAtItsFirstChange();
    void shouldNotMakeARowOnAChange();
    void shouldRewriteARowOnAChangeAndResort();
    void shouldLeaveTheOldDayOnASilentMove();
    void shouldFollowANoisyMove();
    void shouldDropARemovedBooking();
    void shouldShowReservedBookings();
    void shouldMakeOneRowForABookingLoadedWhileReading();
    void shouldKeepOldRowsAndShowNewBookingsAfterAClear();
    void shouldKeepItsRowsWhenItsModelIsGone();
    void shouldForgetRowsTakenAwayThroughTheWidget();
    void shouldShowOnlyTheDayItWasMovedToWhileReading();
    void shouldMakeNoRowForABookingTheHostTookAwayAsItCame();
};

void tst_BkCalendarList::init()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(23, 59, 59)));
}

void tst_BkCalendarList::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarList::shouldStartOnTodayWithItsDelegate()
{
    BkCalendarList list;
    QCOMPARE(list.date(), Wednesday);
    QVERIFY(list.resource().id.isNull());
    QVERIFY(list.resource().name.isEmpty());
    QCOMPARE(list.resource().type, 0);
    QVERIFY(!list.calendarModel());
    QVERIFY(list.isSortingEnabled());
    QVERIFY(qobject_cast<BkCalendarListDelegate*>(list.itemDelegate()));
    QVERIFY(!list.itemDelegate()->parent());
    // The list's own scheme, with the fixed colours.
    QCOMPARE(list.colorSchemePtr()->selectedHeader, BkCalendarColorScheme().selectedHeader);
}

void tst_BkCalendarList::shouldShowTheBookingsOfTheDayAndKey()
{
    JobList j;
    booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("mine"));
    booking(j.model, 2, Wednesday, Ben, QTime(9, 0), QTime(10, 0), QStringLiteral("Ben's"));
    booking(j.model, 3, Wednesday.addDays(1), Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("tomorrow"));
    j.list.setResource(Anna);
    j.list.setDate(Wednesday);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("mine")});
    QCOMPARE(j.list.rows().count(), 1);
    j.list.setDate(Wednesday.addDays(1));
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("tomorrow")});
    j.list.setResource(Ben);
    QCOMPARE(j.list.count(), 0);
    QVERIFY(j.list.rows().isEmpty());
}

void tst_BkCalendarList::shouldCopyEveryFieldIntoTheRoles()
{
    JobList j;
    BkCalendarItem* item =
        booking(j.model, 1, Wednesday, Anna, QTime(9, 15), QTime(10, 45), QStringLiteral("Visit"));
    item->leftColor = QColor(255, 0, 0);
    item->rightColor = QColor(0, 255, 0);
    item->setType(BkCalendarItem::Meeting);
    j.list.setResource(Anna);
    QCOMPARE(j.list.count(), 1);
    QListWidgetItem* row = j.list.item(0);
    QCOMPARE(j.list.rows().value(item), row);
    QCOMPARE(row->data(Qt::DisplayRole).toString(), QStringLiteral("09MMSS"));
    QCOMPARE(row->data(1256).toULongLong(), qulonglong(quintptr(item)));
    QCOMPARE(row->data(1257).toString(), QStringLiteral("Visit"));
    QCOMPARE(row->data(1258).toString(), item->text());
    QCOMPARE(row->data(1259).toTime(), QTime(9, 15));
    QCOMPARE(row->data(1260).toTime(), QTime(10, 45));
    QCOMPARE(row->data(1261).value<QColor>(), QColor(255, 0, 0));
    QCOMPARE(row->data(1262).value<QColor>(), QColor(0, 255, 0));
    QCOMPARE(row->data(1263).value<QColor>(), QColor(200, 220, 255));
    QCOMPARE(row->data(1264).value<QColor>(), QColor(120, 160, 230));
    QCOMPARE(row->data(1265).toInt(), 1);
    QCOMPARE(row->data(1266).toULongLong(), qulonglong(quintptr(&j.list)));
    QCOMPARE(row->type(), 0);
}

void tst_BkCalendarList::shouldOrderByTheHourOnly()
{
    JobList j;
    booking(j.model, 1, Wednesday, Anna, QTime(14, 0), QTime(15, 0), QStringLiteral("two"));
    booking(j.model, 2, Wednesday, Anna, QTime(9, 40), QTime(10, 0), QStringLiteral("nine forty"));
    booking(j.model, 3, Wednesday, Anna, QTime(9, 5), QTime(9, 30), QStringLiteral("nine oh five"));
    booking(j.model, 4, Wednesday, Anna, QTime(8, 59), QTime(9, 30), QStringLiteral("eight"));
    j.list.setResource(Anna);
    QCOMPARE(j.list.item(0)->data(BkCalendarList::TitleRole).toString(), QStringLiteral("eight"));
    QCOMPARE(j.list.item(3)->data(BkCalendarList::TitleRole).toString(), QStringLiteral("two"));
    // 09:05 and 09:40 share their key; minutes play no part in the order.
    const QString nineFive = j.list.rows().value(j.model.findId(3))->text();
    const QString nineForty = j.list.rows().value(j.model.findId(2))->text();
    QCOMPARE(nineFive, QStringLiteral("09MMSS"));
    QCOMPARE(nineForty, nineFive);
    QCOMPARE(QSet<QString>({titles(j.list).at(1), titles(j.list).at(2)}),
             QSet<QString>({QStringLiteral("nine forty"), QStringLiteral("nine oh five")}));
}

void tst_BkCalendarList::shouldSortAnInvalidStartFirst()
{
    JobList j;
    booking(j.model, 1, Wednesday, Anna, QTime(7, 0), QTime(8, 0), QStringLiteral("seven"));
    booking(j.model, 2, Wednesday, Anna, QTime(), QTime(), QStringLiteral("no time"));
    j.list.setResource(Anna);
    QCOMPARE(titles(j.list), (QStringList{QStringLiteral("no time"), QStringLiteral("seven")}));
    QCOMPARE(j.list.item(0)->text(), QString());
}

void tst_BkCalendarList::shouldKeepTheRowsForANullOrUnknownKey_data()
{
    QTest::addColumn<QVariant>("id");
    QTest::newRow("null id") << QVariant();
    QTest::newRow("id -1") << QVariant(-1);
}

void tst_BkCalendarList::shouldKeepTheRowsForANullOrUnknownKey()
{
    QFETCH(QVariant, id);
    JobList j;
    booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("mine"));
    j.list.setResource(Anna);
    QCOMPARE(j.list.count(), 1);
    j.list.setResource(BkCalendarResource(id, QStringLiteral("nobody"), 1));
    QCOMPARE(j.list.resource().id, id);
    QCOMPARE(j.list.resource().type, 1);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("mine")});
    // Another date does not clear them either.
    j.list.setDate(Wednesday.addDays(3));
    QCOMPARE(j.list.date(), Wednesday.addDays(3));
    QCOMPARE(j.list.count(), 1);
}

void tst_BkCalendarList::shouldDoNothingWithoutAModel()
{
    BkCalendarList list;
    list.setResource(Anna);
    list.setDate(Wednesday);
    QCOMPARE(list.count(), 0);
}

void tst_BkCalendarList::shouldAddABookingOfTheDayWhoeverItBelongsTo()
{
    JobList j;
    j.list.setResource(Anna);
    booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("mine"));
    booking(j.model, 2, Wednesday, Ben, QTime(11, 0), QTime(12, 0), QStringLiteral("Ben's"));
    QCOMPARE(titles(j.list), (QStringList{QStringLiteral("mine"), QStringLiteral("Ben's")}));
    // The next full reading shows only Anna's.
    j.list.setDate(Wednesday);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("mine")});
}

void tst_BkCalendarList::shouldIgnoreABookingOfAnotherDay()
{
    JobList j;
    j.list.setResource(Anna);
    booking(j.model, 1, Wednesday.addDays(1), Anna, QTime(9, 0), QTime(10, 0));
    QCOMPARE(j.list.count(), 0);
}

void tst_BkCalendarList::shouldDropAStrangerAtItsFirstChange()
{
    JobList j;
    j.list.setResource(Anna);
    BkCalendarItem* bens = booking(j.model, 2, Wednesday, Ben, QTime(11, 0), QTime(12, 0));
    QCOMPARE(j.list.count(), 1);
    bens->setTime(QTime(11, 30), QTime(12, 30));
    QCOMPARE(j.list.count(), 0);
    QVERIFY(j.list.rows().isEmpty());
}

void tst_BkCalendarList::shouldNotMakeARowOnAChange()
{
    JobList j;
    BkCalendarItem* item = booking(j.model, 1, Wednesday.addDays(1), Anna, QTime(9, 0), QTime(10, 0));
    j.list.setResource(Anna);
    QCOMPARE(j.list.count(), 0);
    // Moved silently onto the shown day: it belongs now, yet only a change arrives, and a change
    // alone makes no row.
    item->setDate(Wednesday, true);
    QVERIFY(item->isLike(Anna));
    QCOMPARE(j.list.count(), 0);
    item->setTime(QTime(9, 30), QTime(10, 30));
    QCOMPARE(j.list.count(), 0);
    QVERIFY(j.list.rows().isEmpty());
}

void tst_BkCalendarList::shouldRewriteARowOnAChangeAndResort()
{
    JobList j;
    BkCalendarItem* early =
        booking(j.model, 1, Wednesday, Anna, QTime(8, 0), QTime(9, 0), QStringLiteral("early"));
    booking(j.model, 2, Wednesday, Anna, QTime(10, 0), QTime(11, 0), QStringLiteral("late"));
    j.list.setResource(Anna);
    QCOMPARE(titles(j.list), (QStringList{QStringLiteral("early"), QStringLiteral("late")}));
    QListWidgetItem* row = j.list.rows().value(early);
    early->setTitle(QStringLiteral("now later"));
    early->setTime(QTime(15, 0), QTime(16, 0));
    QCOMPARE(j.list.rows().value(early), row);
    QCOMPARE(row->data(BkCalendarList::StartRole).toTime(), QTime(15, 0));
    QCOMPARE(titles(j.list), (QStringList{QStringLiteral("late"), QStringLiteral("now later")}));
}

void tst_BkCalendarList::shouldLeaveTheOldDayOnASilentMove()
{
    JobList j;
    BkCalendarItem* item = booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0));
    j.list.setResource(Anna);
    QSignalSpy added(&j.model, &BkCalendarModel::itemAdded);
    QSignalSpy removed(&j.model, &BkCalendarModel::itemRemoved);
    item->setDate(Wednesday.addDays(1), true);
    QCOMPARE(added.count(), 0);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(j.list.count(), 0);
    // A list of the new day does not see it until it reads the day anew.
    BkCalendarList other;
    other.setCalendarModel(&j.model);
    other.setResource(Anna);
    other.setDate(Wednesday.addDays(2));
    other.updateModel();
    item->setTime(QTime(9, 0), QTime(10, 30));
    other.setDate(Wednesday.addDays(1));
    QCOMPARE(other.count(), 1);
}

void tst_BkCalendarList::shouldFollowANoisyMove()
{
    JobList j;
    BkCalendarItem* item = booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0));
    j.list.setResource(Anna);
    j.list.setDate(Wednesday.addDays(1));
    QCOMPARE(j.list.count(), 0);
    QStringList order;
    connect(&j.model, &BkCalendarModel::itemRemoved, this, [&]() { order << QStringLiteral("removed"); });
    connect(&j.model, &BkCalendarModel::itemAdded, this, [&]() { order << QStringLiteral("added"); });
    connect(&j.model, &BkCalendarModel::itemChanged, this, [&]() { order << QStringLiteral("changed"); });
    item->setDate(Wednesday.addDays(1), false);
    QCOMPARE(order,
             (QStringList{QStringLiteral("removed"), QStringLiteral("added"), QStringLiteral("changed")}));
    QCOMPARE(j.list.count(), 1);
    QCOMPARE(j.list.rows().count(), 1);
}

void tst_BkCalendarList::shouldDropARemovedBooking()
{
    JobList j;
    BkCalendarItem* item = booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0));
    j.list.setResource(Anna);
    QCOMPARE(j.list.count(), 1);
    j.model.removeItem(item);
    QCOMPARE(j.list.count(), 0);
    QVERIFY(j.list.rows().isEmpty());
    delete item;
}

void tst_BkCalendarList::shouldShowReservedBookings()
{
    JobList j;
    BkCalendarItem* item =
        booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("held"));
    item->setType(BkCalendarItem::Reserved);
    j.list.setResource(Anna);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("held")});
    QCOMPARE(j.list.item(0)->data(BkCalendarList::TypeRole).toInt(), 6);
}

void tst_BkCalendarList::shouldMakeOneRowForABookingLoadedWhileReading()
{
    // The host answers the list's read of a day that is not loaded yet at once.
    JobList j;
    connect(&j.model, &BkCalendarModel::loadData, this,
            [&j](const QDate& from, const QDate& to, const BkCalendarResource& who) {
                if (who == Anna && from <= Wednesday && Wednesday <= to)
                    booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("loaded"));
            });
    j.list.setResource(Anna);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("loaded")});
    QCOMPARE(j.list.rows().count(), 1);
    QCOMPARE(j.list.rows().value(j.model.findId(1)), j.list.item(0));
}

void tst_BkCalendarList::shouldKeepOldRowsAndShowNewBookingsAfterAClear()
{
    // A clear deletes the bookings without a word to the list, which keeps their rows. The host then
    // loads the day again: new bookings, which the allocator may well place where the old ones were,
    // each get a row of their own, and the old rows are never mistaken for theirs.
    JobList j;
    j.list.setResource(Anna);
    j.list.setDate(Wednesday);
    for (int id = 1; id <= 3; ++id)
        booking(j.model, id, Wednesday, Anna, QTime(8 + id, 0), QTime(9 + id, 0),
                QStringLiteral("old %1").arg(id));
    QCOMPARE(j.list.count(), 3);

    j.model.clear();
    QCOMPARE(j.list.count(), 3);
    for (int id = 1; id <= 3; ++id)
        booking(j.model, id, Wednesday, Anna, QTime(8 + id, 30), QTime(9 + id, 30),
                QStringLiteral("new %1").arg(id));
    QStringList shown = titles(j.list);
    shown.sort();
    QCOMPARE(shown, QStringList({QStringLiteral("new 1"), QStringLiteral("new 2"), QStringLiteral("new 3"),
                                 QStringLiteral("old 1"), QStringLiteral("old 2"), QStringLiteral("old 3")}));

    // A change of a new booking rewrites its own row only.
    BkCalendarItem* first = j.model.findId(1);
    QVERIFY(first);
    first->setTitle(QStringLiteral("renamed"));
    shown = titles(j.list);
    shown.sort();
    QCOMPARE(shown,
             QStringList({QStringLiteral("new 2"), QStringLiteral("new 3"), QStringLiteral("old 1"),
                          QStringLiteral("old 2"), QStringLiteral("old 3"), QStringLiteral("renamed")}));
}

void tst_BkCalendarList::shouldKeepItsRowsWhenItsModelIsGone()
{
    // The list does not own its model. Deleted first, the model leaves the list without one: the rows
    // keep what they copied, and later dates and keys change nothing, as without a model.
    BkCalendarList list;
    auto* model = new BkCalendarModel;
    list.setCalendarModel(model);
    list.updateModel();
    list.setResource(Anna);
    list.setDate(Wednesday);
    booking(*model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("mine"));
    QCOMPARE(list.count(), 1);

    delete model;
    QVERIFY(!list.calendarModel());
    QCOMPARE(titles(list), QStringList{QStringLiteral("mine")});
    list.setDate(Wednesday.addDays(1));
    list.setResource(Ben);
    QCOMPARE(titles(list), QStringList{QStringLiteral("mine")});
}

void tst_BkCalendarList::shouldForgetRowsTakenAwayThroughTheWidget()
{
    // The list is a plain list widget to whoever holds it: rows may be deleted, taken or cleared
    // there. The bookings' later signals then find no row of theirs, and a taken row stays its
    // taker's.
    JobList j;
    BkCalendarItem* first =
        booking(j.model, 1, Wednesday, Anna, QTime(8, 0), QTime(9, 0), QStringLiteral("one"));
    BkCalendarItem* second =
        booking(j.model, 2, Wednesday, Anna, QTime(10, 0), QTime(11, 0), QStringLiteral("two"));
    BkCalendarItem* third =
        booking(j.model, 3, Wednesday, Anna, QTime(12, 0), QTime(13, 0), QStringLiteral("three"));
    j.list.setResource(Anna);
    QCOMPARE(j.list.count(), 3);

    delete j.list.rows().value(first);
    QCOMPARE(j.list.rows().count(), 2);
    QVERIFY(!j.list.rows().contains(first));
    first->setTitle(QStringLiteral("one again"));
    j.model.removeItem(first);
    delete first;
    QCOMPARE(titles(j.list), (QStringList{QStringLiteral("two"), QStringLiteral("three")}));

    QListWidgetItem* taken = j.list.takeItem(j.list.row(j.list.rows().value(second)));
    QVERIFY(taken);
    QCOMPARE(j.list.rows().count(), 1);
    QVERIFY(!j.list.rows().contains(second));
    second->setTitle(QStringLiteral("two again"));
    QCOMPARE(taken->data(BkCalendarList::TitleRole).toString(), QStringLiteral("two"));
    j.model.removeItem(second);
    delete second;
    delete taken;
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("three")});

    j.list.clear();
    QVERIFY(j.list.rows().isEmpty());
    third->setTitle(QStringLiteral("three again"));
    QCOMPARE(j.list.count(), 0);
    j.model.removeItem(third);
    delete third;

    // Read anew, the day shows what the store has.
    booking(j.model, 4, Wednesday, Anna, QTime(14, 0), QTime(15, 0), QStringLiteral("four"));
    j.list.setDate(Wednesday);
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("four")});
    QCOMPARE(j.list.rows().count(), 1);
}

void tst_BkCalendarList::shouldShowOnlyTheDayItWasMovedToWhileReading()
{
    // The host answers the read of a day by loading it and, in the same answer, sends the list to
    // the next day. The list then shows that day alone.
    JobList j;
    connect(&j.model, &BkCalendarModel::loadData, this,
            [&j](const QDate& from, const QDate& to, const BkCalendarResource& who) {
                if (!(who == Anna) || Wednesday < from || to < Wednesday)
                    return;
                booking(j.model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("wednesday"));
                booking(j.model, 2, Wednesday, Anna, QTime(11, 0), QTime(12, 0),
                        QStringLiteral("wednesday too"));
                booking(j.model, 3, Wednesday.addDays(1), Anna, QTime(9, 0), QTime(10, 0),
                        QStringLiteral("thursday"));
                j.list.setDate(Wednesday.addDays(1));
            });
    j.list.setResource(Anna);
    QCOMPARE(j.list.date(), Wednesday.addDays(1));
    QCOMPARE(titles(j.list), QStringList{QStringLiteral("thursday")});
    QCOMPARE(j.list.rows().count(), 1);
    QVERIFY(j.list.rows().contains(j.model.findId(3)));
}

FW_TEST_MAIN(tst_BkCalendarList)
#include "tst_bkcalendarlist.moc"

void tst_BkCalendarList::shouldMakeNoRowForABookingTheHostTookAwayAsItCame()
{
    // A host that filters bookings may take one away in its own answer to the model's notice of it,
    // heard before the list's; the list then hears of a booking that is no longer there.
    BkCalendarModel model;
    QList<BkCalendarItem*> takenAway;
    QObject::connect(&model, &BkCalendarModel::itemAdded, &model, [&](BkCalendarItem* item) {
        if (item->title() == QStringLiteral("filtered")) {
            model.removeItem(item);
            takenAway << item;
        }
    });
    BkCalendarList list;
    list.setCalendarModel(&model);
    list.updateModel();
    list.setResource(Anna);
    list.setDate(Wednesday);
    booking(model, 1, Wednesday, Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("kept"));
    booking(model, 2, Wednesday, Anna, QTime(10, 0), QTime(11, 0), QStringLiteral("filtered"));
    QCOMPARE(takenAway.size(), 1);
    QCOMPARE(titles(list), QStringList() << QStringLiteral("kept"));
    // Nothing of it is left to follow either.
    delete takenAway.takeFirst();
    list.setDate(Wednesday);
    QCOMPARE(titles(list), QStringList() << QStringLiteral("kept"));
}
