#include "BkCalendarItem.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"
#include "BkStoreBooking.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTimer>

#include <QtTest>

namespace {

using BkStoreBooking::Day;
using BkStoreBooking::makeItem;

BkCalendarPlan* makePlan(const QDate& date, const BkCalendarResource& resource, int infoId = -1)
{
    auto* plan = new BkCalendarPlan;
    plan->date = date;
    plan->start = QTime(8, 0);
    plan->end = QTime(12, 0);
    plan->bookable = true;
    plan->infoId = infoId;
    plan->resource = resource;
    return plan;
}

QPair<QDate, QDate> request(const QSignalSpy& spy, int index)
{
    return qMakePair(spy.at(index).at(0).toDate(), spy.at(index).at(1).toDate());
}

} // namespace

class TestBkCalendarModel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void shouldStartEmptyWithToolTipsOn();
    void shouldRequestEightDaysRoundFirstRead();
    void shouldWidenLoadedRangeOnDemand_data();
    void shouldWidenLoadedRangeOnDemand();
    void shouldStoreRangeBeforeRequesting();
    void shouldKeepOneRangePerKey();
    void shouldNotRequestForKeyWithoutId();
    void shouldRequestPlansForKeyWithoutId();
    void shouldReadResourceItemsForAnyTypeButUser();
    void shouldFindItemUnderUserAndResource();
    void shouldKeepFilingOrder();
    void shouldRejectDuplicateIdAfterSettingToolTip();
    void shouldFileItemWithoutIdTwiceWhenAddedTwice();
    void shouldKeepTheOrderOfAddingThroughManyRemovalsAndMoves();
    void shouldKnowTheUnsavedBookingsThroughRemovalsAndSaves();
    void shouldKeepAddingOrderThroughManyMovesAndRemovals();
    void shouldRemoveItemAddedTwiceAfterMovesInBetween();
    void shouldRemoveItemThatAnotherModelHoldsToo();
    void shouldDeleteItemAndPlanAddedTwiceOnlyOnceOnClear();
    void shouldKeepItemWithoutKeysInAllItemsOnly();
    void shouldFindById();
    void shouldAskForKeyZeroWhenContainsGetsNullId();
    void shouldRefuseANullBookingOrPlan();
    void shouldUnfileOnRemoveAndLeaveEmptyLists();
    void shouldNotCreateEntriesOnRemove();
    void shouldAddAndFindPlans();
    void shouldNotSignalRemovalOfUnknownPlan();
    void shouldRemoveKnownPlan();
    void shouldReplacePlanInfoWithSameId();
    void shouldKeepPlanInfosOnClear();
    void shouldRequestAnewAfterClear();
    void shouldResetBeforeRemovingOnClear();
    void shouldLeaveUnsavedListAndTimerAloneOnClear();
    void shouldCreateEmptyRangeWhenAskedWhetherLoaded();
    void shouldTellWhetherItHasADayWithoutAsking();
    void shouldTellWhetherAReadLetsAHostIn();
    void shouldTellOnlyItemsWithIdOfToolTipSetting();
    void shouldRelayUpdateWithoutSignal();
    void shouldResetWhenDestroyed();
    void shouldDeliverLoadRequestsThroughQueuedConnections();
};

void TestBkCalendarModel::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestBkCalendarModel::shouldStartEmptyWithToolTipsOn()
{
    BkCalendarModel model;
    QVERIFY(model.toolTipsEnabled());
    QVERIFY(model.allItems().isEmpty());
    QVERIFY(model.invalidItems().isEmpty());
    QVERIFY(model.loadedRanges().isEmpty());
    QVERIFY(model.planStore().isEmpty());
    QVERIFY(model.idHash().isEmpty());
    QVERIFY(model.commitTimer());
    QCOMPARE(model.commitTimer()->parent(), &model);
}

void TestBkCalendarModel::shouldRequestEightDaysRoundFirstRead()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    const BkCalendarResource ann(3, QStringLiteral("Ann"));

    QVERIFY(model.items(Day, ann).isEmpty());

    QCOMPARE(loads.count(), 1);
    QCOMPARE(request(loads, 0), qMakePair(Day.addDays(-8), Day.addDays(8)));
    const BkCalendarResource asked = loads.at(0).at(2).value<BkCalendarResource>();
    QCOMPARE(asked, ann);
    QCOMPARE(asked.name, QStringLiteral("Ann"));
    QCOMPARE(model.loadedRanges().value(ann), qMakePair(Day.addDays(-8), Day.addDays(8)));
    QVERIFY(model.loaded(ann, Day.addDays(8)));
    QVERIFY(model.loaded(ann, Day.addDays(-8)));
    QVERIFY(!model.loaded(ann, Day.addDays(9)));
}

