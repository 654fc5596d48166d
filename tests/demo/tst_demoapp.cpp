// The demo application end to end, on a real SQLite file: the schema and the seeded practice, the group
// view reading a day through loadData, a booking moved by the mouse and saved by the commit a second
// later, bookings created, edited, deleted and undone, a save that fails and loses nothing, and the
// screenshot mode of the program itself.

#include "FwModal.h"
#include "FwTestApplication.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarList.h>
#include <BkCalendarModel.h>
#include <BkCalendarRecords.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarUserList.h>
#include <BkCalendarView.h>

#include <BookingDialog.h>
#include <DemoDatabase.h>
#include <DemoStore.h>
#include <DemoWindow.h>
#include <GroupDialog.h>
#include <SettingsDialog.h>

#include <FwApplication.h>
#include <FwTreeWidget.h>

#include <QAction>
#include <QCalendarWidget>
#include <QDialog>
#include <QImage>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <QUndoStack>

#include <optional>

namespace {
const QDate Wednesday(2026, 11, 25);
const BkCalendarResource Anna(1, QStringLiteral("Anna Berg"), 0);

// Runs `use` on the file through a connection of its own, as another program would.
template <typename Use> void onOwnConnection(const QString& file, Use use)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        db.setDatabaseName(file);
        if (db.open())
            use(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}

QVariant readBack(const QString& file, const QString& sql, int id)
{
    QVariant result;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(db);
        query.prepare(sql);
        query.addBindValue(id);
        if (query.exec() && query.next())
            result = query.value(0);
    });
    return result;
}

bool writeBack(const QString& file, const QString& sql, int id)
{
    bool ok = false;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(db);
        query.prepare(sql);
        query.addBindValue(id);
        ok = query.exec() && query.numRowsAffected() == 1;
    });
    return ok;
}

// A new booking of this Wednesday, as the booking dialog hands it over.
DemoBookingRow wednesdayRow(const QTime& start, const QTime& end, const QString& title)
{
    DemoBookingRow row;
    row.date = Wednesday;
    row.start = start;
    row.end = end;
    row.title = title;
    return row;
}

bool runSql(const QString& file, const QString& sql)
{
    bool ok = false;
    onOwnConnection(file, [&](QSqlDatabase& db) { ok = QSqlQuery(db).exec(sql); });
    return ok;
}

int countRows(const QString& file, const QString& sql)
{
    int result = -1;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(sql, db);
        if (query.next())
            result = query.value(0).toInt();
    });
    return result;
}

// The rows of the booking `id` in the file: 1 while it is stored, 0 once it is gone.
int rowsOf(const QString& file, int id)
{
    return countRows(file, QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE id = %1").arg(id));
}

// Another program deletes the booking `id`; true when it found the row.
bool anotherProgramDeletes(const QString& file, int id)
{
    return writeBack(file, QStringLiteral("DELETE FROM demo_booking WHERE id = ?"), id);
}

BkCalendarColumn* columnOf(BkCalendar* calendar, const BkCalendarResource& who)
{
    for (BkCalendarColumn* column : calendar->view()->getColumnList())
        if (column->resource() == who)
            return column;
    return nullptr;
}

// Opens the program's database file again, read-only or writable, under the running program.
bool reopenDatabase(bool readOnly)
{
    QSqlDatabase db = QSqlDatabase::database();
    db.close();
    db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_OPEN_READONLY") : QString());
    return db.open();
}

// The window shows the day of Wednesday.
void showWednesday(DemoWindow& window)
{
    window.showView(DemoWindow::Day);
    window.calendar()->setDate(Wednesday);
}

// A plain booking of the column that can move a quarter of an hour later inside its plan.
BkCalendarItem* movableBooking(BkCalendarColumn* column)
{
    for (BkCalendarItem* item : column->getItems(true)) {
        if (item->type() != 0 || item->locked || !item->resourceId().isNull() || !item->widget)
            continue;
        const QTime later = item->end().addSecs(15 * 60);
        if ((item->start() >= QTime(8, 0) && later <= QTime(12, 0)) ||
            (item->start() >= QTime(13, 0) && later <= QTime(17, 0)))
            return item;
    }
    return nullptr;
}

void mouse(BkCalendarView* view, QEvent::Type type, const QPointF& scenePos, Qt::MouseButtons buttons)
{
    const QPoint local = view->mapFromScene(scenePos);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, local, view->viewport()->mapToGlobal(local), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &event);
}
} // namespace

class tst_DemoApp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldCreateTheSchemaAndSeedAnEmptyFile();
    void shouldLoadTheGroupDayAndSaveAMouseMove();
    void shouldFindEverythingAfterReopening();
    void shouldWriteCreationEditDeletionAndTheirUndo();
    void shouldLoseNothingWhenASaveFails();
    void shouldAskBeforeClosingOnChangesItCouldNotSave();
    void shouldTellWhenTheGroupOrTheSettingsCouldNotBeSaved();
    void shouldWriteOnlyWhatMovedAndKeepAnotherProgramsEdit();
    void shouldNotBringBackABookingThatAnotherProgramDeleted();
    void shouldLetGoOfABookingThatASaveTookOffWhileItsMenuOrDialogWasOpen_data();
    void shouldLetGoOfABookingThatASaveTookOffWhileItsMenuOrDialogWasOpen();
    void shouldAddEachPlanOnceWhenARangeIsAskedTwice();
    void shouldReadTheRowsOfTheDaysAskedFor_data();
    void shouldReadTheRowsOfTheDaysAskedFor();
    void shouldAnswerARequestWithoutAFirstDay();
    void shouldReadAStoredLockOfEveryForm_data();
    void shouldReadAStoredLockOfEveryForm();
    void shouldKeepAStepThatCouldNotBeUndoneForTheNextTry();
    void shouldGiveABookingWithoutColoursAndABlockWithoutAKindPlainOnes();
    void shouldKeepStoredValuesItCannotReadWhenAnotherFieldChanges();
    void shouldRefuseANewerSchema();
    void shouldReadOnlyWellFormedGroupEntries();
    void shouldShowTheSelectedDayWhenTheCalendarsOwnButtonsSwitchTheView();
    void shouldAnswerAGestureOnceInAColumnPickedAgainOnItsHeader();
    void shouldKeepTheDatePickerOnTheDayOfTheColumnClicked();
    void shouldWriteAScreenshotOfTheExpectedSize();

private:
    QTemporaryDir mDir;
    QString mFile;
    DemoDatabase mDb;
};

void tst_DemoApp::initTestCase()
{
    QVERIFY(mDir.isValid());
    mFile = mDir.filePath(QStringLiteral("practice.sqlite"));
    qRegisterMetaType<QList<BkCalendarItem*>>();
    // The window's layout of an earlier run of these tests is not this run's business.
    for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
        FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
}

void tst_DemoApp::init()
{
    // The practice is seeded round this Wednesday, and the calendar shows it as today.
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    DemoConnection connection;
    connection.file = mFile;
    QVERIFY2(mDb.open(connection, Wednesday), qPrintable(mDb.lastError()));
}

