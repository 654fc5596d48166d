// The demo on a real SQLite file, driven by random sequences of what a user and the world do to it:
// bookings moved by their setters, by the keys and by a drop on a column, saved by the commit or its
// second, created, edited and deleted as the window does it, undone and redone, days and views
// switched, while another program edits and deletes rows on its own connection and the file now and
// then refuses writes. After every step the calendar and the file must agree on what the user relies
// on: a booking shown as saved is saved as shown, nothing the user kept is lost, an undo and its redo
// leave the file as it was, and no column shows a booking twice.
//
// The suite runs six sequences; BK_DEMO_SEEDS="first-last" runs others, for a longer search by hand.

#include "BkSequence.h"
#include "FwTestApplication.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarRecords.h>
#include <BkCalendarView.h>

#include <DemoDatabase.h>
#include <DemoStore.h>
#include <DemoWindow.h>

#include <FwApplication.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUndoStack>

namespace {
const QDate Wednesday(2026, 11, 25);
const QString OtherConnection = QStringLiteral("another program");
const BkCalendarResource Anna(1, QStringLiteral("Anna Berg"), 0);

// Runs `use` on the file through a connection of its own, as another program would.
template <typename Use> bool onOwnConnection(const QString& file, Use use)
{
    bool opened = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), OtherConnection);
        db.setDatabaseName(file);
        opened = db.open();
        if (opened)
            use(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(OtherConnection);
    return opened;
}

// The stored bookings as another program reads them: by id, every column as the file holds it.
using Snapshot = QMap<int, QStringList>;

Snapshot snapshot(const QString& file)
{
    Snapshot rows;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(QStringLiteral("SELECT * FROM demo_booking ORDER BY id"), db);
        while (query.next()) {
            QStringList values;
            for (int i = 0; i < query.record().count(); ++i)
                values << (query.isNull(i) ? QStringLiteral("<null>") : query.value(i).toString());
            rows.insert(query.value(0).toInt(), values);
        }
    });
    return rows;
}

bool runSql(const QString& file, const QString& sql, const QVariantList& values)
{
    bool ok = false;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(db);
        query.prepare(sql);
        for (const QVariant& value : values)
            query.addBindValue(value);
        ok = query.exec() && query.numRowsAffected() == 1;
    });
    return ok;
}

// Another program writes the text of the booking `id`, or deletes it; true when it found the row.
bool anotherProgramWritesText(const QString& file, int id, const QString& text)
{
    return runSql(file, QStringLiteral("UPDATE demo_booking SET bk_text = ? WHERE id = ?"), {text, id});
}

bool anotherProgramDeletes(const QString& file, int id)
{
    return runSql(file, QStringLiteral("DELETE FROM demo_booking WHERE id = ?"), {id});
}

// The window shows the day of Wednesday.
void showWednesday(DemoWindow& window)
{
    window.showView(DemoWindow::Day);
    window.calendar()->setDate(Wednesday);
}

// A booking of Wednesday from 16:00 to 16:30.
DemoBookingRow afternoonRow(const QString& title)
{
    DemoBookingRow row;
    row.date = Wednesday;
    row.start = QTime(16, 0);
    row.end = QTime(16, 30);
    row.title = title;
    return row;
}

// Opens the program's database file again, read-only or writable, under the running program.
bool reopenDatabase(bool readOnly)
{
    QSqlDatabase db = QSqlDatabase::database();
    db.close();
    db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_OPEN_READONLY") : QString());
    return db.open();
}

QVariant storedValue(const QString& file, const QString& column, int id)
{
    QVariant result;
    onOwnConnection(file, [&](QSqlDatabase& db) {
        QSqlQuery query(db);
        query.prepare(QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(column));
        query.addBindValue(id);
        if (query.exec() && query.next())
            result = query.value(0);
    });
    return result;
}

