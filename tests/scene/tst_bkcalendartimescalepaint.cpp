// The drawing of the time scale: where its tick lines and labels land, which labels are large, what
// the setting "set_alwaysroundup" changes, and the current-time marker.

#include "FwTestApplication.h"
#include "PaintProbe.h"

#include <BkCalendarClock.h>
#include <BkCalendarTimeScale.h>

#include <FwApplication.h>

#include <QDir>

#include <QPainter>
#include <QPalette>
#include <cmath>

using namespace PaintProbe;

namespace {
const QColor Paper(255, 0, 255);
const QDateTime NightTime(QDate(2026, 11, 23), QTime(3, 0));

QColor paletteColour(QPalette::ColorRole role)
{
    return QApplication::palette().brush(QPalette::Current, role).color();
}
QColor background()
{
    return paletteColour(QPalette::Window);
}
QColor line()
{
    return paletteColour(QPalette::Mid);
}
QColor ink()
{
    return paletteColour(QPalette::WindowText);
}

QFont smallFont()
{
    return QFont(QStringLiteral("Arial"), 12);
}
QFont largeFont()
{
    QFont font = smallFont();
    font.setPointSize(21);
    return font;
}

struct Label
{
    QRect rect;
    QString text;
    bool large;
};

QImage paintScale(BkCalendarTimeScale& scale, const QString& name)
{
    QImage image = canvas(int(scale.width()) + 20, int(scale.rect().height()) + 40, Paper);
    QPainter painter(&image);
    plain(painter);
    scale.paint(&painter, nullptr, nullptr);
    painter.end();
    image.save(QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(name));
    return image;
}

QImage referenceLabels(const QSize& size, const QList<Label>& labels)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    plain(painter);
    painter.setPen(ink());
    for (const Label& label : labels) {
        painter.setFont(label.large ? largeFont() : smallFont());
        painter.drawText(label.rect,
                         label.large ? Qt::AlignRight | Qt::AlignTop : Qt::AlignRight | Qt::AlignVCenter,
                         label.text);
    }
    painter.end();
    return image;
}

// The text ink inside the strip (its black outline left out) is that of the reference labels, apart
// from pixels that a tick line drawn later has covered.
bool labelsMatch(const QImage& image, const QList<Label>& labels, int height, QString* where)
{
    const QImage reference = referenceLabels(image.size(), labels);
    const QRgb text = ink().rgba();
    const QRgb covered = line().rgba();
    for (int y = 1; y < height; ++y)
        for (int x = 1; x <= 48; ++x) {
            const QRgb actual = image.pixel(x, y);
            if (actual == covered)
                continue;
            if ((actual == text) != (reference.pixel(x, y) == text)) {
                *where = QStringLiteral("(%1, %2)").arg(x).arg(y);
                return false;
            }
        }
    return true;
}

// The rows of column x that carry the line colour.
QList<int> lineRows(const QImage& image, int x, int height)
{
    QList<int> rows;
    for (int y = 1; y <= height; ++y)
        if (image.pixel(x, y) == line().rgba())
            rows << y;
    return rows;
}

QColor blend(const QColor& from, const QColor& to, double t)
{
    return QColor(int(from.red() + (to.red() - from.red()) * t + 0.5),
                  int(from.green() + (to.green() - from.green()) * t + 0.5),
                  int(from.blue() + (to.blue() - from.blue()) * t + 0.5));
}

int minuteOfDay(const QTime& t)
{
    return t.hour() * 60 + t.minute();
}

void setRoundUp(const QVariant& value)
{
    FwApplication::app()->setValue(value, QStringLiteral("set_alwaysroundup"), QString());
}
} // namespace

