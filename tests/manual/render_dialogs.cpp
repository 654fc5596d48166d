// Renders the picker of users and resources and the calendar status dialog into PNGs, as they
// come up with a few rows in an in-memory database, for looking at their layout by eye:
//   QT_QPA_PLATFORM=offscreen build/bin/render_dialogs build
// writes build/bkcalendaruserlist.png and build/bkcalendarstatus.png.
#include <FwCalendar.h>

#include <FwApplication.h>
#include <FwPtrColorPicker.h>
#include <FwPtrEdit.h>
#include <SQLQuery.h>

#include <QDir>
#include <QLocale>
#include <QPixmap>
#include <QSqlDatabase>
#include <QTest>

namespace {
bool run(const char* statement)
{
    SQLQuery query;
    if (query.exec(QString::fromLatin1(statement)))
        return true;
    qWarning("%s: %s", statement, qPrintable(query.lastError().text()));
    return false;
}

bool render(QWidget& dialog, const QString& fileName)
{
    dialog.show();
    if (!QTest::qWaitForWindowExposed(&dialog))
        return false;
    QCoreApplication::processEvents();
    const bool saved = dialog.grab().save(fileName);
    qInfo("%s %s", saved ? "wrote" : "could not write", qPrintable(fileName));
    dialog.hide();
    return saved;
}
} // namespace

int main(int argc, char** argv)
{
    FwApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath());
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        if (!db.open())
            return 1;
        ok = run("CREATE TABLE tbl_user (id INTEGER PRIMARY KEY, usr_initials TEXT, usr_name TEXT)") &&
             run("CREATE VIEW view_user AS SELECT id, usr_initials, usr_name FROM tbl_user") &&
             run("CREATE TABLE tbl_resource (id INTEGER PRIMARY KEY, fw_text TEXT)") &&
             run("CREATE TABLE tbl_calendarstatus (id INTEGER PRIMARY KEY, cst_name TEXT, cst_color TEXT)") &&
             run("INSERT INTO tbl_user (usr_initials, usr_name) VALUES ('AK', 'Anna Klein'), "
                 "('MB', 'Mia Berg'), ('TS', 'Tom Schulz'), ('ZZ', 'Zoe Zimmer')") &&
             run("INSERT INTO tbl_resource (fw_text) VALUES ('Beamer'), ('Meeting room 1'), ('Van')") &&
             run("INSERT INTO tbl_calendarstatus (cst_name, cst_color) VALUES ('Confirmed', '#2e8b57')");
        if (ok) {
            BkCalendarUserList picker(nullptr);
            picker.setResource(BkCalendarResource(2, QString(), 0));
            ok = render(picker, folder.filePath(QStringLiteral("bkcalendaruserlist.png")));

            BkCalendarStatus status(FwEnums::DialogEdit);
            status.setId(1);
            ok = render(status, folder.filePath(QStringLiteral("bkcalendarstatus.png"))) && ok;
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
    return ok ? 0 : 1;
}
