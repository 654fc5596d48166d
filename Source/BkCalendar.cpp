#include "BkCalendar.h"

#include "BkCalendarClock.h"
#include "BkCalendarHeader.h"
#include "BkCalendarItem.h"
#include "BkCalendarItemKind.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarList.h"
#include "BkCalendarModel.h"
#include "BkCalendarNestedLoop.h"
#include "BkCalendarScene.h"
#include "BkCalendarView.h"
#include "ui_BkCalendar.h"

#include <FwApplication.h>
#include <FwDatePicker.h>
#include <FwEnums.h>
#include <FwMainWindow.h>
#include <FwMenu.h>
#include <FwMenuBar.h>
#include <FwToolBar.h>
#include <FwTreeWidget.h>
#include <FwTreeWidgetItem.h>
#include <SQLDatabase.h>
#include <SQLQuery.h>

#include <QAction>
#include <QActionGroup>
#include <QCalendarWidget>
#include <QDataStream>
#include <QDockWidget>
#include <QDrag>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMetaMethod>
#include <QMimeData>
#include <QPersistentModelIndex>
#include <QPointer>

namespace {
const char CalItemFormat[] = "text/calitem";

// Holds the form's deferred deletion back while a loop nested in the calendar's handling of an event
// runs (see BkCalendarNestedLoop).
class DeletionHold : public QObject
{
public:
    explicit DeletionHold(QObject* parent)
        : QObject(parent)
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::DeferredDelete || !BkCalendarNestedLoop::running())
            return false;
        BkCalendarNestedLoop::deleteAfterwards(watched);
        return true;
    }
};
} // namespace

BkCalendar::BkCalendar(QWidget* parent, int flags)
    : FwForm(parent)
    , mResources()
    , mUi(new Ui::BkCalendar)
{
    mUi->setupUi(this);
    installEventFilter(new DeletionHold(this));

    mDatePicker = nullptr;
    mShowType = Show1Day;
    mModel = new BkCalendarModel();
    mFlags = flags;
    mMinWidth = 300;
    mKeysEnabled = true;
    mOverview = false;

    mUi->cal->setModel(mModel);
    mUi->cal->setDate(BkCalendarClock::currentDate());
    if (!(mFlags & NoDocks)) {
        setupDock();
        mList->setDate(BkCalendarClock::currentDate());
    }
    setupActions();
    if (!(mFlags & NoDocks))
        connectDocks();

    // The view lets the host see its columns before a load request only when someone hears it here.
    mModel->setLoadRelay(connect(mModel, &BkCalendarModel::loadData, this, &BkCalendar::loadData), [this] {
        return isSignalConnected(QMetaMethod::fromSignal(&BkCalendar::loadData));
    });
    connect(mModel, &BkCalendarModel::saveItems, this, &BkCalendar::saveItems);
    connect(mUi->cal, &BkCalendarView::itemActivated, this, &BkCalendar::itemActivated);
    connect(mUi->cal, &BkCalendarView::planActivated, this, &BkCalendar::planActivated);
    connect(mUi->cal, &BkCalendarView::itemContextMenu, this, &BkCalendar::itemContextMenu);
    connect(mUi->cal, &BkCalendarView::planContextMenu, this, &BkCalendar::planContextMenu);
    connect(mUi->cal, &BkCalendarView::dateSelected, this, &BkCalendar::dateSelected);
    connect(mUi->cal, &BkCalendarView::dateSelected, this, &BkCalendar::dateChanged);
    connect(mUi->cal, &BkCalendarView::resourceSelected, this, &BkCalendar::resourceSelected);
    connect(mUi->cal->scene(), &QGraphicsScene::selectionChanged, this, &BkCalendar::selectionChanged);
}

BkCalendar::~BkCalendar()
{
    // The view and its scene go with the form's children, after this body: their teardown deselects
    // items and must not reach the form's signals and slots once the form itself is gone.
    disconnect(mUi->cal->scene(), nullptr, this, nullptr);
    disconnect(mUi->cal, nullptr, this, nullptr);
    // Nor may they reach a host that listens to them itself: it would act on bookings and a model that
    // are gone by then.
    mUi->cal->scene()->blockSignals(true);
    mUi->cal->blockSignals(true);
    // Docks that hang in the main window are its children by now: they go with the form, or they
    // would stay on show there with nothing behind them.
    reclaimDocks();
    // The bookings go with the model; what is unsaved at this moment is lost. Each booking clears its
    // boxes' pointers to it as it goes, and the view goes with the form's children.
    delete mModel;
    mModel = nullptr;
    delete mUi;
}

