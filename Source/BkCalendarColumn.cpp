#include "BkCalendarColumn.h"
#include "BkCalendarClock.h"

#include "BkCalendarColorScheme.h"
#include "BkCalendarHeader.h"
#include "BkCalendarItem.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"
#include "BkCalendarNestedLoop.h"
#include "BkCalendarPainting.h"
#include "BkCalendarTimeScale.h"
#include "BkItemChangeNotice.h"
#include "BkMinutes.h"
#include "BkVariantInt.h"
#include "FwApplication.h"
#include "FwEnums.h"
#include "FwMessageBox.h"
#include "FwTreeWidget.h"
#include "FwTreeWidgetItem.h"

#include <QApplication>
#include <QBrush>
#include <QDataStream>
#include <QGraphicsScene>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneMouseEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPair>
#include <QPen>
#include <QPointer>
#include <QScopedValueRollback>
#include <QStringList>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <QTreeWidgetItemIterator>
#include <QVector>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

bool calendarItemLessThan(BkCalendarItem* a, BkCalendarItem* b)
{
    return a->start() < b->start();
}

namespace {

// One box as the layout sees it: its top and bottom in column coordinates and its tie-break key.
struct LayoutBox
{
    double top;
    double bottom;
    bool hasItem;
    int id;
};

LayoutBox layoutBoxOf(BkCalendarItemWidget* widget)
{
    LayoutBox box;
    box.top = widget->pos().y();
    box.bottom = box.top + widget->boundingRect().height();
    box.hasItem = widget->item() != nullptr;
    box.id = box.hasItem ? variantToInt(widget->item()->id) : 0;
    return box;
}

bool sameBox(const LayoutBox& a, const LayoutBox& b)
{
    return a.top == b.top && a.bottom == b.bottom && a.hasItem == b.hasItem && a.id == b.id;
}

// The boxes of the last layout in the order of their tops, where the last run starts in that order,
// and how far down it reaches: all that a box coming below every top needs. Kept only when every box
// had a height.
struct LayoutOrder
{
    QVector<int> order;
    int lastRunStart = 0;
    double reach = 0.0;
    bool valid = false;
};

// The layout below for the common column in which every box has a height: its runs are stretches of
// the boxes sorted by top, and nothing needs to be kept per run. False when some box has no height.
bool computeLayoutOfTallBoxes(const QVector<LayoutBox>& boxes, QVector<int>& indexes, QVector<int>& counts,
                              LayoutOrder& sorted)
{
    const int n = boxes.size();
    sorted.valid = false;
    sorted.order.resize(n);
    int* const order = sorted.order.data();
    for (int i = 0; i < n; ++i) {
        if (!(boxes.at(i).bottom > boxes.at(i).top))
            return false;
        order[i] = i;
    }
    // By top, and at equal tops by id, the boxes without an item first as they take no rank there.
    const auto before = [&boxes](int a, int b) {
        const LayoutBox& x = boxes.at(a);
        const LayoutBox& y = boxes.at(b);
        if (x.top != y.top)
            return x.top < y.top;
        if (x.hasItem != y.hasItem)
            return !x.hasItem;
        return x.hasItem && x.id < y.id;
    };
    // Boxes are mostly made in the order of their bookings' times, so the column's order often is the
    // sorted one already, and one pass finds that.
    if (!std::is_sorted(order, order + n, before))
        std::stable_sort(order, order + n, before);
    indexes.resize(n);
    counts.resize(n);
    int runStart = 0;
    while (runStart < n) {
        double reach = boxes.at(order[runStart]).bottom;
        int runEnd = runStart + 1;
        while (runEnd < n && boxes.at(order[runEnd]).top < reach) {
            reach = std::max(reach, boxes.at(order[runEnd]).bottom);
            ++runEnd;
        }
        sorted.lastRunStart = runStart;
        sorted.reach = reach;
        // A box's rank: the boxes of its run with a lower top, then at its own top those with an item
        // and a lower id. Equal ids share their rank.
        int groupStart = runStart;
        while (groupStart < runEnd) {
            const double top = boxes.at(order[groupStart]).top;
            int groupEnd = groupStart + 1;
            while (groupEnd < runEnd && boxes.at(order[groupEnd]).top == top)
                ++groupEnd;
            int withItem = groupStart;
            while (withItem < groupEnd && !boxes.at(order[withItem]).hasItem)
                ++withItem;
            int rank = 0;
            for (int g = groupStart; g < groupEnd; ++g) {
                const LayoutBox& box = boxes.at(order[g]);
                if (box.hasItem && g > withItem && box.id != boxes.at(order[g - 1]).id)
                    rank = g - withItem;
                indexes[order[g]] = groupStart - runStart + (box.hasItem ? rank : 0);
                counts[order[g]] = runEnd - runStart;
            }
            groupStart = groupEnd;
        }
        runStart = runEnd;
    }
    sorted.valid = n > 0;
    return true;
}

// The layout once a box has come at the end of the list whose layout `sorted` was kept for, when the
// box has a height and comes below every top: it joins the last run or starts one of its own, the
// last run's boxes count it, and no rank changes. False where that does not hold.
bool appendToLayout(const QVector<LayoutBox>& boxes, QVector<int>& indexes, QVector<int>& counts,
                    LayoutOrder& sorted)
{
    const int n = boxes.size() - 1;
    const LayoutBox& box = boxes.at(n);
    if (!sorted.valid || sorted.order.size() != n || !(box.bottom > box.top) ||
        !(box.top > boxes.at(sorted.order.last()).top))
        return false;
    sorted.order.append(n);
    indexes.resize(n + 1);
    counts.resize(n + 1);
    if (box.top < sorted.reach) {
        const int count = n + 1 - sorted.lastRunStart;
        for (int k = sorted.lastRunStart; k < n; ++k)
            counts[sorted.order.at(k)] = count;
        indexes[n] = n - sorted.lastRunStart;
        counts[n] = count;
        sorted.reach = std::max(sorted.reach, box.bottom);
    } else {
        indexes[n] = 0;
        counts[n] = 1;
        sorted.lastRunStart = n;
        sorted.reach = box.bottom;
    }
    return true;
}

// The sub-column of every box at once, with the results that a cluster search per box
// (BkCalendarItemWidget::intersectList) and the rank by top edge give, in O(n log n).
//
// A box with a positive height ("normal") joins the boxes whose spans it overlaps strictly, so the
// normal boxes fall into runs that a sweep over their tops finds. A box of zero or negative height
// belongs to the run whose whole span holds it strictly; it sees that run as its own cluster only
// when one single normal box holds it, since its own cluster search starts from its own span.
void computeLayout(const QVector<LayoutBox>& boxes, QVector<int>& indexes, QVector<int>& counts,
                   LayoutOrder& sorted)
{
    if (computeLayoutOfTallBoxes(boxes, indexes, counts, sorted))
        return;
    const int n = boxes.size();
    indexes.fill(0, n);
    counts.fill(1, n);

    QVector<int> normals;
    QVector<int> others;
    normals.reserve(n);
    for (int i = 0; i < n; ++i) {
        if (boxes.at(i).bottom > boxes.at(i).top)
            normals.append(i);
        else
            others.append(i);
    }
    std::stable_sort(normals.begin(), normals.end(),
                     [&boxes](int a, int b) { return boxes.at(a).top < boxes.at(b).top; });

    // Runs of normal boxes, in order of their tops, with their spans and a running maximum of the
    // bottoms for the single-box test below.
    QVector<int> runOf(n, -1);
    QVector<double> runTop;
    QVector<double> runBottom;
    QVector<double> prefixBottom(normals.size());
    double reach = -std::numeric_limits<double>::infinity();
    for (int k = 0; k < normals.size(); ++k) {
        const LayoutBox& box = boxes.at(normals.at(k));
        if (runTop.isEmpty() || !(box.top < runBottom.last())) {
            runTop.append(box.top);
            runBottom.append(box.bottom);
        } else if (box.bottom > runBottom.last()) {
            runBottom.last() = box.bottom;
        }
        runOf[normals.at(k)] = runTop.size() - 1;
        reach = std::max(reach, box.bottom);
        prefixBottom[k] = reach;
    }

    // Members of each run: its normal boxes and the other boxes that lie strictly inside its span.
    QVector<QVector<int>> members(runTop.size());
    for (int k = 0; k < normals.size(); ++k)
        members[runOf.at(normals.at(k))].append(normals.at(k));
    QVector<bool> heldBySingleBox(n, false);
    for (int i : others) {
        const LayoutBox& box = boxes.at(i);
        // The last run that starts before the box's lower end is the only one that can hold it.
        const int r = int(std::lower_bound(runTop.begin(), runTop.end(), box.bottom) - runTop.begin()) - 1;
        if (r < 0 || !(runBottom.at(r) > box.top))
            continue;
        members[r].append(i);
        runOf[i] = r;
        // Is there one normal box with top < lower end and bottom > upper end?
        const auto firstNotBefore =
            std::lower_bound(normals.begin(), normals.end(), box.bottom,
                             [&boxes](int index, double value) { return boxes.at(index).top < value; });
        const int last = int(firstNotBefore - normals.begin()) - 1;
        heldBySingleBox[i] = last >= 0 && prefixBottom.at(last) > box.top;
    }

    // Rank inside each run: the boxes with a lower top, then at equal tops those with a lower id.
    for (QVector<int>& run : members) {
        std::stable_sort(run.begin(), run.end(), [&boxes](int a, int b) {
            const LayoutBox& x = boxes.at(a);
            const LayoutBox& y = boxes.at(b);
            if (x.top != y.top)
                return x.top < y.top;
            return x.id < y.id;
        });
        const int size = run.size();
        int groupStart = 0;
        while (groupStart < size) {
            int groupEnd = groupStart + 1;
            while (groupEnd < size && boxes.at(run.at(groupEnd)).top == boxes.at(run.at(groupStart)).top)
                ++groupEnd;
            // Ids of the boxes with an item in this group of equal tops, sorted.
            QVector<int> ids;
            for (int g = groupStart; g < groupEnd; ++g) {
                if (boxes.at(run.at(g)).hasItem)
                    ids.append(boxes.at(run.at(g)).id);
            }
            std::sort(ids.begin(), ids.end());
            for (int g = groupStart; g < groupEnd; ++g) {
                const LayoutBox& box = boxes.at(run.at(g));
                int index = groupStart;
                if (box.hasItem)
                    index += int(std::lower_bound(ids.begin(), ids.end(), box.id) - ids.begin());
                indexes[run.at(g)] = index;
                counts[run.at(g)] = size;
            }
            groupStart = groupEnd;
        }
    }

    // A box that no single box holds finds nothing from its own span: it stays alone.
    for (int i : others) {
        if (runOf.at(i) >= 0 && !heldBySingleBox.at(i)) {
            indexes[i] = 0;
            counts[i] = 1;
        }
    }
}

// A new box waits in its scene's list of items to polish until the event loop comes round, and a box
// deleted while it waits there is searched for in that list from its start. The views rebuild every
// column several times over before they return to the event loop, which would grow that list to tens of
// thousands and make each deletion a long walk; so the new boxes are polished at once. Polishing tells
// a box no more than that it is visible, which it is told again when the scene's own turn comes.
void polishNow(QGraphicsScene* scene)
{
    static const bool canPolish = QGraphicsScene::staticMetaObject.indexOfMethod("_q_polishItems()") >= 0;
    if (scene && canPolish)
        QMetaObject::invokeMethod(scene, "_q_polishItems", Qt::DirectConnection);
}

} // namespace

