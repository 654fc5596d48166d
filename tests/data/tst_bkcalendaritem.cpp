#include "BkCalendarItem.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"
#include "BkStoreBooking.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <limits>

namespace {

using BkStoreBooking::Day;
const QTime Eight(8, 0);
const QTime Nine(9, 0);
const QTime Ten(10, 0);
const QTime Eleven(11, 0);

// The store tests' booking, as a meeting.
BkCalendarItem* makeItem(const QVariant& id, const QVariant& userId, const QVariant& resourceId,
                         const QDate& date = Day)
{
    BkCalendarItem* item = BkStoreBooking::makeItem(id, userId, resourceId, date);
    item->setType(BkCalendarItem::Meeting);
    return item;
}

} // namespace

class TestBkCalendarItem : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void shouldStartEmpty();
    void shouldStripMarkupInPlainText();
    void shouldOnlyWriteFieldsWithoutModel();
    void shouldKeepSavedKeysOnSetKeysWithoutModel();
    void shouldChangeNothingOnSetDateWithPresentDate();
    void shouldMarkUnsavedOnSettingPresentValue_data();
    void shouldMarkUnsavedOnSettingPresentValue();
    void shouldLeaveSavedTimesOnSetStartAndSetEnd();
    void shouldMarkStatusChangeOnlyWhenStatusDiffers();
    void shouldAskWhetherNewStatusEqualsPresentOne_data();
    void shouldAskWhetherNewStatusEqualsPresentOne();
    void shouldWriteWithoutNotifyingOnPlainSetters();
    void shouldRollBackToFirstTimeSetWhileClean();
    void shouldTakeRollbackValueFromNewValue();
    void shouldRollBackMovedDateUserAndResource();
    void shouldMoveSilentlyWithOneItemChanged_data();
    void shouldMoveSilentlyWithOneItemChanged();
    void shouldMoveVisiblyWhenNotSilent();
    void shouldUnblockModelSignalsAfterSilentMove();
    void shouldNotNotifyWhenBlocked();
    void shouldStayOffUnsavedListWhenBlockedItemMoves();
    void shouldChangeOnlyIdOfKeyType_data();
    void shouldChangeOnlyIdOfKeyType();
    void shouldMoveSilentlyOnSetKeysWithBothIds();
    void shouldKeepSavedKeysOnSetKeysWhileUnsaved();
    void shouldDoNothingOnSetKeysWithPresentValues();
    void shouldShowToolTipOnWidgetEvenWhenDisabled();
    void shouldNotifyWithoutListingOnInvalidateFalse();
    void shouldCommitThroughModel();
    void shouldIgnoreCommitAndRollbackWithoutModel();
    void shouldClearPointersBetweenItemAndWidget();
    void shouldGiveBackIdsOfEveryKind_data();
    void shouldGiveBackIdsOfEveryKind();
    void shouldRollBackToIdsOfEveryKind_data();
    void shouldRollBackToIdsOfEveryKind();
    void shouldShowNewRollbackValueToSlotsOfVisibleMove();
    void shouldKeepRollbackTimesThroughSetStartOnUnsavedItem();
    void shouldStopRollbackOfBookingDeletedByAnswerToItsChange_data();
    void shouldStopRollbackOfBookingDeletedByAnswerToItsChange();
    void shouldStopMoveOfBookingDeletedByAnswerToItsRemoval();
};

void TestBkCalendarItem::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestBkCalendarItem::shouldStartEmpty()
{
    BkCalendarItem item;
    QVERIFY(!item.leftColor.isValid());
    QVERIFY(!item.rightColor.isValid());
    QVERIFY(!item.topColor.isValid());
    QVERIFY(!item.bottomColor.isValid());
    QVERIFY(item.id.isNull());
    QVERIFY(item.statusId.isNull());
    QVERIFY(item.workPlaceId.isNull());
    QCOMPARE(item.locked, 0);
    QVERIFY(!item.widget);
    QVERIFY(!item.model);
    QVERIFY(item.title().isEmpty());
    QVERIFY(item.text().isEmpty());
    QVERIFY(item.toolTip().isEmpty());
    QVERIFY(!item.date().isValid());
    QVERIFY(item.userId().isNull());
    QVERIFY(item.resourceId().isNull());
    QCOMPARE(int(item.type()), 0);
    QCOMPARE(item.flags(), 0);
    QVERIFY(!item.start().isValid());
    QVERIFY(!item.end().isValid());
    QVERIFY(!item.savedStart().isValid());
    QVERIFY(!item.savedEnd().isValid());
    QVERIFY(item.savedUserId().isNull());
    QVERIFY(item.savedResourceId().isNull());
    QVERIFY(!item.savedDate().isValid());
    QVERIFY(!item.isBlocked());
}

