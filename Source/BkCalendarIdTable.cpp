#include "BkCalendarIdTable.h"

namespace {

const int FirstBits = 4;

} // namespace

int BkCalendarIdTable::home(int key) const
{
    // Fibonacci hashing spreads the runs of consecutive ids that a database hands out.
    return int((quint32(key) * 2654435769u) >> (32 - mBits));
}

int BkCalendarIdTable::find(int key) const
{
    if (mItems.isEmpty())
        return -1;
    const int mask = mItems.size() - 1;
    for (int place = home(key);; place = (place + 1) & mask) {
        if (!mItems.at(place))
            return -1;
        if (mKeys.at(place) == key)
            return place;
    }
}

BkCalendarItem* BkCalendarIdTable::value(int key) const
{
    const int place = find(key);
    return place < 0 ? nullptr : mItems.at(place);
}

void BkCalendarIdTable::insert(int key, BkCalendarItem* item)
{
    if (!item)
        return;
    if (mHash)
        mHash->insert(key, item);
    const int found = find(key);
    if (found >= 0) {
        mItems[found] = item;
        return;
    }
    // At most four places in five taken, so that a search soon meets a free one.
    if ((mSize + 1) * 5 > mItems.size() * 4)
        grow();
    const int mask = mItems.size() - 1;
    int place = home(key);
    while (mItems.at(place))
        place = (place + 1) & mask;
    mKeys[place] = key;
    mItems[place] = item;
    ++mSize;
}

void BkCalendarIdTable::remove(int key)
{
    if (mHash)
        mHash->remove(key);
    int free = find(key);
    if (free < 0)
        return;
    mItems[free] = nullptr;
    --mSize;
    // Close the gap: a later entry of the run whose home lies at or before the gap moves into it, so
    // that every search still meets its key before a free place.
    const int mask = mItems.size() - 1;
    for (int place = (free + 1) & mask; mItems.at(place); place = (place + 1) & mask) {
        const int wanted = home(mKeys.at(place));
        const bool between =
            free <= place ? (wanted > free && wanted <= place) : (wanted > free || wanted <= place);
        if (between)
            continue;
        mKeys[free] = mKeys.at(place);
        mItems[free] = mItems.at(place);
        mItems[place] = nullptr;
        free = place;
    }
}

void BkCalendarIdTable::clear()
{
    mKeys = QVector<int>();
    mItems = QVector<BkCalendarItem*>();
    mSize = 0;
    mBits = 0;
    if (mHash)
        mHash->clear();
}

void BkCalendarIdTable::grow()
{
    const QVector<int> keys = mKeys;
    const QVector<BkCalendarItem*> items = mItems;
    mBits = mBits ? mBits + 1 : FirstBits;
    mKeys = QVector<int>(1 << mBits, 0);
    mItems = QVector<BkCalendarItem*>(1 << mBits, nullptr);
    const int mask = mItems.size() - 1;
    for (int i = 0; i < items.size(); ++i) {
        if (!items.at(i))
            continue;
        int place = home(keys.at(i));
        while (mItems.at(place))
            place = (place + 1) & mask;
        mKeys[place] = keys.at(i);
        mItems[place] = items.at(i);
    }
}

const QHash<int, BkCalendarItem*>& BkCalendarIdTable::hash() const
{
    if (!mHash) {
        mHash.reset(new QHash<int, BkCalendarItem*>);
        mHash->reserve(mSize);
        for (int i = 0; i < mItems.size(); ++i)
            if (mItems.at(i))
                mHash->insert(mKeys.at(i), mItems.at(i));
    }
    return *mHash;
}
