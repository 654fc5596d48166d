// The store and its bookings against a plain store that follows the same rules with nothing but
// QMap, QHash and QList: random adds, removals, moves, saves, rollbacks, reads and clears, and a host
// that answers the signals by reading, adding and changing bookings. At every step both give the same
// signals in the same order, the same unsaved list and list of all bookings; every few steps the same
// rollback values, lists by day and key, ids and loaded ranges. The keys vary by row: a few ints; ints
// and long longs; every kind a host may hand in; many ints over many days; and every kind, negative
// ones too, over days far apart.

#include "BkCalendarItem.h"
#include "BkCalendarModel.h"

#include <QRandomGenerator>
#include <QtTest>

#include <functional>

namespace {

QString dump(const QVariant& v)
{
    return QStringLiteral("%1:%2:%3")
        .arg(v.typeName() ? v.typeName() : "-")
        .arg(v.isNull())
        .arg(v.toString());
}

struct PlainStore;

struct PlainBooking
{
    int index = 0;
    QVariant id;
    QDate date;
    QVariant userId;
    QVariant resourceId;
    QTime start, end, savedStart, savedEnd;
    QVariant savedUserId, savedResourceId;
    QDate savedDate;
    bool blocked = false;
    PlainStore* model = nullptr;
    QString title;

    void notify();
    void setTitle(const QString& t)
    {
        title = t;
        notify();
    }
    void setStart(const QTime& t)
    {
        start = t;
        notify();
    }
    void setEnd(const QTime& t)
    {
        end = t;
        notify();
    }
    void setTime(const QTime& s, const QTime& e);
    void setDate(const QDate& d, bool silent);
    void setUserId(const QVariant& v, bool silent);
    void setResourceId(const QVariant& v, bool silent);
    void setKeys(const QDate& d, const BkCalendarResource& r)
    {
        setDate(d, true);
        if (r.type != 0)
            setResourceId(r.id, true);
        else
            setUserId(r.id, true);
    }
    void setKeys(const QDate& d, const QVariant& u, const QVariant& r);
    void invalidate(bool add);
    void rollback();
};

struct PlainPlan
{
    int index;
    QDate date;
    BkCalendarResource resource;
};

struct PlainStore
{
    QMap<QDate, QMap<BkCalendarResource, QList<PlainPlan*>>> planStore;
    QMap<QDate, QMap<QVariant, QList<PlainBooking*>>> userItems, resourceItems;
    QMap<BkCalendarResource, QPair<QDate, QDate>> ranges;
    QHash<int, PlainBooking*> idHash;
    QList<PlainBooking*> all;
    QList<PlainBooking*> invalid;
    bool signalsBlocked = false;
    QStringList log;
    std::function<void(PlainBooking*)> onAdded, onRemoved, onChanged;
    std::function<void(const QList<PlainBooking*>&)> onSave;
    std::function<void(const QDate&, const QDate&, const BkCalendarResource&)> onLoad;

