// What the column and the booking boxes draw, read back from the pixels.

#include "BkColumnFixture.h"

#include <FwTestApplication.h>
#include <PaintProbe.h>

#include <QDir>
#include <QFile>
#include <QGraphicsView>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

namespace {

// A full-width red block in the rich text shows where the text area lies.
const char* const kMarkerText =
    "<table border=\"0\" width=\"100%\" bgcolor=\"#ff0000\" cellspacing=\"0\" cellpadding=\"0\">"
    "<tr><td>&nbsp;</td></tr></table>";

QImage paintItem(QGraphicsItem* item, bool selected = false, int extra = 10)
{
    const QRectF bounds = item->boundingRect();
    QImage image(int(bounds.width()) + extra, int(bounds.height()) + extra, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    option.state = selected ? QStyle::State_Selected : QStyle::State_None;
    item->paint(&painter, &option, nullptr);
    painter.end();
    return image;
}

// A box painted `dx` in from the left of a canvas 200 wide.
QImage paintItemShifted(QGraphicsItem* item, int dx)
{
    QImage image(200, int(item->boundingRect().height()) + 10, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(dx, 0);
    QStyleOptionGraphicsItem option;
    item->paint(&painter, &option, nullptr);
    return image;
}

bool isRed(const QColor& color)
{
    return color.red() == 255 && color.green() == 0 && color.blue() == 0;
}

// First row with red, and the red's first and last column in that row.
bool findRed(const QImage& image, int* row, int* first, int* last)
{
    for (int y = 0; y < image.height(); ++y) {
        int left = -1;
        int right = -1;
        for (int x = 0; x < image.width(); ++x) {
            if (isRed(image.pixelColor(x, y))) {
                if (left < 0)
                    left = x;
                right = x;
            }
        }
        if (left >= 0) {
            *row = y;
            *first = left;
            *last = right;
            return true;
        }
    }
    return false;
}

// Runs of rows in which some pixel of the column range differs from the fill.
int rowRuns(const QImage& image, const QRect& area, const QColor& fill)
{
    int runs = 0;
    bool inRun = false;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        bool marked = false;
        for (int x = area.left(); x <= area.right() && !marked; ++x)
            marked = image.pixelColor(x, y) != fill;
        if (marked && !inRun)
            ++runs;
        inRun = marked;
    }
    return runs;
}

void setSetting(const char* key, int value)
{
    FwApplication::app()->setValue(QVariant(value), QString::fromLatin1(key));
}

} // namespace

class tst_BkCalendarPaint : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void shouldInsetTextByStrips_data();
    void shouldInsetTextByStrips();
    void shouldPaintStripsAndTheirLines();
    void shouldPutTimeLineAboveTitleWhenSettingIsOne();
    void shouldWriteTheTimesAnewWhenTheBookingMoves();
    void shouldBreakTheTextAnewWhenTheBoxChangesWidth();
    void shouldShowThePictureOfItsTextAsItIsAtEachPaint();
    void shouldDrawItsTextInItsOwnClipWhateverClipThePainterBrings();
    void shouldDrawLinksInTheLinkColourOfThePresentPalette();
    void shouldStartTextOnlyAtTopWithoutTime();
    void shouldShowMeetingInPlaceOfTitle();
    void shouldPaintEveryOtherKindAsAPlainBooking();
    void shouldDrawUsersIconOnlyAboveFortyPixels();
    void shouldDrawIconsOnlyInTallBoxes();
    void shouldDrawPadlockForLockedBooking();
    void shouldLeaveNoTextInBoxNarrowerThanItsMargins_data();
    void shouldLeaveNoTextInBoxNarrowerThanItsMargins();
    void shouldKeepIconsAtTheirHeightInNarrowBox_data();
    void shouldKeepIconsAtTheirHeightInNarrowBox();
    void shouldPaintReservedBoxPlainAndGrey();
    void shouldFillWithSelectedGradientAndSelectColumn();
    void shouldHatchClosedPlan();
    void shouldPaintPlainPlanOfNoInfoGreen();
    void shouldRepeatLabelPerStepForUniversity_data();
    void shouldRepeatLabelPerStepForUniversity();
    void shouldPaintBodyBandAndLines();
    void shouldPaintEveryLineInHourColourOnUnalignedScale();
    void shouldCarrySelectionToHeaderWhenPainting();
    void shouldPaintNothingWithoutScaleOrScheme();
    void shouldRenderRealisticDay();
};