void TestBkCalendarItem::shouldStripMarkupInPlainText()
{
    BkCalendarItem item;
    item.setText(QStringLiteral("<b>Check</b> <i>tyres</i>"));
    QCOMPARE(item.text(), QStringLiteral("<b>Check</b> <i>tyres</i>"));
    QCOMPARE(item.plainText(), QStringLiteral("Check tyres"));
}

void TestBkCalendarItem::shouldOnlyWriteFieldsWithoutModel()
{
    BkCalendarItem item;
    item.setTime(Eight, Nine);
    item.setDate(Day, true);
    item.setUserId(3, true);
    item.setResourceId(8, false);
    QCOMPARE(item.start(), Eight);
    QCOMPARE(item.end(), Nine);
    QCOMPARE(item.savedStart(), Eight);
    QCOMPARE(item.savedEnd(), Nine);
    QCOMPARE(item.date(), Day);
    QCOMPARE(item.savedDate(), Day);
    QCOMPARE(item.userId(), QVariant(3));
    QCOMPARE(item.savedUserId(), QVariant(3));
    QCOMPARE(item.resourceId(), QVariant(8));
    QCOMPARE(item.savedResourceId(), QVariant(8));
    QVERIFY(!item.model);

    item.setKeys(Day.addDays(1), BkCalendarResource(9, QString(), 1));
    QCOMPARE(item.savedDate(), Day.addDays(1));
    QCOMPARE(item.savedResourceId(), QVariant(9));
}

void TestBkCalendarItem::shouldKeepSavedKeysOnSetKeysWithoutModel()
{
    BkCalendarItem item;
    item.setDate(Day);
    item.setUserId(3);
    item.setResourceId(8);
    item.setKeys(Day.addDays(2), QVariant(4), QVariant(5));
    QCOMPARE(item.date(), Day.addDays(2));
    QCOMPARE(item.userId(), QVariant(4));
    QCOMPARE(item.resourceId(), QVariant(5));
    QCOMPARE(item.savedDate(), Day);
    QCOMPARE(item.savedUserId(), QVariant(3));
    QCOMPARE(item.savedResourceId(), QVariant(8));
}

void TestBkCalendarItem::shouldChangeNothingOnSetDateWithPresentDate()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);

    item->setDate(Day, false);
    item->setUserId(3, false);
    item->setResourceId(QVariant(), false);

    QCOMPARE(changed.count(), 0);
    QCOMPARE(removed.count(), 0);
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldMarkUnsavedOnSettingPresentValue_data()
{
    QTest::addColumn<int>("setter");
    QTest::newRow("title") << 0;
    QTest::newRow("text") << 1;
    QTest::newRow("flags") << 2;
    QTest::newRow("type") << 3;
    QTest::newRow("start") << 4;
    QTest::newRow("end") << 5;
    QTest::newRow("tool tip") << 6;
    QTest::newRow("time") << 7;
}