class tst_BkCalendarTimeScalePaint : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void shouldDrawTheFrame();
    void shouldDrawLargeHoursAndShortQuarters();
    void shouldDrawLargeHoursOnHalfHourSteps();
    void shouldDrawSmallHourLabelsOnHourSteps();
    void shouldLabelEveryTickWhenAlwaysRoundingUp_data();
    void shouldLabelEveryTickWhenAlwaysRoundingUp();
    void shouldNeverDrawLargeLabelsOnASevenMinuteStep_data();
    void shouldNeverDrawLargeLabelsOnASevenMinuteStep();
    void shouldDrawOnlyTheFirstTickForASingleStep();
    void shouldDrawTheMarkerAlsoOnASingleStep();
    void shouldPutTheSecondTickOnTheNextMultipleOfTheStep();
    void shouldDrawTheMarkerAtTheCurrentTime();
    void shouldDrawTheMarkerOutsideTheSpanWhenTheTimeIs_data();
    void shouldDrawTheMarkerOutsideTheSpanWhenTheTimeIs();
    void shouldChangeOnlyTheMarkerBandAtAnyHour_data();
    void shouldChangeOnlyTheMarkerBandAtAnyHour();
};

void tst_BkCalendarTimeScalePaint::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // The marker is drawn over the ticks; at 03:00 it stands above every span that the checks of
    // ticks and labels paint, whatever the hour at which the tests run. The marker's own tests set
    // the time they need.
    BkCalendarClock::setFixedNow(NightTime);
    aliasedText();
    // The colours must tell text, lines and fill apart for the pixel checks to mean anything.
    QVERIFY(ink() != line());
    QVERIFY(ink() != background());
    QVERIFY(line() != background());
}

void tst_BkCalendarTimeScalePaint::cleanup()
{
    setRoundUp(0);
    BkCalendarClock::setFixedNow(NightTime);
}

void tst_BkCalendarTimeScalePaint::shouldDrawTheFrame()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    const QImage image = paintScale(scale, QStringLiteral("scale-frame.png"));

    // Filled with the window colour, outlined with the painter's own (black) pen.
    QVERIFY(same(at(image, 45, 60), background()));
    QVERIFY(same(at(image, 20, 600), background()));
    QVERIFY(same(at(image, 0, 600), QColor(Qt::black)));
    QVERIFY(same(at(image, 50, 600), QColor(Qt::black)));
    QVERIFY(same(at(image, 40, 1310), QColor(Qt::black)));
    QVERIFY(same(at(image, 51, 600), Paper));
    QVERIFY(same(at(image, 40, 1311), Paper));
    // The line under the top band from x 0 to 48, and the border at 49 all the way down.
    QVERIFY(same(at(image, 0, 50), line()));
    QVERIFY(same(at(image, 48, 50), line()));
    for (int y = 0; y <= 1310; y += 97)
        QVERIFY2(same(at(image, 49, y), line()) || near(at(image, 49, y), scale.highlight(), 60),
                 qPrintable(QString::number(y)));
    // The corner picture.
    const QImage picture(QStringLiteral(":/calendar/calendar.png"));
    int opaque = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qAlpha(picture.pixel(x, y)) == 255) {
                ++opaque;
                QCOMPARE(image.pixel(x, y), picture.pixel(x, y));
            }
    QVERIFY(opaque > 0);
}