// The layout is a function of the boxes' tops, heights and ids alone. Most runs find the boxes as the
// run before left them (a box becomes the column's child, then takes its first place), so the last
// answers are kept and given again for the same boxes.
struct BkCalendarColumn::LayoutMemo
{
    QVector<LayoutBox> boxes;
    QVector<int> indexes;
    QVector<int> counts;
    LayoutOrder sorted;
    // The boxes of the last run, and whether it ended with every one of them holding its answer.
    // Only compared with, never followed: a box may be gone since.
    QVector<BkCalendarItemWidget*> widgets;
    bool settled = false;
    // The room of the boxes before the last computation, filled anew by the next. Runs come at every
    // arrival and move of a box, and a new vector for each cost the allocator more than the run.
    QVector<LayoutBox> scratch;
    // The room of a run's interrupted runs, which in a cluster of n boxes grow to n.
    std::vector<int> interrupted;
    // The box whose joining the column is being told of, while the run at its joining is under way.
    BkCalendarItemWidget* joining = nullptr;
    // The box whose joining ran the layout, with the children that run listed, kept for the run at
    // the box's first place (see keepBoxesOfJoining); taken by the next run, whichever it is.
    BkCalendarItemWidget* joiner = nullptr;
    QList<QGraphicsItem*> joinChildren;
};

BkCalendarColumn::BkCalendarColumn(QGraphicsItem* parent, bool resizable)
    : QObject(nullptr)
    , QGraphicsItem(parent)
    , mRect(0, 0, 100, 100)
    , mModel(nullptr)
    , mHeader(nullptr)
    , mWidthType(WidthProportional)
    , mRaise(RaiseOnClick)
    , mWidthScale(1.0)
    , mMinWidth(100)
    , mScale(nullptr)
    , mScheme(nullptr)
    , mDate(BkCalendarClock::currentDate())
    , mResourceMode(0)
    , mIndex(0)
    , mCustomSize(false)
    , mLayoutRun(nullptr)
    , mLayoutMemo(std::make_unique<LayoutMemo>())
    , mHoldLayout(false)
    , mDeferBoxes(false)
    , mOtherChildren(0)
    , mOthersBeforeHeader(false)
{
    setFlags(QGraphicsItem::ItemIsSelectable);
    setAcceptDrops(true);
    setData(ItemKindRole, int(ItemKindColumn));
    mHeader = new BkCalendarHeader(this);
    mHeader->setResizable(resizable);
}

BkCalendarColumn::~BkCalendarColumn() = default;

void BkCalendarColumn::discard(BkCalendarColumn* column)
{
    if (BkCalendarHostVisit::active()) {
        column->mRetired = true;
        if (column->mModel)
            column->mModel->disconnect(column);
        for (QGraphicsItem* child : column->childItems())
            BkCalendarItemWidget::retire(child);
    } else if (QGraphicsScene* scene = column->scene()) {
        // A selected column or box that leaves the scene tells of the change of selection at once, and
        // the host's answer may load, take bookings away or build other columns: it finds this column
        // whole, out of the scene, and not yet half deleted.
        scene->removeItem(column);
    }
    BkCalendarHostVisit::remove(column);
}

QRectF BkCalendarColumn::boundingRect() const
{
    return mRect;
}

void BkCalendarColumn::setRaise(Raise raise)
{
    mRaise = raise;
}

bool BkCalendarColumn::showsSomething() const
{
    return !mResource.id.isNull() && mResource.id.toInt() != -1 && mDate.isValid();
}

void BkCalendarColumn::placeGrip()
{
    if (mHeader)
        mHeader->setGrip(QRectF(mRect.width() - 15.0, 5.0, 10.0, 10.0));
}

void BkCalendarColumn::init()
{
    init(-1.0);
}

void BkCalendarColumn::init(double start)
{
    if (!mScale)
        return;
    prepareGeometryChange();
    // The value is read as pixels here; a proportional column gets its true width at sizeChanged.
    mRect = QRectF(0, 0, mWidthScale, mScale->boundingRect().height());
    placeGrip();
    if (start == -1.0)
        start = mIndex * mRect.width();
    moveTo(QPointF(double(mScale->width()) + start, 25.0));
    QGraphicsItem::update();
}