void TestBkCalendarItem::shouldMarkUnsavedOnSettingPresentValue()
{
    QFETCH(int, setter);
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    item->setTitle(QStringLiteral("Service"));
    item->setText(QStringLiteral("Oil"));
    item->setItemFlags(BkCalendarItem::FlagMail);
    item->setToolTip(QStringLiteral("Tip"));
    QVERIFY(model.addItem(item));
    QVERIFY(!model.isInvalid(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    switch (setter) {
    case 0:
        item->setTitle(item->title());
        break;
    case 1:
        item->setText(item->text());
        break;
    case 2:
        item->setItemFlags(item->flags());
        break;
    case 3:
        item->setType(item->type());
        break;
    case 4:
        item->setStart(item->start());
        break;
    case 5:
        item->setEnd(item->end());
        break;
    case 6:
        item->setToolTip(item->toolTip());
        break;
    case 7:
        item->setTime(item->start(), item->end());
        break;
    }

    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<BkCalendarItem*>(), item);
    QVERIFY(model.isInvalid(item));
}

void TestBkCalendarItem::shouldLeaveSavedTimesOnSetStartAndSetEnd()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    item->setStart(Ten);
    item->setEnd(Eleven);
    QCOMPARE(item->start(), Ten);
    QCOMPARE(item->end(), Eleven);
    QCOMPARE(item->savedStart(), Eight);
    QCOMPARE(item->savedEnd(), Nine);

    item->rollback();
    QCOMPARE(item->start(), Eight);
    QCOMPARE(item->end(), Nine);
}

void TestBkCalendarItem::shouldMarkStatusChangeOnlyWhenStatusDiffers()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    item->setStatusId(4);
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setStatusId(4);
    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));

    item->setStatusId(5);
    QCOMPARE(item->statusId, QVariant(5));
    QCOMPARE(changed.count(), 1);
    QVERIFY(model.isInvalid(item));
}

void TestBkCalendarItem::shouldAskWhetherNewStatusEqualsPresentOne_data()
{
    QTest::addColumn<QVariant>("present");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<bool>("changes");

    // QVariant equality converts the right-hand value to the type of the left-hand one, so it is not
    // symmetric: the new value is the one on the left.
    QTest::newRow("text 1.0, number 1") << QVariant(QStringLiteral("1.0")) << QVariant(1.0) << false;
    QTest::newRow("number 1, text 1.0") << QVariant(1.0) << QVariant(QStringLiteral("1.0")) << true;
    QTest::newRow("text 1, true") << QVariant(QStringLiteral("1")) << QVariant(true) << false;
    QTest::newRow("true, text 1") << QVariant(true) << QVariant(QStringLiteral("1")) << true;
    QTest::newRow("same number") << QVariant(4) << QVariant(4) << false;
    QTest::newRow("other number") << QVariant(4) << QVariant(5) << true;
}

void TestBkCalendarItem::shouldAskWhetherNewStatusEqualsPresentOne()
{
    QFETCH(QVariant, present);
    QFETCH(QVariant, given);
    QFETCH(bool, changes);

    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    item->statusId = present;
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setStatusId(given);

    QCOMPARE(changed.count(), changes ? 1 : 0);
    QCOMPARE(model.isInvalid(item), changes);
    QCOMPARE(item->statusId.userType(), (changes ? given : present).userType());
    QCOMPARE(item->statusId.toString(), (changes ? given : present).toString());
}

void TestBkCalendarItem::shouldWriteWithoutNotifyingOnPlainSetters()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setLocked(1);
    item->setWorkPlaceId(12);
    item->setBlocked(true);
    item->setBlocked(false);

    QCOMPARE(item->locked, 1);
    QCOMPARE(item->workPlaceId, QVariant(12));
    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldRollBackToFirstTimeSetWhileClean()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));

    item->setTime(Nine, Ten);
    item->setTime(Ten, Eleven);
    QCOMPARE(item->start(), Ten);
    item->rollback();

    QCOMPARE(item->start(), Nine);
    QCOMPARE(item->end(), Ten);
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldTakeRollbackValueFromNewValue()
{
    // The value set while clean is the baseline, not the one it replaced.
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));

    item->setTime(Nine, Ten);
    QCOMPARE(item->savedStart(), Nine);
    QCOMPARE(item->savedEnd(), Ten);
    item->rollback();
    QCOMPARE(item->start(), Nine);
    QCOMPARE(item->end(), Ten);

    item->setDate(Day.addDays(1));
    QCOMPARE(item->savedDate(), Day.addDays(1));
    item->setDate(Day.addDays(2));
    QCOMPARE(item->savedDate(), Day.addDays(1));
    item->rollback();
    QCOMPARE(item->date(), Day.addDays(1));
}