void tst_BkCalendarPaint::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    setSetting("set_calshowtime", 0);
    setSetting("gst_university", 0);
}

void tst_BkCalendarPaint::shouldInsetTextByStrips_data()
{
    QTest::addColumn<bool>("left");
    QTest::addColumn<bool>("right");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    // A box 100 wide: the frame is 95 wide; a strip takes 8, a missing strip 3, but a missing
    // right strip moves the left edge, not the right one.
    QTest::newRow("no strips") << false << false << 6 << 94;
    QTest::newRow("left strip") << true << false << 11 << 94;
    QTest::newRow("right strip") << false << true << 3 << 86;
    QTest::newRow("both strips") << true << true << 8 << 86;
}

void tst_BkCalendarPaint::shouldInsetTextByStrips()
{
    QFETCH(bool, left);
    QFETCH(bool, right);
    QFETCH(int, first);
    QFETCH(int, last);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    item->setTitle("Title");
    item->setText(kMarkerText);
    if (left)
        item->leftColor = QColor(0, 0, 200);
    if (right)
        item->rightColor = QColor(0, 150, 0);
    QCOMPARE(item->widget->boundingRect().width(), 100.0);

    const QImage image = paintItem(item->widget);
    int row = 0;
    int from = 0;
    int to = 0;
    QVERIFY(findRed(image, &row, &from, &to));
    QCOMPARE(from, first);
    QCOMPARE(to, last);
    QVERIFY(row > 5); // below the title
}

void tst_BkCalendarPaint::shouldPaintStripsAndTheirLines()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    item->leftColor = QColor(0, 0, 200);
    item->rightColor = QColor(0, 150, 0);
    const QImage image = paintItem(item->widget);
    const int middle = 45;
    QCOMPARE(image.pixelColor(2, middle), item->leftColor);
    QCOMPARE(image.pixelColor(5, middle).rgb(), item->widget->border().rgb());
    // The right strip is cut from the frame after the left strip has taken its 8.
    QCOMPARE(image.pixelColor(92, middle), item->rightColor);
    QCOMPARE(image.pixelColor(90, middle).rgb(), item->widget->border().rgb());
}

void tst_BkCalendarPaint::shouldPutTimeLineAboveTitleWhenSettingIsOne()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 30), 1);
    item->setTitle("Title");
    item->setText(kMarkerText);
    int without = 0;
    int with = 0;
    int from = 0;
    int to = 0;
    QVERIFY(findRed(paintItem(item->widget), &without, &from, &to));
    setSetting("set_calshowtime", 1);
    QVERIFY(findRed(paintItem(item->widget), &with, &from, &to));
    const int lineHeight = QFontMetrics(QFont()).height();
    QVERIFY2(with >= without + lineHeight - 1, qPrintable(QString("%1 %2").arg(with).arg(without)));
    QCOMPARE(from, 6);

    // Only the value 1 shows the time.
    setSetting("set_calshowtime", 2);
    QVERIFY(findRed(paintItem(item->widget), &with, &from, &to));
    QCOMPARE(with, without);
}

// The time line follows the booking: after a move the box shows what a box made at the new times shows.
void tst_BkCalendarPaint::shouldWriteTheTimesAnewWhenTheBookingMoves()
{
    setSetting("set_calshowtime", 1);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 30), 1);
    item->setTitle("Title");
    const QImage before = paintItem(item->widget);
    item->setTime(QTime(11, 15), QTime(12, 45));
    const QImage after = paintItem(item->widget);
    QVERIFY(after != before);

    BkColumnFixture fresh(false, 105.0);
    BkCalendarItem* same = fresh.addItem(QTime(11, 15), QTime(12, 45), 1);
    same->setTitle("Title");
    QCOMPARE(after, paintItem(same->widget));
    // And back, to times written before.
    item->setTime(QTime(9, 0), QTime(10, 30));
    QCOMPARE(paintItem(item->widget), before);
}

