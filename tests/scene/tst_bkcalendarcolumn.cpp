// The day column: its structure, sizes, children, item access, selection walks and the mouse on its
// own area.

#include "BkBookingScene.h"
#include "BkColumnFixture.h"

#include <FwTestApplication.h>

#include <BkCalendarClock.h>

#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QStyleOptionGraphicsItem>
#include <QtTest>

namespace {

void sendMouse(QGraphicsView& view, QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    const QPoint pos = view.mapFromScene(scenePos);
    QMouseEvent event(type, pos, view.viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &event);
}

// Shows the fixture's whole column at the view's top left, as the mouse tests click it.
bool showWhole(QGraphicsView& view)
{
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.resize(400, 1400);
    view.show();
    return QTest::qWaitForWindowExposed(&view);
}

// Scene y of a time in the fixture's column: the column stands at scene y 25.
double sceneY(const QTime& time)
{
    return 25.0 + 50.0 + QTime(6, 0).secsTo(time) / 60.0 * 1.5;
}

// The column built the booking's box anew: the old box is still there, out of the scene and without
// its booking, and the booking has one new box.
void checkBoxReplaced(BkColumnFixture& fixture, const QPointer<BkCalendarItemWidget>& box,
                      BkCalendarItem* booking)
{
    QVERIFY(box);
    QVERIFY(!box->scene());
    QVERIFY(!box->item());
    QVERIFY(booking->widget);
    QVERIFY(booking->widget != box);
    QCOMPARE(fixture.widgets(), QList<BkCalendarItemWidget*>{booking->widget});
}

} // namespace

class tst_BkCalendarColumn : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void shouldBuildWithHeaderAndDefaults();
    void shouldHandResizableToHeader();
    void shouldShowNothingWithoutValidKey_data();
    void shouldShowNothingWithoutValidKey();
    void shouldPlaceByIndexAtInit();
    void shouldPlaceAtGivenStartAtInit();
    void shouldCarryBoxesAndKeepEveryFlagWhenMoved();
    void shouldDoNothingWithoutScale();
    void shouldShareViewWidthWhenProportional();
    void shouldTakePixelsWhenFixed();
    void shouldTakeNewScaleUnlessCustom();
    void shouldKeepCustomScaleOfResizableColumn();
    void shouldTakeNewScaleWhenNotResizableThoughCustom();
    void shouldClampManualResizeToMinimum();
    void shouldMoveHeaderAndReturnArea();
    void shouldHandItsStateToHeaderAtUpdate();
    void shouldLayPlansIntoRectangles();
    void shouldTruncatePlanGeometry();
    void shouldFollowMatchingPlansOnly();
    void shouldFollowChangedAndRemovedPlans();
    void shouldLetGoOfThePlansThatAClearDeletes();
    void shouldMakeBoxesForShownBookings();
    void shouldWireEachNewBox();
    void shouldIgnoreBookingsOfOtherDateOrKey();
    void shouldGiveOutOfScaleBookingBoxUntilRebuild();
    void shouldMoveBoxWhenBookingChanges();
    void shouldDropBoxWhenBookingIsRemoved();
    void shouldMakeNoBoxForABookingTheHostTookAwayAsItCame();
    void shouldNeverReuseBoxes();
    void shouldListBoxesInTheirOrderUnderTheHeader();
    void shouldTellDateWhenSelected();
    void shouldListItemsWithOrWithoutReserved();
    void shouldFindSelectedItem();
    void shouldTellWhetherChildIsSelected();
    void shouldWalkForwardThroughSortedItems();
    void shouldWalkBackwardThroughSortedItems();
    void shouldWalkThroughItsOwnBoxesOfBookingsThatTwoColumnsShow();
    void shouldNotWalkWhenOnlyReservedItems();
    void shouldKeepBoxlessItemsOutOfWalks();
    void shouldEndWalkWhenHostReloadsAtSelectionChange_data();
    void shouldEndWalkWhenHostReloadsAtSelectionChange();
    void shouldActivatePlanOnDoubleClickOfBookableBlock();
    void shouldOfferPlanMenuOnContextMenuOfBookableBlock();
    void shouldOfferPlanMenuOnRightReleaseOfAnyBlock();
    void shouldOfferPlanMenuOnAPlainRightClick();
    void shouldOutliveABoxThatTheHostRebuildsWhenItIsClicked();
    void shouldOutliveAHostThatUpdatesTheColumnAsTheFocusedBoxGoes();
    void shouldNotTakeAwayAgainABoxThatIsBeingDeleted();
    void shouldHoldNoPlanThatAClearDeletesAfterTheHostsAnswer();
    void shouldOutliveAColumnThatTheHostDropsWhenItIsClicked();
    void shouldFindPlanAtTime();
    void shouldForwardHeaderActivation();
    void shouldSetHeaderText();
    void shouldKeepRaiseSetting();
    void shouldStartOnTheDayOfTheClock_data();
    void shouldStartOnTheDayOfTheClock();
};

void tst_BkCalendarColumn::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // A column starts on today's date: the clock stands still, so that midnight never falls
    // between building a column and looking at it.
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
    qRegisterMetaType<BkCalendarPlan*>();
    qRegisterMetaType<BkCalendarItem*>();
    qRegisterMetaType<BkCalendarResource>();
}

void tst_BkCalendarColumn::shouldBuildWithHeaderAndDefaults()
{
    BkCalendarColumn column(nullptr, false);
    QCOMPARE(column.flags(), QGraphicsItem::GraphicsItemFlags(QGraphicsItem::ItemIsSelectable));
    QVERIFY(column.acceptDrops());
    QCOMPARE(column.data(ItemKindRole).toInt(), 100);
    QCOMPARE(column.boundingRect(), QRectF(0, 0, 100, 100));
    QVERIFY(column.header());
    QCOMPARE(column.header()->parentItem(), &column);
    QCOMPARE(column.childItems().size(), 1);
    QVERIFY(!column.model());
    QCOMPARE(column.widthType(), WidthProportional);
    QCOMPARE(column.raise(), BkCalendarColumn::RaiseOnClick);
    QCOMPARE(column.widthScale(), 1.0);
    QCOMPARE(column.minWidth(), 100);
    QVERIFY(column.plans().isEmpty());
    QVERIFY(!column.timeScale());
    QVERIFY(!column.colorScheme());
    QCOMPARE(column.date(), QDate(2026, 11, 23));
    QVERIFY(column.resource().id.isNull());
    QVERIFY(column.resource().name.isEmpty());
    QCOMPARE(column.resource().type, 0);
    QCOMPARE(column.resourceMode(), 0);
    QCOMPARE(column.index(), 0);
    QVERIFY(!column.customSize());
}

void tst_BkCalendarColumn::shouldHandResizableToHeader()
{
    BkCalendarColumn day(nullptr, false);
    BkCalendarColumn group(nullptr, true);
    QVERIFY(!day.header()->resizable());
    QVERIFY(group.header()->resizable());
}

