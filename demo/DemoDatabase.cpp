#include "DemoDatabase.h"

#include <SQLDatabase.h>
#include <SQLQuery.h>

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QStandardPaths>
#include <QVector>

namespace {

// Every schema change is a new entry at the end; an entry, once released, never changes. The texts
// hold "%ID" for the key column, which each server spells its own way; a text that starts with
// "%SQLITE " is run on SQLite only.
QVector<QStringList> migrations()
{
    return {
        // 1: the practice.
        {QStringLiteral("CREATE TABLE tbl_user (id %ID, usr_initials VARCHAR(10) NOT NULL, "
                        "usr_name VARCHAR(250) NOT NULL)"),
         QStringLiteral("CREATE VIEW view_user AS SELECT id, usr_initials, usr_name FROM tbl_user"),
         QStringLiteral("CREATE TABLE tbl_resource (id %ID, fw_text VARCHAR(250) NOT NULL)"),
         QStringLiteral(
             "CREATE TABLE tbl_casestage (id %ID, fw_name VARCHAR(250) NOT NULL, fw_color VARCHAR(20))"),
         QStringLiteral("CREATE TABLE tbl_calendarstatus (id %ID, cst_name VARCHAR(250) NOT NULL, "
                        "cst_color VARCHAR(20))"),
         QStringLiteral("CREATE TABLE IF NOT EXISTS fw_setting (fw_key VARCHAR(250) PRIMARY KEY, "
                        "fw_table VARCHAR(250), fw_value TEXT, fw_type INTEGER)"),
         QStringLiteral("CREATE TABLE demo_planinfo (id %ID, pi_label VARCHAR(250), pi_color VARCHAR(20))"),
         QStringLiteral("CREATE TABLE demo_plan (id %ID, pl_date DATE NOT NULL, pl_type INTEGER NOT NULL, "
                        "pl_key INTEGER NOT NULL, pl_start TIME NOT NULL, pl_end TIME NOT NULL, "
                        "pl_bookable INTEGER NOT NULL, pl_info INTEGER)"),
         QStringLiteral("CREATE INDEX demo_plan_day ON demo_plan (pl_type, pl_key, pl_date)"),
         QStringLiteral("CREATE TABLE demo_booking (id %ID, bk_date DATE NOT NULL, bk_user INTEGER, "
                        "bk_resource INTEGER, bk_start TIME NOT NULL, bk_end TIME NOT NULL, "
                        "bk_title VARCHAR(250), bk_text TEXT, bk_type INTEGER NOT NULL DEFAULT 0, "
                        "bk_flags INTEGER NOT NULL DEFAULT 0, bk_status INTEGER, "
                        "bk_locked INTEGER NOT NULL DEFAULT 0, bk_left VARCHAR(20), bk_right VARCHAR(20), "
                        "bk_top VARCHAR(20), bk_bottom VARCHAR(20))"),
         // A day's bookings are read by user or by resource.
         QStringLiteral("CREATE INDEX demo_booking_user_day ON demo_booking (bk_user, bk_date)"),
         QStringLiteral("CREATE INDEX demo_booking_resource_day ON demo_booking (bk_resource, bk_date)")},
        // 2: a booking's id is never given again. SQLite hands out the largest id anew once its row is
        // deleted, while the calendar and the undo stack may still name the deleted booking by it;
        // PostgreSQL's serial key never goes back and needs nothing.
        {QStringLiteral("%SQLITE CREATE TABLE demo_booking_keyed (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                        "bk_date DATE NOT NULL, bk_user INTEGER, "
                        "bk_resource INTEGER, bk_start TIME NOT NULL, bk_end TIME NOT NULL, "
                        "bk_title VARCHAR(250), bk_text TEXT, bk_type INTEGER NOT NULL DEFAULT 0, "
                        "bk_flags INTEGER NOT NULL DEFAULT 0, bk_status INTEGER, "
                        "bk_locked INTEGER NOT NULL DEFAULT 0, bk_left VARCHAR(20), bk_right VARCHAR(20), "
                        "bk_top VARCHAR(20), bk_bottom VARCHAR(20))"),
         QStringLiteral("%SQLITE INSERT INTO demo_booking_keyed SELECT id, bk_date, bk_user, bk_resource, "
                        "bk_start, bk_end, bk_title, bk_text, bk_type, bk_flags, bk_status, bk_locked, "
                        "bk_left, bk_right, bk_top, bk_bottom FROM demo_booking"),
         QStringLiteral("%SQLITE DROP TABLE demo_booking"),
         QStringLiteral("%SQLITE ALTER TABLE demo_booking_keyed RENAME TO demo_booking"),
         QStringLiteral("%SQLITE CREATE INDEX demo_booking_user_day ON demo_booking (bk_user, bk_date)"),
         QStringLiteral(
             "%SQLITE CREATE INDEX demo_booking_resource_day ON demo_booking (bk_resource, bk_date)")},
    };
}

} // namespace