void TestBkCalendarModel::shouldWidenLoadedRangeOnDemand_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<bool>("requested");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");

    QTest::newRow("D+8 is loaded") << 8 << false << 0 << 0 << -8 << 8;
    QTest::newRow("D-8 is loaded") << -8 << false << 0 << 0 << -8 << 8;
    QTest::newRow("D is loaded") << 0 << false << 0 << 0 << -8 << 8;
    QTest::newRow("D+9 asks for D+9 to D+17") << 9 << true << 9 << 17 << -8 << 17;
    QTest::newRow("D-9 asks for D-17 to D-9") << -9 << true << -17 << -9 << -17 << 8;
    QTest::newRow("a year on asks for all between") << 365 << true << 9 << 373 << -8 << 373;
    QTest::newRow("a year back asks for all between") << -365 << true << -373 << -9 << -373 << 8;
}

void TestBkCalendarModel::shouldWidenLoadedRangeOnDemand()
{
    QFETCH(int, offset);
    QFETCH(bool, requested);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, first);
    QFETCH(int, last);

    BkCalendarModel model;
    const BkCalendarResource room(8, QStringLiteral("Bay 1"), 1);
    model.items(Day, room);
    QSignalSpy loads(&model, &BkCalendarModel::loadData);

    model.items(Day.addDays(offset), room);

    QCOMPARE(loads.count(), requested ? 1 : 0);
    if (requested)
        QCOMPARE(request(loads, 0), qMakePair(Day.addDays(from), Day.addDays(to)));
    QCOMPARE(model.loadedRanges().value(room), qMakePair(Day.addDays(first), Day.addDays(last)));

    // Plans share the range.
    model.plans(Day.addDays(offset), room);
    QCOMPARE(loads.count(), requested ? 1 : 0);
}

void TestBkCalendarModel::shouldStoreRangeBeforeRequesting()
{
    BkCalendarModel model;
    const BkCalendarResource ann(3);
    int nested = 0;
    QList<QPair<QDate, QDate>> seen;
    connect(&model, &BkCalendarModel::loadData, this,
            [&](const QDate&, const QDate&, const BkCalendarResource& resource) {
                seen.append(model.loadedRanges().value(resource));
                // A view reading from a slot must not ask again.
                ++nested;
                model.items(Day.addDays(2), resource);
                model.plans(Day.addDays(-2), resource);
            });

    model.items(Day, ann);
    QCOMPARE(nested, 1);
    QCOMPARE(seen, (QList<QPair<QDate, QDate>>{qMakePair(Day.addDays(-8), Day.addDays(8))}));

    model.items(Day.addDays(20), ann);
    QCOMPARE(nested, 2);
    QCOMPARE(seen.last(), qMakePair(Day.addDays(-8), Day.addDays(28)));
}

void TestBkCalendarModel::shouldKeepOneRangePerKey()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    model.items(Day, BkCalendarResource(7, QString(), 0));
    model.items(Day, BkCalendarResource(7, QString(), 1));
    model.items(Day, BkCalendarResource(8, QString(), 0));
    QCOMPARE(loads.count(), 3);
    QCOMPARE(model.loadedRanges().size(), 3);
}

void TestBkCalendarModel::shouldNotRequestForKeyWithoutId()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy loads(&model, &BkCalendarModel::loadData);

    QVERIFY(model.items(Day, BkCalendarResource()).isEmpty());
    QVERIFY(model.items(Day, BkCalendarResource(QVariant(), QStringLiteral("Nobody"), 1)).isEmpty());
    QCOMPARE(loads.count(), 0);
    QVERIFY(model.loadedRanges().isEmpty());
}

void TestBkCalendarModel::shouldRequestPlansForKeyWithoutId()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    QVERIFY(model.plans(Day, BkCalendarResource()).isEmpty());
    QCOMPARE(loads.count(), 1);
    QCOMPARE(request(loads, 0), qMakePair(Day.addDays(-8), Day.addDays(8)));
    QVERIFY(loads.at(0).at(2).value<BkCalendarResource>().id.isNull());
}