void tst_BkCalendarColumn::shouldShowNothingWithoutValidKey_data()
{
    QTest::addColumn<QVariant>("id");
    QTest::addColumn<QDate>("date");
    QTest::newRow("null id") << QVariant() << QDate(2024, 3, 11);
    QTest::newRow("id -1") << QVariant(-1) << QDate(2024, 3, 11);
    QTest::newRow("invalid date") << QVariant(1) << QDate();
}

void tst_BkCalendarColumn::shouldShowNothingWithoutValidKey()
{
    QFETCH(QVariant, id);
    QFETCH(QDate, date);
    const BkCalendarResource key(id, "Nobody", 0);
    BkColumnFixture fixture;
    // A booking and a plan filed under exactly this key and date, so only the key's validity decides.
    auto* item = new BkCalendarItem();
    item->setDate(date);
    item->setUserId(id);
    item->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(item);
    auto* plan = new BkCalendarPlan();
    plan->date = date;
    plan->start = QTime(8, 0);
    plan->end = QTime(12, 0);
    plan->resource = key;
    fixture.model.addItem(plan);

    auto* column = new BkCalendarColumn(nullptr, false);
    fixture.scene.addItem(column);
    column->setTimeScale(fixture.scale);
    column->init(-1.0);
    column->setColorScheme(&fixture.scheme);
    column->setModel(&fixture.model);
    column->setDate(date);
    column->update();
    column->setResource(key);
    column->update();
    QCOMPARE(column->childItems().size(), 1);
    QCOMPARE(column->childItems().first(), column->header());
    QVERIFY(column->plans().isEmpty());
    QVERIFY(!item->widget);
}

void tst_BkCalendarColumn::shouldPlaceByIndexAtInit()
{
    BkColumnFixture fixture;
    fixture.column->setIndex(3);
    fixture.column->setWidthScale(120.0, WidthFixed, -1.0);
    QCOMPARE(fixture.column->pos(), QPointF(50.0 + 360.0, 25.0));
    QCOMPARE(fixture.column->boundingRect(), QRectF(0, 0, 120, 840 * 1.5 + 50));
    QCOMPARE(fixture.column->header()->grip(), QRectF(105, 5, 10, 10));

    fixture.column->init();
    QCOMPARE(fixture.column->pos(), QPointF(410.0, 25.0));
}

void tst_BkCalendarColumn::shouldPlaceAtGivenStartAtInit()
{
    BkColumnFixture fixture;
    fixture.column->setIndex(3);
    fixture.column->init(77.0);
    QCOMPARE(fixture.column->pos(), QPointF(127.0, 25.0));
}

void tst_BkCalendarColumn::shouldCarryBoxesAndKeepEveryFlagWhenMoved()
{
    // A column moves at init, to a given start, and at its share of the view's width; the last move
    // comes after the event loop has run, as a later show operation would.
    BkColumnFixture fixture;
    BkCalendarColumn* column = fixture.column;
    const QList<BkCalendarItem*> items = {fixture.addItem(QTime(9, 0), QTime(10, 0), 1),
                                          fixture.addItem(QTime(9, 30), QTime(11, 0), 2)};
    const QGraphicsItem::GraphicsItemFlags boxFlags = items.first()->widget->flags();
    const QList<QPointF> expected = {QPointF(50.0 + 2 * 205.0, 25.0), QPointF(127.0, 25.0),
                                     QPointF(2 * 200.0 + 50.0, 25.0), QPointF(50.0 + 205.0, 25.0)};
    for (int step = 0; step < expected.size(); ++step) {
        switch (step) {
        case 0:
            column->setIndex(2);
            column->init();
            break;
        case 1:
            column->init(77.0);
            break;
        case 2:
            column->setWidthScale(0.2, WidthProportional, -1.0);
            column->sizeChanged(1051);
            break;
        default:
            QCoreApplication::processEvents();
            column->setIndex(1);
            column->setWidthScale(205.0, WidthFixed, -1.0);
            break;
        }
        QCOMPARE(column->pos(), expected.at(step));
        QCOMPARE(column->header()->flags(),
                 QGraphicsItem::GraphicsItemFlags(QGraphicsItem::ItemIsSelectable));
        QCOMPARE(column->header()->scenePos(), column->pos() + column->header()->pos());
        for (BkCalendarItem* item : items) {
            BkCalendarItemWidget* box = item->widget;
            QCOMPARE(box->flags(), boxFlags);
            QCOMPARE(box->scenePos(), column->pos() + box->pos());
            QCOMPARE(box->sceneBoundingRect(), box->boundingRect().translated(column->pos() + box->pos()));
            QVERIFY(fixture.scene.items(box->sceneBoundingRect().center()).contains(box));
        }
    }
}

void tst_BkCalendarColumn::shouldDoNothingWithoutScale()
{
    BkCalendarColumn column(nullptr, false);
    QSignalSpy widths(&column, qOverload<double>(&BkCalendarColumn::widthChanged));
    column.init(10.0);
    column.updateSize();
    column.sizeChanged(1000);
    QCOMPARE(column.pos(), QPointF(0, 0));
    QCOMPARE(column.boundingRect(), QRectF(0, 0, 100, 100));
    QCOMPARE(widths.count(), 0);
    column.updateInfo(); // no model either
    QVERIFY(column.plans().isEmpty());
}

void tst_BkCalendarColumn::shouldShareViewWidthWhenProportional()
{
    BkColumnFixture fixture;
    fixture.column->setWidthScale(0.2, WidthProportional, -1.0);
    fixture.column->setIndex(2);
    QSignalSpy widths(fixture.column, qOverload<double>(&BkCalendarColumn::widthChanged));
    fixture.column->sizeChanged(1051);
    QCOMPARE(fixture.column->boundingRect().width(), 200.0);
    QCOMPARE(fixture.column->pos(), QPointF(2 * 200.0 + 50.0, 25.0));
    QCOMPARE(fixture.column->header()->grip(), QRectF(185, 5, 10, 10));
    QCOMPARE(widths.count(), 1);
    QCOMPARE(widths.first().first().toDouble(), 200.0);
}

void tst_BkCalendarColumn::shouldTakePixelsWhenFixed()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    fixture.column->setWidthScale(150.0, WidthFixed, -1.0);
    fixture.column->sizeChanged(1051);
    QCOMPARE(fixture.column->boundingRect().width(), 150.0);
    // The boxes follow the column's width.
    QCOMPARE(item->widget->columnRect().width(), 145.0);
    QCOMPARE(item->widget->boundingRect().width(), 145.0);
}

void tst_BkCalendarColumn::shouldTakeNewScaleUnlessCustom()
{
    BkColumnFixture fixture;
    QSignalSpy widths(fixture.column, qOverload<double>(&BkCalendarColumn::widthChanged));
    QCOMPARE(fixture.column->setWidthScale(0.5, WidthProportional, -1.0), 0.5);
    QCOMPARE(fixture.column->widthScale(), 0.5);
    QCOMPARE(fixture.column->widthType(), WidthProportional);
    QCOMPARE(widths.count(), 1);
}

