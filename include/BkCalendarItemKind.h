#ifndef BKCALENDARITEMKIND_H
#define BKCALENDARITEMKIND_H

// Item data key that tells the graphics items of the calendar scene apart, and its values.
enum BkCalendarItemKind
{
    ItemKindRole = 266,
    ItemKindColumn = 100,
    ItemKindItemWidget = 101,
    ItemKindInfoWidget = 102,
    ItemKindTimeScale = 103,
    ItemKindHeader = 104
};

#endif // BKCALENDARITEMKIND_H
