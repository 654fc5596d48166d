// The box of one booking: construction, geometry from the booking's time, colours, the answers to
// the model's signals and the rule that the time decides where the box stands.

#include "BkColumnFixture.h"

#include <FwTestApplication.h>

#include <QGraphicsRectItem>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QStyleOptionGraphicsItem>
#include <QtTest>

class tst_BkCalendarItemWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void shouldBuildWithFlagsKindAndDefaults();
    void shouldPointAtItsBookingBothWays();
    void shouldShowToolTipOnlyWhenSettingIsOne_data();
    void shouldShowToolTipOnlyWhenSettingIsOne();
    void shouldTakeGeometryFromBookingTime();
    void shouldCountWholeMinutesAsQtCountsSeconds_data();
    void shouldCountWholeMinutesAsQtCountsSeconds();
    void shouldShareColumnWidthBySubColumn();
    void shouldFillWithStatusColourWhenSchemeKnowsIt();
    void shouldKeepOwnColoursForUnknownOrNullStatus_data();
    void shouldKeepOwnColoursForUnknownOrNullStatus();
    void shouldCopyGradientForSelectionWithoutScheme();
    void shouldDeriveBorderFromBottomColour();
    void shouldTakeNewColoursAtTheNextRefresh();
    void shouldTakeAnHslColourThatQtCallsEqual();
    void shouldIgnoreChangesOfOtherBookings();
    void shouldForgetBookingWhenRemovedAndRefuseEveryChange();
    void shouldIgnoreRemovalOfOtherBooking();
    void shouldRefusePositionThatTimeDoesNotGive();
    void shouldStandWhereTheTimeSaysOnAScaleOfFractions_data();
    void shouldStandWhereTheTimeSaysOnAScaleOfFractions();
    void shouldLetReservedBoxGoWhereProposed();
    void shouldRewireWidthWhenReparented();
    void shouldLayOutColumnWhenUpdated();
    void shouldLeaveBookingWhenDeleted();
    void shouldSurviveItsBooking();
    void shouldJoinItsColumnWholeAndFollowItsWidth();
    void shouldLetEveryBoxOfABookingSurviveIt_data();
    void shouldLetEveryBoxOfABookingSurviveIt();
    void shouldKeepTheOtherBookingOfABoxGivenOne();
    void shouldDoNothingWithoutScale();
};

void tst_BkCalendarItemWidget::init()
{
    FwApplication::app()->setValue(QVariant(0), "set_showtooltips");
}

void tst_BkCalendarItemWidget::shouldBuildWithFlagsKindAndDefaults()
{
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    QCOMPARE(widget.type(), 65537);
    QCOMPARE(int(BkCalendarItemWidget::Type), int(QGraphicsItem::UserType) + 1);
    QCOMPARE(widget.flags(), QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable |
                                 QGraphicsItem::ItemIsFocusable | QGraphicsItem::ItemSendsGeometryChanges |
                                 QGraphicsItem::ItemSendsScenePositionChanges);
    QVERIFY(widget.acceptHoverEvents());
    QCOMPARE(widget.data(ItemKindRole).toInt(), 101);
    QCOMPARE(widget.data(0).toInt(), 1);
    QVERIFY(!widget.parentItem());
    QVERIFY(!widget.column());
    QVERIFY(!widget.colorScheme());
    QCOMPARE(widget.timeScale(), fixture.scale);
    QVERIFY(!widget.moved());
    QVERIFY(!widget.expanded());
    QVERIFY(!widget.deleting());
    QCOMPARE(widget.pressPos(), QPointF(0, 0));
    QCOMPARE(widget.savedRect(), QRectF(0, 0, 0, 0));
    QCOMPARE(widget.columnRect(), QRectF(0, 0, 100, 100));
    // No layout has run: sub-column 1 of 1 stands one share to the right.
    QCOMPARE(widget.colIndex(), 1);
    QCOMPARE(widget.colCount(), 1);
    QCOMPARE(widget.boxX(), 100.0);
    QCOMPARE(widget.pos(), QPointF(100.0, 320.0));
}