void tst_BkCalendarColumn::shouldKeepCustomScaleOfResizableColumn()
{
    BkColumnFixture fixture(true, 200.0);
    fixture.column->setIndex(1);
    fixture.column->move(40.0);
    QVERIFY(fixture.column->customSize());
    QCOMPARE(fixture.column->widthScale(), 240.0);

    QSignalSpy widths(fixture.column, qOverload<double>(&BkCalendarColumn::widthChanged));
    QCOMPARE(fixture.column->setWidthScale(0.5, WidthProportional, -1.0), 240.0);
    QCOMPARE(fixture.column->widthScale(), 240.0);
    QCOMPARE(fixture.column->widthType(), WidthFixed);
    // Still placed, and still announced.
    QCOMPARE(fixture.column->pos(), QPointF(50.0 + 240.0, 25.0));
    QCOMPARE(widths.count(), 1);
    QCOMPARE(widths.first().first().toDouble(), 240.0);
}

void tst_BkCalendarColumn::shouldTakeNewScaleWhenNotResizableThoughCustom()
{
    BkColumnFixture fixture(false, 200.0);
    fixture.column->move(40.0);
    QVERIFY(fixture.column->customSize());
    QCOMPARE(fixture.column->setWidthScale(130.0, WidthFixed, -1.0), 130.0);
    QCOMPARE(fixture.column->boundingRect().width(), 130.0);
}

void tst_BkCalendarColumn::shouldClampManualResizeToMinimum()
{
    BkColumnFixture fixture(true, 200.0);
    fixture.column->setMinWidth(120);
    QSignalSpy widths(fixture.column, qOverload<double>(&BkCalendarColumn::widthChanged));
    QSignalSpy relayout(fixture.column, qOverload<>(&BkCalendarColumn::widthChanged));
    fixture.column->move(-1000.0);
    QCOMPARE(fixture.column->widthScale(), 120.0);
    QCOMPARE(fixture.column->boundingRect().width(), 120.0);
    QVERIFY(fixture.column->customSize());
    QCOMPARE(widths.count(), 1);
    QCOMPARE(relayout.count(), 1);
}

void tst_BkCalendarColumn::shouldMoveHeaderAndReturnArea()
{
    BkColumnFixture fixture;
    BkCalendarHeader* header = fixture.column->header();
    const QRectF before = header->sceneBoundingRect();
    const QRectF area = fixture.column->moveHeader(300);
    QCOMPARE(header->pos(), QPointF(0, 300));
    QCOMPARE(area, before.united(header->sceneBoundingRect()));
    QCOMPARE(area.top(), 25.0);
    QCOMPARE(area.bottom(), 25.0 + 300.0 + 20.0);

    fixture.column->moveHeader(-40);
    QCOMPARE(header->pos(), QPointF(0, 0));
}

void tst_BkCalendarColumn::shouldHandItsStateToHeaderAtUpdate()
{
    BkColumnFixture fixture;
    BkCalendarHeader* header = fixture.column->header();
    fixture.column->setResourceMode(1);
    fixture.column->setResource(BkCalendarResource(7, "Room", 1));
    fixture.column->update();
    QCOMPARE(header->column(), fixture.column);
    QCOMPARE(header->date, fixture.date);
    QVERIFY(header->resourceMode());
    QCOMPARE(header->colorScheme(), &fixture.scheme);
    QCOMPARE(header->resource.id.toInt(), 7);
    QCOMPARE(header->resource.type, 1);
    QCOMPARE(header->boundingRect().width(), 205.0);
}

void tst_BkCalendarColumn::shouldLayPlansIntoRectangles()
{
    BkColumnFixture fixture;
    BkCalendarPlan* plan = fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    QCOMPARE(fixture.column->plans().size(), 1);
    QCOMPARE(plan->rect, QRectF(1.0, 120 * 1.5 + 50, 204, 240 * 1.5));
}

void tst_BkCalendarColumn::shouldTruncatePlanGeometry()
{
    BkColumnFixture fixture(false, 205.5);
    fixture.scale->setMinuteHeight(1.3f);
    // 127 minutes from 06:00, 53 minutes long: 215.1 and 68.9 are cut to whole units.
    BkCalendarPlan* plan = fixture.addPlan(QTime(8, 7, 40), QTime(9, 0, 59), true);
    QCOMPARE(plan->rect, QRectF(1.0, 215, 204, 68));
}

void tst_BkCalendarColumn::shouldFollowMatchingPlansOnly()
{
    BkColumnFixture fixture;
    // A plan that arrives without a signal shows only at the next refresh.
    fixture.model.blockSignals(true);
    fixture.addPlan(QTime(8, 0), QTime(9, 0), true);
    fixture.model.blockSignals(false);
    QCOMPARE(fixture.column->plans().size(), 0);

    auto* other = new BkCalendarPlan();
    other->date = fixture.date.addDays(1);
    other->start = QTime(8, 0);
    other->end = QTime(9, 0);
    other->resource = fixture.resource;
    fixture.model.addItem(other);
    QCOMPARE(fixture.column->plans().size(), 0);

    auto* resourcePlan = new BkCalendarPlan();
    resourcePlan->date = fixture.date;
    resourcePlan->start = QTime(8, 0);
    resourcePlan->end = QTime(9, 0);
    resourcePlan->resource = BkCalendarResource(1, QString(), 1); // resource 1, not user 1
    fixture.model.addItem(resourcePlan);
    QCOMPARE(fixture.column->plans().size(), 0);

    fixture.addPlan(QTime(10, 0), QTime(11, 0), false);
    QCOMPARE(fixture.column->plans().size(), 2);
}

void tst_BkCalendarColumn::shouldFollowChangedAndRemovedPlans()
{
    BkColumnFixture fixture;
    BkCalendarPlan* plan = fixture.addPlan(QTime(8, 0), QTime(9, 0), true);
    plan->start = QTime(7, 0);
    emit fixture.model.planChanged(plan);
    QCOMPARE(plan->rect.y(), 60 * 1.5 + 50);

    fixture.model.removeItem(plan);
    QVERIFY(fixture.column->plans().isEmpty());
    delete plan;
}

void tst_BkCalendarColumn::shouldLetGoOfThePlansThatAClearDeletes()
{
    // A clear deletes the plans without a removal each. The column paints and answers without them
    // until its next update, which finds the plans the host hands over again.
    BkColumnFixture fixture;
    fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    QCOMPARE(fixture.column->plans().size(), 1);
    QVERIFY(fixture.column->planAt(QTime(9, 0), QTime()));

    fixture.model.clear();
    QVERIFY(fixture.column->plans().isEmpty());
    QVERIFY(!fixture.column->planAt(QTime(9, 0), QTime()));
    QVERIFY(!fixture.column->allowBooking(QTime(9, 0), QTime(9, 30)));
    QImage image(400, 1400, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    fixture.column->paint(&painter, &option, nullptr);
    painter.end();

    fixture.addPlan(QTime(10, 0), QTime(11, 0), true);
    QCOMPARE(fixture.column->plans().size(), 1);
    QVERIFY(fixture.column->allowBooking(QTime(10, 0), QTime(10, 30)));
}

void tst_BkCalendarColumn::shouldMakeBoxesForShownBookings()
{
    BkColumnFixture fixture;
    fixture.model.blockSignals(true);
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(5, 0), QTime(5, 30), 2);  // before the scale
    BkCalendarItem* c = fixture.addItem(QTime(5, 30), QTime(6, 30), 3); // reaches into it
    fixture.model.blockSignals(false);
    QVERIFY(!a->widget);

    fixture.column->updateChildren();
    QCOMPARE(fixture.widgets().size(), 2);
    QVERIFY(a->widget);
    QVERIFY(!b->widget);
    QVERIFY(c->widget);
    QCOMPARE(a->widget->parentItem(), fixture.column);
    QCOMPARE(a->widget->pos(), QPointF(0, 320));
    QCOMPARE(a->widget->boundingRect(), QRectF(0, 0, 200, 90));
}

