#ifndef DEMOBOOKINGROW_H
#define DEMOBOOKINGROW_H

#include <QColor>
#include <QDate>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QTime>
#include <QVariant>

class BkCalendarItem;

// One booking as the demo's database holds it: everything the calendar shows and the user can change.
// Undo keeps two of these, the row before a change and the row after it.
struct DemoBookingRow
{
    int id = 0;
    QDate date;
    QVariant userId;
    QVariant resourceId;
    QTime start;
    QTime end;
    QString title;
    QString text;
    int type = 0;
    int flags = 0;
    QVariant statusId;
    int locked = 0;
    QColor leftColor;
    QColor rightColor;
    QColor topColor;
    QColor bottomColor;

    bool isValid() const { return id > 0; }
    // The box colours of a booking that has none of its own.
    static QColor defaultTopColor() { return QColor(214, 228, 250); }
    static QColor defaultBottomColor() { return QColor(150, 182, 232); }

    static DemoBookingRow fromItem(const BkCalendarItem* item);
    // A new booking, not yet in a model, with the values of this row (its saved values too).
    BkCalendarItem* makeItem() const;
    // Writes the row's values into a booking that is in a model; keys move it between containers.
    void applyTo(BkCalendarItem* item) const;
    bool operator==(const DemoBookingRow& other) const;
    bool operator!=(const DemoBookingRow& other) const { return !(*this == other); }
};

Q_DECLARE_METATYPE(DemoBookingRow)

#endif // DEMOBOOKINGROW_H