void tst_BkCalendarItemWidget::shouldPointAtItsBookingBothWays()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QVERIFY(item->widget);
    QCOMPARE(item->widget->item(), item);
    QCOMPARE(item->widget->parentItem(), fixture.column);
    QCOMPARE(item->widget->column(), fixture.column);
    QCOMPARE(item->widget->colIndex(), 0);
}

void tst_BkCalendarItemWidget::shouldShowToolTipOnlyWhenSettingIsOne_data()
{
    QTest::addColumn<int>("setting");
    QTest::addColumn<bool>("shown");
    QTest::newRow("on") << 1 << true;
    QTest::newRow("off") << 0 << false;
    QTest::newRow("other value") << 2 << false;
}

void tst_BkCalendarItemWidget::shouldShowToolTipOnlyWhenSettingIsOne()
{
    QFETCH(int, setting);
    QFETCH(bool, shown);
    FwApplication::app()->setValue(QVariant(setting), "set_showtooltips");
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.setToolTip("Dentist");
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    QCOMPARE(widget.toolTip(), shown ? QString("Dentist") : QString());
}

void tst_BkCalendarItemWidget::shouldTakeGeometryFromBookingTime()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(9, 45), 1);
    BkCalendarItemWidget* widget = item->widget;
    QCOMPARE(widget->boxY(), 320.0);
    QCOMPARE(widget->boxHeight(), 67.5);
    QCOMPARE(widget->y(), 320.0);
    QCOMPARE(widget->boundingRect(), QRectF(0, 0, 200, 67.5));

    // Seconds do not count: whole minutes from the scale's start and of the length.
    item->setTime(QTime(9, 0, 59), QTime(9, 45, 58));
    QCOMPARE(widget->boxY(), 320.0);
    QCOMPARE(widget->boxHeight(), 66.0);
}

void tst_BkCalendarItemWidget::shouldCountWholeMinutesAsQtCountsSeconds_data()
{
    QTest::addColumn<QTime>("start");
    QTest::addColumn<QTime>("end");
    const auto at = [](int msecs) { return QTime::fromMSecsSinceStartOfDay(msecs); };
    QTest::newRow("whole minutes") << QTime(9, 0) << QTime(9, 45);
    QTest::newRow("seconds and milliseconds") << QTime(9, 0, 59, 999) << QTime(9, 45, 0, 1);
    QTest::newRow("a minute of whole seconds, less in milliseconds") << QTime(9, 0, 0, 999) << QTime(9, 1);
    QTest::newRow("end before start") << QTime(10, 0, 30) << QTime(9, 15, 10);
    QTest::newRow("before the scale") << QTime(5, 59, 1) << QTime(6, 0, 59);
    QTest::newRow("midnight to the last millisecond") << QTime(0, 0) << QTime(23, 59, 59, 999);
    QTest::newRow("no start") << QTime() << QTime(9, 0);
    QTest::newRow("no end") << QTime(9, 0) << QTime();
    // Times that a host's row may carry: outside a day, yet not empty.
    QTest::newRow("negative start") << at(-5) << QTime(9, 0);
    QTest::newRow("start at the end of the day") << at(24 * 3600 * 1000) << QTime(9, 0);
    QTest::newRow("end beyond the day") << QTime(9, 0) << at(24 * 3600 * 1000 + 60000);
}

void tst_BkCalendarItemWidget::shouldCountWholeMinutesAsQtCountsSeconds()
{
    // Whole minutes are QTime::secsTo divided by 60: no minutes for a time that is not valid, and
    // the milliseconds of each time dropped before the difference.
    QFETCH(QTime, start);
    QFETCH(QTime, end);
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(9, 45), 1);
    item->setTime(start, end);
    BkCalendarItemWidget* widget = item->widget;
    QCOMPARE(widget->boxY(), QTime(6, 0).secsTo(start) / 60 * 1.5 + 50.0);
    QCOMPARE(widget->boxHeight(), start.secsTo(end) / 60 * 1.5);
}