// A box whose width changes shows its title and rich text as a box made at that width shows them,
// through widths that wrap the words differently, and back.
void tst_BkCalendarPaint::shouldBreakTheTextAnewWhenTheBoxChangesWidth()
{
    setSetting("set_calshowtime", 1);
    const QString text = QStringLiteral(
        "Agenda: <b>figures</b> of March, the <i>budget</i> for April and a word on <u>rooms</u>");
    auto makeBox = [&text](BkColumnFixture& fixture) {
        BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(11, 30), 1);
        item->setTitle(QStringLiteral("Quarterly review with the whole team"));
        item->setText(text);
        return item;
    };
    BkColumnFixture fixture(false, 205.0);
    BkCalendarItem* item = makeBox(fixture);
    const QImage wide = paintItem(item->widget);
    for (double width : {120.5, 77.25, 161.0, 43.75, 205.0}) {
        fixture.column->setWidthScale(width, WidthFixed, -1.0);
        BkColumnFixture fresh(false, width);
        const QImage expected = paintItem(makeBox(fresh)->widget);
        QCOMPARE(paintItem(item->widget), expected);
    }
    QCOMPARE(paintItem(item->widget), wide);
}

// A picture in a booking's text is read as it is at each paint, as a box that lays out its text for
// the first time reads it: one that appears, changes or goes after an earlier paint counts at once.
void tst_BkCalendarPaint::shouldShowThePictureOfItsTextAsItIsAtEachPaint()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("picture.png"));
    const QString text = QStringLiteral("<img src=\"%1\"> with a picture").arg(path);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* kept = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    kept->setText(text);
    paintItem(kept->widget); // no picture yet

    const QList<QColor> colours = {QColor(255, 0, 0), QColor(0, 0, 255)};
    for (const QColor& colour : colours) {
        QImage picture(40, 30, QImage::Format_ARGB32);
        picture.fill(colour);
        QVERIFY(picture.save(path));
        // A box of an equal booking, painted for the first time, shows the picture as the file has it.
        BkCalendarItem* fresh = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
        fresh->setText(text);
        QCOMPARE(fresh->widget->boundingRect(), kept->widget->boundingRect());
        const QImage expected = paintItem(fresh->widget);
        QCOMPARE(PaintProbe::inkCount(expected, colour), 40 * 30);
        QVERIFY(paintItem(kept->widget) == expected);
        fixture.model.removeItem(fresh);
        delete fresh;
        BkColumnFixture::flushDeletes();
        QVERIFY(QFile::remove(path));
    }
    // Gone again: the box no longer shows the last picture.
    QCOMPARE(PaintProbe::inkCount(paintItem(kept->widget), colours.last()), 0);
}

// The booking's text replaces the clip that the painter brings with one of its own, as the box sets it
// for the text alone; a clip that leaves the text out does not hide it.
void tst_BkCalendarPaint::shouldDrawItsTextInItsOwnClipWhateverClipThePainterBrings()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    item->setTitle(QStringLiteral("Title"));
    item->setText(kMarkerText);
    QImage image(110, 100, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setClipRect(QRect(0, 0, 110, 10));
    QStyleOptionGraphicsItem option;
    item->widget->paint(&painter, &option, nullptr);
    painter.end();
    int row = 0;
    int from = 0;
    int to = 0;
    QVERIFY(findRed(image, &row, &from, &to));
    QVERIFY(row >= 10);
    QCOMPARE(from, 6);
    QCOMPARE(to, 94);
}

// A link in a booking's text takes the application's link colour when the text is read; a box that has
// painted its text before a host changes the palette shows the new colour, as a new box does.
void tst_BkCalendarPaint::shouldDrawLinksInTheLinkColourOfThePresentPalette()
{
    const QPalette original = QGuiApplication::palette();
    const QString text = QStringLiteral("a <a href=\"booking:1\">link</a> in the text");
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* kept = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    kept->setText(text);
    paintItem(kept->widget);

    const QColor link(0, 200, 0);
    QPalette palette = original;
    palette.setColor(QPalette::Link, link);
    QGuiApplication::setPalette(palette);
    BkCalendarItem* fresh = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
    fresh->setText(text);
    const QImage expected = paintItem(fresh->widget);
    const QImage shown = paintItem(kept->widget);
    QGuiApplication::setPalette(original);
    QVERIFY(PaintProbe::inkCount(expected, link) > 0); // the underline at least
    QVERIFY(shown == expected);
}

