#include "BkCalendarView.h"

#include "BkCalendarClock.h"
#include "BkCalendarHostVisit.h"
#include "BkCalendarInfoWidget.h"
#include "BkCalendarModel.h"
#include "BkCalendarScene.h"
#include "BkCalendarTimeScale.h"
#include "BkCalendarUserList.h"

#include <FwApplication.h>
#include <FwLog.h>
#include <SQLDatabase.h>
#include <SQLQuery.h>

#include <QKeyEvent>
#include <QResizeEvent>
#include <QScrollBar>
#include <QStringList>
#include <QTimer>

#include <cmath>
#include <limits>
#include <utility>

namespace {

// The id of a status row as an int, when it is one. A floating-point id counts only as a whole number:
// rounded, a fraction would take another status's place, and converting an infinite or far too large
// one to an integer is undefined.
bool readStatusId(const QVariant& value, int* id)
{
    const int type = value.userType();
    if (type == QMetaType::Double || type == QMetaType::Float) {
        const double number = value.toDouble();
        if (!std::isfinite(number) || std::trunc(number) != number ||
            number < double(std::numeric_limits<int>::min()) ||
            number > double(std::numeric_limits<int>::max()))
            return false;
        *id = int(number);
        return true;
    }
    bool ok = false;
    const qlonglong whole = value.toLongLong(&ok);
    if (!ok || whole < std::numeric_limits<int>::min() || whole > std::numeric_limits<int>::max())
        return false;
    *id = int(whole);
    return true;
}

// Runs `step` on each column of `live`, from the left. A change of selection or a load request lets the
// host in; false when its answer has rebuilt the columns: its build is complete, and the rest of the old
// columns is left alone.
template <typename Step> bool forEachColumn(const QList<BkCalendarColumn*>& live, Step step)
{
    const QList<BkCalendarColumn*> columns = live;
    for (BkCalendarColumn* column : columns) {
        step(column);
        if (live != columns)
            return false;
    }
    return true;
}

// Selects the columns of `live` for which `wanted` holds and deselects the others, from the left.
template <typename Wanted> bool selectColumns(const QList<BkCalendarColumn*>& live, Wanted wanted)
{
    return forEachColumn(live, [&wanted](BkCalendarColumn* column) { column->setSelected(wanted(column)); });
}

} // namespace

BkCalendarView::BkCalendarView(QWidget* parent)
    : QGraphicsView(parent)
    , mModel(nullptr)
    , mScale(nullptr)
    , mInfo(nullptr)
    , mDayMode(1)
    , mScene(nullptr)
    , mDate()
    , mSelectedDate()
    , mResource()
    , mMinWidth(100.0)
    , mWidthType(WidthProportional)
    , mWeekStart(Qt::Monday)
    // setDays reads it before any host has had a say: the first kind, a short box grows on a click.
    , mRaise(BkCalendarColumn::RaiseOnClick)
    , mScrollDx(0)
    , mColumns()
    , mScheme()
{
    mScene = new BkCalendarScene();
    // The boxes are rebuilt at every change of date or width and move under the pointer: keeping a
    // spatial index up to date costs more than walking a few thousand items when painting.
    mScene->setItemIndexMethod(QGraphicsScene::NoIndex);
    setScene(mScene);
    setDate(BkCalendarClock::currentDate());
    setAlignment(Qt::AlignLeft | Qt::AlignTop);

    // The calendar's working look: 06:00 to 20:00 in quarters, one and a half units a minute.
    mScale = new BkCalendarTimeScale(nullptr);
    mScale->setInterval(QTime(6, 0), QTime(20, 0));
    mScale->setTimeSteps(15);
    mScale->setMinuteHeight(1.5f);
    mScale->setTopMargin(50.0f);
    mScale->setZValue(50.0);
    connect(mScale, &BkCalendarTimeScale::updated, this, &BkCalendarView::updateWidgets);
    mScene->addItem(mScale);

    setDays(1);
    loadCalendarStatus();
}

BkCalendarView::~BkCalendarView()
{
    // The scene takes the columns, the scale and the info widget with it.
    mColumns.clear();
    mInfo = nullptr;
    mScale = nullptr;
    delete mScene;
}

