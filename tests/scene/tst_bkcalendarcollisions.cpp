// Sharing a column's width among overlapping bookings.

#include "BkColumnFixture.h"

#include <FwTestApplication.h>

#include <QRandomGenerator>

#include <QtTest>

#include <algorithm>
#include <vector>

namespace {

struct Booking
{
    QTime start;
    QTime end;
    QVariant id;
};

// "09:00-10:00#7;09:30-10:30#3"; an id of "-" stands for a null id.
QList<Booking> parseBookings(const QString& text)
{
    QList<Booking> result;
    const QStringList parts = text.split(';', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const QStringList timesAndId = part.split('#');
        const QStringList times = timesAndId.at(0).split('-');
        Booking booking;
        booking.start = QTime::fromString(times.at(0), "hh:mm");
        booking.end = QTime::fromString(times.at(1), "hh:mm");
        if (timesAndId.size() > 1 && timesAndId.at(1) != "-")
            booking.id = timesAndId.at(1).toInt();
        result.append(booking);
    }
    return result;
}

// The id as an int, or as a host's database may hand it over: a long long, a text, a double that
// toInt rounds, or a text that reads as no number at all (0).
QVariant idOfSomeType(int id, QRandomGenerator& random)
{
    switch (random.bounded(6)) {
    case 0:
        return qlonglong(id);
    case 1:
        return QString::number(id);
    case 2:
        return double(id) + 0.25;
    case 3:
        return QStringLiteral("x%1").arg(id);
    default:
        return id;
    }
}

// The literal rule, used as the reference: each box's cluster by its own search, and its rank by top
// edge with the lower id first at equal tops.
void referenceLayout(const QList<BkCalendarItemWidget*>& all, QList<int>* indexes, QList<int>* counts)
{
    QList<BkCalendarItemWidget*> list;
    for (BkCalendarItemWidget* widget : all) {
        if (widget->isVisible() && !widget->deleting())
            list.append(widget);
    }
    for (BkCalendarItemWidget* widget : all) {
        if (!list.contains(widget)) {
            indexes->append(-1);
            counts->append(-1);
            continue;
        }
        const QList<BkCalendarItemWidget*> cluster = widget->intersectList(list);
        int index = 0;
        for (BkCalendarItemWidget* other : cluster) {
            if (widget->pos().y() > other->pos().y())
                ++index;
            else if (widget->pos().y() == other->pos().y() && widget->item() && other->item() &&
                     other->item()->id.toInt() < widget->item()->id.toInt())
                ++index;
        }
        indexes->append(index);
        counts->append(cluster.size());
    }
}

// A literal model of one layout run, with its re-entrance, on plain numbers: each box has its present
// top and height and those its booking's time gives; setting a box takes the latter, and a box that
// moves starts a nested run at once.
struct SimBox
{
    double top;
    double height;
    double timeTop;
    double timeHeight;
    bool hasItem;
    int id;
    int index;
    int count;
    double x;
    bool visible;
    // The width that the box shares with its sub-columns: the column's 200, or the 100 that a new box
    // assumes until the column gives it its width.
    double share = 200.0;
};

struct LiteralRun
{
    std::vector<SimBox> boxes;

    QVector<int> cluster(int w, QVector<int> list) const
    {
        QVector<int> result;
        double top = boxes[w].top;
        double bottom = top + boxes[w].height;
        bool tookSome = true;
        while (tookSome) {
            tookSome = false;
            QVector<int> rest;
            for (int o : list) {
                if (o == w)
                    continue;
                const double ot = boxes[o].top;
                const double ob = ot + boxes[o].height;
                if (bottom > ot && ob > top) {
                    result.append(o);
                    top = qMin(ot, top);
                    if (ob > bottom)
                        bottom = ob;
                    tookSome = true;
                } else {
                    rest.append(o);
                }
            }
            list = rest;
        }
        result.append(w);
        return result;
    }

    void run()
    {
        QVector<int> all;
        for (int i = 0; i < int(boxes.size()); ++i) {
            if (boxes[i].visible)
                all.append(i);
        }
        for (int w : all) {
            const QVector<int> c = cluster(w, all);
            int index = 0;
            for (int o : c) {
                if (boxes[w].top > boxes[o].top)
                    ++index;
                else if (boxes[w].top == boxes[o].top && boxes[w].hasItem && boxes[o].hasItem &&
                         boxes[o].id < boxes[w].id)
                    ++index;
            }
            set(w, index, c.size());
        }
    }

