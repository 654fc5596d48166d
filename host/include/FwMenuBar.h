#ifndef FWMENUBAR_H
#define FWMENUBAR_H

#include "FwWidgetsGlobal.h"

#include <QMenuBar>

// The menu bar of the main window, into which forms put their menus (addMenu(QMenu*)).
class FWWIDGETS_EXPORT FwMenuBar : public QMenuBar
{
    Q_OBJECT

public:
    explicit FwMenuBar(QWidget* parent = nullptr);
    ~FwMenuBar() override;
};

#endif // FWMENUBAR_H
