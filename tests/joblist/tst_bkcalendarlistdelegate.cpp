// The cards of the job list and the rows of a move list, on pixels: box, shadow, strips, the two
// lines of text, and the selected look.

#include "FwTestApplication.h"
#include "PaintProbe.h"

#include <BkCalendarClock.h>
#include <BkCalendarItem.h>
#include <BkCalendarList.h>
#include <BkCalendarListDelegate.h>
#include <BkCalendarModel.h>
#include <BkCalendarMoveDelegate.h>

#include <FwTreeWidget.h>

#include <QDir>
#include <QStandardItemModel>

using namespace PaintProbe;

namespace {
const QDate Wednesday(2026, 11, 25);
const BkCalendarResource Anna(5, QStringLiteral("Anna"), 0);
const QColor Paper(255, 0, 255);
const QColor Top(200, 220, 255);
const QColor Bottom(120, 160, 230);
const QColor LeftStrip(220, 40, 40);
const QColor RightStrip(40, 160, 40);
// The row of the edge cases: L 0, T 48, R 199, B 95.
const QRect Row(0, 48, 200, 48);

QFont boldFont()
{
    QFont font = QGuiApplication::font();
    font.setWeight(75);
    return font;
}

struct Card
{
    explicit Card(const QString& title = QStringLiteral("Check-up"), int type = 0)
    {
        list.setCalendarModel(&model);
        list.updateModel();
        list.setResource(Anna);
        list.setDate(Wednesday);
        item = new BkCalendarItem;
        item->id = 1;
        item->setTitle(title);
        item->setType(BkCalendarItem::ItemType(type));
        item->topColor = Top;
        item->bottomColor = Bottom;
        item->setDate(Wednesday);
        item->setUserId(Anna.id);
        item->setTime(QTime(9, 5), QTime(10, 30));
        model.addItem(item);
    }
    QModelIndex index() { return list.model()->index(0, 0); }
    // Refreshes the row's copies after the booking's fields were changed by hand.
    void refresh() { list.setDate(Wednesday); }
    QImage paint(bool selected, const QString& name, const QRect& row = Row)
    {
        QImage image = canvas(220, 110, Paper);
        QPainter painter(&image);
        plain(painter);
        QStyleOptionViewItem option;
        option.rect = row;
        option.state = selected ? QStyle::State_Selected | QStyle::State_Enabled : QStyle::State_Enabled;
        delegate.paint(&painter, option, index());
        painter.end();
        image.save(QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(name));
        return image;
    }
    BkCalendarModel model;
    BkCalendarList list;
    BkCalendarListDelegate delegate;
    BkCalendarItem* item = nullptr;
};

// The lines of text as the card should write them, in black on a transparent canvas.
QImage referenceLines(int left, const QString& times, const QString& title)
{
    QImage image(220, 110, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    plain(painter);
    painter.setPen(Qt::black);
    painter.setFont(boldFont());
    painter.drawText(QRect(QPoint(left, 50), QPoint(195, 74)),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, times);
    painter.drawText(QRect(QPoint(left, 74), QPoint(195, 91)), Qt::AlignVCenter | Qt::TextSingleLine, title);
    painter.end();
    return image;
}
} // namespace

class tst_BkCalendarListDelegate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void shouldHintTwoHundredByFortyEight();
    void shouldPaintNothingWithoutTheList();
    void shouldDrawShadowAndBoxAtTheirPlaces();
    void shouldFillRowsBelowTheFirstWithTheLastColour();
    void shouldUseTheSchemeColoursWhenSelected();
    void shouldRunTheGradientFromTheTopOfTheFirstRow();
    void shouldWriteTimeAndTitleInTheirBands();
    void shouldStartTheTextByTheRightStripOnly_data();
    void shouldStartTheTextByTheRightStripOnly();
    void shouldDrawTheStripLinesAtTheTopOfThePainter();
    void shouldWriteMeetingInPlaceOfTheTitle();
    void shouldPaintAReservedRowLikeAnyOther();

    void shouldHintTheMoveRowSize();
    void shouldPaintAMoveRowInTwoLines_data();
    void shouldPaintAMoveRowInTwoLines();
    void shouldPaintNoMoveRowOfAnotherModel();
};

void tst_BkCalendarListDelegate::initTestCase()
{
    aliasedText();
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(12, 0)));
}

void tst_BkCalendarListDelegate::cleanup() {}

