// The store's lookups by day and key, by id and by loaded range answer exactly as its maps do, through
// every change of the store: keys seen for the first time, removals, moves, copies that a caller
// holds of the maps, and clear().

#include "BkCalendarItem.h"
#include "BkCalendarModel.h"
#include "BkStoreBooking.h"

#include <QHash>
#include <QRandomGenerator>
#include <QSignalSpy>

#include <QtTest>

#include <memory>

namespace {

using BkStoreBooking::Day;
using BkStoreBooking::makeItem;

BkCalendarResource user(const QVariant& id)
{
    return BkCalendarResource(id, QString(), 0);
}

BkCalendarResource resource(const QVariant& id)
{
    return BkCalendarResource(id, QString(), 1);
}

// What a day's list of one key holds by the store's own account: its bookings in the order of adding,
// which is the order of filing (a move files a booking again, at the end of both).
QList<BkCalendarItem*> filed(const BkCalendarModel& model, const QDate& date, const BkCalendarResource& key)
{
    QList<BkCalendarItem*> items;
    for (BkCalendarItem* item : model.allItems())
        if (item->date() == date && (key.type == 0 ? item->userId() : item->resourceId()) == key.id)
            items.append(item);
    return items;
}

QList<BkCalendarItem*> inMap(const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& map,
                             const QDate& date, const QVariant& key)
{
    return map.value(date).value(key);
}

} // namespace

class TestBkCalendarStore : public QObject
{
    Q_OBJECT

private slots:
    void shouldAnswerAsItsMapsThroughRandomChanges();
    void shouldFindListOfKeyOrDaySeenForTheFirstTime();
    void shouldFindListsOfKeyWithDaysFarApart();
    void shouldTakeIntAndLongLongIdsForOneKey();
    void shouldAnswerAsItsMapsOnceAnotherKindOfKeyIsFiled();
    void shouldFollowListOfNumberKeyChangedThroughEqualKeyOfAnotherKind();
    void shouldFindBookingsWithoutValidDate();
    void shouldFollowItsOwnMapsWhileCallerHoldsCopies();
    void shouldForgetEveryListOnClear();
    void shouldFindByIdThroughRandomAddsAndRemovals();
    void shouldKeepIdHashReaderInStepOnceAskedFor();
    void shouldFindBookingUnderOldAndNewIdAfterHostWroteIt();
    void shouldTakeIdsWithSameIntegerForOneLoadedRange();
    void shouldForgetLoadedRangesOnClear();
    void shouldWidenRangeCreatedByLoaded();
};

void TestBkCalendarStore::shouldAnswerAsItsMapsThroughRandomChanges()
{
    BkCalendarModel model;
    QRandomGenerator random(7);
    const int keys = 6;
    const int days = 12;
    // Ids of both kinds that a host hands in: ints, and long longs from a database driver.
    auto key = [&random](int number) {
        return random.bounded(2) ? QVariant(number) : QVariant(qlonglong(number));
    };
    QList<BkCalendarItem*> items;
    int nextId = 1;
    for (int step = 0; step < 3000; ++step) {
        const int action = int(random.bounded(10));
        if (action < 4 || items.isEmpty()) {
            auto* item = makeItem(nextId++, key(int(random.bounded(keys)) + 1),
                                  key(int(random.bounded(keys)) + 1), Day.addDays(int(random.bounded(days))));
            QVERIFY(model.addItem(item));
            items.append(item);
        } else {
            BkCalendarItem* item = items.at(int(random.bounded(items.size())));
            const bool silent = random.bounded(2);
            switch (action) {
            case 4:
                model.removeItem(item);
                items.removeOne(item);
                delete item;
                break;
            case 5:
            case 6:
                item->setDate(Day.addDays(int(random.bounded(days))), silent);
                break;
            case 7:
                item->setUserId(key(int(random.bounded(keys)) + 1), silent);
                break;
            case 8:
                item->setResourceId(key(int(random.bounded(keys)) + 1), silent);
                break;
            default:
                item->rollback();
                break;
            }
        }
        if (step % 50 != 0)
            continue;
        for (int d = -1; d <= days; ++d) {
            for (int k = 0; k <= keys + 1; ++k) {
                const QDate date = Day.addDays(d);
                for (const BkCalendarResource& asked : {user(k), resource(k), user(qlonglong(k))}) {
                    const QList<BkCalendarItem*> found = model.items(date, asked);
                    QCOMPARE(found, filed(model, date, asked));
                    const auto& map = asked.type == 0 ? model.userItems() : model.resourceItems();
                    QCOMPARE(found, inMap(map, date, asked.id));
                }
            }
        }
    }
    QVERIFY(model.userItems().size() > 1);
}