    void set(int w, int index, int count)
    {
        SimBox& box = boxes[w];
        if (box.index == index && box.count == count)
            return;
        box.index = index;
        box.count = count;
        box.height = box.timeHeight;
        const double x = index * (box.share / count);
        const bool moved = x != box.x || box.timeTop != box.top;
        box.x = x;
        box.top = box.timeTop;
        if (moved)
            run();
    }
};

// Where a booking's time puts its box in the fixture's column: whole minutes from the scale's 06:00,
// 1.5 a minute, below a margin of 50.
double timeTopOf(const QTime& start)
{
    return QTime(6, 0).secsTo(start) / 60 * 1.5 + 50.0;
}

double timeHeightOf(const QTime& start, const QTime& end)
{
    return start.secsTo(end) / 60 * 1.5;
}

// A box as the model sees it: where it stands now, and where its booking's time would put it.
SimBox simBoxOf(BkCalendarItemWidget* widget)
{
    BkCalendarItem* item = widget->item();
    SimBox box;
    box.top = widget->pos().y();
    box.height = widget->boundingRect().height();
    box.timeTop = timeTopOf(item->start());
    box.timeHeight = timeHeightOf(item->start(), item->end());
    box.hasItem = true;
    box.id = item->id.toInt();
    box.index = widget->colIndex();
    box.count = widget->colCount();
    box.x = widget->pos().x();
    box.visible = widget->isVisible();
    return box;
}

void compareWithModel(const QList<BkCalendarItemWidget*>& widgets, const LiteralRun& model)
{
    QCOMPARE(widgets.size(), int(model.boxes.size()));
    for (int i = 0; i < widgets.size(); ++i) {
        const SimBox& box = model.boxes.at(i);
        BkCalendarItemWidget* widget = widgets.at(i);
        QCOMPARE(widget->colIndex(), box.index);
        QCOMPARE(widget->colCount(), box.count);
        QCOMPARE(widget->pos(), QPointF(box.x, box.top));
        QCOMPARE(widget->boundingRect().height(), box.height);
    }
}

// One row per seed of a random case, from 1 to last.
void addSeedRows(quint32 last)
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= last; ++seed)
        QTest::newRow(qPrintable(QString("seed %1").arg(seed))) << seed;
}

// A day of bookings whose boxes were not told of everything: some bookings took another id or a new
// time while blocked, and some boxes are hidden.
void addStaleDay(BkColumnFixture& fixture, QRandomGenerator& random)
{
    const int count = 4 + random.bounded(12);
    QList<BkCalendarItem*> items;
    for (int i = 0; i < count; ++i) {
        const QTime start = QTime(8, 0).addSecs(15 * 60 * random.bounded(16));
        items.append(fixture.addItem(start, start.addSecs(60 * 15 * random.bounded(0, 8))));
    }
    for (BkCalendarItem* item : items) {
        if (random.bounded(3) == 0)
            item->id = random.bounded(count);
        if (random.bounded(2) == 0) {
            item->setBlocked(true);
            QTime start = item->start();
            if (random.bounded(2) == 0)
                start = QTime(8, 0).addSecs(15 * 60 * random.bounded(16));
            item->setTime(start, start.addSecs(60 * 15 * random.bounded(0, 8)));
            item->setBlocked(false);
        }
    }
    const QList<BkCalendarItemWidget*> widgets = fixture.widgets();
    for (BkCalendarItemWidget* widget : widgets) {
        if (random.bounded(5) == 0)
            widget->setVisible(false);
    }
}

// Three bookings, each overlapping the next, in a column of 200 to share.
struct ThreeInARow
{
    explicit ThreeInARow(BkColumnFixture& fixture)
        : first(fixture.addItem(QTime(9, 0), QTime(10, 0), 1))
        , middle(fixture.addItem(QTime(9, 15), QTime(10, 15), 2))
        , last(fixture.addItem(QTime(9, 30), QTime(10, 30), 3))
    {
    }

    // The middle box is hidden and the column laid out again: the other two share the width.
    void hideTheMiddleAndLayOut(BkColumnFixture& fixture)
    {
        middle->widget->setVisible(false);
        fixture.column->checkCollisions();
        QCOMPARE(first->widget->colCount(), 2);
        QCOMPARE(last->widget->colCount(), 2);
        QCOMPARE(last->widget->colIndex(), 1);
        QCOMPARE(last->widget->x(), 100.0);
    }

    BkCalendarItem* first;
    BkCalendarItem* middle;
    BkCalendarItem* last;
};

} // namespace