void tst_BkCalendarTimeScalePaint::shouldDrawLargeHoursAndShortQuarters()
{
    // The working look: 06:00 to 20:00, quarters, 1.5 a minute, so a step is 22.5 high.
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    const QImage image = paintScale(scale, QStringLiteral("scale-step15.png"));
    const int height = 1310;

    // Lines: the top line, the first tick's line at the foot of its row (72), then one per tick.
    QList<int> all{50, 72};
    QList<int> hours{50};
    for (int i = 0; i <= 54; ++i) {
        const int y = int(float(15 * i + 15) * 1.5f + 50.0f);
        all << y;
        if ((i + 1) % 4 == 0)
            hours << y;
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    QCOMPARE(lineRows(image, 40, height), all);
    // Only hours reach out to x 5; quarters start at 35.
    QCOMPARE(lineRows(image, 5, height), hours);
    QCOMPARE(lineRows(image, 4, height), QList<int>{50});
    QCOMPARE(hours.value(1), 140);
    QVERIFY(same(at(image, 5, 140), line()));
    QVERIFY(same(at(image, 48, 140), line()));
    QVERIFY(same(at(image, 35, 162), line()));
    QVERIFY(!same(at(image, 34, 162), line()));
    QVERIFY(same(at(image, 35, 72), line()));
    QVERIFY(!same(at(image, 34, 72), line()));

    // Labels: a large hour, two steps tall, at the start and at every full hour; no quarter labels.
    QList<Label> labels{{QRect(0, 50, 38, 45), QStringLiteral("6"), true}};
    for (int h = 7; h <= 19; ++h) {
        const int y = 50 + 90 * (h - 6);
        labels << Label{QRect(QPoint(0, y), QPoint(37, y + 44 - 1)), QString::number(h), true};
    }
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
    // Every hour label has ink, and the large size shows: taller than a row.
    const QRect seven = inkBounds(image, ink(), QRect(0, 140, 49, 44));
    QVERIFY(!seven.isNull());
    QVERIFY2(seven.height() > 15, qPrintable(QString::number(seven.height())));
    QCOMPARE(inkCount(image, ink(), QRect(1, 185, 48, 44)), 0); // 07:30 and 07:45 rows
}

void tst_BkCalendarTimeScalePaint::shouldDrawLargeHoursOnHalfHourSteps()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setTimeSteps(30);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    const QImage image = paintScale(scale, QStringLiteral("scale-step30.png"));
    const int height = 1310;

    QList<Label> labels{{QRect(0, 50, 38, 90), QStringLiteral("6"), true}};
    QList<int> hours{50};
    for (int h = 7; h <= 19; ++h) {
        const int y = 50 + 90 * (h - 6);
        labels << Label{QRect(QPoint(0, y), QPoint(37, y + 90 - 1)), QString::number(h), true};
        hours << y;
    }
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
    QCOMPARE(lineRows(image, 5, height), hours);
    QVERIFY(same(at(image, 35, 95), line())); // 06:30, short
    QVERIFY(!same(at(image, 34, 95), line()));
}

void tst_BkCalendarTimeScalePaint::shouldDrawSmallHourLabelsOnHourSteps()
{
    // A step over 30 minutes: hours get the small "h:mm" label, still with a long line from x 5.
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setTimeSteps(60);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    QCOMPARE(scale.loops(), 14);
    const QImage image = paintScale(scale, QStringLiteral("scale-step60.png"));
    const int height = 1310;

    QList<Label> labels{{QRect(0, 50, 48, 90), QStringLiteral("6:00"), false}};
    QList<int> longLines{50};
    for (int h = 7; h <= 19; ++h) {
        const int y = 50 + 90 * (h - 6);
        labels << Label{QRect(QPoint(0, y), QPoint(47, y + 90 - 1)), QStringLiteral("%1:00").arg(h), false};
        longLines << y;
    }
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
    QCOMPARE(lineRows(image, 5, height), longLines);
    QCOMPARE(lineRows(image, 40, height), longLines);
    // Small: no label is taller than its row.
    const QRect seven = inkBounds(image, ink(), QRect(1, 141, 48, 89));
    QVERIFY(!seven.isNull());
    QVERIFY(seven.height() < 22);
}

void tst_BkCalendarTimeScalePaint::shouldLabelEveryTickWhenAlwaysRoundingUp_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("quarters") << 15;
    QTest::newRow("hours") << 60;
}