void tst_BkCalendarItemWidget::shouldShareColumnWidthBySubColumn()
{
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    widget.setColInfo(1, 2);
    widget.widthChanged(205.0);
    QCOMPARE(widget.columnRect().width(), 200.0);
    QCOMPARE(widget.boundingRect().width(), 100.0);
    QCOMPARE(widget.boxX(), 100.0);
    QCOMPARE(widget.x(), 100.0);
}

void tst_BkCalendarItemWidget::shouldFillWithStatusColourWhenSchemeKnowsIt()
{
    BkColumnFixture fixture;
    BkCalendarStatusEntry entry;
    entry.name = "Confirmed";
    entry.color = QColor(30, 160, 90);
    fixture.scheme.statusColors.insert(4, entry);
    auto* item = new BkCalendarItem();
    item->topColor = Qt::yellow;
    item->bottomColor = QColor(200, 100, 50);
    item->setStatusId(4);
    item->setDate(fixture.date);
    item->setUserId(1);
    item->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(item);

    const QLinearGradient gradient = item->widget->gradient();
    QCOMPARE(gradient.start(), QPointF(0, 0));
    QCOMPARE(gradient.finalStop(), QPointF(0, 100));
    QCOMPARE(gradient.stops().size(), 2);
    QCOMPARE(gradient.stops().at(0), QGradientStop(0.0, entry.color));
    QCOMPARE(gradient.stops().at(1), QGradientStop(1.0, entry.color.darker(150)));
    const QLinearGradient selected = item->widget->selectedGradient();
    QCOMPARE(selected.finalStop(), QPointF(0, 100));
    QCOMPARE(selected.stops().at(0), QGradientStop(0.0, fixture.scheme.selectedHeader));
    QCOMPARE(selected.stops().at(1), QGradientStop(1.0, fixture.scheme.selectedHeaderGradient));
    // The outline keeps to the booking's own colour.
    QCOMPARE(item->widget->border(),
             QColor::fromHsv(QColor(200, 100, 50).hsvHue(), QColor(200, 100, 50).hsvSaturation(), 190, 255));
}

void tst_BkCalendarItemWidget::shouldKeepOwnColoursForUnknownOrNullStatus_data()
{
    QTest::addColumn<QVariant>("statusId");
    QTest::newRow("unknown status") << QVariant(9);
    QTest::newRow("null status") << QVariant();
    QTest::newRow("status 0 unknown though map has others") << QVariant(0);
}

void tst_BkCalendarItemWidget::shouldKeepOwnColoursForUnknownOrNullStatus()
{
    QFETCH(QVariant, statusId);
    BkColumnFixture fixture;
    BkCalendarStatusEntry entry;
    entry.color = Qt::red;
    fixture.scheme.statusColors.insert(4, entry);
    auto* item = new BkCalendarItem();
    item->topColor = Qt::yellow;
    item->bottomColor = Qt::blue;
    item->setStatusId(statusId);
    item->setDate(fixture.date);
    item->setUserId(1);
    item->setTime(QTime(9, 0), QTime(10, 0));
    fixture.model.addItem(item);

    const QLinearGradient gradient = item->widget->gradient();
    QCOMPARE(gradient.stops().at(0), QGradientStop(0.0, QColor(Qt::yellow)));
    QCOMPARE(gradient.stops().at(1), QGradientStop(1.0, QColor(Qt::blue)));
    QCOMPARE(fixture.scheme.statusColors.size(), 1); // looking up does not add
}

void tst_BkCalendarItemWidget::shouldCopyGradientForSelectionWithoutScheme()
{
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.topColor = Qt::yellow;
    item.bottomColor = Qt::blue;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    QCOMPARE(widget.selectedGradient().stops(), widget.gradient().stops());
    QCOMPARE(widget.selectedGradient().finalStop(), QPointF(0, 100));
}