void BkCalendarColumn::moveTo(const QPointF& position)
{
    // The boxes ask Qt for scene-position notices, and ignore them. For each move of a column that
    // holds such a box, Qt then tests every box of the scene for descent from the column: 3,600 tests
    // per column in a group of 300, a third of the group's opening. Qt drops that walk for a column
    // from which a notice-taking item has just been withdrawn, until its event loop or the next such
    // item brings the walk back. Switching the header's notices on and off withdraws one. The header
    // keeps its flags, the boxes theirs, and every position is the same; only notices that nobody
    // acts on go unsent.
    if (position == pos())
        return;
    if (mHeader && scene()) {
        const QGraphicsItem::GraphicsItemFlags flags = mHeader->flags();
        mHeader->setFlags(flags | QGraphicsItem::ItemSendsScenePositionChanges);
        mHeader->setFlags(flags);
    }
    setPos(position);
}

void BkCalendarColumn::updateSize()
{
    if (!mScale)
        return;
    prepareGeometryChange();
    mRect = QRectF(0, 0, mWidthScale, mScale->boundingRect().height());
    placeGrip();
    QGraphicsItem::update();
}

void BkCalendarColumn::sizeChanged(int viewWidth)
{
    if (!mScale)
        return;
    prepareGeometryChange();
    double width = mWidthScale;
    if (mWidthType == WidthProportional) {
        const float free = float(viewWidth) - float(mScale->width()) - 1.0f;
        width = double(free) * mWidthScale;
    }
    mRect.setWidth(width);
    placeGrip();
    moveTo(QPointF(mIndex * width + double(mScale->width()), 25.0));
    updateInfo();
    emit widthChanged(width);
}

double BkCalendarColumn::setWidthScale(double scale, WidthType type, double start)
{
    // A width set by hand wins over the view's share-out.
    if (!mHeader || !mHeader->resizable() || !mCustomSize) {
        mWidthScale = scale;
        mWidthType = type;
    }
    init(start);
    updateInfo();
    emit widthChanged(mRect.width());
    return mWidthScale;
}

QRectF BkCalendarColumn::moveHeader(int y)
{
    if (!mHeader)
        return QRectF();
    if (y < 0)
        y = 0;
    const QRectF before = mHeader->sceneBoundingRect();
    mHeader->setPos(mHeader->pos().x(), y);
    return before.united(mHeader->sceneBoundingRect());
}

void BkCalendarColumn::update()
{
    QGraphicsItem::update();
    if (showsSomething()) {
        updateInfo();
        updateChildren();
    }
    if (mRetired)
        return;
    if (mHeader) {
        mHeader->setColumn(this);
        mHeader->date = mDate;
        mHeader->setResourceMode(mResourceMode != 0);
        mHeader->setColorScheme(mScheme);
        mHeader->resource = mResource;
        mHeader->widthChanged(mRect.width());
    }
}

void BkCalendarColumn::updateInfo()
{
    if (!mModel || mRetired)
        return;
    const QList<BkCalendarPlan*> plans = mModel->plans(mDate, mResource);
    // The plans are shared with the columns of the host's answer, which place them for themselves.
    if (mRetired)
        return;
    // Read in the host's answer to a clear, they are about to be deleted: the column shows none, as
    // after the clear's own notice, until its next update.
    mPlans = mModel && mModel->clearing() ? QList<BkCalendarPlan*>() : plans;
    if (mScale) {
        const float m = float(mScale->minuteHeight());
        const float t = float(mScale->topMargin());
        const QTime scaleStart = mScale->start();
        for (BkCalendarPlan* plan : qAsConst(mPlans)) {
            const float y = float(minutesBetween(scaleStart, plan->start)) * m + t;
            const float height = float(minutesBetween(plan->start, plan->end)) * m;
            plan->rect = QRectF(1.0, int(y), int(mRect.width() - 1.0), int(height));
        }
    }
    QGraphicsItem::update();
}

void BkCalendarColumn::planAdded(BkCalendarPlan* plan)
{
    if (!plan)
        return;
    if (plan->resource.type == mResource.type && plan->resource.id == mResource.id && plan->date == mDate)
        updateInfo();
}

void BkCalendarColumn::setModel(BkCalendarModel* model)
{
    mModel = model;
    if (!mModel)
        return;
    updateChildren();
    connect(mModel, &BkCalendarModel::planChanged, this, &BkCalendarColumn::updateInfo);
    connect(mModel, &BkCalendarModel::planRemoved, this, &BkCalendarColumn::updateInfo);
    connect(mModel, &BkCalendarModel::planAdded, this, &BkCalendarColumn::planAdded);
    connect(mModel, &BkCalendarModel::itemAdded, this, &BkCalendarColumn::itemAdded);
    // A clear deletes the plans without a removal each: the column lets go of them before, and shows
    // none until its next update, rather than paint or book against plans that are gone.
    connect(mModel, &BkCalendarModel::reset, this, [this] {
        mPlans.clear();
        QGraphicsItem::update();
    });
}

BkCalendarItemWidget* BkCalendarColumn::makeWidget(BkCalendarItem* item)
{
    mLayoutMemo->settled = false;
    const BkCalendarModel* model = item->model;
    // A box made while the column builds its boxes in one go takes its place once, below, instead of
    // at its construction and again at its width; the layout runs only when all are made.
    BkCalendarItemWidget::sPlaceLaterIn = mHoldLayout ? this : nullptr;
    auto* widget = new BkCalendarItemWidget(item, mScale, this);
    // The box's coming may let the host in. An answer that took the booking out of the model, deleted
    // it, took the box away or updated the column, which retired it, leaves the column to go on without
    // it.
    if (widget->deleting() || widget->parentItem() != this || widget->item() != item ||
        item->model != model) {
        // A box that still stands in the column goes now that it is whole; one that the host took
        // away, or that goes with a retired column, is gone already. The host may have selected it or
        // given it the focus, and hears of it going.
        if (!widget->deleting() || (widget->parentItem() == this && !mRetired)) {
            const BkCalendarHostVisit visit;
            BkCalendarHostVisit::remove(widget);
        }
        return nullptr;
    }
    {
        // The box's first place ran the layout with the box in it. If that run left every box
        // holding its answer, the width given now moves only this box, sideways, and the run that
        // the move would start reads tops, heights and ids that nothing has touched since: it
        // would find every box settled and change nothing.
        const bool settled = mLayoutMemo->settled && mLayoutMemo->widgets.contains(widget);
        const QScopedValueRollback<bool> hold(mHoldLayout, mHoldLayout || settled);
        widget->widthChanged(mRect.width());
    }
    widget->setColorScheme(mScheme);
    widget->placeNow();
    // Nothing reads key 0; the widget marks itself with 1 and the column with 0.
    widget->setData(0, 0);
    connect(widget, &BkCalendarItemWidget::itemContextMenu, this, &BkCalendarColumn::itemContextMenu);
    connect(widget, &BkCalendarItemWidget::itemActivated, this, &BkCalendarColumn::itemActivated);
    if (mModel) {
        connect(mModel, &BkCalendarModel::itemChanged, widget, &BkCalendarItemWidget::itemChanged);
        connect(mModel, &BkCalendarModel::itemRemoved, widget, &BkCalendarItemWidget::itemRemoved);
    }
    return widget;
}