void TestBkCalendarModel::shouldReadResourceItemsForAnyTypeButUser()
{
    BkCalendarModel model;
    auto* booking = makeItem(1, 5, 8);
    auto* userOnly = makeItem(2, 8, QVariant());
    QVERIFY(model.addItem(booking));
    QVERIFY(model.addItem(userOnly));

    QCOMPARE(model.items(Day, BkCalendarResource(8, QString(), 1)), QList<BkCalendarItem*>{booking});
    QCOMPARE(model.items(Day, BkCalendarResource(8, QString(), 2)), QList<BkCalendarItem*>{booking});
    QCOMPARE(model.items(Day, BkCalendarResource(8, QString(), 0)), QList<BkCalendarItem*>{userOnly});
    // The store hands it out for type 2, but matching refuses it.
    QVERIFY(!booking->isLike(BkCalendarResource(8, QString(), 2)));
    QVERIFY(booking->isLike(BkCalendarResource(8, QString(), 1)));
}

void TestBkCalendarModel::shouldFindItemUnderUserAndResource()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    const BkCalendarResource user(3);
    const BkCalendarResource resource(8, QString(), 1);
    QCOMPARE(model.items(Day, user), QList<BkCalendarItem*>{item});
    QCOMPARE(model.items(Day, resource), QList<BkCalendarItem*>{item});

    model.removeItem(item);
    QVERIFY(model.items(Day, user).isEmpty());
    QVERIFY(model.items(Day, resource).isEmpty());
    delete item;
}

void TestBkCalendarModel::shouldKeepFilingOrder()
{
    BkCalendarModel model;
    auto* late = makeItem(1, 3, QVariant());
    late->setTime(QTime(15, 0), QTime(16, 0));
    auto* early = makeItem(2, 3, QVariant());
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QVERIFY(model.addItem(late));
    QVERIFY(model.addItem(early));
    QCOMPARE(added.count(), 2);
    QCOMPARE(added.at(0).at(0).value<BkCalendarItem*>(), late);
    QCOMPARE(late->model, &model);
    QCOMPARE(model.items(Day, BkCalendarResource(3)), (QList<BkCalendarItem*>{late, early}));
    QCOMPARE(model.allItems(), (QList<BkCalendarItem*>{late, early}));
}

void TestBkCalendarModel::shouldRejectDuplicateIdAfterSettingToolTip()
{
    BkCalendarModel model;
    auto* first = makeItem(5, 3, QVariant());
    QVERIFY(model.addItem(first));

    BkCalendarItem duplicate;
    duplicate.id = QStringLiteral("5");
    duplicate.setDate(Day);
    duplicate.setUserId(4);
    duplicate.setToolTip(QStringLiteral("Second"));
    BkCalendarItemWidget widget(&duplicate);
    QVERIFY(widget.toolTip().isEmpty());
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);

    QVERIFY(!model.addItem(&duplicate));

    QCOMPARE(widget.toolTip(), QStringLiteral("Second"));
    QCOMPARE(added.count(), 0);
    QVERIFY(!duplicate.model);
    QCOMPARE(model.allItems(), QList<BkCalendarItem*>{first});
    QCOMPARE(model.findId(5), first);
    QVERIFY(model.items(Day, BkCalendarResource(4)).isEmpty());
    QVERIFY(!model.userItems().value(Day).contains(QVariant(4)));
}

void TestBkCalendarModel::shouldFileItemWithoutIdTwiceWhenAddedTwice()
{
    BkCalendarModel model;
    auto* item = makeItem(QVariant(), 3, QVariant());
    QVERIFY(model.addItem(item));
    QVERIFY(model.addItem(item));
    QCOMPARE(model.allItems().size(), 2);
    QCOMPARE(model.items(Day, BkCalendarResource(3)).size(), 2);
    QVERIFY(model.idHash().isEmpty());
    model.removeItem(item);
    QVERIFY(model.allItems().isEmpty());
    delete item;
}

void TestBkCalendarModel::shouldKeepTheOrderOfAddingThroughManyRemovalsAndMoves()
{
    BkCalendarModel model;
    QList<BkCalendarItem*> expected;
    QList<BkCalendarItem*> removed;
    for (int i = 0; i < 300; ++i) {
        auto* item = makeItem(i + 1, i % 7 + 1, QVariant());
        QVERIFY(model.addItem(item));
        expected << item;
    }
    // Enough removals, scattered, for the list to close its gaps more than once.
    for (int i = 0; i < 300; i += 3) {
        model.removeItem(expected.at(i));
        removed << expected.at(i);
    }
    for (BkCalendarItem* item : qAsConst(removed))
        expected.removeAll(item);
    QCOMPARE(model.allItems(), expected);
    // A booking that moves is filed again: it goes to the end.
    BkCalendarItem* mover = expected.at(10);
    mover->setDate(Day.addDays(1));
    expected.removeAll(mover);
    expected << mover;
    QCOMPARE(model.allItems(), expected);
    // An item added twice, amid the rest, leaves from both places.
    auto* twice = makeItem(QVariant(), 3, QVariant());
    model.addItem(twice);
    model.addItem(expected.first());
    model.addItem(twice);
    model.removeItem(twice);
    QCOMPARE(model.allItems(), expected);
    // Removed and added again: found at its new place only.
    model.removeItem(expected.at(5));
    model.addItem(expected.at(5));
    expected << expected.takeAt(5);
    QCOMPARE(model.allItems(), expected);
    delete twice;
    qDeleteAll(removed);
}

