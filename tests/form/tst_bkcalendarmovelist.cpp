// The move list of the calendar form: bookings parked with Ctrl+X or a drag into the dock, taken off
// again into the selected column with Ctrl+V, last in, first out.

#include "FwTestApplication.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <FwTreeWidget.h>

#include "BkBookingScene.h"
#include <QDataStream>
#include <QDockWidget>
#include <QDrag>

#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>

namespace {
const QDate Monday(2026, 11, 23);
const QDate Wednesday(2026, 11, 25);
const BkCalendarResource Anna(5, QStringLiteral("Anna"), 0);

BkCalendarItem* addBooking(BkCalendarModel* model, int id, const QDate& date, QTime start, QTime end,
                           const QString& title)
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setTitle(title);
    item->setDate(date);
    item->setUserId(Anna.id);
    item->setTime(start, end);
    model->addItem(item);
    return item;
}

// Anna's week, open for bookings from 07:00 to 19:00 every day.
struct Week
{
    Week()
    {
        form.setResource(Anna);
        for (int day = 0; day < 5; ++day) {
            auto* plan = new BkCalendarPlan;
            plan->date = Monday.addDays(day);
            plan->resource = Anna;
            plan->start = QTime(7, 0);
            plan->end = QTime(19, 0);
            plan->bookable = true;
            form.model()->addItem(plan);
        }
        form.show5Day();
        form.setDate(Wednesday);
    }
    BkCalendarColumn* column(int day) const { return form.view()->getColumnList().at(day); }
    void selectOnly(BkCalendarColumn* column)
    {
        form.view()->scene()->clearSelection();
        if (column)
            column->setSelected(true);
    }
    int rows() const { return form.moveList()->topLevelItemCount(); }
    // Anna's booking, added to the model and parked on the move list.
    BkCalendarItem* park(int id, const QDate& date, QTime start, QTime end, const QString& title)
    {
        BkCalendarItem* item = addBooking(form.model(), id, date, start, end, title);
        form.addToMoveList(item);
        return item;
    }
    BkCalendar form;
};

QDropEvent* dropOf(QMimeData* data)
{
    return new QDropEvent(QPointF(5, 5), Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
}
} // namespace

class tst_BkCalendarMoveList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldParkABookingOnce();
    void shouldRefuseANullBooking();
    void shouldParkBesideARowThatIsNotOneOfTheList();
    void shouldTakeTheLastParkedFirst();
    void shouldMoveIntoTheSelectedColumnAndCommit();
    void shouldLeaveTheRowWithoutASelectedColumn();
    void shouldLeaveRowAndBookingOnARefusedMove();
    void shouldDoNothingOnAnEmptyList();
    void shouldKeepARowWhoseBookingIsGone();
    void shouldLeaveRowsThatTheHostChangesWhileTakingOff();
    void shouldSelectNoBookingThatTheHostTakesAwayWhileTakingOff();
    void shouldStopTakingOffABookingThatTheHostTakesAwayOnItsNewDay();
    void shouldParkWithCtrlXAndAdvance();
    void shouldNotAdvanceOnCtrlXWithoutABooking();
    void shouldAdvanceOnCtrlXOfAParkedBooking();
    void shouldTakeOffWithCtrlV();
    void shouldSelectTheColumnsOwnBoxOfABookingThatTwoColumnsShow();
    void shouldParkADroppedBooking();
    void shouldIgnoreForeignDrops_data();
    void shouldIgnoreForeignDrops();
    void shouldStartADragOfTheRowUnderThePointer();
    void shouldStartNoDragBesideTheRows();
    void shouldForgetATreeOfTheHostsOnceItIsGone();
};

void tst_BkCalendarMoveList::initTestCase()
{
    qRegisterMetaType<QList<BkCalendarItem*>>();
}

void tst_BkCalendarMoveList::init()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
}

void tst_BkCalendarMoveList::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarMoveList::shouldParkABookingOnce()
{
    Week w;
    BkCalendarItem* item =
        addBooking(w.form.model(), 17, Wednesday, QTime(9, 0), QTime(10, 30), QStringLiteral("Check-up"));
    QVERIFY(w.form.addToMoveList(item));
    QVERIFY(w.form.addToMoveList(item));
    QCOMPARE(w.rows(), 1);
    FwTreeWidgetItem* row = w.form.moveList()->topLevelItem(0);
    QCOMPARE(row->data(0, IdRole), QVariant(17));
    QCOMPARE(row->text(0), QTime(9, 0).toString(Qt::TextDate));
    QCOMPARE(row->text(1), QTime(10, 30).toString(Qt::TextDate));
    QCOMPARE(row->text(2), QStringLiteral("Check-up"));
    // The booking stays where it is while parked.
    QCOMPARE(item->date(), Wednesday);
    QVERIFY(item->widget);
}

