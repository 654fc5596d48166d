#ifndef SQLDATABASE_H
#define SQLDATABASE_H

#include "FwSqlGlobal.h"

#include <QSqlDatabase>
#include <QString>

// A handle on one of the application's SQL connections. Default-constructed it stands for Qt's
// default connection, QSqlDatabase::database().
class FWSQL_EXPORT SQLDatabase
{
public:
    SQLDatabase();
    explicit SQLDatabase(const QString& connectionName);

    QSqlDatabase database() const;
    QString connectionName() const { return mConnectionName; }

private:
    QString mConnectionName;
};

#endif // SQLDATABASE_H
