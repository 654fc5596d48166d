#ifndef BKSTOREBOOKING_H
#define BKSTOREBOOKING_H

// A booking as the store tests file it: an id, a date, a user and a resource, 08:00 to 09:00.

#include "BkCalendarItem.h"

#include <QDate>
#include <QTime>
#include <QVariant>

namespace BkStoreBooking {

const QDate Day(2024, 3, 11);

inline BkCalendarItem* makeItem(const QVariant& id, const QVariant& userId, const QVariant& resourceId,
                                const QDate& date = Day)
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setDate(date);
    item->setUserId(userId);
    item->setResourceId(resourceId);
    item->setTime(QTime(8, 0), QTime(9, 0));
    return item;
}

} // namespace BkStoreBooking

#endif // BKSTOREBOOKING_H