void TestBkCalendarStore::shouldFindListOfKeyOrDaySeenForTheFirstTime()
{
    BkCalendarModel model;
    QVERIFY(model.items(Day, user(4)).isEmpty());
    auto* first = makeItem(1, 4, QVariant());
    model.addItem(first);
    QCOMPARE(model.items(Day, user(4)), QList<BkCalendarItem*>{first});

    // A day before the first one of the key, and one well after it.
    auto* earlier = makeItem(2, 4, QVariant(), Day.addDays(-30));
    auto* later = makeItem(3, 4, QVariant(), Day.addDays(40));
    model.addItem(earlier);
    model.addItem(later);
    QCOMPARE(model.items(Day.addDays(-30), user(4)), QList<BkCalendarItem*>{earlier});
    QCOMPARE(model.items(Day.addDays(40), user(4)), QList<BkCalendarItem*>{later});
    QCOMPARE(model.items(Day, user(4)), QList<BkCalendarItem*>{first});
    QVERIFY(model.items(Day.addDays(1), user(4)).isEmpty());
    QVERIFY(model.items(Day.addDays(-31), user(4)).isEmpty());
    QVERIFY(model.items(Day.addDays(41), user(4)).isEmpty());

    // A booking moved to a day that its key has not had yet.
    first->setDate(Day.addDays(10));
    QVERIFY(model.items(Day, user(4)).isEmpty());
    QCOMPARE(model.items(Day.addDays(10), user(4)), QList<BkCalendarItem*>{first});
    // The emptied list stays in the map, empty.
    QVERIFY(model.userItems().value(Day).contains(4));
}

void TestBkCalendarStore::shouldFindListsOfKeyWithDaysFarApart()
{
    BkCalendarModel model;
    QList<BkCalendarItem*> items;
    // One booking every three years: far too thin for an array of days.
    for (int i = 0; i < 6; ++i) {
        auto* item = makeItem(i + 1, 9, 9, Day.addYears(3 * i - 9));
        model.addItem(item);
        items.append(item);
    }
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(model.items(Day.addYears(3 * i - 9), user(9)), QList<BkCalendarItem*>{items.at(i)});
        QCOMPARE(model.items(Day.addYears(3 * i - 9), resource(qlonglong(9))),
                 QList<BkCalendarItem*>{items.at(i)});
        QVERIFY(model.items(Day.addYears(3 * i - 9).addDays(1), user(9)).isEmpty());
    }
    items.at(2)->setDate(Day.addYears(20));
    QVERIFY(model.items(Day.addYears(-3), user(9)).isEmpty());
    QCOMPARE(model.items(Day.addYears(20), user(9)), QList<BkCalendarItem*>{items.at(2)});
    model.removeItem(items.at(3));
    QVERIFY(model.items(Day, user(9)).isEmpty());
    delete items.at(3);
}

void TestBkCalendarStore::shouldTakeIntAndLongLongIdsForOneKey()
{
    BkCalendarModel model;
    auto* asInt = makeItem(1, 5, QVariant());
    auto* asLongLong = makeItem(2, qlonglong(5), QVariant());
    model.addItem(asInt);
    model.addItem(asLongLong);
    const QList<BkCalendarItem*> both{asInt, asLongLong};
    QCOMPARE(model.items(Day, user(5)), both);
    QCOMPARE(model.items(Day, user(qlonglong(5))), both);
    // The map keeps the key it met first.
    QCOMPARE(model.userItems().value(Day).firstKey().userType(), int(QMetaType::Int));

    model.removeItem(asInt);
    QCOMPARE(model.items(Day, user(qlonglong(5))), QList<BkCalendarItem*>{asLongLong});
    delete asInt;
    // A long long beyond the range of int is a key of its own.
    auto* large = makeItem(3, qlonglong(1) << 40, QVariant());
    model.addItem(large);
    QCOMPARE(model.items(Day, user(qlonglong(1) << 40)), QList<BkCalendarItem*>{large});
    QCOMPARE(model.items(Day, user(5)), QList<BkCalendarItem*>{asLongLong});
}

