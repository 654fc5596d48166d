// The demo on a PostgreSQL server: the same migrations and practice as on SQLite, loadData, a save in
// one transaction with new rows getting their id from the server, and undo of a deletion keeping the id.
//
// The server is named by FWCALENDAR_TEST_PSQL="host:port:user:password:database" (scripts/test-postgres.sh
// starts one and sets it); without it the test says so and skips.

#include "FwTestApplication.h"

#include <DemoDatabase.h>
#include <DemoStore.h>
#include <DemoWindow.h>

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarModel.h>
#include <BkCalendarView.h>

#include <FwPtrEdit.h>
#include <FwTableBase.h>
#include <FwTableForm.h>
#include <SQLQuery.h>

#include <QUndoStack>
#include <QVBoxLayout>

namespace {
const QDate Wednesday(2026, 11, 25);

int count(const QString& sql)
{
    SQLQuery query;
    return query.exec(sql) && query.next() ? query.value(0).toInt() : -1;
}
} // namespace

class tst_DemoPostgres : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void shouldMigrateAndSeedTheServer();
    void shouldLoadSaveCreateDeleteAndUndo();
    void shouldReadAnEndAtMidnightAsTheEndOfTheDay();
    void shouldSearchANumberFieldOfARecordFormAsText();

private:
    DemoDatabase mDb;
};

void tst_DemoPostgres::initTestCase()
{
    const QStringList parts = qEnvironmentVariable("FWCALENDAR_TEST_PSQL").split(QLatin1Char(':'));
    if (parts.size() != 5)
        QSKIP("No PostgreSQL server named in FWCALENDAR_TEST_PSQL (scripts/test-postgres.sh starts one)");
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
        FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
    DemoConnection connection;
    connection.driver = QStringLiteral("QPSQL");
    connection.host = parts.at(0);
    connection.port = parts.at(1).toInt();
    connection.user = parts.at(2);
    connection.password = parts.at(3);
    connection.name = parts.at(4);
    QVERIFY2(mDb.open(connection, Wednesday), qPrintable(mDb.lastError()));
    QVERIFY(mDb.isPostgres());
}

