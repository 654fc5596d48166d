#ifndef BKCALENDARRECORDS_H
#define BKCALENDARRECORDS_H

#include "FwCalendarGlobal.h"

#include <QColor>
#include <QDate>
#include <QMetaType>
#include <QRectF>
#include <QString>
#include <QTime>
#include <QVariant>

// Whose calendar is meant: the key of a column, of the job list, of a load request and of the plan
// store. type 0 is a user, 1 a resource; the name is display text only and takes no part in identity.
class FWCALENDAR_EXPORT BkCalendarResource
{
public:
    BkCalendarResource(const QVariant& id = QVariant(), const QString& name = QString(), int type = 0);

    QVariant id;
    QString name;
    int type = 0;
};

// Map order: all users before all resources, then by id read as an integer (a non-number reads 0).
FWCALENDAR_EXPORT bool operator<(const BkCalendarResource& a, const BkCalendarResource& b);
// Sameness: equal type and QVariant-equal id. Deliberately not the relation that operator< induces:
// ids that differ as QVariant but read as the same integer are one map key and two keys here.
FWCALENDAR_EXPORT bool operator==(const BkCalendarResource& a, const BkCalendarResource& b);
FWCALENDAR_EXPORT bool operator!=(const BkCalendarResource& a, const BkCalendarResource& b);

// The colour and label of one kind of duty-schedule block. A default record (invalid colour, empty
// label) is what a plan gets whose info id has no record.
class FWCALENDAR_EXPORT BkCalendarPlanInfo
{
public:
    QVariant id;
    QColor color;
    QString label;
    QString description;
};

// One block of a duty schedule. The host creates and fills it (every field but rect) and hands it to
// the model, which owns it from then on.
class FWCALENDAR_EXPORT BkCalendarPlan
{
public:
    QDate date;
    QTime start;
    QTime end;
    QRectF rect;           // written by the column at each layout, read by painting
    bool bookable = false; // only bookable blocks open their time for booking
    int infoId = -1;       // -1: no info record, painted without lookup and without text
    BkCalendarResource resource;
};

Q_DECLARE_METATYPE(BkCalendarResource)
Q_DECLARE_METATYPE(BkCalendarPlanInfo)
Q_DECLARE_METATYPE(BkCalendarPlan*)

#endif // BKCALENDARRECORDS_H