int DemoDatabase::latestVersion()
{
    return migrations().size();
}

QString DemoDatabase::defaultFile()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("practice.sqlite"));
}

bool DemoDatabase::fail(const QString& what, const QString& why)
{
    mError = why.isEmpty() ? what : QStringLiteral("%1: %2").arg(what, why);
    return false;
}

bool DemoDatabase::open(const DemoConnection& connection, const QDate& today)
{
    mError.clear();
    mPostgres = connection.driver == QLatin1String("QPSQL");
    if (!QSqlDatabase::isDriverAvailable(connection.driver))
        return fail(QStringLiteral("The database driver %1 is not installed").arg(connection.driver),
                    QString());

    QSqlDatabase db = QSqlDatabase::contains(QLatin1String(QSqlDatabase::defaultConnection))
                          ? QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false)
                          : QSqlDatabase::addDatabase(connection.driver);
    if (db.driverName() != connection.driver) {
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
        db = QSqlDatabase::addDatabase(connection.driver);
    }
    db.close();
    if (mPostgres) {
        db.setHostName(connection.host);
        if (connection.port > 0)
            db.setPort(connection.port);
        db.setUserName(connection.user);
        db.setPassword(connection.password);
        db.setDatabaseName(connection.name);
    } else {
        const QString file = connection.file.isEmpty() ? defaultFile() : connection.file;
        if (!QDir().mkpath(QFileInfo(file).absolutePath()))
            return fail(QStringLiteral("Cannot create the folder of %1").arg(file), QString());
        db.setDatabaseName(file);
    }
    if (!db.open())
        return fail(QStringLiteral("Cannot open the database"), db.lastError().text());
    if (!mPostgres) {
        // Two copies of the demo on one file wait for each other instead of failing at once.
        SQLQuery pragma;
        pragma.exec(QStringLiteral("PRAGMA busy_timeout = 3000"));
    }
    if (!migrate() || (version() == latestVersion() && !seed(today) && !mError.isEmpty())) {
        const QString error = mError;
        close();
        mError = error;
        return false;
    }
    return true;
}

void DemoDatabase::close()
{
    QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false).close();
}

int DemoDatabase::version() const
{
    SQLQuery query;
    if (!query.exec(QStringLiteral("SELECT version FROM demo_schema")) || !query.next())
        return 0;
    return query.value(0).toInt();
}

bool DemoDatabase::run(const QStringList& statements)
{
    const QString id =
        mPostgres ? QStringLiteral("SERIAL PRIMARY KEY") : QStringLiteral("INTEGER PRIMARY KEY");
    const QString sqliteOnly = QStringLiteral("%SQLITE ");
    for (QString statement : statements) {
        if (statement.startsWith(sqliteOnly)) {
            if (mPostgres)
                continue;
            statement.remove(0, sqliteOnly.size());
        }
        statement.replace(QLatin1String("%ID"), id);
        SQLQuery query;
        if (!query.exec(statement))
            return fail(QStringLiteral("Cannot run \"%1\"").arg(statement), query.lastError().text());
    }
    return true;
}