void tst_BkCalendarItemWidget::shouldDeriveBorderFromBottomColour()
{
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.bottomColor = QColor::fromHsv(210, 120, 200);
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    QCOMPARE(widget.border(), QColor::fromHsv(210, 120, 190, 255));

    // A colour darker than the step keeps a valid, black outline.
    item.bottomColor = QColor::fromHsv(0, 0, 4);
    widget.widthChanged(105.0);
    QVERIFY(widget.border().isValid());
    QCOMPARE(widget.border().value(), 0);
}

// A box works its colours out again only when what they come from changes; every source counts.
void tst_BkCalendarItemWidget::shouldTakeNewColoursAtTheNextRefresh()
{
    BkColumnFixture fixture;
    BkCalendarItem item;
    item.topColor = Qt::yellow;
    item.bottomColor = Qt::blue;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    widget.setColorScheme(&fixture.scheme);
    widget.itemChanged(&item);
    QCOMPARE(widget.gradient().stops().at(0).second, QColor(Qt::yellow));

    item.topColor = Qt::cyan;
    widget.itemChanged(&item);
    QCOMPARE(widget.gradient().stops().at(0).second, QColor(Qt::cyan));

    // The status table is edited under a status the booking keeps.
    BkCalendarStatusEntry entry;
    entry.color = Qt::red;
    fixture.scheme.statusColors.insert(5, entry);
    item.statusId = 5;
    widget.itemChanged(&item);
    QCOMPARE(widget.gradient().stops().at(1).second, QColor(Qt::red).darker(150));
    fixture.scheme.statusColors[5].color = Qt::green;
    widget.itemChanged(&item);
    QCOMPARE(widget.gradient().stops().at(0).second, QColor(Qt::green));

    fixture.scheme.selectedHeader = Qt::magenta;
    widget.itemChanged(&item);
    QCOMPARE(widget.selectedGradient().stops().at(0).second, QColor(Qt::magenta));

    // Without a scheme the selection shows the booking's own gradient again.
    item.statusId = QVariant();
    widget.setColorScheme(nullptr);
    widget.itemChanged(&item);
    QCOMPARE(widget.selectedGradient().stops(), widget.gradient().stops());
    QCOMPARE(widget.gradient().stops().at(0).second, QColor(Qt::cyan));

    item.bottomColor = QColor::fromHsv(100, 100, 100);
    widget.itemChanged(&item);
    QCOMPARE(widget.border(), QColor::fromHsv(100, 100, 90, 255));
}

// QColor compares colours given by hue, saturation and lightness only roughly: two such colours a
// hair apart count as equal, yet they give other pixels. The box must show the colour it was given.
void tst_BkCalendarItemWidget::shouldTakeAnHslColourThatQtCallsEqual()
{
    const QColor first = QColor::fromHslF(0.0, 20000 / 65535.0, 20970 / 65535.0);
    const QColor second = QColor::fromHslF(0.0, 20000 / 65535.0, 21010 / 65535.0);
    QVERIFY(first == second);
    QCOMPARE(first.rgb(), qRgb(0x6a, 0x39, 0x39));
    QCOMPARE(second.rgb(), qRgb(0x6b, 0x39, 0x39));

    BkColumnFixture fixture;
    BkCalendarItem item;
    item.topColor = first;
    item.bottomColor = first;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    QCOMPARE(widget.gradient().stops().at(0).second.rgb(), first.rgb());
    QCOMPARE(widget.gradient().stops().at(1).second.rgb(), first.rgb());

    item.topColor = second;
    item.bottomColor = second;
    widget.itemChanged(&item);
    QCOMPARE(widget.gradient().stops().at(0).second.rgb(), second.rgb());
    QCOMPARE(widget.gradient().stops().at(1).second.rgb(), second.rgb());
    QCOMPARE(widget.selectedGradient().stops().at(0).second.rgb(), second.rgb());
    int hue = 0;
    int saturation = 0;
    int value = 0;
    second.getHsv(&hue, &saturation, &value);
    QCOMPARE(widget.border().rgb(), QColor::fromHsv(hue, saturation, value - 10, 255).rgb());
}

