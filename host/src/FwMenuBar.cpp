#include "FwMenuBar.h"

FwMenuBar::FwMenuBar(QWidget* parent)
    : QMenuBar(parent)
{
    // The framework draws its own menu bar so that every platform shows the forms' menus alike.
    setNativeMenuBar(false);
}

FwMenuBar::~FwMenuBar() = default;