void TestBkCalendarModel::shouldKnowTheUnsavedBookingsThroughRemovalsAndSaves()
{
    BkCalendarModel model;
    auto* a = makeItem(1, 3, QVariant());
    auto* b = makeItem(2, 3, QVariant());
    model.addItem(a);
    model.addItem(b);
    a->setTime(QTime(9, 0), QTime(10, 0));
    b->setTime(QTime(9, 0), QTime(10, 0));
    QVERIFY(model.isInvalid(a));
    QCOMPARE(model.invalidItems(), (QList<BkCalendarItem*>{a, b}));
    // A move takes the booking off the list and puts it at the end again.
    a->setDate(Day.addDays(2));
    QCOMPARE(model.invalidItems(), (QList<BkCalendarItem*>{b, a}));
    model.itemValid(b);
    QVERIFY(!model.isInvalid(b));
    QCOMPARE(model.invalidItems(), QList<BkCalendarItem*>{a});
    model.removeItem(a);
    QVERIFY(!model.isInvalid(a));
    QVERIFY(model.invalidItems().isEmpty());
    model.addItem(a);
    a->setTime(QTime(11, 0), QTime(12, 0));
    QVERIFY(model.isInvalid(a));
    model.commitToDatabase();
    QVERIFY(!model.isInvalid(a));
    b->setTime(QTime(11, 0), QTime(12, 0));
    model.rollback();
    QVERIFY(!model.isInvalid(b));
    QVERIFY(model.invalidItems().isEmpty());
}

// Moves send a booking to the end of the list and removals take it out; thousands of them in a
// random order must leave the list exactly as a plain list treated the same way.
void TestBkCalendarModel::shouldKeepAddingOrderThroughManyMovesAndRemovals()
{
    BkCalendarModel model;
    QList<BkCalendarItem*> expected;
    QList<BkCalendarItem*> outside;
    for (int i = 0; i < 300; ++i) {
        auto* item = makeItem(i + 1, 1 + i % 7, 100 + i % 5, Day.addDays(i % 3));
        QVERIFY(model.addItem(item));
        expected.append(item);
    }
    QRandomGenerator random(1234);
    for (int step = 0; step < 5000; ++step) {
        const int action = random.bounded(4);
        if (action == 0 && !expected.isEmpty()) {
            BkCalendarItem* item = expected.at(random.bounded(expected.size()));
            model.removeItem(item);
            expected.removeAll(item);
            outside.append(item);
        } else if (action == 1 && !outside.isEmpty()) {
            BkCalendarItem* item = outside.takeAt(random.bounded(outside.size()));
            QVERIFY(model.addItem(item));
            expected.append(item);
        } else if (!expected.isEmpty()) {
            BkCalendarItem* item = expected.at(random.bounded(expected.size()));
            // Writing the value a booking already has is no move.
            const QVariant user = item->userId();
            if (action == 2)
                item->setDate(item->date().addDays(random.bounded(2) ? 1 : -1), random.bounded(2));
            else
                item->setUserId(1 + random.bounded(7));
            if (action == 2 || item->userId() != user) {
                expected.removeAll(item);
                expected.append(item);
            }
        }
        if (step % 97 == 0)
            QCOMPARE(model.allItems(), expected);
    }
    QCOMPARE(model.allItems(), expected);
    for (BkCalendarItem* item : qAsConst(expected))
        QCOMPARE(model.findId(item->id), item);
    qDeleteAll(outside);
}

void TestBkCalendarModel::shouldRemoveItemAddedTwiceAfterMovesInBetween()
{
    BkCalendarModel model;
    auto* twice = makeItem(QVariant(), 3, QVariant());
    auto* other = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(twice));
    QVERIFY(model.addItem(other));
    QVERIFY(model.addItem(twice));
    QCOMPARE(model.allItems(), (QList<BkCalendarItem*>{twice, other, twice}));
    other->setDate(Day.addDays(1));
    QCOMPARE(model.allItems(), (QList<BkCalendarItem*>{twice, twice, other}));
    model.removeItem(twice);
    QCOMPARE(model.allItems(), QList<BkCalendarItem*>{other});
    QVERIFY(model.items(Day, BkCalendarResource(3)).isEmpty());
    delete twice;
}