void tst_BkCalendarItemWidget::shouldIgnoreChangesOfOtherBookings()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
    // a's new time is not announced...
    a->setBlocked(true);
    a->setTime(QTime(14, 0), QTime(15, 0));
    a->setBlocked(false);
    // ...so a change of b leaves a's box where it was,
    b->setTitle("Other");
    QCOMPARE(a->widget->y(), 320.0);
    // and a's own change brings it to its time.
    a->setTitle("Mine");
    QCOMPARE(a->widget->y(), 50.0 + 480 * 1.5);
}

void tst_BkCalendarItemWidget::shouldForgetBookingWhenRemovedAndRefuseEveryChange()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QPointer<BkCalendarItemWidget> widget = item->widget;
    widget->setZValue(5.0);
    fixture.model.removeItem(item);
    QVERIFY(widget);
    QVERIFY(!widget->item());
    QVERIFY(!item->widget);

    // Every change is answered with false until the box is gone, so a proposed position reads as
    // (0, 0) and a proposed z value as 0.
    widget->setPos(30, 400);
    QCOMPARE(widget->pos(), QPointF(0, 0));
    widget->setZValue(7.0);
    QCOMPARE(widget->zValue(), 0.0);
    // A box without booking draws nothing and does not mind further signals.
    widget->itemChanged(item);
    QImage image(50, 50, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    widget->paint(&painter, &option, nullptr);
    painter.end();
    QCOMPARE(image.pixelColor(10, 10), QColor(Qt::white));

    BkColumnFixture::flushDeletes();
    QVERIFY(!widget);
    delete item;
}

void tst_BkCalendarItemWidget::shouldIgnoreRemovalOfOtherBooking()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
    BkCalendarItemWidget* widget = a->widget;
    fixture.model.removeItem(b);
    BkColumnFixture::flushDeletes();
    QCOMPARE(a->widget, widget);
    QCOMPARE(widget->item(), a);
    delete b;
}

void tst_BkCalendarItemWidget::shouldRefusePositionThatTimeDoesNotGive()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItemWidget* widget = item->widget;
    QCOMPARE(widget->pos(), QPointF(0, 320));

    widget->setPos(20, 340); // another time: refused as a whole
    QCOMPARE(widget->pos(), QPointF(0, 320));
    widget->setPos(20, 320.9); // the same minute row: taken, at the time's y
    QCOMPARE(widget->pos(), QPointF(20, 320));
    widget->setPos(10, 319.0); // one row up
    QCOMPARE(widget->pos(), QPointF(20, 320));

    // A drag by the mouse proposes positions the same way.
    widget->moveBy(0, 45);
    QCOMPARE(widget->pos(), QPointF(20, 320));
}

void tst_BkCalendarItemWidget::shouldStandWhereTheTimeSaysOnAScaleOfFractions_data()
{
    QTest::addColumn<float>("minuteHeight");
    QTest::addColumn<float>("topMargin");
    QTest::addColumn<QTime>("start");
    QTest::newRow("1.5 with 50") << 1.5f << 50.0f << QTime(7, 10);
    QTest::newRow("1.7 with 33.3") << 1.7f << 33.3f << QTime(6, 48);
    QTest::newRow("0.9 with 10.1") << 0.9f << 10.1f << QTime(6, 48);
    QTest::newRow("0.9 with 25.7") << 0.9f << 25.7f << QTime(7, 36);
}

void tst_BkCalendarItemWidget::shouldStandWhereTheTimeSaysOnAScaleOfFractions()
{
    // The y that the time gives is worked out with the scale's values widened, and only then kept
    // as a float: for these scales that float is the very y of the booking's row, so the box takes
    // the place its time gives it.
    QFETCH(float, minuteHeight);
    QFETCH(float, topMargin);
    QFETCH(QTime, start);
    BkColumnFixture fixture;
    fixture.scale->setMinuteHeight(minuteHeight);
    fixture.scale->setTopMargin(topMargin);
    BkCalendarItem item;
    item.setTime(start, start.addSecs(3600));
    BkCalendarItemWidget widget(&item, fixture.scale, nullptr);
    const double y = QTime(6, 0).secsTo(start) / 60 * double(minuteHeight) + double(topMargin);
    QCOMPARE(widget.boxY(), y);
    QCOMPARE(widget.pos(), QPointF(widget.boxX(), y));

    // A proposal anywhere in that row is taken at the row's y.
    widget.setPos(10.0, y + 0.5 * double(minuteHeight));
    QCOMPARE(widget.pos(), QPointF(10.0, y));
}