void tst_BkCalendarListDelegate::shouldHintTwoHundredByFortyEight()
{
    Card card;
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 900, 300);
    QCOMPARE(card.delegate.sizeHint(option, card.index()), QSize(200, 48));
    QCOMPARE(card.delegate.sizeHint(QStyleOptionViewItem(), QModelIndex()), QSize(200, 48));
    // The list lays its rows out at that height.
    card.list.resize(400, 300);
    QCOMPARE(card.list.visualItemRect(card.list.item(0)).height(), 48);
}

void tst_BkCalendarListDelegate::shouldPaintNothingWithoutTheList()
{
    QStandardItemModel model(1, 1);
    model.setData(model.index(0, 0), QStringLiteral("Title"), BkCalendarList::TitleRole);
    model.setData(model.index(0, 0), QTime(9, 0), BkCalendarList::StartRole);
    model.setData(model.index(0, 0), QColor(Qt::red), BkCalendarList::TopColorRole);
    BkCalendarListDelegate delegate;
    QImage image = canvas(220, 110, Paper);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = Row;
    delegate.paint(&painter, option, model.index(0, 0));
    model.setData(model.index(0, 0), qulonglong(0), BkCalendarList::ListRole);
    delegate.paint(&painter, option, model.index(0, 0));
    painter.end();
    QCOMPARE(inkCount(image, Paper), 220 * 110);
}

void tst_BkCalendarListDelegate::shouldDrawShadowAndBoxAtTheirPlaces()
{
    Card card;
    const QImage image = card.paint(false, QStringLiteral("card-plain.png"));
    const QColor grey(Qt::gray);
    const QColor shadow(230, 230, 230);
    // The box, QRectF 0, 50, 196, 42: its grey outline on the straight parts of its edges.
    QVERIFY(same(at(image, 0, 71), grey));
    QVERIFY(same(at(image, 196, 71), grey));
    QVERIFY(same(at(image, 100, 50), grey));
    QVERIFY(same(at(image, 100, 92), grey));
    // The shadow, QRectF 2, 52, 197, 43, shows right of and below the box.
    QVERIFY(same(at(image, 198, 71), shadow));
    QVERIFY(same(at(image, 100, 94), shadow));
    QVERIFY(same(at(image, 200, 71), Paper));
    QVERIFY(same(at(image, 100, 96), Paper));
    QVERIFY(same(at(image, 100, 49), Paper));
    QVERIFY(same(at(image, 1, 94), Paper));
    // Nothing above the row.
    QCOMPARE(inkCount(image, Paper, QRect(0, 0, 220, 48)), 220 * 48);
}

void tst_BkCalendarListDelegate::shouldFillRowsBelowTheFirstWithTheLastColour()
{
    Card card;
    const QImage image = card.paint(false, QStringLiteral("card-fill.png"));
    // The gradient runs over the first 50 pixels of the painter; this row lies below them.
    QVERIFY(same(at(image, 185, 60), Bottom));
    QVERIFY(same(at(image, 185, 88), Bottom));
}

void tst_BkCalendarListDelegate::shouldUseTheSchemeColoursWhenSelected()
{
    Card card;
    card.item->leftColor = LeftStrip;
    card.refresh();
    const QImage image = card.paint(true, QStringLiteral("card-selected.png"));
    QVERIFY(same(at(image, 185, 60), card.list.colorSchemePtr()->selectedHeaderGradient));
    // Strip and text stay.
    QVERIFY(same(at(image, 2, 71), LeftStrip));
    QVERIFY(inkCount(image, QColor(Qt::black), QRect(0, 50, 196, 42)) > 0);
}

// The first row of the list lies under the gradient's start: its top shows the first colour, its
// lower part turns to the last.
void tst_BkCalendarListDelegate::shouldRunTheGradientFromTheTopOfTheFirstRow()
{
    Card card;
    const QRect first(0, 0, 200, 48);
    const BkCalendarColorScheme* scheme = card.list.colorSchemePtr();
    const struct
    {
        bool selected;
        QColor top, bottom;
    } looks[] = {{false, Top, Bottom}, {true, scheme->selectedHeader, scheme->selectedHeaderGradient}};
    for (const auto& look : looks) {
        QVERIFY(look.top != look.bottom);
        const QImage image =
            card.paint(look.selected, QStringLiteral("card-first-row-%1.png").arg(look.selected), first);
        // The gradient spans the painter's first 50 pixels; a pixel shows it at its centre.
        const auto expected = [&](int y) {
            const double share = (y + 0.5) / 50.0;
            return QColor(qRound(look.top.red() + (look.bottom.red() - look.top.red()) * share),
                          qRound(look.top.green() + (look.bottom.green() - look.top.green()) * share),
                          qRound(look.top.blue() + (look.bottom.blue() - look.top.blue()) * share));
        };
        for (int y : {3, 20, 40})
            QVERIFY2(near(at(image, 185, y), expected(y)), qPrintable(at(image, 185, y).name()));
        QVERIFY(!near(at(image, 185, 3), look.bottom));
    }
}