class tst_BkCalendarCollisions : public QObject
{
    Q_OBJECT

private slots:
    void shouldShareWidthAsTheWorkedCasesSay_data();
    void shouldShareWidthAsTheWorkedCasesSay();
    void shouldStackEqualTopsWithEqualIds();
    void shouldLetZeroHeightBoxOverlapOnlyAnEnclosingBox();
    void shouldLeaveInvisibleBoxOutOfTheLayout();
    void shouldLayOutAfreshAfterAMoveAndLeaveFarBoxesAlone();
    void shouldReturnEarlyFromSetColInfoWithUnchangedValues();
    void shouldReturnClusterWithAskerLastEvenIfListLacksIt();
    void shouldFindWholeConnectedRunWhateverTheListOrder();
    void shouldTakeNewBoxIntoTheLayoutThroughItsFirstMove();
    void shouldCountABoxWhoseBookingWasRemovedUntilItGoes();
    void shouldReadTheBoxesAfreshAfterABoxThatTookNoPlaceAtItsMaking();
    void shouldOrderItemsByStart();
    void shouldMatchTheLiteralRuleOnRandomDays_data();
    void shouldMatchTheLiteralRuleOnRandomDays();
    void shouldRunAsTheLiteralRuleWhenBoxesChangeDuringTheRun_data();
    void shouldRunAsTheLiteralRuleWhenBoxesChangeDuringTheRun();
    void shouldLetLaterBoxesOfARunSeeAHeightThatChangedInIt();
    void shouldLayOutAgainWhenOnlyTheEndOfABookingChanges();
    void shouldRunAsTheLiteralRuleWhenABookingArrives_data();
    void shouldRunAsTheLiteralRuleWhenABookingArrives();
    void shouldLayOutAClusterOfTwentyThousandBoxesInOneRun();
};

void tst_BkCalendarCollisions::shouldShareWidthAsTheWorkedCasesSay_data()
{
    QTest::addColumn<QString>("bookings");
    QTest::addColumn<QString>("expected"); // index,count,x,width for each booking

    QTest::newRow("touching boxes do not overlap") << "09:00-10:00#1;10:00-11:00#2"
                                                   << "0,1,0,200;0,1,0,200";
    QTest::newRow("two overlapping") << "09:00-10:00#1;09:30-10:30#2"
                                     << "0,2,0,100;1,2,100,100";
    QTest::newRow("chain of three") << "09:00-10:00#1;09:30-11:00#2;10:30-12:00#3"
                                    << "0,3,0,66.6667;1,3,66.6667,66.6667;2,3,133.333,66.6667";
    QTest::newRow("chain given in reverse") << "10:30-12:00#3;09:30-11:00#2;09:00-10:00#1"
                                            << "2,3,133.333,66.6667;1,3,66.6667,66.6667;0,3,0,66.6667";
    QTest::newRow("equal tops ordered by id") << "09:00-10:00#7;09:00-10:00#3"
                                              << "1,2,100,100;0,2,0,100";
    QTest::newRow("equal ids stacked") << "09:00-10:00#5;09:00-10:00#5"
                                       << "0,2,0,100;0,2,0,100";
    QTest::newRow("null ids stacked") << "09:00-10:00#-;09:00-10:00#-"
                                      << "0,2,0,100;0,2,0,100";
    QTest::newRow("null id against id 0") << "09:00-10:00#-;09:00-10:00#0"
                                          << "0,2,0,100;0,2,0,100";
    QTest::newRow("n boxes make n sub-columns though only two meet at once")
        << "09:00-10:00#1;09:30-10:30#2;10:15-11:00#3;10:45-11:30#4"
        << "0,4,0,50;1,4,50,50;2,4,100,50;3,4,150,50";
    QTest::newRow("two separate clusters") << "09:00-10:00#1;09:30-10:30#2;13:00-14:00#3"
                                           << "0,2,0,100;1,2,100,100;0,1,0,200";
    QTest::newRow("enclosed box") << "09:00-12:00#1;10:00-11:00#2;10:30-10:45#3"
                                  << "0,3,0,66.6667;1,3,66.6667,66.6667;2,3,133.333,66.6667";
}

void tst_BkCalendarCollisions::shouldShareWidthAsTheWorkedCasesSay()
{
    QFETCH(QString, bookings);
    QFETCH(QString, expected);
    BkColumnFixture fixture;
    QList<BkCalendarItem*> items;
    const QList<Booking> parsed = parseBookings(bookings);
    for (const Booking& booking : parsed)
        items.append(fixture.addItem(booking.start, booking.end));
    // The host writes ids after adding, which is how two bookings can share one.
    for (int i = 0; i < items.size(); ++i)
        items.at(i)->id = parsed.at(i).id;
    fixture.column->checkCollisions();

    const QStringList rows = expected.split(';');
    QCOMPARE(rows.size(), items.size());
    for (int i = 0; i < items.size(); ++i) {
        const QStringList values = rows.at(i).split(',');
        BkCalendarItemWidget* widget = items.at(i)->widget;
        QVERIFY(widget);
        QCOMPARE(widget->colIndex(), values.at(0).toInt());
        QCOMPARE(widget->colCount(), values.at(1).toInt());
        QVERIFY2(qAbs(widget->x() - values.at(2).toDouble()) < 0.001,
                 qPrintable(QString("x %1").arg(widget->x())));
        QVERIFY2(qAbs(widget->boundingRect().width() - values.at(3).toDouble()) < 0.001,
                 qPrintable(QString("width %1").arg(widget->boundingRect().width())));
        QCOMPARE(widget->x(), widget->boxX());
    }
}