void tst_BkCalendarColumn::shouldWireEachNewBox()
{
    BkColumnFixture fixture;
    fixture.scheme.statusColors.insert(3, BkCalendarStatusEntry());
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItemWidget* widget = item->widget;
    QVERIFY(widget);
    QCOMPARE(widget->data(0).toInt(), 0);
    QCOMPARE(widget->data(ItemKindRole).toInt(), 101);
    QCOMPARE(widget->colorScheme(), &fixture.scheme);
    QCOMPARE(widget->timeScale(), fixture.scale);
    QCOMPARE(widget->column(), fixture.column);
    QCOMPARE(widget->columnRect().width(), 200.0);

    QSignalSpy activated(fixture.column, &BkCalendarColumn::itemActivated);
    QSignalSpy menu(fixture.column, &BkCalendarColumn::itemContextMenu);
    emit widget->itemActivated(item);
    emit widget->itemContextMenu(QPoint(3, 4), item);
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.first().first().value<BkCalendarItem*>(), item);
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.first().first().toPoint(), QPoint(3, 4));

    fixture.column->setWidthScale(305.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 300.0);
    QCOMPARE(widget->boundingRect().width(), 300.0);
}

void tst_BkCalendarColumn::shouldIgnoreBookingsOfOtherDateOrKey()
{
    BkColumnFixture fixture;
    auto* tomorrow = new BkCalendarItem();
    tomorrow->setDate(fixture.date.addDays(1));
    tomorrow->setUserId(1);
    tomorrow->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(tomorrow);

    auto* otherUser = new BkCalendarItem();
    otherUser->setDate(fixture.date);
    otherUser->setUserId(2);
    otherUser->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(otherUser);

    auto* resourceOne = new BkCalendarItem();
    resourceOne->setDate(fixture.date);
    resourceOne->setResourceId(1);
    resourceOne->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(resourceOne);

    QVERIFY(fixture.widgets().isEmpty());
    QVERIFY(!tomorrow->widget);
    QVERIFY(!otherUser->widget);
    QVERIFY(!resourceOne->widget);
}

void tst_BkCalendarColumn::shouldGiveOutOfScaleBookingBoxUntilRebuild()
{
    BkColumnFixture fixture;
    BkCalendarItem* early = fixture.addItem(QTime(4, 0), QTime(5, 0), 1);
    QVERIFY(early->widget);
    QCOMPARE(fixture.widgets().size(), 1);

    fixture.column->updateChildren();
    QVERIFY(!early->widget);
    QVERIFY(fixture.widgets().isEmpty());
}

void tst_BkCalendarColumn::shouldMoveBoxWhenBookingChanges()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    item->setTime(QTime(11, 0), QTime(11, 45));
    QCOMPARE(item->widget->pos(), QPointF(0, 500));
    QCOMPARE(item->widget->boundingRect().height(), 67.5);
}

void tst_BkCalendarColumn::shouldDropBoxWhenBookingIsRemoved()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> widget = item->widget;
    fixture.model.removeItem(item);
    QVERIFY(!item->widget);
    QVERIFY(widget);
    QVERIFY(!widget->item());
    BkColumnFixture::flushDeletes();
    QVERIFY(!widget);
    QVERIFY(fixture.widgets().isEmpty());
    delete item;
}

void tst_BkCalendarColumn::shouldMakeNoBoxForABookingTheHostTookAwayAsItCame()
{
    // A host that filters bookings may take one away in its own answer to the model's notice of it,
    // heard before the column's; or take it away and add it again, which the column hears inside.
    BkColumnFixture fixture;
    QObject::disconnect(&fixture.model, &BkCalendarModel::itemAdded, fixture.column, nullptr);
    QList<BkCalendarItem*> takenAway;
    QObject::connect(&fixture.model, &BkCalendarModel::itemAdded, &fixture.model, [&](BkCalendarItem* item) {
        if (item->title() == QStringLiteral("filtered")) {
            fixture.model.removeItem(item);
            takenAway << item;
        } else if (item->title() == QStringLiteral("again")) {
            item->setTitle(QStringLiteral("kept again"));
            fixture.model.removeItem(item);
            fixture.model.addItem(item);
        }
    });
    QObject::connect(&fixture.model, &BkCalendarModel::itemAdded, fixture.column,
                     &BkCalendarColumn::itemAdded);

    // A booking of the column's day and user, with the title that tells the host what to do.
    const auto add = [&fixture](int id, const QString& title, QTime start, QTime end) {
        auto* item = new BkCalendarItem();
        item->id = id;
        item->setTitle(title);
        item->setDate(fixture.date);
        item->setUserId(fixture.resource.id);
        item->setTime(start, end);
        fixture.model.addItem(item);
        return item;
    };
    BkCalendarItem* kept = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* filtered = add(2, QStringLiteral("filtered"), QTime(9, 30), QTime(10, 30));
    QCOMPARE(takenAway.size(), 1);
    QVERIFY(!filtered->widget);
    QCOMPARE(fixture.widgets().size(), 1);
    QCOMPARE(fixture.widgets().first()->item(), kept);
    // The box of the booking kept stands alone, over the whole width.
    QCOMPARE(fixture.widgets().first()->boundingRect().width(), kept->widget->boundingRect().width());
    QCOMPARE(kept->widget->colCount(), 1);

    BkCalendarItem* again = add(3, QStringLiteral("again"), QTime(11, 0), QTime(12, 0));
    QCOMPARE(fixture.widgets().size(), 2);
    QVERIFY(again->widget);
    QCOMPARE(again->widget->item(), again);
    delete filtered;
}

void tst_BkCalendarColumn::shouldNeverReuseBoxes()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> first = item->widget;
    fixture.column->update();
    QVERIFY(!first);
    QVERIFY(item->widget);
    QCOMPARE(fixture.widgets().size(), 1);
    QCOMPARE(fixture.column->childItems().size(), 2); // the header stays
}

