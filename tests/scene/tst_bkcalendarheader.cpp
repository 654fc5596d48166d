// The column header: its fields, its own highlight, its width, and what it draws for a day, a user
// and a resource, selected or not.

#include "PaintProbe.h"

#include <BkCalendarColorScheme.h>
#include <BkCalendarHeader.h>

#include <QApplication>
#include <QDir>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QResource>
#include <QSignalSpy>
#include <QtTest>

using namespace PaintProbe;

namespace {
const QColor Paper(255, 0, 255);
const double Width = 300.0;

QFont captionFont()
{
    return QFont(QStringLiteral("DejaVu Sans"), 9);
}

QColor textColour()
{
    return QApplication::palette().brush(QPalette::Current, QPalette::WindowText).color();
}

QImage paintHeader(BkCalendarHeader& header, QFont* fontAfter = nullptr)
{
    QImage image = canvas(int(Width) + 20, 40, Paper);
    QPainter painter(&image);
    plain(painter);
    painter.setFont(captionFont());
    header.paint(&painter, nullptr, nullptr);
    if (fontAfter)
        *fontAfter = painter.font();
    painter.end();
    return image;
}

void save(const QImage& image, const QString& name)
{
    image.save(QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(name));
}

// The header of a group column for the resource "Beamer".
void showResource(BkCalendarHeader& header, BkCalendarColorScheme& scheme)
{
    header.setColorScheme(&scheme);
    header.widthChanged(Width);
    header.resource = BkCalendarResource(3, QStringLiteral("Beamer"), 1);
    header.setResourceMode(true);
    header.setText(QStringLiteral("Beamer"));
}

} // namespace

class tst_BkCalendarHeader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void shouldStartWithItsDefaults();
    void shouldKeepWhatTheColumnWrites();
    void shouldHighlightApartFromTheItemSelection();
    void shouldRepaintOnlyWhenTheHighlightChanges();
    void shouldFollowTheColumnWidth();
    void shouldDrawAUserDayInFlatAndFadingBlue();
    void shouldLetSelectionWinOverTheResourceColours();
    void shouldDrawAResourceInLilacWithoutTheHostsIcon();
    void shouldDrawNoIconWithoutAResourceId();
    void shouldShowAResourceIconThatAHostRegistersLater();
    void shouldDropAResourceIconThatTheHostTakesBack();
    void shouldUseTheStandardColoursWithoutAScheme();
    void shouldLetMouseEventsThroughToTheItem();
};

void tst_BkCalendarHeader::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    aliasedText();
}

void tst_BkCalendarHeader::shouldStartWithItsDefaults()
{
    const BkCalendarHeader header(nullptr);
    QCOMPARE(header.boundingRect(), QRectF(0.0, 0.0, 100.0, 20.0));
    QVERIFY(!header.headerSelected());
    QVERIFY(header.text().isEmpty());
    QVERIFY(!header.resizable());
    QCOMPARE(header.grip(), QRectF(0.0, 0.0, 0.0, 0.0));
    QVERIFY(header.menu() == nullptr);
    QCOMPARE(header.lastPos(), QPointF(0.0, 0.0));
    QVERIFY(header.column() == nullptr);
    QVERIFY(header.colorScheme() == nullptr);
    QVERIFY(!header.date.isValid());
    QVERIFY(header.resource.id.isNull());
    QCOMPARE(header.resource.type, 0);
    QVERIFY(!header.resourceMode());

    QCOMPARE(header.flags(), QGraphicsItem::GraphicsItemFlags(QGraphicsItem::ItemIsSelectable));
    QVERIFY(!header.acceptDrops());
    QCOMPARE(header.data(266).toInt(), 104);
    QCOMPARE(header.zValue(), 250.0);
}

void tst_BkCalendarHeader::shouldKeepWhatTheColumnWrites()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    header.setText(QStringLiteral("Beamer"));
    header.setResizable(true);
    header.setGrip(QRectF(85.0, 5.0, 10.0, 10.0));
    header.setColorScheme(&scheme);
    header.setResourceMode(true);
    header.date = QDate(2024, 3, 4);
    header.resource = BkCalendarResource(3, QStringLiteral("Beamer"), 1);

    QCOMPARE(header.text(), QStringLiteral("Beamer"));
    QVERIFY(header.resizable());
    QCOMPARE(header.grip(), QRectF(85.0, 5.0, 10.0, 10.0));
    QCOMPARE(header.colorScheme(), &scheme);
    QVERIFY(header.resourceMode());
    QCOMPARE(header.date, QDate(2024, 3, 4));
    QCOMPARE(header.resource, BkCalendarResource(3, QString(), 1));
    QVERIFY(header.column() == nullptr);
}

