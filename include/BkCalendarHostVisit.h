#ifndef BKCALENDARHOSTVISIT_H
#define BKCALENDARHOSTVISIT_H

#include "FwCalendarGlobal.h"

class QGraphicsItem;

// Qt holds on to the items of a scene while it draws them, until the whole picture is done, and to an
// item while it changes its selection; yet a change of selection lets the host in (a column tells of
// its date, the scene of the change), and a booking's paint selects its column. A load request lets
// the host in as well, mostly from a column in the middle of its update. A column or box holds a visit
// while its selection changes, the model while it asks for bookings, and what the host's answer takes
// away meanwhile is retired instead of deleted.
class FWCALENDAR_EXPORT BkCalendarHostVisit
{
public:
    BkCalendarHostVisit() { ++visits(); }
    ~BkCalendarHostVisit() { --visits(); }
    BkCalendarHostVisit(const BkCalendarHostVisit&) = delete;
    BkCalendarHostVisit& operator=(const BkCalendarHostVisit&) = delete;

    // Whether the host is let in by a change of selection or a load request at this moment.
    static bool active() { return visits() > 0; }

    // Takes an item of the calendar away: deletes it, or, while the host is let in, hides it, takes it
    // out of its scene and deletes it once the event loop runs again.
    static void remove(QGraphicsItem* item);

private:
    static int& visits();
};

#endif // BKCALENDARHOSTVISIT_H
