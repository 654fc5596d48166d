#ifndef FWTABLEBASE_H
#define FWTABLEBASE_H

#include "FwEnums.h"
#include "FwWidgetsGlobal.h"

#include <QHash>
#include <QObject>
#include <QSqlDatabase>
#include <QVariant>

class QSqlQuery;
class QWidget;

// The record logic behind an FwTableForm: binds the form's FwPtrEdit and FwPtrColorPicker children
// by field name to the columns of one table of the default SQL connection and loads, inserts,
// updates and finds records. The record key is the column "id". Values always travel as bound
// parameters; table and field names, which can't be bound, must be plain identifiers.
class FWWIDGETS_EXPORT FwTableBase : public QObject
{
    Q_OBJECT

public:
    // `form` is the widget whose children are the fields.
    explicit FwTableBase(QWidget* form, QObject* parent = nullptr);
    ~FwTableBase() override;

    QString tableName() const { return mTableName; }
    void setTableName(const QString& name);
    QString idField() const { return mIdField; }
    void setIdField(const QString& name);

    // Loads the record of `id` into the fields; false, with queryEmpty, when there is none.
    bool setVariantId(QVariant id);
    // The id of the current record; null for a new one.
    QVariant getVariantId() const { return mId; }

    // Inserts a record from the fields and makes it the current one. Returns its id, or the int
    // -1 when the insert failed (lastError says why).
    QVariant insertCurrent();
    // Writes the fields into the current record. A field that still shows what was loaded into it
    // writes the stored value back as it was, so that a value the field can't show as it is (a
    // colour in another form, a text longer than the field takes) isn't lost by saving another.
    bool updateCurrent();
    // Finds the first record (by id) whose fields match the contents of the filled fields and
    // loads it. Text fields match where they contain the text, or equal it with `exactMatch`;
    // case counts only with `caseSensitive` (SQLite's LIKE ignores case of ASCII letters anyway).
    // `filterField`, when not empty, must further equal `filterValue`. False, with queryEmpty,
    // when no record matches.
    bool execute(const QString& filterField, const QString& filterValue, bool exactMatch, bool caseSensitive);
    // Starts a new record: no current id, and with `clearFields` empty fields.
    void initTable(bool clearFields);
    void setFieldsEnabled(bool enabled);

    QString lastError() const { return mLastError; }

    // The bound fields: the form's FwPtrEdit and FwPtrColorPicker children that have a field name.
    QList<QWidget*> fields() const;

    // True for names that can stand in a statement as they are.
    static bool isIdentifier(const QString& name);

signals:
    // A load or search found no record.
    void queryEmpty();
    // The current record changed: loaded, inserted, or none (null id).
    void currentChanged(const QVariant& id);

private:
    bool checkNames(const QList<QWidget*>& fields);
    void fail(const QString& error, int line);
    bool takeFirstRow(QSqlQuery& query, const QList<QWidget*>& bound, bool clearWhenEmpty);
    void setCurrent(const QVariant& id);
    void noteShown(const QList<QWidget*>& bound, const QVariantList& stored);

    // What a field of the current record was given and what it showed of it, by field name.
    struct Shown
    {
        QVariant stored;
        QVariant shown;
    };

    QWidget* mForm;
    QString mTableName;
    QString mIdField;
    QVariant mId;
    QHash<QString, Shown> mShown;
    QString mLastError;
};

#endif // FWTABLEBASE_H