BkCalendarView* BkCalendar::view() const
{
    return mUi->cal;
}

void BkCalendar::setupDock()
{
    mDateDock = new QDockWidget(tr("Date Picker"), this);
    mDateDock->setObjectName(QStringLiteral("DateDock-DockWidget"));
    mDatePicker = new QCalendarWidget(this);
    mDateDock->setWidget(mDatePicker);
    mDateDock->setObjectName(QStringLiteral("Date Picker"));
    mDatePicker->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

    mList = new BkCalendarList(this);
    mListDock = new QDockWidget(tr("Job List"), this);
    mListDock->setObjectName(QStringLiteral("ListDock-DockWidget"));
    mListDock->setWidget(mList);
    mListDock->setObjectName(QStringLiteral("Job List"));

    mMoveDock = new QDockWidget(tr("Move List"), this);
    mMoveDock->setObjectName(QStringLiteral("MoveListDock-DockWidget"));
    mMoveDock->setObjectName(QStringLiteral("Move List"));
    auto* tree = new FwTreeWidget(mMoveDock);
    initMoveList(tree);
    mMoveDock->setWidget(tree);
    tree->setObjectName(QStringLiteral("mMoveListDock"));

    mList->setCalendarModel(mModel);
    mList->updateModel();
    mList->setDate(BkCalendarClock::currentDate());
}

void BkCalendar::connectDocks()
{
    // A click in the picker goes straight to the view and the list, not through the form's setDate.
    connect(mDatePicker, &QCalendarWidget::clicked, mList, &BkCalendarList::setDate);
    connect(mDatePicker, &QCalendarWidget::clicked, mUi->cal, &BkCalendarView::setDate);
    connect(mUi->cal, &BkCalendarView::dateSelected, mList, &BkCalendarList::setDate);
}

// Brings the docks back among the form's own children, hidden, from wherever a main window keeps them.
void BkCalendar::reclaimDocks()
{
    for (QDockWidget* dock : {mDateDock, mListDock, mMoveDock}) {
        if (!dock || dock->parentWidget() == this)
            continue;
        if (auto* window = qobject_cast<QMainWindow*>(dock->parentWidget()))
            window->removeDockWidget(dock);
        dock->hide();
        dock->setParent(this);
    }
}

