#include "FwTableBase.h"

#include "FwLog.h"
#include "FwPtrColorPicker.h"
#include "FwPtrEdit.h"

#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QWidget>

#include <cmath>
#include <limits>

namespace {
QString fieldNameOf(const QWidget* field)
{
    if (auto edit = qobject_cast<const FwPtrEdit*>(field))
        return edit->fieldName();
    if (auto picker = qobject_cast<const FwPtrColorPicker*>(field))
        return picker->fieldName();
    return QString();
}

// An empty field stands for no value.
QVariant valueOf(const QWidget* field)
{
    QString text;
    if (auto edit = qobject_cast<const FwPtrEdit*>(field))
        text = edit->text();
    else if (auto picker = qobject_cast<const FwPtrColorPicker*>(field))
        text = picker->colorName();
    return text.isEmpty() ? QVariant(QVariant::String) : QVariant(text);
}

void setValueOf(QWidget* field, const QVariant& value)
{
    if (auto edit = qobject_cast<FwPtrEdit*>(field))
        edit->setText(value.isNull() ? QString() : value.toString());
    else if (auto picker = qobject_cast<FwPtrColorPicker*>(field))
        picker->setColorName(value.toString());
}

// Null stays apart from the empty text: a field shows both as empty, but they are stored differently.
bool sameValue(const QVariant& a, const QVariant& b)
{
    return a.isNull() == b.isNull() && a.toString() == b.toString();
}

// Escapes the wildcards of LIKE so that user text matches only itself.
QString likeEscaped(const QString& text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('%'), QLatin1String("\\%"));
    escaped.replace(QLatin1Char('_'), QLatin1String("\\_"));
    return escaped;
}

QSqlDatabase defaultDatabase()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
}

// Ids are plain numbers wherever the framework passes them on. Only an id that is a whole number
// already becomes an int: a fractional id or a text such as "007" names its own record, and read as
// a number it would name another one.
QVariant normalizedId(const QVariant& id)
{
    qlonglong number = 0;
    switch (id.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        number = id.toLongLong();
        break;
    case QMetaType::ULongLong:
        if (id.toULongLong() > qulonglong(std::numeric_limits<int>::max()))
            return id;
        number = id.toLongLong();
        break;
    case QMetaType::Double:
    case QMetaType::Float: {
        const double value = id.toDouble();
        if (!std::isfinite(value) || std::trunc(value) != value || std::abs(value) > 1e15)
            return id;
        number = qlonglong(value);
        break;
    }
    case QMetaType::QString: {
        bool ok = false;
        number = id.toString().toLongLong(&ok);
        if (!ok || QString::number(number) != id.toString())
            return id;
        break;
    }
    default:
        return id;
    }
    if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
        return QVariant(int(number));
    return id;
}
} // namespace

FwTableBase::FwTableBase(QWidget* form, QObject* parent)
    : QObject(parent)
    , mForm(form)
    , mIdField(QStringLiteral("id"))
{
}

FwTableBase::~FwTableBase() = default;

void FwTableBase::setTableName(const QString& name)
{
    mTableName = name.trimmed();
}

void FwTableBase::setIdField(const QString& name)
{
    mIdField = name.trimmed();
}

bool FwTableBase::isIdentifier(const QString& name)
{
    static const QRegularExpression identifier(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]{0,62}$"));
    return identifier.match(name).hasMatch();
}

QList<QWidget*> FwTableBase::fields() const
{
    QList<QWidget*> result;
    if (!mForm)
        return result;
    const QList<QWidget*> children = mForm->findChildren<QWidget*>();
    for (QWidget* child : children) {
        if (!fieldNameOf(child).isEmpty())
            result.append(child);
    }
    return result;
}

bool FwTableBase::checkNames(const QList<QWidget*>& fields)
{
    if (!isIdentifier(mTableName)) {
        fail(tr("Invalid table name '%1'").arg(mTableName), __LINE__);
        return false;
    }
    if (!isIdentifier(mIdField)) {
        fail(tr("Invalid field name '%1'").arg(mIdField), __LINE__);
        return false;
    }
    for (const QWidget* field : fields) {
        const QString name = fieldNameOf(field);
        if (!isIdentifier(name)) {
            fail(tr("Invalid field name '%1'").arg(name), __LINE__);
            return false;
        }
    }
    return true;
}