void tst_DemoApp::cleanup()
{
    // A test that turned the file read-only and failed half-way leaves it writable for the next one.
    QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false)
        .setConnectOptions(QString());
    mDb.close();
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_DemoApp::shouldCreateTheSchemaAndSeedAnEmptyFile()
{
    QVERIFY(QFile::exists(mFile));
    QCOMPARE(mDb.version(), DemoDatabase::latestVersion());
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM view_user")), 6);
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM tbl_resource")), 4);
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM tbl_casestage")), 5);
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM tbl_calendarstatus")), 3);
    QVERIFY(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_plan WHERE pl_date = '2026-11-25'")) >
            10);
    // Every kind of booking is there: plain, meeting, reserved, note, locked, with flags and strips.
    for (const QString& condition :
         {QStringLiteral("bk_type = 0"), QStringLiteral("bk_type = 1"), QStringLiteral("bk_type = 6"),
          QStringLiteral("bk_type = 7"), QStringLiteral("bk_locked = 1"), QStringLiteral("bk_flags = 3"),
          QStringLiteral("bk_left IS NOT NULL"), QStringLiteral("bk_resource IS NOT NULL")})
        QVERIFY2(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE ") + condition) > 0,
                 qPrintable(condition));
    // A day's lookup by user or by resource has its index.
    QCOMPARE(
        countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND name IN "
                                        "('demo_booking_user_day', 'demo_booking_resource_day', "
                                        "'demo_plan_day')")),
        3);
    // The settings table answers the framework.
    QCOMPARE(FwApplication::app()->getValue(QStringLiteral("set_calshowtime")).toInt(), 1);
}

void tst_DemoApp::shouldLoadTheGroupDayAndSaveAMouseMove()
{
    DemoWindow window(1);
    QSignalSpy loads(window.calendar(), &BkCalendar::loadData);
    window.showView(DemoWindow::Group);
    window.calendar()->setDate(Wednesday);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(loads.count() > 0);

    BkCalendarColumn* column = columnOf(window.calendar(), Anna);
    QVERIFY(column);
    QCOMPARE(column->date(), Wednesday);
    const int stored =
        countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE bk_user = 1 AND "
                                        "bk_date = '2026-11-25' AND bk_type <> 6"));
    QVERIFY(stored > 0);
    QCOMPARE(column->getItems(true).count(), stored);
    QVERIFY(!column->plans().isEmpty());

    BkCalendarItem* item = movableBooking(column);
    QVERIFY(item);
    const int id = item->id.toInt();
    const QTime start = item->start();
    const QTime later = start.addSecs(15 * 60);
    BkCalendarView* view = window.calendar()->view();
    view->ensureVisible(item->widget->sceneBoundingRect());
    QSignalSpy saved(window.calendar(), &BkCalendar::saveItems);
    const QPointF grab = item->widget->sceneBoundingRect().center();
    const QPointF target = column->mapToScene(view->timeScale()->pointAt(20.0, later));
    mouse(view, QEvent::MouseButtonPress, grab, Qt::LeftButton);
    mouse(view, QEvent::MouseMove, target, Qt::LeftButton);
    mouse(view, QEvent::MouseButtonRelease, target, Qt::NoButton);
    // The pointer lands on the snap grid; the seconds of the pixel stay, as with every mouse move.
    QCOMPARE(QTime(item->start().hour(), item->start().minute()), later);
    const QTime moved = item->start();

    // Written by the commit a second after the release, and read back by a connection of its own.
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(
        QTime::fromString(
            readBack(mFile, QStringLiteral("SELECT bk_start FROM demo_booking WHERE id = ?"), id).toString(),
            Qt::ISODate),
        moved);
    QCOMPARE(window.undoStack()->count(), 1);
    QCOMPARE(window.undoStack()->undoText(), QStringLiteral("Move \"%1\"").arg(item->title()));
    // The user closes the window; it keeps its view for the next start.
    QVERIFY(window.close());
    QCOMPARE(FwApplication::app()->localValue(QStringLiteral("demo/view")).toInt(), int(DemoWindow::Group));
}

void tst_DemoApp::shouldFindEverythingAfterReopening()
{
    // init() opened the file again: it is the same practice, not seeded twice, the move still there.
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM view_user")), 6);
    QCOMPARE(mDb.version(), DemoDatabase::latestVersion());
    DemoWindow window(1);
    window.showView(DemoWindow::Group);
    window.calendar()->setDate(Wednesday);
    BkCalendarColumn* column = columnOf(window.calendar(), Anna);
    QVERIFY(column);
    const int stored =
        countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE bk_user = 1 AND "
                                        "bk_date = '2026-11-25' AND bk_type <> 6"));
    QCOMPARE(column->getItems(true).count(), stored);
    // The window came back in the view it was left in.
    QCOMPARE(window.currentView(), DemoWindow::Group);
}

void tst_DemoApp::shouldWriteCreationEditDeletionAndTheirUndo()
{
    DemoWindow window(1);
    showWednesday(window);
    QUndoStack* undo = window.undoStack();
    BkCalendarModel* model = window.calendar()->model();
    const QString titleSql = QStringLiteral("SELECT bk_title FROM demo_booking WHERE id = ?");

    BkCalendarItem* item =
        window.createBooking(Anna, wednesdayRow(QTime(16, 0), QTime(16, 30), QStringLiteral("Created")));
    QVERIFY(item);
    const int id = item->id.toInt();
    QVERIFY(id > 0);
    QCOMPARE(model->findId(id), item);
    QVERIFY(item->widget);
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Created"));

    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Edited");
    changed.flags = BkCalendarItem::FlagPhone;
    QSignalSpy saved(window.calendar(), &BkCalendar::saveItems);
    QVERIFY(window.editBooking(item, changed));
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Edited"));
    QCOMPARE(readBack(mFile, QStringLiteral("SELECT bk_flags FROM demo_booking WHERE id = ?"), id).toInt(),
             1);

    QVERIFY(window.deleteBooking(item));
    QVERIFY(!model->findId(id));
    QVERIFY(readBack(mFile, titleSql, id).isNull());
    QCOMPARE(undo->count(), 3);

    // Back, step by step: the deletion, the edit, the creation; and forward again.
    undo->undo();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Edited"));
    BkCalendarItem* back = model->findId(id);
    QVERIFY(back);
    QCOMPARE(back->title(), QStringLiteral("Edited"));
    QVERIFY(back->widget);
    undo->undo();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Created"));
    QCOMPARE(model->findId(id)->title(), QStringLiteral("Created"));
    QVERIFY(!model->isInvalid(model->findId(id)));
    undo->undo();
    QVERIFY(readBack(mFile, titleSql, id).isNull());
    QVERIFY(!model->findId(id));
    undo->redo();
    undo->redo();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Edited"));
    QCOMPARE(model->findId(id)->title(), QStringLiteral("Edited"));
    // Undo and redo write the file themselves; nothing waits for a save afterwards.
    QTest::qWait(1200);
    QCOMPARE(saved.count(), 1);
}