// The column's children come in stacking order: by z, and among equals in the order they came,
// whether the boxes came one by one or in one rebuild. The header is listed last, above every box.
void tst_BkCalendarColumn::shouldListBoxesInTheirOrderUnderTheHeader()
{
    BkColumnFixture fixture;
    BkCalendarColumn* column = fixture.column;
    BkCalendarHeader* header = column->header();
    using Children = QList<QGraphicsItem*>;

    // One by one.
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(8, 0), QTime(9, 0), 2);
    BkCalendarItem* c = fixture.addItem(QTime(11, 0), QTime(12, 0), 3);
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, header}));

    // A raised box goes after the others; lowered again, it takes its old place among them.
    a->widget->setZValue(100.0);
    QCOMPARE(column->childItems(), (Children{b->widget, c->widget, a->widget, header}));
    a->widget->setZValue(0.0);
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, header}));

    // A box that comes from the next day's column is the last of the boxes.
    auto* next = new BkCalendarColumn(nullptr, false);
    fixture.scene.addItem(next);
    next->setTimeScale(fixture.scale);
    next->init(-1.0);
    next->setModel(&fixture.model);
    next->setDate(fixture.date.addDays(1));
    next->setResource(fixture.resource);
    next->update();
    auto* d = new BkCalendarItem();
    d->id = 4;
    d->setDate(fixture.date.addDays(1));
    d->setUserId(fixture.resource.id);
    d->setTime(QTime(14, 0), QTime(15, 0));
    fixture.model.addItem(d);
    BkCalendarItemWidget* moved = d->widget;
    QCOMPARE(moved->parentItem(), next);
    fixture.addPlan(QTime(13, 0), QTime(16, 0), true);
    QVERIFY(column->tryToMoveItem(d, QTime(14, 0)));
    QCOMPARE(d->widget, moved);
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, moved, header}));

    // In one rebuild, in the model's order; a booking that comes afterwards is the last of the boxes.
    column->update();
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, d->widget, header}));
    BkCalendarItem* e = fixture.addItem(QTime(7, 0), QTime(8, 0), 5);
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, d->widget, e->widget, header}));
    b->widget->setZValue(1.0);
    QCOMPARE(column->childItems(), (Children{a->widget, c->widget, d->widget, e->widget, b->widget, header}));
    b->widget->setZValue(0.0);
    QCOMPARE(column->childItems(), (Children{a->widget, b->widget, c->widget, d->widget, e->widget, header}));

    // The header is drawn above the boxes.
    const QList<QGraphicsItem*> topFirst = fixture.scene.items(Qt::DescendingOrder);
    QVERIFY(topFirst.indexOf(header) < topFirst.indexOf(a->widget));

    // With every box gone, the next ones again stand in the order they came, one by one and rebuilt.
    for (BkCalendarItem* item : {a, b, c, d, e}) {
        fixture.model.removeItem(item);
        delete item;
    }
    fixture.flushDeletes();
    QCOMPARE(column->childItems(), (Children{header}));
    BkCalendarItem* f = fixture.addItem(QTime(10, 0), QTime(11, 0), 6);
    BkCalendarItem* g = fixture.addItem(QTime(9, 0), QTime(10, 0), 7);
    f->widget->setZValue(1.0);
    QCOMPARE(column->childItems(), (Children{g->widget, f->widget, header}));
    f->widget->setZValue(0.0);
    QCOMPARE(column->childItems(), (Children{f->widget, g->widget, header}));
    column->update();
    BkCalendarItem* h = fixture.addItem(QTime(12, 0), QTime(13, 0), 8);
    QCOMPARE(column->childItems(), (Children{f->widget, g->widget, h->widget, header}));
}

void tst_BkCalendarColumn::shouldTellDateWhenSelected()
{
    BkColumnFixture fixture;
    QSignalSpy selected(fixture.column, &BkCalendarColumn::dateSelected);
    fixture.column->setSelected(true);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.first().first().toDate(), fixture.date);
    fixture.column->setSelected(false);
    QCOMPARE(selected.count(), 1);
}

void tst_BkCalendarColumn::shouldListItemsWithOrWithoutReserved()
{
    BkColumnFixture fixture;
    BkCalendarItem* late = fixture.addItem(QTime(14, 0), QTime(15, 0), 1);
    BkCalendarItem* reserved = fixture.addItem(QTime(8, 0), QTime(9, 0), 2, BkCalendarItem::Reserved);
    BkCalendarItem* early = fixture.addItem(QTime(9, 0), QTime(10, 0), 3);
    QCOMPARE(fixture.column->getItems(false), (QList<BkCalendarItem*>{late, reserved, early}));
    QCOMPARE(fixture.column->getItems(true), (QList<BkCalendarItem*>{late, early}));
    QCOMPARE(fixture.column->getSortedItems(), (QList<BkCalendarItem*>{early, late}));
}

void tst_BkCalendarColumn::shouldFindSelectedItem()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* reserved = fixture.addItem(QTime(11, 0), QTime(12, 0), 2, BkCalendarItem::Reserved);
    QVERIFY(!fixture.column->getSelectedItem());
    reserved->widget->setSelected(true);
    QVERIFY(!fixture.column->getSelectedItem());
    a->widget->setSelected(true);
    QCOMPARE(fixture.column->getSelectedItem(), a);
}

void tst_BkCalendarColumn::shouldTellWhetherChildIsSelected()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QVERIFY(!fixture.column->isChildSelected());
    fixture.column->header()->QGraphicsItem::setSelected(true);
    QVERIFY(fixture.column->header()->isSelected());
    QVERIFY(!fixture.column->isChildSelected());
    a->widget->setSelected(true);
    QVERIFY(fixture.column->isChildSelected());
}

void tst_BkCalendarColumn::shouldWalkForwardThroughSortedItems()
{
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    view.show();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    BkCalendarItem* late = fixture.addItem(QTime(14, 0), QTime(15, 0), 1);
    BkCalendarItem* early = fixture.addItem(QTime(9, 0), QTime(10, 0), 2);
    fixture.addItem(QTime(11, 0), QTime(12, 0), 3, BkCalendarItem::Reserved);

    fixture.column->selectNextItem();
    QVERIFY(early->widget->isSelected());
    QVERIFY(early->widget->hasFocus());
    fixture.column->selectNextItem();
    QVERIFY(!early->widget->isSelected());
    QVERIFY(late->widget->isSelected());
    QVERIFY(late->widget->hasFocus());
    fixture.column->selectNextItem(); // from the last, round to the first
    QVERIFY(early->widget->isSelected());
    QVERIFY(!late->widget->isSelected());
}