void tst_BkCalendarCollisions::shouldStackEqualTopsWithEqualIds()
{
    // Neither counts the other, so both take sub-column 0 of 2 and the second stays empty.
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 4);
    BkCalendarItem* b = fixture.addItem(QTime(9, 0), QTime(9, 30), 5);
    QCOMPARE(b->widget->colIndex(), 1);
    // The host gives the second booking the same id after it was added.
    b->id = 4;
    fixture.model.updateItem(b);
    QCOMPARE(a->widget->colIndex(), 0);
    QCOMPARE(b->widget->colIndex(), 0);
    QCOMPARE(a->widget->colCount(), 2);
    QCOMPARE(b->widget->colCount(), 2);
    QCOMPARE(a->widget->pos(), b->widget->pos());
    QCOMPARE(a->widget->boundingRect().width(), 100.0);
}

void tst_BkCalendarCollisions::shouldLetZeroHeightBoxOverlapOnlyAnEnclosingBox()
{
    BkColumnFixture fixture;
    BkCalendarItem* enclosing = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* inside = fixture.addItem(QTime(9, 30), QTime(9, 30), 2);
    BkCalendarItem* after = fixture.addItem(QTime(11, 0), QTime(12, 0), 3);
    BkCalendarItem* atStart = fixture.addItem(QTime(11, 0), QTime(11, 0), 4);

    QCOMPARE(inside->widget->boundingRect().height(), 0.0);
    QCOMPARE(enclosing->widget->colCount(), 2);
    QCOMPARE(inside->widget->colCount(), 2);
    QCOMPARE(inside->widget->colIndex(), 1);
    // A box that starts at the zero-height box's y does not overlap it.
    QCOMPARE(after->widget->colCount(), 1);
    QCOMPARE(atStart->widget->colCount(), 1);
    QCOMPARE(atStart->widget->colIndex(), 0);
}

void tst_BkCalendarCollisions::shouldLeaveInvisibleBoxOutOfTheLayout()
{
    BkColumnFixture fixture;
    ThreeInARow three(fixture);
    QCOMPARE(three.last->widget->colCount(), 3);

    three.hideTheMiddleAndLayOut(fixture);
    // The hidden box keeps what it had.
    QCOMPARE(three.middle->widget->colIndex(), 1);
    QCOMPARE(three.middle->widget->colCount(), 3);

    // A hidden box does not bridge two boxes that do not meet.
    BkColumnFixture bridge;
    BkCalendarItem* left = bridge.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* middle = bridge.addItem(QTime(9, 30), QTime(11, 0), 2);
    BkCalendarItem* right = bridge.addItem(QTime(10, 30), QTime(12, 0), 3);
    QCOMPARE(right->widget->colCount(), 3);
    middle->widget->setVisible(false);
    bridge.column->checkCollisions();
    QCOMPARE(left->widget->colCount(), 1);
    QCOMPARE(right->widget->colCount(), 1);
    QCOMPARE(right->widget->x(), 0.0);
}

void tst_BkCalendarCollisions::shouldLayOutAfreshAfterAMoveAndLeaveFarBoxesAlone()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    BkCalendarItem* far1 = fixture.addItem(QTime(15, 0), QTime(16, 0), 3);
    BkCalendarItem* far2 = fixture.addItem(QTime(15, 30), QTime(16, 30), 4);
    QCOMPARE(far2->widget->colIndex(), 1);
    const QPointF farPos = far2->widget->pos();
    // A far booking gets a new time that its box is not told of: the box would take it at the
    // first refresh, so it shows whether the layout touched the box at all.
    far2->setBlocked(true);
    far2->setTime(QTime(18, 0), QTime(19, 0));

    // Moving b away splits the first cluster; the far cluster is untouched.
    b->setTime(QTime(11, 0), QTime(12, 0));
    QCOMPARE(a->widget->colCount(), 1);
    QCOMPARE(b->widget->colCount(), 1);
    QCOMPARE(b->widget->x(), 0.0);
    QCOMPARE(b->widget->y(), 300 * 1.5 + 50);
    QCOMPARE(far1->widget->colCount(), 2);
    QCOMPARE(far2->widget->colIndex(), 1);
    // Its values were settled, so setColInfo returned early and did not refresh it.
    QCOMPARE(far2->widget->pos(), farPos);
    QCOMPARE(far2->widget->boxY(), farPos.y());
    far2->setTime(QTime(15, 30), QTime(16, 30));
    far2->setBlocked(false);

    // Moving it into the far cluster makes that one three wide.
    b->setTime(QTime(15, 15), QTime(15, 45));
    QCOMPARE(far1->widget->colCount(), 3);
    QCOMPARE(b->widget->colIndex(), 1);
    QCOMPARE(far2->widget->colIndex(), 2);
    QVERIFY(qAbs(far2->widget->x() - 400.0 / 3.0) < 1e-9);
}

