#ifndef SQLQUERY_H
#define SQLQUERY_H

#include "FwSqlGlobal.h"
#include "SQLDatabase.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

// A query on one of the application's connections. Failures never throw: the operations return
// false and the caller reports them through debugLastError.
class FWSQL_EXPORT SQLQuery
{
public:
    // A non-empty `query` is run at once, as QSqlQuery does.
    explicit SQLQuery(const QString& query = QString(), SQLDatabase database = SQLDatabase());

    // `forwardOnly` lets the driver stream the rows, for queries that are read once.
    bool prepare(const QString& query, bool forwardOnly = true);
    // Runs the prepared statement. After a failed prepare it fails too, and lastError keeps the
    // reason the statement was refused for.
    bool exec();
    bool exec(const QString& query);

    void bindValue(const QString& placeholder, const QVariant& value);
    void bindValue(int position, const QVariant& value);
    void addBindValue(const QVariant& value);

    bool next();
    bool first();
    bool isActive() const;
    bool isSelect() const;
    QVariant value(int index) const;
    QVariant value(const QString& name) const;
    int numRowsAffected() const;
    QVariant lastInsertId() const;

    QSqlError lastError() const;
    QString lastQuery() const;

    // Writes the last error to the log as "[source:line] error".
    void debugLastError(const QString& source, int line) const;

    // The query underneath, for what this class doesn't offer.
    QSqlQuery& query() { return mQuery; }

private:
    QSqlQuery mQuery;
    // Why the last prepare failed; invalid after a successful one and after exec(QString).
    QSqlError mPrepareError;
};

#endif // SQLQUERY_H
