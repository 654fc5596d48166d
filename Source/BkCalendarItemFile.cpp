#include "BkCalendarItemFile.h"

#include <limits>

namespace {

// A day's list for one key holds a handful of bookings. It starts with room for this many, which
// malloc gives in the same block as for one; past that it grows one place at a time up to
// ExactGrowth, taking no more room than it needs, and longer lists grow as QList does.
const int FirstRoom = 5;
const int ExactGrowth = 8;

// A key's array of days may span this many days for each day that has a list, and this many more.
const int SpreadFactor = 4;
const int SpreadSlack = 64;

} // namespace

bool BkCalendarItemFile::indexKey(const QVariant& key, int* number)
{
    if (key.isNull())
        return false;
    if (key.userType() == QMetaType::Int) {
        *number = key.toInt();
        return true;
    }
    if (key.userType() == QMetaType::LongLong) {
        const qlonglong value = key.toLongLong();
        if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
            return false;
        *number = int(value);
        return true;
    }
    return false;
}

// True when the index answers, with the day's entry or null for none; false when the map must be
// asked.
bool BkCalendarItemFile::lookUp(const QDate& date, const QVariant& key,
                                const BkCalendarDayEntry** entry) const
{
    int number = 0;
    if (mIndexOff || !date.isValid() || !indexKey(key, &number))
        return false;
    *entry = nullptr;
    // Every list of the map under a valid date is in the index: a key or a day that is not there has
    // no list.
    const auto index = mIndex.constFind(number);
    if (index == mIndex.constEnd())
        return true;
    if (index->off)
        return false;
    const qint64 offset = date.toJulianDay() - index->first;
    if (offset >= 0 && offset < index->days.size() && index->days.at(int(offset)).list)
        *entry = &index->days.at(int(offset));
    return true;
}

bool BkCalendarItemFile::lookUp(const QDate& date, const QVariant& key, BkCalendarDayEntry** entry)
{
    const BkCalendarDayEntry* found = nullptr;
    const bool answered = static_cast<const BkCalendarItemFile*>(this)->lookUp(date, key, &found);
    // The entry is this file's own.
    *entry = const_cast<BkCalendarDayEntry*>(found);
    return answered;
}

BkCalendarDayEntry* BkCalendarItemFile::noteList(const QDate& date, const QVariant& mapKey, List* list,
                                                 bool newList)
{
    if (mIndexOff || !date.isValid())
        return nullptr;
    int number = 0;
    if (!indexKey(mapKey, &number)) {
        if (newList) {
            mIndexOff = true;
            mIndex.clear();
        }
        return nullptr;
    }
    KeyIndex& index = mIndex[number];
    if (newList)
        ++index.filedDays;
    if (index.off)
        return nullptr;
    const qint64 day = date.toJulianDay();
    if (index.days.isEmpty())
        index.first = day;
    const qint64 first = qMin(index.first, day);
    const qint64 last = qMax(index.first + index.days.size() - 1, day);
    // An array of days pays for itself while most of its days have lists.
    if (last - first + 1 > SpreadFactor * qint64(index.filedDays) + SpreadSlack) {
        index.off = true;
        index.days = QVector<BkCalendarDayEntry>();
        return nullptr;
    }
    if (day < index.first) {
        index.days.insert(0, int(index.first - day), BkCalendarDayEntry());
        index.first = day;
    } else if (day >= index.first + index.days.size()) {
        index.days.resize(int(day - index.first + 1));
    }
    BkCalendarDayEntry& entry = index.days[int(day - index.first)];
    entry.list = list;
    entry.copy = *list;
    return &entry;
}

void BkCalendarItemFile::unshare(Lists& lists, const QDate& date)
{
    // A day's map shared with a copy gets new nodes when it is written to: take them first, and point
    // the index at them.
    if (lists.isDetached() || lists.isEmpty())
        return;
    lists.detach();
    for (auto list = lists.begin(); list != lists.end(); ++list)
        noteList(date, list.key(), &list.value(), false);
}

void BkCalendarItemFile::add(const QDate& date, const QVariant& key, BkCalendarItem* item)
{
    Lists& lists = mDays[date];
    unshare(lists, date);
    BkCalendarDayEntry* entry = nullptr;
    List* list = nullptr;
    if (lookUp(date, key, &entry) && entry) {
        list = entry->list;
    } else {
        auto found = lists.find(key);
        const bool newList = found == lists.end();
        if (newList)
            found = lists.insert(key, List());
        list = &found.value();
        entry = noteList(date, found.key(), list, newList);
    }
    // The index's copy is let go first, so that the list is not shared when it grows.
    if (entry)
        entry->copy = List();
    if (list->isEmpty())
        list->reserve(FirstRoom);
    else if (list->size() < ExactGrowth)
        list->reserve(list->size() + 1);
    list->append(item);
    if (entry)
        entry->copy = *list;
}

void BkCalendarItemFile::remove(const QDate& date, const QVariant& key, BkCalendarItem* item)
{
    auto lists = mDays.find(date);
    if (lists == mDays.end())
        return;
    unshare(*lists, date);
    BkCalendarDayEntry* entry = nullptr;
    List* list = nullptr;
    if (lookUp(date, key, &entry)) {
        if (!entry)
            return;
        list = entry->list;
        entry->copy = List();
    } else {
        auto found = lists->find(key);
        if (found == lists->end())
            return;
        list = &found.value();
        // A key of another kind may have found a list of a number key: its entry follows too.
        entry = noteList(date, found.key(), list, false);
        if (entry)
            entry->copy = List();
    }
    list->removeAll(item);
    if (entry)
        entry->copy = *list;
}

BkCalendarItemFile::List BkCalendarItemFile::items(const QDate& date, const QVariant& key) const
{
    const BkCalendarDayEntry* entry = nullptr;
    if (lookUp(date, key, &entry))
        return entry ? entry->copy : List();
    const auto day = mDays.constFind(date);
    if (day == mDays.constEnd())
        return {};
    return day->value(key);
}

void BkCalendarItemFile::clear()
{
    mDays.clear();
    mIndex.clear();
    mIndexOff = false;
}