void tst_BkCalendarCollisions::shouldReturnEarlyFromSetColInfoWithUnchangedValues()
{
    BkColumnFixture fixture;
    BkCalendarItem* item = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItemWidget* widget = item->widget;
    const QPointF before = widget->pos();

    // A change that the box is not told of: only a real change of its values refreshes it.
    item->setBlocked(true);
    item->setTime(QTime(11, 0), QTime(12, 0));
    widget->setColInfo(0, 1);
    QCOMPARE(widget->pos(), before);
    QCOMPARE(widget->boxY(), 320.0);

    widget->setColInfo(0, 2);
    QCOMPARE(widget->boxY(), 50.0 + 300 * 1.5);
    QCOMPARE(widget->y(), 50.0 + 300 * 1.5);
    // Its move ran the layout, which set the box back to its own cluster.
    QCOMPARE(widget->colCount(), 1);
}

void tst_BkCalendarCollisions::shouldReturnClusterWithAskerLastEvenIfListLacksIt()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    BkCalendarItem* c = fixture.addItem(QTime(13, 0), QTime(14, 0), 3);

    const QList<BkCalendarItemWidget*> cluster = a->widget->intersectList({b->widget, c->widget});
    QCOMPARE(cluster.size(), 2);
    QCOMPARE(cluster.at(0), b->widget);
    QCOMPARE(cluster.last(), a->widget);

    const QList<BkCalendarItemWidget*> alone = c->widget->intersectList({a->widget, b->widget});
    QCOMPARE(alone.size(), 1);
    QCOMPARE(alone.last(), c->widget);
}

void tst_BkCalendarCollisions::shouldFindWholeConnectedRunWhateverTheListOrder()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(11, 0), 2);
    BkCalendarItem* c = fixture.addItem(QTime(10, 30), QTime(12, 0), 3);
    BkCalendarItem* d = fixture.addItem(QTime(12, 0), QTime(13, 0), 4);

    // c comes before its bridge b, so the run needs a second pass.
    const QList<BkCalendarItemWidget*> order{c->widget, d->widget, b->widget, a->widget};
    const QList<BkCalendarItemWidget*> cluster = a->widget->intersectList(order);
    QCOMPARE(cluster.size(), 3);
    QVERIFY(cluster.contains(b->widget));
    QVERIFY(cluster.contains(c->widget));
    QVERIFY(!cluster.contains(d->widget));
    QCOMPARE(cluster.last(), a->widget);
}

void tst_BkCalendarCollisions::shouldTakeNewBoxIntoTheLayoutThroughItsFirstMove()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    QCOMPARE(a->widget->colCount(), 2);

    BkCalendarItem* c = fixture.addItem(QTime(9, 45), QTime(11, 0), 3);
    QCOMPARE(a->widget->colCount(), 3);
    QCOMPARE(b->widget->colCount(), 3);
    QCOMPARE(c->widget->colCount(), 3);
    QCOMPARE(c->widget->colIndex(), 2);
    QVERIFY(qAbs(c->widget->x() - 400.0 / 3.0) < 1e-9);

    // Until then it is passed over: a box at the top of the column, where a new box stands before
    // it is placed, is not laid out again. Its booking has a new time that the box is not told of,
    // which any refresh of the box would show.
    BkColumnFixture top;
    BkCalendarItem* early = top.addItem(QTime(6, 0), QTime(7, 0), 11);
    const QPointF earlyPos = early->widget->pos();
    early->setBlocked(true);
    early->setTime(QTime(7, 30), QTime(8, 30));
    BkCalendarItem* late = top.addItem(QTime(15, 0), QTime(16, 0), 12);
    QCOMPARE(early->widget->pos(), earlyPos);
    QCOMPARE(early->widget->colCount(), 1);
    QCOMPARE(late->widget->colCount(), 1);
    QCOMPARE(late->widget->x(), 0.0);

    // Removing a booking frees its share once its box is gone.
    fixture.model.removeItem(a);
    BkColumnFixture::flushDeletes();
    QCOMPARE(fixture.widgets().size(), 2);
    QCOMPARE(b->widget->colCount(), 2);
    QCOMPARE(b->widget->colIndex(), 0);
    QCOMPARE(c->widget->x(), 100.0);
    delete a;
}