// Another program stored values that the demo reads as none or cuts short; a change of another
// field writes that field alone, and the values stay in the file as they were.
void tst_DemoApp::shouldKeepStoredValuesItCannotReadWhenAnotherFieldChanges()
{
    int id = 0;
    {
        DemoWindow window(1);
        showWednesday(window);
        BkCalendarItem* item =
            window.createBooking(Anna, wednesdayRow(QTime(16, 30), QTime(16, 45), QStringLiteral("Raw")));
        QVERIFY(item);
        id = item->id.toInt();
    }
    QVERIFY(writeBack(mFile,
                      QStringLiteral("UPDATE demo_booking SET bk_status = 'abc', bk_left = 'not a colour', "
                                     "bk_flags = 99999999999 WHERE id = ?"),
                      id));
    const auto stored = [this, id](const char* column) {
        return readBack(
            mFile, QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(QLatin1String(column)), id);
    };

    DemoWindow window(1);
    showWednesday(window);
    BkCalendarItem* item = window.calendar()->model()->findId(id);
    QVERIFY(item);
    QSignalSpy saved(window.calendar(), &BkCalendar::saveItems);
    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Renamed");
    QVERIFY(window.editBooking(item, changed));
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(stored("bk_title").toString(), QStringLiteral("Renamed"));
    QCOMPARE(stored("bk_status").toString(), QStringLiteral("abc"));
    QCOMPARE(stored("bk_left").toString(), QStringLiteral("not a colour"));
    QCOMPARE(stored("bk_flags").toLongLong(), 99999999999LL);

    // A field that the user sets is written; the others still stay.
    changed = DemoBookingRow::fromItem(item);
    changed.statusId = 2;
    QVERIFY(window.editBooking(item, changed));
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 2, 20000);
    QCOMPARE(stored("bk_status").toInt(), 2);
    QCOMPARE(stored("bk_left").toString(), QStringLiteral("not a colour"));
    QCOMPARE(stored("bk_title").toString(), QStringLiteral("Renamed"));
    QVERIFY(window.deleteBooking(item));
}

void tst_DemoApp::shouldLoseNothingWhenASaveFails()
{
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarColumn* column = window.calendar()->view()->getColumnList().first();
    BkCalendarItem* item = movableBooking(column);
    QVERIFY(item);
    const int id = item->id.toInt();
    const QString titleSql = QStringLiteral("SELECT bk_title FROM demo_booking WHERE id = ?");
    const QString before = readBack(mFile, titleSql, id).toString();

    // The file turns read-only under the running program.
    QVERIFY(reopenDatabase(true));

    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Written later");
    QSignalSpy failed(window.store(), &DemoStore::saveFailed);
    window.editBooking(item, changed);
    QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, 20000);
    QVERIFY(FwApplication::app()->currentMessageCritical());
    QVERIFY(FwApplication::app()->currentMessage().contains(QStringLiteral("could not be saved")));
    QCOMPARE(readBack(mFile, titleSql, id).toString(), before);
    // Kept in the calendar and waiting for the next save.
    QCOMPARE(item->title(), QStringLiteral("Written later"));
    QVERIFY(window.calendar()->model()->isInvalid(item));
    QCOMPARE(window.undoStack()->count(), 0);

    QVERIFY(reopenDatabase(false));
    // The next change's save writes both.
    BkCalendarItem* other = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (candidate != item && candidate->type() == 0)
            other = candidate;
    QVERIFY(other);
    QSignalSpy saved(window.store(), &DemoStore::written);
    window.setStatus(other, 4);
    QTRY_COMPARE_WITH_TIMEOUT(saved.count(), 1, 20000);
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Written later"));
    QCOMPARE(
        readBack(mFile, QStringLiteral("SELECT bk_status FROM demo_booking WHERE id = ?"), other->id.toInt())
            .toInt(),
        4);
    QVERIFY(!window.calendar()->model()->isInvalid(item));
}

// Closing writes what waits for the save timer. When that write fails the user is asked: No keeps the
// window and the changes, and the next close writes them; Yes closes and leaves the file as it was.
void tst_DemoApp::shouldAskBeforeClosingOnChangesItCouldNotSave()
{
    DemoWindow window(1);
    showWednesday(window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarItem* item = movableBooking(window.calendar()->view()->getColumnList().first());
    QVERIFY(item);
    const int id = item->id.toInt();
    const QString titleSql = QStringLiteral("SELECT bk_title FROM demo_booking WHERE id = ?");
    const QString before = readBack(mFile, titleSql, id).toString();

    QVERIFY(reopenDatabase(true));
    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Not written yet");
    QVERIFY(window.editBooking(item, changed));

    QString asked;
    FwTest::whenModal([&asked](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        asked = box->text();
        box->button(QMessageBox::No)->click();
    });
    QVERIFY(!window.close());
    QVERIFY2(asked.contains(QStringLiteral("could not be saved")), qPrintable(asked));
    QVERIFY(window.isVisible());
    QVERIFY(window.calendar()->model()->isInvalid(item));
    QCOMPARE(item->title(), QStringLiteral("Not written yet"));
    QCOMPARE(readBack(mFile, titleSql, id).toString(), before);

    QVERIFY(reopenDatabase(false));
    QVERIFY(window.close());
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Not written yet"));

    // Once more on a file that stays read-only, answered Yes: the window goes, the file is untouched.
    DemoWindow second(1);
    showWednesday(second);
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&second));
    BkCalendarItem* again = second.calendar()->model()->findId(id);
    QVERIFY(again);
    QVERIFY(reopenDatabase(true));
    changed = DemoBookingRow::fromItem(again);
    changed.title = QStringLiteral("Given up");
    QVERIFY(second.editBooking(again, changed));
    FwTest::whenModal([](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        box->button(QMessageBox::Yes)->click();
    });
    QVERIFY(second.close());
    QVERIFY(reopenDatabase(false));
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Not written yet"));
}

