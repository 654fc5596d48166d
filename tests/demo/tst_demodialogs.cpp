// The demo's dialogs and menus as the user works them: the booking dialog, the settings, the group,
// a double click on a free plan block that creates a booking, and the booking's context menu.

#include "FwModal.h"
#include "FwTestApplication.h"

#include <BookingDialog.h>
#include <DemoDatabase.h>
#include <DemoStore.h>
#include <DemoWindow.h>
#include <GroupDialog.h>
#include <SettingsDialog.h>

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarView.h>

#include <FwApplication.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimeEdit>
#include <QUndoStack>

namespace {
const QDate Wednesday(2026, 11, 25);

void sendMouse(BkCalendarView* view, QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button)
{
    const QPoint local = view->mapFromScene(scenePos);
    const Qt::MouseButtons buttons =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    QMouseEvent event(type, local, view->viewport()->mapToGlobal(local), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &event);
}

// Picks the entry of the menu that pops up next, as a user's click would.
void answerMenu(const QString& text)
{
    auto* timer = new QTimer(qApp);
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, text]() {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        timer->stop();
        timer->deleteLater();
        for (QAction* action : menu->actions())
            if (action->text().remove(QLatin1Char('&')) == text) {
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
        menu->close();
    });
    timer->start();
}
} // namespace

class tst_DemoDialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void shouldEditEveryFieldOfABooking();
    void shouldRefuseABookingThatEndsBeforeItStarts();
    void shouldLeaveTheTextAsItWasUnlessEdited();
    void shouldLeaveValuesItHasNoChoiceForAsTheyWere_data();
    void shouldLeaveValuesItHasNoChoiceForAsTheyWere();
    void shouldReadAndWriteTheSettings();
    void shouldChooseAndOrderTheGroup();
    void shouldCreateABookingOnADoubleClickOfAFreeBlock();
    void shouldDeleteABookingFromItsMenuAndUndoIt();

private:
    QTemporaryDir mDir;
    DemoDatabase mDb;
};

void tst_DemoDialogs::initTestCase()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
        FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
    DemoConnection connection;
    connection.file = mDir.filePath(QStringLiteral("practice.sqlite"));
    QVERIFY2(mDb.open(connection, Wednesday), qPrintable(mDb.lastError()));
}

void tst_DemoDialogs::cleanupTestCase()
{
    mDb.close();
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_DemoDialogs::shouldEditEveryFieldOfABooking()
{
    DemoBookingRow row;
    row.id = 5;
    row.date = Wednesday;
    row.start = QTime(9, 0);
    row.end = QTime(9, 30);
    row.title = QStringLiteral("Meyer");
    QMap<int, BkCalendarStatusEntry> statuses;
    statuses[1].name = QStringLiteral("Booked");
    statuses[4].name = QStringLiteral("Done");
    BookingDialog dialog(row, statuses);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Edit booking"));
    dialog.titleEdit()->selectAll();
    QTest::keyClicks(dialog.titleEdit(), QStringLiteral("Meyer, follow-up"));
    dialog.endEdit()->setTime(QTime(10, 15));
    dialog.kindBox()->setCurrentIndex(dialog.kindBox()->findText(QStringLiteral("Meeting")));
    dialog.statusBox()->setCurrentIndex(dialog.statusBox()->findText(QStringLiteral("Done")));
    QTest::mouseClick(dialog.findChild<QCheckBox*>(QStringLiteral("phone")), Qt::LeftButton);
    QTest::mouseClick(dialog.findChild<QCheckBox*>(QStringLiteral("locked")), Qt::LeftButton);
    const DemoBookingRow edited = dialog.row();
    QCOMPARE(edited.id, 5);
    QCOMPARE(edited.title, QStringLiteral("Meyer, follow-up"));
    QCOMPARE(edited.end, QTime(10, 15));
    QCOMPARE(edited.type, int(BkCalendarItem::Meeting));
    QCOMPARE(edited.statusId.toInt(), 4);
    QCOMPARE(edited.flags, int(BkCalendarItem::FlagPhone));
    QCOMPARE(edited.locked, 1);
}

void tst_DemoDialogs::shouldRefuseABookingThatEndsBeforeItStarts()
{
    DemoBookingRow row;
    row.date = Wednesday;
    row.start = QTime(9, 0);
    row.end = QTime(9, 30);
    BookingDialog dialog(row, {});
    QCOMPARE(dialog.windowTitle(), QStringLiteral("New booking"));
    QPushButton* ok = dialog.buttons()->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    dialog.endEdit()->setTime(QTime(9, 0));
    QVERIFY(!ok->isEnabled());
    dialog.endEdit()->setTime(QTime(8, 0));
    QVERIFY(!ok->isEnabled());
    dialog.endEdit()->setTime(QTime(9, 5));
    QVERIFY(ok->isEnabled());
}

void tst_DemoDialogs::shouldLeaveTheTextAsItWasUnlessEdited()
{
    DemoBookingRow row;
    row.date = Wednesday;
    row.start = QTime(9, 0);
    row.end = QTime(9, 30);
    row.text = QStringLiteral("<b>Agenda</b>: figures");
    BookingDialog dialog(row, {});
    QCOMPARE(dialog.row().text, row.text);
    QCOMPARE(dialog.row(), row);
}

// A booking as another program stored it: a kind, flag bits, a status or seconds that the dialog has
// no choice for stay as they were when the user changes something else, and change when the user
// picks a value of the dialog's own.
void tst_DemoDialogs::shouldLeaveValuesItHasNoChoiceForAsTheyWere_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QVariant>("statusId");
    QTest::addColumn<QTime>("start");

    QTest::newRow("plain") << 0 << 0 << QVariant(1) << QTime(9, 0);
    QTest::newRow("a kind of another program") << 2 << 0 << QVariant(1) << QTime(9, 0);
    QTest::newRow("flag bits of another program") << 0 << (8 | 1) << QVariant(1) << QTime(9, 0);
    QTest::newRow("a status that is gone") << 0 << 0 << QVariant(42) << QTime(9, 0);
    QTest::newRow("a start with seconds") << 0 << 0 << QVariant(1) << QTime(9, 0, 37);
}

