// How fast a column shares its width among overlapping bookings.
//
// Every case uses one day of n bookings that all hang together in one cluster: each starts 3 minutes
// after the one before and lasts an hour, so each box overlaps its neighbours and the whole day is
// one run of n sub-columns.

#include "BkColumnFixture.h"

#include <QElapsedTimer>
#include <QGraphicsRectItem>
#include <QtTest>

#include <algorithm>

namespace {

// The test suite's column (working scale, user 1 on one day), 805 wide so that 800 are shared.
struct Day : BkColumnFixture
{
    explicit Day(int count)
        : BkColumnFixture(false, 805.0)
    {
        for (int i = 0; i < count; ++i) {
            const QTime start = QTime(8, 0).addSecs(i * 180);
            items.append(addItem(start, start.addSecs(3600), i + 1));
        }
    }

    QList<BkCalendarItem*> items;
};

// Qt's own share of a box: a plain item with the boxes' flags and geometry notices, and nothing else.
class FloorBox : public QGraphicsItem
{
public:
    explicit FloorBox(QGraphicsItem* parent)
        : QGraphicsItem(parent)
    {
        setFlags(ItemIsMovable | ItemIsSelectable | ItemIsFocusable | ItemSendsGeometryChanges |
                 ItemSendsScenePositionChanges);
    }
    QRectF boundingRect() const override { return mRect; }
    void paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) override {}

    void setShare(double x, double y, double width, double height)
    {
        const QRectF rect(0, 0, width, height);
        if (rect != mRect) {
            prepareGeometryChange();
            mRect = rect;
        }
        setPos(x, y);
        update();
    }

private:
    QRectF mRect;
};

// The host hands the day's bookings over one by one, as it answers a load request; each new box joins
// the layout at once.
QList<BkCalendarItem*> arrive(Day& day, int count)
{
    QList<BkCalendarItem*> items;
    for (int i = 0; i < count; ++i) {
        auto* item = new BkCalendarItem();
        item->setDate(day.date);
        item->setUserId(day.resource.id);
        const QTime start = QTime(8, 0).addSecs(i * 180);
        item->setTime(start, start.addSecs(3600));
        day.model.addItem(item);
        items.append(item);
    }
    return items;
}

// The bookings leave the store: their boxes lose them at once and are deleted together afterwards,
// each deletion laying out the rest.
void leave(Day& day, const QList<BkCalendarItem*>& items)
{
    for (BkCalendarItem* item : items)
        day.model.removeItem(item);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Qt's floor for an arrival: as many plain items, made one by one, and at each new one every item
// takes its new width and place, as the boxes do.
QList<FloorBox*> floorArrive(QGraphicsItem* parent, int count)
{
    QList<FloorBox*> boxes;
    for (int i = 0; i < count; ++i) {
        boxes.append(new FloorBox(parent));
        const double width = 800.0 / boxes.size();
        for (int j = 0; j < boxes.size(); ++j)
            boxes.at(j)->setShare(j * width, 50.0 + j * 4.5, width, 90.0);
    }
    return boxes;
}

// The arrival alone, without the removal that readies the next round: the median of as many rounds,
// each timed by itself.
const int ArrivalRounds = 21;

// Reports the median time of `arrive` over the rounds; `leave` takes what arrived and readies the
// next round, untimed.
template <typename Arrive, typename Leave> void reportMedianArrival(Arrive arrive, Leave leave)
{
    QVector<double> times;
    for (int round = 0; round < ArrivalRounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        const auto arrived = arrive();
        times.append(double(timer.nsecsElapsed()));
        leave(arrived);
    }
    std::sort(times.begin(), times.end());
    QTest::setBenchmarkResult(times.at(times.size() / 2), QTest::WalltimeNanoseconds);
}

void addSizes()
{
    QTest::addColumn<int>("count");
    QTest::newRow("10") << 10;
    QTest::newRow("50") << 50;
    QTest::newRow("200") << 200;
}

} // namespace

class bench_Collisions : public QObject
{
    Q_OBJECT

private slots:
    void buildColumn_data() { addSizes(); }
    void buildColumn();
    void addBookingsOneByOne_data() { addSizes(); }
    void addBookingsOneByOne();
    void qtFloorOneByOne_data() { addSizes(); }
    void qtFloorOneByOne();
    void arriveOneByOne_data() { addSizes(); }
    void arriveOneByOne();
    void qtFloorArrival_data() { addSizes(); }
    void qtFloorArrival();
    void fullRelayoutAfterMove_data() { addSizes(); }
    void fullRelayoutAfterMove();
    void relayoutAfterSmallMove_data() { addSizes(); }
    void relayoutAfterSmallMove();
    void settledLayout_data() { addSizes(); }
    void settledLayout();
    void clusterSearchPerBox_data() { addSizes(); }
    void clusterSearchPerBox();
};