void TestBkCalendarModel::shouldRemoveItemThatAnotherModelHoldsToo()
{
    BkCalendarModel first;
    BkCalendarModel second;
    auto* item = makeItem(QVariant(), 3, QVariant());
    auto* before = makeItem(1, 3, QVariant());
    QVERIFY(first.addItem(before));
    QVERIFY(first.addItem(item));
    QVERIFY(second.addItem(item));
    first.removeItem(item);
    QCOMPARE(first.allItems(), QList<BkCalendarItem*>{before});
    QCOMPARE(second.allItems(), QList<BkCalendarItem*>{item});
    second.removeItem(item);
    QVERIFY(second.allItems().isEmpty());
    delete item;
}

void TestBkCalendarModel::shouldDeleteItemAndPlanAddedTwiceOnlyOnceOnClear()
{
    BkCalendarModel model;
    auto* item = makeItem(QVariant(), 3, QVariant());
    BkCalendarItemWidget widget(item);
    QVERIFY(model.addItem(item));
    QVERIFY(model.addItem(item));
    auto* plan = makePlan(Day, BkCalendarResource(3));
    model.addItem(plan);
    model.addItem(plan);
    QCOMPARE(model.plans(Day, BkCalendarResource(3)), (QList<BkCalendarPlan*>{plan, plan}));

    // A second delete of the same pointer would bring the test down here.
    model.clear();

    QVERIFY(model.allItems().isEmpty());
    QVERIFY(model.planStore().isEmpty());
    // The booking is gone: its destructor has cleared the box's pointer.
    QVERIFY(!widget.item());
}

void TestBkCalendarModel::shouldKeepItemWithoutKeysInAllItemsOnly()
{
    BkCalendarModel model;
    auto* item = makeItem(1, QVariant(), QVariant());
    QVERIFY(model.addItem(item));
    QCOMPARE(model.allItems(), QList<BkCalendarItem*>{item});
    QVERIFY(model.userItems().isEmpty());
    QVERIFY(model.resourceItems().isEmpty());
    QCOMPARE(model.findId(1), item);
}

void TestBkCalendarModel::shouldFindById()
{
    BkCalendarModel model;
    auto* item = makeItem(0, 3, QVariant());
    QVERIFY(model.addItem(item));
    QCOMPARE(model.findId(0), item);
    QCOMPARE(model.findId(QStringLiteral("0")), item);
    QVERIFY(!model.findId(QVariant()));
    QVERIFY(!model.findId(1));
}

void TestBkCalendarModel::shouldAskForKeyZeroWhenContainsGetsNullId()
{
    BkCalendarModel model;
    QVERIFY(!model.containsItem(QVariant()));
    auto* item = makeItem(0, 3, QVariant());
    QVERIFY(model.addItem(item));
    QVERIFY(model.containsItem(QVariant()));
    QVERIFY(model.containsItem(0));
    QVERIFY(!model.containsItem(1));
}

void TestBkCalendarModel::shouldUnfileOnRemoveAndLeaveEmptyLists()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Unsaved"));
    QVERIFY(model.isInvalid(item));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);

    model.removeItem(item);

    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).value<BkCalendarItem*>(), item);
    QVERIFY(!item->model);
    QVERIFY(!model.isInvalid(item));
    QVERIFY(model.allItems().isEmpty());
    QVERIFY(!model.findId(1));
    QVERIFY(model.userItems().value(Day).contains(QVariant(3)));
    QVERIFY(model.userItems().value(Day).value(QVariant(3)).isEmpty());
    QVERIFY(model.resourceItems().value(Day).value(QVariant(8)).isEmpty());
    delete item;
}

void TestBkCalendarModel::shouldNotCreateEntriesOnRemove()
{
    BkCalendarModel model;
    BkCalendarItem stranger;
    stranger.setDate(Day);
    stranger.setUserId(3);
    stranger.setResourceId(8);
    model.removeItem(&stranger);
    QVERIFY(model.userItems().isEmpty());
    QVERIFY(model.resourceItems().isEmpty());
}

void TestBkCalendarModel::shouldAddAndFindPlans()
{
    BkCalendarModel model;
    const BkCalendarResource ann(3, QStringLiteral("Ann"));
    auto* morning = makePlan(Day, ann);
    auto* again = makePlan(Day, BkCalendarResource(3, QStringLiteral("Other name")));
    QSignalSpy added(&model, &BkCalendarModel::planAdded);

    model.addItem(morning);
    model.addItem(again);

    QCOMPARE(added.count(), 2);
    QCOMPARE(added.at(0).at(0).value<BkCalendarPlan*>(), morning);
    QCOMPARE(model.plans(Day, ann), (QList<BkCalendarPlan*>{morning, again}));
    QVERIFY(model.plans(Day, BkCalendarResource(3, QString(), 1)).isEmpty());
    QVERIFY(model.plans(Day.addDays(1), ann).isEmpty());
}

