// Long random sequences of what a host and its user do to the form: show modes, dates, groups, scale
// changes, bookings and plans added, moved, removed and cleared, saves and rollbacks, repaints. After
// every step the boxes and the bookings must still agree. Under the sanitizer build the same
// sequences also catch any use of a box or a booking after it is gone.

#include "BkBookingScene.h"
#include "BkSequence.h"
#include "FwTestApplication.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarHeader.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarList.h>
#include <BkCalendarModel.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarUserList.h>
#include <BkCalendarView.h>
#include <FwApplication.h>
#include <FwEnums.h>
#include <FwTreeWidget.h>
#include <FwTreeWidgetItem.h>
#include <SQLQuery.h>

#include <QCalendarWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>

#include <QGraphicsItem>
#include <QRandomGenerator>
#include <QScopedValueRollback>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

namespace {

const QDate Wednesday(2026, 11, 25);
const int Steps = 400;

const QList<BkCalendarResource>& people()
{
    static const QList<BkCalendarResource> list{BkCalendarResource(1, QStringLiteral("Anna"), 0),
                                                BkCalendarResource(2, QStringLiteral("Ben"), 0),
                                                BkCalendarResource(1, QStringLiteral("Room 1"), 1),
                                                BkCalendarResource(3, QStringLiteral("Room 3"), 1)};
    return list;
}

// Everybody's schedule from twelve days before Wednesday to twelve days after, open from 07:00 to 19:00;
// with `lunchOnOddDays` the lunch hour is closed on odd days.
void addSchedules(BkCalendarModel* model, bool lunchOnOddDays)
{
    for (int day = -12; day <= 12; ++day) {
        for (const BkCalendarResource& who : people()) {
            const QList<QPair<QTime, QTime>> open =
                lunchOnOddDays && day % 2
                    ? QList<QPair<QTime, QTime>>{{QTime(7, 0), QTime(12, 0)}, {QTime(13, 0), QTime(19, 0)}}
                    : QList<QPair<QTime, QTime>>{{QTime(7, 0), QTime(19, 0)}};
            for (const auto& span : open) {
                auto* plan = new BkCalendarPlan;
                plan->date = Wednesday.addDays(day);
                plan->resource = who;
                plan->start = span.first;
                plan->end = span.second;
                plan->bookable = true;
                model->addItem(plan);
            }
        }
    }
}

// Some of the people and rooms, at least one, in some order.
QList<BkCalendarResource> someGroup(QRandomGenerator& random)
{
    QList<BkCalendarResource> group = people();
    std::shuffle(group.begin(), group.end(), random);
    return group.mid(0, 1 + random.bounded(group.size()));
}

// A form that offers every view, resized and shown. Every other seed's form has the docks: the date
// picker, the job list and the move list.
BkCalendar* newForm(quint32 seed)
{
    const int noDocks = seed % 2 ? 0 : int(BkCalendar::NoDocks);
    auto* form = new BkCalendar(nullptr, noDocks | BkCalendar::Show1Day | BkCalendar::Show5Day |
                                             BkCalendar::Show7Day | BkCalendar::ShowGroup);
    form->resize(900, 600);
    form->show();
    return form;
}

// Everybody's schedule, and the form on Wednesday with the first person and everybody in the group.
void showEverybody(BkCalendar* form, bool lunchOnOddDays)
{
    addSchedules(form->model(), lunchOnOddDays);
    form->setResource(people().at(0));
    form->setResourceList(people());
    form->setDate(Wednesday);
}

// One of the form's views: 0 a day, 1 five days, 2 seven days, 3 the group.
void showView(BkCalendar* form, int which)
{
    switch (which) {
    case 0:
        form->show1Day();
        break;
    case 1:
        form->show5Day();
        break;
    case 2:
        form->show7Day();
        break;
    default:
        form->showGroup();
        break;
    }
}

// What a box may hold: nothing, once its booking is gone or removed, or a booking that its model
// still files under the box's column. A drag takes the box along to the column under the pointer, and
// when the booking goes back (the drag leaves the scene, the answer is No, or a rollback comes before
// the save), the box stays where it was taken until the column is built again; bookings that were
// dragged are therefore left out.
void checkBoxes(BkCalendar& form, const QSet<BkCalendarItem*>& dragged)
{
    BkCalendarModel* model = form.model();
    for (BkCalendarColumn* column : form.view()->getColumnList()) {
        QSet<BkCalendarItem*> shown;
        for (QGraphicsItem* child : column->childItems()) {
            auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
            if (!box || !box->item())
                continue;
            BkCalendarItem* item = box->item();
            QCOMPARE(item->model, model);
            QVERIFY(dragged.contains(item) ||
                    model->items(column->date(), column->resource()).contains(item));
            // One box a booking in a column, dragged or not.
            QVERIFY2(
                !shown.contains(item),
                qPrintable(QStringLiteral("booking %1 has two boxes in one column").arg(item->id.toInt())));
            shown.insert(item);
        }
    }
}

// The other way round: every booking of a column's day and key that the scale shows has its box there,
// but for those that a change, a drag or the move list took out of step (a column follows a booking
// to another day, key or time only at its next update).
void checkEveryBookingHasItsBox(BkCalendar& form, const QSet<BkCalendarItem*>& changed)
{
    QSet<int> parked;
    if (FwTreeWidget* tree = form.moveList())
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            parked << tree->topLevelItem(i)->data(0, IdRole).toInt();
    const BkCalendarTimeScale* scale = form.view()->timeScale();
    for (BkCalendarColumn* column : form.view()->getColumnList()) {
        // Read first: reading may make the host load the day, and its bookings get their boxes at once.
        const QList<BkCalendarItem*> items = form.model()->items(column->date(), column->resource());
        QSet<BkCalendarItem*> boxed;
        for (QGraphicsItem* child : column->childItems())
            if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
                if (box->item() && box->isVisible())
                    boxed << box->item();
        for (BkCalendarItem* item : items) {
            if (changed.contains(item) || parked.contains(item->id.toInt()) ||
                !scale->inside(item->start(), item->end()))
                continue;
            QVERIFY2(boxed.contains(item),
                     qPrintable(QStringLiteral("booking %1 has no box in the column of %2")
                                    .arg(item->id.toInt())
                                    .arg(column->resource().name)));
        }
    }
}

// Boxes of a column whose times overlap share its width: no two of them cover the same spot. A box
// grown under the pointer is left out, as it lies over its neighbours on purpose. So is a box that the
// mouse moved and that stands sideways where Qt's move put it rather than where the layout did: Qt
// proposes the x that the box had at the first move of the gesture, the box takes it together with
// the y of its time, and the layout, whose share for the box has not changed since, leaves it there.
void checkNoBoxesOverlap(BkCalendar& form, const QSet<int>& movedByMouse)
{
    for (BkCalendarColumn* column : form.view()->getColumnList()) {
        QList<QPair<QRectF, int>> boxes;
        for (QGraphicsItem* child : column->childItems()) {
            auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
            if (!box || !box->item() || !box->isVisible() || box->expanded())
                continue;
            const int id = box->item()->id.toInt();
            if (box->x() != box->boxX() && movedByMouse.contains(id))
                continue;
            boxes << qMakePair(box->mapRectToParent(box->boundingRect()), id);
        }
        // Boxes that only touch do not overlap; a hundredth of a unit allows for sums of fractions.
        const auto overlap = [](double a0, double a1, double b0, double b1) {
            return a0 < b1 - 0.01 && b0 < a1 - 0.01;
        };
        for (int i = 0; i < boxes.size(); ++i)
            for (int j = i + 1; j < boxes.size(); ++j) {
                const QRectF& a = boxes.at(i).first;
                const QRectF& b = boxes.at(j).first;
                QVERIFY2(
                    !overlap(a.top(), a.bottom(), b.top(), b.bottom()) ||
                        !overlap(a.left(), a.right(), b.left(), b.right()),
                    qPrintable(QStringLiteral("the boxes of bookings %1 and %2 overlap in the column of %3")
                                   .arg(boxes.at(i).second)
                                   .arg(boxes.at(j).second)
                                   .arg(column->resource().name)));
            }
    }
}

// Where the store files a booking: its day, its user and its resource.
using Filing = std::tuple<QDate, QVariant, QVariant>;

QHash<BkCalendarItem*, Filing> filings(BkCalendarModel* model)
{
    QHash<BkCalendarItem*, Filing> result;
    for (BkCalendarItem* item : model->allItems())
        if (item)
            result.insert(item, Filing(item->date(), item->userId(), item->resourceId()));
    return result;
}

// The job list shows every booking of its day and key with a row of its own; rows of bookings that
// a clear deleted may stay beside them. A booking that a change brought to another day or key gets
// a row only at the list's next update, which the sequence does not see; from its first such change
// on it is left out.
void checkJobList(BkCalendar& form, const QSet<BkCalendarItem*>& moved)
{
    BkCalendarList* list = form.jobList();
    if (!list || list->resource().id.isNull())
        return;
    // Read first: reading may make the host load the day, and its bookings get their rows at once.
    const QList<BkCalendarItem*> items = form.model()->items(list->date(), list->resource());
    QSet<qulonglong> rows;
    for (int i = 0; i < list->count(); ++i)
        rows << list->item(i)->data(BkCalendarList::ItemRole).toULongLong();
    for (BkCalendarItem* item : items)
        QVERIFY(moved.contains(item) || rows.contains(qulonglong(quintptr(item))));
}

// The user moves the box of a booking with the mouse, or drags it over one or two columns at random
// times, as QDrag delivers it, and drops it there or leaves the scene with it. A question about a
// resource booked twice is answered either way. Returns the booking that a drag took along, if any.
BkCalendarItem* dragSomeBooking(BkCalendar& form, QRandomGenerator& random, QSet<int>* movedByMouse = nullptr)
{
    BkCalendarView* view = form.view();
    QList<BkCalendarItemWidget*> boxes;
    for (QGraphicsItem* item : view->scene()->items())
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(item))
            if (box->item() && box->item()->type() != BkCalendarItem::Reserved)
                boxes << box;
    const QList<BkCalendarColumn*> columns = view->getColumnList();
    if (boxes.isEmpty() || columns.isEmpty())
        return nullptr;
    BkCalendarItemWidget* box = boxes.at(random.bounded(boxes.size()));
    BkCalendarItem* item = box->item();
    if (random.bounded(2) == 0) {
        // With the mouse, up or down within the box's own width: leaving it sideways would start a
        // drag of the window system.
        auto mouse = [view](QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
                            Qt::MouseButtons buttons) {
            BkTest::sendMouse(view, type, scenePos, button, buttons);
        };
        QPointF at = box->sceneBoundingRect().center();
        mouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
        for (int moves = 1 + random.bounded(3); moves > 0; --moves) {
            at.ry() += 7.5 * random.bounded(-8, 9);
            mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
        }
        BkTest::QuestionAnswerer answerer(random.bounded(2) ? QMessageBox::Yes : QMessageBox::No);
        if (movedByMouse)
            movedByMouse->insert(item->id.toInt());
        mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
        // A move in time keeps the booking in its column.
        return nullptr;
    }
    QMimeData data;
    data.setData(QStringLiteral("text/calitem"), item->id.toString().toLatin1());
    auto somewhere = [&]() {
        BkCalendarColumn* column = columns.at(random.bounded(columns.size()));
        const QTime time = QTime(7, 0).addSecs(60 * 5 * random.bounded(12 * 12));
        return column->mapToScene(view->timeScale()->pointAt(10.0 + random.bounded(20), time));
    };
    QPointF at = somewhere();
    BkTest::sendDrag(view->scene(), QEvent::GraphicsSceneDragEnter, at, &data, view->viewport());
    for (int moves = 1 + random.bounded(2); moves > 0; --moves) {
        at = somewhere();
        BkTest::sendDrag(view->scene(), QEvent::GraphicsSceneDragMove, at, &data, view->viewport());
    }
    if (random.bounded(4) == 0) {
        BkTest::sendDrag(view->scene(), QEvent::GraphicsSceneDragLeave, at, &data, view->viewport());
        return item;
    }
    BkTest::QuestionAnswerer answerer(random.bounded(2) ? QMessageBox::Yes : QMessageBox::No);
    BkTest::sendDrag(view->scene(), QEvent::GraphicsSceneDrop, at, &data, view->viewport());
    return item;
}