void TestBkCalendarStore::shouldAnswerAsItsMapsOnceAnotherKindOfKeyIsFiled()
{
    BkCalendarModel model;
    auto* byNumber = makeItem(1, 3, QVariant());
    model.addItem(byNumber);
    QCOMPARE(model.items(Day, user(3)), QList<BkCalendarItem*>{byNumber});

    auto* byName = makeItem(2, QStringLiteral("desk"), QVariant());
    auto* byReal = makeItem(3, 3.5, QVariant());
    model.addItem(byName);
    model.addItem(byReal);
    auto* more = makeItem(4, 3, QVariant());
    model.addItem(more);

    for (const QVariant& id :
         {QVariant(3), QVariant(qlonglong(3)), QVariant(3.0), QVariant(3.5), QVariant(QStringLiteral("desk")),
          QVariant(QStringLiteral("3")), QVariant(4)}) {
        QCOMPARE(model.items(Day, user(id)), inMap(model.userItems(), Day, id));
        QCOMPARE(model.items(Day.addDays(1), user(id)), inMap(model.userItems(), Day.addDays(1), id));
    }
    QCOMPARE(model.items(Day, user(3)), (QList<BkCalendarItem*>{byNumber, more}));
    QCOMPARE(model.items(Day, user(QStringLiteral("desk"))), QList<BkCalendarItem*>{byName});

    // A real that the map takes for the same key as an integer: both lookups find its list.
    auto* byWholeReal = makeItem(6, 5.0, QVariant());
    model.addItem(byWholeReal);
    QCOMPARE(model.items(Day, user(5)), inMap(model.userItems(), Day, 5.0));
    QCOMPARE(model.items(Day, user(qlonglong(5))), QList<BkCalendarItem*>{byWholeReal});

    // After a clear the map holds numbers only again.
    model.clear();
    auto* again = makeItem(5, 3, QVariant());
    model.addItem(again);
    QCOMPARE(model.items(Day, user(qlonglong(3))), QList<BkCalendarItem*>{again});
}

void TestBkCalendarStore::shouldFollowListOfNumberKeyChangedThroughEqualKeyOfAnotherKind()
{
    BkCalendarModel model;
    auto* byNumber = makeItem(1, 5, 5);
    model.addItem(byNumber);
    // The map files a whole real under the integer key it equals.
    auto* byReal = makeItem(2, 5.0, 5.0);
    model.addItem(byReal);
    QCOMPARE(model.userItems().value(Day).size(), 1);
    QCOMPARE(model.items(Day, user(5)), (QList<BkCalendarItem*>{byNumber, byReal}));

    model.removeItem(byReal);
    QCOMPARE(model.items(Day, user(5)), QList<BkCalendarItem*>{byNumber});
    QCOMPARE(model.items(Day, resource(qlonglong(5))), QList<BkCalendarItem*>{byNumber});
    QCOMPARE(model.items(Day, user(5)), inMap(model.userItems(), Day, 5));
    delete byReal;

    byNumber->setUserId(5.0);
    byNumber->setDate(Day.addDays(1), true);
    QVERIFY(model.items(Day, user(5)).isEmpty());
    QCOMPARE(model.items(Day.addDays(1), user(5)), QList<BkCalendarItem*>{byNumber});
}

void TestBkCalendarStore::shouldFindBookingsWithoutValidDate()
{
    BkCalendarModel model;
    auto* undated = makeItem(1, 6, 6, QDate());
    auto* dated = makeItem(2, 6, 6);
    model.addItem(undated);
    model.addItem(dated);
    QCOMPARE(model.items(QDate(), user(6)), QList<BkCalendarItem*>{undated});
    QCOMPARE(model.items(QDate(), resource(6)), QList<BkCalendarItem*>{undated});
    QCOMPARE(model.items(Day, user(6)), QList<BkCalendarItem*>{dated});
    undated->setDate(Day);
    QVERIFY(model.items(QDate(), user(6)).isEmpty());
    QCOMPARE(model.items(Day, user(6)), (QList<BkCalendarItem*>{dated, undated}));
}