void tst_BkCalendarMoveList::shouldRefuseANullBooking()
{
    Week w;
    QVERIFY(!w.form.addToMoveList(nullptr));
    QCOMPARE(w.rows(), 0);
}

void tst_BkCalendarMoveList::shouldParkBesideARowThatIsNotOneOfTheList()
{
    Week w;
    // A plain row that a host puts on the tree names no booking of the list.
    auto* foreign = new QTreeWidgetItem(w.form.moveList(), QStringList{QStringLiteral("note")});
    foreign->setData(0, IdRole, 17);
    BkCalendarItem* item =
        addBooking(w.form.model(), 17, Wednesday, QTime(9, 0), QTime(10, 0), QStringLiteral("Check-up"));
    QVERIFY(w.form.addToMoveList(item));
    QCOMPARE(w.rows(), 2);
    QCOMPARE(w.form.moveList()->topLevelItem(1)->text(2), QStringLiteral("Check-up"));
    QVERIFY(w.form.addToMoveList(item));
    QCOMPARE(w.rows(), 2);
}

void tst_BkCalendarMoveList::shouldTakeTheLastParkedFirst()
{
    Week w;
    BkCalendarItem* first =
        addBooking(w.form.model(), 1, Monday, QTime(8, 0), QTime(9, 0), QStringLiteral("first"));
    BkCalendarItem* second =
        addBooking(w.form.model(), 2, Monday, QTime(10, 0), QTime(11, 0), QStringLiteral("second"));
    w.form.addToMoveList(first);
    w.form.addToMoveList(second);
    w.selectOnly(w.column(3));
    w.form.moveFromList();
    QCOMPARE(second->date(), Monday.addDays(3));
    QCOMPARE(first->date(), Monday);
    QCOMPARE(w.rows(), 1);
    QCOMPARE(w.form.moveList()->topLevelItem(0)->text(2), QStringLiteral("first"));
}

void tst_BkCalendarMoveList::shouldMoveIntoTheSelectedColumnAndCommit()
{
    Week w;
    BkCalendarItem* item =
        addBooking(w.form.model(), 7, Monday, QTime(9, 15), QTime(10, 0), QStringLiteral("Visit"));
    QSignalSpy saved(&w.form, &BkCalendar::saveItems);
    w.form.addToMoveList(item);
    w.selectOnly(w.column(4));
    w.form.moveFromList();
    // The column changes, and with it the date; the time of day stays.
    QCOMPARE(item->date(), Monday.addDays(4));
    QCOMPARE(item->start(), QTime(9, 15));
    QCOMPARE(item->end(), QTime(10, 0));
    QCOMPARE(w.rows(), 0);
    QVERIFY(item->widget);
    QCOMPARE(item->widget->parentItem(), static_cast<QGraphicsItem*>(w.column(4)));
    QCOMPARE(w.form.view()->scene()->selectedItems(), QList<QGraphicsItem*>{item->widget});
    QVERIFY(w.form.model()->commitTimer()->isActive());
    QTRY_COMPARE(saved.count(), 1);
    QCOMPARE(saved.first().first().value<QList<BkCalendarItem*>>(), QList<BkCalendarItem*>{item});
}

void tst_BkCalendarMoveList::shouldLeaveTheRowWithoutASelectedColumn()
{
    Week w;
    BkCalendarItem* item = w.park(7, Monday, QTime(9, 0), QTime(10, 0), QStringLiteral("Visit"));
    w.selectOnly(nullptr);
    w.form.moveFromList();
    QCOMPARE(w.rows(), 1);
    QCOMPARE(item->date(), Monday);
    QVERIFY(!w.form.model()->commitTimer()->isActive());
}

void tst_BkCalendarMoveList::shouldLeaveRowAndBookingOnARefusedMove()
{
    Week w;
    // 06:00 lies before the day's plan: the column refuses.
    BkCalendarItem* item = w.park(7, Monday, QTime(6, 0), QTime(6, 30), QStringLiteral("Early"));
    w.selectOnly(w.column(2));
    w.form.moveFromList();
    QCOMPARE(w.rows(), 1);
    QCOMPARE(item->date(), Monday);
    QCOMPARE(item->start(), QTime(6, 0));
    QVERIFY(!w.form.model()->commitTimer()->isActive());
}