void tst_BkCalendarHeader::shouldHighlightApartFromTheItemSelection()
{
    QGraphicsScene scene;
    auto* header = new BkCalendarHeader(nullptr);
    scene.addItem(header);
    header->setSelected(true);
    QVERIFY(header->headerSelected());
    QVERIFY(!header->isSelected());
    QVERIFY(scene.selectedItems().isEmpty());

    header->QGraphicsItem::setSelected(true);
    header->setSelected(false);
    QVERIFY(!header->headerSelected());
    QVERIFY(header->isSelected());
}

void tst_BkCalendarHeader::shouldRepaintOnlyWhenTheHighlightChanges()
{
    QGraphicsScene scene;
    auto* header = new BkCalendarHeader(nullptr);
    scene.addItem(header);
    QSignalSpy changed(&scene, &QGraphicsScene::changed);
    QTRY_VERIFY(changed.count() > 0);
    QCoreApplication::processEvents();
    changed.clear();

    header->setSelected(false); // no change
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 0);

    header->setSelected(true);
    QTRY_VERIFY(changed.count() > 0);
    QVERIFY(changed.first().first().value<QList<QRectF>>().value(0).intersects(header->sceneBoundingRect()));
    // The scene reports a repaint in two queued steps, the second one empty; a slow run can see the
    // first alone. Both are let through before counting again.
    QCoreApplication::processEvents();

    changed.clear();
    header->setSelected(true); // no change
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 0);
}

void tst_BkCalendarHeader::shouldFollowTheColumnWidth()
{
    QGraphicsScene scene;
    auto* header = new BkCalendarHeader(nullptr);
    scene.addItem(header);
    header->widthChanged(240.5);
    QCOMPARE(header->boundingRect(), QRectF(0.0, 0.0, 240.5, 20.0));
    // The scene learns of the new size: the header is found where it has only just grown to.
    QCOMPARE(scene.items(QPointF(200.0, 10.0)).value(0), header);
    header->widthChanged(50.0);
    QCOMPARE(header->boundingRect(), QRectF(0.0, 0.0, 50.0, 20.0));
    QVERIFY(scene.items(QPointF(200.0, 10.0)).isEmpty());
}

void tst_BkCalendarHeader::shouldDrawAUserDayInFlatAndFadingBlue()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    header.setColorScheme(&scheme);
    header.widthChanged(Width);
    header.date = QDate(2024, 3, 4); // a Monday
    header.resource = BkCalendarResource(7, QStringLiteral("Anna"), 0);
    header.setResourceMode(false);

    QFont after;
    const QImage image = paintHeader(header, &after);
    save(image, QStringLiteral("header-user.png"));

    // Frame all round the strip (0, 0)-(300, 20).
    QVERIFY(same(at(image, 0, 5), scheme.frame));
    QVERIFY(same(at(image, 0, 15), scheme.frame));
    QVERIFY(same(at(image, 250, 0), scheme.frame));
    QVERIFY(same(at(image, 250, 20), scheme.frame));
    QVERIFY(same(at(image, 300, 12), scheme.frame));
    QVERIFY(same(at(image, 301, 12), Paper));
    QVERIFY(same(at(image, 250, 21), Paper));
    // Upper half flat, lower half fading from the darker stop into the fill.
    QVERIFY(same(at(image, 250, 5), scheme.header));
    QVERIFY(same(at(image, 250, 9), scheme.header));
    QVERIFY2(near(at(image, 250, 10), scheme.headerGradient), qPrintable(at(image, 250, 10).name()));
    QVERIFY2(near(at(image, 250, 18), scheme.header), qPrintable(at(image, 250, 18).name()));
    QVERIFY(at(image, 250, 14).blue() < scheme.header.blue() &&
            at(image, 250, 14).blue() > scheme.headerGradient.blue());
    QVERIFY(near(at(image, 1, 15), at(image, 250, 15), 0));
    QVERIFY(near(at(image, 299, 15), at(image, 250, 15), 0));

    // The user's icon at (2, 2).
    QVERIFY(showsPicture(image, QImage(QStringLiteral(":/calendar/user.png")), QPoint(2, 2)));

    // Captions: the day's name centred, the day of the month in bold from x 20.
    QImage reference =
        referenceText(image.size(), captionFont(), QRectF(0.0, 0.0, Width, 20.0),
                      Qt::AlignHCenter | Qt::AlignVCenter, QStringLiteral("Monday"), textColour());
    QFont bold = captionFont();
    bold.setWeight(75);
    {
        QPainter painter(&reference);
        plain(painter);
        painter.setFont(bold);
        painter.setPen(textColour());
        painter.drawText(QRectF(20.0, 3.0, Width - 40.0, 20.0), Qt::AlignLeft | Qt::AlignVCenter,
                         QStringLiteral("4"));
    }
    QVERIFY(sameInk(image, reference, textColour(), image.rect()));
    const QRect dayInk = inkBounds(image, textColour(), QRect(0, 0, 60, 40));
    QVERIFY2(dayInk.left() >= 20 && dayInk.left() <= 23, qPrintable(QString::number(dayInk.left())));
    // The bold font was dropped again.
    QCOMPARE(after.family(), captionFont().family());
    QCOMPARE(after.pointSize(), captionFont().pointSize());
    QCOMPARE(after.weight(), captionFont().weight());
}