void TestBkCalendarModel::shouldNotSignalRemovalOfUnknownPlan()
{
    BkCalendarModel model;
    auto* filed = makePlan(Day, BkCalendarResource(3));
    model.addItem(filed);
    QSignalSpy removed(&model, &BkCalendarModel::planRemoved);

    BkCalendarPlan otherDay = *filed;
    otherDay.date = Day.addDays(1);
    model.removeItem(&otherDay);
    BkCalendarPlan otherKey = *filed;
    otherKey.resource = BkCalendarResource(3, QString(), 1);
    model.removeItem(&otherKey);

    QCOMPARE(removed.count(), 0);
    QCOMPARE(model.plans(Day, BkCalendarResource(3)), QList<BkCalendarPlan*>{filed});
    QVERIFY(!model.planStore().contains(Day.addDays(1)));
}

void TestBkCalendarModel::shouldRemoveKnownPlan()
{
    BkCalendarModel model;
    auto* plan = makePlan(Day, BkCalendarResource(3));
    model.addItem(plan);
    QSignalSpy removed(&model, &BkCalendarModel::planRemoved);

    model.removeItem(plan);

    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).value<BkCalendarPlan*>(), plan);
    QVERIFY(model.plans(Day, BkCalendarResource(3)).isEmpty());
    QVERIFY(model.planStore().value(Day).contains(BkCalendarResource(3)));
    delete plan;
}

void TestBkCalendarModel::shouldReplacePlanInfoWithSameId()
{
    BkCalendarModel model;
    BkCalendarPlanInfo info;
    info.id = 2;
    info.color = Qt::red;
    info.label = QStringLiteral("Closed");
    model.addItem(info);
    info.color = Qt::blue;
    info.label = QStringLiteral("Break");
    info.description = QStringLiteral("Lunch");
    model.addItem(info);

    QCOMPARE(model.planInfos().size(), 1);
    const BkCalendarPlanInfo found = model.planInfo(2);
    QCOMPARE(found.id, QVariant(2));
    QCOMPARE(found.color, QColor(Qt::blue));
    QCOMPARE(found.label, QStringLiteral("Break"));
    QCOMPARE(found.description, QStringLiteral("Lunch"));
}

void TestBkCalendarModel::shouldKeepPlanInfosOnClear()
{
    BkCalendarModel model;
    BkCalendarPlanInfo info;
    info.id = 2;
    info.color = Qt::red;
    info.label = QStringLiteral("Closed");
    model.addItem(info);
    model.addItem(makePlan(Day, BkCalendarResource(3), 2));
    QVERIFY(model.addItem(makeItem(1, 3, 8)));

    model.clear();

    QVERIFY(model.allItems().isEmpty());
    QVERIFY(model.planStore().isEmpty());
    QVERIFY(model.userItems().isEmpty());
    QVERIFY(model.resourceItems().isEmpty());
    QVERIFY(model.idHash().isEmpty());
    QCOMPARE(model.planInfos().size(), 1);
    QCOMPARE(model.planInfo(2).label, QStringLiteral("Closed"));
    QCOMPARE(model.planInfo(2).color, QColor(Qt::red));
}

void TestBkCalendarModel::shouldRequestAnewAfterClear()
{
    BkCalendarModel model;
    const BkCalendarResource ann(3);
    model.items(Day, ann);
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    model.items(Day, ann);
    QCOMPARE(loads.count(), 0);

    model.clear();
    QVERIFY(model.loadedRanges().isEmpty());
    model.items(Day, ann);

    QCOMPARE(loads.count(), 1);
    QCOMPARE(request(loads, 0), qMakePair(Day.addDays(-8), Day.addDays(8)));
}

void TestBkCalendarModel::shouldResetBeforeRemovingOnClear()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    BkCalendarItemWidget widget(item);
    model.addItem(makePlan(Day, BkCalendarResource(3)));
    int itemsAtReset = -1;
    connect(&model, &BkCalendarModel::reset, this, [&] { itemsAtReset = model.allItems().size(); });
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy plansRemoved(&model, &BkCalendarModel::planRemoved);

    model.clear();

    QCOMPARE(itemsAtReset, 1);
    QVERIFY(model.allItems().isEmpty());
    QVERIFY(!model.findId(1));
    QCOMPARE(removed.count(), 0);
    QCOMPARE(plansRemoved.count(), 0);
}