void tst_BkCalendarItemWidget::shouldLetReservedBoxGoWhereProposed()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1, BkCalendarItem::Reserved);
    item->widget->setPos(0, 340);
    QCOMPARE(item->widget->pos(), QPointF(0, 340));
    // It still counts in the layout.
    BkCalendarItem* other = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    QCOMPARE(other->widget->colCount(), 2);
}

void tst_BkCalendarItemWidget::shouldRewireWidthWhenReparented()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItemWidget* widget = item->widget;

    auto* second = new BkCalendarColumn(nullptr, false);
    fixture.scene.addItem(second);
    second->setTimeScale(fixture.scale);
    second->setWidthScale(305.0, WidthFixed, -1.0);
    widget->setParentItem(second);
    QCOMPARE(widget->column(), second);

    fixture.column->setWidthScale(405.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 200.0);
    second->setWidthScale(155.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 150.0);
    QCOMPARE(widget->boundingRect().width(), 150.0);

    // A parent that is no column leaves the box without one.
    QGraphicsRectItem plain;
    fixture.scene.addItem(&plain);
    widget->setParentItem(&plain);
    QVERIFY(!widget->column());
    second->setWidthScale(255.0, WidthFixed, -1.0);
    QCOMPARE(widget->columnRect().width(), 150.0);
    widget->setParentItem(fixture.column);
    QCOMPARE(widget->column(), fixture.column);
}

void tst_BkCalendarItemWidget::shouldLayOutColumnWhenUpdated()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    QCOMPARE(a->widget->colCount(), 2);
    // Hiding a box runs no layout by itself...
    b->widget->setVisible(false);
    QCOMPARE(a->widget->colCount(), 2);
    // ...the host's refresh of a booking does.
    fixture.model.updateItem(b);
    QCOMPARE(a->widget->colCount(), 1);
    QCOMPARE(a->widget->boundingRect().width(), 200.0);

    // A box without column has nothing to lay out.
    BkCalendarItem loose;
    loose.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&loose, fixture.scale, nullptr);
    widget.updated();
    QCOMPARE(widget.colIndex(), 1);
}

void tst_BkCalendarItemWidget::shouldLeaveBookingWhenDeleted()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    delete a->widget;
    QVERIFY(!a->widget);
    // The column lays out what is left.
    QCOMPARE(b->widget->colCount(), 1);
    QCOMPARE(b->widget->x(), 0.0);
}

void tst_BkCalendarItemWidget::shouldSurviveItsBooking()
{
    BkColumnFixture fixture;
    auto* item = new BkCalendarItem();
    item->setTime(QTime(9, 0), QTime(10, 0));
    QPointer<BkCalendarItemWidget> widget = new BkCalendarItemWidget(item, fixture.scale, fixture.column);
    delete item;
    QVERIFY(widget);
    QVERIFY(!widget->item());
    widget->itemChanged(nullptr);
    widget->itemRemoved(nullptr);
    QVERIFY(widget);
}