void BkCalendarColumn::updateChildren()
{
    // Widgets are never reused: the old ones go, and every shown booking gets a new one. Each removal
    // and insertion would lay the column out; the layout is a function of the boxes' tops and heights
    // alone and every box here is new, so one run over the finished set gives the same boxes.
    if (mRetired)
        return;
    // A selected box that goes tells the host, and so may the read below: an answer that has this
    // column updated meanwhile has made the boxes itself, and this update ends there.
    const quint32 update = ++mChildUpdates;
    mHoldLayout = true;
    {
        // While the host is let in, the boxes go retired, and its answer finds this column whole. A
        // selected box that goes lets the host in as well, through the scene's notice that the
        // selection changed, and so does the box with the focus, through the notice that the focus
        // moved.
        const QList<QGraphicsItem*> children = childItems();
        std::optional<BkCalendarHostVisit> visit;
        if (BkCalendarHostVisit::active() ||
            std::any_of(children.cbegin(), children.cend(),
                        [](const QGraphicsItem* child) { return child->isSelected() || child->hasFocus(); }))
            visit.emplace();
        for (int i = children.size() - 1; i >= 0; --i) {
            QGraphicsItem* child = children.at(i);
            if (child->data(ItemKindRole).toInt() != ItemKindItemWidget) {
                // A box that is still joining this column carries no mark yet, and is one of the old
                // boxes all the same: the host came in as Qt added it. Qt is in the middle of that, so
                // the box is only retired here; the column that makes it takes it away once it is whole.
                if (auto* joining = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
                    joining && joining->mJoining && !joining->deleting())
                    BkCalendarItemWidget::retire(child);
                continue;
            }
            // A box that an outer update is taking away already, and in whose going the host's answer
            // had the column updated.
            if (const auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child); box && box->deleting())
                continue;
            if (visit)
                BkCalendarItemWidget::retire(child);
            BkCalendarHostVisit::remove(child);
            if (mChildUpdates != update || mRetired) {
                mHoldLayout = false;
                return;
            }
        }
    }
    if (mModel && showsSomething()) {
        // Asked even when the boxes wait: asking is what makes the model request a day it lacks.
        const QList<BkCalendarItem*> items = mModel->items(mDate, mResource);
        // Boxes made now would take the bookings from those of the host's answer.
        if (mRetired || mChildUpdates != update) {
            mHoldLayout = false;
            return;
        }
        for (BkCalendarItem* item : items) {
            // The old boxes are gone: a box of this column is one that a booking of the host's answer
            // got as it came, while the old boxes went or the day was read. The booking may name the
            // box of another column that shows it too.
            if (BkCalendarItemWidget::boxIn(item, this))
                continue;
            if (!mDeferBoxes && mScale && mScale->inside(item->start(), item->end())) {
                makeWidget(item);
                // The box's coming let the host in, and its answer updated this column, which made
                // the boxes itself, or took it away.
                if (mRetired || mChildUpdates != update) {
                    mHoldLayout = false;
                    return;
                }
            }
        }
        polishNow(scene());
    }
    mHoldLayout = false;
    checkCollisions();
}

void BkCalendarColumn::itemAdded(BkCalendarItem* item)
{
    if (!item || item->date() != mDate || !item->isLike(mResource))
        return;
    // The host may answer this notice before the column: a booking it took out of the model again
    // gets no box, and one it took out and added again has got its box inside, at the second notice.
    if (item->model != mModel || BkCalendarItemWidget::boxIn(item, this))
        return;
    // Unlike updateChildren, a new booking gets its box whatever the scale shows.
    makeWidget(item);
}

QVariant BkCalendarColumn::itemChange(QGraphicsItem::GraphicsItemChange change, const QVariant& value)
{
    if (change == ItemSelectedChange) {
        // Qt goes on with this column after the host's answer, and a press after that as well;
        // what the host takes away meanwhile lasts until the event loop.
        if (!mSelectionVisit)
            mSelectionVisit.emplace();
        if (value.toBool()) {
            ++mTellingDate;
            emit dateSelected(mDate);
            --mTellingDate;
        }
        // Qt finishes the change, and tells the scene and then this column, only when the answer has
        // left the column as it was; the scene's signal lets the host in once more.
        if (isSelected() != value.toBool())
            ++mChangesUnderway;
    } else if (change == ItemSelectedHasChanged) {
        // The host's answer may select this column again, or clear it, inside a change that is still
        // underway; Qt holds the column until that change is done.
        if (mChangesUnderway > 0)
            --mChangesUnderway;
        if (mChangesUnderway == 0 && mTellingDate == 0)
            mSelectionVisit.reset();
    } else if (change == ItemChildAddedChange || change == ItemChildRemovedChange) {
        auto* child = qvariant_cast<QGraphicsItem*>(value);
        if (mHeader && child && child != mHeader) {
            if (change == ItemChildRemovedChange)
                --mOtherChildren;
            else
                keepOrderOfComing(child);
        }
        auto* box =
            change == ItemChildAddedChange ? qgraphicsitem_cast<BkCalendarItemWidget*>(child) : nullptr;
        const QScopedValueRollback<BkCalendarItemWidget*> joining(mLayoutMemo->joining,
                                                                  box && box->mJoining ? box : nullptr);
        checkCollisions();
    }
    if (isItemChangeNotice(change))
        return QVariant();
    return QGraphicsItem::itemChange(change, value);
}

void BkCalendarColumn::keepOrderOfComing(QGraphicsItem* child)
{
    // Qt keeps the children in the order they came and sorts them by z whenever they are listed; at
    // each new child it sorts them back unless the two orders agree. The header came first but is
    // drawn above every box, so while boxes come one by one, each listed by a layout run, every box
    // would cost two sorts of all. A box placed before the header in the order of coming leaves the
    // two orders equal. The order of coming only decides between equal z values, and a box stands at
    // 0, 1 or 100, below the header's 250, so nothing is drawn, hit or listed otherwise.
    // While the column builds its boxes in one go, nothing lists them in between and there is nothing
    // to save. The choice is made when the first child after the header comes and holds until the
    // header is alone again, so that the children always stand in the order they came.
    if (mOtherChildren++ == 0)
        mOthersBeforeHeader = !mHoldLayout;
    if (mOthersBeforeHeader)
        child->stackBefore(mHeader);
}

QList<BkCalendarItem*> BkCalendarColumn::getItems(bool excludeReserved) const
{
    if (!mModel)
        return QList<BkCalendarItem*>();
    QList<BkCalendarItem*> items = mModel->items(mDate, mResource);
    if (excludeReserved) {
        for (int i = items.size() - 1; i >= 0; --i) {
            if (items.at(i)->type() == BkCalendarItem::Reserved)
                items.removeAt(i);
        }
    }
    return items;
}

QList<BkCalendarItem*> BkCalendarColumn::getSortedItems() const
{
    QList<BkCalendarItem*> items = getItems(true);
    std::stable_sort(items.begin(), items.end(), calendarItemLessThan);
    return items;
}

BkCalendarItem* BkCalendarColumn::getSelectedItem() const
{
    for (const BkCalendarItemWidget* box : boxesInOrder(getItems(true))) {
        if (box->isSelected())
            return box->item();
    }
    return nullptr;
}

BkCalendarItemWidget* BkCalendarColumn::boxOf(const BkCalendarItem* item) const
{
    if (!item)
        return nullptr;
    if (item->widget && item->widget->parentItem() == this && !item->widget->deleting())
        return item->widget;
    for (QGraphicsItem* child : childItems()) {
        auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
        if (box && box->item() == item && !box->deleting())
            return box;
    }
    return nullptr;
}

QList<BkCalendarItemWidget*> BkCalendarColumn::boxesInOrder(const QList<BkCalendarItem*>& items) const
{
    // A booking outside the scale's span has no box and takes no part. One that two columns show (its
    // person's and its room's) has a box in each, and its widget names only the newest: each column
    // goes by its own.
    QHash<const BkCalendarItem*, BkCalendarItemWidget*> own;
    for (QGraphicsItem* child : childItems()) {
        auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
        if (box && box->item() && !box->deleting())
            own.insert(box->item(), box);
    }
    QList<BkCalendarItemWidget*> boxes;
    for (BkCalendarItem* item : items) {
        if (BkCalendarItemWidget* box = own.value(item))
            boxes << box;
    }
    return boxes;
}

bool BkCalendarColumn::isChildSelected()
{
    const QList<QGraphicsItem*> children = childItems();
    for (QGraphicsItem* child : children) {
        if (child != mHeader && child->isSelected())
            return true;
    }
    return false;
}