// The file turns read-only under the running program: the group chosen in its dialog and the settings
// chosen in theirs can't be written. The user is told, as of bookings that could not be saved, and
// works on with what was chosen; the file keeps what it had.
void tst_DemoApp::shouldTellWhenTheGroupOrTheSettingsCouldNotBeSaved()
{
    const auto storedSetting = [this](const char* key) {
        QString value;
        onOwnConnection(mFile, [&](QSqlDatabase& db) {
            QSqlQuery query(db);
            query.prepare(QStringLiteral("SELECT fw_value FROM fw_setting WHERE fw_key = ?"));
            query.addBindValue(QLatin1String(key));
            if (query.exec() && query.next())
                value = query.value(0).toString();
        });
        return value;
    };
    const QString group = storedSetting("usr_bookinggrouplist");
    const QString snap = storedSetting("set_snaponmovebooking");
    QVERIFY(!group.isEmpty());
    QVERIFY(!snap.isEmpty());
    DemoWindow window(1);
    showWednesday(window);
    QSignalSpy failed(window.store(), &DemoStore::saveFailed);
    QVERIFY(reopenDatabase(true));

    FwApplication::app()->clearMessage();
    FwTest::whenModal([](QWidget* modal) {
        auto* dialog = qobject_cast<GroupDialog*>(modal);
        QVERIFY(dialog);
        for (int i = 0; i < dialog->list()->count(); ++i) {
            QListWidgetItem* row = dialog->list()->item(i);
            const bool chosen = row->text().startsWith(QLatin1String("Carl Dahl")) ||
                                row->text().startsWith(QLatin1String("Room 2"));
            row->setCheckState(chosen ? Qt::Checked : Qt::Unchecked);
        }
        dialog->accept();
    });
    window.chooseGroup();
    QCOMPARE(failed.count(), 1);
    QVERIFY(FwApplication::app()->currentMessageCritical());
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("group could not be saved")),
             qPrintable(FwApplication::app()->currentMessage()));
    // On show as chosen, and kept in the file as it was.
    QCOMPARE(window.currentView(), DemoWindow::Group);
    QStringList shown;
    for (BkCalendarColumn* column : window.calendar()->view()->getColumnList())
        shown << column->resource().name;
    QCOMPARE(shown, (QStringList{QStringLiteral("Carl Dahl"), QStringLiteral("Room 2"),
                                 QStringLiteral("Double click to add")}));
    QCOMPARE(storedSetting("usr_bookinggrouplist"), group);

    FwApplication::app()->clearMessage();
    FwTest::whenModal([](QWidget* modal) {
        auto* dialog = qobject_cast<SettingsDialog*>(modal);
        QVERIFY(dialog);
        dialog->number(QStringLiteral("set_snaponmovebooking"))->setValue(20);
        dialog->accept();
    });
    window.openSettings();
    // One message for all the settings of the dialog.
    QCOMPARE(failed.count(), 2);
    QVERIFY(FwApplication::app()->currentMessageCritical());
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("settings could not be saved")),
             qPrintable(FwApplication::app()->currentMessage()));
    QCOMPARE(FwApplication::app()->getValue(QStringLiteral("set_snaponmovebooking")).toInt(), 20);
    QCOMPARE(storedSetting("set_snaponmovebooking"), snap);

    // Written again once the file takes writes, for the tests that follow.
    QVERIFY(reopenDatabase(false));
    FwApplication::app()->setValue(group, QStringLiteral("usr_bookinggrouplist"), QStringLiteral("tbl_user"));
    FwApplication::app()->setValue(snap.toInt(), QStringLiteral("set_snaponmovebooking"), QString());
    QCOMPARE(failed.count(), 2);
    QCOMPARE(storedSetting("set_snaponmovebooking"), snap);
}

// Another program edits a booking while it is on show; the move saved here writes the times alone,
// and its undo sets them back, both leaving the other program's edit in place.
void tst_DemoApp::shouldWriteOnlyWhatMovedAndKeepAnotherProgramsEdit()
{
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarColumn* column = window.calendar()->view()->getColumnList().first();
    BkCalendarItem* item = movableBooking(column);
    QVERIFY(item);
    const int id = item->id.toInt();
    const QTime start = item->start();
    const QTime end = item->end();
    QVERIFY(writeBack(mFile,
                      QStringLiteral("UPDATE demo_booking SET bk_title = 'Renamed elsewhere', bk_status = 5, "
                                     "bk_flags = 2 WHERE id = ?"),
                      id));
    const auto stored = [this, id](const char* column) {
        return readBack(
            mFile, QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(QLatin1String(column)), id);
    };

    QSignalSpy written(window.store(), &DemoStore::written);
    item->setTime(start.addSecs(15 * 60), end.addSecs(15 * 60));
    item->commit(false);
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, 20000);
    QCOMPARE(stored("bk_start").toString(), start.addSecs(15 * 60).toString(QStringLiteral("HH:mm:ss")));
    QCOMPARE(stored("bk_end").toString(), end.addSecs(15 * 60).toString(QStringLiteral("HH:mm:ss")));
    QCOMPARE(stored("bk_title").toString(), QStringLiteral("Renamed elsewhere"));
    QCOMPARE(stored("bk_status").toInt(), 5);
    QCOMPARE(stored("bk_flags").toInt(), 2);
    QCOMPARE(window.undoStack()->undoText(), QStringLiteral("Move \"Renamed elsewhere\""));

    window.undoStack()->undo();
    QCOMPARE(stored("bk_start").toString(), start.toString(QStringLiteral("HH:mm:ss")));
    QCOMPARE(stored("bk_end").toString(), end.toString(QStringLiteral("HH:mm:ss")));
    QCOMPARE(stored("bk_title").toString(), QStringLiteral("Renamed elsewhere"));
    QCOMPARE(stored("bk_status").toInt(), 5);
    QCOMPARE(item->start(), start);
}

// Another program deletes a booking while it is on show, and the user moves it and changes another
// one: the save leaves the deletion as it is, takes the booking off the calendar and says so, and
// writes the other change.
void tst_DemoApp::shouldNotBringBackABookingThatAnotherProgramDeleted()
{
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarColumn* column = window.calendar()->view()->getColumnList().first();
    BkCalendarItem* item = movableBooking(column);
    QVERIFY(item);
    const int id = item->id.toInt();
    BkCalendarItem* other = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (candidate != item && candidate->type() == 0 && candidate->statusId.toInt() != 4)
            other = candidate;
    QVERIFY(other);
    const int otherId = other->id.toInt();
    const int shown = column->getItems(true).size();
    QVERIFY(anotherProgramDeletes(mFile, id));

    QSignalSpy written(window.store(), &DemoStore::written);
    FwApplication::app()->clearMessage();
    item->setTime(item->start().addSecs(15 * 60), item->end().addSecs(15 * 60));
    item->commit(false);
    window.setStatus(other, 4);
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, 20000);
    QCOMPARE(rowsOf(mFile, id), 0);
    QVERIFY(!model->findId(id));
    QCOMPARE(column->getItems(true).size(), shown - 1);
    QVERIFY(model->invalidItems().isEmpty());
    QVERIFY(FwApplication::app()->currentMessageCritical());
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("deleted by another program")),
             qPrintable(FwApplication::app()->currentMessage()));
    // The rest of the save is written, and is the one step back.
    QCOMPARE(
        readBack(mFile, QStringLiteral("SELECT bk_status FROM demo_booking WHERE id = ?"), otherId).toInt(),
        4);
    QCOMPARE(model->findId(otherId), other);
    QCOMPARE(window.undoStack()->count(), 1);
    QCOMPARE(window.undoStack()->undoText(), QStringLiteral("Edit \"%1\"").arg(other->title()));
}

void tst_DemoApp::shouldLetGoOfABookingThatASaveTookOffWhileItsMenuOrDialogWasOpen_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("dialog") << QString();
    QTest::newRow("menu: edit") << QStringLiteral("&Edit…");
    QTest::newRow("menu: park") << QStringLiteral("Park on the &move list");
    QTest::newRow("menu: status") << QStringLiteral("&Status");
    QTest::newRow("menu: delete") << QStringLiteral("&Delete");
}