// Answers what comes up while the user's gesture runs: the picker of people and rooms, with a pick of
// `id` and `type`, a clear or a cancel, or the header's menu, with its first entry or a click beside it.
// It looks every millisecond while it lives, and answers each that comes up.
class PopupAnswerer : public QObject
{
public:
    enum Answer
    {
        Pick,
        Clear,
        Cancel
    };

    PopupAnswerer(Answer answer, const QVariant& id, int type, bool takeMenuEntry)
        : mAnswer(answer)
        , mId(id)
        , mType(type)
        , mTakeMenuEntry(takeMenuEntry)
    {
        mTimer.setInterval(1);
        QObject::connect(&mTimer, &QTimer::timeout, this, [this]() { poll(); });
        mTimer.start();
    }

    bool pickerShown = false;
    bool menuShown = false;
    // The pick went through: the row was there and Ok was pressed.
    bool picked = false;

private:
    void poll()
    {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            menuShown = true;
            if (mTakeMenuEntry && !menu->actions().isEmpty())
                menu->actions().first()->trigger();
            menu->close();
            return;
        }
        auto* picker = qobject_cast<BkCalendarUserList*>(QApplication::activeModalWidget());
        if (!picker || !picker->isVisible() || picker == mAnswered)
            return;
        mAnswered = picker;
        pickerShown = true;
        if (mAnswer == Cancel) {
            QTest::mouseClick(picker->findChild<QPushButton*>(QStringLiteral("pbCancel")), Qt::LeftButton);
            return;
        }
        if (mAnswer == Clear) {
            QTest::mouseClick(picker->findChild<QPushButton*>(QStringLiteral("pbClear")), Qt::LeftButton);
            return;
        }
        auto* list = picker->findChild<QTreeWidget*>(QStringLiteral("tvList"));
        list->clearSelection();
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            QTreeWidgetItem* row = list->topLevelItem(i);
            if (row->data(0, IdRole).isValid() && row->data(0, IdRole).toInt() == mId.toInt() &&
                row->data(0, TypeRole).toInt() == mType)
                row->setSelected(true);
        }
        picked = list->selectedItems().count() == 1;
        if (picked)
            QTest::mouseClick(picker->findChild<QPushButton*>(QStringLiteral("pbOk")), Qt::LeftButton);
        else
            picker->reject();
    }

    Answer mAnswer;
    QVariant mId;
    int mType;
    bool mTakeMenuEntry;
    QPointer<BkCalendarUserList> mAnswered;
    QTimer mTimer;
};