// Where a booking and its row differ in the fields that the calendar shows and the user changes;
// empty when they agree. The text is left out where another program wrote it behind the calendar's
// back: the calendar cannot know of that edit until it reads the day again.
QString differences(const DemoBookingRow& shown, const DemoBookingRow& stored, bool withText)
{
    QStringList fields;
    const auto check = [&](const char* name, const QVariant& a, const QVariant& b) {
        if (a != b)
            fields << QStringLiteral("%1 %2/%3").arg(QLatin1String(name), a.toString(), b.toString());
    };
    check("date", shown.date, stored.date);
    check("user", shown.userId.isNull() ? QVariant() : QVariant(shown.userId.toInt()),
          stored.userId.isNull() ? QVariant() : QVariant(stored.userId.toInt()));
    check("resource", shown.resourceId.isNull() ? QVariant() : QVariant(shown.resourceId.toInt()),
          stored.resourceId.isNull() ? QVariant() : QVariant(stored.resourceId.toInt()));
    check("start", shown.start, stored.start);
    check("end", shown.end, stored.end);
    check("title", shown.title, stored.title);
    if (withText)
        check("text", shown.text, stored.text);
    check("type", shown.type, stored.type);
    check("flags", shown.flags, stored.flags);
    check("status", shown.statusId.isNull() ? QVariant() : QVariant(shown.statusId.toInt()),
          stored.statusId.isNull() ? QVariant() : QVariant(stored.statusId.toInt()));
    check("locked", shown.locked, stored.locked);
    return fields.join(QStringLiteral(", "));
}
} // namespace

class tst_DemoSequences : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void shouldKeepTheFileAndTheCalendarInStepThroughoutASequence_data();
    void shouldKeepTheFileAndTheCalendarInStepThroughoutASequence();
    void shouldBringBackAnotherProgramsEditWhenAnUndoneCreationIsRedone();
    void shouldWriteOnlyWhatAnUndoOrRedoTakesBack();
    void shouldNotBringBackByUndoABookingThatAnotherProgramDeleted();
    void shouldNotBringBackByRedoACreatedBookingThatAnotherProgramDeleted();
    void shouldGiveANewBookingAnIdThatNoBookingHadBefore();
    void shouldKeepTheBookingsOfAnOlderFileWhenItsIdsAreMadeUnique();

private:
    bool openFresh(const QString& name);

    QTemporaryDir mDir;
    QString mFile;
    DemoDatabase mDb;
};

void tst_DemoSequences::initTestCase()
{
    QVERIFY(mDir.isValid());
    qRegisterMetaType<QList<BkCalendarItem*>>();
    for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
        FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
}

void tst_DemoSequences::cleanup()
{
    QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false)
        .setConnectOptions(QString());
    mDb.close();
    BkCalendarClock::setFixedNow(QDateTime());
}

bool tst_DemoSequences::openFresh(const QString& name)
{
    // The practice is seeded round this Wednesday, and the calendar shows it as today.
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    mFile = mDir.filePath(name);
    QFile::remove(mFile);
    DemoConnection connection;
    connection.file = mFile;
    return mDb.open(connection, Wednesday);
}

void tst_DemoSequences::shouldKeepTheFileAndTheCalendarInStepThroughoutASequence_data()
{
    BkTest::addSeedRows("BK_DEMO_SEEDS", 1, 6);
}

