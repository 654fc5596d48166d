#ifndef BKCALENDARMODEL_H
#define BKCALENDARMODEL_H

#include "BkCalendarItem.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QSet>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>

class BkCalendarIdTable;
class BkCalendarItemFile;
class QTimer;

// The one store of bookings and plans behind a calendar form. The host fills it in answer to
// loadData and writes away what saveItems hands it; the views read it and follow its signals.
class FWCALENDAR_EXPORT BkCalendarModel : public QObject
{
    Q_OBJECT

public:
    explicit BkCalendarModel(QObject* parent = nullptr);
    ~BkCalendarModel() override;

    bool addItem(BkCalendarItem* item);
    void addItem(BkCalendarPlan* plan);
    void addItem(const BkCalendarPlanInfo& info);
    void removeItem(BkCalendarItem* item);
    void removeItem(BkCalendarPlan* plan);
    void updateItem(BkCalendarItem* item);

    QList<BkCalendarItem*> items(const QDate& date, const BkCalendarResource& resource);
    QList<BkCalendarPlan*> plans(const QDate& date, const BkCalendarResource& resource);
    BkCalendarPlanInfo planInfo(const QVariant& id) const;
    bool containsItem(const QVariant& id) const;
    BkCalendarItem* findId(const QVariant& id) const;
    bool isInvalid(BkCalendarItem* item) const;
    bool loaded(const BkCalendarResource& resource, const QDate& date);
    // True when a read of the day of the key sends no load request: the day lies in its loaded range.
    // Unlike loaded, asking changes nothing.
    bool covers(const BkCalendarResource& resource, const QDate& date) const;
    // True when a read of the day of the key lets a host in: it sends a load request, and a slot
    // hears it, here or behind the relay. Asking changes nothing.
    bool asksHost(const BkCalendarResource& resource, const QDate& date) const;
    // An object that passes loadData on as a signal of its own, as the form does: the connection that
    // passes it on, and the test of whether a slot hears it there.
    void setLoadRelay(const QMetaObject::Connection& connection, std::function<bool()> heard);
    void checkDate(const BkCalendarResource& resource, const QDate& date);
    void setToolTipsEnabled(bool enabled);

    void clear();
    void commit();
    void rollback();
    void itemInvalid(BkCalendarItem* item, bool addToList);
    void itemValid(BkCalendarItem* item);

    // Readers of the store.
    const QMap<QDate, QMap<BkCalendarResource, QList<BkCalendarPlan*>>>& planStore() const
    {
        return mPlanStore;
    }
    const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& userItems() const;
    const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& resourceItems() const;
    const QMap<BkCalendarResource, QPair<QDate, QDate>>& loadedRanges() const { return mLoadedRanges; }
    const QMap<QVariant, BkCalendarPlanInfo>& planInfos() const { return mPlanInfos; }
    const QHash<int, BkCalendarItem*>& idHash() const;
    // Every booking in the order of adding (a booking that moved was added again).
    QList<BkCalendarItem*> allItems() const;
    const QList<BkCalendarItem*>& invalidItems() const { return mInvalidItems; }
    const QTimer* commitTimer() const { return mCommitTimer; }
    bool toolTipsEnabled() const { return mToolTipsEnabled; }
    // A clear is under way: what is read now, while the host hears of it, goes when it is done.
    bool clearing() const { return mClearing > 0; }

public slots:
    void commitToDatabase();

signals:
    void itemAdded(BkCalendarItem* item);
    void itemChanged(BkCalendarItem* item);
    void itemRemoved(BkCalendarItem* item);
    void planAdded(BkCalendarPlan* plan);
    void planChanged(BkCalendarPlan* plan);
    void planRemoved(BkCalendarPlan* plan);
    void reset();
    void loadData(const QDate& from, const QDate& to, const BkCalendarResource& resource);
    void saveItems(const QList<BkCalendarItem*>& items);

private:
    static quint64 rangeKey(const BkCalendarResource& resource);
    void dropFromAllItems(BkCalendarItem* item);
    void dropFromInvalidItems(BkCalendarItem* item);
    void requestLoad(const QDate& from, const QDate& to, const BkCalendarResource& resource);

    QMap<QDate, QMap<BkCalendarResource, QList<BkCalendarPlan*>>> mPlanStore;
    // Bookings by date and user, and by date and resource.
    std::unique_ptr<BkCalendarItemFile> mUserItems;
    std::unique_ptr<BkCalendarItemFile> mResourceItems;
    QMap<BkCalendarResource, QPair<QDate, QDate>> mLoadedRanges;
    // The same ranges by type and id read as an integer, the map's own notion of one key: a hash
    // lookup in place of the map's comparisons, which read the ids anew at every step.
    QHash<quint64, QPair<QDate, QDate>> mRangeIndex;
    QMap<QVariant, BkCalendarPlanInfo> mPlanInfos;
    // Bookings that have an id, by id.toInt().
    std::unique_ptr<BkCalendarIdTable> mIdHash;
    // In the order of adding. A removed booking leaves a null hole, so that removing costs the same at
    // any size; the holes are closed up once they are as many as the bookings.
    QVector<BkCalendarItem*> mAllItems;
    int mAllItemsHoles = 0;
    QList<BkCalendarItem*> mInvalidItems;
    // The same bookings as mInvalidItems, for asking whether one is there without a walk.
    QSet<BkCalendarItem*> mInvalidSet;
    QMetaObject::Connection mLoadRelay;
    std::function<bool()> mLoadRelayHeard;
    QTimer* mCommitTimer = nullptr;
    bool mToolTipsEnabled = true;
    int mClearing = 0;
};

#endif // BKCALENDARMODEL_H