void BkCalendarView::setModel(BkCalendarModel* model)
{
    mModel = model;
    mScene->setModel(model);
    forEachColumn(mColumns, [model](BkCalendarColumn* column) { column->setModel(model); });
}

QList<QGraphicsItem*> BkCalendarView::selectedItems() const
{
    return mScene->selectedItems();
}

BkCalendarColumn* BkCalendarView::getSelectedColumn() const
{
    for (BkCalendarColumn* column : mColumns)
        if (column->isSelected())
            return column;
    return nullptr;
}

void BkCalendarView::setRaise(BkCalendarColumn::Raise raise)
{
    mRaise = raise;
    for (BkCalendarColumn* column : qAsConst(mColumns))
        column->setRaise(raise);
}

bool BkCalendarView::deleteColumns()
{
    const quint64 build = ++mBuilds;
    if (mColumnInSetUp)
        BkCalendarColumn::discard(std::exchange(mColumnInSetUp, nullptr));
    // A selected column or box that goes tells the host at once; should its answer build columns of
    // its own, those stand, and the caller's build ends here.
    while (!mColumns.isEmpty()) {
        BkCalendarColumn::discard(mColumns.takeLast());
        if (mBuilds != build)
            return false;
    }
    return true;
}

void BkCalendarView::relayColumn(BkCalendarColumn* column)
{
    connect(column, &BkCalendarColumn::dateSelected, this, &BkCalendarView::dateSelected);
    connect(column, &BkCalendarColumn::itemActivated, this, &BkCalendarView::itemActivated);
    connect(column, &BkCalendarColumn::planActivated, this, &BkCalendarView::planActivated);
    connect(column, &BkCalendarColumn::itemContextMenu, this, &BkCalendarView::itemContextMenu);
    connect(column, &BkCalendarColumn::planContextMenu, this, &BkCalendarView::planContextMenu);
}

// The new columns were set up without boxes; the sizing rebuilds every column that shows something, and
// a column that shows nothing would have had none. Nothing outside the library runs between their set-up
// and here but the host's answer to a load request, and before one goes out the columns already listed
// get their boxes (makeBoxesBeforeLoad).
void BkCalendarView::makeDeferredBoxes()
{
    for (BkCalendarColumn* column : qAsConst(mColumns))
        column->setDeferBoxes(false);
    calculateSizes();
}

// A read of a day that the model has not loaded lets a host that listens in through its answer, and
// the host may look at the columns built so far or have them updated: they show their boxes then, as
// they would had they made them at their set-up. Only the column being set up still waits.
void BkCalendarView::makeBoxesBeforeLoad(const BkCalendarResource& resource, const QDate& date)
{
    if (!mModel || !mModel->asksHost(resource, date))
        return;
    forEachColumn(mColumns, [](BkCalendarColumn* column) {
        if (column->defersBoxes()) {
            column->setDeferBoxes(false);
            column->updateChildren();
        }
    });
}

void BkCalendarView::setDays(int days)
{
    mDayMode = 1;
    // An info widget stays: only a new group takes it away.
    if (!deleteColumns())
        return;
    // A load request lets the host in, and its answer may build columns of its own; that build is then
    // complete, and this one ends where it is.
    const quint64 build = mBuilds;

    for (int i = 0; i < days; ++i) {
        makeBoxesBeforeLoad(mResource, mDate.addDays(i));
        if (mBuilds != build)
            return;
        auto* column = new BkCalendarColumn(nullptr, false);
        mColumnInSetUp = column;
        column->setDeferBoxes(true);
        column->setRaise(mRaise);
        column->setTimeScale(mScale);
        column->init(-1.0);
        column->setColorScheme(&mScheme);
        column->update();
        column->setModel(mModel);
        column->setIndex(i);
        column->initSavedValue();
        column->setResourceMode(0);
        column->update();
        column->setDate(mDate.addDays(i));
        column->update();
        column->setResource(mResource);
        column->update();
        if (mBuilds != build)
            return;
        mColumnInSetUp = nullptr;
        column->setMinWidth(int(mMinWidth));

        connect(column, qOverload<>(&BkCalendarColumn::widthChanged), this, &BkCalendarView::calculateSizes);
        // A header double click means nothing for the days of one person.
        relayColumn(column);
        mScene->addItem(column);
        mColumns.append(column);
    }

    makeDeferredBoxes();
    if (mBuilds != build)
        return;
    if (!selectColumns(mColumns,
                       [this](const BkCalendarColumn* column) { return column->date() == mSelectedDate; }))
        return;
    resizeEvent(nullptr);
}

