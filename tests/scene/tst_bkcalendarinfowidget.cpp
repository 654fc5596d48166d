// The info widget of an empty group view: its geometry, the message it picks and what it draws.

#include "PaintProbe.h"

#include <BkCalendarInfoWidget.h>

#include <QDir>
#include <QGraphicsScene>
#include <QPainter>
#include <QtTest>

using namespace PaintProbe;

namespace {
const QColor Paper(255, 0, 255);
const QColor Ink(Qt::black);

// Paints the widget on a canvas whose origin is shifted by `offset`, so that what falls left of the
// widget's own rectangle can be seen too.
QImage paintWidget(BkCalendarInfoWidget& widget, const QSize& size, const QPointF& offset,
                   QFont* usedFont = nullptr)
{
    QImage image = canvas(size.width(), size.height(), Paper);
    QPainter painter(&image);
    plain(painter);
    painter.setPen(Ink);
    painter.setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    painter.translate(offset);
    widget.paint(&painter, nullptr, nullptr);
    if (usedFont)
        *usedFont = painter.font();
    painter.end();
    return image;
}

QFont messageFont()
{
    QFont font(QStringLiteral("DejaVu Sans"), 10);
    font.setWeight(75);
    font.setPointSize(14);
    return font;
}
} // namespace

class tst_BkCalendarInfoWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void shouldStartWithItsDefaults();
    void shouldPickTheMessageByType_data();
    void shouldPickTheMessageByType();
    void shouldTakeTheMarginOnlyAtTheNextSizeChange();
    void shouldAcceptAWidthSmallerThanTheMargin();
    void shouldCentreTheSymbolAndTheTextInTheFreeArea();
    void shouldKeepTheTextFiveHundredWideInANarrowView();
    void shouldDrawTheMessageOfItsType_data();
    void shouldDrawTheMessageOfItsType();
};

void tst_BkCalendarInfoWidget::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    aliasedText();
}

void tst_BkCalendarInfoWidget::shouldStartWithItsDefaults()
{
    BkCalendarInfoWidget widget(1, nullptr);
    QCOMPARE(widget.boundingRect(), QRectF(0.0, 0.0, 100.0, 100.0));
    QCOMPARE(widget.messageType(), 1);
    QCOMPARE(widget.margin(), 0);
    QCOMPARE(widget.data(266).toInt(), 102);
    QCOMPARE(int(widget.flags()), 0);
    QCOMPARE(widget.zValue(), 0.0);
}

void tst_BkCalendarInfoWidget::shouldPickTheMessageByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("message");
    const QString noGroup = QStringLiteral("Please choose a group containing users\n under Options/Settings");
    const QString empty = QStringLiteral("The selected group only contains empty duty schedules");
    QTest::newRow("0: no group") << 0 << noGroup;
    QTest::newRow("1: all hidden") << 1 << empty;
    QTest::newRow("any other value") << 7 << empty;
    QTest::newRow("negative") << -1 << empty;
}

void tst_BkCalendarInfoWidget::shouldPickTheMessageByType()
{
    QFETCH(int, type);
    QFETCH(QString, message);
    const BkCalendarInfoWidget widget(type, nullptr);
    QCOMPARE(widget.message(), message);
}

void tst_BkCalendarInfoWidget::shouldTakeTheMarginOnlyAtTheNextSizeChange()
{
    QGraphicsScene scene;
    auto* widget = new BkCalendarInfoWidget(0, nullptr);
    scene.addItem(widget);

    widget->setMargin(50);
    QCOMPARE(widget->margin(), 50);
    QCOMPARE(widget->boundingRect(), QRectF(0.0, 0.0, 100.0, 100.0));

    widget->sizeChanged(800, 600);
    QCOMPARE(widget->boundingRect(), QRectF(50.0, 0.0, 750.0, 600.0));
    // The geometry change reaches the scene's index.
    QCOMPARE(scene.itemsBoundingRect(), QRectF(50.0, 0.0, 750.0, 600.0));
    QCOMPARE(scene.items(QPointF(60.0, 10.0)).value(0), widget);
}

void tst_BkCalendarInfoWidget::shouldAcceptAWidthSmallerThanTheMargin()
{
    BkCalendarInfoWidget widget(0, nullptr);
    widget.setMargin(50);
    widget.sizeChanged(30, 200);
    QCOMPARE(widget.boundingRect(), QRectF(50.0, 0.0, -20.0, 200.0));
    QVERIFY(widget.boundingRect().width() < 0.0);
    // Painting such a widget is harmless.
    const QImage image = paintWidget(widget, QSize(400, 600), QPointF(200.0, 100.0));
    QVERIFY(inkCount(image, Ink) > 0);
}