void tst_DemoSequences::shouldKeepTheFileAndTheCalendarInStepThroughoutASequence()
{
    QFETCH(quint32, seed);
    QVERIFY2(openFresh(QStringLiteral("sequence-%1.sqlite").arg(seed)), qPrintable(mDb.lastError()));
    QRandomGenerator random(seed);
    // BK_DEMO_STEPS="n" makes the sequences longer, for a search by hand.
    const int steps = qEnvironmentVariableIntValue("BK_DEMO_STEPS") > 0
                          ? qEnvironmentVariableIntValue("BK_DEMO_STEPS")
                          : 60;

    // A double booking asks the user; the user answers as it comes.
    QTimer answerer;
    answerer.setInterval(20);
    // The answers draw from a stream of their own, so that the steps draw the same however often asked.
    QRandomGenerator answers(seed * 7919u);
    connect(&answerer, &QTimer::timeout, this, [&answers]() {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            const QList<QAbstractButton*> buttons = box->buttons();
            if (!buttons.isEmpty())
                buttons.at(answers.bounded(buttons.size()))->click();
        }
    });
    answerer.start();

    DemoWindow window(1);
    window.resize(1200, 800);
    showWednesday(window);
    window.show();
    BkCalendar* calendar = window.calendar();
    BkCalendarModel* model = calendar->model();
    QUndoStack* stack = window.undoStack();

    bool readOnly = false;
    // Bookings that the user deleted or whose creation was undone, and those that another program
    // deleted: the only ones that may leave the file.
    QSet<int> userRemoved;
    QSet<int> created;
    QSet<int> foreignRemoved;
    // Bookings whose text another program wrote.
    QSet<int> foreignText;

    const auto someItem = [&]() -> BkCalendarItem* {
        QList<BkCalendarItem*> shown;
        for (BkCalendarColumn* column : calendar->view()->getColumnList())
            for (BkCalendarItem* item : column->getItems(true))
                if (!shown.contains(item))
                    shown << item;
        return shown.isEmpty() ? nullptr : shown.at(random.bounded(shown.size()));
    };
    const auto someTime = [&]() { return QTime(8 + random.bounded(9), 15 * random.bounded(4)); };
    const auto someColumn = [&]() -> BkCalendarColumn* {
        const QList<BkCalendarColumn*> columns = calendar->view()->getColumnList();
        return columns.isEmpty() ? nullptr : columns.at(random.bounded(columns.size()));
    };

    Snapshot before = snapshot(mFile);
    QVERIFY(!before.isEmpty());
    // The last step takes the file writable again and saves what waits: every change is saved.
    for (int step = 0; step <= steps; ++step) {
        const int what = step == steps ? -1 : random.bounded(22);
        QString did;
        // Undo and redo in one step: the file must come back to what it was before.
        bool roundTrip = false;
        Snapshot roundTripBefore;
        switch (what) {
        case -1:
            did = QStringLiteral("the last save");
            readOnly = false;
            QVERIFY(reopenDatabase(false));
            model->commitToDatabase();
            QVERIFY2(model->invalidItems().isEmpty(), qPrintable(window.store()->lastError()));
            break;
        case 0:
            if (BkCalendarItem* item = someItem()) {
                if (item->locked)
                    break;
                const QTime start = someTime();
                did = QStringLiteral("setTime %1 to %2").arg(item->id.toInt()).arg(start.toString());
                item->setTime(start, start.addSecs(item->start().secsTo(item->end())));
                item->commit(false);
            }
            break;
        case 1:
            if (BkCalendarItem* item = someItem()) {
                BkCalendarItemWidget* box = item->widget;
                if (!box || !box->scene())
                    break;
                did = QStringLiteral("key on %1").arg(item->id.toInt());
                box->scene()->clearSelection();
                box->setSelected(true);
                box->setFocus();
                QKeyEvent key(QEvent::KeyPress, random.bounded(2) ? Qt::Key_Up : Qt::Key_Down,
                              Qt::NoModifier);
                QCoreApplication::sendEvent(box->scene(), &key);
            }
            break;
        case 2: {
            // A drop on a column: the booking takes its day, its key and the time under the pointer.
            BkCalendarItem* item = someItem();
            BkCalendarColumn* column = someColumn();
            if (!item || !column || item->locked)
                break;
            did = QStringLiteral("drop %1 on %2 %3")
                      .arg(item->id.toInt())
                      .arg(column->date().toString(Qt::ISODate), column->resource().name);
            if (column->tryToMoveItem(item, someTime()))
                item->commit(false);
            break;
        }
        case 3:
            did = QStringLiteral("commit now");
            model->commitToDatabase();
            break;
        case 4:
            did = QStringLiteral("wait for the save");
            QTest::qWait(1100);
            break;
        case 5: {
            DemoBookingRow row;
            row.date = calendar->view()->selectedDate();
            row.start = someTime();
            row.end = row.start.addSecs(30 * 60);
            row.title = QStringLiteral("Created %1").arg(step);
            row.statusId = 1;
            BkCalendarColumn* column = someColumn();
            if (!column || column->resource().id.isNull())
                break;
            row.date = column->date();
            did = QStringLiteral("create for %1").arg(column->resource().name);
            if (BkCalendarItem* item = window.createBooking(column->resource(), row))
                created << item->id.toInt();
            break;
        }
        case 6:
        case 7:
            if (BkCalendarItem* item = someItem()) {
                DemoBookingRow changed = DemoBookingRow::fromItem(item);
                changed.title = QStringLiteral("Edited %1").arg(step);
                changed.flags = random.bounded(4);
                if (random.bounded(2)) {
                    changed.start = someTime();
                    changed.end = changed.start.addSecs(15 * 60 * (1 + random.bounded(4)));
                }
                did = QStringLiteral("edit %1").arg(item->id.toInt());
                window.editBooking(item, changed);
            }
            break;
        case 8:
            if (BkCalendarItem* item = someItem()) {
                const int id = item->id.toInt();
                did = QStringLiteral("delete %1").arg(id);
                if (window.deleteBooking(item))
                    userRemoved << id;
            }
            break;
        case 9:
            if (BkCalendarItem* item = someItem()) {
                did = QStringLiteral("status of %1").arg(item->id.toInt());
                window.setStatus(item, 1 + random.bounded(5));
            }
            break;
        case 10:
        case 11: {
            did = QStringLiteral("undo and redo");
            const int index = stack->index();
            roundTripBefore = snapshot(mFile);
            window.undoChange();
            if (stack->index() == index - 1) {
                window.redoChange();
                roundTrip = stack->index() == index;
            }
            break;
        }
        case 12:
            did = QStringLiteral("undo");
            window.undoChange();
            break;
        case 13:
            did = QStringLiteral("redo");
            window.redoChange();
            break;
        case 14: {
            static const DemoWindow::View views[] = {DemoWindow::Day, DemoWindow::FiveDays,
                                                     DemoWindow::SevenDays, DemoWindow::Group};
            did = QStringLiteral("view");
            window.showView(views[random.bounded(4)]);
            break;
        }
        case 15:
            did = QStringLiteral("step");
            window.step(random.bounded(2) ? 1 : -1);
            break;
        case 16:
        case 17: {
            // Another program writes a row's text, or deletes a row: mostly one that the calendar
            // shows, which the user may be working on.
            const QList<int> ids = snapshot(mFile).keys();
            BkCalendarItem* shown = random.bounded(4) ? someItem() : nullptr;
            if (ids.isEmpty())
                break;
            const int id = shown ? shown->id.toInt() : ids.at(random.bounded(ids.size()));
            if (what == 16) {
                did = QStringLiteral("another program writes the text of %1").arg(id);
                if (anotherProgramWritesText(mFile, id, QStringLiteral("Other %1").arg(step)))
                    foreignText << id;
            } else if (random.bounded(3) == 0) {
                did = QStringLiteral("another program deletes %1").arg(id);
                if (anotherProgramDeletes(mFile, id))
                    foreignRemoved << id;
            }
            break;
        }
        case 18:
            readOnly = !readOnly;
            did = readOnly ? QStringLiteral("read-only") : QStringLiteral("writable");
            QVERIFY(reopenDatabase(readOnly));
            break;
        case 19:
        case 20: {
            const Qt::Key key = BkTest::someFormKey(random);
            did = QStringLiteral("Ctrl+%1").arg(QKeySequence(key).toString());
            QTest::keyClick(calendar, key, Qt::ControlModifier);
            break;
        }
        default:
            did = QStringLiteral("events");
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            break;
        }
        const QString where = QStringLiteral("seed %1, step %2: %3").arg(seed).arg(step).arg(did);

        // An undo and its redo leave the file as it was.
        if (roundTrip) {
            const Snapshot after = snapshot(mFile);
            for (auto it = roundTripBefore.cbegin(); it != roundTripBefore.cend(); ++it)
                QVERIFY2(after.value(it.key()) == it.value(),
                         qPrintable(QStringLiteral("%1: row %2 was %3, is %4")
                                        .arg(where)
                                        .arg(it.key())
                                        .arg(it.value().join(QLatin1Char('|')),
                                             after.value(it.key()).join(QLatin1Char('|')))));
            for (auto it = after.cbegin(); it != after.cend(); ++it)
                QVERIFY2(roundTripBefore.contains(it.key()),
                         qPrintable(QStringLiteral("%1: row %2 is new").arg(where).arg(it.key())));
        }

        // A booking shown as saved is stored as it is shown.
        const Snapshot now = snapshot(mFile);
        for (BkCalendarItem* item : model->allItems()) {
            const int id = item->id.toInt();
            QVERIFY2(id > 0, qPrintable(where));
            if (model->isInvalid(item))
                continue;
            const std::optional<DemoBookingRow> stored = window.store()->readRow(id);
            if (!stored) {
                // Only another program takes a row away behind the calendar's back; the next save of
                // the booking takes it off the calendar.
                QVERIFY2(foreignRemoved.contains(id),
                         qPrintable(QStringLiteral("%1: booking %2 is shown as saved and has no row")
                                        .arg(where)
                                        .arg(id)));
                continue;
            }
            const QString diff =
                differences(DemoBookingRow::fromItem(item), *stored, !foreignText.contains(id));
            QVERIFY2(diff.isEmpty(), qPrintable(QStringLiteral("%1: booking %2 shown as saved differs: %3")
                                                    .arg(where)
                                                    .arg(id)
                                                    .arg(diff)));
        }

        // Nothing is lost: a row leaves the file only when the user deleted it or undid its creation,
        // or another program deleted it.
        for (auto it = before.cbegin(); it != before.cend(); ++it) {
            const int id = it.key();
            if (now.contains(id) || userRemoved.contains(id) || created.contains(id) ||
                foreignRemoved.contains(id))
                continue;
            // An undo may take away a booking that a redo made again; it was made by the user.
            QFAIL(qPrintable(QStringLiteral("%1: row %2 is gone").arg(where).arg(id)));
        }

        // No column shows a booking twice.
        for (BkCalendarColumn* column : calendar->view()->getColumnList()) {
            const QList<BkCalendarItem*> items = column->getItems(false);
            QSet<BkCalendarItem*> distinct;
            QSet<const BkCalendarItem*> boxed;
            for (BkCalendarItem* item : items)
                QVERIFY2(!distinct.contains(item) && (distinct.insert(item), true),
                         qPrintable(QStringLiteral("%1: a booking twice in a column").arg(where)));
            for (QGraphicsItem* child : column->childItems()) {
                auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child);
                if (!box || !box->item() || !box->isVisible())
                    continue;
                QVERIFY2(!boxed.contains(box->item()),
                         qPrintable(QStringLiteral("%1: booking %2 has two boxes in a column")
                                        .arg(where)
                                        .arg(box->item()->id.toInt())));
                boxed.insert(box->item());
            }
        }
        before = now;
    }

    answerer.stop();
    window.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The user creates a booking, another program writes its text, and the user takes the creation back