void tst_BkCalendarTimeScalePaint::shouldLabelEveryTickWhenAlwaysRoundingUp()
{
    QFETCH(int, step);
    setRoundUp(1);
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setTimeSteps(step);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    const QImage image = paintScale(scale, QStringLiteral("scale-roundup-%1.png").arg(step));
    const int height = 1310;
    const int stepHeight = int(float(step) * 1.5f);

    // Every tick has its full time in small type, the start's as well, and every line starts at 35.
    QList<Label> labels{{QRect(0, 50, 48, stepHeight), QStringLiteral("6:00"), false}};
    QTime t(6, 0);
    for (int i = 0; i <= scale.loops() - 2; ++i) {
        t = t.addSecs(step * 60);
        const int y = int(float(step * i + step) * 1.5f + 50.0f);
        const int next = int(float(step) * 1.5f + float(y));
        labels << Label{QRect(QPoint(0, y), QPoint(47, next - 1)), t.toString(QStringLiteral("h:mm")), false};
    }
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
    QCOMPARE(lineRows(image, 5, height), QList<int>{50});
    QCOMPARE(lineRows(image, 34, height), QList<int>{50});
    // The start's line at the foot of its row falls on the second tick's line.
    QList<int> lines{50};
    for (int i = 0; i <= scale.loops() - 2; ++i)
        lines << int(float(step * i + step) * 1.5f + 50.0f);
    QCOMPARE(lines.value(1), 50 + stepHeight);
    QCOMPARE(lineRows(image, 40, height), lines);
    QVERIFY(same(at(image, 35, 140), line()));
    // No label is large.
    const QRect first = inkBounds(image, ink(), QRect(1, 51, 48, stepHeight));
    QVERIFY(!first.isNull());
    QVERIFY(first.height() < 20);
}

void tst_BkCalendarTimeScalePaint::shouldNeverDrawLargeLabelsOnASevenMinuteStep_data()
{
    QTest::addColumn<int>("roundUp");
    QTest::newRow("setting unset") << 0;
    QTest::newRow("setting 1") << 1;
    QTest::newRow("setting 2 means nothing") << 2;
}

void tst_BkCalendarTimeScalePaint::shouldNeverDrawLargeLabelsOnASevenMinuteStep()
{
    QFETCH(int, roundUp);
    setRoundUp(roundUp);
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(3.0f);
    scale.setTimeSteps(7);
    scale.setInterval(QTime(6, 0), QTime(8, 0)); // rounds to 08:06, 18 steps
    QVERIFY(!scale.hourAligned());
    QCOMPARE(scale.loops(), 18);
    const QImage image = paintScale(scale, QStringLiteral("scale-step7-%1.png").arg(roundUp));
    const int height = int(scale.rect().height());

    // Each row has its small label, and its line lies at the row's foot.
    QList<Label> labels{{QRect(0, 50, 48, 21), QStringLiteral("6:00"), false}};
    QList<int> lines{50, 71};
    QTime t(6, 0);
    for (int i = 0; i <= 16; ++i) {
        t = t.addSecs(7 * 60);
        const int y = int(float(7 * i + 7) * 3.0f + 50.0f);
        const int next = int(21.0f + float(y));
        labels << Label{QRect(QPoint(0, y), QPoint(47, next - 1)), t.toString(QStringLiteral("h:mm")), false};
        lines << next;
    }
    QCOMPARE(labels.value(9).text, QStringLiteral("7:03"));
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
    QCOMPARE(lineRows(image, 40, height), lines);
    QCOMPARE(lineRows(image, 5, height), QList<int>{50});
}

void tst_BkCalendarTimeScalePaint::shouldDrawOnlyTheFirstTickForASingleStep()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 0), QTime(6, 15));
    QCOMPARE(scale.loops(), 1);
    const QImage image = paintScale(scale, QStringLiteral("scale-single.png"));

    QCOMPARE(scale.rect().height(), 72.5);
    QVERIFY(same(at(image, 45, 60), background()));
    QVERIFY(same(at(image, 0, 60), QColor(Qt::black)));
    QCOMPARE(lineRows(image, 40, int(scale.rect().height())), (QList<int>{50, 72}));
    QVERIFY(same(at(image, 49, 10), line()));
    QVERIFY(same(at(image, 49, 71), line()));
    // The large start label runs past the strip's foot; nothing else is written.
    QString where;
    QVERIFY2(labelsMatch(image, {{QRect(0, 50, 38, 45), QStringLiteral("6"), true}},
                         int(scale.rect().height()), &where),
             qPrintable(where));
}