void tst_BkCalendarInfoWidget::shouldCentreTheSymbolAndTheTextInTheFreeArea()
{
    BkCalendarInfoWidget widget(1, nullptr);
    widget.setMargin(50);
    widget.sizeChanged(850, 600);
    // Centre (450, 300): symbol (350, 200)-(550, 400), text (200, 400)-(700, 460).
    const QImage image = paintWidget(widget, QSize(900, 600), QPointF(0.0, 0.0));

    // The symbol: a blue disc with a white letter in the middle, nothing outside its square.
    const QColor disc = at(image, 450 - 60, 300);
    QVERIFY2(disc.blue() > 150 && disc.red() < 150, qPrintable(disc.name()));
    QVERIFY(same(at(image, 450, 300), Qt::white));
    QVERIFY(same(at(image, 351, 201), Paper)); // the square's corner lies outside the disc
    QVERIFY(same(at(image, 340, 300), Paper));
    QVERIFY(same(at(image, 560, 300), Paper));
    QVERIFY(same(at(image, 450, 190), Paper));
    QVERIFY(!same(at(image, 450, 205), Paper));
    QVERIFY(!same(at(image, 355, 300), Paper));

    // The text: all ink lies in the text rectangle, and it is the message drawn bold at 14 points.
    const QRect textRect(200, 400, 500, 60);
    QVERIFY(inkCount(image, Ink) > 0);
    QCOMPARE(inkBounds(image, Ink), inkBounds(image, Ink, textRect));
    const QImage reference =
        referenceText(image.size(), messageFont(), QRectF(textRect),
                      Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap, widget.message(), Ink);
    QVERIFY(sameInk(image, reference, Ink, image.rect()));

    image.save(QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(QStringLiteral("infowidget-1.png")));
}

void tst_BkCalendarInfoWidget::shouldKeepTheTextFiveHundredWideInANarrowView()
{
    BkCalendarInfoWidget widget(1, nullptr);
    widget.setMargin(50);
    widget.sizeChanged(350, 400); // free area (50, 0, 300, 400), centre (200, 200)
    const QPointF offset(300.0, 0.0);
    const QImage image = paintWidget(widget, QSize(1000, 500), offset);

    // The text rectangle (-50, 300, 500, 60) reaches left of the widget's own rectangle.
    const QRect textRect(300 - 50, 300, 500, 60);
    const QRect ink = inkBounds(image, Ink);
    QVERIFY(!ink.isNull());
    QVERIFY2(ink.left() < 300 + 50, qPrintable(QString::number(ink.left())));
    QVERIFY(textRect.contains(ink));
    const QImage reference =
        referenceText(image.size(), messageFont(), QRectF(textRect),
                      Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap, widget.message(), Ink);
    QVERIFY(sameInk(image, reference, Ink, image.rect()));
}

void tst_BkCalendarInfoWidget::shouldDrawTheMessageOfItsType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("other");
    QTest::newRow("no group") << 0 << 1;
    QTest::newRow("empty schedules") << 1 << 0;
}

void tst_BkCalendarInfoWidget::shouldDrawTheMessageOfItsType()
{
    QFETCH(int, type);
    QFETCH(int, other);
    BkCalendarInfoWidget widget(type, nullptr);
    widget.sizeChanged(800, 600);
    QFont used;
    const QImage image = paintWidget(widget, QSize(800, 600), QPointF(), &used);
    // The painter keeps the message font: bold, 14 points.
    QCOMPARE(used.weight(), 75);
    QCOMPARE(used.pointSize(), 14);

    const QRectF textRect(400.0 - 250.0, 300.0 + 100.0, 500.0, 60.0);
    const int flags = Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap;
    const QImage mine = referenceText(image.size(), messageFont(), textRect, flags, widget.message(), Ink);
    const QImage theirs = referenceText(image.size(), messageFont(), textRect, flags,
                                        BkCalendarInfoWidget(other).message(), Ink);
    QVERIFY(sameInk(image, mine, Ink, image.rect()));
    QVERIFY(!sameInk(image, theirs, Ink, image.rect()));

    image.save(QDir(QStringLiteral(QT_TESTCASE_BUILDDIR))
                   .filePath(QStringLiteral("infowidget-type%1.png").arg(type)));
}

QTEST_MAIN(tst_BkCalendarInfoWidget)
#include "tst_bkcalendarinfowidget.moc"