// and brings it again: the booking comes back as the file held it, with that program's text.
void tst_DemoSequences::shouldBringBackAnotherProgramsEditWhenAnUndoneCreationIsRedone()
{
    QVERIFY2(openFresh(QStringLiteral("creation.sqlite")), qPrintable(mDb.lastError()));
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarItem* item = window.createBooking(Anna, afternoonRow(QStringLiteral("Created")));
    QVERIFY(item);
    const int id = item->id.toInt();
    QVERIFY(anotherProgramWritesText(mFile, id, QStringLiteral("Written elsewhere")));
    const Snapshot before = snapshot(mFile);

    window.undoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("bk_title"), id).isNull());
    QVERIFY(!window.calendar()->model()->findId(id));
    window.redoChange();
    QCOMPARE(snapshot(mFile), before);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_text"), id).toString(),
             QStringLiteral("Written elsewhere"));
    BkCalendarItem* back = window.calendar()->model()->findId(id);
    QVERIFY(back);
    QCOMPARE(back->text(), QStringLiteral("Written elsewhere"));
    QVERIFY(!window.calendar()->model()->isInvalid(back));
}

// The user moves a booking and saves, another program writes its text, and the user takes the move
// back and does it again: both steps write the times, and the text stays as that program wrote it,
// in the file and on the screen.
void tst_DemoSequences::shouldWriteOnlyWhatAnUndoOrRedoTakesBack()
{
    QVERIFY2(openFresh(QStringLiteral("undo.sqlite")), qPrintable(mDb.lastError()));
    DemoWindow window(1);
    showWednesday(window);
    DemoBookingRow row = afternoonRow(QStringLiteral("Moved"));
    row.text = QStringLiteral("Written here");
    BkCalendarItem* item = window.createBooking(Anna, row);
    QVERIFY(item);
    const int id = item->id.toInt();
    item->setTime(QTime(16, 15), QTime(16, 45));
    item->commit(true);
    QCOMPARE(window.undoStack()->count(), 2);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_start"), id).toString(), QStringLiteral("16:15:00"));
    QVERIFY(anotherProgramWritesText(mFile, id, QStringLiteral("Written elsewhere")));

    window.undoChange();
    QCOMPARE(window.undoStack()->index(), 1);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_start"), id).toString(), QStringLiteral("16:00:00"));
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_text"), id).toString(),
             QStringLiteral("Written elsewhere"));
    QCOMPARE(item->start(), QTime(16, 0));
    QCOMPARE(item->text(), QStringLiteral("Written elsewhere"));
    QVERIFY(!window.calendar()->model()->isInvalid(item));

    window.redoChange();
    QCOMPARE(window.undoStack()->index(), 2);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_start"), id).toString(), QStringLiteral("16:15:00"));
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_text"), id).toString(),
             QStringLiteral("Written elsewhere"));
    QCOMPARE(item->text(), QStringLiteral("Written elsewhere"));

    // A later save of the booking leaves that text alone too.
    item->setTime(QTime(16, 30), QTime(17, 0));
    item->commit(true);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_text"), id).toString(),
             QStringLiteral("Written elsewhere"));
}