void tst_BkCalendarTimeScalePaint::shouldDrawTheMarkerAlsoOnASingleStep()
{
    // A one-step scale that starts twenty minutes after the present time: the marker lies in the
    // top band.
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), QTime(10, 0, 30)));
    BkCalendarTimeScale scale(nullptr);
    scale.setInterval(QTime(10, 20), QTime(10, 35));
    QCOMPARE(scale.loops(), 1);
    const double y = scale.nowY();
    QCOMPARE(y, 30.0);

    const QImage image = paintScale(scale, QStringLiteral("scale-single-marker.png"));
    const QColor middle = blend(Qt::white, scale.highlight(), 0.5);
    QVERIFY2(near(at(image, 40, int(y)), middle, 4), qPrintable(at(image, 40, int(y)).name()));
    QVERIFY(!near(at(image, 19, int(y)), middle, 4));
}

void tst_BkCalendarTimeScalePaint::shouldPutTheSecondTickOnTheNextMultipleOfTheStep()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 10), QTime(8, 10));
    const QImage image = paintScale(scale, QStringLiteral("scale-offstep.png"));
    const int height = int(scale.rect().height());

    // 06:10 has the large 6 whatever its minute; the next tick is 06:15, five minutes on.
    QList<int> lines{50, 72};
    for (int i = 0; i <= scale.loops() - 2; ++i)
        lines << int(float(15 * i + 5) * 1.5f + 50.0f);
    std::sort(lines.begin(), lines.end());
    QCOMPARE(lines.value(1), 57);
    QCOMPARE(lineRows(image, 40, height), lines);
    // 07:00 is the one hour among the ticks, with a long line; 08:00 is the end.
    QCOMPARE(lineRows(image, 5, height), (QList<int>{50, 125}));
    QList<Label> labels{{QRect(0, 50, 38, 45), QStringLiteral("6"), true}};
    labels << Label{QRect(QPoint(0, 125), QPoint(37, 125 + 44 - 1)), QStringLiteral("7"), true};
    QString where;
    QVERIFY2(labelsMatch(image, labels, height, &where), qPrintable(where));
}

void tst_BkCalendarTimeScalePaint::shouldDrawTheMarkerAtTheCurrentTime()
{
    // The default scale covers the whole day, so the marker is always on it.
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), QTime(13, 47, 30)));
    BkCalendarTimeScale scale(nullptr);
    QCOMPARE(scale.minuteHeight(), 1.0f);
    const double y = scale.nowY();
    QCOMPARE(y, 50.0 + 13 * 60 + 47);

    const QImage image = paintScale(scale, QStringLiteral("scale-marker.png"));
    const int row = int(y);
    const QColor white(Qt::white);
    // Three rows from x 20 to the strip's width, fading from white into the highlight.
    for (int x : {20, 30, 49}) {
        QVERIFY2(near(at(image, x, row - 1), blend(white, scale.highlight(), 1.0 / 6.0), 4),
                 qPrintable(at(image, x, row - 1).name()));
        QVERIFY2(near(at(image, x, row), blend(white, scale.highlight(), 0.5), 4),
                 qPrintable(at(image, x, row).name()));
        QVERIFY2(near(at(image, x, row + 1), blend(white, scale.highlight(), 5.0 / 6.0), 4),
                 qPrintable(at(image, x, row + 1).name()));
    }
    for (int x : {20, 30, 45}) {
        QVERIFY(!near(at(image, x, row - 2), blend(white, scale.highlight(), 1.0 / 6.0), 4));
        QVERIFY(!near(at(image, x, row + 2), blend(white, scale.highlight(), 5.0 / 6.0), 4));
    }
    QVERIFY(!near(at(image, 19, row), blend(white, scale.highlight(), 0.5), 4));
    QVERIFY(!near(at(image, 50, row), blend(white, scale.highlight(), 0.5), 4));
}