void TestBkCalendarStore::shouldFollowItsOwnMapsWhileCallerHoldsCopies()
{
    BkCalendarModel model;
    auto* ann = makeItem(1, 1, 8);
    auto* bob = makeItem(2, 2, 8);
    model.addItem(ann);
    model.addItem(bob);
    QCOMPARE(model.items(Day, user(1)), QList<BkCalendarItem*>{ann});

    // Copies share the maps' nodes until one side writes.
    const auto users = model.userItems();
    const auto usersOfDay = model.userItems().value(Day);
    const auto resourcesOfDay = model.resourceItems().value(Day);

    auto* cid = makeItem(3, 1, 8);
    model.addItem(cid);
    QCOMPARE(model.items(Day, user(1)), (QList<BkCalendarItem*>{ann, cid}));
    QCOMPARE(model.items(Day, resource(8)), (QList<BkCalendarItem*>{ann, bob, cid}));
    bob->setDate(Day.addDays(1), true);
    QCOMPARE(model.items(Day, user(2)), QList<BkCalendarItem*>());
    QCOMPARE(model.items(Day.addDays(1), user(2)), QList<BkCalendarItem*>{bob});
    QCOMPARE(model.items(Day, resource(8)), (QList<BkCalendarItem*>{ann, cid}));
    model.removeItem(ann);
    QCOMPARE(model.items(Day, user(1)), QList<BkCalendarItem*>{cid});
    QCOMPARE(model.items(Day, user(1)), inMap(model.userItems(), Day, 1));

    // The copies kept what they held.
    QCOMPARE(users.value(Day).value(1), QList<BkCalendarItem*>{ann});
    QCOMPARE(users.value(Day).value(2), QList<BkCalendarItem*>{bob});
    QVERIFY(!users.contains(Day.addDays(1)));
    QCOMPARE(usersOfDay.value(1), QList<BkCalendarItem*>{ann});
    QCOMPARE(resourcesOfDay.value(8), (QList<BkCalendarItem*>{ann, bob}));
    delete ann;

    // Once the copies are gone, the store goes on as before.
    auto* dan = makeItem(4, 1, 8);
    model.addItem(dan);
    QCOMPARE(model.items(Day, user(1)), (QList<BkCalendarItem*>{cid, dan}));
    QCOMPARE(model.items(Day, resource(8)), (QList<BkCalendarItem*>{cid, dan}));
}

void TestBkCalendarStore::shouldForgetEveryListOnClear()
{
    BkCalendarModel model;
    for (int i = 0; i < 20; ++i)
        model.addItem(makeItem(i + 1, i % 3 + 1, i % 2 + 1, Day.addDays(i % 4)));
    QCOMPARE(model.items(Day, user(1)).size(), 2);
    model.clear();
    QVERIFY(model.items(Day, user(1)).isEmpty());
    QVERIFY(model.items(Day, resource(1)).isEmpty());

    auto* fresh = makeItem(1, 1, 1);
    model.addItem(fresh);
    QCOMPARE(model.items(Day, user(1)), QList<BkCalendarItem*>{fresh});
    QCOMPARE(model.items(Day, resource(1)), QList<BkCalendarItem*>{fresh});
    QVERIFY(model.items(Day.addDays(1), user(1)).isEmpty());
}

void TestBkCalendarStore::shouldFindByIdThroughRandomAddsAndRemovals()
{
    BkCalendarModel model;
    QHash<int, BkCalendarItem*> expected;
    QRandomGenerator random(11);
    // Ids that share their low bits, negative ones and zero crowd the same places of a table.
    auto randomId = [&random]() {
        const int kind = int(random.bounded(3));
        const int number = int(random.bounded(400));
        return kind == 0 ? number : kind == 1 ? number * 4096 : -number;
    };
    for (int step = 0; step < 6000; ++step) {
        const int id = randomId();
        if (random.bounded(3) < 2) {
            auto* item = makeItem(id, QVariant(), QVariant());
            const bool added = model.addItem(item);
            QCOMPARE(added, !expected.contains(id));
            if (added)
                expected.insert(id, item);
            else
                delete item;
        } else if (BkCalendarItem* item = expected.take(id)) {
            model.removeItem(item);
            delete item;
        }
        if (step % 200 == 0) {
            for (int probe = -400; probe < 400; ++probe) {
                QCOMPARE(model.findId(probe), expected.value(probe));
                QCOMPARE(model.findId(probe * 4096), expected.value(probe * 4096));
                QCOMPARE(model.containsItem(probe), expected.contains(probe));
            }
        }
    }
    QCOMPARE(model.idHash(), expected);
}