void tst_BkCalendarPaint::shouldStartTextOnlyAtTopWithoutTime()
{
    setSetting("set_calshowtime", 1);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1, BkCalendarItem::TextOnly);
    item->setTitle("Never shown");
    item->setText(kMarkerText);
    int row = 0;
    int from = 0;
    int to = 0;
    QVERIFY(findRed(paintItem(item->widget), &row, &from, &to));
    // Above the frame's top line at y 2.
    QCOMPARE(row, 0);
    QCOMPARE(from, 6);
    QCOMPARE(to, 94);
}

void tst_BkCalendarPaint::shouldShowMeetingInPlaceOfTitle()
{
    // A meeting looks exactly like a plain booking whose title is the word, in bold.
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* meeting = fixture.addItem(QTime(9, 0), QTime(9, 30), 1, BkCalendarItem::Meeting);
    meeting->setTitle("Budget");
    BkColumnFixture plainFixture(false, 105.0);
    BkCalendarItem* plain = plainFixture.addItem(QTime(9, 0), QTime(9, 30), 1);
    plain->setTitle("Meeting");
    BkCalendarItem* other = plainFixture.addItem(QTime(11, 0), QTime(11, 30), 2);
    other->setTitle("Budget");

    const QImage meetingImage = paintItem(meeting->widget);
    QCOMPARE(meetingImage, paintItem(plain->widget));
    QVERIFY(meetingImage != paintItem(other->widget));
}

// A host may hand over any kind of booking; every kind but a meeting, a reservation and text only
// looks like a plain one, out of the enumeration's range as well.
void tst_BkCalendarPaint::shouldPaintEveryOtherKindAsAPlainBooking()
{
    BkColumnFixture plainFixture(false, 105.0);
    BkCalendarItem* plain = plainFixture.addItem(QTime(9, 0), QTime(9, 30), 1);
    plain->setTitle("Check-up");
    const QImage expected = paintItem(plain->widget);
    for (int kind : {2, 5, 8, -5, 999, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        BkColumnFixture fixture(false, 105.0);
        BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(9, 30), 1, kind);
        item->setTitle("Check-up");
        QCOMPARE(int(item->type()), kind);
        QVERIFY(item->widget);
        QVERIFY2(paintItem(item->widget) == expected, qPrintable(QString::number(kind)));
    }
}

void tst_BkCalendarPaint::shouldDrawUsersIconOnlyAboveFortyPixels()
{
    if (QPixmap(":/calendar/users.png").isNull())
        QSKIP("the users picture is not in the resources");
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* meeting = fixture.addItem(QTime(9, 0), QTime(11, 0), 1, BkCalendarItem::Meeting);
    BkCalendarItem* plain = fixture.addItem(QTime(12, 0), QTime(14, 0), 2);
    plain->setTitle("Meeting");
    // 180 high: the text area stays well above 40 after the title.
    QVERIFY(paintItem(meeting->widget) != paintItem(plain->widget));

    // 30 minutes are 45 units: R is 38 high, so no icon whatever the line.
    BkCalendarItem* shortMeeting = fixture.addItem(QTime(15, 0), QTime(15, 30), 3, BkCalendarItem::Meeting);
    BkCalendarItem* shortPlain = fixture.addItem(QTime(16, 0), QTime(16, 30), 4);
    shortPlain->setTitle("Meeting");
    QCOMPARE(paintItem(shortMeeting->widget), paintItem(shortPlain->widget));
}

