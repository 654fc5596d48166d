#include "FwMenu.h"

FwMenu::FwMenu(QWidget* parent)
    : QMenu(parent)
{
}

FwMenu::FwMenu(const QString& title, QWidget* parent)
    : QMenu(title, parent)
{
}

FwMenu::~FwMenu() = default;