namespace {

int selectedIndex(const QList<BkCalendarItemWidget*>& boxes)
{
    for (int i = 0; i < boxes.size(); ++i) {
        if (boxes.at(i)->isSelected())
            return i;
    }
    return -1;
}

// Takes the selection from one box to the next. A change of selection is told to the host at once,
// and its answer may take bookings away or rebuild the column; so both boxes are named before the
// host is let in, the bookings are not read again, and the walk ends at a box that is gone or has
// lost its booking.
void moveSelection(BkCalendarItemWidget* from, BkCalendarItemWidget* to, bool focusFirst)
{
    const QPointer<BkCalendarItemWidget> old(from);
    const QPointer<BkCalendarItemWidget> target(to);
    const auto targetGone = [&target]() { return !target || !target->item(); };
    if (old)
        old->clearFocus();
    if (old)
        old->setSelected(false);
    if (targetGone())
        return;
    if (focusFirst)
        target->setFocus(Qt::OtherFocusReason);
    else
        target->setSelected(true);
    if (targetGone())
        return;
    if (focusFirst)
        target->setSelected(true);
    else
        target->setFocus(Qt::OtherFocusReason);
    if (targetGone())
        return;
    target->ensureVisible(QRectF(), 50, 50);
}

} // namespace

void BkCalendarColumn::selectNextItem()
{
    const QList<BkCalendarItemWidget*> boxes = boxesInOrder(getSortedItems());
    if (boxes.isEmpty())
        return;
    const int current = selectedIndex(boxes);
    const int target = (current < 0 || current == boxes.size() - 1) ? 0 : current + 1;
    moveSelection(current >= 0 ? boxes.at(current) : nullptr, boxes.at(target), true);
}

void BkCalendarColumn::selectPreviousItem()
{
    const QList<BkCalendarItemWidget*> boxes = boxesInOrder(getSortedItems());
    if (boxes.isEmpty())
        return;
    const int current = selectedIndex(boxes);
    const int target = (current <= 0) ? boxes.size() - 1 : current - 1;
    moveSelection(current >= 0 ? boxes.at(current) : nullptr, boxes.at(target), false);
}

// The state of one layout run, shared with the runs nested in it. Its answers are the column's kept
// ones, which the run brings up to date for its boxes.
struct BkCalendarColumn::LayoutRun
{
    explicit LayoutRun(LayoutMemo* kept)
        : widgets(kept->widgets)
        , interrupted(kept->interrupted)
        , memo(kept)
    {
    }

    // The memo's own list: only one run of a column is under way at a time.
    QVector<BkCalendarItemWidget*>& widgets;
    // The box whose setColInfo is under way; only its move can start a nested run.
    int current = -1;
    // Set when that box moved sideways: the run nested in its move is still to come.
    bool moved = false;
    // Where each of the runs that a nested run interrupted goes on: the box whose move started it.
    std::vector<int>& interrupted;
    // The boxes before this one hold their answers. Only setColInfo changes a box's values, and only
    // for a box that differs; so they stay settled until new answers are computed. A nested run, and
    // the runs it returns to, need not look at them again.
    int settled = 0;

    // The answers of the last computation, which hold as long as the boxes are the same.
    LayoutMemo* memo;

    void compute()
    {
        QVector<LayoutBox>& boxes = memo->scratch;
        boxes.resize(widgets.size());
        for (int i = 0; i < widgets.size(); ++i)
            boxes[i] = layoutBoxOf(widgets.at(i));
        settled = 0;
        if (boxes.size() != memo->boxes.size() ||
            !std::equal(boxes.cbegin(), boxes.cend(), memo->boxes.cbegin(), sameBox)) {
            computeLayout(boxes, memo->indexes, memo->counts, memo->sorted);
            memo->boxes.swap(boxes);
        }
    }

    int indexAt(int index) const { return memo->indexes.at(index); }
    int countAt(int index) const { return memo->counts.at(index); }

    bool holdsAnswer(int index) const
    {
        const BkCalendarItemWidget* widget = widgets.at(index);
        return widget->colIndex() == indexAt(index) && widget->colCount() == countAt(index);
    }

    bool allHoldAnswers() const
    {
        for (int i = 0; i < widgets.size(); ++i) {
            if (!holdsAnswer(i))
                return false;
        }
        return true;
    }

    // The answers stay those of a fresh search as long as no top, height or id has changed. Every box
    // that a run sets is checked at once, so at any moment only the box being set can differ; and
    // setting a box gives it the top and height of its booking's time but leaves its booking and id.
    void refresh(int index)
    {
        const LayoutBox& kept = memo->boxes.at(index);
        const BkCalendarItemWidget* widget = widgets.at(index);
        const double top = widget->pos().y();
        if (kept.top != top || kept.bottom != top + widget->boundingRect().height())
            compute();
    }
};

void BkCalendarColumn::checkCollisions()
{
    if (mHoldLayout)
        return;

    // setColInfo moves a box sideways, and the move enters this function again. Within a run nothing
    // adds, removes, hides or re-tags a box, so a nested run works on the same boxes in the same order
    // as the run around it; it shares that run's answers and only checks them against the boxes'
    // present tops and heights. Each run still visits every box and sets every box that differs, so
    // the boxes change in the same order as with a fresh search per run. The nested run is taken up
    // by the run's own walk as soon as the move is done (see settleLayout).
    if (mLayoutRun) {
        if (mLayoutRun->current >= 0)
            mLayoutRun->moved = true;
        else
            settleLayout(*mLayoutRun);
        return;
    }

    LayoutRun run(mLayoutMemo.get());
    mLayoutMemo->settled = false;
    const QList<QGraphicsItem*> children = childItems();
    if (!takeBoxesOfJoining(run, children)) {
        run.widgets.clear();
        run.widgets.reserve(children.size());
        for (QGraphicsItem* child : children) {
            // A widget under construction has no kind yet and is passed over; it joins at its first
            // move.
            if (!child->isVisible() || variantToInt(child->data(ItemKindRole)) != ItemKindItemWidget)
                continue;
            auto* widget = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
            if (widget && !widget->deleting())
                run.widgets.append(widget);
        }
        if (run.widgets.isEmpty())
            return;
        run.compute();
    }
    mLayoutRun = &run;
    settleLayout(run);
    mLayoutRun = nullptr;
    // The answers are kept for the boxes as they stand now: each box set was checked at once, and a
    // walk that found every box settled has checked them all.
    mLayoutMemo->settled = run.settled == run.widgets.size() || run.allHoldAnswers();
    keepBoxesOfJoining(run, children);
}

// A new box starts two runs: one as it joins the column, before it has its kind, and one at its first
// place. The first reads every box, its kind from Qt's store of item data, its top, height and id;
// and leaves the answers kept for the boxes exactly as they stand. Between the two runs only Qt's
// last steps of taking in the child and the box's own constructor run, and neither touches another
// box: Qt lets the host in only where it activates the new box, that is in an active column whose
// scene lacks the focus (it gives the scene the focus back, and the scene tells its listeners) or has
// an active panel. Where it does not, the run at the first place takes the boxes of the first run
// and reads the new box alone; everywhere else it reads them all again.
void BkCalendarColumn::keepBoxesOfJoining(const LayoutRun& run, const QList<QGraphicsItem*>& children)
{
    BkCalendarItemWidget* box = mLayoutMemo->joining;
    if (!box || run.widgets.isEmpty())
        return;
    if (isActive() && (!scene()->hasFocus() || scene()->activePanel()))
        return;
    mLayoutMemo->joiner = box;
    mLayoutMemo->joinChildren = children;
}