// The save a second after a move runs whenever the event loop does, also in the loop of the booking's
// menu or dialog. When another program deleted the booking meanwhile, that save takes it off the
// calendar; what the user then picks in the menu or dialog finds no booking and changes nothing.
void tst_DemoApp::shouldLetGoOfABookingThatASaveTookOffWhileItsMenuOrDialogWasOpen()
{
    QFETCH(QString, entry);
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarColumn* column = window.calendar()->view()->getColumnList().first();
    BkCalendarItem* item = movableBooking(column);
    QVERIFY(item);
    const int id = item->id.toInt();
    // Put back at the end, for the tests that follow and look for a booking to move on this day.
    std::optional<DemoBookingRow> stored = window.store()->readRow(id);
    QVERIFY(stored);
    QVERIFY(anotherProgramDeletes(mFile, id));
    item->setTime(item->start().addSecs(15 * 60), item->end().addSecs(15 * 60));
    item->commit(false);

    // The save comes first, then the user's choice; a dialog, also the one that the menu's first entry
    // opens, is accepted as it stands.
    bool chosen = false;
    QTimer user;
    user.setInterval(20);
    QObject::connect(&user, &QTimer::timeout, [&]() {
        if (chosen)
            return;
        QWidget* modal = QApplication::activeModalWidget();
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu && !modal)
            return;
        chosen = true;
        model->commitToDatabase();
        if (modal) {
            qobject_cast<QDialog*>(modal)->accept();
            return;
        }
        for (QAction* action : menu->actions()) {
            if (action->text() != entry)
                continue;
            if (QMenu* sub = action->menu())
                sub->actions().last()->trigger();
            else
                action->trigger();
        }
        menu->close();
    });
    user.start();
    if (entry.isEmpty())
        emit window.calendar()->itemActivated(item);
    else
        emit window.calendar()->itemContextMenu(QPoint(100, 100), item);
    QVERIFY(chosen);
    // A dialog that the edit entry opened is answered by the same hand.
    QTRY_VERIFY(!QApplication::activeModalWidget());
    user.stop();

    QVERIFY(!model->findId(id));
    QVERIFY(model->invalidItems().isEmpty());
    QCOMPARE(rowsOf(mFile, id), 0);
    QCOMPARE(window.calendar()->moveList()->topLevelItemCount(), 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(rowsOf(mFile, id), 0);

    QVERIFY(window.store()->writeRow(*stored));
    QCOMPARE(rowsOf(mFile, id), 1);
}

// The calendar asks for each day once, but a host can't tell a repeated request from a new one: the
// answer to a second request for the same days adds no booking and no plan block twice.
void tst_DemoApp::shouldAddEachPlanOnceWhenARangeIsAskedTwice()
{
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarColumn* column = columnOf(window.calendar(), Anna);
    QVERIFY(column);
    const int plans = model->plans(Wednesday, Anna).size();
    const int items = model->items(Wednesday, Anna).size();
    QCOMPARE(plans, countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_plan WHERE pl_type = 0 AND "
                                                    "pl_key = 1 AND pl_date = '2026-11-25'")));
    QVERIFY(items > 0);
    QCOMPARE(column->plans().size(), plans);

    window.store()->loadData(Wednesday.addDays(-1), Wednesday.addDays(1), Anna);
    QCOMPARE(model->plans(Wednesday, Anna).size(), plans);
    QCOMPARE(model->items(Wednesday, Anna).size(), items);
    QCOMPARE(column->plans().size(), plans);
}

// Rows written by another program: a booking or a plan block that can't be shown is left out, and a
// day written with a time of day is read as that day, at either end of the days asked for.
void tst_DemoApp::shouldReadTheRowsOfTheDaysAskedFor_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("day");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QDate>("shownOn");

    // The days asked for are Tuesday to Thursday of the seeded week.
    for (const QString& table : {QStringLiteral("demo_booking"), QStringLiteral("demo_plan")}) {
        const QByteArray name = table.toLatin1() + ": ";
        QTest::newRow(name + "a plain row") << table << "2026-11-25"
                                            << "09:00:00"
                                            << "09:30:00" << Wednesday;
        QTest::newRow(name + "ending before it starts") << table << "2026-11-25"
                                                        << "15:00:00"
                                                        << "14:00:00" << QDate();
        QTest::newRow(name + "a time that is none") << table << "2026-11-25"
                                                    << "soon"
                                                    << "14:00:00" << QDate();
        QTest::newRow(name + "a day that is none") << table << "2026-11-250"
                                                   << "09:00:00"
                                                   << "09:30:00" << QDate();
        QTest::newRow(name + "the day after the days asked for") << table << "2026-11-27"
                                                                 << "09:00:00"
                                                                 << "09:30:00" << QDate();
        QTest::newRow(name + "the first day with a time of day") << table << "2026-11-24 00:00:00"
                                                                 << "09:00:00"
                                                                 << "09:30:00" << Wednesday.addDays(-1);
        QTest::newRow(name + "the last day with a time of day") << table << "2026-11-26 00:00:00"
                                                                << "09:00:00"
                                                                << "09:30:00" << Wednesday.addDays(1);
        QTest::newRow(name + "the day after with a time of day") << table << "2026-11-27 00:00:00"
                                                                 << "09:00:00"
                                                                 << "09:30:00" << QDate();
    }
}

void tst_DemoApp::shouldReadTheRowsOfTheDaysAskedFor()
{
    QFETCH(QString, table);
    QFETCH(QString, day);
    QFETCH(QString, start);
    QFETCH(QString, end);
    QFETCH(QDate, shownOn);
    const BkCalendarResource who(9, QStringLiteral("Somebody new"), 0);
    const QString insert =
        table == QLatin1String("demo_booking")
            ? QStringLiteral("INSERT INTO demo_booking (id, bk_date, bk_user, bk_start, bk_end, bk_title) "
                             "VALUES (900001, '%1', 9, '%2', '%3', 'Odd')")
            : QStringLiteral("INSERT INTO demo_plan (id, pl_date, pl_type, pl_key, pl_start, pl_end, "
                             "pl_bookable, pl_info) VALUES (900001, '%1', 0, 9, '%2', '%3', 1, 1)");
    QVERIFY(runSql(mFile, insert.arg(day, start, end)));

    BkCalendarModel model;
    DemoStore store(&model);
    store.loadData(Wednesday.addDays(-1), Wednesday.addDays(1), who);
    runSql(mFile, QStringLiteral("DELETE FROM %1 WHERE id = 900001").arg(table));

    QList<QDate> days;
    if (table == QLatin1String("demo_booking")) {
        for (BkCalendarItem* item : model.allItems())
            days << item->date();
    } else {
        for (auto date = model.planStore().cbegin(); date != model.planStore().cend(); ++date)
            for (const QList<BkCalendarPlan*>& plans : date.value())
                for (BkCalendarPlan* plan : plans) {
                    QVERIFY(plan->start <= plan->end);
                    days << plan->date;
                }
    }
    QCOMPARE(days, shownOn.isValid() ? QList<QDate>{shownOn} : QList<QDate>());
}

