#include "DemoWindow.h"

#include "BookingDialog.h"
#include "DemoChangeCommand.h"
#include "DemoStore.h"
#include "GroupDialog.h"
#include "SettingsDialog.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarList.h>
#include <BkCalendarModel.h>
#include <BkCalendarStatus.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <FwMenuBar.h>
#include <FwMessageBox.h>
#include <FwToolBar.h>

#include <QAction>
#include <QActionGroup>
#include <QCalendarWidget>
#include <QCloseEvent>
#include <QMenu>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>

namespace {
const char GroupKey[] = "usr_bookinggrouplist";

int allShows()
{
    return BkCalendar::Show1Day | BkCalendar::Show5Day | BkCalendar::Show7Day | BkCalendar::ShowMonth |
           BkCalendar::ShowGroup;
}

// The changes of one step of the undo stack: one change, or those of a macro. The stack hands out
// its steps as const; their skip flag is not the stack's business.
QList<DemoChangeCommand*> changesOf(const QUndoCommand* step)
{
    QList<DemoChangeCommand*> changes;
    if (!step)
        return changes;
    if (const auto* change = dynamic_cast<const DemoChangeCommand*>(step))
        changes << const_cast<DemoChangeCommand*>(change);
    for (int i = 0; i < step->childCount(); ++i)
        changes << changesOf(step->child(i));
    return changes;
}

// Marks the changes of a step that failed to skip their next run, and tells whether there were any.
bool skipFailed(const QUndoCommand* step)
{
    bool failed = false;
    for (DemoChangeCommand* change : changesOf(step)) {
        if (!change->succeeded()) {
            change->skipNext();
            failed = true;
        }
    }
    return failed;
}

bool movedOnly(const DemoBookingRow& before, const DemoBookingRow& after)
{
    DemoBookingRow moved = before;
    moved.date = after.date;
    moved.userId = after.userId;
    moved.resourceId = after.resourceId;
    moved.start = after.start;
    moved.end = after.end;
    return moved == after;
}
} // namespace

DemoWindow::DemoWindow(const QVariant& userId, QWidget* parent)
    : FwMainWindow(parent)
{
    setObjectName(QStringLiteral("DemoWindow"));
    setWindowTitle(tr("FwCalendar demo: a practice calendar"));
    setUserId(userId);
    mUndo = new QUndoStack(this);

    // The calendar is set up as a host embeds it: signals first, then what the view needs, then the
    // main window runs the form's menu, tool bar and open.
    mCalendar = new BkCalendar(nullptr, allShows());
    mStore = new DemoStore(mCalendar->model(), this);
    mStore->loadPlanInfos();
    connect(mCalendar, &BkCalendar::loadData, mStore, &DemoStore::loadData);
    connect(mCalendar, &BkCalendar::saveItems, mStore, &DemoStore::saveItems);
    connect(mStore, &DemoStore::written, this, &DemoWindow::written);
    // The group chosen here or on the calendar's headers, and the settings: a write that the database
    // refuses counts for this session only, and the user must hear of it.
    connect(FwApplication::app(), &FwApplication::settingNotStored, this, &DemoWindow::settingNotStored);
    // A column that the user picked anew on a header of the group reports each gesture once more for
    // every pick. The copies come straight after the first answer: one gesture opens one dialog or
    // menu, and makes one booking.
    connect(mCalendar, &BkCalendar::itemActivated, this,
            [this](BkCalendarItem* item) { answerOnce([&]() { itemActivated(item); }); });
    connect(mCalendar, &BkCalendar::planActivated, this,
            [this](BkCalendarPlan* plan, QTime time) { answerOnce([&]() { planActivated(plan, time); }); });
    connect(mCalendar, &BkCalendar::itemContextMenu, this,
            [this](QPoint pos, BkCalendarItem* item) { answerOnce([&]() { itemContextMenu(pos, item); }); });
    connect(mCalendar, &BkCalendar::planContextMenu, this,
            [this](QPoint pos, BkCalendarPlan* plan, QTime time) {
                answerOnce([&]() { planContextMenu(pos, plan, time); });
            });

    const BkCalendarResource me(userId.toInt(),
                                mStore->nameOf(BkCalendarResource(userId.toInt(), QString(), 0)), 0);
    mCalendar->setResource(me);
    mCalendar->setResourceList(savedGroup());
    mCalendar->setInterval(QTime(7, 0), QTime(19, 0));
    mCalendar->setTimeSteps(15);
    mCalendar->setMinuteHeight(1.5);
    mCalendar->setRaise(BkCalendarColumn::RaiseOnHover);
    mCalendar->setMinWidth(160);
    mCalendar->setToolTipsEnabled(true);
    openForm(mCalendar);
    if (formToolBar())
        formToolBar()->setObjectName(QStringLiteral("CalendarToolBar"));

    setupActions();
    restoreLayout();
}