void tst_BkCalendarCollisions::shouldReadTheBoxesAfreshAfterABoxThatTookNoPlaceAtItsMaking()
{
    // A box made without a booking takes no first place, so no layout run follows the run of its
    // joining. Then the host hides a box: the next run leaves it out.
    BkColumnFixture fixture;
    ThreeInARow three(fixture);
    auto* empty = new BkCalendarItemWidget(nullptr, fixture.scale, fixture.column);
    QCOMPARE(empty->pos(), QPointF(0.0, 0.0));
    QCOMPARE(three.last->widget->colCount(), 3);

    three.hideTheMiddleAndLayOut(fixture);
    // The box without a booking stands alone at the top, above the first booking.
    QCOMPARE(empty->colCount(), 1);
}

void tst_BkCalendarCollisions::shouldCountABoxWhoseBookingWasRemovedUntilItGoes()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    BkCalendarItem* c = fixture.addItem(QTime(12, 0), QTime(13, 0), 5);
    QPointer<BkCalendarItemWidget> waiting = a->widget;
    fixture.model.removeItem(a);
    QVERIFY(waiting);
    QVERIFY(!waiting->item());

    // c moves to a's top: the box of the removed booking still takes its place in the cluster, and
    // without a booking it takes no part in the tie-break, so it does not come before c either.
    c->setTime(QTime(9, 0), QTime(9, 45));
    QCOMPARE(c->widget->colCount(), 3);
    QCOMPARE(c->widget->colIndex(), 0);
    QCOMPARE(b->widget->colCount(), 3);
    QCOMPARE(b->widget->colIndex(), 2);
    QCOMPARE(waiting->colCount(), 3);
    QCOMPARE(waiting->colIndex(), 0);

    // Once the box is gone its share is free.
    BkColumnFixture::flushDeletes();
    QVERIFY(!waiting);
    QCOMPARE(c->widget->colCount(), 2);
    QCOMPARE(c->widget->colIndex(), 0);
    QCOMPARE(b->widget->colIndex(), 1);
    QCOMPARE(b->widget->x(), 100.0);
    delete a;
}

void tst_BkCalendarCollisions::shouldOrderItemsByStart()
{
    BkCalendarItem early;
    BkCalendarItem late;
    early.setTime(QTime(8, 0), QTime(9, 0));
    late.setTime(QTime(8, 30), QTime(8, 45));
    QVERIFY(calendarItemLessThan(&early, &late));
    QVERIFY(!calendarItemLessThan(&late, &early));
    QVERIFY(!calendarItemLessThan(&early, &early));
}

void tst_BkCalendarCollisions::shouldMatchTheLiteralRuleOnRandomDays_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("tall");
    for (quint32 seed = 1; seed <= 40; ++seed)
        QTest::newRow(qPrintable(QString("seed %1").arg(seed))) << seed << int(5 + seed % 30) << false;
    // Days on which every box has a height, the common day, with many equal tops and repeated ids.
    for (quint32 seed = 41; seed <= 80; ++seed)
        QTest::newRow(qPrintable(QString("tall, seed %1").arg(seed))) << seed << int(5 + seed % 60) << true;
}

void tst_BkCalendarCollisions::shouldMatchTheLiteralRuleOnRandomDays()
{
    // Coarse times, so that equal tops, touching boxes, zero heights and boxes that end before they
    // start all turn up; a few boxes are hidden and ids repeat.
    QFETCH(quint32, seed);
    QFETCH(int, count);
    QFETCH(bool, tall);
    QRandomGenerator random(seed);
    BkColumnFixture fixture;
    QList<BkCalendarItem*> items;
    for (int i = 0; i < count; ++i) {
        const QTime start = QTime(8, 0).addSecs(15 * 60 * random.bounded(24));
        int length = 15 * random.bounded(tall ? 1 : 0, 9);
        if (!tall && random.bounded(10) == 0)
            length = -15 * random.bounded(1, 5);
        items.append(fixture.addItem(start, start.addSecs(60 * length)));
    }
    for (BkCalendarItem* item : items) {
        // Written after adding, as a host does, so that ids may repeat. Hosts hand ids over in
        // whatever type their database gives, and the tie-break reads each as QVariant::toInt does.
        if (random.bounded(6) != 0)
            item->id = idOfSomeType(random.bounded(count), random);
        if (random.bounded(8) == 0)
            item->widget->setVisible(false);
    }
    fixture.column->checkCollisions();
    // Move a few bookings as a user would, each move laying the column out again.
    for (int k = 0; k < 3; ++k) {
        BkCalendarItem* item = items.at(random.bounded(items.size()));
        const QTime start = QTime(8, 0).addSecs(15 * 60 * random.bounded(24));
        item->setTime(start, start.addSecs(item->start().secsTo(item->end())));
    }

    // Twice: as the moves left the boxes, and with every box made anew by the column.
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 1)
            fixture.column->updateChildren();
        const QList<BkCalendarItemWidget*> all = fixture.widgets();
        QVERIFY(all.size() <= count);
        QVERIFY(!all.isEmpty());
        QList<int> indexes;
        QList<int> counts;
        referenceLayout(all, &indexes, &counts);
        for (int i = 0; i < all.size(); ++i) {
            BkCalendarItemWidget* widget = all.at(i);
            if (indexes.at(i) < 0)
                continue; // hidden: keeps whatever it had
            QCOMPARE(widget->colIndex(), indexes.at(i));
            QCOMPARE(widget->colCount(), counts.at(i));
            QCOMPARE(widget->x(), widget->colIndex() * (200.0 / widget->colCount()));
        }
    }
}