// Another program stored the lock of a booking as a number or a word: what clearly means locked reads
// as locked, what clearly means unlocked as unlocked, and what reads as neither as locked.
void tst_DemoApp::shouldReadAStoredLockOfEveryForm_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("locked");

    QTest::newRow("the number 1") << "1" << true;
    QTest::newRow("the number 0") << "0" << false;
    QTest::newRow("another number") << "2" << true;
    QTest::newRow("the text '1 '") << "'1 '" << true;
    QTest::newRow("the text ' 0'") << "' 0'" << false;
    QTest::newRow("the text '1.0'") << "'1.0'" << true;
    QTest::newRow("true") << "'true'" << true;
    QTest::newRow("TRUE") << "'TRUE'" << true;
    QTest::newRow("t") << "'t'" << true;
    QTest::newRow("yes") << "'yes'" << true;
    QTest::newRow("Y") << "'Y'" << true;
    QTest::newRow("on") << "'on'" << true;
    QTest::newRow("false") << "'false'" << false;
    QTest::newRow("f") << "'f'" << false;
    QTest::newRow("No") << "'No'" << false;
    QTest::newRow("off") << "'off'" << false;
    QTest::newRow("a word that says neither") << "'maybe'" << true;
    QTest::newRow("an empty text") << "''" << true;
}

void tst_DemoApp::shouldReadAStoredLockOfEveryForm()
{
    QFETCH(QString, stored);
    QFETCH(bool, locked);
    QVERIFY(runSql(
        mFile, QStringLiteral("INSERT INTO demo_booking (id, bk_date, bk_user, bk_start, bk_end, bk_title, "
                              "bk_locked) VALUES (900005, '2026-11-25', 9, '09:00:00', '09:30:00', "
                              "'Locked?', %1)")
                   .arg(stored)));
    BkCalendarModel model;
    DemoStore store(&model);
    store.loadData(Wednesday, Wednesday, BkCalendarResource(9, QStringLiteral("Somebody new"), 0));
    const std::optional<DemoBookingRow> row = store.readRow(900005);
    runSql(mFile, QStringLiteral("DELETE FROM demo_booking WHERE id = 900005"));
    BkCalendarItem* item = model.findId(900005);
    QVERIFY(item);
    QCOMPARE(item->locked != 0, locked);
    QVERIFY(row.has_value());
    QCOMPARE(row->locked != 0, locked);
}

// A host that asks the model whether a day is loaded, before any read of that key, makes it send its
// first request with no first day; the model counts every earlier day as read from then on.
void tst_DemoApp::shouldAnswerARequestWithoutAFirstDay()
{
    BkCalendarModel model;
    DemoStore store(&model);
    connect(&model, &BkCalendarModel::loadData, &store, &DemoStore::loadData);
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    QVERIFY(!model.loaded(Anna, Wednesday));
    const QList<BkCalendarItem*> items = model.items(Wednesday, Anna);
    QCOMPARE(loads.count(), 1);
    QVERIFY(!loads.first().at(0).toDate().isValid());
    QCOMPARE(loads.first().at(1).toDate(), Wednesday.addDays(8));

    const QString annas =
        QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE bk_user = 1 AND bk_date %1");
    QCOMPARE(items.size(), countRows(mFile, annas.arg(QStringLiteral("= '2026-11-25'"))));
    QVERIFY(!items.isEmpty());
    QCOMPARE(
        model.plans(Wednesday, Anna).size(),
        countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_plan WHERE pl_type = 0 AND pl_key = 1 "
                                        "AND pl_date = '2026-11-25'")));
    // Two weeks back is read already: it sends nothing, and its bookings are there.
    const QDate earlier = Wednesday.addDays(-14);
    QCOMPARE(model.items(earlier, Anna).size(),
             countRows(mFile, annas.arg(QStringLiteral("= '%1'").arg(earlier.toString(Qt::ISODate)))));
    QVERIFY(!model.items(earlier, Anna).isEmpty());
    QCOMPARE(loads.count(), 1);
    QCOMPARE(model.allItems().size(), countRows(mFile, annas.arg(QStringLiteral("<= '2026-12-03'"))));
}

// The user undoes an edit while a newer change of that booking waits for its save: the edit can't be
// taken back yet and stays the next step back, so that trying again a moment later takes back the
// newest change and then that edit, and not the creation before them.
void tst_DemoApp::shouldKeepAStepThatCouldNotBeUndoneForTheNextTry()
{
    DemoWindow window(1);
    showWednesday(window);
    QUndoStack* stack = window.undoStack();
    QAction* undo = nullptr;
    for (QAction* action : window.findChildren<QAction*>())
        if (action->shortcut() == QKeySequence(QStringLiteral("Ctrl+Z")))
            undo = action;
    QVERIFY(undo);
    const QString titleSql = QStringLiteral("SELECT bk_title FROM demo_booking WHERE id = ?");

    BkCalendarItem* created =
        window.createBooking(Anna, wednesdayRow(QTime(16, 0), QTime(16, 15), QStringLiteral("First step")));
    QVERIFY(created);
    const int createdId = created->id.toInt();
    BkCalendarItem* item = movableBooking(window.calendar()->view()->getColumnList().first());
    QVERIFY(item && item != created);
    const int id = item->id.toInt();
    const QString title = readBack(mFile, titleSql, id).toString();
    QSignalSpy written(window.store(), &DemoStore::written);
    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Second step");
    QVERIFY(window.editBooking(item, changed));
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, 20000);
    QCOMPARE(stack->count(), 2);

    changed.title = QStringLiteral("Third step");
    QVERIFY(window.editBooking(item, changed));
    undo->trigger();
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("not saved yet")),
             qPrintable(FwApplication::app()->currentMessage()));
    QCOMPARE(stack->index(), 2);
    QVERIFY(!stack->canRedo());
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Second step"));
    QCOMPARE(readBack(mFile, titleSql, createdId).toString(), QStringLiteral("First step"));

    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 2, 20000);
    QCOMPARE(stack->count(), 3);
    undo->trigger();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Second step"));
    undo->trigger();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), title);
    QCOMPARE(readBack(mFile, titleSql, createdId).toString(), QStringLiteral("First step"));
    QCOMPARE(stack->index(), 1);

    // The same going forward: a redo that can't be written yet stays the next step forward.
    QAction* redo = nullptr;
    for (QAction* action : window.findChildren<QAction*>())
        if (action->shortcut() == QKeySequence(QStringLiteral("Ctrl+Shift+Z")))
            redo = action;
    QVERIFY(redo);
    changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Fourth step");
    QVERIFY(window.editBooking(item, changed));
    redo->trigger();
    QCOMPARE(stack->index(), 1);
    QVERIFY(stack->canRedo());
    QCOMPARE(readBack(mFile, titleSql, id).toString(), title);
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 3, 20000);
    QCOMPARE(readBack(mFile, titleSql, id).toString(), QStringLiteral("Fourth step"));
    undo->trigger();
    QCOMPARE(readBack(mFile, titleSql, id).toString(), title);
    undo->trigger();
    QVERIFY(readBack(mFile, titleSql, createdId).isNull());
}