bool DemoDatabase::migrate()
{
    QSqlDatabase db = QSqlDatabase::database();
    if (!run({QStringLiteral("CREATE TABLE IF NOT EXISTS demo_schema (version INTEGER NOT NULL)")}))
        return false;
    int current = version();
    if (current == 0) {
        SQLQuery none;
        none.exec(QStringLiteral("SELECT COUNT(*) FROM demo_schema"));
        if (none.next() && none.value(0).toInt() == 0 &&
            !run({QStringLiteral("INSERT INTO demo_schema (version) VALUES (0)")}))
            return false;
    }
    if (current > latestVersion())
        return fail(QStringLiteral("The database was made by a newer demo (schema %1, this demo knows %2)")
                        .arg(current)
                        .arg(latestVersion()),
                    QString());
    const QVector<QStringList> steps = migrations();
    for (; current < steps.size(); ++current) {
        // A step is all or nothing: a failure leaves the database at the version before it.
        if (!db.transaction())
            return fail(QStringLiteral("Cannot begin a transaction"), db.lastError().text());
        SQLQuery bump;
        bump.prepare(QStringLiteral("UPDATE demo_schema SET version = ?"));
        bump.addBindValue(current + 1);
        if (!run(steps.at(current)) || !bump.exec()) {
            if (mError.isEmpty())
                fail(QStringLiteral("Cannot note the schema version"), bump.lastError().text());
            db.rollback();
            return false;
        }
        if (!db.commit())
            return fail(QStringLiteral("Cannot commit schema version %1").arg(current + 1),
                        db.lastError().text());
    }
    return true;
}

namespace {

bool insertRows(const QString& statement, const QVector<QVariantList>& rows, QString* error)
{
    SQLQuery query;
    if (!query.prepare(statement)) {
        *error = query.lastError().text();
        return false;
    }
    for (const QVariantList& row : rows) {
        for (int i = 0; i < row.size(); ++i)
            query.bindValue(i, row.at(i));
        if (!query.exec()) {
            *error = query.lastError().text();
            return false;
        }
    }
    return true;
}

QString hhmm(int minutes)
{
    return QTime(minutes / 60, minutes % 60).toString(QStringLiteral("HH:mm:ss"));
}

} // namespace

