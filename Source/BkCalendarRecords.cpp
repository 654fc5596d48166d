#include "BkCalendarRecords.h"

BkCalendarResource::BkCalendarResource(const QVariant& id, const QString& name, int type)
    : id(id)
    , name(name)
    , type(type)
{
}

bool operator<(const BkCalendarResource& a, const BkCalendarResource& b)
{
    if (a.type != b.type)
        return a.type < b.type;
    return a.id.toInt() < b.id.toInt();
}

bool operator==(const BkCalendarResource& a, const BkCalendarResource& b)
{
    return a.type == b.type && a.id == b.id;
}

bool operator!=(const BkCalendarResource& a, const BkCalendarResource& b)
{
    return !(a == b);
}