DemoWindow::~DemoWindow() = default;

void DemoWindow::setupActions()
{
    QAction* undo = mUndo->createUndoAction(this, tr("&Undo"));
    undo->setShortcut(QKeySequence(tr("Ctrl+Z")));
    disconnect(undo, SIGNAL(triggered()), mUndo, SLOT(undo()));
    connect(undo, &QAction::triggered, this, &DemoWindow::undoChange);
    QAction* redo = mUndo->createRedoAction(this, tr("&Redo"));
    redo->setShortcut(QKeySequence(tr("Ctrl+Shift+Z")));
    disconnect(redo, SIGNAL(triggered()), mUndo, SLOT(redo()));
    connect(redo, &QAction::triggered, this, &DemoWindow::redoChange);

    auto* today = new QAction(QIcon(QStringLiteral(":/calendar/calendar.png")), tr("Today"), this);
    today->setShortcut(QKeySequence(tr("Ctrl+T")));
    today->setStatusTip(tr("Show today"));
    connect(today, &QAction::triggered, mCalendar, &BkCalendar::jumpToToday);
    auto* previous = new QAction(style()->standardIcon(QStyle::SP_ArrowBack), tr("Back"), this);
    previous->setStatusTip(tr("One day back, or a week in the week views"));
    connect(previous, &QAction::triggered, this, [this]() { step(-1); });
    auto* next = new QAction(style()->standardIcon(QStyle::SP_ArrowForward), tr("Forward"), this);
    next->setStatusTip(tr("One day forward, or a week in the week views"));
    connect(next, &QAction::triggered, this, [this]() { step(1); });
    auto* jump = new QAction(tr("Go to…"), this);
    jump->setShortcut(QKeySequence(tr("Ctrl+G")));
    connect(jump, &QAction::triggered, mCalendar, &BkCalendar::jumpTo);
    // A click in another day's column selects that day: the job list follows it, and so does the date
    // picker, which the next view and the steps start from.
    // It follows the column selected once the calendar is done: a view that is being built selects
    // the days of its way there too.
    connect(mCalendar, &BkCalendar::dateSelected, this,
            [this]() { QTimer::singleShot(0, this, &DemoWindow::followSelectedColumn); });
    // The calendar's own buttons, menu entries and keys switch the view too; the new view shows the
    // selected day, as after the demo's own switches, and not the first day of the week before.
    connect(mCalendar->showActions(), &QActionGroup::triggered, this, &DemoWindow::showSelectedDay);

    auto* navigation = addToolBar(tr("Navigation"));
    navigation->setObjectName(QStringLiteral("NavigationToolBar"));
    navigation->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    navigation->addAction(today);
    navigation->addAction(previous);
    navigation->addAction(next);
    navigation->addAction(jump);
    navigation->addSeparator();
    navigation->addAction(undo);
    navigation->addAction(redo);

    QMenu* edit = fwMenuBar()->addMenu(tr("&Edit"));
    edit->addAction(undo);
    edit->addAction(redo);
    edit->addSeparator();
    QAction* remove =
        edit->addAction(tr("&Delete booking"), this, [this]() { deleteBooking(mCalendar->selectedItem()); });
    remove->setShortcut(QKeySequence::Delete);

    QMenu* practice = fwMenuBar()->addMenu(tr("&Practice"));
    practice->addAction(tr("Choose the &group…"), this, &DemoWindow::chooseGroup);
    QMenu* statuses = practice->addMenu(tr("Calendar &statuses"));
    statuses->addAction(tr("&New status…"), this, [this]() {
        BkCalendarStatus dialog(FwEnums::DialogCreate, this);
        dialog.exec();
    });
    statuses->addAction(tr("&Find and edit a status…"), this, [this]() {
        BkCalendarStatus dialog(FwEnums::DialogFind, this);
        dialog.setStay(true);
        dialog.exec();
    });
    practice->addAction(tr("S&ettings…"), this, &DemoWindow::openSettings);
    practice->addSeparator();
    QAction* quit = practice->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence::Quit);
}

void DemoWindow::undoChange()
{
    const int index = mUndo->index();
    if (index == 0)
        return;
    mUndo->undo();
    // The stack counts the step as undone whatever happened: what was taken back is done again.
    if (skipFailed(mUndo->command(index - 1)))
        mUndo->redo();
}

