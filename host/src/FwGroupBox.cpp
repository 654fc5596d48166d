#include "FwGroupBox.h"

FwGroupBox::FwGroupBox(QWidget* parent)
    : QGroupBox(parent)
{
}

FwGroupBox::FwGroupBox(const QString& title, QWidget* parent)
    : QGroupBox(title, parent)
{
}

FwGroupBox::~FwGroupBox() = default;