    void tell(const QString& s)
    {
        if (!signalsBlocked)
            log << s;
    }
    bool isInvalid(PlainBooking* i) const { return invalid.contains(i); }
    bool addItem(PlainBooking* it)
    {
        if (!it->id.isNull() && idHash.contains(it->id.toInt()))
            return false;
        if (!it->resourceId.isNull())
            resourceItems[it->date][it->resourceId].append(it);
        if (!it->userId.isNull())
            userItems[it->date][it->userId].append(it);
        if (!it->id.isNull())
            idHash[it->id.toInt()] = it;
        all.append(it);
        it->model = this;
        tell(QStringLiteral("itemAdded %1").arg(it->index));
        if (!signalsBlocked && onAdded)
            onAdded(it);
        return true;
    }
    void removeItem(PlainBooking* it)
    {
        if (userItems.contains(it->date) && userItems[it->date].contains(it->userId))
            userItems[it->date][it->userId].removeAll(it);
        if (resourceItems.contains(it->date) && resourceItems[it->date].contains(it->resourceId))
            resourceItems[it->date][it->resourceId].removeAll(it);
        invalid.removeAll(it);
        all.removeAll(it);
        it->model = nullptr;
        if (!it->id.isNull())
            idHash.remove(it->id.toInt());
        tell(QStringLiteral("itemRemoved %1").arg(it->index));
        if (!signalsBlocked && onRemoved)
            onRemoved(it);
    }
    void addPlan(PlainPlan* p)
    {
        planStore[p->date][p->resource].append(p);
        tell(QStringLiteral("planAdded %1").arg(p->index));
    }
    void removePlan(PlainPlan* p)
    {
        if (planStore.contains(p->date) && planStore[p->date].contains(p->resource)) {
            planStore[p->date][p->resource].removeAll(p);
            tell(QStringLiteral("planRemoved %1").arg(p->index));
        }
    }
    void checkDate(const BkCalendarResource& r, const QDate& d)
    {
        auto res = [&](const QDate& a, const QDate& b) {
            tell(QStringLiteral("loadData %1 %2 %3 %4")
                     .arg(a.toString(Qt::ISODate), b.toString(Qt::ISODate), dump(r.id))
                     .arg(r.type));
            if (!signalsBlocked && onLoad)
                onLoad(a, b, r);
        };
        if (!ranges.contains(r)) {
            ranges.insert(r, qMakePair(d.addDays(-8), d.addDays(8)));
            res(d.addDays(-8), d.addDays(8));
            return;
        }
        auto& range = ranges[r];
        const QDate oldFirst = range.first, oldLast = range.second;
        if (d.toJulianDay() >= oldFirst.toJulianDay() && d.toJulianDay() <= oldLast.toJulianDay())
            return;
        if (d.toJulianDay() > oldLast.toJulianDay()) {
            range.second = d.addDays(8);
            res(oldLast.addDays(1), d.addDays(8));
        } else {
            range.first = d.addDays(-8);
            res(d.addDays(-8), oldFirst.addDays(-1));
        }
    }
    // Whether a read of the day sends no load request.
    bool covers(const BkCalendarResource& r, const QDate& d) const
    {
        if (!ranges.contains(r))
            return false;
        const auto range = ranges.value(r);
        return d.toJulianDay() >= range.first.toJulianDay() && d.toJulianDay() <= range.second.toJulianDay();
    }
    bool loaded(const BkCalendarResource& r, const QDate& d)
    {
        auto range = ranges[r];
        return d.toJulianDay() >= range.first.toJulianDay() && d.toJulianDay() <= range.second.toJulianDay();
    }
    QList<PlainBooking*> items(const QDate& d, const BkCalendarResource& r)
    {
        if (r.id.isNull())
            return {};
        checkDate(r, d);
        auto& map = r.type == 0 ? userItems : resourceItems;
        if (map.contains(d) && map[d].contains(r.id))
            return map[d][r.id];
        return {};
    }
    QList<PlainPlan*> plans(const QDate& d, const BkCalendarResource& r)
    {
        checkDate(r, d);
        if (planStore.contains(d) && planStore[d].contains(r))
            return planStore[d][r];
        return {};
    }
    PlainBooking* findId(const QVariant& id) { return id.isNull() ? nullptr : idHash.value(id.toInt()); }
    // The caller deletes the bookings and plans.
    void clear()
    {
        tell("reset");
        idHash.clear();
        planStore.clear();
        userItems.clear();
        resourceItems.clear();
        all.clear();
        ranges.clear();
    }
    void commitToDatabase()
    {
        if (invalid.isEmpty())
            return;
        QList<PlainBooking*> copy = invalid;
        invalid.clear();
        QStringList s;
        for (PlainBooking* i : copy)
            s << QString::number(i->index);
        tell("saveItems " + s.join(','));
        if (!signalsBlocked && onSave)
            onSave(copy);
    }
    void changed(PlainBooking* it)
    {
        tell(QStringLiteral("itemChanged %1").arg(it->index));
        if (!signalsBlocked && onChanged)
            onChanged(it);
    }
    void itemInvalid(PlainBooking* it, bool add)
    {
        if (add && !invalid.contains(it))
            invalid.append(it);
        if (!it->id.isNull())
            idHash[it->id.toInt()] = it;
        changed(it);
    }
    void itemValid(PlainBooking* it)
    {
        invalid.removeAll(it);
        changed(it);
    }
    void rollback()
    {
        if (invalid.isEmpty())
            return;
        int index = 0;
        do {
            PlainBooking* it = invalid.at(index);
            it->rollback();
            // Past the end of a list that has just lost its last element, the element read is the one
            // just rolled back.
            changed(index < invalid.size() ? invalid.at(index) : it);
            ++index;
        } while (index < invalid.size());
        invalid.clear();
    }
};

void PlainBooking::notify()
{
    if (model && !blocked)
        model->itemInvalid(this, true);
}

void PlainBooking::invalidate(bool add)
{
    if (model && !blocked)
        model->itemInvalid(this, add);
}

void PlainBooking::setTime(const QTime& s, const QTime& e)
{
    if (!model || !model->isInvalid(this)) {
        savedStart = s;
        savedEnd = e;
    }
    start = s;
    end = e;
    notify();
}

template <typename Write> void moveKey(PlainBooking* it, bool silent, Write write)
{
    PlainStore* m = it->model;
    if (silent)
        m->signalsBlocked = true;
    m->removeItem(it);
    write();
    m->addItem(it);
    if (silent)
        m->signalsBlocked = false;
}

void PlainBooking::setDate(const QDate& d, bool silent)
{
    if (d == date)
        return;
    if (!model) {
        savedDate = d;
        date = d;
    } else {
        if (!model->isInvalid(this))
            savedDate = d;
        moveKey(this, silent, [&] { date = d; });
    }
    notify();
}

void PlainBooking::setUserId(const QVariant& v, bool silent)
{
    if (v == userId)
        return;
    if (!model) {
        savedUserId = v;
        userId = v;
    } else {
        if (!model->isInvalid(this))
            savedUserId = v;
        moveKey(this, silent, [&] { userId = v; });
    }
    notify();
}

void PlainBooking::setResourceId(const QVariant& v, bool silent)
{
    if (v == resourceId)
        return;
    if (!model) {
        savedResourceId = v;
        resourceId = v;
    } else {
        if (!model->isInvalid(this))
            savedResourceId = v;
        moveKey(this, silent, [&] { resourceId = v; });
    }
    notify();
}

void PlainBooking::setKeys(const QDate& d, const QVariant& u, const QVariant& r)
{
    if (d == date && r == resourceId && u == userId)
        return;
    if (model && !model->isInvalid(this)) {
        savedDate = d;
        savedResourceId = r;
        savedUserId = u;
    }
    if (model) {
        moveKey(this, true, [&] {
            date = d;
            userId = u;
            resourceId = r;
        });
    } else {
        date = d;
        userId = u;
        resourceId = r;
    }
    notify();
}

void PlainBooking::rollback()
{
    if (!model)
        return;
    start = savedStart;
    end = savedEnd;
    if (date != savedDate)
        setDate(savedDate, false);
    if (resourceId != savedResourceId)
        setResourceId(savedResourceId, false);
    if (userId != savedUserId)
        setUserId(savedUserId, false);
    model->itemValid(this);
}

} // namespace