bool BkCalendarColumn::takeBoxesOfJoining(LayoutRun& run, const QList<QGraphicsItem*>& children)
{
    LayoutMemo& memo = *mLayoutMemo;
    BkCalendarItemWidget* box = std::exchange(memo.joiner, nullptr);
    const QList<QGraphicsItem*> listed = std::exchange(memo.joinChildren, QList<QGraphicsItem*>());
    // Qt's list of children stays shared with the copy kept until Qt changes it, so the box is still
    // a child, and alive. Once its constructor is done the host may have been in.
    if (!box || !children.isSharedWith(listed) || !box->mBeingMade)
        return false;
    // The box has its kind now; the other boxes, with their tops, heights and ids, are those that
    // the answers were kept for.
    if (!box->isVisible() || variantToInt(box->data(ItemKindRole)) != ItemKindItemWidget || box->deleting()) {
        run.settled = 0;
        return true;
    }
    int at = 0;
    for (QGraphicsItem* child : children) {
        if (child == box)
            break;
        if (at < run.widgets.size() && child == run.widgets.at(at))
            ++at;
    }
    run.widgets.insert(at, box);
    run.settled = 0;
    // Bookings mostly come in the order of their times, and a box then comes last, below every top.
    if (at == memo.boxes.size()) {
        memo.boxes.append(layoutBoxOf(box));
        if (!appendToLayout(memo.boxes, memo.indexes, memo.counts, memo.sorted))
            computeLayout(memo.boxes, memo.indexes, memo.counts, memo.sorted);
        return true;
    }
    QVector<LayoutBox>& boxes = memo.scratch;
    boxes.resize(memo.boxes.size() + 1);
    std::copy(memo.boxes.cbegin(), memo.boxes.cbegin() + at, boxes.begin());
    boxes[at] = layoutBoxOf(box);
    std::copy(memo.boxes.cbegin() + at, memo.boxes.cend(), boxes.begin() + at + 1);
    computeLayout(boxes, memo.indexes, memo.counts, memo.sorted);
    memo.boxes.swap(boxes);
    return true;
}

void BkCalendarColumn::settleLayout(LayoutRun& run)
{
    // The boxes are visited in order and only those that differ are set, as a run of its own would
    // do; a box known to be settled would be passed over, so the walk steps over it at once.
    // A box that moves sideways starts a nested run from inside its move. Nothing of the host runs
    // while a box is set, and the rest of the move (Qt's notices to the box itself and its request to
    // be drawn) changes no box, top or answer; so the nested run is walked here, right after the
    // move, and then the run it interrupted goes on. The boxes change in the same order as with the
    // nesting, and a cluster of hundreds no longer stacks hundreds of moves on the call stack.
    const size_t outerRuns = run.interrupted.size();
    int i = run.settled;
    for (;;) {
        if (i >= run.widgets.size()) {
            if (run.interrupted.size() == outerRuns)
                return;
            // The nested run is done; the run that it interrupted goes on after the box that moved.
            i = run.interrupted.back();
            run.interrupted.pop_back();
        } else if (!run.holdsAnswer(i)) {
            run.current = i;
            run.moved = false;
            run.widgets.at(i)->setColInfo(run.indexAt(i), run.countAt(i));
            run.current = -1;
            const bool moved = run.moved;
            // Setting a box recomputes its geometry from its booking; it may have changed its height,
            // whether it moved sideways or not.
            run.refresh(i);
            if (moved) {
                run.interrupted.push_back(i);
                i = run.settled;
                continue;
            }
        }
        if (run.settled == i && run.holdsAnswer(i))
            run.settled = i + 1;
        i = qMax(i + 1, run.settled);
    }
}

BkCalendarPlan* BkCalendarColumn::planAt(QTime start, QTime end)
{
    if (!start.isValid())
        return nullptr;
    if (!end.isValid())
        end = start;
    else if (end < start)
        return nullptr;
    for (BkCalendarPlan* plan : qAsConst(mPlans)) {
        if (plan->start <= start && end <= plan->end)
            return plan;
    }
    return nullptr;
}

namespace {

const char CalItemFormat[] = "text/calitem";
const char TreeRowFormat[] = "application/x-fwtreewidget";
const char LayoutKey[] = "CalendarLayout";

// The id of a booking dragged out of a column: decimal digits, nothing else. The bytes may come
// from another process, so what does not read as a number names no booking of ours.
bool readCalItem(const QMimeData* data, int* id)
{
    bool ok = false;
    *id = data->data(QLatin1String(CalItemFormat)).toInt(&ok, 10);
    return ok;
}

// The row of the move list that a payload names, or null. The address comes with the drag and may
// be stale or forged, so it is never turned into a pointer: it is only compared with the addresses
// of the rows that live now in the trees of this application, and only a live row that carries
// the same booking id is returned.
FwTreeWidgetItem* findLiveRow(quint64 address, qint32 id)
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        auto* tree = qobject_cast<FwTreeWidget*>(widget);
        if (!tree)
            continue;
        for (QTreeWidgetItemIterator it(tree); *it; ++it) {
            auto* row = dynamic_cast<FwTreeWidgetItem*>(*it);
            if (row && quint64(quintptr(row)) == address && row->data(0, IdRole).toInt() == id)
                return row;
        }
    }
    return nullptr;
}

// A row dragged out of the move list: the booking's id (32 bits) and the row's address in this
// process (64 bits), big-endian. Fewer than 12 bytes, or the address of no live row, is no such
// payload; an address of 0 names no row at all.
bool readMoveListRow(const QMimeData* data, qint32* id, FwTreeWidgetItem** row)
{
    const QByteArray bytes = data->data(QLatin1String(TreeRowFormat));
    if (bytes.size() < 12)
        return false;
    QDataStream stream(bytes);
    qint64 address = 0;
    stream >> *id >> address;
    if (stream.status() != QDataStream::Ok)
        return false;
    *row = address ? findLiveRow(quint64(address), *id) : nullptr;
    return address == 0 || *row;
}

} // namespace

QTime BkCalendarColumn::roundToSnap(const QTime& time, int snap)
{
    if (!time.isValid())
        return time;
    // A snap that is not positive would divide by zero; one minute keeps every minute as it is.
    if (snap <= 0)
        snap = 1;
    const int rest = time.minute() % snap;
    if (rest == 0)
        return time;
    // The grid restarts at every full hour; a tie goes forward.
    if (rest < snap / 2)
        return time.addSecs(-rest * 60);
    return time.addSecs((snap - rest) * 60);
}

int BkCalendarColumn::snapMinutes()
{
    // Without an application, or with no positive setting, there is no grid: every minute counts.
    FwApplication* app = FwApplication::app();
    if (!app)
        return 1;
    const int snap = app->getValue(QStringLiteral("set_snaponmovebooking"), QString()).toInt();
    return snap > 0 ? snap : 1;
}

bool BkCalendarColumn::allowBooking(QTime start, QTime end)
{
    if (!start.isValid())
        return false;
    if (!end.isValid())
        end = start;
    else if (end < start)
        return false;

    // The bookable plans that the span touches. A closed block opens nothing, but neither does it
    // close what an open block round it opens.
    QVector<QPair<QTime, QTime>> intervals;
    for (BkCalendarPlan* plan : qAsConst(mPlans)) {
        if (!plan || !plan->bookable)
            continue;
        const bool holdsStart = plan->start <= start && start <= plan->end;
        const bool inside = start <= plan->start && plan->end <= end;
        const bool holdsEnd = plan->start <= end && end <= plan->end;
        if (holdsStart || inside || holdsEnd)
            intervals.append(qMakePair(plan->start, plan->end));
    }
    if (intervals.isEmpty())
        return false;
    std::stable_sort(
        intervals.begin(), intervals.end(),
        [](const QPair<QTime, QTime>& a, const QPair<QTime, QTime>& b) { return a.first < b.first; });

    // One run of plans that meet exactly; plans that overlap do not join it.
    bool haveLo = false;
    bool haveHi = false;
    QTime lo;
    QTime hi;
    for (const QPair<QTime, QTime>& interval : qAsConst(intervals)) {
        if (!haveLo) {
            lo = interval.first;
            haveLo = true;
        }
        if (!haveHi) {
            hi = interval.second;
            haveHi = true;
        }
        if (hi == interval.first)
            hi = interval.second;
        else if (lo == interval.second)
            lo = interval.first;
    }
    return start >= lo && end <= hi;
}

