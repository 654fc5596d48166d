#ifndef DEMODATABASE_H
#define DEMODATABASE_H

#include <QDate>
#include <QString>
#include <QStringList>

// Where the demo keeps its practice: an SQLite file by default, or a PostgreSQL server.
struct DemoConnection
{
    QString driver = QStringLiteral("QSQLITE");
    // The SQLite file; empty means the file in the user's data folder.
    QString file;
    QString host;
    int port = 0;
    QString user;
    QString password;
    QString name;
};

// The demo's database as Qt's default connection, which is where the calendar and the framework look.
// On open the schema is brought to the newest version, one migration after the other, each in its own
// transaction; a new database gets a seeded practice around the given day.
class DemoDatabase
{
public:
    // The version the migrations below lead to.
    static int latestVersion();
    // The SQLite file in the user's data folder.
    static QString defaultFile();

    // Opens the connection, migrates, and seeds an empty practice. False, with the reason in
    // lastError(), when any step fails; the connection is then closed again.
    bool open(const DemoConnection& connection, const QDate& today);
    void close();

    int version() const;
    bool isPostgres() const { return mPostgres; }
    QString lastError() const { return mError; }

    // Seeds a practice around `today`: users, resources, statuses, plans and bookings. Only into an
    // empty database; true when it was empty and is seeded now.
    bool seed(const QDate& today);

private:
    bool migrate();
    bool run(const QStringList& statements);
    bool fail(const QString& what, const QString& why);

    bool mPostgres = false;
    QString mError;
};

#endif // DEMODATABASE_H