void DemoWindow::redoChange()
{
    const int index = mUndo->index();
    if (index >= mUndo->count())
        return;
    mUndo->redo();
    if (skipFailed(mUndo->command(index)))
        mUndo->undo();
}

QList<BkCalendarResource> DemoWindow::savedGroup() const
{
    QList<BkCalendarResource> everybody = mStore->users() + mStore->resources();
    QList<BkCalendarResource> group;
    // "id:type" entries, written by the calendar when the user edits the group on its headers. The
    // setting may have been edited by hand: entries that don't parse or name nobody are left out.
    const QString text = FwApplication::app()->getValue(QLatin1String(GroupKey), QString()).toString();
    for (const QString& entry : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList parts = entry.trimmed().split(QLatin1Char(':'));
        bool idOk = false;
        bool typeOk = false;
        const int id = parts.value(0).toInt(&idOk);
        const int type = parts.value(1).toInt(&typeOk);
        if (parts.size() != 2 || !idOk || !typeOk || id <= 0)
            continue;
        for (const BkCalendarResource& candidate : qAsConst(everybody))
            if (candidate.type == type && candidate.id.toInt() == id && !group.contains(candidate))
                group << candidate;
    }
    group << BkCalendarResource(QVariant(), tr("Double click to add"), 0);
    return group;
}

