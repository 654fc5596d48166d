#ifndef FWPTREDIT_H
#define FWPTREDIT_H

#include "FwWidgetsGlobal.h"

#include <QLineEdit>

// A line edit bound to a field of the table of the FwTableForm it stands in.
class FWWIDGETS_EXPORT FwPtrEdit : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ fieldName WRITE setFieldName)
    Q_PROPERTY(bool required READ required WRITE setRequired)
    Q_PROPERTY(int listPosition READ listPosition WRITE setListPosition)

public:
    explicit FwPtrEdit(QWidget* parent = nullptr);
    ~FwPtrEdit() override;

    QString fieldName() const { return mFieldName; }
    void setFieldName(const QString& name);

    // A required field must have content for the dialog's input to be valid.
    bool required() const { return mRequired; }
    void setRequired(bool required);

    // The column of the field in lists of the table; -1 when it isn't listed.
    int listPosition() const { return mListPosition; }
    void setListPosition(int position);

private:
    QString mFieldName;
    bool mRequired = false;
    int mListPosition = -1;
};

#endif // FWPTREDIT_H