void TestBkCalendarItem::shouldRollBackMovedDateUserAndResource()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed first"));
    QVERIFY(model.isInvalid(item));

    item->setDate(Day.addDays(1));
    item->setUserId(4);
    item->setResourceId(9);
    item->setTitle(QStringLiteral("Changed again"));
    QCOMPARE(model.items(Day.addDays(1), BkCalendarResource(4)), QList<BkCalendarItem*>{item});

    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    item->rollback();

    QCOMPARE(item->date(), Day);
    QCOMPARE(item->userId(), QVariant(3));
    QCOMPARE(item->resourceId(), QVariant(8));
    QCOMPARE(item->title(), QStringLiteral("Changed again"));
    QCOMPARE(removed.count(), 3);
    QCOMPARE(added.count(), 3);
    QVERIFY(changed.count() >= 1);
    QCOMPARE(changed.last().at(0).value<BkCalendarItem*>(), item);
    QVERIFY(!model.isInvalid(item));
    QCOMPARE(item->model, &model);
    QCOMPARE(model.items(Day, BkCalendarResource(3)), QList<BkCalendarItem*>{item});
    QCOMPARE(model.items(Day, BkCalendarResource(8, QString(), 1)), QList<BkCalendarItem*>{item});
    QVERIFY(model.items(Day.addDays(1), BkCalendarResource(4)).isEmpty());
}

void TestBkCalendarItem::shouldMoveSilentlyWithOneItemChanged_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("date") << 0;
    QTest::newRow("user") << 1;
    QTest::newRow("resource") << 2;
}

void TestBkCalendarItem::shouldMoveSilentlyWithOneItemChanged()
{
    QFETCH(int, key);
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    QDate date = Day;
    BkCalendarResource user(3);
    BkCalendarResource resource(8, QString(), 1);
    switch (key) {
    case 0:
        item->setDate(Day.addDays(1), true);
        date = Day.addDays(1);
        break;
    case 1:
        item->setUserId(4, true);
        user.id = 4;
        break;
    case 2:
        item->setResourceId(9, true);
        resource.id = 9;
        break;
    }

    QCOMPARE(removed.count(), 0);
    QCOMPARE(added.count(), 0);
    QCOMPARE(changed.count(), 1);
    QVERIFY(!model.signalsBlocked());
    QVERIFY(model.isInvalid(item));
    QCOMPARE(item->model, &model);
    QCOMPARE(model.items(date, user), QList<BkCalendarItem*>{item});
    QCOMPARE(model.items(date, resource), QList<BkCalendarItem*>{item});
    QCOMPARE(model.findId(1), item);
}

void TestBkCalendarItem::shouldMoveVisiblyWhenNotSilent()
{
    BkCalendarModel model;
    auto* first = makeItem(1, 3, QVariant());
    auto* second = makeItem(2, 3, QVariant());
    QVERIFY(model.addItem(first));
    QVERIFY(model.addItem(second));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    first->setDate(Day.addDays(1), false);

    QCOMPARE(removed.count(), 1);
    QCOMPARE(added.count(), 1);
    QCOMPARE(changed.count(), 1);
    // The move files the same pointer anew, at the end of the lists.
    QCOMPARE(model.allItems(), (QList<BkCalendarItem*>{second, first}));
    QCOMPARE(model.items(Day, BkCalendarResource(3)), QList<BkCalendarItem*>{second});
    QCOMPARE(model.items(Day.addDays(1), BkCalendarResource(3)), QList<BkCalendarItem*>{first});
}

void TestBkCalendarItem::shouldUnblockModelSignalsAfterSilentMove()
{
    // Unblocking does not restore what was there before: the model's signals are on afterwards.
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    model.blockSignals(true);
    item->setDate(Day.addDays(1), true);
    QVERIFY(!model.signalsBlocked());

    model.blockSignals(true);
    item->setKeys(Day, QVariant(4), QVariant());
    QVERIFY(!model.signalsBlocked());
}