void FwTableBase::fail(const QString& error, int line)
{
    mLastError = error;
    FwLog::log(QStringLiteral("[host/src/FwTableBase:%1] %2").arg(line).arg(error));
}

void FwTableBase::setCurrent(const QVariant& id)
{
    mId = id;
    if (mId.isNull())
        mShown.clear();
    emit currentChanged(mId);
}

void FwTableBase::noteShown(const QList<QWidget*>& bound, const QVariantList& stored)
{
    mShown.clear();
    for (int i = 0; i < bound.size() && i < stored.size(); ++i)
        mShown.insert(fieldNameOf(bound.at(i)), Shown{stored.at(i), valueOf(bound.at(i))});
}

bool FwTableBase::setVariantId(QVariant id)
{
    if (id.isNull()) {
        initTable(true);
        return false;
    }
    const QList<QWidget*> bound = fields();
    if (!checkNames(bound))
        return false;
    QStringList names{mIdField};
    for (const QWidget* field : bound)
        names.append(fieldNameOf(field));

    QSqlQuery query(defaultDatabase());
    query.setForwardOnly(true);
    query.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?")
                      .arg(names.join(QLatin1Char(',')), mTableName, mIdField));
    query.addBindValue(id);
    if (!query.exec()) {
        fail(query.lastError().text(), __LINE__);
        return false;
    }
    // A record that is gone leaves no stale values behind in the fields.
    return takeFirstRow(query, bound, true);
}

