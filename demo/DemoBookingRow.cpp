#include "DemoBookingRow.h"

#include <BkCalendarItem.h>

DemoBookingRow DemoBookingRow::fromItem(const BkCalendarItem* item)
{
    DemoBookingRow row;
    row.id = item->id.toInt();
    row.date = item->date();
    row.userId = item->userId();
    row.resourceId = item->resourceId();
    row.start = item->start();
    row.end = item->end();
    row.title = item->title();
    row.text = item->text();
    row.type = int(item->type());
    row.flags = item->flags();
    row.statusId = item->statusId;
    row.locked = item->locked;
    row.leftColor = item->leftColor;
    row.rightColor = item->rightColor;
    row.topColor = item->topColor;
    row.bottomColor = item->bottomColor;
    return row;
}

BkCalendarItem* DemoBookingRow::makeItem() const
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setType(BkCalendarItem::ItemType(type));
    item->setItemFlags(flags);
    item->setTitle(title);
    item->setText(text);
    item->setStatusId(statusId);
    item->locked = locked;
    item->leftColor = leftColor;
    item->rightColor = rightColor;
    item->topColor = topColor;
    item->bottomColor = bottomColor;
    // Before the booking has a model these setters also set the values a rollback returns to.
    item->setDate(date);
    item->setUserId(userId);
    item->setResourceId(resourceId);
    item->setTime(start, end);
    return item;
}

void DemoBookingRow::applyTo(BkCalendarItem* item) const
{
    // Written as the database has it already: nothing goes on the unsaved list. The keys move the
    // booking between the model's containers with their signals, so the columns follow.
    const bool blocked = item->isBlocked();
    item->setBlocked(true);
    item->setType(BkCalendarItem::ItemType(type));
    item->setItemFlags(flags);
    item->setTitle(title);
    item->setText(text);
    item->setStatusId(statusId);
    item->setLocked(locked);
    item->leftColor = leftColor;
    item->rightColor = rightColor;
    item->topColor = topColor;
    item->bottomColor = bottomColor;
    item->setDate(date, false);
    item->setUserId(userId, false);
    item->setResourceId(resourceId, false);
    item->setTime(start, end);
    item->setBlocked(blocked);
    item->invalidate(false);
}

bool DemoBookingRow::operator==(const DemoBookingRow& o) const
{
    return id == o.id && date == o.date && userId == o.userId && resourceId == o.resourceId &&
           start == o.start && end == o.end && title == o.title && text == o.text && type == o.type &&
           flags == o.flags && statusId == o.statusId && locked == o.locked && leftColor == o.leftColor &&
           rightColor == o.rightColor && topColor == o.topColor && bottomColor == o.bottomColor;
}