void tst_BkCalendarTimeScalePaint::shouldDrawTheMarkerOutsideTheSpanWhenTheTimeIs_data()
{
    QTest::addColumn<QTime>("now");
    QTest::newRow("twenty minutes before the start") << QTime(7, 40);
    QTest::newRow("late in the evening") << QTime(22, 0);
}

void tst_BkCalendarTimeScalePaint::shouldDrawTheMarkerOutsideTheSpanWhenTheTimeIs()
{
    QFETCH(QTime, now);
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), now));
    BkCalendarTimeScale scale(nullptr);
    scale.setInterval(QTime(8, 0), QTime(10, 0));
    const QColor middle = blend(Qt::white, scale.highlight(), 0.5);
    const QImage image = paintScale(scale, QStringLiteral("scale-marker-%1.png").arg(now.hour()));
    if (now < QTime(8, 0)) {
        // Shortly before the start the marker sits in the top band.
        QCOMPARE(scale.nowY(), 30.0);
        QVERIFY(near(at(image, 40, 30), middle, 4));
    } else {
        // Long after the end it lies below the strip and is not seen.
        QCOMPARE(scale.nowY(), 50.0 + 14 * 60);
        QVERIFY(scale.nowY() > scale.rect().height() + 1.0);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 20; x < 50; ++x)
                QVERIFY(!near(at(image, x, y), middle, 4));
    }
}

void tst_BkCalendarTimeScalePaint::shouldChangeOnlyTheMarkerBandAtAnyHour_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::newRow("06:00, on the first tick") << QDateTime(QDate(2026, 11, 23), QTime(6, 0));
    QTest::newRow("08:00, on an hour line") << QDateTime(QDate(2026, 11, 23), QTime(8, 0));
    QTest::newRow("12:00 on a Monday") << QDateTime(QDate(2026, 11, 23), QTime(12, 0));
    QTest::newRow("19:50 on a Sunday") << QDateTime(QDate(2026, 11, 22), QTime(19, 50));
    QTest::newRow("the day summer time ends") << QDateTime(QDate(2026, 10, 25), QTime(14, 30));
}

void tst_BkCalendarTimeScalePaint::shouldChangeOnlyTheMarkerBandAtAnyHour()
{
    // The same scale painted at night and at the given time: the marker, three rows from x 20, is
    // the one difference, wherever it falls among the ticks and labels.
    QFETCH(QDateTime, now);
    BkCalendarTimeScale night(nullptr);
    night.setMinuteHeight(1.5f);
    night.setInterval(QTime(6, 0), QTime(20, 0));
    const QImage reference = paintScale(night, QStringLiteral("scale-night.png"));

    BkCalendarClock::setFixedNow(now);
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    const double y = 50.0 + 1.5 * (minuteOfDay(now.time()) - 6 * 60);
    QCOMPARE(scale.nowY(), y);
    const QImage image = paintScale(scale, QStringLiteral("scale-at-%1.png").arg(now.time().hour()));

    // Three units tall from y - 1; half a unit off the pixel grid it touches four rows.
    const int top = int(std::floor(y - 1.0));
    const QRect band(20, top, 30, int(std::ceil(y + 2.0)) - top);
    int changed = 0;
    for (int py = 0; py < image.height(); ++py)
        for (int px = 0; px < image.width(); ++px) {
            if (band.contains(px, py)) {
                changed += image.pixel(px, py) != reference.pixel(px, py);
                continue;
            }
            QVERIFY2(image.pixel(px, py) == reference.pixel(px, py),
                     qPrintable(QStringLiteral("(%1, %2)").arg(px).arg(py)));
        }
    QVERIFY(changed > 0);
    const QColor middle = blend(Qt::white, scale.highlight(), 0.5);
    QVERIFY2(near(at(image, 40, int(y)), middle, 4), qPrintable(at(image, 40, int(y)).name()));
}

FW_TEST_MAIN(tst_BkCalendarTimeScalePaint)
#include "tst_bkcalendartimescalepaint.moc"