void TestBkCalendarItem::shouldNotNotifyWhenBlocked()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setBlocked(true);
    QVERIFY(item->isBlocked());
    item->setTitle(QStringLiteral("Quiet"));
    item->setText(QStringLiteral("Quiet"));
    item->setItemFlags(3);
    item->setType(BkCalendarItem::TextOnly);
    item->setStart(Ten);
    item->setEnd(Eleven);
    item->setTime(Ten, Eleven);
    item->setToolTip(QStringLiteral("Quiet"));
    item->setStatusId(2);
    item->setDate(Day.addDays(1), true);
    item->setUserId(4, true);
    item->setKeys(Day, QVariant(5), QVariant(6));
    item->invalidate(true);

    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));
    QCOMPARE(item->title(), QStringLiteral("Quiet"));
    QCOMPARE(item->userId(), QVariant(5));
}

void TestBkCalendarItem::shouldStayOffUnsavedListWhenBlockedItemMoves()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Changed"));
    QVERIFY(model.isInvalid(item));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setBlocked(true);
    item->setDate(Day.addDays(1), false);

    QCOMPARE(removed.count(), 1);
    QCOMPARE(added.count(), 1);
    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));
    QCOMPARE(model.items(Day.addDays(1), BkCalendarResource(3)), QList<BkCalendarItem*>{item});
}

void TestBkCalendarItem::shouldChangeOnlyIdOfKeyType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("userId");
    QTest::addColumn<QVariant>("resourceId");
    QTest::newRow("resource key") << 1 << QVariant(3) << QVariant(9);
    QTest::newRow("user key") << 0 << QVariant(9) << QVariant(8);
    QTest::newRow("any other type counts as a resource") << 2 << QVariant(3) << QVariant(9);
}

void TestBkCalendarItem::shouldChangeOnlyIdOfKeyType()
{
    QFETCH(int, type);
    QFETCH(QVariant, userId);
    QFETCH(QVariant, resourceId);
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setKeys(Day.addDays(1), BkCalendarResource(9, QStringLiteral("Bay"), type));

    QCOMPARE(item->date(), Day.addDays(1));
    QCOMPARE(item->userId(), userId);
    QCOMPARE(item->resourceId(), resourceId);
    // Date and id are two silent steps, each of which notifies.
    QCOMPARE(removed.count(), 0);
    QCOMPARE(changed.count(), 2);
    // The first step made the item unsaved, so only the date became a rollback value.
    QCOMPARE(item->savedDate(), Day.addDays(1));
    QCOMPARE(item->savedUserId(), QVariant(3));
    QCOMPARE(item->savedResourceId(), QVariant(8));
}

void TestBkCalendarItem::shouldMoveSilentlyOnSetKeysWithBothIds()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    QSignalSpy removed(&model, &BkCalendarModel::itemRemoved);
    QSignalSpy added(&model, &BkCalendarModel::itemAdded);
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->setKeys(Day.addDays(3), QVariant(4), QVariant(9));

    QCOMPARE(removed.count(), 0);
    QCOMPARE(added.count(), 0);
    QCOMPARE(changed.count(), 1);
    QVERIFY(model.isInvalid(item));
    QCOMPARE(item->savedDate(), Day.addDays(3));
    QCOMPARE(item->savedUserId(), QVariant(4));
    QCOMPARE(item->savedResourceId(), QVariant(9));
    QCOMPARE(model.items(Day.addDays(3), BkCalendarResource(4)), QList<BkCalendarItem*>{item});
    QCOMPARE(model.items(Day.addDays(3), BkCalendarResource(9, QString(), 1)), QList<BkCalendarItem*>{item});
    QVERIFY(model.items(Day, BkCalendarResource(3)).isEmpty());
}

void TestBkCalendarItem::shouldKeepSavedKeysOnSetKeysWhileUnsaved()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    item->setTitle(QStringLiteral("Unsaved"));

    item->setKeys(Day.addDays(3), QVariant(4), QVariant(9));
    QCOMPARE(item->savedDate(), Day);
    QCOMPARE(item->savedUserId(), QVariant(3));
    QCOMPARE(item->savedResourceId(), QVariant(8));

    item->rollback();
    QCOMPARE(item->date(), Day);
    QCOMPARE(item->userId(), QVariant(3));
    QCOMPARE(item->resourceId(), QVariant(8));
}