// The entries of "CalendarLayout", the custom widths of the group's columns, that name `who`.
int layoutEntries(const BkCalendarResource& who)
{
    int count = 0;
    const QStringList list = FwApplication::app()
                                 ->localValue(QStringLiteral("CalendarLayout"), QVariant(QVariant::Int))
                                 .toStringList();
    for (const QString& entry : list) {
        const QStringList parts = entry.split(QLatin1Char('|'));
        if (parts.size() == 3 && parts.at(0).toInt() == who.type && parts.at(1).toInt() == who.id.toInt())
            ++count;
    }
    return count;
}

// What a step of the second stream did, for the checks after it.
struct ExtraStep
{
    enum Kind
    {
        None = -1,
        PlanAdded,
        PlanChanged,
        PlanRemoved,
        ModelCleared,
        GripDragged,
        CustomSizeRemoved,
        HeaderPicked,
        ScaleChanged,
        WidthTypeChanged,
        OpenPlaceGiven,
        Kinds
    };
    Kind kind = None;
    // The column that the user worked on, and what it showed before.
    QPointer<BkCalendarColumn> column;
    BkCalendarResource was;
    // The picker's answer, and whether the pick went through.
    PopupAnswerer::Answer answer = PopupAnswerer::Cancel;
    BkCalendarResource chosen;
    bool picked = false;
    // The menu came up, and its entry was taken.
    bool menuTaken = false;
    int columnsBefore = 0;

    QString name() const
    {
        static const char* const names[] = {"a plan added",           "a plan changed",
                                            "a plan removed",         "the model cleared",
                                            "a grip dragged",         "a custom size removed",
                                            "a header picked",        "the scale changed",
                                            "the width type changed", "a group with an open place"};
        return kind == None ? QString() : QString::fromLatin1(names[kind]);
    }
};

// Who the picker offers: the people and rooms of the sequences and one more person without bookings.
const QList<BkCalendarResource>& pickable()
{
    static const QList<BkCalendarResource> list =
        people() + QList<BkCalendarResource>{BkCalendarResource(4, QStringLiteral("Cara"), 0)};
    return list;
}

// A step as the host or the user does it beside the others, drawn from its own stream: plans of
// shown days changed, the model cleared, a column's width dragged or given back, a column's person
// picked anew, the scale or the width type changed, a group with an open place at its end. A host
// that answers signals is told through planAdding while a plan's adding goes round.
ExtraStep extraStep(QPointer<BkCalendar> form, QRandomGenerator& random, bool* planAdding = nullptr)
{
    ExtraStep step;
    step.kind = ExtraStep::Kind(random.bounded(int(ExtraStep::Kinds)));
    // The clear is rare, as it takes every schedule with it.
    if (step.kind == ExtraStep::ModelCleared && random.bounded(4))
        step.kind = ExtraStep::PlanAdded;
    BkCalendarModel* model = form->model();
    BkCalendarView* view = form->view();
    const QList<BkCalendarColumn*> columns = view->getColumnList();
    BkCalendarColumn* column = columns.isEmpty() ? nullptr : columns.at(random.bounded(columns.size()));
    step.columnsBefore = columns.size();
    if (column) {
        step.column = column;
        step.was = column->resource();
    }
    auto someTime = [&]() { return QTime(6, 0).addSecs(15 * 60 * random.bounded(52)); };
    auto headerPoint = [&](BkCalendarColumn* c) {
        return view->mapFromScene(c->header()->sceneBoundingRect().center());
    };
    switch (step.kind) {
    case ExtraStep::PlanAdded:
        if (column && !column->resource().id.isNull()) {
            auto* plan = new BkCalendarPlan;
            plan->date = column->date();
            plan->resource = column->resource();
            plan->start = someTime();
            plan->end = plan->start.addSecs(60 * 15 * (1 + random.bounded(16)));
            plan->bookable = random.bounded(3) != 0;
            // The columns hear of the plan before the host does, and their answers may reach the host.
            bool unwatched = false;
            const QScopedValueRollback<bool> adding(planAdding ? *planAdding : unwatched, true);
            model->addItem(plan);
        }
        break;
    case ExtraStep::PlanChanged:
    case ExtraStep::PlanRemoved: {
        if (!column || column->resource().id.isNull())
            break;
        const QList<BkCalendarPlan*> plans = model->plans(column->date(), column->resource());
        if (plans.isEmpty() || !form)
            break;
        BkCalendarPlan* plan = plans.at(random.bounded(plans.size()));
        if (step.kind == ExtraStep::PlanChanged) {
            // Changed in place, as a host does it, and told through the model.
            plan->start = someTime();
            plan->end = plan->start.addSecs(60 * 15 * (1 + random.bounded(16)));
            plan->bookable = random.bounded(3) != 0;
            emit model->planChanged(plan);
        } else {
            model->removeItem(plan);
            delete plan;
        }
        break;
    }
    case ExtraStep::ModelCleared:
        // Saved first: the host must not clear with bookings unsaved.
        model->commitToDatabase();
        if (form)
            model->clear();
        break;
    case ExtraStep::GripDragged:
        if (column && column->header()->resizable()) {
            QPointF at = column->header()->mapToScene(column->header()->grip().center());
            BkTest::sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
            for (int moves = 1 + random.bounded(3); moves > 0 && form; --moves) {
                at.rx() += random.bounded(-60, 61);
                BkTest::sendMouse(view, QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
            }
            if (form)
                BkTest::sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
        }
        break;
    case ExtraStep::CustomSizeRemoved:
        if (column) {
            const bool take = random.bounded(4) != 0;
            PopupAnswerer answerer(PopupAnswerer::Cancel, QVariant(), 0, take);
            const QPoint at = headerPoint(column);
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, view->viewport()->mapToGlobal(at));
            QApplication::sendEvent(view->viewport(), &event);
            step.menuTaken = answerer.menuShown && take;
        }
        break;
    case ExtraStep::HeaderPicked:
        if (column) {
            const int answer = random.bounded(10);
            step.answer = answer < 7   ? PopupAnswerer::Pick
                          : answer < 9 ? PopupAnswerer::Clear
                                       : PopupAnswerer::Cancel;
            step.chosen = pickable().at(random.bounded(pickable().size()));
            PopupAnswerer answerer(step.answer, step.chosen.id, step.chosen.type, false);
            const QPoint at = headerPoint(column);
            QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
            if (form)
                QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
            if (form)
                QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
            step.picked = answerer.pickerShown && answerer.picked;
        }
        break;
    case ExtraStep::ScaleChanged:
        switch (random.bounded(3)) {
        case 0:
            form->setTimeSteps(random.bounded(2) ? 10 : 20);
            break;
        case 1:
            form->setInterval(QTime(5 + random.bounded(4), 15 * random.bounded(4)),
                              QTime(16 + random.bounded(6), 10 * random.bounded(6)));
            break;
        default:
            form->setMinuteHeight(random.bounded(2) ? 1.5 : 1.0 + 0.25 * random.bounded(5));
            break;
        }
        break;
    case ExtraStep::WidthTypeChanged:
        view->setWidthType(random.bounded(2) ? WidthFixed : WidthProportional);
        break;
    case ExtraStep::OpenPlaceGiven: {
        QList<BkCalendarResource> group = people();
        std::shuffle(group.begin(), group.end(), random);
        group = group.mid(0, random.bounded(group.size() + 1));
        group << BkCalendarResource(QVariant(), QStringLiteral("Open place"), 0);
        form->setResourceList(group);
        form->showGroup();
        break;
    }
    default:
        break;
    }
    return step;
}

