#include "BkCalendarClock.h"

namespace {
// Read and written on the GUI thread only, like everything else in the calendar.
QDateTime& fixedNow()
{
    static QDateTime value;
    return value;
}
} // namespace

QDateTime BkCalendarClock::now()
{
    return isFixed() ? fixedNow() : QDateTime::currentDateTime();
}

QDate BkCalendarClock::currentDate()
{
    return now().date();
}

QTime BkCalendarClock::currentTime()
{
    return now().time();
}

void BkCalendarClock::setFixedNow(const QDateTime& now)
{
    fixedNow() = now;
}

bool BkCalendarClock::isFixed()
{
    return fixedNow().isValid();
}