void tst_BkCalendarCollisions::shouldRunAsTheLiteralRuleWhenBoxesChangeDuringTheRun_data()
{
    addSeedRows(200);
}

void tst_BkCalendarCollisions::shouldRunAsTheLiteralRuleWhenBoxesChangeDuringTheRun()
{
    // Bookings whose new times their boxes were not told of: a box takes its time only when the
    // layout sets it, so tops and heights change in the middle of a run, nested runs follow, and the
    // outcome depends on the order of every step. A model of the literal rule must agree exactly.
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    BkColumnFixture fixture;
    addStaleDay(fixture, random);
    const QList<BkCalendarItemWidget*> widgets = fixture.widgets();
    LiteralRun model;
    for (BkCalendarItemWidget* widget : widgets)
        model.boxes.push_back(simBoxOf(widget));
    model.run();
    fixture.column->checkCollisions();
    compareWithModel(widgets, model);
}

void tst_BkCalendarCollisions::shouldLetLaterBoxesOfARunSeeAHeightThatChangedInIt()
{
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(9, 0), QTime(10, 0), 1);
    BkCalendarItem* b = fixture.addItem(QTime(9, 30), QTime(10, 30), 2);
    BkCalendarItem* c = fixture.addItem(QTime(12, 0), QTime(13, 0), 3);
    QCOMPARE(a->widget->colCount(), 2);
    QCOMPARE(c->widget->colCount(), 1);

    // a now ends at 12:30, which its box does not know yet; b is hidden.
    a->setBlocked(true);
    a->setTime(QTime(9, 0), QTime(12, 30));
    a->setBlocked(false);
    b->widget->setVisible(false);
    fixture.column->checkCollisions();

    // Setting a alone gave it its new height without moving it; c, later in the same run, meets the
    // taller box, and the move of c lays a out once more.
    QCOMPARE(a->widget->boundingRect().height(), 210 * 1.5);
    QCOMPARE(c->widget->colIndex(), 1);
    QCOMPARE(c->widget->colCount(), 2);
    QCOMPARE(a->widget->colCount(), 2);
    QCOMPARE(c->widget->x(), 100.0);
}

void tst_BkCalendarCollisions::shouldLayOutAgainWhenOnlyTheEndOfABookingChanges()
{
    // A booking whose end alone changes keeps its top: its box does not move, yet its neighbours are new.
    BkColumnFixture fixture;
    BkCalendarItem* a = fixture.addItem(QTime(16, 15), QTime(16, 45), 1);
    BkCalendarItem* b = fixture.addItem(QTime(16, 45), QTime(17, 0), 2);
    fixture.model.commitToDatabase();
    QCOMPARE(a->widget->colCount(), 1);
    QCOMPARE(b->widget->colCount(), 1);

    // Longer by half an hour: a now overlaps b, and the two share the width.
    a->setTime(QTime(16, 15), QTime(17, 15));
    QCOMPARE(a->widget->boundingRect().height(), 60 * 1.5);
    QCOMPARE(a->widget->colIndex(), 0);
    QCOMPARE(a->widget->colCount(), 2);
    QCOMPARE(b->widget->colIndex(), 1);
    QCOMPARE(b->widget->colCount(), 2);
    QCOMPARE(b->widget->x(), 100.0);

    // Shortened before b begins while unsaved: each takes the whole width again.
    a->setTime(QTime(16, 15), QTime(16, 30));
    QCOMPARE(a->widget->boundingRect().height(), 15 * 1.5);
    QCOMPARE(a->widget->colCount(), 1);
    QCOMPARE(b->widget->colCount(), 1);
    QCOMPARE(b->widget->x(), 0.0);
    QCOMPARE(b->widget->boundingRect().width(), 200.0);

    // Taken back to the hour of the first change, as the rollback of a drag that left the scene does:
    // the two overlap again.
    a->rollback();
    QCOMPARE(a->end(), QTime(17, 15));
    QCOMPARE(a->widget->boundingRect().height(), 60 * 1.5);
    QCOMPARE(a->widget->colCount(), 2);
    QCOMPARE(b->widget->colIndex(), 1);
    QCOMPARE(b->widget->colCount(), 2);
    QCOMPARE(a->widget->boundingRect().width(), 100.0);
    QCOMPARE(b->widget->x(), 100.0);
}

