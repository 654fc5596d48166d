#ifndef BKBOOKINGWATCH_H
#define BKBOOKINGWATCH_H

#include <QVarLengthArray>

class BkCalendarItem;

// A booking followed through a step that lets the host in: a signal's answer may delete the booking,
// by clearing its model or after taking it out. A booking's deletion strikes it from every watch, so
// no address is followed after it is freed.
class BkBookingWatch
{
public:
    explicit BkBookingWatch(const BkCalendarItem* item);
    ~BkBookingWatch();
    BkBookingWatch(const BkBookingWatch&) = delete;
    BkBookingWatch& operator=(const BkBookingWatch&) = delete;

    bool lives() const { return mItem != nullptr; }

    // Called by the booking's destructor.
    static void gone(const BkCalendarItem* item);

private:
    static QVarLengthArray<BkBookingWatch*, 4>& watches();

    const BkCalendarItem* mItem;
};

#endif