void BkCalendarView::setResources(QList<BkCalendarResource> resources)
{
    mDayMode = 0;
    if (mInfo) {
        BkCalendarHostVisit::remove(mInfo);
        mInfo = nullptr;
    }
    if (!deleteColumns())
        return;

    if (resources.isEmpty()) {
        showInfo(0);
        return;
    }

    // As in setDays, a build that the host's answer to a load request begins ends this one.
    const quint64 build = mBuilds;
    for (int i = 0; i < resources.count(); ++i) {
        const BkCalendarResource& resource = resources.at(i);
        makeBoxesBeforeLoad(resource, mDate);
        // Without a model nothing is known of the schedules, and nobody is hidden.
        const bool unplanned = mModel && mModel->plans(mDate, resource).isEmpty();
        if (mBuilds != build)
            return;
        if (unplanned && FwApplication::app() &&
            FwApplication::app()->getValue(QStringLiteral("set_hideempty"), QString()).toInt() == 1)
            continue;

        BkCalendarColumn* column = setUpGroupColumn(resource.name, resource, true);
        if (mBuilds != build)
            return;
        mColumnInSetUp = nullptr;
        // The position in the group, so that hidden members leave gaps.
        column->setIndex(i);
        column->initSavedValue();
        column->setMinWidth(int(mMinWidth));

        connect(column, &BkCalendarColumn::headerActivated, this, &BkCalendarView::headerActivated);
        connect(column, qOverload<>(&BkCalendarColumn::widthChanged), this, &BkCalendarView::calculateSizes);
        // A placeholder has nobody's dates or bookings to report.
        if (!resource.id.isNull())
            relayColumn(column);
        mScene->addItem(column);
        mColumns.append(column);
    }

    makeDeferredBoxes();
    if (mBuilds != build)
        return;
    const bool kept = selectColumns(mColumns, [this](const BkCalendarColumn* column) {
        return column->resource().type == mResource.type && column->resource().id == mResource.id;
    });
    if (!kept)
        return;
    if (!mColumns.isEmpty()) {
        resizeEvent(nullptr);
        return;
    }
    // Every member was hidden for an empty schedule.
    showInfo(1);
}

// A column of the group under `caption`, set up off the scene as every column of the group is; it is the
// column in set-up until its caller lists it. Its boxes wait for the sizing when `deferBoxes` is set.
BkCalendarColumn* BkCalendarView::setUpGroupColumn(const QString& caption, const BkCalendarResource& resource,
                                                   bool deferBoxes)
{
    auto* column = new BkCalendarColumn(nullptr, true);
    mColumnInSetUp = column;
    column->setDeferBoxes(deferBoxes);
    column->setHeaderText(caption);
    column->setRaise(mRaise);
    column->setTimeScale(mScale);
    column->init(-1.0);
    column->setResourceMode(1);
    column->update();
    column->setColorScheme(&mScheme);
    column->update();
    column->setDate(mDate);
    column->update();
    column->setResource(resource);
    column->update();
    column->setModel(mModel);
    return column;
}

void BkCalendarView::showInfo(int type)
{
    mInfo = new BkCalendarInfoWidget(type, nullptr);
    mInfo->setMargin(int(mScale->width()));
    connect(this, qOverload<int, int>(&BkCalendarView::sizeChanged), mInfo,
            &BkCalendarInfoWidget::sizeChanged);
    mScene->addItem(mInfo);
    resizeEvent(nullptr);
}

