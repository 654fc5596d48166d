#ifndef BKCALENDARIDTABLE_H
#define BKCALENDARIDTABLE_H

#include <QHash>
#include <QVector>

#include <memory>

class BkCalendarItem;

// The bookings that have an id, by id read as an integer. An open table of twelve bytes a place takes
// less than half of a QHash's room; the QHash that the model's reader shows is built when it is first
// asked for and kept in step from then on.
class BkCalendarIdTable
{
public:
    BkCalendarItem* value(int key) const;
    bool contains(int key) const { return value(key) != nullptr; }
    // Replaces the booking under this key, if there is one.
    void insert(int key, BkCalendarItem* item);
    void remove(int key);
    void clear();
    int size() const { return mSize; }
    template <typename Function> void forEach(Function function) const
    {
        for (BkCalendarItem* item : mItems)
            if (item)
                function(item);
    }
    const QHash<int, BkCalendarItem*>& hash() const;

private:
    int home(int key) const;
    int find(int key) const;
    void grow();

    // A place is free when its booking is null. The keys and bookings lie apart: no padding.
    QVector<int> mKeys;
    QVector<BkCalendarItem*> mItems;
    int mSize = 0;
    int mBits = 0;
    mutable std::unique_ptr<QHash<int, BkCalendarItem*>> mHash;
};

#endif // BKCALENDARIDTABLE_H