void TestBkCalendarModel::shouldLeaveUnsavedListAndTimerAloneOnClear()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Unsaved"));
    model.commit();

    model.clear();

    // The host must not clear with unsaved bookings: the list keeps what was on it.
    QCOMPARE(model.invalidItems().size(), 1);
    QVERIFY(model.commitTimer()->isActive());
    const_cast<QTimer*>(model.commitTimer())->stop();
}

void TestBkCalendarModel::shouldCreateEmptyRangeWhenAskedWhetherLoaded()
{
    BkCalendarModel model;
    const BkCalendarResource ann(3);
    QSignalSpy loads(&model, &BkCalendarModel::loadData);

    QVERIFY(!model.loaded(ann, Day));
    QVERIFY(model.loadedRanges().contains(ann));
    QVERIFY(!model.loadedRanges().value(ann).first.isValid());
    QVERIFY(!model.loadedRanges().value(ann).second.isValid());
    QCOMPARE(loads.count(), 0);

    // The key now counts as known: the invalid first date stays, and the request starts with it.
    model.items(Day, ann);
    QCOMPARE(loads.count(), 1);
    QVERIFY(!loads.at(0).at(0).toDate().isValid());
    QCOMPARE(loads.at(0).at(1).toDate(), Day.addDays(8));
    QVERIFY(!model.loadedRanges().value(ann).first.isValid());
    QCOMPARE(model.loadedRanges().value(ann).second, Day.addDays(8));
}

// A read lets a host in only through a load request that some slot hears.
void TestBkCalendarModel::shouldTellWhetherAReadLetsAHostIn()
{
    BkCalendarModel model;
    const BkCalendarResource ann(3);
    QVERIFY(!model.covers(ann, Day));
    QVERIFY(!model.asksHost(ann, Day));

    int heard = 0;
    QMetaObject::Connection listener =
        connect(&model, &BkCalendarModel::loadData, this, [&heard] { ++heard; });
    QVERIFY(model.asksHost(ann, Day));
    QCOMPARE(heard, 0);
    model.items(Day, ann);
    QCOMPARE(heard, 1);
    QVERIFY(!model.asksHost(ann, Day));
    QVERIFY(model.asksHost(ann, Day.addDays(9)));

    disconnect(listener);
    QVERIFY(!model.asksHost(ann, Day.addDays(9)));

    // Behind a relay, as the form passes the requests on, what hears the relay counts.
    BkCalendarModel relay;
    bool relayHeard = false;
    const QMetaObject::Connection passing =
        connect(&model, &BkCalendarModel::loadData, &relay, &BkCalendarModel::loadData);
    model.setLoadRelay(passing, [&relayHeard] { return relayHeard; });
    QVERIFY(!model.asksHost(ann, Day.addDays(9)));
    relayHeard = true;
    QVERIFY(model.asksHost(ann, Day.addDays(9)));
    relayHeard = false;
    listener = connect(&model, &BkCalendarModel::loadData, this, [&heard] { ++heard; });
    QVERIFY(model.asksHost(ann, Day.addDays(9)));
    disconnect(listener);
    QVERIFY(!model.asksHost(ann, Day.addDays(9)));
    // A relay that no longer passes the requests on is not asked; what hears the model itself counts.
    disconnect(passing);
    relayHeard = true;
    QVERIFY(!model.asksHost(ann, Day.addDays(9)));
    listener = connect(&model, &BkCalendarModel::loadData, this, [&heard] { ++heard; });
    relayHeard = false;
    QVERIFY(model.asksHost(ann, Day.addDays(9)));
}

void TestBkCalendarModel::shouldTellWhetherItHasADayWithoutAsking()
{
    // covers answers exactly when a read would go without a load request, and changes nothing.
    BkCalendarModel model;
    const BkCalendarResource ann(3);
    const BkCalendarResource room(3, QString(), 1);
    QSignalSpy loads(&model, &BkCalendarModel::loadData);

    QVERIFY(!model.covers(ann, Day));
    QVERIFY(model.loadedRanges().isEmpty());
    model.items(Day, ann);
    QCOMPARE(loads.count(), 1);
    QCOMPARE(request(loads, 0), qMakePair(Day.addDays(-8), Day.addDays(8)));

    for (int offset = -10; offset <= 10; ++offset)
        QCOMPARE(model.covers(ann, Day.addDays(offset)), qAbs(offset) <= 8);
    QCOMPARE(loads.count(), 1);
    // Each read, which may widen the range, asks exactly when covers said no just before.
    for (int offset : {3, 9, -12, 10, 30, -9, -30}) {
        const QDate date = Day.addDays(offset);
        const bool covered = model.covers(ann, date);
        const int before = loads.count();
        model.plans(date, ann);
        QCOMPARE(loads.count() == before, covered);
        QVERIFY(model.covers(ann, date));
    }
    // Another key of the same id is a day of its own.
    QVERIFY(!model.covers(room, Day));

    // After loaded() left an empty range, covers still tells that a read asks.
    BkCalendarModel other;
    QSignalSpy otherLoads(&other, &BkCalendarModel::loadData);
    QVERIFY(!other.loaded(ann, Day));
    QVERIFY(!other.covers(ann, Day));
    other.items(Day, ann);
    QCOMPARE(otherLoads.count(), 1);
    QVERIFY(other.covers(ann, Day));
}