void TestBkCalendarItem::shouldDoNothingOnSetKeysWithPresentValues()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);
    item->setKeys(Day, QVariant(3), QVariant(8));
    QCOMPARE(changed.count(), 0);
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldShowToolTipOnWidgetEvenWhenDisabled()
{
    BkCalendarModel model;
    model.setToolTipsEnabled(false);
    auto* item = makeItem(1, 3, QVariant());
    BkCalendarItemWidget widget(item);
    QCOMPARE(item->widget, &widget);
    QVERIFY(model.addItem(item));
    QVERIFY(widget.toolTip().isEmpty());

    item->setToolTip(QStringLiteral("Call first"));
    QCOMPARE(widget.toolTip(), QStringLiteral("Call first"));
    QCOMPARE(item->toolTip(), QStringLiteral("Call first"));

    item->setToolTipsEnabled(false);
    QVERIFY(widget.toolTip().isEmpty());
    QCOMPARE(item->toolTip(), QStringLiteral("Call first"));

    // The model tells every item with an id.
    model.setToolTipsEnabled(true);
    QCOMPARE(widget.toolTip(), QStringLiteral("Call first"));
    model.setToolTipsEnabled(false);
    QVERIFY(widget.toolTip().isEmpty());

    model.removeItem(item);
    delete item;
}

void TestBkCalendarItem::shouldNotifyWithoutListingOnInvalidateFalse()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy changed(&model, &BkCalendarModel::itemChanged);

    item->invalidate(false);
    QCOMPARE(changed.count(), 1);
    QVERIFY(!model.isInvalid(item));

    item->invalidate(true);
    QCOMPARE(changed.count(), 2);
    QVERIFY(model.isInvalid(item));
}

void TestBkCalendarItem::shouldCommitThroughModel()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, QVariant());
    QVERIFY(model.addItem(item));
    QSignalSpy saved(&model, &BkCalendarModel::saveItems);
    item->setTitle(QStringLiteral("Changed"));

    item->commit(false);
    QVERIFY(model.commitTimer()->isActive());
    QCOMPARE(saved.count(), 0);

    item->commit(true);
    QCOMPARE(saved.count(), 1);
    QCOMPARE(saved.at(0).at(0).value<QList<BkCalendarItem*>>(), QList<BkCalendarItem*>{item});
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldIgnoreCommitAndRollbackWithoutModel()
{
    BkCalendarItem item;
    item.setTime(Eight, Nine);
    item.setStart(Ten);
    item.commit(true);
    item.commit(false);
    item.rollback();
    item.invalidate(true);
    item.updated();
    QCOMPARE(item.start(), Ten);
    QCOMPARE(item.savedStart(), Eight);
}

void TestBkCalendarItem::shouldClearPointersBetweenItemAndWidget()
{
    auto* item = new BkCalendarItem;
    auto* widget = new BkCalendarItemWidget(item);
    QCOMPARE(item->widget, widget);
    delete widget;
    QVERIFY(!item->widget);

    // The widget survives its booking.
    auto* other = new BkCalendarItemWidget(item);
    QPointer<BkCalendarItemWidget> guard(other);
    delete item;
    QVERIFY(guard);
    delete other;
}

void TestBkCalendarItem::shouldGiveBackIdsOfEveryKind_data()
{
    QTest::addColumn<QVariant>("id");
    QTest::newRow("null") << QVariant();
    QTest::newRow("null int") << QVariant(QVariant::Int);
    QTest::newRow("zero") << QVariant(0);
    QTest::newRow("int") << QVariant(42);
    QTest::newRow("negative int") << QVariant(-42);
    QTest::newRow("largest int") << QVariant(std::numeric_limits<int>::max());
    QTest::newRow("smallest int") << QVariant(std::numeric_limits<int>::min());
    QTest::newRow("long long") << QVariant(qlonglong(42));
    QTest::newRow("negative long long") << QVariant(qlonglong(-42));
    QTest::newRow("long long past int") << QVariant(qlonglong(1) << 40);
    QTest::newRow("long long near its top") << QVariant((qlonglong(1) << 61) - 1);
    QTest::newRow("long long near its bottom") << QVariant(-(qlonglong(1) << 61));
    QTest::newRow("largest long long") << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("smallest long long") << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("unsigned") << QVariant(42u);
    QTest::newRow("real") << QVariant(4.5);
    QTest::newRow("text") << QVariant(QStringLiteral("desk 4"));
}