void tst_DemoDialogs::shouldLeaveValuesItHasNoChoiceForAsTheyWere()
{
    QFETCH(int, type);
    QFETCH(int, flags);
    QFETCH(QVariant, statusId);
    QFETCH(QTime, start);
    DemoBookingRow row;
    row.id = 7;
    row.date = Wednesday;
    row.start = start;
    row.end = QTime(9, 30);
    row.title = QStringLiteral("Roth");
    row.type = type;
    row.flags = flags;
    row.statusId = statusId;
    QMap<int, BkCalendarStatusEntry> statuses;
    statuses[1].name = QStringLiteral("Booked");
    statuses[4].name = QStringLiteral("Done");

    BookingDialog dialog(row, statuses);
    dialog.show();
    dialog.titleEdit()->selectAll();
    QTest::keyClicks(dialog.titleEdit(), QStringLiteral("Roth, again"));
    DemoBookingRow expected = row;
    expected.title = QStringLiteral("Roth, again");
    QCOMPARE(dialog.row(), expected);

    // Values of the dialog's own replace them.
    dialog.kindBox()->setCurrentIndex(dialog.kindBox()->findText(QStringLiteral("Meeting")));
    dialog.statusBox()->setCurrentIndex(dialog.statusBox()->findText(QStringLiteral("Done")));
    dialog.findChild<QCheckBox*>(QStringLiteral("mail"))->click();
    dialog.startEdit()->setTime(QTime(9, 15));
    const DemoBookingRow edited = dialog.row();
    QCOMPARE(edited.type, int(BkCalendarItem::Meeting));
    QCOMPARE(edited.statusId.toInt(), 4);
    QCOMPARE(edited.flags, flags | int(BkCalendarItem::FlagMail));
    QCOMPARE(edited.start, QTime(9, 15));
}

void tst_DemoDialogs::shouldReadAndWriteTheSettings()
{
    FwApplication* app = FwApplication::app();
    app->setValue(10, QStringLiteral("set_snaponmovebooking"), QString());
    app->setValue(1, QStringLiteral("set_hideempty"), QString());
    app->setValue(QStringLiteral("not a number"), QStringLiteral("gst_calendarsensitivity"), QString());
    SettingsDialog dialog;
    QCOMPARE(dialog.number(QStringLiteral("set_snaponmovebooking"))->value(), 10);
    QVERIFY(dialog.toggle(QStringLiteral("set_hideempty"))->isChecked());
    // A stored value that is no number gives the default.
    QCOMPARE(dialog.number(QStringLiteral("gst_calendarsensitivity"))->value(), 3);
    dialog.number(QStringLiteral("set_snaponmovebooking"))->setValue(15);
    dialog.toggle(QStringLiteral("set_hideempty"))->setChecked(false);
    dialog.toggle(QStringLiteral("set_alwaysroundup"))->setChecked(true);
    dialog.save();
    QCOMPARE(app->getValue(QStringLiteral("set_snaponmovebooking")).toInt(), 15);
    QCOMPARE(app->getValue(QStringLiteral("set_hideempty")).toInt(), 0);
    QCOMPARE(app->getValue(QStringLiteral("set_alwaysroundup")).toInt(), 1);
    app->setValue(0, QStringLiteral("set_alwaysroundup"), QString());
    app->setValue(5, QStringLiteral("set_snaponmovebooking"), QString());
}

