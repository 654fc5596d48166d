// Painting shortcuts that must leave every pixel as it was: the grid's row lines, and what a repaint of
// part of the view passes over.

#include "BkShownView.h"

#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarPainting.h>

#include <FwTestApplication.h>

#include <QPainter>
#include <QRandomGenerator>
#include <QWidget>
#include <QtTest>

namespace {

const QDate Monday(2026, 11, 23);

// One row line both ways, on images of the same kind: drawLine, and the shortcut.
struct LinePair
{
    LinePair(QImage::Format format, const QColor& background)
        : lines(160, 50, format)
        , rows(160, 50, format)
    {
        lines.fill(background);
        rows.fill(background);
    }
    QImage lines;
    QImage rows;
};

// Records the repaint area that a paint sees.
class AreaProbe : public QWidget
{
public:
    QRectF area;
    QPoint origin;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.translate(origin);
        area = BkCalendarPainting::repaintArea(&painter);
    }
};

BkCalendarItem* booking(BkCalendarModel* model, int id, QTime start, int minutes, const QString& title)
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setTitle(title);
    item->setText(QStringLiteral("Text of <b>booking</b> %1 with a few more words").arg(id));
    item->topColor = QColor(214, 228, 250);
    item->bottomColor = QColor(150, 182, 232);
    item->leftColor = id % 3 ? QColor() : QColor(Qt::darkGreen);
    item->setDate(Monday.addDays(id % 2));
    item->setUserId(7);
    item->setTime(start, start.addSecs(minutes * 60));
    model->addItem(item);
    return item;
}

// The viewport as a full paint leaves it, and as a repaint of `region` alone leaves it; the latter
// starts from magenta, so that a pixel left out shows.
bool regionMatchesFullPaint(QWidget* viewport, const QRegion& region, QString* where)
{
    QImage full(viewport->size(), QImage::Format_ARGB32_Premultiplied);
    full.fill(Qt::magenta);
    viewport->render(&full);
    QImage part(viewport->size(), QImage::Format_ARGB32_Premultiplied);
    part.fill(Qt::magenta);
    // The region's top left lands on the offset given.
    viewport->render(&part, region.boundingRect().topLeft(), region);
    for (const QRect& rect : region) {
        const QRect inside = rect & full.rect();
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            for (int x = inside.left(); x <= inside.right(); ++x) {
                if (full.pixel(x, y) != part.pixel(x, y)) {
                    *where = QStringLiteral("pixel (%1, %2)").arg(x).arg(y);
                    return false;
                }
            }
        }
    }
    return true;
}

} // namespace

class tst_BkCalendarPainting : public QObject
{
    Q_OBJECT

private slots:
    void rowLineIsTheLine_data();
    void rowLineIsTheLine();
    void rowLineAtRandom();
    void repaintAreaOfARegion();
    void repaintAreaOfAFullPaint();
    void partialRepaintsMatchTheFullPicture_data();
    void partialRepaintsMatchTheFullPicture();
};

void tst_BkCalendarPainting::rowLineIsTheLine_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QPointF>("shift");
    QTest::addColumn<QPen>("pen");
    QTest::addColumn<int>("hints");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("x1");
    QTest::addColumn<int>("x2");

    const QPen grid(QColor(165, 191, 224));
    const int argb = QImage::Format_ARGB32_Premultiplied;
    QTest::newRow("whole pixels") << argb << QPointF(50, 25) << grid << 0 << 1.0 << 0 << 120;
    QTest::newRow("fractions") << argb << QPointF(50.4, 25.6) << grid << 0 << 1.0 << 0 << 120;
    // The stroker cuts 1/64 pixel towards zero: just below a whole pixel, and just below zero.
    QTest::newRow("just below a pixel") << argb << QPointF(49.999, 24.999) << grid << 0 << 1.0 << 0 << 120;
    QTest::newRow("just below zero") << argb << QPointF(-0.004, -0.004) << grid << 0 << 1.0 << 0 << 120;
    QTest::newRow("beyond the image") << argb << QPointF(-30.3, 10.2) << grid << 0 << 1.0 << -20 << 400;
    QTest::newRow("translucent") << argb << QPointF(3.5, 7.25) << QPen(QColor(0, 0, 255, 90)) << 0 << 1.0 << 2
                                 << 90;
    QTest::newRow("true colour") << int(QImage::Format_RGB32) << QPointF(7.7, 3.3) << grid << 0 << 1.0 << 0
                                 << 100;
    QTest::newRow("24 bits") << int(QImage::Format_RGB888) << QPointF(7.7, 3.3) << grid << 0 << 1.0 << 0
                             << 100;
    QTest::newRow("30 bits") << int(QImage::Format_A2RGB30_Premultiplied) << QPointF(7.7, 3.3) << grid << 0
                             << 1.0 << 0 << 100;
    // What the shortcut leaves to drawLine.
    QTest::newRow("16 bits") << int(QImage::Format_RGB16) << QPointF(7.7, 3.3) << grid << 0 << 1.0 << 0
                             << 100;
    QTest::newRow("antialiased") << argb << QPointF(7.7, 3.3) << grid << int(QPainter::Antialiasing) << 1.0
                                 << 0 << 100;
    QTest::newRow("scaled") << argb << QPointF(7.7, 3.3) << grid << 0 << 1.5 << 0 << 80;
    QPen flat = grid;
    flat.setCapStyle(Qt::FlatCap);
    QTest::newRow("flat caps") << argb << QPointF(7.7, 3.3) << flat << 0 << 1.0 << 0 << 100;
    QPen wide = grid;
    wide.setWidth(3);
    QTest::newRow("wide pen") << argb << QPointF(7.7, 3.3) << wide << 0 << 1.0 << 0 << 100;
    QTest::newRow("dashed") << argb << QPointF(7.7, 3.3) << QPen(Qt::blue, 1, Qt::DashLine) << 0 << 1.0 << 0
                            << 100;
    QTest::newRow("a point") << argb << QPointF(7.7, 3.3) << grid << 0 << 1.0 << 40 << 40;
    QTest::newRow("backwards") << argb << QPointF(7.7, 3.3) << grid << 0 << 1.0 << 90 << 10;
}