// The user moves a booking and saves, and another program deletes it. Taking the move back or doing
// it again must not bring the booking back behind that program's back, as a save would not: it leaves
// the calendar, and the user is told.
void tst_DemoSequences::shouldNotBringBackByUndoABookingThatAnotherProgramDeleted()
{
    QVERIFY2(openFresh(QStringLiteral("gone.sqlite")), qPrintable(mDb.lastError()));
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarItem* item = window.createBooking(Anna, afternoonRow(QStringLiteral("Deleted elsewhere")));
    QVERIFY(item);
    const int id = item->id.toInt();
    item->setTime(QTime(16, 15), QTime(16, 45));
    item->commit(true);
    QCOMPARE(window.undoStack()->count(), 2);
    QVERIFY(anotherProgramDeletes(mFile, id));

    window.undoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("id"), id).isNull());
    QVERIFY(!model->findId(id));
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("deleted by another program")),
             qPrintable(FwApplication::app()->currentMessage()));
    // The step is taken: nothing is left to write for it.
    QCOMPARE(window.undoStack()->index(), 1);
    window.redoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("id"), id).isNull());
    QVERIFY(!model->findId(id));
    QCOMPARE(window.undoStack()->index(), 2);
}

// The user creates a booking, another program deletes it, and the user takes the creation back and
// makes it again. The step back finds nothing to take away; the step forth must not write the booking
// again behind that program's back.
void tst_DemoSequences::shouldNotBringBackByRedoACreatedBookingThatAnotherProgramDeleted()
{
    QVERIFY2(openFresh(QStringLiteral("created.sqlite")), qPrintable(mDb.lastError()));
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    BkCalendarItem* item = window.createBooking(Anna, afternoonRow(QStringLiteral("Deleted elsewhere")));
    QVERIFY(item);
    const int id = item->id.toInt();
    QCOMPARE(window.undoStack()->count(), 1);
    QVERIFY(anotherProgramDeletes(mFile, id));

    window.undoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("id"), id).isNull());
    QVERIFY(!model->findId(id));
    QCOMPARE(window.undoStack()->index(), 0);

    window.redoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("id"), id).isNull());
    QVERIFY(!model->findId(id));
    QVERIFY2(FwApplication::app()->currentMessage().contains(QStringLiteral("deleted by another program")),
             qPrintable(FwApplication::app()->currentMessage()));
    // The step is taken: nothing is left to write for it.
    QCOMPARE(window.undoStack()->index(), 1);

    // Back and forth again, the booking stays deleted.
    window.undoChange();
    window.redoChange();
    QVERIFY(storedValue(mFile, QStringLiteral("id"), id).isNull());
    QVERIFY(!model->findId(id));
}