void TestBkCalendarItem::shouldGiveBackIdsOfEveryKind()
{
    QFETCH(QVariant, id);
    BkCalendarItem item;
    item.setUserId(QVariant(7));
    item.setResourceId(QVariant(7));
    item.setUserId(id);
    item.setResourceId(id);
    for (const QVariant& back :
         {item.userId(), item.resourceId(), item.savedUserId(), item.savedResourceId()}) {
        QCOMPARE(back.userType(), id.userType());
        QCOMPARE(back.isNull(), id.isNull());
        QCOMPARE(back, id);
    }
}

void TestBkCalendarItem::shouldRollBackToIdsOfEveryKind_data()
{
    shouldGiveBackIdsOfEveryKind_data();
}

void TestBkCalendarItem::shouldRollBackToIdsOfEveryKind()
{
    QFETCH(QVariant, id);
    BkCalendarModel model;
    auto* item = makeItem(1, 7, 7);
    item->setUserId(id);
    item->setResourceId(id);
    model.addItem(item);
    item->setTitle(QStringLiteral("Changed"));
    item->setUserId(QVariant(99));
    item->setResourceId(QVariant(98));
    QCOMPARE(item->savedUserId().userType(), id.userType());
    QCOMPARE(item->savedUserId(), id);
    QCOMPARE(item->savedResourceId(), id);
    item->rollback();
    for (const QVariant& back : {item->userId(), item->resourceId()}) {
        QCOMPARE(back.userType(), id.userType());
        QCOMPARE(back.isNull(), id.isNull());
        QCOMPARE(back, id);
    }
    QVERIFY(!model.isInvalid(item));
}

void TestBkCalendarItem::shouldShowNewRollbackValueToSlotsOfVisibleMove()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    model.addItem(item);
    QDate seenOnRemoval;
    QDate seenOnAdding;
    QVariant userSeenOnAdding;
    connect(&model, &BkCalendarModel::itemRemoved, this,
            [&](BkCalendarItem* moved) { seenOnRemoval = moved->savedDate(); });
    connect(&model, &BkCalendarModel::itemAdded, this, [&](BkCalendarItem* moved) {
        seenOnAdding = moved->savedDate();
        userSeenOnAdding = moved->savedUserId();
    });

    // A clean booking takes the new value as its rollback value before it moves.
    item->setDate(Day.addDays(2));
    QCOMPARE(seenOnRemoval, Day.addDays(2));
    QCOMPARE(seenOnAdding, Day.addDays(2));
    QCOMPARE(userSeenOnAdding, QVariant(3));

    // An unsaved one keeps its rollback value.
    item->setUserId(5);
    QCOMPARE(seenOnAdding, Day.addDays(2));
    QCOMPARE(userSeenOnAdding, QVariant(3));
    item->rollback();
    QCOMPARE(item->userId(), QVariant(3));
    QCOMPARE(item->date(), Day.addDays(2));
}

void TestBkCalendarItem::shouldKeepRollbackTimesThroughSetStartOnUnsavedItem()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    model.addItem(item);
    item->setStart(Ten);
    item->setEnd(Eleven);
    QCOMPARE(item->savedStart(), Eight);
    QCOMPARE(item->savedEnd(), Nine);
    // Back to the rollback values, then away again: the rollback values stay.
    item->setStart(Eight);
    item->setEnd(Nine);
    item->setTime(Ten, Eleven);
    QCOMPARE(item->savedStart(), Eight);
    item->setDate(Day.addDays(1));
    item->rollback();
    QCOMPARE(item->start(), Eight);
    QCOMPARE(item->end(), Nine);
    QCOMPARE(item->date(), Day);
    QCOMPARE(item->savedDate(), Day);
}