void tst_BkCalendarPainting::rowLineIsTheLine()
{
    QFETCH(int, format);
    QFETCH(QPointF, shift);
    QFETCH(QPen, pen);
    QFETCH(int, hints);
    QFETCH(double, scale);
    QFETCH(int, x1);
    QFETCH(int, x2);

    LinePair pair(QImage::Format(format), QColor(20, 200, 30));
    for (QImage* image : {&pair.lines, &pair.rows}) {
        QPainter painter(image);
        painter.setRenderHints(QPainter::RenderHints(hints));
        painter.translate(shift);
        painter.scale(scale, scale);
        painter.setPen(pen);
        for (int y = 0; y < 20; y += 7) {
            if (image == &pair.lines)
                painter.drawLine(x1, y, x2, y);
            else
                BkCalendarPainting::drawRowLine(&painter, x1, y, x2);
        }
    }
    QCOMPARE(pair.rows, pair.lines);
}

void tst_BkCalendarPainting::rowLineAtRandom()
{
    QRandomGenerator random(20261125);
    auto between = [&random](double low, double high) {
        return low + random.generateDouble() * (high - low);
    };
    const QImage::Format formats[] = {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB32,
                                      QImage::Format_ARGB32, QImage::Format_RGB888};
    for (int run = 0; run < 4000; ++run) {
        LinePair pair(formats[run % 4], run % 3 ? QColor(20, 200, 30) : QColor(Qt::transparent));
        QPointF shift(between(-40, 40), between(-10, 40));
        // Near whole pixels the cut towards zero decides.
        if (run % 4 == 0)
            shift = QPointF(std::round(shift.x()) + between(-0.02, 0.02),
                            std::round(shift.y()) + between(-0.02, 0.02));
        const int x1 = int(between(-50, 50));
        const int x2 = x1 + 1 + int(between(0, 250));
        const int y = int(between(-5, 30));
        const QColor colour(random.bounded(256), random.bounded(256), random.bounded(256),
                            run % 3 ? 255 : random.bounded(256));
        const QRectF clip(between(-5, 100), between(-5, 30), between(0, 150), between(0, 40));
        const int clipKind = random.bounded(3);
        const bool faded = run % 7 == 0;
        for (QImage* image : {&pair.lines, &pair.rows}) {
            QPainter painter(image);
            if (clipKind == 1)
                painter.setClipRect(clip);
            else if (clipKind == 2)
                painter.setClipRegion(QRegion(clip.toRect()) + QRegion(110, 0, 20, 50));
            painter.translate(shift);
            if (faded)
                painter.setOpacity(0.4);
            painter.setPen(colour);
            if (image == &pair.lines)
                painter.drawLine(x1, y, x2, y);
            else
                BkCalendarPainting::drawRowLine(&painter, x1, y, x2);
        }
        if (pair.rows != pair.lines)
            QFAIL(qPrintable(QStringLiteral("run %1: shift (%2, %3), x %4 to %5, y %6")
                                 .arg(run)
                                 .arg(shift.x())
                                 .arg(shift.y())
                                 .arg(x1)
                                 .arg(x2)
                                 .arg(y)));
    }
}