QVariant FwTableBase::insertCurrent()
{
    const QVariant failed(-1);
    const QList<QWidget*> bound = fields();
    if (!checkNames(bound))
        return failed;
    QSqlDatabase db = defaultDatabase();
    // PostgreSQL gives no usable last insert id; it returns the key instead.
    const bool returning = db.driverName().startsWith(QLatin1String("QPSQL"));

    QStringList names;
    QStringList marks;
    for (const QWidget* field : bound) {
        names.append(fieldNameOf(field));
        marks.append(QStringLiteral("?"));
    }
    QString statement =
        names.isEmpty() ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(mTableName)
                        : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                              .arg(mTableName, names.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
    if (returning)
        statement += QStringLiteral(" RETURNING %1").arg(mIdField);

    QSqlQuery query(db);
    query.prepare(statement);
    QVariantList values;
    for (const QWidget* field : bound) {
        values.append(valueOf(field));
        query.addBindValue(values.last());
    }
    if (!query.exec()) {
        fail(query.lastError().text(), __LINE__);
        return failed;
    }
    QVariant id = returning ? (query.next() ? query.value(0) : QVariant()) : query.lastInsertId();
    if (id.isNull()) {
        fail(tr("The new record has no id"), __LINE__);
        return failed;
    }
    id = normalizedId(id);
    mLastError.clear();
    setCurrent(id);
    noteShown(bound, values);
    return id;
}

bool FwTableBase::updateCurrent()
{
    if (mId.isNull()) {
        fail(tr("No current record"), __LINE__);
        return false;
    }
    const QList<QWidget*> bound = fields();
    if (!checkNames(bound))
        return false;
    if (bound.isEmpty())
        return true;
    QStringList assignments;
    QVariantList values;
    for (const QWidget* field : bound) {
        const QString name = fieldNameOf(field);
        assignments.append(QStringLiteral("%1 = ?").arg(name));
        QVariant value = valueOf(field);
        const auto shown = mShown.constFind(name);
        if (shown != mShown.constEnd() && sameValue(value, shown->shown))
            value = shown->stored;
        values.append(value);
    }

    QSqlQuery query(defaultDatabase());
    query.prepare(QStringLiteral("UPDATE %1 SET %2 WHERE %3 = ?")
                      .arg(mTableName, assignments.join(QLatin1Char(',')), mIdField));
    for (const QVariant& value : qAsConst(values))
        query.addBindValue(value);
    query.addBindValue(mId);
    if (!query.exec()) {
        fail(query.lastError().text(), __LINE__);
        return false;
    }
    if (query.numRowsAffected() == 0) {
        fail(tr("The record no longer exists"), __LINE__);
        return false;
    }
    mLastError.clear();
    noteShown(bound, values);
    return true;
}

bool FwTableBase::execute(const QString& filterField, const QString& filterValue, bool exactMatch,
                          bool caseSensitive)
{
    const QList<QWidget*> bound = fields();
    if (!checkNames(bound))
        return false;
    if (!filterField.isEmpty() && !isIdentifier(filterField)) {
        fail(tr("Invalid field name '%1'").arg(filterField), __LINE__);
        return false;
    }

    QStringList names{mIdField};
    QStringList conditions;
    QVariantList values;
    for (const QWidget* field : bound) {
        const QString name = fieldNameOf(field);
        names.append(name);
        const QVariant value = valueOf(field);
        if (value.isNull())
            continue;
        const QString text = value.toString();
        // Colours are whole values: "#ff0000" must not find "#ff00001".
        const bool exact = exactMatch || qobject_cast<const FwPtrColorPicker*>(field);
        // A field shows its column as text, and is searched as text: PostgreSQL has no LOWER or LIKE
        // for a column of numbers or dates.
        const QString asText = QStringLiteral("CAST(%1 AS TEXT)").arg(name);
        if (exact && caseSensitive) {
            conditions.append(QStringLiteral("%1 = ?").arg(asText));
            values.append(text);
        } else if (exact) {
            conditions.append(QStringLiteral("LOWER(%1) = LOWER(?)").arg(asText));
            values.append(text);
        } else {
            conditions.append(caseSensitive
                                  ? QStringLiteral("%1 LIKE ? ESCAPE '\\'").arg(asText)
                                  : QStringLiteral("LOWER(%1) LIKE LOWER(?) ESCAPE '\\'").arg(asText));
            values.append(QStringLiteral("%%1%").arg(likeEscaped(text)));
        }
    }
    if (!filterField.isEmpty()) {
        conditions.append(QStringLiteral("%1 = ?").arg(filterField));
        values.append(filterValue);
    }

    QString statement = QStringLiteral("SELECT %1 FROM %2").arg(names.join(QLatin1Char(',')), mTableName);
    if (!conditions.isEmpty())
        statement += QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    statement += QStringLiteral(" ORDER BY %1").arg(mIdField);

    QSqlQuery query(defaultDatabase());
    query.setForwardOnly(true);
    query.prepare(statement);
    for (const QVariant& value : qAsConst(values))
        query.addBindValue(value);
    if (!query.exec()) {
        fail(query.lastError().text(), __LINE__);
        return false;
    }
    return takeFirstRow(query, bound, false);
}

// Shows the first row of an executed query (the id, then the bound fields in order) as the current
// record. Without a row nothing is current, and queryEmpty tells the owner.
bool FwTableBase::takeFirstRow(QSqlQuery& query, const QList<QWidget*>& bound, bool clearWhenEmpty)
{
    if (!query.next()) {
        if (clearWhenEmpty)
            initTable(true);
        mLastError = tr("No record found");
        emit queryEmpty();
        return false;
    }
    QVariantList stored;
    for (int i = 0; i < bound.size(); ++i) {
        stored.append(query.value(i + 1));
        setValueOf(bound.at(i), stored.last());
    }
    mLastError.clear();
    setCurrent(normalizedId(query.value(0)));
    noteShown(bound, stored);
    return true;
}

void FwTableBase::initTable(bool clearFields)
{
    if (clearFields) {
        const QList<QWidget*> bound = fields();
        for (QWidget* field : bound)
            setValueOf(field, QVariant());
    }
    setCurrent(QVariant());
}

void FwTableBase::setFieldsEnabled(bool enabled)
{
    const QList<QWidget*> bound = fields();
    for (QWidget* field : bound)
        field->setEnabled(enabled);
}