void tst_BkCalendarCollisions::shouldRunAsTheLiteralRuleWhenABookingArrives_data()
{
    addSeedRows(300);
}

void tst_BkCalendarCollisions::shouldRunAsTheLiteralRuleWhenABookingArrives()
{
    // A booking arrives in a column whose boxes were not told of everything. Its box joins in three
    // steps, each a layout run: becoming the column's child (the box is not in that run yet), its
    // first place, which it takes on a share of 100 before the column has given it its width, and
    // the column's width, which moves it sideways and lays the column out again if it moved.
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    BkColumnFixture fixture;
    addStaleDay(fixture, random);
    // A box that grew under the pointer and shrank again stacks above the others, and so comes
    // after a new box among the column's children.
    const QList<BkCalendarItemWidget*> before = fixture.widgets();
    for (BkCalendarItemWidget* widget : before) {
        if (random.bounded(4) == 0)
            widget->setZValue(1.0);
    }
    LiteralRun model;
    for (BkCalendarItemWidget* widget : fixture.widgets())
        model.boxes.push_back(simBoxOf(widget));
    model.run();

    const QTime start = QTime(8, 0).addSecs(15 * 60 * random.bounded(16));
    const QTime end = start.addSecs(60 * 15 * random.bounded(0, 8));
    const QVariant id = random.bounded(2) == 0 ? QVariant() : QVariant(random.bounded(16));
    BkCalendarItem* item = fixture.addItem(start, end, id);
    const QList<BkCalendarItemWidget*> after = fixture.widgets();
    const int place = after.indexOf(item->widget);
    QVERIFY(place >= 0);

    SimBox arriving;
    arriving.timeTop = timeTopOf(start);
    arriving.timeHeight = timeHeightOf(start, end);
    arriving.top = arriving.timeTop;
    arriving.height = arriving.timeHeight;
    arriving.hasItem = true;
    arriving.id = id.toInt();
    arriving.index = 1;
    arriving.count = 1;
    arriving.x = 100.0;
    arriving.visible = true;
    arriving.share = 100.0;
    model.boxes.insert(model.boxes.begin() + place, arriving);
    model.run();
    SimBox& joined = model.boxes.at(place);
    joined.share = 200.0;
    const double x = joined.index * (joined.share / joined.count);
    if (x != joined.x) {
        joined.x = x;
        model.run();
    }
    compareWithModel(after, model);
}

void tst_BkCalendarCollisions::shouldLayOutAClusterOfTwentyThousandBoxesInOneRun()
{
    // Every box of a cluster moves sideways as the column lays it out, and every move enters the
    // layout again from inside the move. A column built in one go with 20,000 bookings that all
    // overlap is laid out all the same, without those moves piling up one inside the next.
    const int count = 20000;
    BkColumnFixture fixture(false, 20005.0);
    QList<BkCalendarItem*> items;
    {
        const QSignalBlocker quiet(&fixture.model);
        for (int i = 0; i < count; ++i) {
            // Starts over four hours, in whole minutes, and four hours long: each overlaps all others.
            const QTime start = QTime(8, 0).addSecs(((i * 97) % 240) * 60);
            items.append(fixture.addItem(start, start.addSecs(4 * 3600), count - i));
        }
    }
    fixture.column->updateChildren();

    // The rank by top, and at equal tops by id; every box shares the width with all the others.
    QList<BkCalendarItem*> ranked = items;
    std::sort(ranked.begin(), ranked.end(), [](const BkCalendarItem* a, const BkCalendarItem* b) {
        return a->start() != b->start() ? a->start() < b->start() : a->id.toInt() < b->id.toInt();
    });
    for (int rank = 0; rank < count; ++rank) {
        const BkCalendarItemWidget* box = ranked.at(rank)->widget;
        QVERIFY(box);
        QCOMPARE(box->colCount(), count);
        QCOMPARE(box->colIndex(), rank);
        QCOMPARE(box->x(), double(rank));
    }
}

FW_TEST_MAIN(tst_BkCalendarCollisions)
#include "tst_bkcalendarcollisions.moc"