void BkCalendarView::setDate(QDate date)
{
    const qint64 offset = mDate.daysTo(date);
    mSelectedDate = date;
    if (mDayMode && offset >= 0 && offset < mColumns.count() && mDate.dayOfWeek() == mWeekStart) {
        // Already on show: only the highlight moves.
        const QList<BkCalendarColumn*> columns = mColumns;
        if (!selectColumns(mColumns, [](const BkCalendarColumn*) { return false; }))
            return;
        BkCalendarColumn* column = columns.at(int(offset));
        column->setSelected(true);
        if (mColumns == columns)
            column->setFocus(Qt::OtherFocusReason);
        return;
    }
    mDate = date;
    update();
}

void BkCalendarView::update()
{
    // A load request or a selection lets the host in. Should its answer rebuild the columns, the build
    // has dated and selected the new ones, and the rest of the old ones is left alone.
    const QList<BkCalendarColumn*> columns = mColumns;
    if (!mDayMode) {
        forEachColumn(mColumns, [this](BkCalendarColumn* column) {
            column->setDate(mDate);
            column->update();
        });
        return;
    }

    if (mColumns.count() >= 2) {
        // The week rule: a date within reach of the week start shows from the week start on. A week
        // start later in the week than the date gives a negative distance, and the range moves
        // forward to the coming week start; hosts rely on that.
        const int back = mDate.dayOfWeek() - int(mWeekStart);
        if (back < mColumns.count())
            mDate = mDate.addDays(-back);
    }

    for (int i = 0; i < columns.count(); ++i) {
        BkCalendarColumn* column = columns.at(i);
        const QDate date = mDate.addDays(i);
        column->setDate(date);
        // A column of the view's person (its id of the same type too, so that both updates read the
        // very same key) makes the same boxes at the second update. When the model has the day, no
        // load request lets the host in between, and nothing else can see the boxes of the first
        // update; so that one only asks the model for the day.
        const BkCalendarResource& shown = column->resource();
        column->setDeferBoxes(shown == mResource && shown.id.userType() == mResource.id.userType() &&
                              mModel && mModel->covers(mResource, date));
        column->update();
        if (mColumns != columns)
            return;
        column->setDeferBoxes(false);
        column->setResource(mResource);
        column->update();
        if (mColumns != columns)
            return;
        column->setSelected(date == mSelectedDate);
        if (mColumns != columns)
            return;
    }
}

void BkCalendarView::setResource(BkCalendarResource resource)
{
    mResource = resource;
    if (mDayMode) {
        forEachColumn(mColumns, [&resource](BkCalendarColumn* column) {
            column->setResource(resource);
            column->update();
        });
    }
    emit resourceSelected(resource);
}

void BkCalendarView::updateWidgets()
{
    forEachColumn(mColumns, [](BkCalendarColumn* column) { column->update(); });
    fitSceneRect();
}

void BkCalendarView::fitSceneRect()
{
    QRectF rect = mScene->itemsBoundingRect();
    rect.setLeft(0.0);
    mScene->setSceneRect(rect);
}

void BkCalendarView::loadCalendarStatus()
{
    SQLQuery query{QString(), SQLDatabase()};
    mScheme.statusColors.clear();
    if (!query.prepare(QStringLiteral("SELECT id,fw_name,fw_color FROM tbl_casestage")) || !query.exec())
        return;
    while (query.next()) {
        // A row without a numeric id cannot be told apart from status 0, and one beyond an int would
        // be cut to another status's id; such rows are left out rather than overwrite a status. A
        // colour that does not parse is kept as an invalid colour.
        int id = 0;
        if (!readStatusId(query.value(0), &id))
            continue;
        BkCalendarStatusEntry& entry = mScheme.statusColors[id];
        entry.name = query.value(1).toString();
        QColor color;
        color.setNamedColor(query.value(2).toString());
        entry.color = color;
    }
}

void BkCalendarView::keyPressEvent(QKeyEvent* event)
{
    // Plain arrows scroll or move the focused booking; everything, arrows included, goes on to the
    // form, which handles the calendar's keys.
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Down:
        if (event->modifiers() == Qt::NoModifier)
            QGraphicsView::keyPressEvent(event);
        break;
    default:
        break;
    }
    event->ignore();
}

