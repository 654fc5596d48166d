#ifndef BKCALENDARITEMFILE_H
#define BKCALENDARITEMFILE_H

#include <QDate>
#include <QHash>
#include <QList>
#include <QMap>
#include <QVariant>
#include <QVector>

class BkCalendarItem;

// One day of one key in the index: where the list stands in the map, and a shared copy of it, so that
// a lookup reaches the bookings without a visit to the map's node.
struct BkCalendarDayEntry
{
    QList<BkCalendarItem*>* list = nullptr;
    QList<BkCalendarItem*> copy;
};
Q_DECLARE_TYPEINFO(BkCalendarDayEntry, Q_MOVABLE_TYPE);

// The bookings filed by day and by one kind of key (users or resources), in the order of filing.
// The map is what the model's readers show. Beside it an index finds a day's list by an integer key
// without the map's QVariant comparisons: for each key, an entry for each day from its first to its
// last. The map's nodes stay in place until a day's map that a reader's caller copied is written to;
// that day's places are then taken anew.
class BkCalendarItemFile
{
public:
    using List = QList<BkCalendarItem*>;
    using Lists = QMap<QVariant, List>;
    using Days = QMap<QDate, Lists>;

    const Days& days() const { return mDays; }
    void add(const QDate& date, const QVariant& key, BkCalendarItem* item);
    // Only looks: a removal creates no entries. An emptied list stays as it is.
    void remove(const QDate& date, const QVariant& key, BkCalendarItem* item);
    List items(const QDate& date, const QVariant& key) const;
    void clear();

private:
    struct KeyIndex
    {
        qint64 first = 0; // julian day of days[0]
        QVector<BkCalendarDayEntry> days;
        int filedDays = 0; // days that have a list in the map
        // Days spread too thinly for an array: this key is looked up in the map.
        bool off = false;
    };

    static bool indexKey(const QVariant& key, int* number);
    bool lookUp(const QDate& date, const QVariant& key, const BkCalendarDayEntry** entry) const;
    bool lookUp(const QDate& date, const QVariant& key, BkCalendarDayEntry** entry);
    BkCalendarDayEntry* noteList(const QDate& date, const QVariant& mapKey, List* list, bool newList);
    void unshare(Lists& lists, const QDate& date);

    Days mDays;
    QHash<int, KeyIndex> mIndex;
    // The map compares int and long long keys as numbers, so while a day's map holds no other kind the
    // index finds what the map finds. Another kind switches the index off until the file is cleared.
    bool mIndexOff = false;
};

#endif // BKCALENDARITEMFILE_H