void tst_BkCalendarPainting::repaintAreaOfARegion()
{
    AreaProbe probe;
    probe.resize(300, 200);
    probe.origin = QPoint(20, 10);
    QImage image(probe.size(), QImage::Format_ARGB32_Premultiplied);
    probe.render(&image, QPoint(), QRegion(100, 50, 30, 40));
    // In the painter's coordinates, moved by the origin, and a pixel wider all round.
    QCOMPARE(probe.area, QRectF(79, 39, 32, 42));

    // The painter's own clip cuts it further.
    probe.render(&image, QPoint(), QRegion(0, 0, 300, 200));
    QVERIFY(probe.area.contains(QRectF(-20, -10, 300, 200)));
    QVERIFY(probe.area.width() < 310);
}

void tst_BkCalendarPainting::repaintAreaOfAFullPaint()
{
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.translate(30, 30);
    QVERIFY(BkCalendarPainting::repaintArea(&painter).contains(QRectF(-1e6, -1e6, 2e6, 2e6)));
    painter.setClipRect(QRectF(10, 10, 20, 5));
    QCOMPARE(BkCalendarPainting::repaintArea(&painter), QRectF(9, 9, 22, 7));
}

void tst_BkCalendarPainting::partialRepaintsMatchTheFullPicture_data()
{
    QTest::addColumn<int>("showTime");
    QTest::newRow("titles") << 0;
    QTest::newRow("times and titles") << 1;
}

// Strips along every column's edges and every box's edges, where a repaint reaches a box or a line
// of text only just, and rectangles at random: the pixels inside each are those of a full paint.
void tst_BkCalendarPainting::partialRepaintsMatchTheFullPicture()
{
    QFETCH(int, showTime);
    FwApplication::app()->setValue(QVariant(showTime), QStringLiteral("set_calshowtime"));

    BkShownView shown(QSize(900, 700));
    QVERIFY(shown.ok);
    shown.view.setInterval(QTime(8, 0), QTime(14, 0));
    int id = 1;
    for (int slot = 0; slot < 10; ++slot) {
        const QTime start = QTime(8, 0).addSecs(slot * 30 * 60);
        // Overlapping groups, so that boxes stand side by side with narrow gaps.
        for (int k = 0; k < 1 + slot % 3; ++k, ++id)
            booking(&shown.model, id, start.addSecs(k * 600), 40,
                    k == 2 ? QStringLiteral("Averyveryverylongwordthatcannotwrap")
                           : QStringLiteral("Booking %1").arg(id));
    }
    shown.view.setResource(BkCalendarResource(7, QStringLiteral("Anna"), 0));
    shown.view.setDays(2);
    shown.view.setDate(Monday);
    QCoreApplication::processEvents();

    QWidget* viewport = shown.view.viewport();
    QVector<QRect> strips;
    auto addEdges = [&](const QRect& r) {
        for (int w = 1; w <= 3; ++w) {
            strips << QRect(r.left() - w, r.top(), w, r.height()) << QRect(r.left(), r.top(), w, r.height())
                   << QRect(r.right() + 1, r.top(), w, r.height())
                   << QRect(r.right() - w + 1, r.top(), w, r.height())
                   << QRect(r.left(), r.top() - w, r.width(), w)
                   << QRect(r.left(), r.bottom() + 1, r.width(), w);
        }
    };
    int boxes = 0;
    for (BkCalendarColumn* column : shown.view.getColumnList()) {
        addEdges(shown.view.mapFromScene(column->sceneBoundingRect()).boundingRect());
        for (QGraphicsItem* child : column->childItems()) {
            if (qgraphicsitem_cast<BkCalendarItemWidget*>(child)) {
                addEdges(shown.view.mapFromScene(child->sceneBoundingRect()).boundingRect());
                ++boxes;
            }
        }
    }
    QCOMPARE(boxes, id - 1);
    QRandomGenerator random(42);
    for (int i = 0; i < 60; ++i)
        strips << QRect(random.bounded(viewport->width()), random.bounded(viewport->height()),
                        1 + random.bounded(120), 1 + random.bounded(120));

    for (const QRect& strip : qAsConst(strips)) {
        QString where;
        if (!regionMatchesFullPaint(viewport, QRegion(strip), &where))
            QFAIL(qPrintable(QStringLiteral("repaint of (%1, %2) %3x%4 differs at %5")
                                 .arg(strip.x())
                                 .arg(strip.y())
                                 .arg(strip.width())
                                 .arg(strip.height())
                                 .arg(where)));
    }
}

FW_TEST_MAIN(tst_BkCalendarPainting)
#include "tst_bkcalendarpainting.moc"
