#include "BkBookingWatch.h"

BkBookingWatch::BkBookingWatch(const BkCalendarItem* item)
    : mItem(item)
{
    watches().append(this);
}

BkBookingWatch::~BkBookingWatch()
{
    // Watches end in the reverse order of their start, so the search from the end stops at once.
    QVarLengthArray<BkBookingWatch*, 4>& all = watches();
    for (int i = all.size() - 1; i >= 0; --i) {
        if (all.at(i) == this) {
            all.remove(i);
            break;
        }
    }
}

void BkBookingWatch::gone(const BkCalendarItem* item)
{
    for (BkBookingWatch* watch : watches()) {
        if (watch->mItem == item)
            watch->mItem = nullptr;
    }
}

QVarLengthArray<BkBookingWatch*, 4>& BkBookingWatch::watches()
{
    // Bookings are changed and deleted in the GUI thread only.
    static QVarLengthArray<BkBookingWatch*, 4> all;
    return all;
}