void BkCalendarView::resizeEvent(QResizeEvent* event)
{
    const QSize size = event ? event->size() : this->size();
    int w = size.width();
    int h = size.height();
    if (verticalScrollBar()->isVisible())
        w -= verticalScrollBar()->width();
    if (horizontalScrollBar()->isVisible())
        h -= horizontalScrollBar()->height();
    emit sizeChanged(w);
    emit sizeChanged(w, h);
    calculateSizes();
}

void BkCalendarView::calculateSizes()
{
    const double widget = double(width());
    double taken = double(mScale->width() + 5.0f);
    int custom = 0;
    for (BkCalendarColumn* column : qAsConst(mColumns)) {
        if (column->customSize()) {
            taken += column->widthScale();
            ++custom;
        }
    }
    const int rest = mColumns.count() - custom;
    const bool overflow = rest * mMinWidth + taken > widget;
    mWidthType = overflow ? WidthFixed : WidthProportional;
    // With every column custom this divides by zero; the infinite width is ignored by all of them.
    const double share = overflow ? mMinWidth : (widget - taken) / rest;

    double x = 0.0;
    if (!forEachColumn(mColumns,
                       [&](BkCalendarColumn* column) { x += column->setWidthScale(share, mWidthType, x); }))
        return;

    updateWidgets();
    QRectF rect = mScene->itemsBoundingRect();
    rect.setLeft(0.0);
    QGraphicsView::setSceneRect(rect);
}

void BkCalendarView::setWidthType(WidthType type)
{
    mWidthType = type;
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // A column that takes its width may ask for its day, and the host's answer may build other
    // columns: those stand as built, and the step ends.
    bool kept = true;
    if (type == WidthFixed) {
        kept = forEachColumn(mColumns, [this](BkCalendarColumn* column) {
            column->setWidthScale(mMinWidth, WidthFixed, -1.0);
        });
    } else {
        ensureVisible(QRectF(0, 0, 1, 1), 50, 50);
        const double share = 1.0 / mColumns.count();
        kept = forEachColumn(
            mColumns, [share, type](BkCalendarColumn* column) { column->setWidthScale(share, type, -1.0); });
    }
    if (!kept)
        return;
    resizeEvent(nullptr);
}

