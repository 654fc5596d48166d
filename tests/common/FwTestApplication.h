#ifndef FWTESTAPPLICATION_H
#define FWTESTAPPLICATION_H

// The main function of a test that needs the framework's application object.
//
// Use it instead of QTEST_MAIN:
//
//     class tst_Something : public QObject { Q_OBJECT ... };
//     FW_TEST_MAIN(tst_Something)
//     #include "tst_something.moc"
//
// Before the test class is built it:
//  - pins the time zone to Europe/Berlin and the default locale to English (United States), so
//    that day names, times and "today" read the same on every machine; a test may set another
//    locale in its initTestCase;
//  - gives the local values (QSettings) a scratch folder of this run's own, so that they never
//    touch the user's own, start empty, and are not shared with a run of the same test beside it
//    (the framework takes in at once what another process writes to them); it also turns on
//    QStandardPaths' test mode for the other standard places;
//  - builds an FwApplication, so FwApplication::app() and iApp are set and settings can be written
//    with FwApplication::app()->setValue(QVariant(1), "set_alwaysroundup", QString());
//  - opens an SQLite ":memory:" database as Qt's default connection, which is what SQLDatabase()
//    stands for; a test creates its tables with SQLQuery::exec (e.g. in initTestCase). Settings
//    live in that database too (table "fw_setting").
// It then runs the test with QTest::qExec and returns its result. The database is closed and the
// connection removed before the application goes.

#include <FwApplication.h>

#include <QDir>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlError>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>

namespace FwTest {
template <typename TestClass> int runTest(int argc, char** argv, const char* name)
{
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QStandardPaths::setTestModeEnabled(true);
    const QTemporaryDir localValues(QDir::tempPath() + QStringLiteral("/fwcalendar-qttest-XXXXXX"));
    if (!localValues.isValid()) {
        qCritical("Cannot make a scratch folder for the local values: %s",
                  qPrintable(localValues.errorString()));
        return 1;
    }
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, localValues.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, localValues.path());
    FwApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    QCoreApplication::setOrganizationName(QStringLiteral("FwCalendarTests"));
    QCoreApplication::setApplicationName(QString::fromLatin1(name));
    int result = 1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        if (!db.open()) {
            qCritical("Cannot open the SQLite test database: %s", qPrintable(db.lastError().text()));
            return 1;
        }
        TestClass test;
        result = QTest::qExec(&test, argc, argv);
        db.close();
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    return result;
}
} // namespace FwTest

#define FW_TEST_MAIN(TestClass)                                                                              \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        return FwTest::runTest<TestClass>(argc, argv, #TestClass);                                           \
    }

#endif // FWTESTAPPLICATION_H
