// How the view sizes its columns to the widget, and how the scale and the headers stay in sight while
// the grid scrolls.

#include "BkShownView.h"
#include "FwTestApplication.h"

#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarHeader.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarView.h>

#include <FwApplication.h>

#include <QScrollBar>
#include <QSignalSpy>

#include <cmath>

namespace {
const QDate Wednesday(2026, 11, 25);

QStringList logLines;
QtMessageHandler previousHandler = nullptr;

void collectLog(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (context.category && QByteArray(context.category) == "fw.log") {
        logLines << text;
        return;
    }
    previousHandler(type, context, text);
}

QList<double> widths(const BkCalendarView& view)
{
    QList<double> result;
    for (BkCalendarColumn* column : view.getColumnList())
        result << column->boundingRect().width();
    return result;
}

QList<double> lefts(const BkCalendarView& view)
{
    QList<double> result;
    for (BkCalendarColumn* column : view.getColumnList())
        result << column->pos().x();
    return result;
}

QList<double> repeated(int count, double value)
{
    return QVector<double>(count, value).toList();
}

QList<BkCalendarResource> group(int count, int firstId = 1)
{
    QList<BkCalendarResource> list;
    for (int i = 0; i < count; ++i)
        list << BkCalendarResource(firstId + i, QStringLiteral("R%1").arg(firstId + i), 1);
    return list;
}

void saveLayout(const QStringList& entries)
{
    FwApplication::app()->setLocalValue(QStringLiteral("CalendarLayout"), entries);
}

using ShownView = BkShownView;
} // namespace

class tst_BkCalendarViewSizes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void shouldShareTheWidgetOrOverflow_data();
    void shouldShareTheWidgetOrOverflow();
    void shouldKeepACustomWidthAndShareTheRest();
    void shouldPlaceAllCustomColumnsInSequence();
    void shouldUseANewMinimumOnlyAtTheNextCalculation();
    void shouldRunTheWholeCalculationOnAHeightChange_data();
    void shouldRunTheWholeCalculationOnAHeightChange();
    void shouldSizeEvenWithoutColumns();
    void shouldStandAtAFixedWidthUntilTheNextResize();
    void shouldLeaveTheVerticalPolicyToSetWidth();
    void shouldDecideAnewAfterSetWidthType();
    void shouldGoBackToTheCornerForProportionalWidths();
    void shouldRelayOutOnScaleChanges();
    void shouldStoreTheWeekStartOnly();

    void shouldMoveTheScaleButNotTheHeadersOnAHorizontalScroll();
    void shouldAddUpScrollsBeforeTheScaleMoves();
    void shouldPinTheHeadersOnAVerticalScroll();
    void shouldMeasureTheHeadersFromTheScrollMinimum();
    void shouldLogEveryScrollStep();
    void shouldRepaintOnlyWhereTheHeadersWere();
};

void tst_BkCalendarViewSizes::initTestCase()
{
    previousHandler = qInstallMessageHandler(collectLog);
}

void tst_BkCalendarViewSizes::cleanupTestCase()
{
    qInstallMessageHandler(previousHandler);
}

void tst_BkCalendarViewSizes::init()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    saveLayout({});
    logLines.clear();
}

void tst_BkCalendarViewSizes::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
    saveLayout({});
}

void tst_BkCalendarViewSizes::shouldShareTheWidgetOrOverflow_data()
{
    QTest::addColumn<int>("widget");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("width");

    // The scale's 50 and five pixels at the right edge are taken first.
    QTest::newRow("555 fits five of 100 exactly") << 555 << 5 << 0 << 100.0;
    QTest::newRow("554 overflows") << 554 << 5 << 1 << 100.0;
    QTest::newRow("1000 shares 945") << 1000 << 5 << 0 << 189.0;
    QTest::newRow("500 overflows") << 500 << 5 << 1 << 100.0;
    QTest::newRow("seven in 1000") << 1000 << 7 << 0 << 945.0 / 7.0;
    QTest::newRow("one in 400") << 400 << 1 << 0 << 345.0;
}