bool BkCalendarColumn::isResourceBooked(BkCalendarItem* item)
{
    if (!item || !mModel)
        return false;
    // The booking's own resource counts, not this column's key and not the booking's user.
    const BkCalendarResource key(item->resourceId(), QString(), 1);
    const bool filed = item->model == mModel;
    const QList<BkCalendarItem*> others = mModel->items(item->date(), key);
    // Reading a day of the resource that the model lacks asks the host for it, and the host's answer
    // may take the booking away: a booking of this model that is no longer filed under its own day
    // and resource is gone, and is read no further.
    if (filed && !others.contains(item))
        return false;
    for (BkCalendarItem* other : others) {
        if (!other || other == item)
            continue;
        // Bookings that merely touch are no double booking.
        if (item->start() < other->end() && other->start() < item->end())
            return true;
    }
    return false;
}

bool BkCalendarColumn::tryToMoveItem(BkCalendarItem* item, QTime start)
{
    if (!item)
        return false;
    const QTime s = roundToSnap(start, snapMinutes());
    const QTime e = s.addSecs(item->start().secsTo(item->end()));
    if (!allowBooking(s, e))
        return false;

    // A booking of a person and a room stands in both of their columns of a group, and its widget
    // names the newest of its boxes. Brought into one of them, it moves by the box that it has there:
    // a second box would stand beside it, and the other column would lose its own.
    const QPointer<BkCalendarItemWidget> own(boxOf(item));
    BkCalendarItemWidget* along = own ? own.data() : boxToTakeAlong(item);
    // The booking comes here from the column of the box that goes along, or else from that of the box
    // it names; one with no box anywhere comes from the move list or from outside the scale's span.
    const auto elsewhere = [this](BkCalendarItemWidget* box) { return box && box->parentItem() != this; };
    const QPointer<BkCalendarItemWidget> cameFrom(elsewhere(along) ? along : item->widget);
    if (!along) {
        // A booking that no column of this kind shows gets its box here.
        along = makeWidget(item);
        if (!along)
            return false;
    }
    // Selecting this column tells of its date, and the new time goes out as a change of the
    // booking: whoever answers either may take the booking away, which lets go of its box.
    const QPointer<BkCalendarItemWidget> box(along);
    const auto gone = [&]() { return !box || box->item() != item; };
    if (elsewhere(cameFrom)) {
        setSelected(true);
        if (gone())
            return false;
        if (QGraphicsItem* old = cameFrom ? cameFrom->parentItem() : nullptr)
            old->setSelected(false);
        if (gone())
            return false;
        if (box->parentItem() != this) {
            // The box rewires itself to this column's width in its itemChange, and shares that width
            // from now on, as a box made here does, not the one it came with.
            box->setParentItem(this);
            if (gone())
                return false;
            box->widthChanged(mRect.width());
        }
    }
    // The booking names the box of the column it came to, as it does one made there.
    box->becomeNamed();
    item->setTime(s, e);
    if (gone())
        return false;
    // The booking takes this column's date and key in the two steps of setKeys, each of which tells
    // of the change: an answer to the first may take the booking away before the second.
    item->setDate(mDate, true);
    if (gone())
        return false;
    if (mResource.type != 0)
        item->setResourceId(mResource.id, true);
    else
        item->setUserId(mResource.id, true);
    if (gone())
        return false;
    if (item->widget)
        item->widget->update();
    return true;
}

BkCalendarItemWidget* BkCalendarColumn::boxToTakeAlong(const BkCalendarItem* item) const
{
    // The move gives the booking this column's date and its key of this column's kind, person or
    // room; its key of the other kind stays. A column of the other kind on this date therefore still
    // shows the booking after the move, and keeps its box: taken from there, the box would leave a
    // column that shows the booking, while the booking's old column of this kind would keep a box that
    // no longer belongs there. Any other box of the booking goes along, its named one first. When
    // only columns that keep their boxes show the booking, a new box is made here; a box in no column
    // at all goes along as the booking's only one.
    const bool person = mResource.type == 0;
    bool kept = false;
    for (BkCalendarItemWidget* box : BkCalendarItemWidget::boxesOf(item)) {
        const BkCalendarColumn* column = box->column();
        if (!column || box->parentItem() != column)
            continue;
        if (column->date() != mDate || (column->resource().type == 0) == person)
            return box;
        kept = true;
    }
    return kept ? nullptr : item->widget;
}

void BkCalendarColumn::move(double delta)
{
    mWidthScale += delta;
    if (mWidthScale < mMinWidth)
        mWidthScale = mMinWidth;
    updateSize();
    updateInfo();
    emit widthChanged();
    emit widthChanged(mRect.width());
    mCustomSize = true;
}

namespace {

// The saved custom widths, one "type|id|width" entry per user or resource. Without an application
// there is nothing saved.
QStringList readLayout()
{
    FwApplication* app = FwApplication::app();
    if (!app)
        return QStringList();
    return app->localValue(QLatin1String(LayoutKey), QVariant(QVariant::Int)).toStringList();
}

// Whether an entry is that of this type and id. An entry of other than three parts is nobody's;
// a part that is not a number counts as 0.
bool entryMatches(const QString& entry, const BkCalendarResource& resource, QStringList* parts = nullptr)
{
    const QStringList split = entry.split(QLatin1Char('|'), Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (split.size() != 3 || split.at(0).toInt() != resource.type ||
        split.at(1).toInt() != resource.id.toInt())
        return false;
    if (parts)
        *parts = split;
    return true;
}

} // namespace

void BkCalendarColumn::initSavedValue()
{
    if (!mHeader || !mHeader->resizable())
        return;
    const QStringList list = readLayout();
    for (const QString& entry : list) {
        QStringList parts;
        if (!entryMatches(entry, mResource, &parts))
            continue;
        // The list is kept on the user's machine and may have been edited by hand: a width that is
        // not a number, under a pixel, or wider than any widget can be, gives no width, and the walk
        // goes on to the next entry. (Under a pixel the header could not be hit to widen the column
        // again; a wider one would overflow the whole-pixel arithmetic of painting.)
        bool ok = false;
        const double width = parts.at(2).toDouble(&ok);
        if (!ok || !std::isfinite(width) || width < 1.0 || width > QWIDGETSIZE_MAX)
            continue;
        mWidthScale = width;
        mWidthType = WidthFixed;
        mCustomSize = true;
        break;
    }
}

void BkCalendarColumn::removeCustomSize()
{
    mCustomSize = false;
    QStringList list = readLayout();
    int last = -1;
    for (int i = 0; i < list.size(); ++i) {
        if (entryMatches(list.at(i), mResource))
            last = i;
    }
    // Where an entry stands twice, the first one is read and the last one removed.
    if (last >= 0)
        list.removeAt(last);
    if (FwApplication* app = FwApplication::app())
        app->setLocalValue(QLatin1String(LayoutKey), QVariant(list));
    emit widthChanged();
}

void BkCalendarColumn::setHeaderText(const QString& text)
{
    if (mHeader)
        mHeader->setText(text);
}

void BkCalendarColumn::setMinWidth(int width)
{
    mMinWidth = width;
}

void BkCalendarColumn::emitHeaderActivated()
{
    const BkCalendarNestedLoop loop;
    emit headerActivated(this, mResource);
}

void BkCalendarColumn::contextMenuEvent(QGraphicsSceneContextMenuEvent* event)
{
    if (mScale) {
        const QTime time = mScale->timeAt(event->pos().y());
        BkCalendarPlan* plan = planAt(time, QTime());
        if (plan && plan->bookable) {
            const BkCalendarNestedLoop loop;
            emit planContextMenu(event->screenPos(), plan, time);
        }
    }
    event->accept();
}

void BkCalendarColumn::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    // The host may answer the signal with another set of days or another group, for which the view
    // deletes this column.
    const QPointer<BkCalendarColumn> self(this);
    if (mScale) {
        const QTime time = mScale->timeAt(event->pos().y());
        BkCalendarPlan* plan = planAt(time, QTime());
        if (plan && plan->bookable) {
            const BkCalendarNestedLoop loop;
            emit planActivated(plan, time);
        }
    }
    if (self)
        QGraphicsItem::mouseDoubleClickEvent(event);
}

