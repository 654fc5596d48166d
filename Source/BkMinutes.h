#ifndef BKMINUTES_H
#define BKMINUTES_H

#include <QTime>

// Whole minutes from a to b, as QTime::secsTo(b) / 60 gives them: 0 when either time is not valid,
// and seconds counted without their milliseconds. Worked out here rather than in a call into Qt,
// since a layout places thousands of boxes by their times.
inline int minutesBetween(const QTime& a, const QTime& b)
{
    const int msecsPerDay = 24 * 60 * 60 * 1000;
    const int from = a.msecsSinceStartOfDay();
    const int to = b.msecsSinceStartOfDay();
    if (a.isNull() || b.isNull() || from < 0 || from >= msecsPerDay || to < 0 || to >= msecsPerDay)
        return 0;
    return (to / 1000 - from / 1000) / 60;
}

#endif
