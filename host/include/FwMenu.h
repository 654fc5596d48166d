#ifndef FWMENU_H
#define FWMENU_H

#include "FwWidgetsGlobal.h"

#include <QMenu>

// A menu of the framework. QMenu gives addAction(QAction*) and
// addAction(text, receiver, slot, shortcut), and exec for a context menu.
class FWWIDGETS_EXPORT FwMenu : public QMenu
{
    Q_OBJECT

public:
    explicit FwMenu(QWidget* parent = nullptr);
    explicit FwMenu(const QString& title, QWidget* parent = nullptr);
    ~FwMenu() override;
};

#endif // FWMENU_H