void tst_BkCalendarMoveList::shouldDoNothingOnAnEmptyList()
{
    Week w;
    w.selectOnly(w.column(1));
    w.form.moveFromList();
    QCOMPARE(w.rows(), 0);
    QCOMPARE(w.form.getSelectedColumn(), w.column(1));
}

void tst_BkCalendarMoveList::shouldKeepARowWhoseBookingIsGone()
{
    Week w;
    BkCalendarItem* gone =
        addBooking(w.form.model(), 7, Monday, QTime(9, 0), QTime(10, 0), QStringLiteral("Gone"));
    BkCalendarItem* kept =
        addBooking(w.form.model(), 8, Monday, QTime(11, 0), QTime(12, 0), QStringLiteral("Kept"));
    w.form.addToMoveList(kept);
    w.form.addToMoveList(gone);
    w.form.model()->removeItem(gone);
    delete gone;
    w.selectOnly(w.column(2));
    // The stale row blocks the rows before it.
    w.form.moveFromList();
    w.form.moveFromList();
    QCOMPARE(w.rows(), 2);
    QCOMPARE(kept->date(), Monday);
}

void tst_BkCalendarMoveList::shouldLeaveRowsThatTheHostChangesWhileTakingOff()
{
    Week w;
    BkCalendarItem* taken =
        addBooking(w.form.model(), 7, Monday, QTime(9, 0), QTime(10, 0), QStringLiteral("Taken"));
    BkCalendarItem* other =
        addBooking(w.form.model(), 8, Monday, QTime(11, 0), QTime(12, 0), QStringLiteral("Other"));
    w.form.addToMoveList(taken);
    w.selectOnly(w.column(2));
    // A host that lays out the list anew when the selection changes: the taken row is gone by then,
    // and the row it parks meanwhile is the host's.
    bool once = false;
    QObject::connect(&w.form, &BkCalendar::selectionChanged, &w.form, [&] {
        if (once)
            return;
        once = true;
        w.form.moveList()->clear();
        w.form.addToMoveList(other);
    });
    w.form.moveFromList();
    QVERIFY(once);
    QCOMPARE(taken->date(), Monday.addDays(2));
    QCOMPARE(w.rows(), 1);
    QCOMPARE(w.form.moveList()->topLevelItem(0)->data(0, IdRole), QVariant(8));
}

void tst_BkCalendarMoveList::shouldSelectNoBookingThatTheHostTakesAwayWhileTakingOff()
{
    Week w;
    BkCalendarItem* item = w.park(7, Monday, QTime(9, 0), QTime(10, 0), QStringLiteral("Taken"));
    w.selectOnly(w.column(2));
    // A host that drops the booking as soon as nothing is selected any more.
    QObject::connect(&w.form, &BkCalendar::selectionChanged, &w.form, [&] {
        if (item && w.form.view()->selectedItems().isEmpty()) {
            w.form.model()->removeItem(item);
            delete item;
            item = nullptr;
        }
    });
    w.form.moveFromList();
    QVERIFY(!item);
    QVERIFY(w.form.view()->selectedItems().isEmpty());
    QCOMPARE(w.rows(), 0);
}

void tst_BkCalendarMoveList::shouldStopTakingOffABookingThatTheHostTakesAwayOnItsNewDay()
{
    Week w;
    BkCalendarItem* item = w.park(7, Monday, QTime(9, 0), QTime(10, 0), QStringLiteral("Taken"));
    w.selectOnly(w.column(2));
    // A host that reloads a booking as soon as it hears of its new day: the booking goes between
    // the new day and the new person.
    int told = 0;
    QObject::connect(w.form.model(), &BkCalendarModel::itemChanged, &w.form, [&](BkCalendarItem* changed) {
        if (!item || changed != item || item->date() == Monday)
            return;
        ++told;
        w.form.model()->removeItem(item);
        delete item;
        item = nullptr;
    });
    w.form.moveFromList();
    QCOMPARE(told, 1);
    QVERIFY(!item);
    // The move did not end: the row stays, and nothing is saved.
    QCOMPARE(w.rows(), 1);
    QVERIFY(!w.form.model()->commitTimer()->isActive());
}