void tst_BkCalendarColumn::shouldWalkThroughItsOwnBoxesOfBookingsThatTwoColumnsShow()
{
    // In a group of a person and a room, their booking stands in both columns, and the booking names
    // the newest of its boxes, the room's. A walk through the person's column stays in that column.
    BkTest::BookingScene s;
    const QDate day(2024, 3, 11);
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    const BkCalendarResource room(QVariant(5), QStringLiteral("Room 5"), 1);
    BkCalendarItem* shared = s.addItem(1, day, anna.id, room.id, QTime(9, 0), QTime(10, 0));
    BkCalendarItem* own = s.addItem(2, day, anna.id, QVariant(), QTime(11, 0), QTime(12, 0));
    BkCalendarColumn* annas = s.addColumn(day, anna);
    BkCalendarColumn* rooms = s.addColumn(day, room);
    s.show();
    QVERIFY(QTest::qWaitForWindowActive(&s.view));
    BkCalendarItemWidget* annasShared = BkTest::boxesOf(annas, shared).value(0);
    BkCalendarItemWidget* roomsShared = BkTest::boxesOf(rooms, shared).value(0);
    QVERIFY(annasShared && roomsShared);
    QCOMPARE(shared->widget, roomsShared);

    annas->selectNextItem();
    QVERIFY(annasShared->isSelected());
    QVERIFY(annasShared->hasFocus());
    QVERIFY(!roomsShared->isSelected());
    QCOMPARE(annas->getSelectedItem(), shared);
    QCOMPARE(rooms->getSelectedItem(), nullptr);
    annas->selectNextItem();
    QVERIFY(!annasShared->isSelected());
    QVERIFY(own->widget->isSelected());
    QCOMPARE(annas->getSelectedItem(), own);
    annas->selectPreviousItem();
    QVERIFY(annasShared->isSelected());
    QVERIFY(!own->widget->isSelected());
    QVERIFY(!roomsShared->isSelected());

    // The room's column walks through its own box of the booking.
    rooms->selectNextItem();
    QVERIFY(roomsShared->isSelected());
    QVERIFY(roomsShared->hasFocus());
    QCOMPARE(rooms->getSelectedItem(), shared);
}

void tst_BkCalendarColumn::shouldWalkBackwardThroughSortedItems()
{
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    view.show();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    BkCalendarItem* late = fixture.addItem(QTime(14, 0), QTime(15, 0), 1);
    BkCalendarItem* early = fixture.addItem(QTime(9, 0), QTime(10, 0), 2);

    fixture.column->selectPreviousItem(); // none selected: the last
    QVERIFY(late->widget->isSelected());
    QVERIFY(late->widget->hasFocus());
    fixture.column->selectPreviousItem();
    QVERIFY(early->widget->isSelected());
    QVERIFY(!late->widget->isSelected());
    fixture.column->selectPreviousItem(); // from the first, round to the last
    QVERIFY(late->widget->isSelected());
    QVERIFY(!early->widget->isSelected());
}

void tst_BkCalendarColumn::shouldNotWalkWhenOnlyReservedItems()
{
    BkColumnFixture fixture;
    BkCalendarItem* reserved = fixture.addItem(QTime(9, 0), QTime(10, 0), 1, BkCalendarItem::Reserved);
    fixture.column->selectNextItem();
    fixture.column->selectPreviousItem();
    QVERIFY(!reserved->widget->isSelected());
    QVERIFY(fixture.scene.selectedItems().isEmpty());
}

void tst_BkCalendarColumn::shouldKeepBoxlessItemsOutOfWalks()
{
    BkColumnFixture fixture;
    BkCalendarItem* inside = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* outside = fixture.addItem(QTime(4, 0), QTime(5, 0), 2);
    fixture.column->updateChildren(); // the early booking loses its box
    QVERIFY(!outside->widget);

    fixture.column->selectNextItem();
    QVERIFY(inside->widget->isSelected());
    fixture.column->selectNextItem();
    QVERIFY(inside->widget->isSelected());
    fixture.column->selectPreviousItem();
    QVERIFY(inside->widget->isSelected());
    QCOMPARE(fixture.column->getSelectedItem(), inside);

    BkColumnFixture alone;
    BkCalendarItem* only = alone.addItem(QTime(4, 0), QTime(5, 0), 1);
    alone.column->updateChildren();
    QVERIFY(!only->widget);
    alone.column->selectNextItem();
    alone.column->selectPreviousItem();
    QVERIFY(!alone.column->getSelectedItem());
}

void tst_BkCalendarColumn::shouldEndWalkWhenHostReloadsAtSelectionChange_data()
{
    QTest::addColumn<bool>("forward");
    QTest::newRow("next") << true;
    QTest::newRow("previous") << false;
}

// The scene tells the host of every change of selection at once. A host that reloads its bookings
// there takes the walk's bookings away; the boxes stay until the next update, with no booking.
void tst_BkCalendarColumn::shouldEndWalkWhenHostReloadsAtSelectionChange()
{
    QFETCH(bool, forward);
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    view.show();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    BkCalendarItem* early = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* late = fixture.addItem(QTime(14, 0), QTime(15, 0), 2);
    if (forward)
        fixture.column->selectNextItem();
    else
        fixture.column->selectPreviousItem();
    QVERIFY((forward ? early : late)->widget->isSelected());
    const QList<BkCalendarItemWidget*> boxes = fixture.widgets();
    QCOMPARE(boxes.size(), 2);

    int reloads = 0;
    connect(&fixture.scene, &QGraphicsScene::selectionChanged, this, [&] {
        if (reloads++)
            return;
        // The host reloads, and the day it reads now is another one.
        fixture.model.clear();
        for (int i = 0; i < 4; ++i) {
            auto* other = new BkCalendarItem();
            other->id = 10 + i;
            other->setDate(fixture.date.addDays(1));
            other->setUserId(fixture.resource.id);
            other->setTime(QTime(8 + i, 0), QTime(9 + i, 0));
            fixture.model.addItem(other);
        }
    });
    if (forward)
        fixture.column->selectNextItem();
    else
        fixture.column->selectPreviousItem();
    QCOMPARE(reloads, 1);
    // The boxes wait for the column's next update with no booking: none is selected, none has focus.
    QCOMPARE(fixture.widgets(), boxes);
    for (BkCalendarItemWidget* box : boxes) {
        QVERIFY(!box->item());
        QVERIFY(!box->isSelected());
        QVERIFY(!box->hasFocus());
    }
    fixture.column->update();
    QVERIFY(fixture.widgets().isEmpty());
}

void tst_BkCalendarColumn::shouldActivatePlanOnDoubleClickOfBookableBlock()
{
    BkColumnFixture fixture;
    BkCalendarPlan* open = fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    fixture.addPlan(QTime(13, 0), QTime(16, 0), false);
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    QSignalSpy activated(fixture.column, &BkCalendarColumn::planActivated);

    const QPointF inOpen(150, sceneY(QTime(10, 0)));
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, view.mapFromScene(inOpen));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.first().at(0).value<BkCalendarPlan*>(), open);
    const double itemY = fixture.column->mapFromScene(view.mapToScene(view.mapFromScene(inOpen))).y();
    QCOMPARE(activated.first().at(1).toTime(), fixture.scale->timeAt(itemY));
    QCOMPARE(activated.first().at(1).toTime(), QTime(10, 0));

    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                       view.mapFromScene(QPointF(150, sceneY(QTime(14, 0)))));
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                       view.mapFromScene(QPointF(150, sceneY(QTime(17, 0)))));
    QCOMPARE(activated.count(), 1);
}

