#include "FwToolBar.h"

FwToolBar::FwToolBar(QWidget* parent)
    : QToolBar(parent)
{
}

FwToolBar::FwToolBar(const QString& title, QWidget* parent)
    : QToolBar(title, parent)
{
}

FwToolBar::~FwToolBar() = default;