// Every box stands where its booking's times say on the present scale: its top at the start, its
// height the length. A box grown under the pointer and the boxes of bookings that a drag took along
// are left out.
void checkBoxesFollowTheScale(BkCalendar& form, const QSet<BkCalendarItem*>& dragged)
{
    const BkCalendarTimeScale* scale = form.view()->timeScale();
    const double m = double(scale->minuteHeight());
    for (BkCalendarColumn* column : form.view()->getColumnList())
        for (QGraphicsItem* child : column->childItems()) {
            auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
            if (!box || !box->item() || !box->isVisible() || box->expanded() || dragged.contains(box->item()))
                continue;
            const BkCalendarItem* item = box->item();
            const double top =
                double(scale->start().secsTo(item->start()) / 60) * m + double(scale->topMargin());
            const double height = double(item->start().secsTo(item->end()) / 60) * m;
            QVERIFY2(
                qAbs(box->pos().y() - top) < 0.01 && qAbs(box->boundingRect().height() - height) < 0.01,
                qPrintable(QStringLiteral("the box of booking %1 stands at %2, %3 high, not at %4, %5 high")
                               .arg(item->id.toInt())
                               .arg(box->pos().y())
                               .arg(box->boundingRect().height())
                               .arg(top)
                               .arg(height)));
        }
}

// What the calendar promises after the user's work on a column of the group.
void checkExtraStep(BkCalendar& form, const ExtraStep& step)
{
    const QList<BkCalendarColumn*> columns = form.view()->getColumnList();
    BkCalendarColumn* column = step.column;
    if (!column || !columns.contains(column))
        return;
    switch (step.kind) {
    case ExtraStep::GripDragged:
        // The drag gives the column a width of its own, kept for its person or room.
        if (column->resource().id.isNull() || !column->header()->resizable())
            break;
        QVERIFY(column->customSize());
        QVERIFY(layoutEntries(column->resource()) > 0);
        break;
    case ExtraStep::CustomSizeRemoved:
        // The menu's entry gives the column its automatic width back, and the kept width goes.
        if (!step.menuTaken)
            break;
        QVERIFY(!column->customSize());
        QCOMPARE(layoutEntries(column->resource()), 0);
        break;
    case ExtraStep::HeaderPicked:
        if (!step.picked || step.answer != PopupAnswerer::Pick)
            break;
        // The column shows the one picked, with the width kept for them, if any; a pick for the open
        // place makes a new open place at the end.
        QCOMPARE(column->resource().id.toInt(), step.chosen.id.toInt());
        QCOMPARE(column->resource().type, step.chosen.type);
        if (layoutEntries(step.chosen) > 0)
            QVERIFY(column->customSize());
        if (step.was.id.isNull()) {
            QCOMPARE(columns.size(), step.columnsBefore + 1);
            QVERIFY(columns.last()->resource().id.isNull());
        }
        break;
    default:
        break;
    }
}

// A host that answers the calendar's signals with anything its slots may do: another date, days or
// group, the view built anew, bookings loaded, removed and deleted, or reloaded, and the form closed
// with deleteLater. It keeps its own copy of what it saved, so that a booking that the user moved and
// that is neither on the unsaved list nor as it was last saved shows as lost.
class HostileHost : public QObject
{
public:
    struct Row
    {
        QDate date;
        QVariant userId;
        QVariant resourceId;
        QTime start;
        QTime end;
        bool operator==(const Row& other) const
        {
            return date == other.date && userId == other.userId && resourceId == other.resourceId &&
                   start == other.start && end == other.end;
        }
    };

    HostileHost(BkCalendar* form, quint32 seed, int rate)
        : mForm(form)
        , mModel(form->model())
        , mRandom(seed)
        , mRate(rate)
    {
        BkCalendarModel* model = mModel;
        connect(model, &BkCalendarModel::itemAdded, this, [this](BkCalendarItem* item) {
            mAnnounced.append(item);
            hear("itemAdded", item);
            mAnnounced.removeLast();
        });
        // A booking that is told of a change while off the unsaved list has been taken back: it stands
        // as its rollback values say, which the host takes for what it has.
        connect(model, &BkCalendarModel::itemChanged, this, [this](BkCalendarItem* item) {
            if (item && item->model == mModel && !mModel->isInvalid(item))
                write(item);
        });
        connect(model, &BkCalendarModel::itemChanged, this,
                [this](BkCalendarItem* item) { hear("itemChanged", item); });
        connect(model, &BkCalendarModel::itemRemoved, this, [this](BkCalendarItem*) { hear("itemRemoved"); });
        connect(model, &BkCalendarModel::planAdded, this, [this](BkCalendarPlan*) {
            const QScopedValueRollback<bool> announcing(planAnnounced, true);
            hear("planAdded");
        });
        connect(model, &BkCalendarModel::reset, this, [this]() { hear("reset"); });
        connect(model, &BkCalendarModel::loadData, this,
                [this](const QDate& from, const QDate& to, const BkCalendarResource& who) {
                    load(from, to, who);
                    hear("model loadData");
                });
        connect(model, &BkCalendarModel::saveItems, this, [this](const QList<BkCalendarItem*>& items) {
            for (BkCalendarItem* item : items)
                write(item);
            // The form's listener comes first, as the form connected first; its batch is written now.
            if (mSavesHandedRound > 0)
                --mSavesHandedRound;
            hear("model saveItems");
        });
        connect(form, &BkCalendar::itemActivated, this,
                [this](BkCalendarItem* item) { hear("itemActivated", item); });
        connect(form, &BkCalendar::planActivated, this, [this]() { hear("planActivated"); });
        connect(form, &BkCalendar::itemContextMenu, this,
                [this](QPoint, BkCalendarItem* item) { hear("itemContextMenu", item); });
        connect(form, &BkCalendar::planContextMenu, this, [this]() { hear("planContextMenu"); });
        connect(form, &BkCalendar::saveItems, this, [this]() {
            ++mSavesHandedRound;
            hear("saveItems");
        });
        connect(form, &BkCalendar::loadData, this, [this]() { hear("loadData"); });
        connect(form, &BkCalendar::dateSelected, this, [this]() { hear("dateSelected"); });
        connect(form, &BkCalendar::dateChanged, this, [this]() { hear("dateChanged"); });
        connect(form, &BkCalendar::resourceSelected, this, [this]() { hear("resourceSelected"); });
        connect(form, &BkCalendar::hideResourceInfo, this, [this]() { hear("hideResourceInfo"); });
        connect(form, &BkCalendar::showResourceInfo, this, [this]() { hear("showResourceInfo"); });
        connect(form, &BkCalendar::selectionChanged, this, [this]() { hear("selectionChanged"); });
        BkCalendarView* view = form->view();
        connect(view, QOverload<int>::of(&BkCalendarView::sizeChanged), this,
                [this]() { hear("sizeChanged"); });
        connect(view, QOverload<int, int>::of(&BkCalendarView::sizeChanged), this,
                [this]() { hear("sizeChanged2"); });
        connect(view, &BkCalendarView::dateSelected, this, [this]() { hear("view dateSelected"); });
        connect(view, &BkCalendarView::resourceSelected, this, [this]() { hear("view resourceSelected"); });
        connect(view->scene(), &QGraphicsScene::selectionChanged, this,
                [this]() { hear("scene selectionChanged"); });
        connect(view->scene(), &QGraphicsScene::focusItemChanged, this,
                [this]() { hear("scene focusItemChanged"); });
    }