void tst_BkCalendarViewSizes::shouldShareTheWidgetOrOverflow()
{
    QFETCH(int, widget);
    QFETCH(int, columns);
    QFETCH(int, type);
    QFETCH(double, width);

    ShownView shown(QSize(widget, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(columns);
    QCOMPARE(shown.view.width(), widget);
    QCOMPARE(int(shown.view.widthType()), type);
    for (int i = 0; i < columns; ++i) {
        BkCalendarColumn* column = shown.view.getColumnList().at(i);
        QCOMPARE(column->boundingRect().width(), width);
        QCOMPARE(column->pos(), QPointF(50.0 + i * width, 25.0));
        QCOMPARE(int(column->widthType()), type);
    }
}

void tst_BkCalendarViewSizes::shouldKeepACustomWidthAndShareTheRest()
{
    saveLayout({QStringLiteral("1|3|300")});
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setResources(group(5));
    QVERIFY(shown.view.getColumnList().at(2)->customSize());
    QCOMPARE(widths(shown.view), (QList<double>{161.25, 161.25, 300.0, 161.25, 161.25}));
    QCOMPARE(lefts(shown.view), (QList<double>{50.0, 211.25, 372.5, 672.5, 833.75}));
    QCOMPARE(shown.view.widthType(), WidthProportional);
}

void tst_BkCalendarViewSizes::shouldPlaceAllCustomColumnsInSequence()
{
    saveLayout({QStringLiteral("1|1|120"), QStringLiteral("1|2|200"), QStringLiteral("1|3|80")});
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setResources(group(3));
    // Nobody is left to share the room: the share is infinite and every column ignores it.
    QCOMPARE(widths(shown.view), (QList<double>{120.0, 200.0, 80.0}));
    QCOMPARE(lefts(shown.view), (QList<double>{50.0, 170.0, 370.0}));
    for (BkCalendarColumn* column : shown.view.getColumnList())
        QVERIFY(std::isfinite(column->widthScale()));
    QCOMPARE(shown.view.widthType(), WidthProportional);
    // Too wide for the widget: they overflow, and still keep their widths.
    shown.view.resize(400, 400);
    QTRY_COMPARE(shown.view.widthType(), WidthFixed);
    QCOMPARE(widths(shown.view), (QList<double>{120.0, 200.0, 80.0}));
}

void tst_BkCalendarViewSizes::shouldUseANewMinimumOnlyAtTheNextCalculation()
{
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(5);
    QCOMPARE(widths(shown.view).first(), 189.0);
    shown.view.setMinWidth(200);
    QCOMPARE(shown.view.minWidth(), 200.0);
    QCOMPARE(widths(shown.view).first(), 189.0);
    shown.view.calculateSizes();
    QCOMPARE(shown.view.widthType(), WidthFixed);
    QCOMPARE(widths(shown.view), repeated(5, 200.0));
    // The columns' own drag limit is the one they were built with.
    QCOMPARE(shown.view.getColumnList().first()->minWidth(), 100);
    shown.view.setDays(2);
    QCOMPARE(shown.view.getColumnList().first()->minWidth(), 200);
}

void tst_BkCalendarViewSizes::shouldRunTheWholeCalculationOnAHeightChange_data()
{
    QTest::addColumn<int>("policy");
    QTest::newRow("without scroll bars") << int(Qt::ScrollBarAlwaysOff);
    QTest::newRow("with scroll bars") << int(Qt::ScrollBarAlwaysOn);
}

void tst_BkCalendarViewSizes::shouldRunTheWholeCalculationOnAHeightChange()
{
    QFETCH(int, policy);
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(5);
    shown.view.setVerticalScrollBarPolicy(Qt::ScrollBarPolicy(policy));
    shown.view.setHorizontalScrollBarPolicy(Qt::ScrollBarPolicy(policy));
    QCoreApplication::processEvents();
    // The signals leave out what the scroll bars cover.
    const int bar = policy == Qt::ScrollBarAlwaysOn ? shown.view.verticalScrollBar()->width() : 0;
    const int hbar = policy == Qt::ScrollBarAlwaysOn ? shown.view.horizontalScrollBar()->height() : 0;
    // A stray width, which only a calculation puts right.
    shown.view.getColumnList().first()->setWidthScale(10.0, WidthFixed, 0.0);
    QSignalSpy width(&shown.view, qOverload<int>(&BkCalendarView::sizeChanged));
    QSignalSpy both(&shown.view, qOverload<int, int>(&BkCalendarView::sizeChanged));
    shown.view.resize(1000, 600);
    QTRY_COMPARE(both.count(), 1);
    QCOMPARE(width.count(), 1);
    // The resize reaches the view as that of its viewport, from which the bars come off once more.
    const QSize viewport = shown.view.viewport()->size();
    QCOMPARE(viewport.height(), policy == Qt::ScrollBarAlwaysOn ? 600 - 2 - hbar : 598);
    QCOMPARE(width.first().first().toInt(), viewport.width() - bar);
    QCOMPARE(both.first().at(0).toInt(), viewport.width() - bar);
    QCOMPARE(both.first().at(1).toInt(), viewport.height() - hbar);
    // The calculation itself works from the whole widget.
    QCOMPARE(widths(shown.view), repeated(5, 189.0));
}

void tst_BkCalendarViewSizes::shouldSizeEvenWithoutColumns()
{
    ShownView shown(QSize(800, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(0);
    shown.view.calculateSizes();
    QCOMPARE(shown.view.days(), 0);
    QCOMPARE(shown.view.sceneRect().left(), 0.0);
    QCOMPARE(shown.view.sceneRect().width(), 50.0);
}

void tst_BkCalendarViewSizes::shouldStandAtAFixedWidthUntilTheNextResize()
{
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(10);
    shown.view.setWidth(50.0, WidthFixed);
    QCOMPARE(shown.view.minWidth(), 50.0);
    QCOMPARE(shown.view.widthType(), WidthFixed);
    QCOMPARE(widths(shown.view), repeated(10, 50.0));
    for (int i = 0; i < 10; ++i)
        QCOMPARE(lefts(shown.view).at(i), 50.0 + 50.0 * i);
    QCOMPARE(shown.view.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);

    // The next resize fits them again, with 50 as the new minimum.
    shown.view.resize(1000, 450);
    QTRY_COMPARE(widths(shown.view).first(), 94.5);
    QCOMPARE(shown.view.widthType(), WidthProportional);
}

void tst_BkCalendarViewSizes::shouldLeaveTheVerticalPolicyToSetWidth()
{
    ShownView shown;
    QVERIFY(shown.ok);
    shown.view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    shown.view.setWidth(120.0, WidthProportional);
    QCOMPARE(shown.view.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(shown.view.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    // setWidthType sets both.
    shown.view.setWidthType(WidthProportional);
    QCOMPARE(shown.view.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(shown.view.verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
}

void tst_BkCalendarViewSizes::shouldDecideAnewAfterSetWidthType()
{
    ShownView shown(QSize(1000, 400));
    QVERIFY(shown.ok);
    shown.view.setDays(5);
    shown.view.setWidthType(WidthFixed);
    // Five fit into 1000: the calculation that ends the call shares the room again.
    QCOMPARE(shown.view.widthType(), WidthProportional);
    QCOMPARE(widths(shown.view), repeated(5, 189.0));
    shown.view.setDays(12);
    shown.view.setWidthType(WidthProportional);
    QCOMPARE(shown.view.widthType(), WidthFixed);
    QCOMPARE(widths(shown.view), repeated(12, 100.0));
}

void tst_BkCalendarViewSizes::shouldGoBackToTheCornerForProportionalWidths()
{
    ShownView shown(QSize(500, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(7);
    QTRY_VERIFY(shown.view.horizontalScrollBar()->maximum() > 0);
    shown.view.horizontalScrollBar()->setValue(shown.view.horizontalScrollBar()->maximum());
    shown.view.verticalScrollBar()->setValue(400);
    QVERIFY(shown.view.horizontalScrollBar()->value() > 0);
    shown.view.setWidthType(WidthProportional);
    QCOMPARE(shown.view.horizontalScrollBar()->value(), shown.view.horizontalScrollBar()->minimum());
    QCOMPARE(shown.view.verticalScrollBar()->value(), shown.view.verticalScrollBar()->minimum());
}

void tst_BkCalendarViewSizes::shouldRelayOutOnScaleChanges()
{
    ShownView shown(QSize(800, 400));
    QVERIFY(shown.ok);
    shown.view.setResource(BkCalendarResource(5, QStringLiteral("Anna"), 0));
    shown.view.setDays(1);
    auto* item = new BkCalendarItem;
    item->id = 1;
    item->setDate(Wednesday);
    item->setUserId(5);
    item->setTime(QTime(9, 0), QTime(10, 0));
    shown.model.addItem(item);
    QVERIFY(item->widget);
    QCOMPARE(item->widget->pos().y(), 50.0 + 180 * 1.5);

    // Each change of the scale rebuilds the columns' boxes, so the booking's box is read anew.
    shown.view.setMinuteHeight(2.0);
    QCOMPARE(shown.view.minuteHeight(), 2.0);
    QCOMPARE(shown.view.timeScale()->minuteHeight(), 2.0f);
    QVERIFY(item->widget);
    QCOMPARE(item->widget->pos().y(), 50.0 + 180 * 2.0);

    shown.view.setInterval(QTime(8, 0), QTime(18, 0));
    QCOMPARE(shown.view.timeScale()->start(), QTime(8, 0));
    QCOMPARE(shown.view.timeScale()->end(), QTime(18, 0));
    QVERIFY(item->widget);
    QCOMPARE(item->widget->pos().y(), 50.0 + 60 * 2.0);

    shown.view.setTimeSteps(30);
    QCOMPARE(shown.view.timeScale()->timeSteps(), 30);
    QCOMPARE(shown.view.timeScale()->loops(), 20);

    // A step of zero or less is refused: the scale keeps its step, and lays out and paints with it.
    for (int refused : {0, -15}) {
        shown.view.setTimeSteps(refused);
        QCOMPARE(shown.view.timeScale()->timeSteps(), 30);
        QCOMPARE(shown.view.timeScale()->loops(), 20);
        QVERIFY(!shown.view.grab().isNull());
    }
}

void tst_BkCalendarViewSizes::shouldStoreTheWeekStartOnly()
{
    BkCalendarModel model;
    BkCalendarView view;
    view.setModel(&model);
    view.setDays(7);
    view.setDate(Wednesday);
    QCOMPARE(view.date(), QDate(2026, 11, 23));
    view.setWeekStarts(Qt::Sunday);
    QCOMPARE(view.weekStart(), Qt::Sunday);
    QCOMPARE(view.date(), QDate(2026, 11, 23));
    // Sunday comes later in the week than Wednesday: the range moves forward to the coming Sunday.
    view.setDate(Wednesday);
    QCOMPARE(view.date(), QDate(2026, 11, 29));
}

void tst_BkCalendarViewSizes::shouldMoveTheScaleButNotTheHeadersOnAHorizontalScroll()
{
    ShownView shown(QSize(500, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(7);
    QScrollBar* bar = shown.view.horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() >= 120);
    QCoreApplication::processEvents();
    BkCalendarTimeScale* scale = shown.view.timeScale();
    QCOMPARE(scale->pos().x(), 0.0);

    bar->setValue(120);
    // The scale waits for the event loop.
    QCOMPARE(shown.view.scrollDx(), -120);
    QCOMPARE(scale->pos().x(), 0.0);
    QTRY_COMPARE(scale->pos().x(), 120.0);
    QCOMPARE(shown.view.scrollDx(), 0);
    QCOMPARE(scale->pos().y(), 25.0);
    for (BkCalendarColumn* column : shown.view.getColumnList())
        QCOMPARE(column->header()->pos().y(), 0.0);
    // The scale stands at the viewport's left edge.
    QCOMPARE(shown.view.mapFromScene(scale->scenePos()).x(), 0);

    bar->setValue(40);
    QTRY_COMPARE(scale->pos().x(), 40.0);
}

void tst_BkCalendarViewSizes::shouldAddUpScrollsBeforeTheScaleMoves()
{
    ShownView shown(QSize(500, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(7);
    QScrollBar* bar = shown.view.horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() >= 120);
    QCoreApplication::processEvents();
    bar->setValue(50);
    bar->setValue(120);
    bar->setValue(90);
    QCOMPARE(shown.view.scrollDx(), -90);
    QTRY_COMPARE(shown.view.timeScale()->pos().x(), 90.0);
    QCOMPARE(shown.view.scrollDx(), 0);
}

void tst_BkCalendarViewSizes::shouldPinTheHeadersOnAVerticalScroll()
{
    ShownView shown(QSize(800, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(3);
    QScrollBar* bar = shown.view.verticalScrollBar();
    QTRY_VERIFY(bar->maximum() >= 200);
    QCoreApplication::processEvents();
    // The grid starts at scene y 25, and so does the scroll range.
    QCOMPARE(bar->minimum(), 25);
    bar->setValue(225);
    QCOMPARE(shown.view.scrollDx(), 0);
    for (BkCalendarColumn* column : shown.view.getColumnList()) {
        QCOMPARE(column->header()->pos().y(), 200.0);
        // At the top edge of the viewport.
        QCOMPARE(shown.view.mapFromScene(column->header()->scenePos()).y(), 0);
    }
    QCoreApplication::processEvents();
    QCOMPARE(shown.view.timeScale()->pos().x(), 0.0);
    bar->setValue(25);
    for (BkCalendarColumn* column : shown.view.getColumnList())
        QCOMPARE(column->header()->pos().y(), 0.0);
}

void tst_BkCalendarViewSizes::shouldMeasureTheHeadersFromTheScrollMinimum()
{
    ShownView shown(QSize(800, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(2);
    // A scene rectangle that starts above the grid gives the scroll bar a negative minimum.
    const QRectF rect = shown.view.sceneRect();
    shown.view.setSceneRect(rect.adjusted(0.0, -100.0, 0.0, 0.0));
    QScrollBar* bar = shown.view.verticalScrollBar();
    QCOMPARE(bar->minimum(), -75);
    bar->setValue(50);
    for (BkCalendarColumn* column : shown.view.getColumnList())
        QCOMPARE(column->header()->pos().y(), 125.0);
}

void tst_BkCalendarViewSizes::shouldLogEveryScrollStep()
{
    ShownView shown(QSize(500, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(7);
    QTRY_VERIFY(shown.view.horizontalScrollBar()->maximum() >= 30);
    QCoreApplication::processEvents();
    logLines.clear();
    shown.view.horizontalScrollBar()->setValue(30);
    shown.view.verticalScrollBar()->setValue(70);
    shown.view.verticalScrollBar()->setValue(60);
    QCOMPARE(
        logLines,
        (QStringList{QStringLiteral("[Source/BkCalendarView:655] scrollContentsBy( -30 , 0 ) => 25,25"),
                     QStringLiteral("[Source/BkCalendarView:655] scrollContentsBy( 0 , -45 ) => 70,25"),
                     QStringLiteral("[Source/BkCalendarView:655] scrollContentsBy( 0 , 10 ) => 60,25")}));
}

void tst_BkCalendarViewSizes::shouldRepaintOnlyWhereTheHeadersWere()
{
    ShownView shown(QSize(800, 300));
    QVERIFY(shown.ok);
    shown.view.setDays(3);
    QTRY_VERIFY(shown.view.verticalScrollBar()->maximum() >= 200);
    QCoreApplication::processEvents();
    QList<QRectF> headers;
    for (BkCalendarColumn* column : shown.view.getColumnList())
        headers << column->header()->sceneBoundingRect();
    QSignalSpy changed(shown.view.scene(), &QGraphicsScene::changed);
    shown.view.verticalScrollBar()->setValue(225);
    QTRY_VERIFY(changed.count() > 0);
    QCoreApplication::processEvents();

    // The scale is put back where it stands, which repaints its own place and nothing more.
    QRectF allowed = shown.view.timeScale()->sceneBoundingRect();
    for (int i = 0; i < headers.count(); ++i)
        allowed |= headers.at(i) | headers.at(i).translated(0.0, 200.0);
    for (const QList<QVariant>& emission : qAsConst(changed))
        for (const QRectF& region : emission.first().value<QList<QRectF>>())
            QVERIFY2(allowed.adjusted(-2, -2, 2, 2).contains(region), qPrintable(QStringLiteral("%1,%2 %3x%4")
                                                                                     .arg(region.x())
                                                                                     .arg(region.y())
                                                                                     .arg(region.width())
                                                                                     .arg(region.height())));
}

FW_TEST_MAIN(tst_BkCalendarViewSizes)
#include "tst_bkcalendarviewsizes.moc"