bool DemoDatabase::seed(const QDate& today)
{
    SQLQuery count;
    if (!count.exec(QStringLiteral("SELECT COUNT(*) FROM tbl_user")) || !count.next())
        return fail(QStringLiteral("Cannot read the users"), count.lastError().text());
    const bool empty = count.value(0).toInt() == 0;
    count.query().finish();
    if (!empty)
        return false;

    QSqlDatabase db = QSqlDatabase::database();
    if (!db.transaction())
        return fail(QStringLiteral("Cannot begin a transaction"), db.lastError().text());
    QString error;
    const auto abort = [&](const QString& what) {
        db.rollback();
        return fail(what, error);
    };

    // People and things of a small practice.
    const QVector<QVariantList> users{{1, "AB", "Anna Berg"},   {2, "CD", "Carl Dahl"},
                                      {3, "EF", "Eva Fors"},    {4, "GH", "Gustav Holm"},
                                      {5, "IJ", "Ida Jansson"}, {6, "KL", "Karl Lind"}};
    const QVector<QVariantList> resources{{1, "Room 1"}, {2, "Room 2"}, {3, "Ultrasound"}, {4, "Car"}};
    const QVector<QVariantList> stages{{1, "Booked", "#8fb4ec"},
                                       {2, "Arrived", "#f3c27a"},
                                       {3, "In treatment", "#ec9a88"},
                                       {4, "Done", "#8fca9a"},
                                       {5, "Cancelled", "#c4c4c4"}};
    const QVector<QVariantList> statuses{
        {1, "Confirmed", "#47a35b"}, {2, "Tentative", "#f0a830"}, {3, "Waiting list", "#9a9a9a"}};
    const QVector<QVariantList> infos{{1, "Consultation", "#eef4fc"},
                                      {2, "Surgery", "#f0f8ec"},
                                      {3, "Home visits", "#fdf3e3"},
                                      {4, "Closed", "#f2f2f2"}};
    if (!insertRows(QStringLiteral("INSERT INTO tbl_user (id, usr_initials, usr_name) VALUES (?, ?, ?)"),
                    users, &error))
        return abort(QStringLiteral("Cannot seed the users"));
    if (!insertRows(QStringLiteral("INSERT INTO tbl_resource (id, fw_text) VALUES (?, ?)"), resources,
                    &error))
        return abort(QStringLiteral("Cannot seed the resources"));
    if (!insertRows(QStringLiteral("INSERT INTO tbl_casestage (id, fw_name, fw_color) VALUES (?, ?, ?)"),
                    stages, &error))
        return abort(QStringLiteral("Cannot seed the statuses"));
    if (!insertRows(
            QStringLiteral("INSERT INTO tbl_calendarstatus (id, cst_name, cst_color) VALUES (?, ?, ?)"),
            statuses, &error))
        return abort(QStringLiteral("Cannot seed the calendar statuses"));
    if (!insertRows(QStringLiteral("INSERT INTO demo_planinfo (id, pi_label, pi_color) VALUES (?, ?, ?)"),
                    infos, &error))
        return abort(QStringLiteral("Cannot seed the plan kinds"));

    // Duty plans for four weeks back and eight ahead: people work mornings and afternoons with a
    // closed lunch hour on weekdays, Karl does home visits; rooms are open all day, the car mornings.
    const QDate first = today.addDays(-28);
    const QDate last = today.addDays(56);
    QVector<QVariantList> plans;
    for (QDate day = first; day <= last; day = day.addDays(1)) {
        if (day.dayOfWeek() > 5)
            continue;
        for (int user = 1; user <= 6; ++user) {
            // Everybody has a free weekday afternoon of their own.
            const bool freeAfternoon = day.dayOfWeek() == (user % 5) + 1;
            const int info = user == 6 ? 3 : 1;
            plans << QVariantList{day, 0, user, hhmm(8 * 60), hhmm(12 * 60), 1, info};
            plans << QVariantList{day, 0, user, hhmm(12 * 60), hhmm(13 * 60), 0, 4};
            if (!freeAfternoon)
                plans << QVariantList{day, 0, user, hhmm(13 * 60), hhmm(17 * 60), 1, info};
        }
        for (int resource = 1; resource <= 3; ++resource)
            plans << QVariantList{day, 1, resource, hhmm(7 * 60), hhmm(18 * 60), 1, 2};
        plans << QVariantList{day, 1, 4, hhmm(8 * 60), hhmm(13 * 60), 1, 3};
    }
    if (!insertRows(QStringLiteral("INSERT INTO demo_plan (pl_date, pl_type, pl_key, pl_start, pl_end, "
                                   "pl_bookable, pl_info) VALUES (?, ?, ?, ?, ?, ?, ?)"),
                    plans, &error))
        return abort(QStringLiteral("Cannot seed the plans"));

    // Bookings of every kind for two weeks either side of today, the same practice at every start.
    const QStringList patients{"Meyer",    "Roth",    "Berger", "Nilsson", "Weber",  "Larsen", "Koch",
                               "Svensson", "Fischer", "Olsen",  "Wagner",  "Becker", "Hansen", "Schulz"};
    const QStringList reasons{"Check-up",     "Follow-up",    "Blood test",    "Vaccination",
                              "Consultation", "X-ray review", "Physiotherapy", "Prescription"};
    const QVector<QStringList> colours{
        {"#d6e4fa", "#96b6e8"}, {"#d6f0d6", "#8cc88c"}, {"#fcecd0", "#e6be78"}, {"#f4dcf0", "#d29ac8"}};
    QRandomGenerator random(20261125);
    QVector<QVariantList> bookings;
    for (QDate day = today.addDays(-14); day <= today.addDays(14); day = day.addDays(1)) {
        if (day.dayOfWeek() > 5)
            continue;
        for (int user = 1; user <= 6; ++user) {
            // Bookings where the plan opens the time: not on the free afternoon.
            const int closing = day.dayOfWeek() == (user % 5) + 1 ? 12 * 60 : 16 * 60 + 30;
            int minute = 8 * 60 + 15 * int(random.bounded(3));
            while (minute < closing) {
                if (minute >= 12 * 60 && minute < 13 * 60) {
                    minute = 13 * 60;
                    continue;
                }
                const int length = 15 * (1 + int(random.bounded(4)));
                const int roll = int(random.bounded(100));
                int type = 0;
                int flags = 0;
                int locked = 0;
                QVariant resource;
                QString title = patients.at(int(random.bounded(patients.size())));
                QString text = reasons.at(int(random.bounded(reasons.size())));
                if (roll < 8) {
                    type = 1; // a meeting
                    title = QStringLiteral("Team meeting");
                    text = QStringLiteral("<b>Agenda</b>: the week's cases");
                } else if (roll < 14) {
                    type = 6; // held back
                    title = QStringLiteral("Reserved");
                    text.clear();
                } else if (roll < 18) {
                    type = 7; // a note only
                    title = QStringLiteral("Note");
                    text = QStringLiteral("Call the lab about <i>results</i>");
                } else if (roll < 24) {
                    locked = 1;
                }
                if (roll % 5 == 0)
                    flags |= 1; // phone
                if (roll % 7 == 0)
                    flags |= 2; // mail
                if (type == 0 && roll % 6 == 1)
                    resource = 1 + int(random.bounded(3));
                const QStringList& colour = colours.at(int(random.bounded(colours.size())));
                const QString left = roll % 9 == 0 ? QStringLiteral("#dc5050") : QString();
                const QString right = roll % 11 == 0 ? QStringLiteral("#50a050") : QString();
                const QVariant status = type == 0 ? QVariant(1 + int(random.bounded(5))) : QVariant();
                bookings << QVariantList{day,
                                         user,
                                         resource,
                                         hhmm(minute),
                                         hhmm(minute + length),
                                         title,
                                         text,
                                         type,
                                         flags,
                                         status,
                                         locked,
                                         left.isEmpty() ? QVariant() : QVariant(left),
                                         right.isEmpty() ? QVariant() : QVariant(right),
                                         colour.at(0),
                                         colour.at(1)};
                // Some time free between bookings, and now and then two at once.
                minute += length + 15 * int(random.bounded(4)) - (roll > 92 ? 15 : 0);
            }
        }
        // The car on home visits in the morning.
        bookings << QVariantList{day,
                                 6,
                                 4,
                                 hhmm(9 * 60),
                                 hhmm(11 * 60 + 30),
                                 QStringLiteral("Home visits"),
                                 QStringLiteral("North district"),
                                 0,
                                 1,
                                 1,
                                 0,
                                 QVariant(),
                                 QVariant(),
                                 QStringLiteral("#fcecd0"),
                                 QStringLiteral("#e6be78")};
    }
    if (!insertRows(QStringLiteral(
                        "INSERT INTO demo_booking (bk_date, bk_user, bk_resource, bk_start, bk_end, "
                        "bk_title, bk_text, bk_type, bk_flags, bk_status, bk_locked, bk_left, "
                        "bk_right, bk_top, bk_bottom) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                    bookings, &error))
        return abort(QStringLiteral("Cannot seed the bookings"));

    // The group the demo opens with, the people and then the rooms, and the calendar's settings.
    const int text = int(QVariant::String);
    const int number = int(QVariant::Int);
    if (!insertRows(QStringLiteral("INSERT INTO fw_setting (fw_key, fw_table, fw_value, fw_type) "
                                   "VALUES (?, ?, ?, ?)"),
                    {{"usr_bookinggrouplist", "tbl_user", "1:0,2:0,3:0,4:0,1:1,3:1", text},
                     {"set_calshowtime", "", "1", number},
                     {"set_showtooltips", "", "1", number},
                     {"set_snaponmovebooking", "", "5", number},
                     {"gst_calendarsensitivity", "", "3", number},
                     {"set_calexpandsize", "", "60", number}},
                    &error))
        return abort(QStringLiteral("Cannot seed the group"));

    if (mPostgres) {
        // The serial counters follow the ids given by hand above.
        for (const char* table :
             {"tbl_user", "tbl_resource", "tbl_casestage", "tbl_calendarstatus", "demo_planinfo"}) {
            SQLQuery sync;
            sync.exec(
                QStringLiteral("SELECT setval(pg_get_serial_sequence('%1', 'id'), (SELECT MAX(id) FROM %1))")
                    .arg(QLatin1String(table)));
        }
    }
    if (!db.commit())
        return fail(QStringLiteral("Cannot commit the seeded practice"), db.lastError().text());
    return true;
}
