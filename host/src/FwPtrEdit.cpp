#include "FwPtrEdit.h"

FwPtrEdit::FwPtrEdit(QWidget* parent)
    : QLineEdit(parent)
{
}

FwPtrEdit::~FwPtrEdit() = default;

void FwPtrEdit::setFieldName(const QString& name)
{
    mFieldName = name;
}

void FwPtrEdit::setRequired(bool required)
{
    mRequired = required;
}

void FwPtrEdit::setListPosition(int position)
{
    mListPosition = position;
}
