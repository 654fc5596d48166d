#ifndef FWCALENDAR_H
#define FWCALENDAR_H

// Everything a host needs to embed the booking calendar.
#include "BkCalendar.h"
#include "BkCalendarClock.h"
#include "BkCalendarColorScheme.h"
#include "BkCalendarColumn.h"
#include "BkCalendarHeader.h"
#include "BkCalendarHostVisit.h"
#include "BkCalendarInfoWidget.h"
#include "BkCalendarItem.h"
#include "BkCalendarItemKind.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarList.h"
#include "BkCalendarListDelegate.h"
#include "BkCalendarModel.h"
#include "BkCalendarMoveDelegate.h"
#include "BkCalendarNestedLoop.h"
#include "BkCalendarPainting.h"
#include "BkCalendarRecords.h"
#include "BkCalendarScene.h"
#include "BkCalendarStatus.h"
#include "BkCalendarStatusEntry.h"
#include "BkCalendarTextBlock.h"
#include "BkCalendarTimeScale.h"
#include "BkCalendarUserList.h"
#include "BkCalendarView.h"
#include "FwCalendarGlobal.h"

#endif // FWCALENDAR_H
