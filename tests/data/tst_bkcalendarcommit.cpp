#include "BkCalendarItem.h"
#include "BkCalendarModel.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

namespace {

const QDate Day(2024, 3, 11);

BkCalendarItem* makeItem(const QVariant& id, const QVariant& userId)
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setDate(Day);
    item->setUserId(userId);
    item->setTime(QTime(8, 0), QTime(9, 0));
    return item;
}

QList<BkCalendarItem*> batch(const QSignalSpy& spy, int index)
{
    return spy.at(index).at(0).value<QList<BkCalendarItem*>>();
}

QList<BkCalendarItem*> changedItems(const QSignalSpy& spy)
{
    QList<BkCalendarItem*> result;
    for (const QList<QVariant>& arguments : spy)
        result.append(arguments.at(0).value<BkCalendarItem*>());
    return result;
}

} // namespace

class TestBkCalendarCommit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void shouldHaveIdleSingleShotTimerOfOneSecond();
    void shouldEmitNothingWhenTimerFiresOnEmptyList();
    void shouldSaveBatchWhenTimerFires();
    void shouldRestartTimerOnSecondCommit();
    void shouldSaveAtOnceWhileTimerRuns();
    void shouldSaveNewerChangesWhenTimerFiresAfterImmediateSave();
    void shouldListItemChangedTwiceOnceAtFirstPlace();
    void shouldMoveItemToEndOfBatchWhenKeyChanges();
    void shouldNotifyWithoutListingOnInvalidateFalse();
    void shouldSignalChangeOnItemValidForItemNotListed();
    void shouldRollBackFirstAndDropSecondOfTwoUnsaved();
    void shouldRollBackEveryOtherOfThreeUnsaved();
    void shouldTellOneUnsavedItemTwiceOnRollback();
    void shouldDoNothingOnRollbackOfEmptyList();
    void shouldNotTellOfABookingThatItsRollbackDeleted();
    void shouldFindItemByLateIdOnlyAfterNextChange();
    void shouldCountChangeFromSaveSlotAsNew();
    void shouldNotCountBlockedChangeFromSaveSlot();
    void shouldIgnoreCommitAskedForWhileTheModelGoes();
    void shouldListNoBookingForANullItem();
};

void TestBkCalendarCommit::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestBkCalendarCommit::shouldHaveIdleSingleShotTimerOfOneSecond()
{
    BkCalendarModel model;
    const QTimer* timer = model.commitTimer();
    QVERIFY(timer);
    QVERIFY(!timer->isActive());
    QVERIFY(timer->isSingleShot());
    QCOMPARE(timer->interval(), 1000);

    model.commit();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 1000);
}

void TestBkCalendarCommit::shouldEmitNothingWhenTimerFiresOnEmptyList()
{
    BkCalendarModel model;
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    QSignalSpy timeouts(model.commitTimer(), &QTimer::timeout);

    model.commit();
    QVERIFY(model.commitTimer()->isActive());

    QTRY_COMPARE_WITH_TIMEOUT(timeouts.count(), 1, 5000);
    QVERIFY(!model.commitTimer()->isActive());
    QCOMPARE(saved.count(), 0);
}

void TestBkCalendarCommit::shouldSaveBatchWhenTimerFires()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3);
    auto* second = makeItem(2, 3);
    auto* untouched = makeItem(3, 3);
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    QVERIFY(model.addItem(untouched));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    second->setTime(QTime(10, 0), QTime(11, 0));
    first->setTitle(QStringLiteral("Moved"));
    first->commit(false);
    QCOMPARE(saved.count(), 0);
    QVERIFY(model.commitTimer()->isActive());

    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 5000);
    QCOMPARE(batch(saved, 0), (QList<BkCalendarItem*>{second, first}));
    QVERIFY(model.invalidItems().isEmpty());
    QVERIFY(!model.isInvalid(first));
    // The saved fields keep their values until the next change.
    QCOMPARE(second->savedStart(), QTime(10, 0));
}

void TestBkCalendarCommit::shouldRestartTimerOnSecondCommit()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    item->setTitle(QStringLiteral("First"));

    model.commit();
    // Sleeping keeps the event loop from running, so the timer cannot fire in between. A coarse timer
    // may end up to 5 % late, so after 500 ms at most 550 ms are left.
    QTest::qSleep(500);
    const int before = model.commitTimer()->remainingTime();
    QVERIFY2(before <= 600, qPrintable(QString::number(before)));
    item->setTitle(QStringLiteral("Second"));
    model.commit();
    const int after = model.commitTimer()->remainingTime();
    QVERIFY2(after > before, qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(after)));
    QVERIFY(model.commitTimer()->isActive());
    QCOMPARE(saved.count(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 5000);
    QCOMPARE(batch(saved, 0), QList<BkCalendarItem*>{item});
    QTRY_VERIFY_WITH_TIMEOUT(!model.commitTimer()->isActive(), 5000);
    QCOMPARE(saved.count(), 1);
}

