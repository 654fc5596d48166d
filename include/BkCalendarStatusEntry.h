#ifndef BKCALENDARSTATUSENTRY_H
#define BKCALENDARSTATUSENTRY_H

#include "FwCalendarGlobal.h"

#include <QColor>
#include <QString>

// One calendar status as the database defines it: its name and the colour its bookings are drawn in.
class FWCALENDAR_EXPORT BkCalendarStatusEntry
{
public:
    QString name;
    QColor color;
};

#endif // BKCALENDARSTATUSENTRY_H
