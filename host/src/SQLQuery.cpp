#include "SQLQuery.h"

#include "FwLog.h"

SQLQuery::SQLQuery(const QString& query, SQLDatabase database)
    : mQuery(database.database())
{
    if (!query.isEmpty())
        mQuery.exec(query);
}

bool SQLQuery::prepare(const QString& query, bool forwardOnly)
{
    mQuery.setForwardOnly(forwardOnly);
    const bool prepared = mQuery.prepare(query);
    mPrepareError = prepared ? QSqlError() : mQuery.lastError();
    return prepared;
}

bool SQLQuery::exec()
{
    // Running a refused statement would only replace its reason with the driver's "no query".
    if (mPrepareError.isValid())
        return false;
    return mQuery.exec();
}

bool SQLQuery::exec(const QString& query)
{
    mPrepareError = QSqlError();
    return mQuery.exec(query);
}

void SQLQuery::bindValue(const QString& placeholder, const QVariant& value)
{
    mQuery.bindValue(placeholder, value);
}

void SQLQuery::bindValue(int position, const QVariant& value)
{
    mQuery.bindValue(position, value);
}

void SQLQuery::addBindValue(const QVariant& value)
{
    mQuery.addBindValue(value);
}

bool SQLQuery::next()
{
    return mQuery.next();
}

bool SQLQuery::first()
{
    return mQuery.first();
}

bool SQLQuery::isActive() const
{
    return mQuery.isActive();
}

bool SQLQuery::isSelect() const
{
    return mQuery.isSelect();
}

QVariant SQLQuery::value(int index) const
{
    return mQuery.value(index);
}

QVariant SQLQuery::value(const QString& name) const
{
    return mQuery.value(name);
}

int SQLQuery::numRowsAffected() const
{
    return mQuery.numRowsAffected();
}

QVariant SQLQuery::lastInsertId() const
{
    return mQuery.lastInsertId();
}

QSqlError SQLQuery::lastError() const
{
    return mPrepareError.isValid() ? mPrepareError : mQuery.lastError();
}

QString SQLQuery::lastQuery() const
{
    return mQuery.lastQuery();
}

void SQLQuery::debugLastError(const QString& source, int line) const
{
    FwLog::log(QStringLiteral("[%1:%2] %3").arg(source).arg(line).arg(lastError().text()));
}
