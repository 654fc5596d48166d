#ifndef BKCALENDARPAINTING_H
#define BKCALENDARPAINTING_H

#include "FwCalendarGlobal.h"

#include <QRectF>

class QGraphicsItem;
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

    // Qt holds on to the items of a scene while it draws them, until the whole picture is done, and to
    // an item while it changes its selection; yet a change of selection lets the host in (a column
    // tells of its date, the scene of the change), and a booking's paint selects its column. A column
    // or box holds a HostVisit while its selection changes, and what the host's answer takes away
    // meanwhile is retired instead of deleted.
    class HostVisit
    {
    public:
        HostVisit() { ++visits(); }
        ~HostVisit() { --visits(); }
        HostVisit(const HostVisit&) = delete;
        HostVisit& operator=(const HostVisit&) = delete;
    };
    static bool hostVisits() { return visits() > 0; }

    // Takes an item of the calendar away: deletes it, or, while the host visits a paint, hides it,
    // takes it out of its scene and deletes it once the event loop runs again.
    static void remove(QGraphicsItem* item);

private:
    static int& visits();
};

#endif // BKCALENDARPAINTING_H