void tst_BkCalendarItemWidget::shouldJoinItsColumnWholeAndFollowItsWidth()
{
    // Made in a column, the box stands in it, with the marks of a box, and takes the column's width
    // from then on; one made without a booking stands in the column as well.
    BkColumnFixture fixture;
    auto* item = new BkCalendarItem();
    item->setTime(QTime(9, 0), QTime(10, 0));
    auto* widget = new BkCalendarItemWidget(item, fixture.scale, fixture.column);
    QCOMPARE(widget->parentItem(), static_cast<QGraphicsItem*>(fixture.column));
    QCOMPARE(widget->column(), fixture.column);
    QCOMPARE(widget->scene(), fixture.column->scene());
    QCOMPARE(widget->data(ItemKindRole).toInt(), 101);
    QCOMPARE(widget->data(0).toInt(), 1);
    emit fixture.column->widthChanged(305.0);
    QCOMPARE(widget->columnRect().width(), 300.0);

    auto* empty = new BkCalendarItemWidget(nullptr, fixture.scale, fixture.column);
    QCOMPARE(empty->parentItem(), static_cast<QGraphicsItem*>(fixture.column));
    QCOMPARE(empty->column(), fixture.column);
    QCOMPARE(empty->data(ItemKindRole).toInt(), 101);
    delete widget;
    delete item;
}

void tst_BkCalendarItemWidget::shouldLetEveryBoxOfABookingSurviveIt_data()
{
    // Which box goes before the booking does, if any: the older, the newer or none.
    QTest::addColumn<int>("goesFirst");
    QTest::newRow("both boxes stay") << -1;
    QTest::newRow("the older box goes first") << 0;
    QTest::newRow("the newer box goes first") << 1;
}

void tst_BkCalendarItemWidget::shouldLetEveryBoxOfABookingSurviveIt()
{
    // A booking of a user and a resource stands in both their columns, with a box in each; it names
    // only the newer one. Each box that is left must lose the booking when the booking goes.
    QFETCH(int, goesFirst);
    BkColumnFixture users;
    BkColumnFixture resources;
    auto* item = new BkCalendarItem();
    item->setTime(QTime(9, 0), QTime(10, 0));
    QPointer<BkCalendarItemWidget> boxes[2];
    boxes[0] = new BkCalendarItemWidget(item, users.scale, users.column);
    boxes[1] = new BkCalendarItemWidget(item, resources.scale, resources.column);
    QCOMPARE(item->widget, boxes[1].data());
    if (goesFirst >= 0)
        delete boxes[goesFirst].data();
    QCOMPARE(item->widget, goesFirst == 1 ? nullptr : boxes[1].data());

    delete item;
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(bool(boxes[i]), i != goesFirst);
        if (boxes[i])
            QVERIFY(!boxes[i]->item());
    }
    // What is left draws nothing and takes no more part.
    QImage image(50, 50, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    for (const QPointer<BkCalendarItemWidget>& box : boxes)
        if (box)
            box->paint(&painter, &option, nullptr);
    painter.end();
    QCOMPARE(image.pixelColor(10, 10), QColor(Qt::white));
}

void tst_BkCalendarItemWidget::shouldKeepTheOtherBookingOfABoxGivenOne()
{
    BkColumnFixture fixture;
    auto* first = new BkCalendarItem();
    first->setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItem second;
    second.setTime(QTime(11, 0), QTime(12, 0));
    auto* older = new BkCalendarItemWidget(first, fixture.scale, fixture.column);
    auto* newer = new BkCalendarItemWidget(first, fixture.scale, fixture.column);
    older->setItem(&second);
    delete first;
    QCOMPARE(older->item(), &second);
    QVERIFY(!newer->item());
    delete older;
    delete newer;
}

void tst_BkCalendarItemWidget::shouldDoNothingWithoutScale()
{
    BkCalendarItem item;
    item.setTime(QTime(9, 0), QTime(10, 0));
    BkCalendarItemWidget widget(&item, nullptr, nullptr);
    QCOMPARE(widget.pos(), QPointF(0, 0));
    QCOMPARE(widget.boundingRect(), QRectF(0, 0, 100, 100));
    widget.widthChanged(205.0);
    QCOMPARE(widget.boundingRect(), QRectF(0, 0, 100, 100));
    widget.setPos(3, 4); // no scale to check against
    QCOMPARE(widget.pos(), QPointF(3, 4));
}

FW_TEST_MAIN(tst_BkCalendarItemWidget)
#include "tst_bkcalendaritemwidget.moc"