// Another program stored a booking without its box colours and plan blocks whose kind is missing or
// unknown: the calendar gets the colours of a new booking and blocks without a kind, where it would
// fill them black, and a move leaves the stored values as they were.
void tst_DemoApp::shouldGiveABookingWithoutColoursAndABlockWithoutAKindPlainOnes()
{
    QVERIFY(runSql(mFile, QStringLiteral("INSERT INTO demo_booking (id, bk_date, bk_user, bk_start, bk_end, "
                                         "bk_title, bk_top, bk_bottom) VALUES (900002, '2026-11-25', 1, "
                                         "'07:15:00', '07:30:00', 'Colourless', NULL, 'not a colour')")));
    QVERIFY(
        runSql(mFile, QStringLiteral("INSERT INTO demo_plan (id, pl_date, pl_type, pl_key, pl_start, pl_end, "
                                     "pl_bookable, pl_info) VALUES (900002, '2026-11-25', 0, 1, '18:00:00', "
                                     "'18:30:00', 1, 999), (900003, '2026-11-25', 0, 1, '18:30:00', "
                                     "'19:00:00', 1, 'evening'), (900004, '2026-11-25', 0, 1, '07:00:00', "
                                     "'08:00:00', 1, 2)")));
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarItem* item = model->findId(900002);
    QVERIFY(item);
    QCOMPARE(item->topColor, DemoBookingRow::defaultTopColor());
    QCOMPARE(item->bottomColor, DemoBookingRow::defaultBottomColor());
    QMap<QTime, int> kinds;
    for (const BkCalendarPlan* plan : model->plans(Wednesday, Anna))
        kinds.insert(plan->start, plan->infoId);
    QCOMPARE(kinds.value(QTime(18, 0)), -1);
    QCOMPARE(kinds.value(QTime(18, 30)), -1);
    QCOMPARE(kinds.value(QTime(7, 0)), 2);
    QCOMPARE(kinds.value(QTime(8, 0)), 1);

    QSignalSpy written(window.store(), &DemoStore::written);
    item->setTime(QTime(7, 30), QTime(7, 45));
    item->commit(false);
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, 20000);
    const auto stored = [this](const char* column) {
        return readBack(mFile,
                        QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(QLatin1String(column)),
                        900002);
    };
    QCOMPARE(stored("bk_start").toString(), QStringLiteral("07:30:00"));
    QVERIFY(stored("bk_top").isNull());
    QCOMPARE(stored("bk_bottom").toString(), QStringLiteral("not a colour"));
    QVERIFY(window.deleteBooking(item));
    QVERIFY(runSql(mFile, QStringLiteral("DELETE FROM demo_plan WHERE id >= 900002")));
}

void tst_DemoApp::shouldRefuseANewerSchema()
{
    mDb.close();
    const QString newer = mDir.filePath(QStringLiteral("newer.sqlite"));
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("maker"));
        db.setDatabaseName(newer);
        QVERIFY(db.open());
        QSqlQuery query(db);
        QVERIFY(query.exec(QStringLiteral("CREATE TABLE demo_schema (version INTEGER NOT NULL)")));
        QVERIFY(query.exec(QStringLiteral("INSERT INTO demo_schema (version) VALUES (99)")));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("maker"));
    DemoDatabase db;
    DemoConnection connection;
    connection.file = newer;
    QVERIFY(!db.open(connection, Wednesday));
    QVERIFY2(db.lastError().contains(QStringLiteral("newer")), qPrintable(db.lastError()));
    QCOMPARE(countRows(newer, QStringLiteral("SELECT version FROM demo_schema")), 99);
}

void tst_DemoApp::shouldReadOnlyWellFormedGroupEntries()
{
    FwApplication::app()->setValue(QStringLiteral("3:0, x:1,2:7,,4:1:9,-2:0,3:1,3:0,99:0,0:0"),
                                   QStringLiteral("usr_bookinggrouplist"), QStringLiteral("tbl_user"));
    DemoWindow window(1);
    const QList<BkCalendarResource> group = window.savedGroup();
    QStringList names;
    for (const BkCalendarResource& member : group)
        names << member.name;
    QCOMPARE(names, (QStringList{QStringLiteral("Eva Fors"), QStringLiteral("Ultrasound"),
                                 QStringLiteral("Double click to add")}));
    QVERIFY(group.last().id.isNull());
}

// The calendar's own buttons, menu entries and keys switch the view as the demo's do: the new view shows
// the day that is selected, also when the week views show it in a week that starts earlier.
void tst_DemoApp::shouldShowTheSelectedDayWhenTheCalendarsOwnButtonsSwitchTheView()
{
    FwApplication::app()->setValue(QStringLiteral("1:0,2:0"), QStringLiteral("usr_bookinggrouplist"),
                                   QStringLiteral("tbl_user"));
    DemoWindow window(1);
    window.showView(DemoWindow::FiveDays);
    window.calendar()->setDate(Wednesday);
    window.calendar()->datePicker()->setSelectedDate(Wednesday);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarView* view = window.calendar()->view();
    const QDate monday = Wednesday.addDays(-2);
    QCOMPARE(view->date(), monday);
    QCOMPARE(view->selectedDate(), Wednesday);

    window.calendar()->action1Day()->trigger();
    QCOMPARE(view->getColumnList().size(), 1);
    QCOMPARE(view->getColumnList().first()->date(), Wednesday);
    QCOMPARE(view->selectedDate(), Wednesday);

    window.calendar()->action7Day()->trigger();
    QCOMPARE(view->date(), monday);
    QCOMPARE(view->selectedDate(), Wednesday);

    window.calendar()->actionGroup()->trigger();
    BkCalendarColumn* anna = columnOf(window.calendar(), Anna);
    QVERIFY(anna);
    QCOMPARE(anna->date(), Wednesday);
    // The docks show that day too, once the calendar is done.
    QCoreApplication::processEvents();
    QCOMPARE(window.calendar()->jobList()->date(), Wednesday);
    QCOMPARE(window.calendar()->datePicker()->selectedDate(), Wednesday);

    window.calendar()->action5Day()->trigger();
    QCOMPARE(view->date(), monday);
    QCOMPARE(view->selectedDate(), Wednesday);
    QCOMPARE(window.currentView(), DemoWindow::FiveDays);
}

