#include "SQLDatabase.h"

SQLDatabase::SQLDatabase()
    : mConnectionName(QLatin1String(QSqlDatabase::defaultConnection))
{
}

SQLDatabase::SQLDatabase(const QString& connectionName)
    : mConnectionName(connectionName)
{
}

QSqlDatabase SQLDatabase::database() const
{
    return QSqlDatabase::database(mConnectionName);
}