void DemoWindow::chooseGroup()
{
    GroupDialog dialog(mStore->users() + mStore->resources(), savedGroup(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QStringList entries;
    const QList<BkCalendarResource> members = dialog.group();
    for (const BkCalendarResource& member : members)
        entries << QStringLiteral("%1:%2").arg(member.id.toInt()).arg(member.type);
    FwApplication::app()->setValue(entries.join(QLatin1Char(',')), QLatin1String(GroupKey),
                                   QStringLiteral("tbl_user"));
    mCalendar->setResourceList(savedGroup());
    if (currentView() != Group)
        showView(Group);
}

void DemoWindow::settingNotStored(const QString& key, const QString& reason)
{
    const QString message =
        key == QLatin1String(GroupKey)
            ? tr("The group could not be saved: %1. It is kept as chosen until the demo is closed.")
                  .arg(reason)
            : tr("The settings could not be saved: %1. They are kept as chosen until the demo is closed.")
                  .arg(reason);
    // The settings are written one by one: one message tells of them all.
    if (FwApplication::app()->currentMessage() == message)
        return;
    mStore->reportFailedSave(message);
}

void DemoWindow::openSettings()
{
    SettingsDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.save();
    mCalendar->setToolTipsEnabled(
        FwApplication::app()->getValue(QStringLiteral("set_showtooltips")).toInt() == 1);
    // Hiding empty schedules takes effect with the next group; the rest at the next paint.
    if (currentView() == Group)
        mCalendar->showGroup();
    mCalendar->view()->updateWidgets();
    mCalendar->view()->viewport()->update();
}

DemoWindow::View DemoWindow::currentView() const
{
    switch (mCalendar->showType()) {
    case BkCalendar::Show5Day:
        return FiveDays;
    case BkCalendar::Show7Day:
        return SevenDays;
    case BkCalendar::ShowMonth:
        return Month;
    case BkCalendar::ShowGroup:
        return Group;
    default:
        return Day;
    }
}

bool DemoWindow::viewFromName(const QString& name, View* view)
{
    const QStringList names{QStringLiteral("day"), QStringLiteral("5days"), QStringLiteral("7days"),
                            QStringLiteral("month"), QStringLiteral("group")};
    const int index = names.indexOf(name.toLower());
    if (index < 0)
        return false;
    *view = View(index);
    return true;
}

void DemoWindow::showView(View view)
{
    switch (view) {
    case Day:
        mCalendar->show1Day();
        break;
    case FiveDays:
        mCalendar->show5Day();
        break;
    case SevenDays:
        mCalendar->show7Day();
        break;
    case Month:
        mCalendar->showMonth();
        break;
    case Group:
        mCalendar->showGroup();
        break;
    }
    showSelectedDay();
}

void DemoWindow::showSelectedDay()
{
    // The days of a new view start from the date on show; the week views anchor on the week.
    const QDate day = dayOnShow();
    mCalendar->setDate(day);
    // The job list heard of the days that the new view passed through on its way.
    if (mCalendar->jobList())
        mCalendar->jobList()->setDate(day);
}

void DemoWindow::followSelectedColumn()
{
    const BkCalendarColumn* column = mCalendar->getSelectedColumn();
    if (!column || !column->date().isValid())
        return;
    if (mCalendar->datePicker())
        mCalendar->datePicker()->setSelectedDate(column->date());
    if (mCalendar->jobList())
        mCalendar->jobList()->setDate(column->date());
}

QDate DemoWindow::dayOnShow() const
{
    // The date picker marks the day that the user chose last, also by a click in a column.
    const QDate picked = mCalendar->datePicker() ? mCalendar->datePicker()->selectedDate() : QDate();
    return picked.isValid() ? picked : mCalendar->view()->selectedDate();
}

void DemoWindow::step(int direction)
{
    const View view = currentView();
    const int days = (view == FiveDays || view == SevenDays || view == Month) ? 7 : 1;
    const QDate date = dayOnShow().addDays(direction * days);
    mCalendar->setDate(date);
    if (mCalendar->datePicker())
        mCalendar->datePicker()->setSelectedDate(date);
    if (mCalendar->jobList())
        mCalendar->jobList()->setDate(date);
}

void DemoWindow::restoreLayout()
{
    FwApplication* app = FwApplication::app();
    if (!restoreGeometry(app->localValue(QStringLiteral("demo/geometry")).toByteArray()))
        resize(1400, 900);
    restoreState(app->localValue(QStringLiteral("demo/state")).toByteArray());
    bool ok = false;
    const int view = app->localValue(QStringLiteral("demo/view"), int(FiveDays)).toInt(&ok);
    showView(ok && view >= Day && view <= Group ? View(view) : FiveDays);
}

void DemoWindow::saveLayout()
{
    FwApplication* app = FwApplication::app();
    app->setLocalValue(QStringLiteral("demo/geometry"), saveGeometry());
    app->setLocalValue(QStringLiteral("demo/state"), saveState());
    app->setLocalValue(QStringLiteral("demo/view"), int(currentView()));
}

void DemoWindow::closeEvent(QCloseEvent* event)
{
    // What waits for the save timer is written now.
    BkCalendarModel* model = mCalendar->model();
    model->commitToDatabase();
    // A failed save put its bookings back on the unsaved list; closing now would lose them.
    if (!model->invalidItems().isEmpty() &&
        FwMessageBox::question(
            this, tr("Close the calendar"),
            tr("The changes could not be saved: %1.\n\nClose anyway and lose them?").arg(mStore->lastError()),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    saveLayout();
    FwMainWindow::closeEvent(event);
}

BkCalendarItem* DemoWindow::createBooking(const BkCalendarResource& who, DemoBookingRow row)
{
    row.id = 0;
    row.userId = who.type == 0 ? QVariant(who.id.toInt()) : QVariant();
    row.resourceId = who.type == 0 ? QVariant() : QVariant(who.id.toInt());
    if (!row.topColor.isValid()) {
        row.topColor = DemoBookingRow::defaultTopColor();
        row.bottomColor = DemoBookingRow::defaultBottomColor();
    }
    if (!mStore->writeRow(row)) {
        FwApplication::app()->showCritical(
            tr("The booking could not be created: %1").arg(mStore->lastError()));
        return nullptr;
    }
    BkCalendarItem* item = row.makeItem();
    mCalendar->model()->addItem(item);
    mUndo->push(
        new DemoChangeCommand(mStore, DemoBookingRow(), row, tr("New booking \"%1\"").arg(row.title)));
    return item;
}

bool DemoWindow::editBooking(BkCalendarItem* item, const DemoBookingRow& changed)
{
    if (!item)
        return false;
    changed.applyTo(item);
    // On the unsaved list like a move: the next save writes it and the undo stack keeps it.
    item->invalidate(true);
    item->commit(false);
    return true;
}

bool DemoWindow::deleteBooking(BkCalendarItem* item)
{
    if (!item)
        return false;
    const int id = item->id.toInt();
    // Undo brings back the booking as it is stored.
    const DemoBookingRow before = mStore->readRow(id).value_or(DemoBookingRow::fromItem(item));
    if (!mStore->removeRow(id)) {
        FwApplication::app()->showCritical(
            tr("The booking could not be deleted: %1").arg(mStore->lastError()));
        return false;
    }
    mCalendar->model()->removeItem(item);
    delete item;
    mUndo->push(
        new DemoChangeCommand(mStore, before, DemoBookingRow(), tr("Delete \"%1\"").arg(before.title)));
    return true;
}

void DemoWindow::setStatus(BkCalendarItem* item, const QVariant& statusId)
{
    if (!item)
        return;
    item->setStatusId(statusId);
    item->commit(false);
}

void DemoWindow::itemActivated(BkCalendarItem* item)
{
    if (!item)
        return;
    // The dialog runs a loop of its own, in which the save of an earlier move may take the booking
    // off the calendar (another program deleted it): the booking is found again by its id.
    const QVariant id = item->id;
    BookingDialog dialog(DemoBookingRow::fromItem(item), mStore->statuses(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (BkCalendarItem* booking = bookingOf(id))
        editBooking(booking, dialog.row());
}

BkCalendarItem* DemoWindow::bookingOf(const QVariant& id) const
{
    return id.isNull() ? nullptr : mCalendar->model()->findId(id);
}

void DemoWindow::answerOnce(const std::function<void()>& answer)
{
    if (mAnswering)
        return;
    mAnswering = true;
    answer();
    // The next gesture comes through the event loop, after the copies of this one.
    QTimer::singleShot(0, this, [this]() { mAnswering = false; });
}

void DemoWindow::newBookingAt(const BkCalendarPlan* plan, QTime time)
{
    if (!plan || !plan->bookable)
        return;
    // On the quarter hour under the pointer, half an hour long, inside the plan.
    QTime start(time.hour(), time.minute() - time.minute() % 15);
    if (start < plan->start)
        start = plan->start;
    QTime end = start.addSecs(30 * 60);
    if (end > plan->end || end < start)
        end = plan->end;
    DemoBookingRow row;
    row.date = plan->date;
    row.start = start;
    row.end = end;
    row.title = tr("New booking");
    row.statusId = 1;
    BookingDialog dialog(row, mStore->statuses(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    createBooking(plan->resource, dialog.row());
}

void DemoWindow::planActivated(BkCalendarPlan* plan, QTime time)
{
    newBookingAt(plan, time);
}

void DemoWindow::itemContextMenu(QPoint pos, BkCalendarItem* item)
{
    if (!item)
        return;
    // The menu runs a loop of its own, as the dialog does: each entry finds the booking again by its id.
    const QVariant id = item->id;
    const auto onBooking = [this, id](std::function<void(BkCalendarItem*)> act) {
        return [this, id, act]() {
            if (BkCalendarItem* booking = bookingOf(id))
                act(booking);
        };
    };
    QMenu menu(this);
    menu.addAction(tr("&Edit…"), this,
                   onBooking([this](BkCalendarItem* booking) { itemActivated(booking); }));
    menu.addAction(tr("Park on the &move list"), mCalendar,
                   onBooking([this](BkCalendarItem* booking) { mCalendar->addToMoveList(booking); }));
    QMenu* status = menu.addMenu(tr("&Status"));
    const QMap<int, BkCalendarStatusEntry> statuses = mStore->statuses();
    for (auto it = statuses.cbegin(); it != statuses.cend(); ++it) {
        QAction* action = status->addAction(it.value().name, this,
                                            onBooking([this, statusId = it.key()](BkCalendarItem* booking) {
                                                setStatus(booking, statusId);
                                            }));
        action->setCheckable(true);
        action->setChecked(!item->statusId.isNull() && item->statusId.toInt() == it.key());
    }
    menu.addSeparator();
    menu.addAction(tr("&Delete"), this,
                   onBooking([this](BkCalendarItem* booking) { deleteBooking(booking); }));
    menu.exec(pos);
}

void DemoWindow::planContextMenu(QPoint pos, BkCalendarPlan* plan, QTime time)
{
    if (!plan || !plan->bookable)
        return;
    QMenu menu(this);
    menu.addAction(tr("&New booking here…"), this, [this, plan, time]() { newBookingAt(plan, time); });
    menu.exec(pos);
}

void DemoWindow::written(const QList<DemoBookingRow>& before, const QList<DemoBookingRow>& after)
{
    // One save is one step back: a drag that moved two bookings is undone at once.
    QList<int> changed;
    for (int i = 0; i < after.size(); ++i)
        if (before.value(i) != after.at(i))
            changed << i;
    if (changed.isEmpty())
        return;
    if (changed.size() > 1)
        mUndo->beginMacro(tr("Change %n bookings", nullptr, changed.size()));
    for (int i : qAsConst(changed)) {
        const DemoBookingRow& was = before.at(i);
        const DemoBookingRow& is = after.at(i);
        const QString text = !was.isValid()       ? tr("New booking \"%1\"").arg(is.title)
                             : movedOnly(was, is) ? tr("Move \"%1\"").arg(is.title)
                                                  : tr("Edit \"%1\"").arg(is.title);
        mUndo->push(new DemoChangeCommand(mStore, was, is, text));
    }
    if (changed.size() > 1)
        mUndo->endMacro();
}