// Another program deletes the newest booking while the calendar shows it and the undo stack names it.
// A booking created next must not get its id: the calendar would hold two bookings of one id, and the
// steps of the undo stack would name both.
void tst_DemoSequences::shouldGiveANewBookingAnIdThatNoBookingHadBefore()
{
    QVERIFY2(openFresh(QStringLiteral("ids.sqlite")), qPrintable(mDb.lastError()));
    DemoWindow window(1);
    showWednesday(window);
    BkCalendarModel* model = window.calendar()->model();
    DemoBookingRow row = afternoonRow(QStringLiteral("Deleted elsewhere"));
    BkCalendarItem* first = window.createBooking(Anna, row);
    QVERIFY(first);
    const int firstId = first->id.toInt();
    QVERIFY(anotherProgramDeletes(mFile, firstId));

    row.start = QTime(16, 30);
    row.end = QTime(17, 0);
    row.title = QStringLiteral("Created after");
    BkCalendarItem* second = window.createBooking(Anna, row);
    QVERIFY(second);
    const int secondId = second->id.toInt();
    QVERIFY(secondId != firstId);
    QCOMPARE(model->findId(secondId), second);
    QVERIFY(second->widget);
    QCOMPARE(storedValue(mFile, QStringLiteral("bk_title"), secondId).toString(),
             QStringLiteral("Created after"));
    // The first booking is still the first one, until its next save takes it off the calendar.
    QCOMPARE(model->findId(firstId), first);
    QCOMPARE(first->title(), QStringLiteral("Deleted elsewhere"));
}

