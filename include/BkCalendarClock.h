#ifndef BKCALENDARCLOCK_H
#define BKCALENDARCLOCK_H

#include "FwCalendarGlobal.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

// The one place where the calendar reads the wall clock: the current-time marker, a column's and the
// job list's first day, "today" of the date jumps. A test, or a host that shows a day as it will be
// at some hour, stops the clock at a moment of its choice; everything else follows the real time.
class FWCALENDAR_EXPORT BkCalendarClock
{
public:
    static QDateTime now();
    static QDate currentDate();
    static QTime currentTime();

    // Stops the clock at the given local time; an invalid value lets it run with the wall clock again.
    static void setFixedNow(const QDateTime& now);
    static bool isFixed();
};

#endif // BKCALENDARCLOCK_H
