#ifndef BKCALENDARPAINTING_H
#define BKCALENDARPAINTING_H

#include "FwCalendarGlobal.h"

#include <QRectF>

class QPainter;

// What the calendar's items share when they paint: where a repaint can change pixels at all, and the
// grid's row lines drawn without going through the line stroker.
class FWCALENDAR_EXPORT BkCalendarPainting
{
public:
    // The part of the painter's logical coordinates that this paint can reach: the region that the
    // window system asked to repaint, cut by the painter's own clip, a pixel wider all round. Without
    // such a region (a painter on an image, a full grab) it reaches everywhere. Anything drawn wholly
    // outside it leaves no pixel, so a paint may pass it over.
    static QRectF repaintArea(QPainter* painter);
    // The same without the painter's own clip: what a drawing can reach that replaces that clip with
    // one of its own, or turns clipping off.
    static QRectF exposedArea(QPainter* painter);

    // Draws exactly what painter->drawLine(x1, y, x2, y) draws with the painter's pen. For the solid
    // hairline of the grid, on a raster device of true colour, without antialiasing and with at most
    // a translation, the line's pixels are one row that is filled at once, as the stroker would
    // reach them one by one; anything else goes to drawLine itself.
    static void drawRowLine(QPainter* painter, int x1, int y, int x2);
};

#endif // BKCALENDARPAINTING_H