void BkCalendar::setupActions()
{
    auto make = [this](const char* icon, const char* text, const char* tip, const char* shortcut,
                       void (BkCalendar::*slot)()) {
        auto* action = new QAction(QIcon(QLatin1String(icon)), tr(text), this);
        action->setStatusTip(tr(tip));
        action->setShortcut(QKeySequence(tr(shortcut)));
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    mAction1Day = make(":/calendar/1day.png", "1 Day", "Show 1 days calendar for the current user", "Ctrl+1",
                       &BkCalendar::show1Day);
    mAction5Day = make(":/calendar/5days.png", "5 Days", "Show 5 day calendar for the current user", "Ctrl+5",
                       &BkCalendar::show5Day);
    mAction7Day = make(":/calendar/7days.png", "7 Days", "Show 7 days calendar for the current user",
                       "Ctrl+7", &BkCalendar::show7Day);
    mActionMonth = make(":/calendar/month.png", "Month", "Show month days calendar for the current user",
                        "Ctrl+M", &BkCalendar::showMonth);
    mActionGroup =
        make(":/calendar/calgroup.png", "Group", "Show the group calendar", "Ctrl+R", &BkCalendar::showGroup);

    mShowGroup = new QActionGroup(this);
    for (QAction* action : {mAction1Day, mAction5Day, mAction7Day, mActionMonth, mActionGroup})
        mShowGroup->addAction(action);
}

void BkCalendar::setFlags(int flags)
{
    mFlags = flags;
    if (mFlags & NoDocks)
        return;
    // Meant to be called once on a form built without docks; every call makes a new set.
    setupDock();
    mList->setDate(BkCalendarClock::currentDate());
    connectDocks();
}

QList<QAction*> BkCalendar::offeredActions() const
{
    QList<QAction*> actions;
    const QList<QPair<int, QAction*>> table{{Show1Day, mAction1Day},
                                            {Show5Day, mAction5Day},
                                            {Show7Day, mAction7Day},
                                            {ShowMonth, mActionMonth},
                                            {ShowGroup, mActionGroup}};
    for (const auto& entry : table)
        if (mFlags & entry.first)
            actions << entry.second;
    return actions;
}

bool BkCalendar::open(FwFormPrivate* priv)
{
    if (!(mFlags & NoDocks)) {
        if (FwMainWindow* window = FwMainWindow::wnd()) {
            window->addDockWidget(Qt::RightDockWidgetArea, mDateDock);
            window->addDockWidget(Qt::RightDockWidgetArea, mListDock);
            window->addDockWidget(Qt::RightDockWidgetArea, mMoveDock);
            // The window now owns the docks; a window that goes before the form would take them along.
            disconnect(mWindowWatch);
            mWindowWatch = connect(window, &QObject::destroyed, this, [this] { reclaimDocks(); });
        }
        mDateDock->show();
        mListDock->show();
        mMoveDock->show();
    }
    FwForm::open(priv);
    return FwForm::open(nullptr);
}

bool BkCalendar::close()
{
    if (!(mFlags & NoDocks)) {
        for (QDockWidget* dock : {mDateDock, mListDock, mMoveDock}) {
            if (FwMainWindow* window = FwMainWindow::wnd())
                window->removeDockWidget(dock);
            dock->hide();
            // Hidden, but the form's again: they go with the form and outlive the window.
            dock->setParent(this);
        }
        disconnect(mWindowWatch);
    }
    mUi->cal->ensureVisible(QRectF(0, 0, 1, 1), 50, 50);
    return FwForm::close();
}

void BkCalendar::opened() {}

bool BkCalendar::setupToolBar(FwToolBar* toolBar)
{
    QMacNativeToolBar* bar = toolBar;
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (QAction* action : offeredActions())
        bar->addAction(action);
    return true;
}

bool BkCalendar::setupMenuBar(FwMenuBar* menuBar)
{
    auto* calendars = new FwMenu(tr("Calendars"), menuBar);
    for (QAction* action : offeredActions())
        calendars->addAction(action);
    menuBar->addMenu(calendars);
    if (mFlags & NoDocks)
        return true;
    auto* views = new FwMenu(tr("Views"), menuBar);
    views->addAction(mDateDock->toggleViewAction());
    views->addAction(mListDock->toggleViewAction());
    views->addAction(mMoveDock->toggleViewAction());
    menuBar->addMenu(views);
    return true;
}

BkCalendarColorScheme BkCalendar::scheme() const
{
    return *mUi->cal->colorScheme();
}

QDate BkCalendar::date() const
{
    return mUi->cal->date();
}

QDate BkCalendar::selectedDate() const
{
    return mDatePicker ? mDatePicker->selectedDate() : QDate();
}

BkCalendarItem* BkCalendar::selectedItem() const
{
    for (QGraphicsItem* item : mUi->cal->selectedItems()) {
        if (item && item->type() == QGraphicsItem::UserType + 1)
            return static_cast<BkCalendarItemWidget*>(item)->item();
    }
    return nullptr;
}

void BkCalendar::clear()
{
    mModel->clear();
}

void BkCalendar::setRaise(BkCalendarColumn::Raise raise)
{
    mUi->cal->setRaise(raise);
}

void BkCalendar::setMinuteHeight(double height)
{
    mUi->cal->setMinuteHeight(height);
}

void BkCalendar::setTimeSteps(int minutes)
{
    mUi->cal->setTimeSteps(minutes);
}

void BkCalendar::setInterval(QTime start, QTime end)
{
    mUi->cal->setInterval(start, end);
}

void BkCalendar::setResource(BkCalendarResource resource)
{
    mUi->cal->setResource(resource);
    if (!(mFlags & NoDocks))
        mList->setResource(resource);
}

void BkCalendar::setResourceList(QList<BkCalendarResource> resources)
{
    mResources = resources;
    if (mShowType == ShowGroup)
        showGroup();
}

void BkCalendar::setMinWidth(int width)
{
    mMinWidth = width;
    if (mShowType == ShowGroup)
        showGroup();
}

void BkCalendar::setToolTipsEnabled(bool enabled)
{
    mModel->setToolTipsEnabled(enabled);
}

BkCalendarColumn* BkCalendar::getSelectedColumn() const
{
    return mUi->cal->getSelectedColumn();
}

void BkCalendar::focusCalendar()
{
    mUi->cal->setFocus(Qt::OtherFocusReason);
}

void BkCalendar::setDate(QDate date)
{
    mUi->cal->setDate(date);
    if (mShowType == ShowGroup && FwApplication::app() &&
        FwApplication::app()->getValue(QStringLiteral("set_hideempty"), QString()).toInt() == 1)
        // Who has a schedule depends on the day: the group is built anew.
        showGroup();
    emit dateChanged(date);
}

void BkCalendar::refresh()
{
    setDate(date());
}

// The last step of the days' show operations, which end with setDays or setWidthType: both end with the
// view's sizing, which updates every column, and nothing runs between it and here. Updating the columns
// again would make the same boxes a second time; only the scene's rectangle may have to follow the
// headers, which the sizing's scroll can move.
void BkCalendar::finishDays()
{
    mUi->cal->fitSceneRect();
}

// The show operations differ in their steps on purpose; hosts rely on each order.
void BkCalendar::show1Day()
{
    detectResource();
    mShowType = Show1Day;
    mUi->cal->setWidthType(WidthProportional);
    mUi->cal->setDays(1);
    finishDays();
    emit showResourceInfo();
}

void BkCalendar::show5Day()
{
    detectResource();
    mShowType = Show5Day;
    mUi->cal->setWidthType(WidthProportional);
    mUi->cal->setDays(5);
    finishDays();
    emit showResourceInfo();
}

void BkCalendar::show7Day()
{
    detectResource();
    mShowType = Show7Day;
    mUi->cal->setDays(7);
    mUi->cal->setWidthType(WidthProportional);
    finishDays();
    emit showResourceInfo();
}

void BkCalendar::showMonth()
{
    // The view keeps the days it has.
    detectResource();
    mShowType = ShowMonth;
    mUi->cal->updateWidgets();
    emit showResourceInfo();
}

void BkCalendar::showGroup()
{
    detectResource();
    mShowType = ShowGroup;
    mUi->cal->setResources(mResources);
    mUi->cal->setMinWidth(mMinWidth);
    mUi->cal->setWidthType(WidthProportional);
    emit hideResourceInfo();
    // setWidthType ends with the view's sizing, which has just updated every column. Only a slot of
    // hideResourceInfo can have changed anything since; without one, the update would make the same
    // boxes a second time.
    if (isSignalConnected(QMetaMethod::fromSignal(&BkCalendar::hideResourceInfo)))
        mUi->cal->updateWidgets();
    else
        mUi->cal->fitSceneRect();
}

void BkCalendar::overview()
{
    if (!mOverview) {
        mSavedMinWidth = mMinWidth;
        mSavedMinuteHeight = mUi->cal->minuteHeight();
        mUi->cal->setMinuteHeight(1.0);
        mMinWidth = 10;
    } else {
        mMinWidth = mSavedMinWidth;
        mUi->cal->setMinuteHeight(mSavedMinuteHeight);
    }
    if (mShowType == ShowGroup)
        showGroup();
    mOverview = !mOverview;
}

void BkCalendar::jumpTo()
{
    // The picker runs a loop of its own, in which the host may take the form down, and the picker,
    // its child, with it.
    const QPointer<BkCalendar> self(this);
    const QPointer<FwDatePicker> picker(new FwDatePicker(this, Qt::WindowFlags()));
    int result = 0;
    {
        const BkCalendarNestedLoop loop;
        result = picker->exec();
    }
    if (!self)
        return;
    if (result == 1 && picker) {
        const QDate date = picker->date();
        setDate(date);
        if (mDatePicker)
            mDatePicker->setSelectedDate(date);
        emit dateSelected(mUi->cal->date());
    }
    delete picker;
}

void BkCalendar::jumpToToday()
{
    const QDate today = BkCalendarClock::currentDate();
    setDate(today);
    if (mDatePicker)
        mDatePicker->setSelectedDate(today);
    emit dateSelected(mUi->cal->date());
}

void BkCalendar::stepDay(int days)
{
    const QDate date = mUi->cal->date().addDays(days);
    setDate(date);
    // With a picker the picker shows the day; without one the signal tells the host.
    if (mDatePicker)
        mDatePicker->setSelectedDate(date);
    else
        emit dateSelected(date);
}

void BkCalendar::setKeysEnabled(bool enabled)
{
    // Kept for hosts that call it; the keys work whatever it holds.
    mKeysEnabled = enabled;
}

void BkCalendar::keyPressEvent(QKeyEvent* event)
{
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    BkCalendarColumn* column = mUi->cal->getSelectedColumn();
    switch (event->key()) {
    case Qt::Key_V:
        if (ctrl)
            moveFromList();
        break;
    case Qt::Key_X:
        // A host that hears the row come may lay the columns anew: the step goes on in the column
        // selected once the booking is parked.
        if (ctrl && addToMoveList(selectedItem())) {
            if (BkCalendarColumn* selected = mUi->cal->getSelectedColumn())
                selected->selectNextItem();
        }
        break;
    case Qt::Key_Escape:
        if (!column)
            return;
        selectColumn(column, false);
        break;
    case Qt::Key_Left:
        if (ctrl) {
            selectPreviousColumn();
            return;
        }
        break;
    case Qt::Key_Up:
        if (ctrl && column)
            column->selectPreviousItem();
        break;
    case Qt::Key_Right:
        if (ctrl) {
            selectNextColumn();
            return;
        }
        break;
    case Qt::Key_Down:
        if (ctrl && column)
            column->selectNextItem();
        break;
    case Qt::Key_PageUp:
        if (ctrl)
            stepDay(-1);
        break;
    case Qt::Key_PageDown:
        if (ctrl)
            stepDay(1);
        break;
    default:
        event->ignore();
        break;
    }
    FwForm::keyPressEvent(event);
}

void BkCalendar::selectColumn(BkCalendarColumn* column, bool bringIntoSight)
{
    QGraphicsScene* scene = mUi->cal->scene();
    const QPointer<BkCalendarColumn> target(column);
    scene->clearFocus();
    scene->clearSelection();
    // The host hears the selection go and may lay the columns anew in its answer; the column is gone
    // then, and what the host made stands.
    if (!target || !mUi->cal->getColumnList().contains(column))
        return;
    column->setFocus(Qt::OtherFocusReason);
    column->setSelected(true);
    if (bringIntoSight)
        column->ensureVisible(QRectF(), 50, -700);
}

void BkCalendar::selectNextColumn()
{
    const QList<BkCalendarColumn*> columns = mUi->cal->getColumnList();
    if (columns.isEmpty())
        return;
    const int at = columns.indexOf(mUi->cal->getSelectedColumn());
    const int target = at < 0 || at + 1 >= columns.count() ? 0 : at + 1;
    selectColumn(columns.at(target), true);
}

void BkCalendar::selectPreviousColumn()
{
    const QList<BkCalendarColumn*> columns = mUi->cal->getColumnList();
    if (columns.isEmpty())
        return;
    const int at = columns.indexOf(mUi->cal->getSelectedColumn());
    const int target = at > 0 ? at - 1 : columns.count() - 1;
    selectColumn(columns.at(target), true);
}

QDateTime BkCalendar::now()
{
    SQLQuery query{QString(), SQLDatabase()};
    if (query.exec(QStringLiteral("SELECT CURRENT_TIMESTAMP")) && query.next())
        return query.value(0).toDateTime();
    return QDateTime();
}

void BkCalendar::detectResource()
{
    BkCalendarResource resource;
    if (mShowType != ShowGroup)
        return;

    bool found = false;
    // A later column or header wins over an earlier one; a booking counts only before any of them.
    for (QGraphicsItem* item : mUi->cal->selectedItems()) {
        if (!item)
            continue;
        switch (item->data(ItemKindRole).toInt()) {
        case ItemKindColumn:
            resource = static_cast<BkCalendarColumn*>(item)->resource();
            found = true;
            break;
        case ItemKindHeader:
            if (BkCalendarColumn* column = static_cast<BkCalendarHeader*>(item)->column()) {
                resource = column->resource();
                found = true;
            }
            break;
        case ItemKindItemWidget:
            if (found)
                break;
            for (QGraphicsItem* parent = item->parentItem(); parent; parent = parent->parentItem()) {
                if (parent->data(ItemKindRole).toInt() == ItemKindColumn) {
                    resource = static_cast<BkCalendarColumn*>(parent)->resource();
                    found = true;
                    break;
                }
            }
            break;
        default:
            break;
        }
    }

    if (!found) {
        // Nothing useful selected: the logged-in user.
        const QVariant user = FwMainWindow::wnd() ? FwMainWindow::wnd()->userId() : QVariant();
        resource = BkCalendarResource(user, QString(), 0);
    }
    if (!resource.id.isNull() && resource.id.toInt() != -1)
        mUi->cal->setResource(resource);
}

FwTreeWidget* BkCalendar::moveList() const
{
    return mMoveList;
}

void BkCalendar::initMoveList(FwTreeWidget* tree)
{
    mMoveList = tree;
    mMoveList->setAcceptDrops(true);
    mMoveList->setAcceptDrag(true);
    mMoveList->setHeaders(tr("Start,End,Title"));
    mMoveList->setHeaderSizes(QStringLiteral("50,50,100%"));
    connect(mMoveList, &FwTreeWidget::dataDropped, this, &BkCalendar::moveListDataDropped);
    connect(mMoveList, &FwTreeWidget::dragStarted, this, &BkCalendar::moveListDragStarted);
}

bool BkCalendar::addToMoveList(BkCalendarItem* item)
{
    // A form without docks has no list; the keys that reach here then do nothing.
    if (!item || !mMoveList)
        return false;
    // A row that is no row of the list's kind, put there by someone else, names no parked booking.
    for (int i = 0; i < mMoveList->topLevelItemCount(); ++i) {
        const FwTreeWidgetItem* row = mMoveList->topLevelItem(i);
        if (row && row->data(0, IdRole) == item->id)
            return true;
    }
    auto* row = new FwTreeWidgetItem(mMoveList);
    row->setData(0, IdRole, item->id);
    row->setText(0, item->start().toString(Qt::TextDate));
    row->setText(1, item->end().toString(Qt::TextDate));
    row->setText(2, item->title());
    return true;
}

bool BkCalendar::addSelectedItemToMoveList()
{
    return addToMoveList(selectedItem());
}

void BkCalendar::moveFromList()
{
    if (!mMoveList)
        return;
    // A stack: the last row parked is the first one taken.
    const int last = mMoveList->topLevelItemCount() - 1;
    FwTreeWidgetItem* row = mMoveList->topLevelItem(last);
    if (!row)
        return;
    const int id = row->data(0, IdRole).toInt();
    BkCalendarItem* item = mModel->findId(id);
    if (!item)
        return;
    // The host hears the move and the selection below and may change the list or the bookings in
    // its slots: the row is followed through the list's model, the booking through its id.
    const QPersistentModelIndex rowIndex(mMoveList->model()->index(last, 0));
    const QPointer<BkCalendarColumn> column(mUi->cal->getSelectedColumn());
    if (!column || !column->tryToMoveItem(item, item->start()))
        return;
    item->commit(false);
    QGraphicsScene* scene = mUi->cal->scene();
    scene->clearFocus();
    scene->clearSelection();
    // The box in the column the booking came to: a booking that two columns show has one in each.
    if (mModel->findId(id) == item && column) {
        if (BkCalendarItemWidget* box = column->boxOf(item)) {
            const QPointer<BkCalendarItemWidget> held(box);
            box->setFocus(Qt::OtherFocusReason);
            if (held && held->item() == item)
                held->setSelected(true);
        }
    }
    delete mMoveList->item(rowIndex);
}

void BkCalendar::moveListDataDropped(QDropEvent* event)
{
    event->ignore();
    const QMimeData* data = event->mimeData();
    if (!data || !data->hasFormat(QLatin1String(CalItemFormat)))
        return;
    // The id as decimal text; anything else comes from elsewhere and is not ours.
    bool ok = false;
    const int id = data->data(QLatin1String(CalItemFormat)).toInt(&ok, 10);
    if (!ok)
        return;
    BkCalendarItem* item = mModel->findId(QVariant(id));
    if (!item)
        return;
    addToMoveList(item);
    event->accept();
}

void BkCalendar::moveListDragStarted(QString format, QPoint pos)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    FwTreeWidgetItem* row = mMoveList->itemAt(pos);
    if (!row)
        return;
    // The booking's id and the row, which the column that takes the drop removes.
    stream << qint32(row->data(0, IdRole).toInt()) << qint64(reinterpret_cast<quintptr>(row));
    auto* drag = new QDrag(this);
    auto* data = new QMimeData;
    data->setData(format, bytes);
    drag->setMimeData(data);
    const BkCalendarNestedLoop loop;
    drag->exec(Qt::MoveAction);
}