    int nextId = 1;
    QStringList acts;
    // Whether a plan's adding is being told.
    bool planAnnounced = false;
    // While the test looks, the host only loads.
    bool quiet = false;

    BkCalendarItem* newBooking(const QDate& date, const BkCalendarResource& who, const QTime& start)
    {
        auto* item = new BkCalendarItem;
        item->id = nextId++;
        item->setType(mRandom.bounded(2) ? BkCalendarItem::Meeting : BkCalendarItem::ItemType(0));
        item->setTitle(QStringLiteral("Booking %1").arg(item->id.toInt()));
        item->setDate(date);
        if (who.type == 0)
            item->setUserId(who.id);
        else
            item->setResourceId(who.id);
        if (mRandom.bounded(3) == 0)
            item->setResourceId(mRandom.bounded(2) ? 1 : 3);
        item->setTime(start, start.addSecs(60 * (15 + 15 * mRandom.bounded(6))));
        return item;
    }

    void add(BkCalendarItem* item)
    {
        const Row row = rowOf(item);
        const int id = item->id.toInt();
        // The columns hear of the booking before the host does, and their answers may reach the host.
        mAnnounced.append(item);
        const bool added = mModel->addItem(item);
        mAnnounced.removeLast();
        if (added)
            mSaved.insert(id, row);
        else
            delete item;
    }

    // What the host's database holds for a booking, the last it wrote or loaded.
    QHash<int, Row> mSaved;

    static Row rowOf(const BkCalendarItem* item)
    {
        return Row{item->date(), item->userId(), item->resourceId(), item->start(), item->end()};
    }

    void write(BkCalendarItem* item)
    {
        if (item && mSaved.contains(item->id.toInt()))
            mSaved.insert(item->id.toInt(), rowOf(item));
    }

    // Every booking of the model is either unsaved or as the host saved it.
    bool nothingLost(QString* what) const
    {
        for (BkCalendarItem* item : mModel->allItems()) {
            if (!item || mModel->isInvalid(item))
                continue;
            const auto saved = mSaved.constFind(item->id.toInt());
            if (saved == mSaved.constEnd())
                continue;
            if (!(*saved == rowOf(item))) {
                *what = QStringLiteral("booking %1 changed, neither saved nor unsaved").arg(item->id.toInt());
                return false;
            }
        }
        return true;
    }

    QDate someDay() { return QDate(2026, 11, 25).addDays(mRandom.bounded(-3, 4)); }
    QTime someTime() { return QTime(7, 0).addSecs(15 * 60 * mRandom.bounded(40)); }

private:
    void load(const QDate& from, const QDate& to, const BkCalendarResource& who)
    {
        if (mRandom.bounded(2))
            return;
        const QDate day = someDay();
        add(newBooking(day < from || day > to ? from : day, who, someTime()));
    }

    void hear(const char* signal, BkCalendarItem* item = nullptr)
    {
        if (quiet || mDepth > 1 || !mForm || mRandom.bounded(mRate) != 0)
            return;
        ++mDepth;
        act(signal, item);
        --mDepth;
    }

    void act(const char* signal, BkCalendarItem* item)
    {
        BkCalendar* form = mForm;
        int what = mRandom.bounded(20);
        // Nor are the bookings of a save taken away while it is handed round, also in answers to signals
        // that come meanwhile: the host's other listener, on the model, has yet to write them.
        if ((mSavesHandedRound > 0 || qstrcmp(signal, "saveItems") == 0 ||
             qstrcmp(signal, "model saveItems") == 0) &&
            what >= 12 && what <= 17)
            what = 10;
        // A change of a booking comes in the middle of the user's gesture on its box, which goes on
        // after the answer: the grid is not built anew there, but bookings may come and go.
        const bool bookingNews = mInBookingNews || qstrcmp(signal, "itemAdded") == 0 ||
                                 qstrcmp(signal, "itemChanged") == 0 || qstrcmp(signal, "itemRemoved") == 0;
        if (bookingNews && (what < 10 || what == 18))
            what = 10 + mRandom.bounded(8);
        const QScopedValueRollback<bool> news(mInBookingNews, bookingNews);
        // A booking that is being added is not deleted in the answer that tells of it, as the model's
        // other listeners have yet to hear of it; a filter takes it out again, and deletes it later.
        if (qstrcmp(signal, "itemAdded") == 0 && what >= 12 && what <= 17)
            what = item && item->model == mModel && what <= 15 ? 20 : 10;
        // Nor is a plan that is being added deleted by a clear in the answer that tells of it, or in an
        // answer to a signal that comes meanwhile: the model's other listeners, the columns, have yet
        // to hear of it. The same holds for a booking that is being added.
        if ((planAnnounced || !mAnnounced.isEmpty()) && (what == 16 || what == 17))
            what = 10;
        acts << QStringLiteral("%1:%2").arg(QLatin1String(signal)).arg(what);
        switch (what) {
        case 0:
        case 1:
            form->setDate(someDay());
            break;
        case 2:
        case 3:
            form->showGroup();
            break;
        case 4:
        case 5:
            form->show5Day();
            break;
        case 6:
        case 7:
            form->setResourceList(someGroup(mRandom));
            break;
        case 8:
        case 9:
            form->view()->updateWidgets();
            break;
        case 10:
        case 11:
            add(newBooking(someDay(), people().at(mRandom.bounded(people().size())), someTime()));
            break;
        case 12:
        case 13:
        case 14:
        case 15: {
            // The booking the signal names, if it has one in the model, else any.
            BkCalendarItem* gone = item && item->model == mModel ? item : nullptr;
            if (!gone) {
                const QList<BkCalendarItem*> all = mModel->allItems();
                if (all.isEmpty())
                    break;
                gone = all.at(mRandom.bounded(all.size()));
            }
            if (mAnnounced.contains(gone))
                break;
            mSaved.remove(gone->id.toInt());
            mModel->removeItem(gone);
            delete gone;
            break;
        }
        case 16:
        case 17:
            // A reload: what is unsaved is saved first.
            mModel->commitToDatabase();
            mSaved.clear();
            mModel->clear();
            break;
        case 18:
            form->showMonth();
            break;
        case 19:
            if (mRandom.bounded(4) == 0)
                form->deleteLater();
            break;
        case 20:
            mSaved.remove(item->id.toInt());
            mModel->removeItem(item);
            mFiltered.emplace_back(item);
            break;
        }
    }

