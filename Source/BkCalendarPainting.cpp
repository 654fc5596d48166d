#include "BkCalendarPainting.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>

#include <cmath>

namespace {

// Everything: the area of a paint that is not cut to a region.
const QRectF Everywhere(-1e9, -1e9, 2e9, 2e9);

// The pixel column or row that the stroker gives a device coordinate: it takes the value in 1/64
// pixel, cut towards zero, and then rounds down to the pixel.
int strokerPixel(double v)
{
    return static_cast<int>(v * 64.0) >> 6;
}

bool rowLineIsPlain(QPainter* painter, int x1, int y, int x2)
{
    // Fewer colour bits than true colour are blended differently on the two roads.
    const QPaintEngine* engine = painter->paintEngine();
    const QPaintDevice* device = painter->device();
    if (!engine || engine->type() != QPaintEngine::Raster || !device || device->depth() < 24 || x2 <= x1)
        return false;
    const QPen pen = painter->pen();
    if (pen.style() != Qt::SolidLine || pen.brush().style() != Qt::SolidPattern || pen.widthF() != 1.0 ||
        pen.capStyle() == Qt::FlatCap)
        return false;
    if (painter->renderHints() & (QPainter::Antialiasing | QPainter::Qt4CompatiblePainting) ||
        painter->compositionMode() != QPainter::CompositionMode_SourceOver)
        return false;
    const QTransform transform = painter->deviceTransform();
    if (transform.type() > QTransform::TxTranslate)
        return false;
    // Far out, 1/64 pixel no longer fits the stroker's integers.
    const double limit = 1 << 20;
    return std::abs(transform.dx()) + std::abs(double(x1)) + std::abs(double(x2)) < limit &&
           std::abs(transform.dy()) + std::abs(double(y)) < limit;
}

// The region that the window system asked to repaint, a pixel wider all round, in the painter's
// logical coordinates; with `withClip`, cut by the painter's own clip as well.
QRectF paintArea(QPainter* painter, bool withClip)
{
    QRectF area = Everywhere;
    const QPaintEngine* engine = painter ? painter->paintEngine() : nullptr;
    if (!engine)
        return area;
    const QRegion region = engine->systemClip();
    bool invertible = false;
    const QTransform toLogical = painter->deviceTransform().inverted(&invertible);
    if (!invertible)
        return area;
    if (!region.isEmpty())
        area = toLogical.mapRect(QRectF(region.boundingRect().adjusted(-1, -1, 1, 1)));
    if (withClip && painter->hasClipping()) {
        // The clip in logical coordinates, widened by a device pixel.
        const QRectF clip = painter->clipBoundingRect();
        const QRectF wide = painter->deviceTransform().mapRect(clip).adjusted(-1, -1, 1, 1);
        area &= toLogical.mapRect(wide);
    }
    return area;
}

} // namespace

QRectF BkCalendarPainting::repaintArea(QPainter* painter)
{
    return paintArea(painter, true);
}

QRectF BkCalendarPainting::exposedArea(QPainter* painter)
{
    return paintArea(painter, false);
}

void BkCalendarPainting::drawRowLine(QPainter* painter, int x1, int y, int x2)
{
    if (!rowLineIsPlain(painter, x1, y, x2)) {
        painter->drawLine(x1, y, x2, y);
        return;
    }
    // The stroker's square caps reach half a pixel beyond both ends and round to whole pixels, so the
    // row runs from the first end's pixel to the last end's pixel, both included. The rectangle is
    // given so that it maps onto whole device pixels, where the fill has nothing left to round.
    const QTransform device = painter->deviceTransform();
    const int row = strokerPixel(device.dy() + y);
    const int first = strokerPixel(device.dx() + x1);
    const int last = strokerPixel(device.dx() + x2);
    painter->fillRect(QRectF(first - device.dx(), row - device.dy(), last - first + 1, 1),
                      painter->pen().color());
}