void tst_BkCalendarPaint::shouldDrawIconsOnlyInTallBoxes()
{
    if (QPixmap(":/calendar/mail.png").isNull() || QPixmap(":/calendar/phone.png").isNull())
        QSKIP("the mail and phone pictures are not in the resources");
    setSetting("set_calshowtime", 1);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* tall = fixture.addItem(QTime(9, 0), QTime(11, 0), 1);
    tall->setTitle("Call back");
    const QImage bare = paintItem(tall->widget);
    tall->setItemFlags(BkCalendarItem::FlagMail | BkCalendarItem::FlagPhone);
    const QImage withIcons = paintItem(tall->widget);
    QVERIFY(bare != withIcons);
    // Both icons stand 20 apart from the right edge of the text area.
    bool leftIcon = false;
    bool rightIcon = false;
    for (int y = 0; y < bare.height(); ++y) {
        for (int x = 0; x < bare.width(); ++x) {
            if (bare.pixel(x, y) != withIcons.pixel(x, y)) {
                if (x >= 60 && x < 80)
                    leftIcon = true;
                if (x >= 80 && x < 100)
                    rightIcon = true;
            }
        }
    }
    QVERIFY(leftIcon);
    QVERIFY(rightIcon);

    // The mail icon alone stands 20 left of the text area's right edge, which is int(5.0 + 89) = 94
    // once the area's x is set back to 5.0; from the text's own left edge (6) it would be 95.
    tall->setItemFlags(BkCalendarItem::FlagMail);
    const QImage withMail = paintItem(tall->widget);
    QRect changed;
    for (int y = 0; y < bare.height(); ++y) {
        for (int x = 0; x < bare.width(); ++x) {
            if (bare.pixel(x, y) != withMail.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
        }
    }
    QVERIFY(!changed.isNull());
    const QPixmap mail(":/calendar/mail.png");
    const QImage mailImage = mail.toImage().convertToFormat(QImage::Format_ARGB32);
    QRect opaque;
    for (int y = 0; y < mailImage.height(); ++y) {
        for (int x = 0; x < mailImage.width(); ++x) {
            if (qAlpha(mailImage.pixel(x, y)) > 0)
                opaque |= QRect(x, y, 1, 1);
        }
    }
    QImage expected = bare;
    QPainter painter(&expected);
    painter.drawPixmap(74, changed.top() - opaque.top(), mail);
    painter.end();
    QCOMPARE(withMail, expected);

    BkCalendarItem* small = fixture.addItem(QTime(12, 0), QTime(12, 30), 2);
    small->setTitle("Call back");
    const QImage smallBare = paintItem(small->widget);
    small->setItemFlags(BkCalendarItem::FlagMail | BkCalendarItem::FlagPhone);
    QCOMPARE(paintItem(small->widget), smallBare);
}

void tst_BkCalendarPaint::shouldLeaveNoTextInBoxNarrowerThanItsMargins_data()
{
    QTest::addColumn<double>("columnWidth");
    QTest::addColumn<int>("showTime");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("textShows");
    // The box is 5 narrower than its column and its text 11 narrower than the box: a column of 16
    // leaves the text no width at all, one of 17 a single pixel.
    QTest::newRow("no width, title") << 16.0 << 0 << 0 << false;
    QTest::newRow("no width, time and title") << 16.0 << 1 << 0 << false;
    QTest::newRow("less than no width") << 9.0 << 1 << 0 << false;
    QTest::newRow("no width, text only") << 16.0 << 0 << int(BkCalendarItem::TextOnly) << false;
    QTest::newRow("one pixel, title") << 17.0 << 0 << 0 << true;
    QTest::newRow("one pixel, text only") << 17.0 << 0 << int(BkCalendarItem::TextOnly) << true;
    QTest::newRow("wide, title") << 105.0 << 1 << 0 << true;
}

// A box too narrow for its text paints what it paints without text; one pixel more and the text
// shows again.
void tst_BkCalendarPaint::shouldLeaveNoTextInBoxNarrowerThanItsMargins()
{
    QFETCH(double, columnWidth);
    QFETCH(int, showTime);
    QFETCH(int, type);
    QFETCH(bool, textShows);
    setSetting("set_calshowtime", showTime);
    BkColumnFixture fixture(false, columnWidth);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(11, 0), 1, BkCalendarItem::ItemType(type));
    item->setTitle(QStringLiteral("WWW"));
    item->setText(QStringLiteral("<b>WWW</b> WWW WWW"));
    // Painted 40 in from the left, so that ink to the left of the box would show as well.
    const QImage withText = paintItemShifted(item->widget, 40);
    item->setTitle(QString());
    item->setText(QString());
    const QImage without = paintItemShifted(item->widget, 40);
    QCOMPARE(withText != without, textShows);
}

void tst_BkCalendarPaint::shouldKeepIconsAtTheirHeightInNarrowBox_data()
{
    QTest::addColumn<int>("showTime");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("title");
    QTest::newRow("title") << 0 << int(BkCalendarItem::Meeting) << QString();
    QTest::newRow("time and title") << 1 << int(BkCalendarItem::Meeting) << QString();
    // An empty title draws no line, and leaves the foot of the lines where it was.
    QTest::newRow("empty title") << 0 << 0 << QString();
    QTest::newRow("time and empty title") << 1 << 0 << QString();
}