    std::vector<std::unique_ptr<BkCalendarItem>> mFiltered;

    QPointer<BkCalendar> mForm;
    BkCalendarModel* mModel;
    QRandomGenerator mRandom;
    int mRate;
    int mDepth = 0;
    bool mInBookingNews = false;
    // The bookings whose adding is being told, outermost first.
    QVector<BkCalendarItem*> mAnnounced;
    // Saves that the form has handed on and the host's listener on the model has yet to write.
    int mSavesHandedRound = 0;
};

} // namespace

class tst_BkCalendarSequences : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Whom the picker of a group's header offers.
        SQLQuery query;
        QVERIFY(query.exec(
            QStringLiteral("CREATE TABLE view_user (id INTEGER, usr_initials TEXT, usr_name TEXT)")));
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE tbl_resource (id INTEGER, fw_text TEXT)")));
        for (const BkCalendarResource& who : pickable())
            QVERIFY(query.exec(who.type == 0 ? QStringLiteral("INSERT INTO view_user VALUES (%1, 'X', '%2')")
                                                   .arg(who.id.toInt())
                                                   .arg(who.name)
                                             : QStringLiteral("INSERT INTO tbl_resource VALUES (%1, '%2')")
                                                   .arg(who.id.toInt())
                                                   .arg(who.name)));
    }
    void init()
    {
        BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
        // Every sequence starts without custom widths.
        FwApplication::app()->setLocalValue(QStringLiteral("CalendarLayout"), QStringList());
    }
    void cleanup() { BkCalendarClock::setFixedNow(QDateTime()); }

    void shouldKeepBoxesAndBookingsInStepThroughoutASequence_data();
    void shouldKeepBoxesAndBookingsInStepThroughoutASequence();
    void shouldSurviveAHostThatAnswersEverySignalWithAnything_data();
    void shouldSurviveAHostThatAnswersEverySignalWithAnything();
};

void tst_BkCalendarSequences::shouldKeepBoxesAndBookingsInStepThroughoutASequence_data()
{
    // The suite runs the first twelve sequences; BK_SEQUENCE_SEEDS="first-last" runs others.
    BkTest::addSeedRows("BK_SEQUENCE_SEEDS", 1, 12);
}

void tst_BkCalendarSequences::shouldKeepBoxesAndBookingsInStepThroughoutASequence()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    // The drags draw from a stream of their own, so that the other steps draw as they always did.
    QRandomGenerator drags(seed * 7919u);
    // So do the steps on plans, widths, the picker, the scale and the width type.
    QRandomGenerator extras(seed * 104723u);
    BkCalendar* form = newForm(seed);
    BkCalendarModel* model = form->model();
    int nextId = 1;
    auto newBooking = [&]() {
        auto* item = new BkCalendarItem;
        item->id = nextId++;
        item->setType(random.bounded(2) ? BkCalendarItem::Meeting : BkCalendarItem::ItemType(0));
        item->setTitle(QStringLiteral("Booking %1").arg(item->id.toInt()));
        item->setText(QStringLiteral("<b>Text</b> %1").arg(item->id.toInt()));
        return item;
    };
    auto someDay = [&]() { return Wednesday.addDays(random.bounded(-3, 4)); };
    auto someTime = [&]() { return QTime(7, 0).addSecs(15 * 60 * random.bounded(40)); };
    // Every third sequence has a host that answers each load request at once with a booking of the
    // person or room asked for, as views and columns are being built.
    if (seed % 3 == 0) {
        connect(model, &BkCalendarModel::loadData, this,
                [&](const QDate& from, const QDate& to, const BkCalendarResource& who) {
                    BkCalendarItem* item = newBooking();
                    const QDate day = someDay();
                    item->setDate(day < from || day > to ? from : day);
                    if (who.type == 0)
                        item->setUserId(who.id);
                    else
                        item->setResourceId(who.id);
                    const QTime start = someTime();
                    item->setTime(start, start.addSecs(60 * 45));
                    model->addItem(item);
                });
    }
    // Moves and drops have somewhere to go and, at lunch on odd days, somewhere they are refused.
    showEverybody(form, true);
    // Saves go nowhere; what matters is that the bookings they hand over are the model's own.
    connect(model, &BkCalendarModel::saveItems, this, [model](const QList<BkCalendarItem*>& items) {
        for (BkCalendarItem* item : items)
            QCOMPARE(item->model, model);
    });

    QList<BkCalendarItem*> removed;
    auto someItem = [&]() -> BkCalendarItem* {
        const QList<BkCalendarItem*> all = model->allItems();
        return all.isEmpty() ? nullptr : all.at(random.bounded(all.size()));
    };

    QSet<BkCalendarItem*> moved;
    QSet<BkCalendarItem*> draggedItems;
    // The bookings, by id, whose boxes the mouse has moved in their columns.
    QSet<int> movedByMouse;
    // Bookings whose day, key or times changed, with the times each had after the last step.
    QSet<BkCalendarItem*> changed;
    QHash<BkCalendarItem*, QPair<QTime, QTime>> times;
    for (int step = 0; step < Steps; ++step) {
        const QHash<BkCalendarItem*, Filing> before = filings(model);
        const int what = random.bounded(23);
        switch (what) {
        case 0:
        case 1:
        case 2:
        case 3:
            showView(form, what);
            break;
        case 4:
            form->setDate(someDay());
            break;
        case 5:
            form->setResourceList(someGroup(random));
            form->showGroup();
            break;
        case 6:
            form->setTimeSteps(random.bounded(2) ? 15 : 30);
            form->setInterval(QTime(6 + random.bounded(3), 0), QTime(17 + random.bounded(4), 0));
            break;
        case 7:
        case 8:
        case 9:
        case 10:
            // Bookings of a person, of a room, or of both: the last stand in two columns of a group.
            for (int n = 0; n < 3; ++n) {
                BkCalendarItem* item = newBooking();
                item->setDate(someDay());
                const int who = random.bounded(3);
                if (who != 1)
                    item->setUserId(random.bounded(1, 3));
                if (who != 0)
                    item->setResourceId(random.bounded(2) ? 1 : 3);
                const QTime start = someTime();
                item->setTime(start, start.addSecs(60 * (15 + 15 * random.bounded(6))));
                model->addItem(item);
            }
            break;
        case 11:
            if (BkCalendarItem* item = someItem()) {
                const QTime start = someTime();
                item->setTime(start, start.addSecs(60 * 30));
            }
            break;
        case 12:
            if (BkCalendarItem* item = someItem())
                item->setDate(someDay());
            break;
        case 13:
            if (BkCalendarItem* item = someItem())
                item->setUserId(random.bounded(2) ? QVariant(random.bounded(1, 3)) : QVariant());
            break;
        case 14:
            if (BkCalendarItem* item = someItem()) {
                model->removeItem(item);
                removed << item;
            }
            break;
        case 15:
            model->rollback();
            break;
        case 16:
            // Saved first: the host must not clear with bookings unsaved.
            model->commitToDatabase();
            if (random.bounded(6) == 0)
                form->clear();
            break;
        case 17:
            model->commitToDatabase();
            break;
        case 20: {
            // A box of the screen takes the focus, and the user moves it a step with an arrow key.
            QList<BkCalendarItemWidget*> boxes;
            for (QGraphicsItem* item : form->view()->scene()->items())
                if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(item))
                    if (box->item())
                        boxes << box;
            if (boxes.isEmpty())
                break;
            BkCalendarItemWidget* box = boxes.at(random.bounded(boxes.size()));
            form->view()->scene()->clearSelection();
            box->setSelected(true);
            box->setFocus();
            QKeyEvent key(QEvent::KeyPress, random.bounded(2) ? Qt::Key_Up : Qt::Key_Down, Qt::NoModifier);
            QCoreApplication::sendEvent(form->view()->scene(), &key);
            break;
        }
        case 21:
        case 22:
            QTest::keyClick(form, BkTest::someFormKey(random), Qt::ControlModifier);
            break;
        default:
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(!form->view()->grab().isNull());
            break;
        }
        const bool dragged = drags.bounded(8) == 0;
        if (dragged) {
            if (BkCalendarItem* item = dragSomeBooking(*form, drags, &movedByMouse))
                draggedItems.insert(item);
        }
        const ExtraStep extra = extras.bounded(4) == 0 ? extraStep(form, extras) : ExtraStep();
        checkBoxes(*form, draggedItems);
        checkExtraStep(*form, extra);
        // Only bookings still in the store are read: a clear deletes the others.
        const QHash<BkCalendarItem*, Filing> after = filings(model);
        if (after.isEmpty()) {
            moved.clear();
            draggedItems.clear();
            changed.clear();
            times.clear();
        }
        for (auto it = before.cbegin(); it != before.cend(); ++it) {
            if (after.contains(it.key()) && after.value(it.key()) != it.value())
                moved.insert(it.key());
        }
        checkJobList(*form, moved + draggedItems);
        for (auto it = after.cbegin(); it != after.cend(); ++it) {
            const QPair<QTime, QTime> now(it.key()->start(), it.key()->end());
            const auto was = times.constFind(it.key());
            if (was != times.constEnd() && *was != now)
                changed.insert(it.key());
            times.insert(it.key(), now);
        }
        checkEveryBookingHasItsBox(*form, moved + changed + draggedItems);
        checkNoBoxesOverlap(*form, movedByMouse);
        checkBoxesFollowTheScale(*form, draggedItems);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("after step %1 (%2%3%4)")
                                 .arg(step)
                                 .arg(what)
                                 .arg(dragged ? QStringLiteral(", then a drag") : QString())
                                 .arg(extra.kind == ExtraStep::None
                                          ? QString()
                                          : QStringLiteral(", then ") + extra.name())));
    }
    model->commitToDatabase();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete form;
    qDeleteAll(removed);
}