class TestBkCalendarStoreRules : public QObject
{
    Q_OBJECT

private slots:
    void shouldFollowThePlainRulesThroughRandomUse_data();
    void shouldFollowThePlainRulesThroughRandomUse();
};

void TestBkCalendarStoreRules::shouldFollowThePlainRulesThroughRandomUse_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("variety");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed << int(seed % 5);
}

void TestBkCalendarStoreRules::shouldFollowThePlainRulesThroughRandomUse()
{
    QFETCH(quint32, seed);
    QFETCH(int, variety);
    QRandomGenerator random(seed);
    const QDate day(2024, 3, 11);
    BkCalendarModel model;
    PlainStore plain;
    QStringList log;
    QList<BkCalendarItem*> realItems;
    QList<PlainBooking*> plainItems;
    QList<BkCalendarPlan*> realPlans;
    QList<PlainPlan*> plainPlans;
    int nextIndex = 0;
    int nextPlan = 0;
    QHash<BkCalendarItem*, int> indexOf;
    QHash<BkCalendarPlan*, int> planIndexOf;
    // Bookings taken out of the store live on to the end: the id table may still point at them.
    QList<BkCalendarItem*> goneReal;
    QList<PlainBooking*> gonePlain;

    // The slots below use the locals: they must go before the model's last signal.
    struct Guard
    {
        BkCalendarModel& m;
        ~Guard() { m.disconnect(); }
    } guard{model};
    auto idx = [&](BkCalendarItem* i) { return indexOf.value(i, -1); };
    // The host's answers, the same on both sides, decided by counters of the signals.
    int realAdded = 0, plainAdded = 0, realRemoved = 0, plainRemoved = 0, realLoads = 0, plainLoads = 0;
    int nextRealIndex = 100000, nextPlainIndex = 100000;
    // Copies that a host holds of the store's maps and lists while the store changes.
    QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>> heldUser, heldRes;
    QList<BkCalendarItem*> heldList;
    connect(&model, &BkCalendarModel::itemAdded, [&](BkCalendarItem* i) {
        log << QStringLiteral("itemAdded %1").arg(idx(i));
        if (++realAdded % 4 == 0)
            heldList = model.items(i->date(), BkCalendarResource(i->userId(), QString(), 0));
    });
    plain.onAdded = [&](PlainBooking* i) {
        if (++plainAdded % 4 == 0)
            plain.items(i->date, BkCalendarResource(i->userId, QString(), 0));
    };
    int realChanged = 0, plainChanged = 0, realDepth = 0, plainDepth = 0, realSaves = 0, plainSaves = 0;
    connect(&model, &BkCalendarModel::itemChanged, [&](BkCalendarItem* i) {
        log << QStringLiteral("itemChanged %1").arg(idx(i));
        if (++realChanged % 7 != 0 || realDepth > 0 || realItems.isEmpty())
            return;
        ++realDepth;
        // Another booking changes in answer, now and then blocked.
        BkCalendarItem* other = realItems.at(realChanged % realItems.size());
        if (realChanged % 3 == 0) {
            const bool was = other->isBlocked();
            other->setBlocked(true);
            other->setTime(QTime(7, 0), QTime(7, 30));
            other->setBlocked(was);
        } else if (realChanged % 3 == 1) {
            other->setTitle(QStringLiteral("y"));
        } else {
            other->setDate(other->date().addDays(1), realChanged % 2);
        }
        --realDepth;
    });
    plain.onChanged = [&](PlainBooking*) {
        if (++plainChanged % 7 != 0 || plainDepth > 0 || plainItems.isEmpty())
            return;
        ++plainDepth;
        PlainBooking* other = plainItems.at(plainChanged % plainItems.size());
        if (plainChanged % 3 == 0) {
            const bool was = other->blocked;
            other->blocked = true;
            other->setTime(QTime(7, 0), QTime(7, 30));
            other->blocked = was;
        } else if (plainChanged % 3 == 1) {
            other->setTitle(QStringLiteral("y"));
        } else {
            other->setDate(other->date.addDays(1), plainChanged % 2);
        }
        --plainDepth;
    };
    connect(&model, &BkCalendarModel::itemRemoved, [&](BkCalendarItem* i) {
        log << QStringLiteral("itemRemoved %1").arg(idx(i));
        ++realRemoved;
        if (realRemoved % 3 == 0) {
            heldUser = model.userItems();
            heldRes = model.resourceItems();
        }
        if (realRemoved % 6 == 0) {
            heldUser[i->date()][i->userId()].append(nullptr);
            heldRes[i->date()].clear();
        }
    });
    plain.onRemoved = [&](PlainBooking*) { ++plainRemoved; };
    auto hostItem = [&](int count, const QDate& from, const BkCalendarResource& r, QVariant* id, QDate* d,
                        QVariant* u, QVariant* res) {
        *id = count % 2 ? QVariant() : QVariant(1000 + count % 40);
        *d = from.addDays(count % 17);
        if (r.type == 0)
            *u = r.id;
        else
            *res = r.id;
    };
    connect(&model, &BkCalendarModel::planAdded,
            [&](BkCalendarPlan* p) { log << QStringLiteral("planAdded %1").arg(planIndexOf.value(p)); });
    connect(&model, &BkCalendarModel::planRemoved,
            [&](BkCalendarPlan* p) { log << QStringLiteral("planRemoved %1").arg(planIndexOf.value(p)); });
    connect(&model, &BkCalendarModel::reset, [&] { log << "reset"; });
    connect(&model, &BkCalendarModel::loadData,
            [&](const QDate& a, const QDate& b, const BkCalendarResource& r) {
                log << QStringLiteral("loadData %1 %2 %3 %4")
                           .arg(a.toString(Qt::ISODate), b.toString(Qt::ISODate), dump(r.id))
                           .arg(r.type);
                if (++realLoads % 3 != 0 || !a.isValid())
                    return;
                QVariant id, u, res;
                QDate d;
                hostItem(realLoads, a, r, &id, &d, &u, &res);
                auto* item = new BkCalendarItem;
                item->id = id;
                item->setKeys(d, u, res);
                indexOf.insert(item, nextRealIndex++);
                if (model.addItem(item)) {
                    realItems.append(item);
                } else {
                    goneReal.append(item);
                }
            });
    plain.onLoad = [&](const QDate& a, const QDate&, const BkCalendarResource& r) {
        if (++plainLoads % 3 != 0 || !a.isValid())
            return;
        QVariant id, u, res;
        QDate d;
        hostItem(plainLoads, a, r, &id, &d, &u, &res);
        auto* item = new PlainBooking;
        item->index = nextPlainIndex++;
        item->id = id;
        item->setKeys(d, u, res);
        if (plain.addItem(item))
            plainItems.append(item);
        else
            gonePlain.append(item);
    };
    connect(&model, &BkCalendarModel::saveItems, [&](const QList<BkCalendarItem*>& l) {
        QStringList s;
        for (BkCalendarItem* i : l)
            s << QString::number(idx(i));
        log << "saveItems " + s.join(',');
        // The host writes the bookings: new ones get an id, some fail and go back on the list.
        ++realSaves;
        for (int n = 0; n < l.size(); ++n) {
            BkCalendarItem* i = l.at(n);
            if ((realSaves + n) % 4 == 0) {
                i->invalidate(true);
            } else if (i->id.isNull()) {
                const bool was = i->isBlocked();
                i->setBlocked(true);
                i->id = 2000 + realSaves;
                i->setBlocked(was);
                i->invalidate(false);
            } else if ((realSaves + n) % 5 == 0) {
                i->setStart(QTime(6, 0));
            }
        }
    });
    plain.onSave = [&](const QList<PlainBooking*>& l) {
        ++plainSaves;
        for (int n = 0; n < l.size(); ++n) {
            PlainBooking* i = l.at(n);
            if ((plainSaves + n) % 4 == 0) {
                i->invalidate(true);
            } else if (i->id.isNull()) {
                i->id = 2000 + plainSaves;
                i->invalidate(false);
            } else if ((plainSaves + n) % 5 == 0) {
                i->setStart(QTime(6, 0));
            }
        }
    };

    auto key = [&]() -> QVariant {
        const int n = int(random.bounded(variety >= 3 ? 40 : 6)) - (variety == 4 ? 20 : 0);
        if (random.bounded(8) == 0)
            return QVariant();
        switch (variety == 0 || variety == 3 ? 0 : int(random.bounded(variety == 1 ? 2 : 9))) {
        case 0:
            return n;
        case 1:
            return qlonglong(n);
        case 2:
            return QString::number(n);
        case 3:
            return double(n);
        case 4:
            return QVariant(QVariant::Int);
        case 5:
            return (qlonglong(1) << 33) + n;
        case 6:
            return n + 0.5;
        case 7:
            return bool(n % 2);
        default:
            return uint(n);
        }
    };
    auto someId = [&]() -> QVariant {
        if (random.bounded(3) == 0)
            return QVariant();
        const int n = int(random.bounded(30));
        return random.bounded(4) == 0 ? QVariant(QString::number(n)) : QVariant(n);
    };
    auto someDate = [&]() {
        if (random.bounded(40) == 0)
            return QDate();
        return day.addDays(int(random.bounded(random.bounded(5) == 0 ? 400 : (variety >= 3 ? 80 : 12))) -
                           (variety == 4 ? 200 : 3));
    };
    auto someTime = [&]() { return QTime(int(random.bounded(24)), int(random.bounded(4)) * 15); };
    auto someRes = [&]() { return BkCalendarResource(key(), QString(), int(random.bounded(3))); };

    for (int step = 0; step < 1500; ++step) {
        const int action = int(random.bounded(27));
        QString what = QString::number(action);
        if (action < 4 || realItems.isEmpty()) {
            // A new booking, filled before it has a model.
            auto* item = new BkCalendarItem;
            auto* r = new PlainBooking;
            r->index = nextIndex++;
            indexOf.insert(item, r->index);
            const QVariant id = someId();
            item->id = id;
            r->id = id;
            const QDate d = someDate();
            const QVariant u = key(), res = key();
            if (random.bounded(4) == 0) {
                item->setKeys(d, u, res);
                r->setKeys(d, u, res);
            } else {
                item->setDate(d);
                r->setDate(d, false);
                item->setUserId(u);
                r->setUserId(u, false);
                item->setResourceId(res);
                r->setResourceId(res, false);
            }
            const QTime s = someTime(), e = someTime();
            item->setTime(s, e);
            r->setTime(s, e);
            const bool ok = model.addItem(item);
            const bool rok = plain.addItem(r);
            QCOMPARE(ok, rok);
            if (ok) {
                realItems.append(item);
                plainItems.append(r);
            } else {
                indexOf.remove(item);
                delete item;
                delete r;
            }
        } else {
            const int pick = int(random.bounded(realItems.size()));
            BkCalendarItem* item = realItems.at(pick);
            PlainBooking* r = plainItems.at(pick);
            const bool silent = random.bounded(2);
            switch (action) {
            case 4: {
                model.removeItem(item);
                plain.removeItem(r);
                if (random.bounded(2)) {
                    realItems.removeAt(pick);
                    plainItems.removeAt(pick);
                    goneReal.append(item);
                    gonePlain.append(r);
                } else {
                    // Changed while outside the model, then added again.
                    for (int n = int(random.bounded(3)); n > 0; --n) {
                        switch (random.bounded(5)) {
                        case 0: {
                            const QDate d = someDate();
                            item->setDate(d, silent);
                            r->setDate(d, silent);
                            break;
                        }
                        case 1: {
                            const QVariant v = key();
                            item->setUserId(v, silent);
                            r->setUserId(v, silent);
                            break;
                        }
                        case 2: {
                            const QDate d = someDate();
                            const QVariant u = key(), res = key();
                            item->setKeys(d, u, res);
                            r->setKeys(d, u, res);
                            break;
                        }
                        case 3: {
                            const QTime a = someTime(), b = someTime();
                            item->setTime(a, b);
                            r->setTime(a, b);
                            break;
                        }
                        default: {
                            const QTime a = someTime();
                            item->setStart(a);
                            r->setStart(a);
                            break;
                        }
                        }
                    }
                    const bool ok = model.addItem(item);
                    QCOMPARE(ok, plain.addItem(r));
                    if (!ok) {
                        realItems.removeAt(pick);
                        plainItems.removeAt(pick);
                        goneReal.append(item);
                        gonePlain.append(r);
                    }
                }
                break;
            }
            case 5:
            case 6: {
                const QDate d = someDate();
                item->setDate(d, silent);
                r->setDate(d, silent);
                break;
            }
            case 7: {
                const QVariant v = key();
                item->setUserId(v, silent);
                r->setUserId(v, silent);
                break;
            }
            case 8: {
                const QVariant v = key();
                item->setResourceId(v, silent);
                r->setResourceId(v, silent);
                break;
            }
            case 9: {
                item->rollback();
                r->rollback();
                break;
            }
            case 10: {
                const QTime s = someTime(), e = someTime();
                item->setTime(s, e);
                r->setTime(s, e);
                break;
            }
            case 11: {
                const QTime s = someTime();
                if (random.bounded(2)) {
                    item->setStart(s);
                    r->setStart(s);
                } else {
                    item->setEnd(s);
                    r->setEnd(s);
                }
                break;
            }
            case 12: {
                const bool b = random.bounded(3) == 0;
                item->setBlocked(b);
                r->blocked = b;
                break;
            }
            case 13: {
                const bool add = random.bounded(2);
                item->invalidate(add);
                r->invalidate(add);
                break;
            }
            case 14: {
                model.commitToDatabase();
                plain.commitToDatabase();
                break;
            }
            case 15: {
                if (random.bounded(4) == 0) {
                    model.rollback();
                    plain.rollback();
                }
                break;
            }
            case 16: {
                const QDate d = someDate();
                const QVariant u = key(), res = key();
                item->setKeys(d, u, res);
                r->setKeys(d, u, res);
                break;
            }
            case 17: {
                const QDate d = someDate();
                const BkCalendarResource k = someRes();
                item->setKeys(d, k);
                r->setKeys(d, k);
                break;
            }
            case 18: {
                // The host writes the id, which the store learns at the next change.
                const QVariant id = someId();
                item->id = id;
                r->id = id;
                break;
            }
            case 19: {
                const QDate d = someDate();
                const BkCalendarResource k = someRes();
                QCOMPARE(model.covers(k, d), plain.covers(k, d));
                QList<int> a, b;
                for (BkCalendarItem* i : model.items(d, k))
                    a << idx(i);
                for (PlainBooking* i : plain.items(d, k))
                    b << i->index;
                QCOMPARE(a, b);
                break;
            }
            case 20: {
                const QDate d = someDate();
                const BkCalendarResource k = someRes();
                QList<int> a, b;
                for (BkCalendarPlan* p : model.plans(d, k))
                    a << planIndexOf.value(p);
                for (PlainPlan* p : plain.plans(d, k))
                    b << p->index;
                QCOMPARE(a, b);
                break;
            }
            case 21: {
                auto* p = new BkCalendarPlan;
                auto* rp = new PlainPlan;
                rp->index = nextPlan++;
                planIndexOf.insert(p, rp->index);
                p->date = rp->date = someDate();
                p->resource = rp->resource = someRes();
                model.addItem(p);
                plain.addPlan(rp);
                realPlans.append(p);
                plainPlans.append(rp);
                break;
            }
            case 22: {
                if (realPlans.isEmpty())
                    break;
                const int pp = int(random.bounded(realPlans.size()));
                model.removeItem(realPlans.at(pp));
                plain.removePlan(plainPlans.at(pp));
                if (random.bounded(2)) {
                    // Its date changed while outside the store, then added again.
                    realPlans.at(pp)->date = plainPlans.at(pp)->date = someDate();
                    model.addItem(realPlans.at(pp));
                    plain.addPlan(plainPlans.at(pp));
                } else {
                    planIndexOf.remove(realPlans.at(pp));
                    delete realPlans.takeAt(pp);
                    delete plainPlans.takeAt(pp);
                }
                break;
            }
            case 23: {
                const QDate d = someDate();
                const BkCalendarResource k = someRes();
                if (random.bounded(2)) {
                    QCOMPARE(model.loaded(k, d), plain.loaded(k, d));
                } else {
                    model.checkDate(k, d);
                    plain.checkDate(k, d);
                }
                break;
            }
            case 24: {
                if (random.bounded(10) == 0 && model.invalidItems().isEmpty()) {
                    model.clear();
                    plain.clear();
                    for (PlainBooking* x : plainItems)
                        delete x;
                    for (PlainPlan* x : plainPlans)
                        delete x;
                    plainItems.clear();
                    realItems.clear();
                    plainPlans.clear();
                    realPlans.clear();
                    for (auto it = indexOf.begin(); it != indexOf.end();) {
                        if (goneReal.contains(it.key()))
                            ++it;
                        else
                            it = indexOf.erase(it);
                    }
                    planIndexOf.clear();
                }
                break;
            }
            case 25: {
                const int which = int(random.bounded(3));
                if (which == 0) {
                    QCOMPARE(model.addItem(item), plain.addItem(r));
                } else if (which == 1 && !goneReal.isEmpty()) {
                    const int g = int(random.bounded(goneReal.size()));
                    model.removeItem(goneReal.at(g));
                    plain.removeItem(gonePlain.at(g));
                } else {
                    model.rollback();
                    plain.rollback();
                }
                break;
            }
            default: {
                item->setTitle("x");
                r->setTitle("x");
                break;
            }
            }
        }
        QCOMPARE(realItems.size(), plainItems.size());
        if (log != plain.log) {
            qWarning() << "step" << step << "action" << what;
            qWarning() << "real" << log;
            qWarning() << "plain" << plain.log;
        }
        QCOMPARE(log, plain.log);
        log.clear();
        plain.log.clear();
        QList<int> ra, rb;
        for (BkCalendarItem* i : model.allItems())
            ra << idx(i);
        for (PlainBooking* i : plain.all)
            rb << i->index;
        QCOMPARE(ra, rb);
        ra.clear();
        rb.clear();
        for (BkCalendarItem* i : model.invalidItems())
            ra << idx(i);
        for (PlainBooking* i : plain.invalid)
            rb << i->index;
        QCOMPARE(ra, rb);
        if (step % 10 != 0)
            continue;
        for (int i = 0; i < realItems.size(); ++i) {
            BkCalendarItem* a = realItems.at(i);
            PlainBooking* b = plainItems.at(i);
            const QString ctx = QStringLiteral("step %1 item %2 action %3").arg(step).arg(b->index).arg(what);
            QVERIFY2(a->date() == b->date, qPrintable(ctx));
            QVERIFY2(dump(a->userId()) == dump(b->userId), qPrintable(ctx));
            QVERIFY2(dump(a->resourceId()) == dump(b->resourceId), qPrintable(ctx));
            QVERIFY2(a->start() == b->start && a->end() == b->end, qPrintable(ctx));
            QVERIFY2(a->savedStart() == b->savedStart && a->savedEnd() == b->savedEnd,
                     qPrintable(ctx + " savedtime"));
            QVERIFY2(a->savedDate() == b->savedDate, qPrintable(ctx + " saveddate"));
            QVERIFY2(dump(a->savedUserId()) == dump(b->savedUserId), qPrintable(ctx + " saveduser"));
            QVERIFY2(dump(a->savedResourceId()) == dump(b->savedResourceId), qPrintable(ctx + " savedres"));
            QVERIFY2((a->model == &model) == (b->model == &plain), qPrintable(ctx));
            QVERIFY2(model.isInvalid(a) == plain.isInvalid(b), qPrintable(ctx));
        }
        QMap<int, int> ha, hb;
        for (auto it = model.idHash().begin(); it != model.idHash().end(); ++it)
            ha.insert(it.key(), idx(it.value()));
        for (auto it = plain.idHash.begin(); it != plain.idHash.end(); ++it)
            hb.insert(it.key(), it.value()->index);
        QCOMPARE(ha, hb);
        for (int k = -1; k < 31; ++k) {
            BkCalendarItem* f = model.findId(k);
            PlainBooking* g = plain.findId(k);
            QCOMPARE(f ? idx(f) : -1, g ? g->index : -1);
            QCOMPARE(model.containsItem(k), plain.idHash.contains(k));
        }
        auto dumpMap = [&](const QMap<QDate, QMap<QVariant, QList<BkCalendarItem*>>>& m) {
            QStringList s;
            for (auto d = m.begin(); d != m.end(); ++d)
                for (auto k = d->begin(); k != d->end(); ++k) {
                    QStringList l;
                    for (BkCalendarItem* i : *k)
                        l << QString::number(idx(i));
                    s << d.key().toString(Qt::ISODate) + "/" + dump(k.key()) + "=" + l.join(',');
                }
            return s;
        };
        auto dumpPlain = [&](const QMap<QDate, QMap<QVariant, QList<PlainBooking*>>>& m) {
            QStringList s;
            for (auto d = m.begin(); d != m.end(); ++d)
                for (auto k = d->begin(); k != d->end(); ++k) {
                    QStringList l;
                    for (PlainBooking* i : *k)
                        l << QString::number(i->index);
                    s << d.key().toString(Qt::ISODate) + "/" + dump(k.key()) + "=" + l.join(',');
                }
            return s;
        };
        QCOMPARE(dumpMap(model.userItems()), dumpPlain(plain.userItems));
        QCOMPARE(dumpMap(model.resourceItems()), dumpPlain(plain.resourceItems));
        QStringList la, lb;
        for (auto it = model.loadedRanges().begin(); it != model.loadedRanges().end(); ++it)
            la << QStringLiteral("%1/%2 %3..%4")
                      .arg(dump(it.key().id))
                      .arg(it.key().type)
                      .arg(it->first.toString(Qt::ISODate), it->second.toString(Qt::ISODate));
        for (auto it = plain.ranges.begin(); it != plain.ranges.end(); ++it)
            lb << QStringLiteral("%1/%2 %3..%4")
                      .arg(dump(it.key().id))
                      .arg(it.key().type)
                      .arg(it->first.toString(Qt::ISODate), it->second.toString(Qt::ISODate));
        QCOMPARE(la, lb);
        // Reads of the store through items(), with the load requests they send.
        if (step % 50 == 0) {
            for (int dd = -4; dd < 10; ++dd)
                for (int t = 0; t < 2; ++t)
                    for (const QVariant& k : {QVariant(0), QVariant(1), QVariant(qlonglong(2)),
                                              QVariant(QString("3")), QVariant(4.0), QVariant(5)}) {
                        const BkCalendarResource res(k, QString(), t);
                        QList<int> a, b;
                        for (BkCalendarItem* i : model.items(day.addDays(dd), res))
                            a << idx(i);
                        for (PlainBooking* i : plain.items(day.addDays(dd), res))
                            b << i->index;
                        QCOMPARE(a, b);
                    }
            QCOMPARE(log, plain.log);
            log.clear();
            plain.log.clear();
        }
    }
    model.commitToDatabase();
    model.disconnect();
    qDeleteAll(goneReal);
    qDeleteAll(gonePlain);
    for (PlainBooking* x : plainItems)
        delete x;
    for (PlainPlan* x : plainPlans)
        delete x;
}

QTEST_GUILESS_MAIN(TestBkCalendarStoreRules)
#include "tst_bkcalendarstorerules.moc"