void TestBkCalendarCommit::shouldSaveAtOnceWhileTimerRuns()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    QSignalSpy timeouts(model.commitTimer(), &QTimer::timeout);
    item->setTitle(QStringLiteral("Changed"));
    model.commit();

    model.commitToDatabase();

    QCOMPARE(saved.count(), 1);
    QCOMPARE(batch(saved, 0), QList<BkCalendarItem*>{item});
    QVERIFY(model.invalidItems().isEmpty());
    // The timer is not stopped; when it fires it finds nothing to save.
    QVERIFY(model.commitTimer()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(timeouts.count(), 1, 5000);
    QCOMPARE(saved.count(), 1);
}

void TestBkCalendarCommit::shouldSaveNewerChangesWhenTimerFiresAfterImmediateSave()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3);
    auto* second = makeItem(2, 3);
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    first->setTitle(QStringLiteral("Changed"));
    model.commit();
    first->commit(true);
    QCOMPARE(saved.count(), 1);

    second->setTitle(QStringLiteral("Later"));

    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 2, 5000);
    QCOMPARE(batch(saved, 1), QList<BkCalendarItem*>{second});
}

void TestBkCalendarCommit::shouldListItemChangedTwiceOnceAtFirstPlace()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3);
    auto* second = makeItem(2, 3);
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    first->setTitle(QStringLiteral("One"));
    second->setTitle(QStringLiteral("Two"));
    first->setTime(QTime(12, 0), QTime(13, 0));
    model.commitToDatabase();

    QCOMPARE(saved.count(), 1);
    QCOMPARE(batch(saved, 0), (QList<BkCalendarItem*>{first, second}));
}

void TestBkCalendarCommit::shouldMoveItemToEndOfBatchWhenKeyChanges()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3);
    auto* second = makeItem(2, 3);
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    first->setTitle(QStringLiteral("One"));
    second->setTitle(QStringLiteral("Two"));
    first->setUserId(4, true);
    model.commitToDatabase();

    QCOMPARE(saved.count(), 1);
    QCOMPARE(batch(saved, 0), (QList<BkCalendarItem*>{second, first}));
}

void TestBkCalendarCommit::shouldNotifyWithoutListingOnInvalidateFalse()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    item->invalidate(false);

    QCOMPARE(changedItems(changed), QList<BkCalendarItem*>{item});
    QVERIFY(model.invalidItems().isEmpty());
    model.commitToDatabase();
    QCOMPARE(saved.count(), 0);
}

void TestBkCalendarCommit::shouldSignalChangeOnItemValidForItemNotListed()
{
    BkCalendarModel model;
    auto* listed = makeItem(1, 3);
    auto* clean = makeItem(2, 3);
    QVERIFY(model.addItem(listed));
    QVERIFY(model.addItem(clean));
    listed->setTitle(QStringLiteral("Changed"));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    model.itemValid(clean);

    QCOMPARE(changedItems(changed), QList<BkCalendarItem*>{clean});
    QCOMPARE(model.invalidItems(), QList<BkCalendarItem*>{listed});

    model.itemValid(listed);
    QCOMPARE(changedItems(changed), (QList<BkCalendarItem*>{clean, listed}));
    QVERIFY(model.invalidItems().isEmpty());
}

void TestBkCalendarCommit::shouldRollBackFirstAndDropSecondOfTwoUnsaved()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3);
    auto* second = makeItem(2, 3);
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    // Each first change while clean is the baseline; the second one is what a rollback takes back.
    first->setTime(QTime(9, 0), QTime(10, 0));
    second->setTime(QTime(9, 0), QTime(10, 0));
    first->setTime(QTime(14, 0), QTime(15, 0));
    second->setTime(QTime(14, 0), QTime(15, 0));
    QCOMPARE(model.invalidItems(), (QList<BkCalendarItem*>{first, second}));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    model.rollback();

    QCOMPARE(first->start(), QTime(9, 0));
    QCOMPARE(first->end(), QTime(10, 0));
    QCOMPARE(second->start(), QTime(14, 0));
    QCOMPARE(second->end(), QTime(15, 0));
    QVERIFY(model.invalidItems().isEmpty());
    QCOMPARE(changedItems(changed), (QList<BkCalendarItem*>{first, second}));
    // The dropped change is never saved.
    model.commitToDatabase();
    QCOMPARE(saved.count(), 0);
}

void TestBkCalendarCommit::shouldRollBackEveryOtherOfThreeUnsaved()
{
    BkCalendarModel model;
    QList<BkCalendarItem*> items;
    for (int i = 0; i < 3; ++i) {
        items.append(makeItem(i + 1, 3));
        QVERIFY(model.addItem(items.last()));
    }
    for (BkCalendarItem* item : items)
        item->setTime(QTime(9, 0), QTime(10, 0));
    for (BkCalendarItem* item : items)
        item->setTime(QTime(14, 0), QTime(15, 0));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    model.rollback();

    QCOMPARE(items.at(0)->start(), QTime(9, 0));
    QCOMPARE(items.at(1)->start(), QTime(14, 0));
    QCOMPARE(items.at(2)->start(), QTime(9, 0));
    QVERIFY(model.invalidItems().isEmpty());
    // Rolled back and told, the next one told, the last rolled back and told twice.
    QCOMPARE(changedItems(changed),
             (QList<BkCalendarItem*>{items.at(0), items.at(1), items.at(2), items.at(2)}));
}

