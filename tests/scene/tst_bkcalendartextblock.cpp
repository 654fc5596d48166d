// A booking box's kept text lines: they must draw, pixel for pixel, what QPainter::drawText draws for
// the same text, font, rectangle and flags, and give the same bounds, also when they are kept from
// one paint to the next and the place changes.

#include <FwTestApplication.h>

#include <BkCalendarTextBlock.h>

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

namespace {

const QStringList Texts = {
    QStringLiteral("Booking 12"),
    QStringLiteral("9:00 - 10:30"),
    QStringLiteral("Meeting"),
    QStringLiteral("A title long enough to wrap over several lines in a narrow box"),
    QStringLiteral("  spaces at both ends  "),
    QStringLiteral("tab\there and\r\nreturns\nand new lines"),
    QStringLiteral("Müller & Söhne: Übergabe"),
    QStringLiteral("Averyveryverylongwordwithoutanyplacetobreakitatall"),
    QStringLiteral("mixed \u05e9\u05dc\u05d5\u05dd text"),
    QString(),
};

QImage blank()
{
    QImage image(260, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(250, 240, 200));
    return image;
}

QFont fontOf(int variant)
{
    QFont font(QStringLiteral("DejaVu Sans"), 9 + variant % 4);
    font.setWeight(variant % 2 ? 75 : 50);
    return font;
}

struct Drawn
{
    QImage image;
    QRectF bounds;
};

Drawn byPainter(const QFont& font, const QRectF& rect, int flags, const QString& text)
{
    Drawn drawn{blank(), QRectF()};
    QPainter painter(&drawn.image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(rect, flags, text, &drawn.bounds);
    return drawn;
}

Drawn byBlock(BkCalendarTextBlock& block, const QFont& font, const QRectF& rect, int flags,
              const QString& text)
{
    Drawn drawn{blank(), QRectF()};
    QPainter painter(&drawn.image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    block.draw(&painter, rect, flags, text, &drawn.bounds);
    return drawn;
}

} // namespace

class tst_BkCalendarTextBlock : public QObject
{
    Q_OBJECT

private slots:
    void shouldDrawWhatDrawTextDraws_data();
    void shouldDrawWhatDrawTextDraws();
    void shouldKeepItsLinesWhenOnlyThePlaceChanges();
    void shouldLayOutAgainForANewTextWidthOrFont();
    void shouldBreakItsLinesAnewAtEveryNewWidth_data();
    void shouldBreakItsLinesAnewAtEveryNewWidth();
    void shouldLayOutAgainOnADeviceOfAnotherResolution();
    void shouldMeasureWhatBoundingRectMeasures();
    void shouldLeaveOtherFlagsToDrawText();
};

void tst_BkCalendarTextBlock::shouldDrawWhatDrawTextDraws_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("font");
    const QList<double> widths = {-12.0, 0.0, 0.4, 7.0, 33.5, 80.0, 240.0};
    QRandomGenerator random(7);
    int row = 0;
    for (const QString& text : Texts) {
        for (double width : widths) {
            for (int flags : {int(Qt::AlignLeft), int(Qt::AlignLeft | Qt::TextWordWrap)}) {
                // Fractional places and heights, so that clipping and rounding both come into play.
                const QRectF rect(3.0 + random.bounded(40) / 4.0, 2.0 + random.bounded(40) / 4.0, width,
                                  random.bounded(10, 90) + 0.5);
                QTest::addRow("%d", row++) << text << rect << flags << int(random.bounded(8));
            }
        }
    }
}

void tst_BkCalendarTextBlock::shouldDrawWhatDrawTextDraws()
{
    QFETCH(QString, text);
    QFETCH(QRectF, rect);
    QFETCH(int, flags);
    QFETCH(int, font);
    BkCalendarTextBlock block;
    const Drawn expected = byPainter(fontOf(font), rect, flags, text);
    const Drawn drawn = byBlock(block, fontOf(font), rect, flags, text);
    QCOMPARE(drawn.bounds, expected.bounds);
    QVERIFY(drawn.image == expected.image);
}

void tst_BkCalendarTextBlock::shouldKeepItsLinesWhenOnlyThePlaceChanges()
{
    BkCalendarTextBlock block;
    const QString text = Texts.at(3);
    const int flags = Qt::AlignLeft | Qt::TextWordWrap;
    for (const QPointF& at : {QPointF(4, 3), QPointF(20.5, 7.25), QPointF(0, 40), QPointF(4, 3)}) {
        const QRectF rect(at, QSizeF(90.0, 50.0));
        const Drawn expected = byPainter(fontOf(1), rect, flags, text);
        const Drawn drawn = byBlock(block, fontOf(1), rect, flags, text);
        QCOMPARE(drawn.bounds, expected.bounds);
        QVERIFY(drawn.image == expected.image);
    }
}

void tst_BkCalendarTextBlock::shouldLayOutAgainForANewTextWidthOrFont()
{
    BkCalendarTextBlock block;
    const int flags = Qt::AlignLeft | Qt::TextWordWrap;
    struct Step
    {
        QString text;
        double width;
        int font;
    };
    // Each step changes one thing that the lines depend on; a block that kept its old lines would
    // draw the step before.
    const QList<Step> steps = {{Texts.at(3), 120.0, 0}, {Texts.at(3), 60.0, 0}, {Texts.at(3), 60.0, 1},
                               {Texts.at(6), 60.0, 1},  {Texts.at(6), 60.0, 2}, {Texts.at(3), 120.0, 0}};
    for (const Step& step : steps) {
        const QRectF rect(5.0, 5.0, step.width, 100.0);
        const Drawn expected = byPainter(fontOf(step.font), rect, flags, step.text);
        const Drawn drawn = byBlock(block, fontOf(step.font), rect, flags, step.text);
        QCOMPARE(drawn.bounds, expected.bounds);
        QVERIFY(drawn.image == expected.image);
    }
}

void tst_BkCalendarTextBlock::shouldBreakItsLinesAnewAtEveryNewWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("font");
    for (int t = 0; t < Texts.size(); ++t) {
        for (int font : {0, 1, 3})
            QTest::addRow("text %d, font %d", t, font) << Texts.at(t) << font;
    }
}

