#ifndef FWCALENDAR_H
#define FWCALENDAR_H

// Everything a host needs to embed the booking calendar.
#include "BkCalendarItem.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#endif // FWCALENDAR_H