void TestBkCalendarCommit::shouldTellOneUnsavedItemTwiceOnRollback()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    item->setTime(QTime(9, 0), QTime(10, 0));
    item->setDate(Day.addDays(2));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    model.rollback();

    QCOMPARE(item->date(), Day);
    QCOMPARE(item->start(), QTime(9, 0));
    QVERIFY(changed.count() >= 2);
    for (BkCalendarItem* told : changedItems(changed))
        QCOMPARE(told, item);
    QVERIFY(model.invalidItems().isEmpty());
}

void TestBkCalendarCommit::shouldDoNothingOnRollbackOfEmptyList()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    model.rollback();
    QCOMPARE(changed.count(), 0);
}

// The host answers the rollback's change of the only unsaved booking by taking it out and deleting it.
// The list has run out, and the booking that would be told of again is gone: nothing names it.
void TestBkCalendarCommit::shouldNotTellOfABookingThatItsRollbackDeleted()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    auto* other = makeItem(2, 3);
    QVERIFY(model.addItem(other));
    item->setDate(Day.addDays(2));
    const BkCalendarItem* const deleted = item;
    bool gone = false;
    int namedAfter = 0;
    connect(&model, &BkCalendarModel::itemChanged, this, [&](BkCalendarItem* changed) {
        if (gone) {
            namedAfter += changed == deleted;
            return;
        }
        if (changed != deleted)
            return;
        model.removeItem(changed);
        delete changed;
        gone = true;
    });

    model.rollback();

    QVERIFY(gone);
    QCOMPARE(namedAfter, 0);
    QCOMPARE(model.allItems(), QList<BkCalendarItem*>() << other);
    QVERIFY(model.invalidItems().isEmpty());
}

void TestBkCalendarCommit::shouldFindItemByLateIdOnlyAfterNextChange()
{
    BkCalendarModel model;
    auto* item = makeItem(QVariant(), 3);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("New booking"));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    connect(&model, &BkCalendarModel::saveItems, this, [](const QList<BkCalendarItem*>& items) {
        // The host gives the new row its key.
        for (BkCalendarItem* saving : items)
            saving->id = 42;
    });
    model.commitToDatabase();
    QCOMPARE(saved.count(), 1);

    QVERIFY(!model.findId(42));
    QVERIFY(!model.containsItem(42));

    item->invalidate(false);
    QCOMPARE(model.findId(42), item);
}

void TestBkCalendarCommit::shouldCountChangeFromSaveSlotAsNew()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed"));
    bool listedDuringSave = true;
    connect(&model, &BkCalendarModel::saveItems, this, [&](const QList<BkCalendarItem*>& items) {
        listedDuringSave = model.isInvalid(items.first());
        items.first()->setText(QStringLiteral("Written back"));
    });

    model.commitToDatabase();

    QVERIFY(!listedDuringSave);
    QCOMPARE(model.invalidItems(), QList<BkCalendarItem*>{item});
}

void TestBkCalendarCommit::shouldNotCountBlockedChangeFromSaveSlot()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed"));
    connect(&model, &BkCalendarModel::saveItems, this, [](const QList<BkCalendarItem*>& items) {
        items.first()->setBlocked(true);
        items.first()->setText(QStringLiteral("Written back"));
        items.first()->setBlocked(false);
    });

    model.commitToDatabase();

    QVERIFY(model.invalidItems().isEmpty());
    QCOMPARE(item->text(), QStringLiteral("Written back"));
}

void TestBkCalendarCommit::shouldIgnoreCommitAskedForWhileTheModelGoes()
{
    // A host that answers the last reset by asking for a save: the model is on its way out and its
    // timer is gone, so the request is dropped, and what is unsaved is lost as always.
    auto* model = new BkCalendarModel;
    auto* item = makeItem(1, 3);
    QVERIFY(model->addItem(item));
    item->setTitle(QStringLiteral("Changed"));
    QSignalSpy saved(model, &BkCalendarModel::saveItems);
    int resets = 0;
    connect(model, &BkCalendarModel::reset, this, [&] {
        ++resets;
        item->commit(false);
        model->commit();
    });

    delete model;

    QCOMPARE(resets, 1);
    QCOMPARE(saved.count(), 0);
}

void TestBkCalendarCommit::shouldListNoBookingForANullItem()
{
    // A host that hands in no booking: nothing goes on the unsaved list, so no save hands it on.
    BkCalendarModel model;
    auto* item = makeItem(1, 3);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed"));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);

    model.itemInvalid(nullptr, true);
    model.itemInvalid(nullptr, false);

    QCOMPARE(changed.count(), 0);
    QCOMPARE(model.invalidItems(), QList<BkCalendarItem*>{item});
    model.commitToDatabase();
    QCOMPARE(saved.count(), 1);
    QCOMPARE(batch(saved, 0), QList<BkCalendarItem*>{item});
}

QTEST_MAIN(TestBkCalendarCommit)
#include "tst_bkcalendarcommit.moc"