void tst_DemoDialogs::shouldChooseAndOrderTheGroup()
{
    const QList<BkCalendarResource> everybody{BkCalendarResource(1, QStringLiteral("Anna"), 0),
                                              BkCalendarResource(2, QStringLiteral("Carl"), 0),
                                              BkCalendarResource(1, QStringLiteral("Room 1"), 1)};
    GroupDialog dialog(everybody, {BkCalendarResource(1, QStringLiteral("Room 1"), 1), BkCalendarResource()});
    QListWidget* list = dialog.list();
    QCOMPARE(list->count(), 3);
    // The members first, then the others; the placeholder is no member.
    QCOMPARE(list->item(0)->text(), QStringLiteral("Room 1 (resource)"));
    QCOMPARE(dialog.group().count(), 1);
    list->item(2)->setCheckState(Qt::Checked);
    list->setCurrentRow(2);
    QTest::mouseClick(dialog.findChildren<QPushButton*>().at(0), Qt::LeftButton); // Up
    const QList<BkCalendarResource> group = dialog.group();
    QCOMPARE(group.count(), 2);
    QCOMPARE(group.at(0).name, QStringLiteral("Room 1"));
    QCOMPARE(group.at(1).name, QStringLiteral("Carl"));
    QCOMPARE(group.at(1).type, 0);
}

void tst_DemoDialogs::shouldCreateABookingOnADoubleClickOfAFreeBlock()
{
    DemoWindow window(1);
    window.showView(DemoWindow::Day);
    // Four weeks ahead: plans, but no bookings yet.
    const QDate day = Wednesday.addDays(28);
    window.calendar()->setDate(day);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarView* view = window.calendar()->view();
    BkCalendarColumn* column = view->getColumnList().first();
    QCOMPARE(column->date(), day);
    QVERIFY(column->getItems(false).isEmpty());
    QVERIFY(!column->plans().isEmpty());

    FwTest::whenModal([](QWidget* modal) {
        auto* dialog = qobject_cast<BookingDialog*>(modal);
        QVERIFY(dialog);
        QCOMPARE(dialog->startEdit()->time(), QTime(10, 0));
        QCOMPARE(dialog->endEdit()->time(), QTime(10, 30));
        dialog->titleEdit()->setText(QStringLiteral("Walk-in"));
        QTest::mouseClick(dialog->buttons()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    });
    const QPointF at = column->mapToScene(view->timeScale()->pointAt(40.0, QTime(10, 7)));
    sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonDblClick, at, Qt::LeftButton);
    sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton);

    const QList<BkCalendarItem*> items = column->getItems(false);
    QCOMPARE(items.count(), 1);
    BkCalendarItem* item = items.first();
    QCOMPARE(item->title(), QStringLiteral("Walk-in"));
    QCOMPARE(item->start(), QTime(10, 0));
    QCOMPARE(item->userId().toInt(), 1);
    const std::optional<DemoBookingRow> stored = window.store()->readRow(item->id.toInt());
    QVERIFY(stored.has_value());
    QCOMPARE(stored->title, QStringLiteral("Walk-in"));
    QCOMPARE(stored->date, day);
    QCOMPARE(window.undoStack()->undoText(), QStringLiteral("New booking \"Walk-in\""));
}

void tst_DemoDialogs::shouldDeleteABookingFromItsMenuAndUndoIt()
{
    DemoWindow window(1);
    window.showView(DemoWindow::Day);
    window.calendar()->setDate(Wednesday);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarView* view = window.calendar()->view();
    BkCalendarColumn* column = view->getColumnList().first();
    BkCalendarItem* item = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (!item && candidate->widget && candidate->start() >= QTime(8, 0) &&
            candidate->end() <= QTime(12, 0))
            item = candidate;
    QVERIFY(item);
    const int id = item->id.toInt();
    const int before = column->getItems(false).count();

    // A right click on the booking, and "Delete" in its menu.
    answerMenu(QStringLiteral("Delete"));
    const QPoint local = view->mapFromScene(item->widget->sceneBoundingRect().center());
    QContextMenuEvent event(QContextMenuEvent::Mouse, local, view->viewport()->mapToGlobal(local));
    QApplication::sendEvent(view->viewport(), &event);
    QTRY_VERIFY(!window.calendar()->model()->findId(id));
    QCOMPARE(column->getItems(false).count(), before - 1);
    QVERIFY(!window.store()->readRow(id).has_value());

    window.undoStack()->undo();
    QVERIFY(window.store()->readRow(id).has_value());
    QVERIFY(window.calendar()->model()->findId(id));
    QCOMPARE(column->getItems(false).count(), before);
}

FW_TEST_MAIN(tst_DemoDialogs)
#include "tst_demodialogs.moc"
