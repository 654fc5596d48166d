#include "FwTableForm.h"

#include "FwTableBase.h"

FwTableForm::FwTableForm(QWidget* parent)
    : QWidget(parent)
    , mBase(new FwTableBase(this, this))
{
}

FwTableForm::~FwTableForm() = default;

QString FwTableForm::tableName() const
{
    return mBase->tableName();
}

void FwTableForm::setTableName(const QString& name)
{
    mBase->setTableName(name);
}

void FwTableForm::setMode(FwEnums::Mode mode)
{
    mMode = mode;
}

void FwTableForm::setState(FwEnums::State state)
{
    mState = state;
}

bool FwTableForm::updateCurrent()
{
    return mBase->updateCurrent();
}