void tst_BkCalendarHeader::shouldLetSelectionWinOverTheResourceColours()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    header.setColorScheme(&scheme);
    header.setResizable(true);
    header.widthChanged(Width);
    header.setGrip(QRectF(Width - 15.0, 5.0, 10.0, 10.0));
    header.resource = BkCalendarResource(3, QStringLiteral("Beamer"), 1);
    header.setResourceMode(true);
    header.setText(QStringLiteral("Beamer"));
    header.setSelected(true);

    QFont after;
    const QImage image = paintHeader(header, &after);
    save(image, QStringLiteral("header-resource-selected.png"));

    QVERIFY(same(at(image, 0, 5), scheme.selectedFrame));
    QVERIFY(same(at(image, 250, 20), scheme.selectedFrame));
    QVERIFY(same(at(image, 250, 5), scheme.selectedHeader));
    QVERIFY2(near(at(image, 250, 10), scheme.selectedHeaderGradient, 5),
             qPrintable(at(image, 250, 10).name()));
    QVERIFY2(near(at(image, 250, 18), scheme.selectedHeader, 5), qPrintable(at(image, 250, 18).name()));
    QCOMPARE(inkCount(image, scheme.resourceHeader), 0);
    QCOMPARE(inkCount(image, scheme.frame), 0);

    // The caption in the painter's own font from x 20; no day captions.
    const QImage reference =
        referenceText(image.size(), captionFont(), QRectF(20.0, 0.0, Width - 40.0, 20.0),
                      Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Beamer"), textColour());
    QVERIFY(sameInk(image, reference, textColour(), image.rect()));
    QCOMPARE(after.family(), captionFont().family());
    QCOMPARE(after.pointSize(), captionFont().pointSize());
    QCOMPARE(after.weight(), captionFont().weight());

    // The resize picture fills the grip, and nothing of it lies outside.
    const QColor arrow(0x3b, 0x6b, 0xa5);
    QVERIFY(inkCount(image, arrow, QRect(285, 5, 10, 10)) > 0);
    QCOMPARE(inkCount(image, arrow), inkCount(image, arrow, QRect(285, 5, 10, 10)));
}

void tst_BkCalendarHeader::shouldDrawAResourceInLilacWithoutTheHostsIcon()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    showResource(header, scheme);

    const QImage image = paintHeader(header);
    save(image, QStringLiteral("header-resource.png"));

    QVERIFY(same(at(image, 0, 5), scheme.frame));
    QVERIFY(same(at(image, 250, 5), scheme.resourceHeader));
    QVERIFY2(near(at(image, 250, 10), scheme.resourceHeaderGradient, 5),
             qPrintable(at(image, 250, 10).name()));
    QVERIFY2(near(at(image, 250, 18), scheme.resourceHeader, 5), qPrintable(at(image, 250, 18).name()));
    // The icon is looked up under "icons/", which the library does not fill: the corner stays plain.
    for (int y = 2; y < 10; ++y)
        for (int x = 2; x < 18; ++x)
            QVERIFY(same(at(image, x, y), scheme.resourceHeader));
    // Not resizable: no grip picture.
    QCOMPARE(inkCount(image, QColor(0x3b, 0x6b, 0xa5)), 0);
}