void tst_BkCalendarColumn::shouldOfferPlanMenuOnContextMenuOfBookableBlock()
{
    BkColumnFixture fixture;
    BkCalendarPlan* open = fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    fixture.addPlan(QTime(13, 0), QTime(16, 0), false);
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    QSignalSpy menu(fixture.column, &BkCalendarColumn::planContextMenu);

    const QPoint pos = view.mapFromScene(QPointF(150, sceneY(QTime(9, 30))));
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, view.viewport()->mapToGlobal(pos));
    QApplication::sendEvent(view.viewport(), &event);
    QVERIFY(event.isAccepted());
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.first().at(0).toPoint(), view.viewport()->mapToGlobal(pos));
    QCOMPARE(menu.first().at(1).value<BkCalendarPlan*>(), open);
    QCOMPARE(menu.first().at(2).toTime(), QTime(9, 30));

    const QPoint closedPos = view.mapFromScene(QPointF(150, sceneY(QTime(14, 0))));
    QContextMenuEvent closed(QContextMenuEvent::Mouse, closedPos, view.viewport()->mapToGlobal(closedPos));
    QApplication::sendEvent(view.viewport(), &closed);
    QVERIFY(closed.isAccepted());
    QCOMPARE(menu.count(), 1);
}

void tst_BkCalendarColumn::shouldOfferPlanMenuOnRightReleaseOfAnyBlock()
{
    BkColumnFixture fixture;
    fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    BkCalendarPlan* closed = fixture.addPlan(QTime(13, 0), QTime(16, 0), false);
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    QSignalSpy menu(fixture.column, &BkCalendarColumn::planContextMenu);

    // The column holds the mouse while the left button is down; a right click then reaches it.
    const QPointF at(150, sceneY(QTime(14, 0)));
    sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonPress, at, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::RightButton, Qt::LeftButton);
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.first().at(1).value<BkCalendarPlan*>(), closed);
    QCOMPARE(menu.first().at(2).toTime(), QTime(14, 0));
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(menu.count(), 1); // the left release offers nothing

    // Delivered straight to the column, as the scene does for its mouse grabber.
    QGraphicsSceneMouseEvent release(QEvent::GraphicsSceneMouseRelease);
    release.setButton(Qt::RightButton);
    release.setPos(QPointF(10, sceneY(QTime(15, 0)) - 25.0));
    release.setScreenPos(QPoint(5, 6));
    fixture.scene.sendEvent(fixture.column, &release);
    QCOMPARE(menu.count(), 2);
    QCOMPARE(menu.last().at(0).toPoint(), QPoint(5, 6));
    QCOMPARE(menu.last().at(2).toTime(), QTime(15, 0));

    // Outside every block nothing is offered.
    release.setPos(QPointF(10, sceneY(QTime(17, 0)) - 25.0));
    fixture.scene.sendEvent(fixture.column, &release);
    QCOMPARE(menu.count(), 2);
}

// A plain right-click, no other button held: the release reaches the column over any block, and
// the press on the background still deselects the booking as any press that no box takes.
void tst_BkCalendarColumn::shouldOfferPlanMenuOnAPlainRightClick()
{
    BkColumnFixture fixture;
    BkCalendarPlan* open = fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    BkCalendarPlan* closed = fixture.addPlan(QTime(13, 0), QTime(16, 0), false);
    BkCalendarItem* booking = fixture.addItem(QTime(8, 0), QTime(8, 30));
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    QSignalSpy menu(fixture.column, &BkCalendarColumn::planContextMenu);
    booking->widget->setSelected(true);

    const QPointF onClosed(150, sceneY(QTime(14, 0)));
    sendMouse(view, QEvent::MouseButtonPress, onClosed, Qt::RightButton, Qt::RightButton);
    QVERIFY(!booking->widget->isSelected());
    QVERIFY(!fixture.column->isSelected());
    sendMouse(view, QEvent::MouseButtonRelease, onClosed, Qt::RightButton, Qt::NoButton);
    QCOMPARE(menu.count(), 1);
    QCOMPARE(menu.last().at(0).toPoint(), view.viewport()->mapToGlobal(view.mapFromScene(onClosed)));
    QCOMPARE(menu.last().at(1).value<BkCalendarPlan*>(), closed);
    QCOMPARE(menu.last().at(2).toTime(), QTime(14, 0));

    const QPointF onOpen(150, sceneY(QTime(10, 0)));
    sendMouse(view, QEvent::MouseButtonPress, onOpen, Qt::RightButton, Qt::RightButton);
    sendMouse(view, QEvent::MouseButtonRelease, onOpen, Qt::RightButton, Qt::NoButton);
    QCOMPARE(menu.count(), 2);
    QCOMPARE(menu.last().at(1).value<BkCalendarPlan*>(), open);

    // Outside every block the click offers nothing; with Ctrl held the selection stays.
    booking->widget->setSelected(true);
    const QPointF outside(150, sceneY(QTime(17, 0)));
    const QPoint pos = view.mapFromScene(outside);
    QMouseEvent press(QEvent::MouseButtonPress, pos, view.viewport()->mapToGlobal(pos), Qt::RightButton,
                      Qt::RightButton, Qt::ControlModifier);
    QApplication::sendEvent(view.viewport(), &press);
    QVERIFY(booking->widget->isSelected());
    sendMouse(view, QEvent::MouseButtonRelease, outside, Qt::RightButton, Qt::NoButton);
    QCOMPARE(menu.count(), 2);
    QVERIFY(!fixture.scene.mouseGrabberItem());
}

void tst_BkCalendarColumn::shouldOutliveABoxThatTheHostRebuildsWhenItIsClicked()
{
    // A click selects the box, and the scene tells the host at once, while Qt is still selecting it
    // and handling the press. A host that answers by showing the day afresh takes the box away.
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    BkCalendarItem* booking = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> box = booking->widget;
    int told = 0;
    connect(&fixture.scene, &QGraphicsScene::selectionChanged, this, [&] {
        if (told++ == 0)
            fixture.column->update();
    });
    const QPointF at = box->sceneBoundingRect().center();
    sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(told > 0);
    // The old box is out of the scene, and goes once the event loop comes round.
    checkBoxReplaced(fixture, box, booking);
    if (QTest::currentTestFailed())
        return;
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    BkColumnFixture::flushDeletes();
    QVERIFY(!box);
    // The new box takes a click like any other.
    QPointer<BkCalendarItemWidget> fresh = booking->widget;
    sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    QVERIFY(fresh);
    QVERIFY(fresh->isSelected());
}

void tst_BkCalendarColumn::shouldNotTakeAwayAgainABoxThatIsBeingDeleted()
{
    // The booking of the box with the focus leaves the store, and its box is deleted when the event
    // loop comes round. As the dying box leaves the scene, the scene tells of the focus going at once,
    // and the host answers by measuring the scene and updating the column. The box is still whole
    // then: it gives its bounds, and the update passes it over instead of deleting it a second time.
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    BkCalendarItem* leaving = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* staying = fixture.addItem(QTime(11, 0), QTime(12, 0), 2);
    QPointer<BkCalendarItemWidget> box = leaving->widget;
    box->setFocus();
    QVERIFY(box->hasFocus());
    int told = 0;
    connect(&fixture.scene, &QGraphicsScene::focusItemChanged, this, [&] {
        ++told;
        fixture.scene.itemsBoundingRect();
        fixture.column->updateChildren();
    });
    fixture.model.removeItem(leaving);
    delete leaving;
    QVERIFY(box);
    BkColumnFixture::flushDeletes();
    QVERIFY(!box);
    QVERIFY(told > 0);
    BkColumnFixture::flushDeletes();
    QVERIFY(staying->widget);
    QCOMPARE(fixture.widgets(), QList<BkCalendarItemWidget*>{staying->widget});
}

