// The SQL layer: queries on the default connection and how failures are reported.
#include "FwTestApplication.h"

#include <FwLog.h>
#include <SQLDatabase.h>
#include <SQLQuery.h>

class tst_SQLQuery : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void shouldStandForTheDefaultConnection();
    void shouldRunAndStepThroughRows();
    void shouldBindValuesAsData();
    void shouldReturnFalseOnBadStatement();
    void shouldLogLastErrorWithSourceAndLine();
    void shouldKeepTheReasonOfAFailedPrepareThroughExec();
    void shouldFailWithoutConnection();
    void shouldRunAQueryGivenToTheConstructor();
};

void tst_SQLQuery::initTestCase()
{
    SQLQuery query(QString(), SQLDatabase{});
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE tbl_resource (id INTEGER PRIMARY KEY, fw_text TEXT)")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_resource (fw_text) VALUES ('Room B')")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_resource (fw_text) VALUES ('Room A')")));
}

void tst_SQLQuery::shouldStandForTheDefaultConnection()
{
    SQLDatabase database;
    QCOMPARE(database.connectionName(), QLatin1String(QSqlDatabase::defaultConnection));
    QVERIFY(database.database().isOpen());
}

void tst_SQLQuery::shouldRunAndStepThroughRows()
{
    SQLQuery query(QString(), SQLDatabase{});
    QVERIFY(query.prepare(QStringLiteral("SELECT id,fw_text FROM tbl_resource ORDER BY fw_text"), true));
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 2);
    QCOMPARE(query.value(1).toString(), QStringLiteral("Room A"));
    QVERIFY(query.next());
    QCOMPARE(query.value(1).toString(), QStringLiteral("Room B"));
    QVERIFY(!query.next());
}

void tst_SQLQuery::shouldBindValuesAsData()
{
    SQLQuery query;
    QVERIFY(query.prepare(QStringLiteral("SELECT COUNT(*) FROM tbl_resource WHERE fw_text = ?"), true));
    query.addBindValue(QStringLiteral("x' OR '1'='1"));
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 0);
}

void tst_SQLQuery::shouldReturnFalseOnBadStatement()
{
    SQLQuery query;
    QVERIFY(!query.exec(QStringLiteral("SELECT nothing FROM tbl_missing")));
    QVERIFY(query.lastError().isValid());
    QVERIFY(!query.next());
    QVERIFY(!query.prepare(QStringLiteral("SELEKT 1"), true));
    QVERIFY(!query.exec());
}

void tst_SQLQuery::shouldLogLastErrorWithSourceAndLine()
{
    SQLQuery query;
    QVERIFY(!query.prepare(
        QStringLiteral("SELECT id,usr_initials,usr_name FROM view_user ORDER BY usr_initials"), true));
    const QString error = query.lastError().text();
    QVERIFY(error.contains(QStringLiteral("view_user")));
    const QString line = QStringLiteral("[Source/BkCalendarUserList:35] %1").arg(error);
    QTest::ignoreMessage(QtInfoMsg, qPrintable(line));
    query.debugLastError(QStringLiteral("Source/BkCalendarUserList"), 35);
}

// Callers prepare, execute, and only then ask what went wrong.
void tst_SQLQuery::shouldKeepTheReasonOfAFailedPrepareThroughExec()
{
    SQLQuery query(QString(), SQLDatabase{});
    QVERIFY(!query.prepare(QStringLiteral("SELECT id,fw_text FROM tbl_missing ORDER BY fw_text"), true));
    QVERIFY(!query.exec());
    QVERIFY(!query.next());
    QVERIFY(query.lastError().text().contains(QStringLiteral("tbl_missing")));
    QTest::ignoreMessage(QtInfoMsg,
                         QRegularExpression(QStringLiteral("^\\[Source/Test:59\\] .*tbl_missing")));
    query.debugLastError(QStringLiteral("Source/Test"), 59);

    // A good statement afterwards runs, and the old reason is gone.
    QVERIFY(query.prepare(QStringLiteral("SELECT COUNT(*) FROM tbl_resource"), true));
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 2);
    QVERIFY(!query.lastError().isValid());
    QVERIFY(!query.prepare(QStringLiteral("SELEKT 1"), true));
    QVERIFY(query.exec(QStringLiteral("SELECT 1")));
    QVERIFY(!query.lastError().isValid());
}

void tst_SQLQuery::shouldFailWithoutConnection()
{
    // A connection that can't be opened: the query fails and says why, without a crash.
    {
        QSqlDatabase broken = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("broken"));
        broken.setDatabaseName(QStringLiteral("/nonexistent/folder/calendar.db"));
    }
    SQLQuery query(QString(), SQLDatabase(QStringLiteral("broken")));
    QTest::ignoreMessage(QtWarningMsg, "QSqlQuery::exec: database not open");
    QVERIFY(!query.exec(QStringLiteral("SELECT 1")));
    QVERIFY(!query.next());
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("^\\[Source/Test:9\\] ")));
    query.debugLastError(QStringLiteral("Source/Test"), 9);
}

void tst_SQLQuery::shouldRunAQueryGivenToTheConstructor()
{
    SQLQuery query(QStringLiteral("SELECT CURRENT_TIMESTAMP"), SQLDatabase());
    QVERIFY(query.isActive());
    QVERIFY(query.next());
    QVERIFY(query.value(0).toDateTime().isValid());
}

FW_TEST_MAIN(tst_SQLQuery)
#include "tst_sqlquery.moc"
