#include "BkCalendarModel.h"

#include "BkBookingWatch.h"
#include "BkCalendarHostVisit.h"
#include "BkCalendarIdTable.h"
#include "BkCalendarItemFile.h"

#include <QMetaMethod>
#include <QSet>
#include <QTimer>

#include <limits>

namespace {

// Bookings, plans and keys travel through queued connections and QVariant in the views and the host.
void registerCalendarMetaTypes()
{
    qRegisterMetaType<BkCalendarResource>("BkCalendarResource");
    qRegisterMetaType<BkCalendarPlanInfo>("BkCalendarPlanInfo");
    qRegisterMetaType<BkCalendarItem*>("BkCalendarItem*");
    qRegisterMetaType<QList<BkCalendarItem*>>("QList<BkCalendarItem*>");
    qRegisterMetaType<BkCalendarPlan*>("BkCalendarPlan*");
}

// Whether a loaded range holds the date; compared on the day numbers, as checkDate widens it.
bool holds(const QPair<QDate, QDate>& range, const QDate& date)
{
    return date.toJulianDay() >= range.first.toJulianDay() &&
           date.toJulianDay() <= range.second.toJulianDay();
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(registerCalendarMetaTypes)

BkCalendarModel::BkCalendarModel(QObject* parent)
    : QObject(parent)
    , mUserItems(new BkCalendarItemFile)
    , mResourceItems(new BkCalendarItemFile)
    , mIdHash(new BkCalendarIdTable)
    , mCommitTimer(new QTimer(this))
{
    registerCalendarMetaTypes();
    // One save a second after the last request collects a run of key presses or a drag into one batch.
    mCommitTimer->setSingleShot(true);
    mCommitTimer->setInterval(1000);
    connect(mCommitTimer, &QTimer::timeout, this, &BkCalendarModel::commitToDatabase);
}

BkCalendarModel::~BkCalendarModel()
{
    // No last save: whatever is unsaved now is lost, as the host has been told.
    delete mCommitTimer;
    mCommitTimer = nullptr;
    clear();
}

bool BkCalendarModel::addItem(BkCalendarItem* item)
{
    // A null from the host is refused; filed, it would crash every reader of its day.
    if (!item)
        return false;
    item->setToolTipsEnabled(mToolTipsEnabled);
    if (!item->id.isNull() && mIdHash->contains(item->id.toInt()))
        return false;
    const QVariant resourceId = item->resourceId();
    if (!resourceId.isNull())
        mResourceItems->add(item->date(), resourceId, item);
    const QVariant userId = item->userId();
    if (!userId.isNull())
        mUserItems->add(item->date(), userId, item);
    if (!item->id.isNull())
        mIdHash->insert(item->id.toInt(), item);
    item->mStorePosition = mAllItems.size();
    // At its top the count sticks, and taking the booking out walks the list.
    if (item->mStoreCount < std::numeric_limits<quint16>::max())
        ++item->mStoreCount;
    mAllItems.append(item);
    item->model = this;
    emit itemAdded(item);
    return true;
}

void BkCalendarModel::addItem(BkCalendarPlan* plan)
{
    if (!plan)
        return;
    mPlanStore[plan->date][plan->resource].append(plan);
    emit planAdded(plan);
}

void BkCalendarModel::addItem(const BkCalendarPlanInfo& info)
{
    mPlanInfos[info.id] = info;
}

void BkCalendarModel::removeItem(BkCalendarItem* item)
{
    mUserItems->remove(item->date(), item->userId(), item);
    mResourceItems->remove(item->date(), item->resourceId(), item);
    dropFromInvalidItems(item);
    dropFromAllItems(item);
    item->model = nullptr;
    if (!item->id.isNull())
        mIdHash->remove(item->id.toInt());
    emit itemRemoved(item);
}

void BkCalendarModel::dropFromAllItems(BkCalendarItem* item)
{
    if (item->mStoreCount == 1 && item->mStorePosition >= 0 && item->mStorePosition < mAllItems.size() &&
        mAllItems.at(item->mStorePosition) == item) {
        mAllItems[item->mStorePosition] = nullptr;
        ++mAllItemsHoles;
        item->mStoreCount = 0;
        item->mStorePosition = -1;
    } else {
        // Added more than once, or held by another model as well: every place here goes, as it
        // always has, found by a walk.
        for (int i = 0; i < mAllItems.size(); ++i)
            if (mAllItems.at(i) == item) {
                mAllItems[i] = nullptr;
                ++mAllItemsHoles;
                if (item->mStoreCount > 0 && item->mStoreCount < std::numeric_limits<quint16>::max())
                    --item->mStoreCount;
            }
    }
    if (mAllItemsHoles > 64 && mAllItemsHoles * 2 > mAllItems.size()) {
        int kept = 0;
        for (int i = 0; i < mAllItems.size(); ++i) {
            BkCalendarItem* entry = mAllItems.at(i);
            if (!entry)
                continue;
            entry->mStorePosition = kept;
            mAllItems[kept++] = entry;
        }
        mAllItems.resize(kept);
        mAllItemsHoles = 0;
    }
}

void BkCalendarModel::dropFromInvalidItems(BkCalendarItem* item)
{
    // The walk along the unsaved list only for a booking that is on it.
    if (mInvalidSet.remove(item))
        mInvalidItems.removeAll(item);
}

QList<BkCalendarItem*> BkCalendarModel::allItems() const
{
    QList<BkCalendarItem*> items;
    items.reserve(mAllItems.size() - mAllItemsHoles);
    for (BkCalendarItem* item : mAllItems)
        if (item)
            items.append(item);
    return items;
}

void BkCalendarModel::removeItem(BkCalendarPlan* plan)
{
    auto plans = mPlanStore.find(plan->date);
    if (plans == mPlanStore.end())
        return;
    auto list = plans->find(plan->resource);
    if (list == plans->end())
        return;
    list->removeAll(plan);
    emit planRemoved(plan);
}

void BkCalendarModel::updateItem(BkCalendarItem* item)
{
    if (item)
        item->updated();
}

QList<BkCalendarItem*> BkCalendarModel::items(const QDate& date, const BkCalendarResource& resource)
{
    if (resource.id.isNull())
        return {};
    checkDate(resource, date);
    return (resource.type == 0 ? mUserItems : mResourceItems)->items(date, resource.id);
}

const QHash<int, BkCalendarItem*>& BkCalendarModel::idHash() const
{
    return mIdHash->hash();
}

const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& BkCalendarModel::userItems() const
{
    return mUserItems->days();
}

const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& BkCalendarModel::resourceItems() const
{
    return mResourceItems->days();
}

QList<BkCalendarPlan*> BkCalendarModel::plans(const QDate& date, const BkCalendarResource& resource)
{
    checkDate(resource, date);
    const auto day = mPlanStore.constFind(date);
    if (day == mPlanStore.constEnd())
        return {};
    return day->value(resource);
}

BkCalendarPlanInfo BkCalendarModel::planInfo(const QVariant& id) const
{
    return mPlanInfos.value(id);
}

bool BkCalendarModel::containsItem(const QVariant& id) const
{
    return mIdHash->contains(id.toInt());
}

BkCalendarItem* BkCalendarModel::findId(const QVariant& id) const
{
    if (id.isNull())
        return nullptr;
    return mIdHash->value(id.toInt());
}

bool BkCalendarModel::isInvalid(BkCalendarItem* item) const
{
    return mInvalidSet.contains(item);
}

quint64 BkCalendarModel::rangeKey(const BkCalendarResource& resource)
{
    return (quint64(quint32(resource.type)) << 32) | quint32(resource.id.toInt());
}

bool BkCalendarModel::loaded(const BkCalendarResource& resource, const QDate& date)
{
    // Asking creates the key with an empty range; checkDate then widens it from there.
    const QPair<QDate, QDate> range = mLoadedRanges[resource];
    mRangeIndex.insert(rangeKey(resource), range);
    return holds(range, date);
}

bool BkCalendarModel::covers(const BkCalendarResource& resource, const QDate& date) const
{
    const auto range = mRangeIndex.constFind(rangeKey(resource));
    return range != mRangeIndex.constEnd() && holds(*range, date);
}

bool BkCalendarModel::asksHost(const BkCalendarResource& resource, const QDate& date) const
{
    if (covers(resource, date) || !isSignalConnected(QMetaMethod::fromSignal(&BkCalendarModel::loadData)))
        return false;
    // The relay is a connection like any other; it counts only by what hears it in turn.
    if (!mLoadRelay || !mLoadRelayHeard)
        return true;
    return receivers(SIGNAL(loadData(QDate, QDate, BkCalendarResource))) > 1 || mLoadRelayHeard();
}

void BkCalendarModel::setLoadRelay(const QMetaObject::Connection& connection, std::function<bool()> heard)
{
    mLoadRelay = connection;
    mLoadRelayHeard = std::move(heard);
}

void BkCalendarModel::checkDate(const BkCalendarResource& resource, const QDate& date)
{
    // One contiguous range per key, widened by 8 days round the date asked for; the range is stored
    // before the request goes out, so a nested read from a slot of loadData finds it updated.
    const quint64 key = rangeKey(resource);
    const auto range = mRangeIndex.constFind(key);
    if (range == mRangeIndex.constEnd()) {
        const QDate first = date.addDays(-8);
        const QDate last = date.addDays(8);
        mLoadedRanges.insert(resource, qMakePair(first, last));
        mRangeIndex.insert(key, qMakePair(first, last));
        requestLoad(first, last, resource);
        return;
    }
    const QDate oldFirst = range->first;
    const QDate oldLast = range->second;
    if (date.toJulianDay() > oldLast.toJulianDay()) {
        const QDate last = date.addDays(8);
        mLoadedRanges.find(resource)->second = last;
        mRangeIndex[key].second = last;
        requestLoad(oldLast.addDays(1), last, resource);
    } else if (date.toJulianDay() < oldFirst.toJulianDay()) {
        const QDate first = date.addDays(-8);
        mLoadedRanges.find(resource)->first = first;
        mRangeIndex[key].first = first;
        requestLoad(first, oldFirst.addDays(-1), resource);
    }
}

void BkCalendarModel::requestLoad(const QDate& from, const QDate& to, const BkCalendarResource& resource)
{
    // The read that asks is mostly a column's, in the middle of its update, and the host's answer may
    // rebuild the view: what it takes away meanwhile is retired rather than deleted.
    const BkCalendarHostVisit visit;
    emit loadData(from, to, resource);
}

void BkCalendarModel::setToolTipsEnabled(bool enabled)
{
    mIdHash->forEach([enabled](BkCalendarItem* item) { item->setToolTipsEnabled(enabled); });
    mToolTipsEnabled = enabled;
}

void BkCalendarModel::clear()
{
    // The host's answer to the notice may read the store, and finds the plans still there; those who
    // read them know from clearing() not to keep them.
    ++mClearing;
    emit reset();
    mIdHash->clear();
    // An item without an id, or a plan, that was added twice stands twice in the store: it is
    // deleted at its first place from the end, and passed over at the second.
    QSet<BkCalendarItem*> deletedItems;
    while (!mAllItems.isEmpty()) {
        BkCalendarItem* item = mAllItems.takeLast();
        if (item && !deletedItems.contains(item)) {
            deletedItems.insert(item);
            delete item;
        }
    }
    QSet<BkCalendarPlan*> deletedPlans;
    for (auto day = mPlanStore.begin(); day != mPlanStore.end(); ++day) {
        for (auto list = day->begin(); list != day->end(); ++list) {
            while (!list->isEmpty()) {
                BkCalendarPlan* plan = list->takeLast();
                if (!deletedPlans.contains(plan)) {
                    deletedPlans.insert(plan);
                    delete plan;
                }
            }
        }
    }
    mPlanStore.clear();
    mUserItems->clear();
    mResourceItems->clear();
    mAllItems.clear();
    mAllItemsHoles = 0;
    mLoadedRanges.clear();
    mRangeIndex.clear();
    --mClearing;
}

void BkCalendarModel::commit()
{
    // The destructor lets the timer go before it clears the store: a request made meanwhile, by a
    // slot of the last reset, finds no timer and is dropped, as what is unsaved then is lost anyway.
    if (!mCommitTimer)
        return;
    // A running timer starts over, so the second counts from the last request.
    mCommitTimer->start();
}

void BkCalendarModel::commitToDatabase()
{
    if (mInvalidItems.isEmpty())
        return;
    // Emptied before the signal, so a change made by a slot of saveItems counts as a new one.
    const QList<BkCalendarItem*> batch = mInvalidItems;
    mInvalidItems.clear();
    mInvalidSet.clear();
    emit saveItems(batch);
}

void BkCalendarModel::rollback()
{
    if (mInvalidItems.isEmpty())
        return;
    // Walks by index over a list that shrinks under it: each rolled-back item leaves the list, so the
    // next one moves to the index and is only told of a change, and the walk skips it. Hosts rely on
    // this, so it stays.
    int index = 0;
    do {
        BkCalendarItem* item = mInvalidItems.at(index);
        const BkBookingWatch watch(item);
        item->rollback();
        // When the list has run out below the index, the item just rolled back is the one told, unless
        // an answer to its rollback deleted it.
        if (index < mInvalidItems.size())
            emit itemChanged(mInvalidItems.at(index));
        else if (watch.lives())
            emit itemChanged(item);
        ++index;
    } while (index < mInvalidItems.size());
    mInvalidItems.clear();
    mInvalidSet.clear();
}

void BkCalendarModel::itemInvalid(BkCalendarItem* item, bool addToList)
{
    // No booking, no change: a null on the unsaved list would be handed on by the next save.
    if (!item)
        return;
    if (addToList && !isInvalid(item)) {
        mInvalidItems.append(item);
        mInvalidSet.insert(item);
    }
    // A host that wrote the id after adding the booking has it found by id from now on.
    if (!item->id.isNull())
        mIdHash->insert(item->id.toInt(), item);
    emit itemChanged(item);
}

void BkCalendarModel::itemValid(BkCalendarItem* item)
{
    dropFromInvalidItems(item);
    emit itemChanged(item);
}