// One block through a run of widths, as a box of a cluster goes through them while its neighbours
// come and go: at each it draws what drawText draws at that width, also back at a width it had.
void tst_BkCalendarTextBlock::shouldBreakItsLinesAnewAtEveryNewWidth()
{
    QFETCH(QString, text);
    QFETCH(int, font);
    BkCalendarTextBlock block;
    const int flags = Qt::AlignLeft | Qt::TextWordWrap;
    QRandomGenerator random(quint32(font * 31 + text.size()));
    QList<double> widths = {200.0, 0.0, 95.5, 31.25, 200.0};
    for (int i = 0; i < 8; ++i)
        widths.append(random.bounded(4, 240) / 4.0);
    for (double width : widths) {
        const QRectF rect(5.0, 5.0, width, 110.0);
        const Drawn expected = byPainter(fontOf(font), rect, flags, text);
        const Drawn drawn = byBlock(block, fontOf(font), rect, flags, text);
        QCOMPARE(drawn.bounds, expected.bounds);
        QVERIFY2(drawn.image == expected.image, qPrintable(QStringLiteral("width %1").arg(width)));
    }
}

// A font's size in pixels follows the resolution of the device it paints on, which QFont's own
// comparison leaves out.
void tst_BkCalendarTextBlock::shouldLayOutAgainOnADeviceOfAnotherResolution()
{
    BkCalendarTextBlock block;
    const QRectF rect(4.0, 4.0, 150.0, 100.0);
    const int flags = Qt::AlignLeft | Qt::TextWordWrap;
    for (int dotsPerMeter : {3780, 7560, 3780}) {
        QImage expected = blank();
        expected.setDotsPerMeterX(dotsPerMeter);
        expected.setDotsPerMeterY(dotsPerMeter);
        QImage drawn = expected;
        QRectF expectedBounds;
        QRectF drawnBounds;
        {
            QPainter painter(&expected);
            painter.setFont(fontOf(0));
            painter.drawText(rect, flags, Texts.at(3), &expectedBounds);
        }
        {
            QPainter painter(&drawn);
            painter.setFont(fontOf(0));
            block.draw(&painter, rect, flags, Texts.at(3), &drawnBounds);
        }
        QCOMPARE(drawnBounds, expectedBounds);
        QVERIFY(drawn == expected);
    }
}

void tst_BkCalendarTextBlock::shouldMeasureWhatBoundingRectMeasures()
{
    BkCalendarTextBlock block;
    QImage image = blank();
    QPainter painter(&image);
    for (int font = 0; font < 4; ++font) {
        painter.setFont(fontOf(font));
        for (const QString& text : Texts) {
            for (const QRectF& rect : {QRectF(1, 2, -5, 30), QRectF(1, 2, 50, 30), QRectF(0.5, 0, 200, 8)}) {
                for (int flags : {int(Qt::AlignLeft), int(Qt::AlignLeft | Qt::TextWordWrap)}) {
                    const QRectF expected = painter.boundingRect(rect, flags, text);
                    QCOMPARE(block.measure(&painter, rect, flags, text), expected);
                    QVERIFY(image == blank()); // measuring draws nothing
                }
            }
        }
    }
}

void tst_BkCalendarTextBlock::shouldLeaveOtherFlagsToDrawText()
{
    BkCalendarTextBlock block;
    QFont underlined = fontOf(0);
    underlined.setUnderline(true);
    const QRectF rect(10.0, 10.0, 120.0, 60.0);
    for (int flags : {int(Qt::AlignHCenter | Qt::AlignVCenter), int(Qt::AlignRight),
                      int(Qt::AlignLeft | Qt::TextShowMnemonic)}) {
        const Drawn expected = byPainter(fontOf(0), rect, flags, Texts.at(6));
        const Drawn drawn = byBlock(block, fontOf(0), rect, flags, Texts.at(6));
        QCOMPARE(drawn.bounds, expected.bounds);
        QVERIFY(drawn.image == expected.image);
    }
    const Drawn expected = byPainter(underlined, rect, Qt::AlignLeft, Texts.at(0));
    const Drawn drawn = byBlock(block, underlined, rect, Qt::AlignLeft, Texts.at(0));
    QVERIFY(drawn.image == expected.image);
}

FW_TEST_MAIN(tst_BkCalendarTextBlock)
#include "tst_bkcalendartextblock.moc"