// The icons stand below the lines of a box whatever its width, so a box without room for its lines
// still finds where they would end.
void tst_BkCalendarPaint::shouldKeepIconsAtTheirHeightInNarrowBox()
{
    if (QPixmap(":/calendar/phone.png").isNull())
        QSKIP("the phone picture is not in the resources");
    QFETCH(int, showTime);
    QFETCH(int, type);
    QFETCH(QString, title);
    setSetting("set_calshowtime", showTime);
    auto iconTop = [&](double columnWidth) {
        BkColumnFixture fixture(false, columnWidth);
        BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(11, 0), 1, type);
        item->setTitle(title);
        // The icons stand left of the text area's right edge, which a narrow box has at its left.
        const QImage bare = paintItemShifted(item->widget, 100);
        item->setItemFlags(BkCalendarItem::FlagPhone);
        const QImage withPhone = paintItemShifted(item->widget, 100);
        for (int y = 0; y < bare.height(); ++y)
            for (int x = 0; x < bare.width(); ++x)
                if (bare.pixel(x, y) != withPhone.pixel(x, y))
                    return y;
        return -1;
    };
    const int wide = iconTop(105.0);
    QVERIFY(wide > 0);
    QCOMPARE(iconTop(16.0), wide);
}

void tst_BkCalendarPaint::shouldDrawPadlockForLockedBooking()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* reserved = fixture.addItem(QTime(9, 0), QTime(10, 0), 1, BkCalendarItem::Reserved);
    const QImage open = paintItem(reserved->widget);
    reserved->locked = 1;
    // A reservation returns before the padlock.
    QCOMPARE(paintItem(reserved->widget), open);

    if (QPixmap(":/widgets/lock.png").isNull())
        QSKIP("the host's padlock picture is not in the resources");
    BkCalendarItem* item = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
    const QImage unlocked = paintItem(item->widget);
    item->locked = 1;
    const QImage locked = paintItem(item->widget);
    QVERIFY(unlocked != locked);
    // The padlock stands at the top right of the text area, from y 1.
    QVERIFY(unlocked.pixel(80, 4) != locked.pixel(80, 4) || unlocked.pixel(85, 8) != locked.pixel(85, 8));
}

void tst_BkCalendarPaint::shouldPaintReservedBoxPlainAndGrey()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* reserved = fixture.addItem(QTime(9, 0), QTime(10, 0), 1, BkCalendarItem::Reserved);
    reserved->setTitle("Private");
    reserved->setText(kMarkerText);
    reserved->leftColor = Qt::blue;
    BkCalendarItem* normal = fixture.addItem(QTime(12, 0), QTime(13, 0), 2);
    QCOMPARE(reserved->widget->boundingRect().size(), QSizeF(100, 90));

    const QImage image = paintItem(reserved->widget);
    int row = 0;
    int from = 0;
    int to = 0;
    QVERIFY(!findRed(image, &row, &from, &to)); // no rich text
    // Grey of alpha 50 on white inside the frame, no left strip.
    const QColor fill = image.pixelColor(12, 10);
    QVERIFY2(qAbs(fill.red() - 225) <= 2 && fill.red() == fill.green() && fill.green() == fill.blue(),
             qPrintable(fill.name()));
    QCOMPARE(image.pixelColor(2, 45), fill);
    QCOMPARE(image.pixelColor(0, 45), QColor(Qt::darkGray));
    // No shadow: below and right of the frame stays white, where a booking has its shadow.
    QCOMPARE(image.pixelColor(97, 86), QColor(Qt::white));
    QVERIFY(paintItem(normal->widget).pixelColor(97, 86) != QColor(Qt::white));
    // The word sits in the middle, in the frame's grey.
    bool dark = false;
    for (int y = 35; y < 55 && !dark; ++y) {
        for (int x = 20; x < 75 && !dark; ++x)
            dark = image.pixelColor(x, y).lightness() < 180;
    }
    QVERIFY(dark);
}

void tst_BkCalendarPaint::shouldFillWithSelectedGradientAndSelectColumn()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QVERIFY(!fixture.column->isSelected());
    const QImage plain = paintItem(item->widget, false);
    QVERIFY(!fixture.column->isSelected());
    const QImage selected = paintItem(item->widget, true);
    QVERIFY(fixture.column->isSelected());
    // At y 10 the gradient is a tenth of the way from its first stop.
    const QColor top = fixture.scheme.selectedHeader;
    const QColor pixel = selected.pixelColor(40, 10);
    QVERIFY2(qAbs(pixel.red() - top.red()) < 8 && qAbs(pixel.green() - top.green()) < 12,
             qPrintable(pixel.name()));
    QVERIFY(plain.pixelColor(40, 10) != pixel);
}