void tst_BkCalendarMoveList::shouldParkWithCtrlXAndAdvance()
{
    Week w;
    BkCalendarItem* first =
        addBooking(w.form.model(), 1, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("first"));
    BkCalendarItem* second =
        addBooking(w.form.model(), 2, Wednesday, QTime(10, 0), QTime(11, 0), QStringLiteral("second"));
    w.selectOnly(w.column(2));
    first->widget->setSelected(true);
    QTest::keyClick(&w.form, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(w.rows(), 1);
    QCOMPARE(w.form.moveList()->topLevelItem(0)->text(2), QStringLiteral("first"));
    QVERIFY(second->widget->isSelected());
    QVERIFY(!first->widget->isSelected());
}

void tst_BkCalendarMoveList::shouldNotAdvanceOnCtrlXWithoutABooking()
{
    Week w;
    BkCalendarItem* item =
        addBooking(w.form.model(), 1, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("first"));
    w.selectOnly(w.column(2));
    QTest::keyClick(&w.form, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(w.rows(), 0);
    QVERIFY(!item->widget->isSelected());
}

void tst_BkCalendarMoveList::shouldAdvanceOnCtrlXOfAParkedBooking()
{
    Week w;
    BkCalendarItem* first =
        addBooking(w.form.model(), 1, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("first"));
    BkCalendarItem* second =
        addBooking(w.form.model(), 2, Wednesday, QTime(10, 0), QTime(11, 0), QStringLiteral("second"));
    w.form.addToMoveList(first);
    w.selectOnly(w.column(2));
    first->widget->setSelected(true);
    QTest::keyClick(&w.form, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(w.rows(), 1);
    QVERIFY(second->widget->isSelected());
}

void tst_BkCalendarMoveList::shouldTakeOffWithCtrlV()
{
    Week w;
    BkCalendarItem* item = w.park(1, Monday, QTime(8, 0), QTime(9, 0), QStringLiteral("first"));
    w.selectOnly(w.column(1));
    QTest::keyClick(&w.form, Qt::Key_V);
    QCOMPARE(w.rows(), 1);
    QTest::keyClick(&w.form, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(w.rows(), 0);
    QCOMPARE(item->date(), Monday.addDays(1));
}

void tst_BkCalendarMoveList::shouldSelectTheColumnsOwnBoxOfABookingThatTwoColumnsShow()
{
    // In a group of a person and a room, their booking stands in both columns; the booking names only
    // the newest of its boxes. Taken off into the other column, that column's own box is selected.
    BkCalendar form;
    const BkCalendarResource room(7, QStringLiteral("Room 7"), 1);
    for (const BkCalendarResource& who : {Anna, room}) {
        auto* plan = new BkCalendarPlan;
        plan->date = Wednesday;
        plan->resource = who;
        plan->start = QTime(7, 0);
        plan->end = QTime(19, 0);
        plan->bookable = true;
        form.model()->addItem(plan);
    }
    BkCalendarItem* item =
        addBooking(form.model(), 1, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("both"));
    item->setResourceId(room.id);
    item->commit(true);
    form.setDate(Wednesday);
    form.setResourceList({Anna, room});
    form.showGroup();
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    const QList<BkCalendarColumn*> columns = form.view()->getColumnList();
    QVERIFY(columns.size() >= 2);
    QVERIFY(item->widget);
    BkCalendarColumn* other = item->widget->parentItem() == columns.at(0) ? columns.at(1) : columns.at(0);
    const QList<BkCalendarItemWidget*> own = BkTest::boxesOf(other, item);
    QCOMPARE(own.size(), 1);
    BkCalendarItemWidget* newest = item->widget;

    form.addToMoveList(item);
    form.view()->scene()->clearSelection();
    other->setSelected(true);
    QTest::keyClick(&form, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(form.moveList()->topLevelItemCount(), 0);
    QCOMPARE(BkTest::boxesOf(other, item), own);
    QVERIFY(own.first()->isSelected());
    QVERIFY(own.first()->hasFocus());
    QVERIFY(!newest->isSelected());
    QCOMPARE(form.selectedItem(), item);
}

void tst_BkCalendarMoveList::shouldParkADroppedBooking()
{
    Week w;
    addBooking(w.form.model(), 42, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("dropped"));
    auto* data = new QMimeData;
    data->setData(QStringLiteral("text/calitem"), QByteArrayLiteral("42"));
    QScopedPointer<QDropEvent> event(dropOf(data));
    emit w.form.moveList()->dataDropped(event.data());
    QVERIFY(event->isAccepted());
    QCOMPARE(w.rows(), 1);
    QCOMPARE(w.form.moveList()->topLevelItem(0)->text(2), QStringLiteral("dropped"));
    delete data;
}

void tst_BkCalendarMoveList::shouldIgnoreForeignDrops_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("unknown id") << QStringLiteral("text/calitem") << QByteArrayLiteral("43");
    QTest::newRow("not a number") << QStringLiteral("text/calitem") << QByteArrayLiteral("forty-two");
    QTest::newRow("another format") << QStringLiteral("text/plain") << QByteArrayLiteral("42");
}

void tst_BkCalendarMoveList::shouldIgnoreForeignDrops()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, payload);
    Week w;
    addBooking(w.form.model(), 42, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("dropped"));
    QMimeData data;
    data.setData(format, payload);
    QScopedPointer<QDropEvent> event(dropOf(&data));
    event->accept();
    emit w.form.moveList()->dataDropped(event.data());
    QVERIFY(!event->isAccepted());
    QCOMPARE(w.rows(), 0);
}

void tst_BkCalendarMoveList::shouldStartADragOfTheRowUnderThePointer()
{
    Week w;
    w.park(42, Wednesday, QTime(8, 0), QTime(9, 0), QStringLiteral("row"));
    FwTreeWidget* list = w.form.moveList();
    // The dock floats on its own, as when the user tears it off the main window.
    w.form.moveDock()->setFloating(true);
    w.form.moveDock()->resize(300, 200);
    w.form.moveDock()->show();
    QVERIFY(QTest::qWaitForWindowExposed(w.form.moveDock()));
    FwTreeWidgetItem* row = list->topLevelItem(0);
    const QPoint at = list->visualItemRect(row).center();

    // Look at the drag: while it runs, if the platform holds it open (then Escape ends it), or just
    // after, if the platform ends it at once.
    QByteArray payload;
    QString format;
    auto look = [&]() {
        for (QDrag* drag : w.form.findChildren<QDrag*>()) {
            if (!drag->mimeData() || drag->mimeData()->formats().isEmpty())
                continue;
            format = drag->mimeData()->formats().first();
            payload = drag->mimeData()->data(format);
        }
    };
    QTimer::singleShot(50, &w.form, [&]() {
        look();
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(list, &escape);
    });
    emit list->dragStarted(FwTreeWidget::dragFormat(), at);
    if (format.isEmpty())
        look();
    QCOMPARE(format, FwTreeWidget::dragFormat());
    QDataStream stream(payload);
    qint32 id = 0;
    qint64 address = 0;
    stream >> id >> address;
    QCOMPARE(id, 42);
    QCOMPARE(address, qint64(reinterpret_cast<quintptr>(row)));
    // The row stays: the column that takes the drop removes it.
    QCOMPARE(w.rows(), 1);
}

void tst_BkCalendarMoveList::shouldStartNoDragBesideTheRows()
{
    Week w;
    FwTreeWidget* list = w.form.moveList();
    list->resize(300, 200);
    emit list->dragStarted(FwTreeWidget::dragFormat(), QPoint(150, 150));
    QVERIFY(w.form.findChildren<QDrag*>().isEmpty());
}

FW_TEST_MAIN(tst_BkCalendarMoveList)
void tst_BkCalendarMoveList::shouldForgetATreeOfTheHostsOnceItIsGone()
{
    // A host may give the form a tree of its own for the list, and delete it later.
    Week w;
    auto* tree = new FwTreeWidget(nullptr);
    w.form.initMoveList(tree);
    QCOMPARE(w.form.moveList(), tree);
    BkCalendarItem* item =
        addBooking(w.form.model(), 17, Wednesday, QTime(9, 0), QTime(10, 0), QStringLiteral("Check-up"));
    QVERIFY(w.form.addToMoveList(item));
    QCOMPARE(tree->topLevelItemCount(), 1);
    delete tree;

    // The list is gone with its tree: nothing is parked and nothing taken off.
    QVERIFY(!w.form.moveList());
    QVERIFY(!w.form.addToMoveList(item));
    w.form.moveFromList();
    QCOMPARE(item->date(), Wednesday);
    QVERIFY(item->widget);

    // A new tree takes the list up again.
    FwTreeWidget other(nullptr);
    w.form.initMoveList(&other);
    QVERIFY(w.form.addToMoveList(item));
    QCOMPARE(other.topLevelItemCount(), 1);
}

#include "tst_bkcalendarmovelist.moc"