void TestBkCalendarStore::shouldKeepIdHashReaderInStepOnceAskedFor()
{
    BkCalendarModel model;
    auto* ann = makeItem(1, 1, QVariant());
    model.addItem(ann);
    const QHash<int, BkCalendarItem*>& hash = model.idHash();
    QCOMPARE(hash, (QHash<int, BkCalendarItem*>{{1, ann}}));

    auto* bob = makeItem(2, 1, QVariant());
    model.addItem(bob);
    QCOMPARE(hash, (QHash<int, BkCalendarItem*>{{1, ann}, {2, bob}}));
    model.removeItem(ann);
    QCOMPARE(hash, (QHash<int, BkCalendarItem*>{{2, bob}}));
    delete ann;
    bob->id = 20;
    bob->setTitle(QStringLiteral("Saved"));
    QCOMPARE(hash, (QHash<int, BkCalendarItem*>{{2, bob}, {20, bob}}));
    model.clear();
    QVERIFY(hash.isEmpty());
    QVERIFY(model.idHash().isEmpty());
    auto* cid = makeItem(3, 1, QVariant());
    model.addItem(cid);
    QCOMPARE(hash, (QHash<int, BkCalendarItem*>{{3, cid}}));
}

void TestBkCalendarStore::shouldFindBookingUnderOldAndNewIdAfterHostWroteIt()
{
    BkCalendarModel model;
    auto* item = makeItem(QVariant(), 1, QVariant());
    model.addItem(item);
    QVERIFY(!model.containsItem(7));
    item->id = 7;
    QVERIFY(!model.findId(7));
    item->setTitle(QStringLiteral("Saved"));
    QCOMPARE(model.findId(7), item);
    item->id = 8;
    item->setTitle(QStringLiteral("Saved again"));
    QCOMPARE(model.findId(7), item);
    QCOMPARE(model.findId(8), item);
    // Removal takes the present id only.
    model.removeItem(item);
    QCOMPARE(model.findId(7), item);
    QVERIFY(!model.findId(8));
    // What stands under the old id goes with clear(), not the booking, which the caller owns now.
    model.clear();
    QVERIFY(!model.findId(7));
    delete item;
}

void TestBkCalendarStore::shouldTakeIdsWithSameIntegerForOneLoadedRange()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    model.items(Day, user(7));
    model.items(Day, user(qlonglong(7)));
    model.items(Day, user(QStringLiteral("7")));
    QCOMPARE(loads.count(), 1);
    // Same id, other type: a key of its own.
    model.items(Day, resource(7));
    QCOMPARE(loads.count(), 2);
    // An id that is no number reads as 0, as for the map.
    model.plans(Day, user(QStringLiteral("desk")));
    model.plans(Day, user(0));
    QCOMPARE(loads.count(), 3);
    model.items(Day.addDays(9), user(QStringLiteral("7")));
    QCOMPARE(loads.count(), 4);
    QCOMPARE(model.loadedRanges().value(user(7)), qMakePair(Day.addDays(-8), Day.addDays(17)));
    model.items(Day.addDays(-9), user(7));
    QCOMPARE(loads.count(), 5);
    QCOMPARE(model.loadedRanges().value(user(7)), qMakePair(Day.addDays(-17), Day.addDays(17)));
    QCOMPARE(model.loadedRanges().size(), 3);
}

void TestBkCalendarStore::shouldForgetLoadedRangesOnClear()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    model.items(Day, user(7));
    model.clear();
    model.items(Day, user(7));
    QCOMPARE(loads.count(), 2);
    model.items(Day.addDays(8), user(7));
    QCOMPARE(loads.count(), 2);
}

void TestBkCalendarStore::shouldWidenRangeCreatedByLoaded()
{
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    QVERIFY(!model.loaded(user(7), Day));
    model.items(Day, user(qlonglong(7)));
    QCOMPARE(loads.count(), 1);
    QVERIFY(!loads.at(0).at(0).toDate().isValid());
    QCOMPARE(loads.at(0).at(1).toDate(), Day.addDays(8));
    model.items(Day.addDays(-100), user(7));
    QCOMPARE(loads.count(), 1);
}

QTEST_GUILESS_MAIN(TestBkCalendarStore)
#include "tst_bkcalendarstore.moc"