// A column that the user picked anew on its header reports each gesture once more for every pick. One
// double-click on a booking there opens its dialog once, and one on a free time makes one booking.
void tst_DemoApp::shouldAnswerAGestureOnceInAColumnPickedAgainOnItsHeader()
{
    FwApplication::app()->setValue(QStringLiteral("1:0,2:0"), QStringLiteral("usr_bookinggrouplist"),
                                   QStringLiteral("tbl_user"));
    DemoWindow window(1);
    window.showView(DemoWindow::Group);
    window.calendar()->setDate(Wednesday);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarView* view = window.calendar()->view();
    BkCalendarColumn* column = columnOf(window.calendar(), Anna);
    QVERIFY(column);

    // Anna's column picked again for Anna, then once more, on its header.
    for (int pick = 0; pick < 2; ++pick) {
        FwTest::whenModal([](QWidget* modal) {
            auto* picker = qobject_cast<BkCalendarUserList*>(modal);
            QVERIFY(picker);
            auto* list = picker->findChild<QTreeWidget*>(QStringLiteral("tvList"));
            QVERIFY(list);
            list->clearSelection();
            for (int i = 0; i < list->topLevelItemCount(); ++i) {
                QTreeWidgetItem* row = list->topLevelItem(i);
                if (row->data(0, 256).isValid() && row->data(0, 256).toInt() == 1 &&
                    row->data(0, 257).toInt() == 0)
                    row->setSelected(true);
            }
            QCOMPARE(list->selectedItems().count(), 1);
            QTest::mouseClick(picker->findChild<QPushButton*>(QStringLiteral("pbOk")), Qt::LeftButton);
        });
        view->headerActivated(column, column->resource());
    }
    QCOMPARE(columnOf(window.calendar(), Anna), column);

    // Every booking dialog that opens is counted, and answered: Cancel for an edit, Ok for a new one.
    int dialogs = 0;
    QPointer<QWidget> seen;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&]() {
        auto* dialog = qobject_cast<BookingDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog == seen || !dialog->isVisible())
            return;
        seen = dialog;
        ++dialogs;
        if (dialog->windowTitle() == QStringLiteral("New booking"))
            dialog->accept();
        else
            dialog->reject();
    });
    answer.start(20);

    QList<BkCalendarItem*> items = column->getItems(true);
    QVERIFY(!items.isEmpty());
    emit column->itemActivated(items.first());
    QCoreApplication::processEvents();
    QCOMPARE(dialogs, 1);

    BkCalendarPlan* plan = column->planAt(QTime(8, 0), QTime());
    QVERIFY(plan && plan->bookable);
    const int before = countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_booking"));
    emit column->planActivated(plan, QTime(8, 0));
    QCoreApplication::processEvents();
    QCOMPARE(dialogs, 2);
    QCOMPARE(countRows(mFile, QStringLiteral("SELECT COUNT(*) FROM demo_booking")), before + 1);
    QCOMPARE(window.undoStack()->count(), 1);

    // The next gesture is answered again.
    emit column->itemActivated(items.first());
    QCoreApplication::processEvents();
    QCOMPARE(dialogs, 3);
}

// A click in another day's column of the week selects that day: the job list shows it, and the date
// picker marks it, as after the tool bar's steps; the next view and step start from it.
void tst_DemoApp::shouldKeepTheDatePickerOnTheDayOfTheColumnClicked()
{
    DemoWindow window(1);
    window.showView(DemoWindow::FiveDays);
    window.calendar()->setDate(Wednesday);
    window.calendar()->datePicker()->setSelectedDate(Wednesday);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    BkCalendarView* view = window.calendar()->view();
    const QDate friday = Wednesday.addDays(2);
    BkCalendarColumn* column = nullptr;
    for (BkCalendarColumn* candidate : view->getColumnList())
        if (candidate->date() == friday)
            column = candidate;
    QVERIFY(column);

    // A free spot of the morning, on no booking.
    QPointF spot;
    for (QTime time(7, 0); time < QTime(12, 0) && spot.isNull(); time = time.addSecs(5 * 60)) {
        const QPointF at = column->mapToScene(view->timeScale()->pointAt(0.0, time)) + QPointF(20.0, 3.0);
        bool free = true;
        for (QGraphicsItem* under : view->scene()->items(at))
            free = free && !qgraphicsitem_cast<BkCalendarItemWidget*>(under);
        if (free)
            spot = at;
    }
    QVERIFY(!spot.isNull());
    view->ensureVisible(QRectF(spot, QSizeF(1.0, 1.0)));
    QCoreApplication::processEvents();
    mouse(view, QEvent::MouseButtonPress, spot, Qt::LeftButton);
    mouse(view, QEvent::MouseButtonRelease, spot, Qt::NoButton);
    QCoreApplication::processEvents();

    QCOMPARE(view->getSelectedColumn(), column);
    QCOMPARE(window.calendar()->jobList()->date(), friday);
    QCOMPARE(window.calendar()->datePicker()->selectedDate(), friday);

    // The day view that comes next shows that day, and the step forward goes on from it.
    window.calendar()->action1Day()->trigger();
    QCoreApplication::processEvents();
    QCOMPARE(view->getColumnList().first()->date(), friday);
    QCOMPARE(window.calendar()->datePicker()->selectedDate(), friday);
    window.step(1);
    QCOMPARE(view->getColumnList().first()->date(), friday.addDays(1));
}

void tst_DemoApp::shouldWriteAScreenshotOfTheExpectedSize()
{
    mDb.close();
    QTemporaryDir home;
    QVERIFY(home.isValid());
    const QString picture = home.filePath(QStringLiteral("demo.png"));
    QProcess demo;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The program's own settings go to a scratch place, not to the user's.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.path());
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    demo.setProcessEnvironment(environment);
    demo.start(QStringLiteral(FWCALENDAR_DEMO_BINARY),
               {QStringLiteral("--database"), home.filePath(QStringLiteral("shot.sqlite")),
                QStringLiteral("--screenshot"), picture, QStringLiteral("--view"), QStringLiteral("group"),
                QStringLiteral("--date"), QStringLiteral("2026-11-25")});
    QVERIFY(demo.waitForFinished(60000));
    QCOMPARE(demo.exitStatus(), QProcess::NormalExit);
    QCOMPARE(demo.exitCode(), 0);
    QVERIFY(QString::fromLocal8Bit(demo.readAllStandardOutput()).contains(picture));
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1400, 900));
    // Not blank: the calendar's many colours are there.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 7)
        for (int x = 0; x < image.width(); x += 7)
            colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 100, qPrintable(QString::number(colours.size())));

    // A wrong option is refused with a clear message.
    demo.start(QStringLiteral(FWCALENDAR_DEMO_BINARY),
               {QStringLiteral("--database"), home.filePath(QStringLiteral("shot.sqlite")),
                QStringLiteral("--screenshot"), picture, QStringLiteral("--view"), QStringLiteral("year")});
    QVERIFY(demo.waitForFinished(60000));
    QCOMPARE(demo.exitCode(), 1);
    QVERIFY(
        QString::fromLocal8Bit(demo.readAllStandardError()).contains(QStringLiteral("Unknown view year")));
}

FW_TEST_MAIN(tst_DemoApp)
#include "tst_demoapp.moc"