void tst_BkCalendarListDelegate::shouldWriteTimeAndTitleInTheirBands()
{
    Card card;
    const QImage image = card.paint(false, QStringLiteral("card-text.png"));
    const QColor black(Qt::black);
    const QRect time = inkBounds(image, black, QRect(0, 50, 196, 24));
    const QRect title = inkBounds(image, black, QRect(0, 74, 196, 18));
    QVERIFY(!time.isNull());
    QVERIFY(!title.isNull());
    QVERIFY(sameInk(image, referenceLines(3, QStringLiteral("9:05 - 10:30"), QStringLiteral("Check-up")),
                    black, QRect(0, 0, 220, 110)));
    // Bold: a regular rendering of the same time text differs.
    QImage regular(220, 110, QImage::Format_ARGB32_Premultiplied);
    regular.fill(Qt::transparent);
    QPainter painter(&regular);
    plain(painter);
    painter.setPen(Qt::black);
    painter.drawText(QRect(QPoint(3, 50), QPoint(195, 74)),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, QStringLiteral("9:05 - 10:30"));
    painter.end();
    QVERIFY(!sameInk(image, regular, black, QRect(0, 50, 196, 24)));
}

void tst_BkCalendarListDelegate::shouldStartTheTextByTheRightStripOnly_data()
{
    QTest::addColumn<bool>("left");
    QTest::addColumn<bool>("right");
    QTest::addColumn<int>("start");
    QTest::newRow("both strips") << true << true << 8;
    QTest::newRow("right strip only") << false << true << 8;
    QTest::newRow("left strip only") << true << false << 3;
    QTest::newRow("no strip") << false << false << 3;
}

void tst_BkCalendarListDelegate::shouldStartTheTextByTheRightStripOnly()
{
    QFETCH(bool, left);
    QFETCH(bool, right);
    QFETCH(int, start);
    Card card;
    if (left)
        card.item->leftColor = LeftStrip;
    if (right)
        card.item->rightColor = RightStrip;
    card.refresh();
    const QImage image = card.paint(false, QStringLiteral("card-strips-%1%2.png").arg(left).arg(right));
    QVERIFY(sameInk(image, referenceLines(start, QStringLiteral("9:05 - 10:30"), QStringLiteral("Check-up")),
                    QColor(Qt::black), QRect(0, 0, 220, 110)));
    QCOMPARE(same(at(image, 2, 71), LeftStrip), left);
    QCOMPARE(same(at(image, 193, 71), RightStrip), right);
    // The strips keep to their edges.
    QVERIFY(!same(at(image, 6, 71), LeftStrip));
    QVERIFY(!same(at(image, 188, 71), RightStrip));
}

void tst_BkCalendarListDelegate::shouldDrawTheStripLinesAtTheTopOfThePainter()
{
    Card card;
    card.item->leftColor = LeftStrip;
    card.item->rightColor = RightStrip;
    card.refresh();
    const QImage image = card.paint(false, QStringLiteral("card-lines.png"));
    // h is the text rectangle's height, 41; the lines stand from y 0, whatever row is painted.
    QVERIFY(same(at(image, 5, 0), Bottom));
    QVERIFY(same(at(image, 5, 41), Bottom));
    QVERIFY(same(at(image, 5, 42), Paper));
    QVERIFY(same(at(image, 190, 20), Bottom));
    QVERIFY(same(at(image, 4, 20), Paper));
}

void tst_BkCalendarListDelegate::shouldWriteMeetingInPlaceOfTheTitle()
{
    Card card(QStringLiteral("Secret title"), BkCalendarItem::Meeting);
    const QImage image = card.paint(false, QStringLiteral("card-meeting.png"));
    QVERIFY(sameInk(image, referenceLines(3, QStringLiteral("9:05 - 10:30"), QStringLiteral("Meeting")),
                    QColor(Qt::black), QRect(0, 0, 220, 110)));
}