void TestBkCalendarModel::shouldTellOnlyItemsWithIdOfToolTipSetting()
{
    BkCalendarModel model;
    auto* withId = makeItem(1, 3, QVariant());
    auto* withoutId = makeItem(QVariant(), 3, QVariant());
    withId->setToolTip(QStringLiteral("One"));
    withoutId->setToolTip(QStringLiteral("Two"));
    BkCalendarItemWidget first(withId);
    BkCalendarItemWidget second(withoutId);
    QVERIFY(model.addItem(withId));
    QVERIFY(model.addItem(withoutId));
    QCOMPARE(first.toolTip(), QStringLiteral("One"));
    QCOMPARE(second.toolTip(), QStringLiteral("Two"));

    model.setToolTipsEnabled(false);

    QVERIFY(!model.toolTipsEnabled());
    QVERIFY(first.toolTip().isEmpty());
    QCOMPARE(second.toolTip(), QStringLiteral("Two"));

    // Added again, the item without id takes the setting.
    model.removeItem(withoutId);
    QVERIFY(model.addItem(withoutId));
    QVERIFY(second.toolTip().isEmpty());
}

void TestBkCalendarModel::shouldRefuseANullBookingOrPlan()
{
    BkCalendarModel model;
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy planned(&model, &BkCalendarModel::planAdded);
    QVERIFY(!model.addItem(static_cast<BkCalendarItem*>(nullptr)));
    model.addItem(static_cast<BkCalendarPlan*>(nullptr));
    QCOMPARE(added.count(), 0);
    QCOMPARE(planned.count(), 0);
    QVERIFY(model.allItems().isEmpty());
    // The store still works as before.
    QVERIFY(model.addItem(makeItem(1, 3, QVariant())));
    QCOMPARE(added.count(), 1);
}

void TestBkCalendarModel::shouldRelayUpdateWithoutSignal()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    BkCalendarItemWidget widget(item);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    model.updateItem(item);
    model.updateItem(nullptr);
    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarModel::shouldResetWhenDestroyed()
{
    auto* model = new BkCalendarModel;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model->addItem(item));
    BkCalendarItemWidget widget(item);
    int resets = 0;
    bool saved = false;
    connect(model, &BkCalendarModel::reset, this, [&] { ++resets; });
    connect(model, &BkCalendarModel::saveItems, this, [&] { saved = true; });
    item->setTitle(QStringLiteral("Lost"));
    model->commit();

    delete model;

    QCOMPARE(resets, 1);
    QVERIFY(!saved);
}

void TestBkCalendarModel::shouldDeliverLoadRequestsThroughQueuedConnections()
{
    BkCalendarModel model;
    QList<BkCalendarResource> asked;
    QList<QList<BkCalendarItem*>> batches;
    QObject receiver;
    connect(
        &model, &BkCalendarModel::loadData, &receiver,
        [&](const QDate&, const QDate&, const BkCalendarResource& resource) { asked.append(resource); },
        Qt::QueuedConnection);
    connect(
        &model, &BkCalendarModel::saveItems, &receiver,
        [&](const QList<BkCalendarItem*>& items) { batches.append(items); }, Qt::QueuedConnection);
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed"));

    model.items(Day, BkCalendarResource(3, QStringLiteral("Ann")));
    model.commitToDatabase();

    QTRY_COMPARE_WITH_TIMEOUT(asked.size(), 1, 5000);
    QCOMPARE(asked.at(0).name, QStringLiteral("Ann"));
    QTRY_COMPARE_WITH_TIMEOUT(batches.size(), 1, 5000);
    QCOMPARE(batches.at(0), QList<BkCalendarItem*>{item});
}

QTEST_MAIN(TestBkCalendarModel)
#include "tst_bkcalendarmodel.moc"