// The column throws its boxes away and makes one per booking, each joining the layout as it comes.
void bench_Collisions::buildColumn()
{
    QFETCH(int, count);
    Day day(count);
    QBENCHMARK
    {
        day.column->updateChildren();
    }
    QCOMPARE(day.items.first()->widget->colCount(), count);
}

// The day's bookings arrive one by one and leave again.
void bench_Collisions::addBookingsOneByOne()
{
    QFETCH(int, count);
    Day day(0);
    QList<BkCalendarItem*> items;
    QBENCHMARK
    {
        qDeleteAll(items);
        items = arrive(day, count);
        leave(day, items);
    }
    qDeleteAll(items);
}

// Qt's floor for the case above: as many plain items, made one by one in a plain parent of the same
// scene, and at each new one every item takes its new width and place, as the boxes do; then they
// are deleted. No booking, no layout, no signal: what Qt itself spends on the same geometry changes.
void bench_Collisions::qtFloorOneByOne()
{
    QFETCH(int, count);
    Day day(0);
    QGraphicsRectItem* parent = day.scene.addRect(QRectF(0, 0, 805, 1300));
    QBENCHMARK
    {
        qDeleteAll(floorArrive(parent, count));
    }
}

// The arrival half of addBookingsOneByOne: only the additions are timed. The removal, in which the
// boxes lose their bookings and are then deleted in one batch, is what readies the next round.
void bench_Collisions::arriveOneByOne()
{
    QFETCH(int, count);
    Day day(0);
    reportMedianArrival([&] { return arrive(day, count); },
                        [&](const QList<BkCalendarItem*>& items) {
                            QCOMPARE(items.first()->widget->colCount(), count);
                            leave(day, items);
                            qDeleteAll(items);
                        });
}

// Qt's floor for the arrival alone, timed as above.
void bench_Collisions::qtFloorArrival()
{
    QFETCH(int, count);
    Day day(0);
    QGraphicsRectItem* parent = day.scene.addRect(QRectF(0, 0, 805, 1300));
    reportMedianArrival([&] { return floorArrive(parent, count); },
                        [](const QList<FloorBox*>& boxes) { qDeleteAll(boxes); });
}

// The earliest booking leaves the cluster and comes back: every box changes its sub-column and its
// share, so each move is a full layout of the column.
void bench_Collisions::fullRelayoutAfterMove()
{
    QFETCH(int, count);
    Day day(count);
    BkCalendarItem* first = day.items.first();
    bool away = false;
    QBENCHMARK
    {
        if (away)
            first->setTime(QTime(8, 0), QTime(9, 0));
        else
            first->setTime(QTime(19, 0), QTime(19, 30));
        away = !away;
    }
    QCOMPARE(day.items.last()->widget->colCount(), away ? count - 1 : count);
}

// A drag step by one minute that keeps the order: the layout runs and every box keeps its place.
void bench_Collisions::relayoutAfterSmallMove()
{
    QFETCH(int, count);
    Day day(count);
    BkCalendarItem* middle = day.items.at(count / 2);
    const QTime start = middle->start();
    bool shifted = false;
    QBENCHMARK
    {
        const QTime to = shifted ? start : start.addSecs(60);
        middle->setTime(to, to.addSecs(3600));
        shifted = !shifted;
    }
    QCOMPARE(middle->widget->colCount(), count);
}

// A layout run over a settled column, as the host's refresh of a booking starts it.
void bench_Collisions::settledLayout()
{
    QFETCH(int, count);
    Day day(count);
    QBENCHMARK
    {
        day.column->checkCollisions();
    }
    QCOMPARE(day.items.first()->widget->colIndex(), 0);
}

// For comparison: one cluster search per box, as intersectList does it, without moving anything.
void bench_Collisions::clusterSearchPerBox()
{
    QFETCH(int, count);
    Day day(count);
    QList<BkCalendarItemWidget*> widgets;
    for (BkCalendarItem* item : qAsConst(day.items))
        widgets.append(item->widget);
    int total = 0;
    QBENCHMARK
    {
        total = 0;
        for (BkCalendarItemWidget* widget : qAsConst(widgets))
            total += widget->intersectList(widgets).size();
    }
    QCOMPARE(total, count * count);
}

QTEST_MAIN(bench_Collisions)
#include "bench_collisions.moc"
