#ifndef FWTABLEFORM_H
#define FWTABLEFORM_H

#include "FwEnums.h"
#include "FwWidgetsGlobal.h"

#include <QWidget>

class FwTableBase;

// A widget whose field children (FwPtrEdit, FwPtrColorPicker) are bound to one table; the record
// work is done by the FwTableBase that priv() gives.
class FWWIDGETS_EXPORT FwTableForm : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString tableName READ tableName WRITE setTableName)
    Q_PROPERTY(FwEnums::Mode mode READ mode WRITE setMode)
    Q_PROPERTY(FwEnums::State state READ state WRITE setState)

public:
    explicit FwTableForm(QWidget* parent = nullptr);
    ~FwTableForm() override;

    QString tableName() const;
    void setTableName(const QString& name);

    // Only one mode and one state are known yet; both are kept for the owner.
    FwEnums::Mode mode() const { return mMode; }
    void setMode(FwEnums::Mode mode);
    FwEnums::State state() const { return mState; }
    void setState(FwEnums::State state);

    // Writes the fields into the current record.
    bool updateCurrent();

    FwTableBase* priv() const { return mBase; }

private:
    FwTableBase* mBase;
    FwEnums::Mode mMode = FwEnums::ModeRecord;
    FwEnums::State mState = FwEnums::StateReady;
};

#endif // FWTABLEFORM_H