void TestBkCalendarItem::shouldStopRollbackOfBookingDeletedByAnswerToItsChange_data()
{
    QTest::addColumn<bool>("reload");
    // A host that reloads saves what is unsaved first, as it must, and clears the store.
    QTest::newRow("the store reloaded") << true;
    QTest::newRow("taken out and deleted") << false;
}

// A rollback moves the booking back in up to three steps, each of which tells of a change. A host that
// answers the first by deleting the booking ends the rollback there: nothing of the booking is read or
// filed again, and no later signal names it.
void TestBkCalendarItem::shouldStopRollbackOfBookingDeletedByAnswerToItsChange()
{
    QFETCH(bool, reload);
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    model.addItem(item);
    auto* other = makeItem(2, 3, 8);
    model.addItem(other);
    item->setDate(Day.addDays(1));
    item->setResourceId(9);
    item->setUserId(4);
    QVERIFY(model.isInvalid(item));

    const BkCalendarItem* const deleted = item;
    bool answered = false;
    bool gone = false;
    // What names the booking once it is deleted; compared by address only.
    QList<QByteArray> namedAfter;
    connect(&model, &BkCalendarModel::itemChanged, this, [&](BkCalendarItem* changed) {
        if (gone && changed == deleted)
            namedAfter << "itemChanged";
        if (answered || changed != deleted)
            return;
        answered = true;
        if (reload) {
            model.commitToDatabase();
            model.clear();
        } else {
            model.removeItem(changed);
            delete changed;
        }
        gone = true;
    });
    connect(&model, &BkCalendarModel::itemAdded, this, [&](BkCalendarItem* added) {
        if (gone && added == deleted)
            namedAfter << "itemAdded";
    });
    connect(&model, &BkCalendarModel::itemRemoved, this, [&](BkCalendarItem* removed) {
        if (gone && removed == deleted)
            namedAfter << "itemRemoved";
    });

    item->rollback();
    QVERIFY(answered);
    QCOMPARE(namedAfter, QList<QByteArray>());
    QVERIFY(!model.allItems().contains(const_cast<BkCalendarItem*>(deleted)));
    QVERIFY(model.invalidItems().isEmpty());
    if (reload) {
        QVERIFY(model.allItems().isEmpty());
    } else {
        QCOMPARE(model.allItems(), QList<BkCalendarItem*>() << other);
        QCOMPARE(model.items(Day, BkCalendarResource(3, QString(), 0)), QList<BkCalendarItem*>() << other);
    }
}

// A move of a booking from one key to another takes it out of the store and files it again, and the
// removal is told. A host that deletes the booking in its answer ends the move: the booking is not
// filed again.
void TestBkCalendarItem::shouldStopMoveOfBookingDeletedByAnswerToItsRemoval()
{
    BkCalendarModel model;
    auto* item = makeItem(1, 3, 8);
    model.addItem(item);
    const BkCalendarItem* const deleted = item;
    int added = 0;
    int changed = 0;
    connect(&model, &BkCalendarModel::itemRemoved, this, [&](BkCalendarItem* removed) { delete removed; });
    connect(&model, &BkCalendarModel::itemAdded, this, [&](BkCalendarItem*) { ++added; });
    connect(&model, &BkCalendarModel::itemChanged, this, [&](BkCalendarItem*) { ++changed; });

    item->setDate(Day.addDays(1));
    QCOMPARE(added, 0);
    QCOMPARE(changed, 0);
    QVERIFY(!model.allItems().contains(const_cast<BkCalendarItem*>(deleted)));
    QVERIFY(model.allItems().isEmpty());
    QVERIFY(model.items(Day.addDays(1), BkCalendarResource(3, QString(), 0)).isEmpty());
    QVERIFY(model.invalidItems().isEmpty());
}

QTEST_MAIN(TestBkCalendarItem)
#include "tst_bkcalendaritem.moc"
