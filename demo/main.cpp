// fwcalendar-demo: a practice calendar on a real database, the calendar library embedded as a host
// application does it.

#include "DemoDatabase.h"
#include "DemoStore.h"
#include "DemoWindow.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarList.h>
#include <BkCalendarModel.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <SQLQuery.h>

#include <QCalendarWidget>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QTextStream>

namespace {

int refuse(const QString& message, bool gui)
{
    QTextStream(stderr) << "fwcalendar-demo: " << message << '\n';
    if (gui)
        QMessageBox::critical(nullptr, QStringLiteral("FwCalendar demo"), message);
    return 1;
}

bool userExists(int id)
{
    SQLQuery query;
    query.prepare(QStringLiteral("SELECT COUNT(*) FROM view_user WHERE id = ?"));
    query.addBindValue(id);
    return query.exec() && query.next() && query.value(0).toInt() == 1;
}

int firstUser()
{
    SQLQuery query;
    if (query.exec(QStringLiteral("SELECT MIN(id) FROM view_user")) && query.next())
        return query.value(0).toInt();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    // A screenshot needs no display; that must be settled before the application object exists.
    bool screenshot = false;
    for (int i = 1; i < argc; ++i)
        screenshot = screenshot || qstrcmp(argv[i], "--screenshot") == 0;
    if (screenshot && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    FwApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("FwCalendar"));
    QCoreApplication::setApplicationName(QStringLiteral("fwcalendar-demo"));
    QCoreApplication::setApplicationVersion(QStringLiteral("0.1"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A practice calendar on a real database."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption database(
        QStringLiteral("database"),
        QStringLiteral("The SQLite file (default: %1).").arg(DemoDatabase::defaultFile()),
        QStringLiteral("FILE"));
    const QCommandLineOption driver(QStringLiteral("driver"), QStringLiteral("QSQLITE (default) or QPSQL."),
                                    QStringLiteral("DRIVER"), QStringLiteral("QSQLITE"));
    const QCommandLineOption host(QStringLiteral("host"), QStringLiteral("PostgreSQL server."),
                                  QStringLiteral("HOST"));
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("PostgreSQL port."),
                                  QStringLiteral("PORT"));
    const QCommandLineOption dbUser(QStringLiteral("db-user"), QStringLiteral("PostgreSQL user."),
                                    QStringLiteral("NAME"));
    const QCommandLineOption password(QStringLiteral("password"), QStringLiteral("PostgreSQL password."),
                                      QStringLiteral("PASSWORD"));
    const QCommandLineOption name(QStringLiteral("name"), QStringLiteral("PostgreSQL database name."),
                                  QStringLiteral("NAME"));
    const QCommandLineOption user(QStringLiteral("user"), QStringLiteral("The logged-in user's id."),
                                  QStringLiteral("ID"));
    const QCommandLineOption shot(QStringLiteral("screenshot"),
                                  QStringLiteral("Render the main window offscreen to FILE and quit."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption view(
        QStringLiteral("view"), QStringLiteral("day, 5days, 7days, month or group."), QStringLiteral("VIEW"));
    const QCommandLineOption date(QStringLiteral("date"), QStringLiteral("The day to show, YYYY-MM-DD."),
                                  QStringLiteral("DATE"));
    parser.addOptions({database, driver, host, port, dbUser, password, name, user, shot, view, date});
    parser.process(app);
    const bool gui = !screenshot;

    DemoConnection connection;
    connection.driver = parser.value(driver).toUpper();
    if (connection.driver != QLatin1String("QSQLITE") && connection.driver != QLatin1String("QPSQL"))
        return refuse(QStringLiteral("Unknown driver %1: use QSQLITE or QPSQL.").arg(parser.value(driver)),
                      gui);
    connection.file = parser.value(database);
    connection.host = parser.value(host);
    if (parser.isSet(port)) {
        bool ok = false;
        connection.port = parser.value(port).toInt(&ok);
        if (!ok || connection.port <= 0 || connection.port > 65535)
            return refuse(QStringLiteral("The port must be a number from 1 to 65535."), gui);
    }
    connection.user = parser.value(dbUser);
    connection.password = parser.value(password);
    connection.name = parser.value(name);

    DemoWindow::View shown = DemoWindow::FiveDays;
    if (parser.isSet(view) && !DemoWindow::viewFromName(parser.value(view), &shown))
        return refuse(
            QStringLiteral("Unknown view %1: use day, 5days, 7days, month or group.").arg(parser.value(view)),
            gui);
    QDate day;
    if (parser.isSet(date)) {
        day = QDate::fromString(parser.value(date), Qt::ISODate);
        if (!day.isValid())
            return refuse(QStringLiteral("The date must be written YYYY-MM-DD."), gui);
    }

    DemoDatabase db;
    if (!db.open(connection, BkCalendarClock::currentDate()))
        return refuse(db.lastError(), gui);

    int userId = firstUser();
    if (parser.isSet(user)) {
        bool ok = false;
        userId = parser.value(user).toInt(&ok);
        if (!ok || !userExists(userId))
            return refuse(QStringLiteral("There is no user with the id %1.").arg(parser.value(user)), gui);
    }

    int result = 0;
    {
        DemoWindow window(userId);
        if (parser.isSet(view))
            window.showView(shown);
        if (day.isValid()) {
            window.calendar()->setDate(day);
            if (window.calendar()->datePicker())
                window.calendar()->datePicker()->setSelectedDate(day);
            if (window.calendar()->jobList())
                window.calendar()->jobList()->setDate(day);
        }
        window.show();
        if (screenshot) {
            QCoreApplication::processEvents();
            const QString file = parser.value(shot);
            if (!window.grab().save(file))
                result = refuse(QStringLiteral("Cannot write the screenshot %1.").arg(file), false);
            else
                QTextStream(stdout) << "Screenshot written to " << file << '\n';
            window.calendar()->model()->commitToDatabase();
        } else {
            result = app.exec();
        }
    }
    db.close();
    return result;
}