void tst_BkCalendarHeader::shouldDrawNoIconWithoutAResourceId()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    header.setColorScheme(&scheme);
    header.widthChanged(Width);
    header.date = QDate(2024, 3, 5);
    header.resource = BkCalendarResource(QVariant(), QString(), 0);

    const QImage image = paintHeader(header);
    for (int y = 2; y < 10; ++y)
        for (int x = 2; x < 18; ++x)
            QVERIFY(same(at(image, x, y), scheme.header));
    QVERIFY(!showsPicture(image, QImage(QStringLiteral(":/calendar/user.png")), QPoint(2, 2)));

    // The same header with an id shows the user icon there.
    header.resource = BkCalendarResource(0, QString(), 0);
    QVERIFY(showsPicture(paintHeader(header), QImage(QStringLiteral(":/calendar/user.png")), QPoint(2, 2)));
}

// A picture that is missing is looked for again at each paint.
void tst_BkCalendarHeader::shouldShowAResourceIconThatAHostRegistersLater()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    showResource(header, scheme);
    const QImage icon(QStringLiteral(":/calendar/kexi.png"));
    QVERIFY(!icon.isNull());
    QVERIFY(!showsPicture(paintHeader(header), icon, QPoint(2, 2)));

    QVERIFY(QResource::registerResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));
    QVERIFY(showsPicture(paintHeader(header), icon, QPoint(2, 2)));
    QVERIFY(showsPicture(paintHeader(header), icon, QPoint(2, 2)));
    QVERIFY(QResource::unregisterResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));
}

// The picture is the one registered at the time of the paint: once the host takes it back, the
// corner is plain again, and registered anew it shows again.
void tst_BkCalendarHeader::shouldDropAResourceIconThatTheHostTakesBack()
{
    BkCalendarColorScheme scheme;
    BkCalendarHeader header(nullptr);
    showResource(header, scheme);
    const QImage icon(QStringLiteral(":/calendar/kexi.png"));
    QVERIFY(!icon.isNull());

    QVERIFY(QResource::registerResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));
    QVERIFY(showsPicture(paintHeader(header), icon, QPoint(2, 2)));
    QVERIFY(QResource::unregisterResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));

    const QImage image = paintHeader(header);
    QVERIFY(!showsPicture(image, icon, QPoint(2, 2)));
    for (int y = 2; y < 10; ++y)
        for (int x = 2; x < 18; ++x)
            QVERIFY(same(at(image, x, y), scheme.resourceHeader));

    QVERIFY(QResource::registerResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));
    QVERIFY(showsPicture(paintHeader(header), icon, QPoint(2, 2)));
    QVERIFY(QResource::unregisterResource(QStringLiteral(FWCALENDAR_HOST_ICONS)));
}

void tst_BkCalendarHeader::shouldUseTheStandardColoursWithoutAScheme()
{
    BkCalendarHeader header(nullptr);
    header.widthChanged(Width);
    header.date = QDate(2024, 3, 5);
    const QImage image = paintHeader(header);
    const BkCalendarColorScheme standard;
    QVERIFY(same(at(image, 0, 5), standard.frame));
    QVERIFY(same(at(image, 250, 5), standard.header));
}

void tst_BkCalendarHeader::shouldLetMouseEventsThroughToTheItem()
{
    // Until the column joins them up, the header's mouse handlers act as a plain item's: a press
    // selects it in the scene (it is selectable) and gives it the mouse grab.
    QGraphicsScene scene;
    auto* header = new BkCalendarHeader(nullptr);
    scene.addItem(header);
    QGraphicsSceneMouseEvent press(QEvent::GraphicsSceneMousePress);
    press.setButton(Qt::LeftButton);
    press.setButtons(Qt::LeftButton);
    press.setScenePos(QPointF(50.0, 10.0));
    press.setPos(QPointF(50.0, 10.0));
    QCoreApplication::sendEvent(&scene, &press);
    QVERIFY(press.isAccepted());
    QCOMPARE(scene.mouseGrabberItem(), header);
    QVERIFY(header->isSelected());
    QCOMPARE(header->lastPos(), QPointF(0.0, 0.0));
}

QTEST_MAIN(tst_BkCalendarHeader)
#include "tst_bkcalendarheader.moc"
