#ifndef BKCALENDARCOLORSCHEME_H
#define BKCALENDARCOLORSCHEME_H

#include "BkCalendarStatusEntry.h"
#include "FwCalendarGlobal.h"

#include <QColor>
#include <QMap>

// The fixed colours of the grid and the status colours loaded from the database. A plain value:
// the view holds the live instance, columns and headers point at it, the form hands out copies.
class FWCALENDAR_EXPORT BkCalendarColorScheme
{
public:
    BkCalendarColorScheme();

    QColor frame;
    QColor selectedFrame;
    QColor hourLine;
    QColor stepLine;
    QColor header;
    QColor headerGradient;
    QColor selectedHeader;
    QColor selectedHeaderGradient;
    QColor resourceHeader;
    QColor resourceHeaderGradient;
    // Status id (tbl_casestage.id) to its name and colour; the view is its only writer.
    QMap<int, BkCalendarStatusEntry> statusColors;
};

#endif // BKCALENDARCOLORSCHEME_H