void tst_BkCalendarColumn::shouldOutliveAHostThatUpdatesTheColumnAsTheFocusedBoxGoes()
{
    // A box has the focus, not the selection. The column is updated and its box goes; the scene tells
    // of the focus going with it at once, and the host answers by updating the column again.
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    BkCalendarItem* booking = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> box = booking->widget;
    box->setFocus();
    QVERIFY(box->hasFocus());
    QVERIFY(!box->isSelected());
    int told = 0;
    connect(&fixture.scene, &QGraphicsScene::focusItemChanged, this, [&] {
        if (told++ == 0)
            fixture.column->update();
    });
    fixture.column->update();

    QVERIFY(told > 0);
    // The old box is out of the scene, and goes once the event loop comes round; the booking has one
    // new box.
    checkBoxReplaced(fixture, box, booking);
    if (QTest::currentTestFailed())
        return;
    BkColumnFixture::flushDeletes();
    QVERIFY(!box);
    QCOMPARE(fixture.widgets(), QList<BkCalendarItemWidget*>{booking->widget});
}

void tst_BkCalendarColumn::shouldHoldNoPlanThatAClearDeletesAfterTheHostsAnswer()
{
    // The model tells of a clear before it deletes anything. A host that answers by showing the day
    // afresh has the column read the plans that are about to go: the column keeps none of them.
    BkColumnFixture fixture;
    fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    fixture.column->update();
    QCOMPARE(fixture.column->plans().size(), 1);
    int told = 0;
    connect(&fixture.model, &BkCalendarModel::reset, this, [&] {
        ++told;
        fixture.column->update();
    });
    fixture.model.clear();

    QCOMPARE(told, 1);
    QVERIFY(fixture.column->plans().isEmpty());
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    QVERIFY(!view.grab().isNull());
    // A plan that comes after the clear shows as before.
    fixture.addPlan(QTime(13, 0), QTime(15, 0), true);
    QCOMPARE(fixture.column->plans().size(), 1);
}

void tst_BkCalendarColumn::shouldOutliveAColumnThatTheHostDropsWhenItIsClicked()
{
    // A click selects the column, which tells the host of its date while Qt is still selecting it. A
    // host that answers with another set of days has the view take this column away.
    BkColumnFixture fixture;
    QGraphicsView view(&fixture.scene);
    QVERIFY(showWhole(view));
    BkCalendarItem* booking = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> box = booking->widget;
    QPointer<BkCalendarColumn> column = fixture.column;
    QList<QDate> told;
    connect(fixture.column, &BkCalendarColumn::dateSelected, this, [&](QDate date) {
        told << date;
        BkCalendarColumn::discard(column);
    });
    sendMouse(view, QEvent::MouseButtonPress, QPointF(150, sceneY(QTime(15, 0))), Qt::LeftButton,
              Qt::LeftButton);
    QCOMPARE(told, QList<QDate>{fixture.date});
    QVERIFY(column);
    QVERIFY(!column->scene());
    QVERIFY(!booking->widget);
    sendMouse(view, QEvent::MouseButtonRelease, QPointF(150, sceneY(QTime(15, 0))), Qt::LeftButton,
              Qt::NoButton);
    BkColumnFixture::flushDeletes();
    QVERIFY(!column);
    QVERIFY(!box);
    fixture.column = nullptr;
}

void tst_BkCalendarColumn::shouldFindPlanAtTime()
{
    BkColumnFixture fixture;
    BkCalendarPlan* morning = fixture.addPlan(QTime(8, 0), QTime(12, 0), true);
    BkCalendarPlan* closed = fixture.addPlan(QTime(12, 0), QTime(16, 0), false);
    BkCalendarColumn* column = fixture.column;
    QCOMPARE(column->planAt(QTime(9, 0), QTime()), morning);
    QCOMPARE(column->planAt(QTime(12, 0), QTime()), morning); // the first that holds it
    QCOMPARE(column->planAt(QTime(13, 0), QTime(14, 0)), closed);
    QCOMPARE(column->planAt(QTime(11, 0), QTime(13, 0)), nullptr);
    QCOMPARE(column->planAt(QTime(7, 0), QTime()), nullptr);
    QCOMPARE(column->planAt(QTime(), QTime(9, 0)), nullptr);
    QCOMPARE(column->planAt(QTime(10, 0), QTime(9, 0)), nullptr);
    QCOMPARE(column->planAt(QTime(8, 0), QTime(12, 0)), morning);

    BkColumnFixture empty;
    QCOMPARE(empty.column->planAt(QTime(9, 0), QTime()), nullptr);
}

void tst_BkCalendarColumn::shouldForwardHeaderActivation()
{
    BkColumnFixture fixture;
    QSignalSpy activated(fixture.column, &BkCalendarColumn::headerActivated);
    fixture.column->emitHeaderActivated();
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.first().at(0).value<BkCalendarColumn*>(), fixture.column);
    QCOMPARE(activated.first().at(1).value<BkCalendarResource>().id.toInt(), 1);
}

void tst_BkCalendarColumn::shouldSetHeaderText()
{
    BkColumnFixture fixture;
    fixture.column->setHeaderText("Room 4");
    QCOMPARE(fixture.column->header()->text(), QString("Room 4"));
}

void tst_BkCalendarColumn::shouldKeepRaiseSetting()
{
    BkCalendarColumn column(nullptr, false);
    column.setRaise(BkCalendarColumn::RaiseOnHover);
    QCOMPARE(column.raise(), BkCalendarColumn::RaiseOnHover);
    QCOMPARE(int(BkCalendarColumn::RaiseOnClick), 0);
    QCOMPARE(int(BkCalendarColumn::RaiseOnHover), 1);
    QCOMPARE(int(WidthProportional), 0);
    QCOMPARE(int(WidthFixed), 1);
}

void tst_BkCalendarColumn::shouldStartOnTheDayOfTheClock_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::newRow("a Sunday a minute before midnight") << QDateTime(QDate(2026, 11, 22), QTime(23, 59, 59));
    QTest::newRow("the last day of a month") << QDateTime(QDate(2026, 11, 30), QTime(0, 0));
    QTest::newRow("the last day of a year") << QDateTime(QDate(2026, 12, 31), QTime(23, 59));
    QTest::newRow("the day summer time starts") << QDateTime(QDate(2026, 3, 29), QTime(3, 0));
}

void tst_BkCalendarColumn::shouldStartOnTheDayOfTheClock()
{
    QFETCH(QDateTime, now);
    BkCalendarClock::setFixedNow(now);
    const QDateTime before = BkCalendarClock::now();
    BkCalendarClock::setFixedNow(now);
    BkCalendarColumn column(nullptr, false);
    BkCalendarClock::setFixedNow(before);
    QCOMPARE(column.date(), now.date());
}

FW_TEST_MAIN(tst_BkCalendarColumn)
#include "tst_bkcalendarcolumn.moc"