// A file of the first schema, whose bookings' ids SQLite may hand out again, is brought to the newest
// one on opening: every booking stays as it was, under its id, and a deleted id is not given again.
void tst_DemoSequences::shouldKeepTheBookingsOfAnOlderFileWhenItsIdsAreMadeUnique()
{
    QVERIFY2(openFresh(QStringLiteral("older.sqlite")), qPrintable(mDb.lastError()));
    mDb.close();
    QVERIFY(onOwnConnection(mFile, [](QSqlDatabase& db) {
        QSqlQuery query(db);
        query.exec(QStringLiteral("CREATE TABLE demo_booking_old AS SELECT * FROM demo_booking"));
        query.exec(QStringLiteral("DROP TABLE demo_booking"));
        query.exec(QStringLiteral(
            "CREATE TABLE demo_booking (id INTEGER PRIMARY KEY, bk_date DATE NOT NULL, bk_user INTEGER, "
            "bk_resource INTEGER, bk_start TIME NOT NULL, bk_end TIME NOT NULL, bk_title VARCHAR(250), "
            "bk_text TEXT, bk_type INTEGER NOT NULL DEFAULT 0, bk_flags INTEGER NOT NULL DEFAULT 0, "
            "bk_status INTEGER, bk_locked INTEGER NOT NULL DEFAULT 0, bk_left VARCHAR(20), "
            "bk_right VARCHAR(20), bk_top VARCHAR(20), bk_bottom VARCHAR(20))"));
        query.exec(QStringLiteral("INSERT INTO demo_booking SELECT * FROM demo_booking_old"));
        query.exec(QStringLiteral("DROP TABLE demo_booking_old"));
        query.exec(QStringLiteral("UPDATE demo_schema SET version = 1"));
    }));
    const Snapshot before = snapshot(mFile);
    QVERIFY(!before.isEmpty());
    const int last = before.lastKey();

    DemoConnection connection;
    connection.file = mFile;
    QVERIFY2(mDb.open(connection, Wednesday), qPrintable(mDb.lastError()));
    QCOMPARE(mDb.version(), DemoDatabase::latestVersion());
    QCOMPARE(snapshot(mFile), before);
    QVERIFY(anotherProgramDeletes(mFile, last));
    DemoWindow window(1);
    BkCalendarItem* item = window.createBooking(Anna, afternoonRow(QStringLiteral("New")));
    QVERIFY(item);
    QVERIFY(item->id.toInt() > last);
}

FW_TEST_MAIN(tst_DemoSequences)
#include "tst_demosequences.moc"