void tst_BkCalendarSequences::shouldSurviveAHostThatAnswersEverySignalWithAnything_data()
{
    QTest::addColumn<quint32>("seed");
    // BK_HOSTILE_SEEDS="first-last" runs others, for a longer search by hand.
    quint32 first = 1;
    quint32 last = 8;
    const QList<QByteArray> range = qgetenv("BK_HOSTILE_SEEDS").split('-');
    if (range.size() == 2 && range.at(0).toUInt() <= range.at(1).toUInt() && range.at(1).toUInt() > 0) {
        first = range.at(0).toUInt();
        last = range.at(1).toUInt();
    }
    for (quint64 seed = first; seed <= last; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << quint32(seed);
    // Found by a long search: a drag leaves the scene, and the host answers the change of the booking
    // taken back by saving and clearing the store in the middle of its rollback.
    // And one in which a box with the focus is deleted while the double-booking question is open: the
    // host answers the focus going by showing the month, which measures the scene.
    if (qgetenv("BK_HOSTILE_SEEDS").isEmpty()) {
        QTest::newRow("seed 13771") << quint32(13771);
        QTest::newRow("seed 65748") << quint32(65748);
    }
}

void tst_BkCalendarSequences::shouldSurviveAHostThatAnswersEverySignalWithAnything()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    QPointer<BkCalendar> form(newForm(seed));
    BkCalendarModel* model = form->model();
    showEverybody(form, false);
    // Every few signals the host does something: more often in the first sequences.
    HostileHost host(form, seed * 104729u, 3 + int(seed % 4));
    for (int n = 0; n < 6; ++n)
        host.add(host.newBooking(host.someDay(), people().at(n % 4), host.someTime()));

    const int steps = qEnvironmentVariableIntValue("BK_HOSTILE_STEPS") > 0
                          ? qEnvironmentVariableIntValue("BK_HOSTILE_STEPS")
                          : 120;
    QSet<BkCalendarItem*> dragged;
    // The steps on plans, widths, the picker, the scale and the width type draw from a stream of their
    // own, so that the other steps draw as they always did.
    QRandomGenerator extras(seed * 15485863u);
    ExtraStep extra;
    auto someBox = [&]() -> BkCalendarItemWidget* {
        QList<BkCalendarItemWidget*> boxes;
        for (QGraphicsItem* item : form->view()->scene()->items())
            if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(item))
                if (box->item() && box->isVisible())
                    boxes << box;
        return boxes.isEmpty() ? nullptr : boxes.at(random.bounded(boxes.size()));
    };
    auto someColumn = [&]() -> BkCalendarColumn* {
        const QList<BkCalendarColumn*> columns = form->view()->getColumnList();
        return columns.isEmpty() ? nullptr : columns.at(random.bounded(columns.size()));
    };
    auto viewPoint = [&](const QPointF& scenePos) { return form->view()->mapFromScene(scenePos); };
    auto mouse = [&](QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
                     Qt::MouseButtons buttons) {
        BkTest::sendMouse(form->view(), type, scenePos, button, buttons);
    };
    int step = 0;
    int what = -1;
    for (; step < steps && form; ++step) {
        what = random.bounded(21);
        BkTest::QuestionAnswerer answerer(random.bounded(2) ? QMessageBox::Yes : QMessageBox::No);
        // A double-click above a column's first hour, as the scale may start late, lands on its header
        // and brings up the picker; a right-click there brings up the header's menu.
        const BkCalendarResource anyone = pickable().at(extras.bounded(pickable().size()));
        auto popups = std::make_unique<PopupAnswerer>(PopupAnswerer::Answer(extras.bounded(3)), anyone.id,
                                                      anyone.type, extras.bounded(2));
        switch (what) {
        case 0:
        case 1:
        case 2:
        case 3:
            showView(form, what);
            break;
        case 4:
            form->setDate(host.someDay());
            break;
        case 5:
            form->setResourceList(someGroup(random));
            form->showGroup();
            break;
        case 6:
            form->showMonth();
            break;
        case 7:
            host.add(host.newBooking(host.someDay(), people().at(random.bounded(4)), host.someTime()));
            break;
        case 8:
            // The user moves a box up or down with the mouse.
            if (BkCalendarItemWidget* box = someBox()) {
                QPointF at = box->sceneBoundingRect().center();
                mouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
                for (int moves = 1 + random.bounded(3); moves > 0 && form; --moves) {
                    at.ry() += 7.5 * random.bounded(-8, 9);
                    mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
                }
                if (form)
                    mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
            }
            break;
        case 9:
            if (BkCalendarItem* item = dragSomeBooking(*form, random))
                dragged.insert(item);
            break;
        case 10:
        case 11:
            QTest::keyClick(form, BkTest::someFormKey(random), Qt::ControlModifier);
            break;
        case 12:
            if (BkCalendarItemWidget* box = someBox()) {
                const QPoint at = viewPoint(box->sceneBoundingRect().center());
                QTest::mouseDClick(form->view()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
            }
            break;
        case 13:
            if (BkCalendarItemWidget* box = someBox()) {
                const QPoint at = viewPoint(box->sceneBoundingRect().center());
                QContextMenuEvent event(QContextMenuEvent::Mouse, at,
                                        form->view()->viewport()->mapToGlobal(at));
                QApplication::sendEvent(form->view()->viewport(), &event);
            }
            break;
        case 14:
        case 15:
            // A double-click or a right-click on a column's schedule.
            if (BkCalendarColumn* column = someColumn()) {
                const QPointF at =
                    column->mapToScene(form->view()->timeScale()->pointAt(5.0, host.someTime()));
                if (what == 14) {
                    QTest::mouseDClick(form->view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                                       viewPoint(at));
                } else {
                    mouse(QEvent::MouseButtonPress, at, Qt::RightButton, Qt::RightButton);
                    if (form)
                        mouse(QEvent::MouseButtonRelease, at, Qt::RightButton, Qt::NoButton);
                }
            }
            break;
        case 16:
            if (QCalendarWidget* picker = form->datePicker())
                emit picker->clicked(host.someDay());
            break;
        case 17:
            // A booking dragged into the move list.
            if (FwTreeWidget* tree = form->moveList()) {
                const QList<BkCalendarItem*> all = model->allItems();
                if (all.isEmpty())
                    break;
                QMimeData data;
                data.setData(QStringLiteral("text/calitem"),
                             all.at(random.bounded(all.size()))->id.toString().toLatin1());
                QDropEvent event(QPointF(5, 5), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
                emit tree->dataDropped(&event);
            }
            break;
        case 18:
            // A row of the move list dragged onto a column.
            if (FwTreeWidget* tree = form->moveList()) {
                if (tree->topLevelItemCount() == 0)
                    break;
                FwTreeWidgetItem* row = tree->topLevelItem(random.bounded(tree->topLevelItemCount()));
                // The booking is dragged as one from a column is: it takes along the box that it has.
                if (BkCalendarItem* item = model->findId(row->data(0, IdRole)))
                    dragged.insert(item);
                QMimeData data;
                data.setData(QStringLiteral("application/x-fwtreewidget"),
                             BkTest::treePayload(row->data(0, IdRole).toInt(), qint64(quintptr(row))));
                BkCalendarColumn* column = someColumn();
                if (!column)
                    break;
                const QPointF at =
                    column->mapToScene(form->view()->timeScale()->pointAt(8.0, host.someTime()));
                QWidget* viewport = form->view()->viewport();
                BkTest::sendDrag(form->view()->scene(), QEvent::GraphicsSceneDragEnter, at, &data, viewport);
                if (form)
                    BkTest::sendDrag(form->view()->scene(), QEvent::GraphicsSceneDragMove, at, &data,
                                     viewport);
                if (form && random.bounded(3))
                    BkTest::sendDrag(form->view()->scene(), QEvent::GraphicsSceneDrop, at, &data, viewport);
            }
            break;
        case 19:
            if (random.bounded(3))
                model->commitToDatabase();
            else {
                // The rollback tells every other booking only: all of them stand as taken back.
                model->rollback();
                for (BkCalendarItem* item : model->allItems())
                    host.write(item);
            }
            break;
        default:
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            if (form)
                QVERIFY(!form->view()->grab().isNull());
            break;
        }
        // The steps of the second stream answer what they bring up themselves.
        popups.reset();
        extra = form && extras.bounded(4) == 0 ? extraStep(form, extras, &host.planAnnounced) : ExtraStep();
        if (!form)
            break;
        host.quiet = true;
        checkBoxes(*form, dragged);
        QString problem;
        // A booking shows in a column at most once.
        for (BkCalendarColumn* column : form->view()->getColumnList()) {
            QSet<BkCalendarItem*> shown;
            for (QGraphicsItem* child : column->childItems()) {
                auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
                if (!box || !box->item() || !box->isVisible())
                    continue;
                if (shown.contains(box->item()))
                    problem =
                        QStringLiteral("booking %1 shows twice in one column").arg(box->item()->id.toInt());
                shown.insert(box->item());
            }
        }
        // The job list shows a booking at most once. A row that a clear left behind keeps the address
        // of its deleted booking, which a new booking may have now: such a row has the other title.
        if (BkCalendarList* list = form->jobList()) {
            QHash<qulonglong, QString> live;
            for (BkCalendarItem* item : model->allItems())
                live.insert(qulonglong(quintptr(item)), item->title());
            QSet<qulonglong> rows;
            for (int i = 0; i < list->count(); ++i) {
                const QListWidgetItem* row = list->item(i);
                const qulonglong key = row->data(BkCalendarList::ItemRole).toULongLong();
                if (!live.contains(key) || live.value(key) != row->data(BkCalendarList::TitleRole).toString())
                    continue;
                if (rows.contains(key))
                    problem = QStringLiteral("%1 shows twice in the job list").arg(live.value(key));
                rows << key;
            }
        }
        if (problem.isEmpty())
            host.nothingLost(&problem);
        if (!problem.isEmpty())
            QFAIL(qPrintable(
                QStringLiteral("%1 after step %2 (%3%4), host acts %5")
                    .arg(problem)
                    .arg(step)
                    .arg(what)
                    .arg(extra.kind == ExtraStep::None ? QString() : QStringLiteral(", then ") + extra.name())
                    .arg(host.acts.mid(qMax(0, host.acts.size() - 6)).join(QLatin1Char(' ')))));
        host.quiet = false;
        if (QTest::currentTestFailed())
            break;
    }
    if (QTest::currentTestFailed())
        QFAIL(qPrintable(QStringLiteral("after step %1 (%2), host acts %3")
                             .arg(step)
                             .arg(what)
                             .arg(host.acts.mid(qMax(0, host.acts.size() - 6)).join(QLatin1Char(' ')))));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete form.data();
}

FW_TEST_MAIN(tst_BkCalendarSequences)
#include "tst_bkcalendarsequences.moc"