void BkCalendarColumn::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    // No test of bookable here: a right-click on a closed block still reaches the host. Its menu may
    // lead to another set of days or another group, for which the view deletes this column.
    const QPointer<BkCalendarColumn> self(this);
    if (mScale && event->button() == Qt::RightButton) {
        const QTime time = mScale->timeAt(event->pos().y());
        BkCalendarPlan* plan = planAt(time, QTime());
        if (plan) {
            const BkCalendarNestedLoop loop;
            emit planContextMenu(event->screenPos(), plan, time);
        }
    }
    if (!self)
        return;
    // Qt's release leaves only this column selected and tells the scene's listeners before it selects
    // the column once more; a host that rebuilds the grid in its answer takes the column away while
    // Qt goes on with it.
    const BkCalendarHostVisit visit;
    QGraphicsItem::mouseReleaseEvent(event);
}

void BkCalendarColumn::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mousePressEvent(event);
    if (event->button() != Qt::RightButton || event->isAccepted())
        return;
    // Qt lets a right press pass by an item that cannot move, and the release then reaches no item at
    // all. The column takes the press, so that a right-click reaches the release above; the selection
    // is cleared as Qt's scene clears it for a press that no item takes, so nothing else changes.
    if (scene() && !(event->modifiers() & Qt::ControlModifier))
        scene()->clearSelection();
    event->accept();
}

void BkCalendarColumn::dragEnterEvent(QGraphicsSceneDragDropEvent* event)
{
    const QMimeData* data = event->mimeData();
    if (data &&
        (data->hasFormat(QLatin1String(CalItemFormat)) || data->hasFormat(QLatin1String(TreeRowFormat))))
        event->accept();
    else
        event->ignore();
}

void BkCalendarColumn::dragMoveEvent(QGraphicsSceneDragDropEvent* event)
{
    event->ignore();
    const QMimeData* data = event->mimeData();
    BkCalendarItem* item = nullptr;
    if (data && mModel) {
        if (data->hasFormat(QLatin1String(CalItemFormat))) {
            int id = 0;
            if (readCalItem(data, &id))
                item = mModel->findId(QVariant(id));
        } else if (data->hasFormat(QLatin1String(TreeRowFormat))) {
            qint32 id = 0;
            FwTreeWidgetItem* row = nullptr;
            if (readMoveListRow(data, &id, &row))
                item = mModel->findId(QVariant(uint(id)));
        }
    }
    // The booking follows the pointer, live and uncommitted. A refused step is accepted all the
    // same, so that the drop comes and commits the last good place.
    if (item) {
        if (mScale)
            tryToMoveItem(item, mScale->timeAt(event->pos().y()));
        event->accept();
    }
    QGraphicsItem::dragMoveEvent(event);
}

void BkCalendarColumn::dropEvent(QGraphicsSceneDragDropEvent* event)
{
    // The last drag move has put the booking in place; the drop only ends the gesture.
    event->ignore();
    const QMimeData* data = event->mimeData();
    if (!data || !mModel)
        return;
    if (data->hasFormat(QLatin1String(CalItemFormat))) {
        int id = 0;
        if (!readCalItem(data, &id))
            return;
        BkCalendarItem* item = mModel->findId(QVariant(id));
        if (!item)
            return;
        QMessageBox::StandardButton answer = QMessageBox::Yes;
        QPointer<BkCalendarModel> model(mModel);
        // The check may ask the host for the resource's day, and the question runs a loop of its
        // own: in either the booking may have left the model, and then the drop ends nothing.
        const auto stillThere = [&]() { return model && model->findId(QVariant(id)) == item; };
        const bool booked = isResourceBooked(item);
        if (!stillThere())
            return;
        if (booked) {
            const BkCalendarNestedLoop loop;
            answer = FwMessageBox::question(event->widget(), tr("Resource booked double"),
                                            tr("Do you want to make a double booked resource ?"),
                                            QMessageBox::Yes, QMessageBox::No, QStringList());
            if (!stillThere())
                return;
        }
        if (answer == QMessageBox::No)
            item->rollback();
        else
            item->commit(false);
        event->accept();
    } else if (data->hasFormat(QLatin1String(TreeRowFormat))) {
        qint32 id = 0;
        FwTreeWidgetItem* row = nullptr;
        if (!readMoveListRow(data, &id, &row))
            return;
        BkCalendarItem* item = mModel->findId(QVariant(uint(id)));
        if (!item)
            return;
        // No question on this road, and the event stays ignored. The row is one found alive in
        // this application, so deleting it takes it out of its list and nothing else.
        item->commit(false);
        delete row;
    }
}

// The booking stays in the column that it entered last; only leaving the scene takes it back.
void BkCalendarColumn::dragLeaveEvent(QGraphicsSceneDragDropEvent* event)
{
    Q_UNUSED(event)
}

void BkCalendarColumn::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    Q_UNUSED(widget)
    if (!mScale || !mScheme)
        return;
    const double t = double(mScale->topMargin());
    const QRectF body(0, mRect.y() + t, mRect.width() - 1.0, mRect.height() - (mRect.y() + t));
    const QRectF band(mRect.x(), mRect.y(), mRect.width(), t);

    // Painting is what carries the selection of the column, or of one of its boxes, to the header.
    const bool selected = (option && (option->state & QStyle::State_Selected)) || isChildSelected();
    painter->setPen(selected ? mScheme->selectedFrame : mScheme->frame);
    if (mHeader)
        mHeader->setSelected(selected);

    painter->setBrush(QBrush(Qt::white));
    painter->drawRect(body);
    painter->setBrush(QBrush(mScheme->hourLine));
    painter->drawRect(band);
    paintLines(painter);
    paintPlan(painter);
}

void BkCalendarColumn::paintLines(QPainter* painter)
{
    if (!mScale || !mScheme)
        return;
    const int n = mScale->loops();
    const int step = mScale->timeSteps();
    const double m = double(mScale->minuteHeight());
    const double t = double(mScale->topMargin());
    const double w = mRect.width();

    painter->setPen(mScheme->hourLine);
    QTime time = mScale->start().addSecs(step * 60);
    for (int i = 1; i < n; ++i) {
        const double y = double(step * i) * m + t;
        if (mScale->hourAligned()) {
            painter->setPen(time.minute() == 0 ? mScheme->hourLine : mScheme->stepLine);
            time = time.addSecs(step * 60);
        }
        BkCalendarPainting::drawRowLine(painter, 0, int(y), int(w));
    }
}

void BkCalendarColumn::paintPlan(QPainter* painter)
{
    for (BkCalendarPlan* plan : qAsConst(mPlans)) {
        const QRectF r = plan->rect;
        QString label;
        if (plan->infoId == -1) {
            painter->setBrush(QBrush(Qt::green));
        } else {
            const BkCalendarPlanInfo info =
                mModel ? mModel->planInfo(QVariant(plan->infoId)) : BkCalendarPlanInfo();
            painter->setBrush(QBrush(info.color));
            label = info.label;
        }
        painter->setPen(Qt::NoPen);
        painter->drawRect(r);

        if (!plan->bookable) {
            // Closed time is hatched.
            QColor hatch(Qt::red);
            hatch.setAlpha(50);
            painter->setBrush(QBrush(hatch, Qt::BDiagPattern));
            painter->drawRect(r);
        }

        if (plan->infoId != -1) {
            painter->setPen(Qt::gray);
            const int university =
                FwApplication::app() ? FwApplication::app()->getValue("gst_university", "").toInt() : 0;
            const double advance = mScale ? double(mScale->minuteHeight()) * mScale->timeSteps() : 0.0;
            // The label repeats once per time step down the block; a scale without height per step
            // would never reach the block's foot, so it gets the label once.
            if (university == 1 && advance > 0.0) {
                QRectF part = r;
                double y = part.top();
                while (y < r.y() + r.height()) {
                    painter->drawText(part, Qt::AlignLeft | Qt::AlignTop, label);
                    y += advance;
                    part.setTop(y);
                }
            } else {
                painter->drawText(r, Qt::AlignLeft | Qt::AlignTop, label);
            }
        }
    }
}