void tst_BkCalendarPaint::shouldHatchClosedPlan()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarPlan* closed = fixture.addPlan(QTime(8, 0), QTime(9, 0), false);
    const QImage image = paintItem(fixture.column);
    const QRect area = closed->rect.toRect().adjusted(2, 2, -2, -2);
    int green = 0;
    int hatch = 0;
    int other = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c == QColor(Qt::green))
                ++green;
            else if (qAbs(c.red() - 50) <= 2 && qAbs(c.green() - 205) <= 2 && c.blue() == 0)
                ++hatch;
            else
                ++other;
        }
    }
    QVERIFY(green > 0);
    QVERIFY(hatch > 0);
    QVERIFY(hatch < green);
    QCOMPARE(other, 0);
}

void tst_BkCalendarPaint::shouldPaintPlainPlanOfNoInfoGreen()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarPlan* open = fixture.addPlan(QTime(8, 0), QTime(9, 0), true);
    const QImage image = paintItem(fixture.column);
    const QRect area = open->rect.toRect();
    QCOMPARE(area, QRect(1, 230, 104, 90));
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            QCOMPARE(image.pixelColor(x, y), QColor(Qt::green));
    }
}

void tst_BkCalendarPaint::shouldRepeatLabelPerStepForUniversity_data()
{
    QTest::addColumn<int>("setting");
    QTest::addColumn<int>("labels");
    QTest::newRow("once") << 0 << 1;
    QTest::newRow("once per step") << 1 << 4;
}

void tst_BkCalendarPaint::shouldRepeatLabelPerStepForUniversity()
{
    QFETCH(int, setting);
    QFETCH(int, labels);
    setSetting("gst_university", setting);
    BkColumnFixture fixture(false, 105.0);
    BkCalendarPlanInfo info;
    info.id = 3;
    info.color = QColor(255, 250, 200);
    info.label = "L";
    fixture.model.addItem(info);
    BkCalendarPlan* plan = fixture.addPlan(QTime(8, 0), QTime(9, 0), true, 3);
    const QImage image = paintItem(fixture.column);
    const QRect area = plan->rect.toRect();
    QCOMPARE(image.pixelColor(area.right() - 5, area.bottom() - 2), info.color);
    QCOMPARE(rowRuns(image, QRect(area.left(), area.top(), 20, area.height()), info.color), labels);
}

void tst_BkCalendarPaint::shouldPaintBodyBandAndLines()
{
    BkColumnFixture fixture(false, 105.0);
    const QImage image = paintItem(fixture.column);
    const BkCalendarColorScheme& scheme = fixture.scheme;
    QCOMPARE(image.pixelColor(50, 20), scheme.hourLine);    // the band above the first line
    QCOMPARE(image.pixelColor(50, 100), QColor(Qt::white)); // the body
    QCOMPARE(image.pixelColor(0, 100), scheme.frame);       // its frame
    // 06:15 at 72.5 is a step line; 07:00 at 140 an hour line; none at 06:00 itself.
    QCOMPARE(image.pixelColor(50, 72), scheme.stepLine);
    QCOMPARE(image.pixelColor(50, 140), scheme.hourLine);
    QCOMPARE(image.pixelColor(50, 117), scheme.stepLine);
    QCOMPARE(image.pixelColor(50, 51), QColor(Qt::white));
}

void tst_BkCalendarPaint::shouldPaintEveryLineInHourColourOnUnalignedScale()
{
    BkColumnFixture fixture(false, 105.0);
    fixture.scale->setTimeSteps(7);
    QVERIFY(!fixture.scale->hourAligned());
    const QImage image = paintItem(fixture.column);
    QCOMPARE(image.pixelColor(50, int(7 * 1.5 + 50)), fixture.scheme.hourLine);
    QCOMPARE(image.pixelColor(50, int(14 * 1.5 + 50)), fixture.scheme.hourLine);
}

