#ifndef BKCALENDARNESTEDLOOP_H
#define BKCALENDARNESTEDLOOP_H

#include "FwCalendarGlobal.h"

class QObject;

// The double-booking question, a drag, the group's picker and a header's menu run an event loop of their
// own in the middle of the calendar's handling of an event, and so may a host that opens a dialog or a
// menu in its answer to an activation. A form that the host closes with deleteLater meanwhile would be
// deleted inside that loop, under the handler and Qt's own event handling that wait for it. The calendar
// holds one of these around each such loop, and the form holds its deletion back until the outermost of
// them is over; it then goes as deleteLater has it go, once control is back in the event loop.
class FWCALENDAR_EXPORT BkCalendarNestedLoop
{
public:
    BkCalendarNestedLoop() { ++depth(); }
    ~BkCalendarNestedLoop();
    BkCalendarNestedLoop(const BkCalendarNestedLoop&) = delete;
    BkCalendarNestedLoop& operator=(const BkCalendarNestedLoop&) = delete;

    static bool running() { return depth() > 0; }
    // Deletes the object once the outermost loop is over, in the manner of deleteLater.
    static void deleteAfterwards(QObject* object);

private:
    static int& depth();
};

#endif // BKCALENDARNESTEDLOOP_H