void tst_DemoPostgres::cleanupTestCase()
{
    mDb.close();
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_DemoPostgres::shouldMigrateAndSeedTheServer()
{
    QCOMPARE(mDb.version(), DemoDatabase::latestVersion());
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM view_user")), 6);
    QVERIFY(count(QStringLiteral("SELECT COUNT(*) FROM demo_booking")) > 500);
    QCOMPARE(
        count(QStringLiteral("SELECT COUNT(*) FROM pg_indexes WHERE indexname IN ('demo_booking_user_day', "
                             "'demo_booking_resource_day', 'demo_plan_day')")),
        3);
    // A second start finds the same practice and seeds nothing.
    QVERIFY(!mDb.seed(Wednesday));
    QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM view_user")), 6);
}

void tst_DemoPostgres::shouldLoadSaveCreateDeleteAndUndo()
{
    DemoWindow window(1);
    window.showView(DemoWindow::Group);
    window.calendar()->setDate(Wednesday);
    BkCalendarColumn* anna = window.calendar()->view()->getColumnList().first();
    QCOMPARE(anna->resource().id.toInt(), 1);
    const int stored = count(QStringLiteral("SELECT COUNT(*) FROM demo_booking WHERE bk_user = 1 AND "
                                            "bk_date = '2026-11-25' AND bk_type <> 6"));
    QVERIFY(stored > 0);
    QCOMPARE(anna->getItems(true).count(), stored);

    // A save through the model's commit.
    BkCalendarItem* item = anna->getItems(true).first();
    QSignalSpy written(window.store(), &DemoStore::written);
    DemoBookingRow changed = DemoBookingRow::fromItem(item);
    changed.title = QStringLiteral("Changed on the server");
    window.editBooking(item, changed);
    QTRY_COMPARE_WITH_TIMEOUT(written.count(), 1, 20000);
    QCOMPARE(window.store()->readRow(item->id.toInt())->title, QStringLiteral("Changed on the server"));

    // A new row gets the server's id; its deletion and the undo of that keep it.
    DemoBookingRow row;
    row.date = Wednesday;
    row.start = QTime(16, 0);
    row.end = QTime(16, 15);
    row.title = QStringLiteral("New on the server");
    BkCalendarItem* created = window.createBooking(BkCalendarResource(1, QString(), 0), row);
    QVERIFY(created);
    const int id = created->id.toInt();
    QVERIFY(id > 0);
    QVERIFY(window.deleteBooking(created));
    QVERIFY(!window.store()->readRow(id).has_value());
    window.undoStack()->undo();
    QCOMPARE(window.store()->readRow(id)->title, QStringLiteral("New on the server"));
    QVERIFY(window.calendar()->model()->findId(id));
}

// The server keeps the end of a day as 24:00. A booking and a plan block that end at midnight are
// shown up to the end of their day, and a change of another field leaves the stored end as it is.
void tst_DemoPostgres::shouldReadAnEndAtMidnightAsTheEndOfTheDay()
{
    struct Rows
    {
        ~Rows()
        {
            SQLQuery remove;
            remove.exec(QStringLiteral("DELETE FROM demo_booking WHERE id = 900010"));
            remove.exec(QStringLiteral("DELETE FROM demo_plan WHERE id = 900010"));
        }
    } rows;
    SQLQuery insert;
    QVERIFY(insert.exec(QStringLiteral("INSERT INTO demo_booking (id, bk_date, bk_user, bk_start, bk_end, "
                                       "bk_title) VALUES (900010, '2026-11-25', 9, '23:00', '24:00', "
                                       "'Night shift')")));
    QVERIFY(
        insert.exec(QStringLiteral("INSERT INTO demo_plan (id, pl_date, pl_type, pl_key, pl_start, pl_end, "
                                   "pl_bookable, pl_info) VALUES (900010, '2026-11-25', 0, 9, '22:00', "
                                   "'24:00', 1, 1)")));
    const BkCalendarResource who(9, QStringLiteral("Somebody new"), 0);
    BkCalendarModel model;
    DemoStore store(&model);
    store.loadData(Wednesday, Wednesday, who);

    BkCalendarItem* item = model.findId(900010);
    QVERIFY(item);
    QCOMPARE(item->start(), QTime(23, 0));
    QCOMPARE(item->end(), QTime(23, 59, 59));
    const QList<BkCalendarPlan*> plans = model.plans(Wednesday, who);
    QCOMPARE(plans.size(), 1);
    QCOMPARE(plans.first()->start, QTime(22, 0));
    QCOMPARE(plans.first()->end, QTime(23, 59, 59));

    item->setTitle(QStringLiteral("Night shift, renamed"));
    store.saveItems({item});
    SQLQuery stored;
    QVERIFY(stored.exec(
        QStringLiteral("SELECT bk_title, CAST(bk_end AS TEXT) FROM demo_booking WHERE id = 900010")));
    QVERIFY(stored.next());
    QCOMPARE(stored.value(0).toString(), QStringLiteral("Night shift, renamed"));
    QCOMPARE(stored.value(1).toString(), QStringLiteral("24:00:00"));
}

// A record form searches by what its fields show, as text, whatever type the server gives the column:
// the server has no LOWER or LIKE for numbers.
void tst_DemoPostgres::shouldSearchANumberFieldOfARecordFormAsText()
{
    struct Table
    {
        ~Table() { SQLQuery().exec(QStringLiteral("DROP TABLE IF EXISTS fw_search_probe")); }
    } table;
    SQLQuery create;
    QVERIFY(create.exec(QStringLiteral("DROP TABLE IF EXISTS fw_search_probe")));
    QVERIFY(create.exec(QStringLiteral(
        "CREATE TABLE fw_search_probe (id SERIAL PRIMARY KEY, sp_name VARCHAR(40), sp_room INTEGER)")));
    QVERIFY(create.exec(QStringLiteral("INSERT INTO fw_search_probe (sp_name, sp_room) VALUES "
                                       "('Hall', 120), ('Office', 12), ('Lab', 7)")));
    FwTableForm form;
    form.setTableName(QStringLiteral("fw_search_probe"));
    form.setMode(FwEnums::ModeRecord);
    form.setState(FwEnums::StateReady);
    auto* layout = new QVBoxLayout(&form);
    auto* name = new FwPtrEdit(&form);
    name->setObjectName(QStringLiteral("fpeName"));
    name->setFieldName(QStringLiteral("sp_name"));
    auto* room = new FwPtrEdit(&form);
    room->setObjectName(QStringLiteral("fpeRoom"));
    room->setFieldName(QStringLiteral("sp_room"));
    layout->addWidget(name);
    layout->addWidget(room);

    // Part of the number finds the first room that holds it; the whole number only its own.
    room->setText(QStringLiteral("12"));
    QVERIFY2(form.priv()->execute(QString(), QString(), false, false), qPrintable(form.priv()->lastError()));
    QCOMPARE(name->text(), QStringLiteral("Hall"));
    name->clear();
    room->setText(QStringLiteral("12"));
    QVERIFY2(form.priv()->execute(QString(), QString(), true, false), qPrintable(form.priv()->lastError()));
    QCOMPARE(name->text(), QStringLiteral("Office"));
    // Text in a number field finds nothing, and is no error of the server's: a failed query would not
    // tell of an empty result.
    name->clear();
    room->setText(QStringLiteral("seven"));
    QSignalSpy empty(form.priv(), &FwTableBase::queryEmpty);
    QVERIFY(!form.priv()->execute(QString(), QString(), false, false));
    QCOMPARE(empty.count(), 1);
    QVERIFY(!form.priv()->execute(QString(), QString(), true, true));
    QCOMPARE(empty.count(), 2);
}

FW_TEST_MAIN(tst_DemoPostgres)
#include "tst_demopostgres.moc"