void tst_BkCalendarPaint::shouldCarrySelectionToHeaderWhenPainting()
{
    BkColumnFixture fixture(false, 105.0);
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    QImage image = paintItem(fixture.column, true);
    QCOMPARE(image.pixelColor(0, 100), fixture.scheme.selectedFrame);
    QVERIFY(fixture.column->header()->headerSelected());

    image = paintItem(fixture.column, false);
    QCOMPARE(image.pixelColor(0, 100), fixture.scheme.frame);
    QVERIFY(!fixture.column->header()->headerSelected());

    // A selected booking is enough, without any signal from it.
    item->widget->setSelected(true);
    image = paintItem(fixture.column, false);
    QCOMPARE(image.pixelColor(0, 100), fixture.scheme.selectedFrame);
    QVERIFY(fixture.column->header()->headerSelected());
}

void tst_BkCalendarPaint::shouldPaintNothingWithoutScaleOrScheme()
{
    BkColumnFixture fixture(false, 105.0);
    fixture.column->setColorScheme(nullptr);
    QImage image = paintItem(fixture.column);
    QCOMPARE(image.pixelColor(0, 100), QColor(Qt::white));
    QCOMPARE(image.pixelColor(50, 20), QColor(Qt::white));
    fixture.column->setColorScheme(&fixture.scheme);
    fixture.column->setTimeScale(nullptr);
    image = paintItem(fixture.column);
    QCOMPARE(image.pixelColor(50, 20), QColor(Qt::white));
}

void tst_BkCalendarPaint::shouldRenderRealisticDay()
{
    // A working day: plans with a closed lunch, overlapping bookings with strips and status colours,
    // a meeting, a locked booking, a reservation and a text-only note. Written as a picture to look at.
    setSetting("set_calshowtime", 1);
    setSetting("gst_university", 1);
    BkColumnFixture fixture(false, 305.0);
    BkCalendarStatusEntry confirmed;
    confirmed.name = "Confirmed";
    confirmed.color = QColor(140, 200, 140);
    fixture.scheme.statusColors.insert(2, confirmed);
    BkCalendarPlanInfo office;
    office.id = 1;
    office.color = QColor(235, 245, 255);
    office.label = "Office";
    fixture.model.addItem(office);
    fixture.addPlan(QTime(7, 0), QTime(12, 0), true, 1);
    fixture.addPlan(QTime(12, 0), QTime(13, 0), false);
    fixture.addPlan(QTime(13, 0), QTime(17, 0), true, 1);

    BkCalendarItem* a = fixture.addItem(QTime(8, 0), QTime(9, 30), 1);
    a->setTitle("Team review");
    a->setText("Agenda: <b>figures</b> of March");
    a->leftColor = QColor(220, 60, 60);
    BkCalendarItem* b = fixture.addItem(QTime(8, 45), QTime(10, 0), 2);
    b->setTitle("Call supplier");
    b->setStatusId(2);
    b->setItemFlags(BkCalendarItem::FlagPhone | BkCalendarItem::FlagMail);
    b->rightColor = QColor(60, 60, 220);
    BkCalendarItem* c = fixture.addItem(QTime(9, 15), QTime(11, 0), 3, BkCalendarItem::Meeting);
    c->setText("Room 4");
    BkCalendarItem* d = fixture.addItem(QTime(10, 30), QTime(11, 30), 4);
    d->setTitle("Locked slot");
    d->locked = 1;
    fixture.addItem(QTime(12, 0), QTime(13, 0), 5, BkCalendarItem::Reserved);
    BkCalendarItem* f = fixture.addItem(QTime(14, 0), QTime(14, 45), 6, BkCalendarItem::TextOnly);
    f->setText("<i>Note:</i> bring the keys");
    BkCalendarItem* g = fixture.addItem(QTime(15, 0), QTime(15, 30), 7);
    g->setTitle("Short one");
    // As the view does after sizing: the header learns the column's width at update().
    fixture.column->update();
    b->widget->setSelected(true);

    QCOMPARE(a->widget->colCount(), 4);
    QCOMPARE(d->widget->colIndex(), 3);

    QGraphicsView view(&fixture.scene);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.resize(380, 1000);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.centerOn(QPointF(180, 450));
    const QImage shot = view.grab().toImage();
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath("../bkcalendar-day.png");
    QVERIFY(shot.save(path));
    // The selected booking selected its column, whose frame turned orange.
    QVERIFY(fixture.column->isSelected());
    QVERIFY(fixture.column->header()->headerSelected());
}

FW_TEST_MAIN(tst_BkCalendarPaint)
#include "tst_bkcalendarpaint.moc"