void tst_BkCalendarListDelegate::shouldPaintAReservedRowLikeAnyOther()
{
    Card card(QStringLiteral("Held"), BkCalendarItem::Reserved);
    const QImage image = card.paint(false, QStringLiteral("card-reserved.png"));
    QVERIFY(sameInk(image, referenceLines(3, QStringLiteral("9:05 - 10:30"), QStringLiteral("Held")),
                    QColor(Qt::black), QRect(0, 0, 220, 110)));
    QVERIFY(same(at(image, 185, 60), Bottom));
}

void tst_BkCalendarListDelegate::shouldHintTheMoveRowSize()
{
    BkCalendarMoveDelegate delegate;
    QCOMPARE(delegate.sizeHint(QStyleOptionViewItem(), QModelIndex()), QSize(200, 48));
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 10, 10);
    QCOMPARE(delegate.sizeHint(option, QModelIndex()), QSize(200, 48));
}

void tst_BkCalendarListDelegate::shouldPaintAMoveRowInTwoLines_data()
{
    QTest::addColumn<bool>("selected");
    QTest::newRow("plain") << false;
    QTest::newRow("selected") << true;
}

void tst_BkCalendarListDelegate::shouldPaintAMoveRowInTwoLines()
{
    QFETCH(bool, selected);
    FwTreeWidget tree;
    auto* row = new FwTreeWidgetItem(&tree);
    row->setData(0, BkCalendarMoveDelegate::MoveStartRole, QTime(8, 30));
    row->setData(0, BkCalendarMoveDelegate::MoveEndRole, QTime(9, 45));
    row->setData(0, BkCalendarMoveDelegate::MoveTitleRole, QStringLiteral("Parked"));
    BkCalendarMoveDelegate delegate;

    QImage image = canvas(220, 60, Paper);
    QPainter painter(&image);
    plain(painter);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 200, 48);
    option.palette.setColor(QPalette::Base, QColor(250, 250, 240));
    option.state = selected ? QStyle::State_Selected : QStyle::State_None;
    delegate.paint(&painter, option, tree.model()->index(0, 0));
    painter.end();
    image.save(
        QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(QStringLiteral("move-row-%1.png").arg(selected)));

    // The row shrunk by 2 at top and bottom; the text at the absolute edges 3 and 24.
    if (selected) {
        QVERIFY(same(at(image, 100, 2), QColor(93, 140, 200)));
        QVERIFY(same(at(image, 100, 46), QColor(93, 140, 200)));
    } else {
        QVERIFY(same(at(image, 180, 10), QColor(250, 250, 240)));
        QVERIFY(same(at(image, 180, 45), QColor(250, 250, 240)));
    }
    QVERIFY(same(at(image, 100, 1), Paper));
    QVERIFY(same(at(image, 100, 47), Paper));
    QImage reference(220, 60, QImage::Format_ARGB32_Premultiplied);
    reference.fill(Qt::transparent);
    QPainter text(&reference);
    plain(text);
    text.setPen(Qt::black);
    text.setFont(boldFont());
    text.drawText(QRect(QPoint(3, 2), QPoint(199, 24)), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                  QStringLiteral("8:30 - 9:45"));
    text.drawText(QRect(QPoint(3, 24), QPoint(199, 45)), Qt::AlignVCenter | Qt::TextSingleLine,
                  QStringLiteral("Parked"));
    text.end();
    QVERIFY(inkCount(image, QColor(Qt::black)) > 0);
    QVERIFY(sameInk(image, reference, QColor(Qt::black), QRect(0, 0, 220, 60)));
}

void tst_BkCalendarListDelegate::shouldPaintNoMoveRowOfAnotherModel()
{
    QStandardItemModel model(1, 1);
    model.setData(model.index(0, 0), QStringLiteral("Parked"), BkCalendarMoveDelegate::MoveTitleRole);
    BkCalendarMoveDelegate delegate;
    QImage image = canvas(220, 60, Paper);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 200, 48);
    delegate.paint(&painter, option, model.index(0, 0));
    painter.end();
    QCOMPARE(inkCount(image, Paper), 220 * 60);
}

FW_TEST_MAIN(tst_BkCalendarListDelegate)
#include "tst_bkcalendarlistdelegate.moc"