void BkCalendarView::setWidth(double width, WidthType type)
{
    mWidthType = type;
    mMinWidth = width;
    // Unlike setWidthType, the vertical policy stays as it is.
    setHorizontalScrollBarPolicy(type == WidthFixed ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    forEachColumn(mColumns,
                  [width, type](BkCalendarColumn* column) { column->setWidthScale(width, type, -1.0); });
}

void BkCalendarView::setMinWidth(int width)
{
    // Takes effect at the next calculation; existing columns keep the drag limit they were built with.
    mMinWidth = width;
}

void BkCalendarView::setMinuteHeight(double height)
{
    mScale->setMinuteHeight(float(height));
}

double BkCalendarView::minuteHeight() const
{
    return double(mScale->minuteHeight());
}

void BkCalendarView::setTimeSteps(int minutes)
{
    // The scale lays out and paints by dividing through its step and has no guard of its own; a
    // host's step of zero or less is refused here, and the step in use stays.
    if (mScale && minutes > 0)
        mScale->setTimeSteps(minutes);
}

void BkCalendarView::setInterval(QTime start, QTime end)
{
    mScale->setInterval(start, end);
}

void BkCalendarView::setWeekStarts(Qt::DayOfWeek day)
{
    mWeekStart = day;
}

void BkCalendarView::scrollContentsBy(int dx, int dy)
{
    QGraphicsView::scrollContentsBy(dx, dy);
    if (mScale) {
        // The scale follows once the scroll is over, never from inside it; scrolls in between add up.
        mScrollDx += dx;
        QTimer::singleShot(0, this, &BkCalendarView::moveScale);
    }

    const QScrollBar* bar = verticalScrollBar();
    FwLog::log(QStringLiteral("[%1:%2] %3")
                   .arg(QStringLiteral("Source/BkCalendarView"))
                   .arg(655)
                   .arg(QStringLiteral("scrollContentsBy( %1 , %2 ) => %3,%4")
                            .arg(dx)
                            .arg(dy)
                            .arg(bar->value())
                            .arg(bar->minimum())));

    // The headers stay at the top edge of the viewport.
    const int distance = bar->value() - bar->minimum();
    for (BkCalendarColumn* column : qAsConst(mColumns))
        mScene->update(column->moveHeader(distance));
}

void BkCalendarView::moveScale()
{
    const QPointF position = mScale->pos();
    const QRectF before = mScale->sceneBoundingRect();
    mScale->setPos(position.x() - mScrollDx, position.y());
    const QRectF after = mScale->sceneBoundingRect();
    mScene->update(before | after);
    mScrollDx = 0;
}

void BkCalendarView::headerActivated(BkCalendarColumn* column, BkCalendarResource resource)
{
    if (!FwApplication::app())
        return;

    const QPointer<BkCalendarUserList> dialog(new BkCalendarUserList(this));
    dialog->setResource(resource);
    // The picker runs a loop of its own, in which the host may rebuild the group: a column that is
    // no longer ours has nobody to take the choice. The host may as well close the calendar, and
    // the picker goes with the view.
    const QPointer<BkCalendarView> self(this);
    const QPointer<BkCalendarColumn> target(column);
    const int result = dialog->exec();
    if (!self)
        return;
    if (result == QDialog::Accepted && dialog && target && mColumns.contains(column))
        takePick(column, resource, *dialog);

    delete dialog;
    resizeEvent(nullptr);
    updateWidgets();
}

// Gives the double-clicked column the picker's choice. Its update may ask the host for the picked
// person's days, and the new placeholder's set-up may ask too; should the host's answer build other
// columns, the column has gone with them, and the rest of the choice goes as well.
void BkCalendarView::takePick(BkCalendarColumn* column, const BkCalendarResource& was,
                              const BkCalendarUserList& picker)
{
    const quint64 build = mBuilds;
    if (picker.id().isNull()) {
        // Off the list first: a column that leaves the scene with its header or a box selected, or
        // with a box that has the focus, tells the host at once, and a host that builds another group
        // meanwhile finds it no longer one of ours. The group it built is not saved over.
        mColumns.removeAll(column);
        BkCalendarColumn::discard(column);
        if (mBuilds != build)
            return;
        saveGroup();
        return;
    }
    column->setHeaderText(picker.name());
    column->setResource(picker.resource());
    column->update();
    if (mBuilds != build)
        return;
    // Joined at every pick: a column picked twice reports each signal twice, as hosts know it.
    relayColumn(column);

    if (was.id.isNull()) {
        // The placeholder was filled: a new one stands behind it.
        BkCalendarColumn* placeholder = setUpGroupColumn(tr("Double click to set"), was, false);
        if (mBuilds != build)
            return;
        mColumnInSetUp = nullptr;
        connect(placeholder, qOverload<>(&BkCalendarColumn::widthChanged), this,
                &BkCalendarView::calculateSizes);
        placeholder->setMinWidth(int(mMinWidth));
        connect(placeholder, &BkCalendarColumn::headerActivated, this, &BkCalendarView::headerActivated);
        mScene->addItem(placeholder);
        mColumns.append(placeholder);
    }
    saveGroup();
}

void BkCalendarView::saveGroup()
{
    // The group as "id:type" entries; the host reads it back for the next group view.
    QStringList group;
    for (int i = 0; i < mColumns.count(); ++i) {
        BkCalendarColumn* column = mColumns.at(i);
        group << QStringLiteral("%1:%2").arg(column->resource().id.toInt()).arg(column->resource().type);
        column->setIndex(i);
        column->initSavedValue();
    }
    calculateSizes();
    FwApplication::app()->setValue(QVariant(group.join(QLatin1Char(','))),
                                   QStringLiteral("usr_bookinggrouplist"), QStringLiteral("tbl_user"));
}
