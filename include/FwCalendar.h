#ifndef FWCALENDAR_H
#define FWCALENDAR_H

// Everything a host needs to embed the booking calendar.
#include "FwCalendarGlobal.h"
#include "BkCalendarRecords.h"

#endif // FWCALENDAR_H
