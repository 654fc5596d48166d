#ifndef FWTOOLBAR_H
#define FWTOOLBAR_H

#include "FwWidgetsGlobal.h"

#include <QToolBar>

// The platform's native tool bar is a plain QToolBar on every platform we build for; the name lets
// code that calls its members by the base name compile unchanged.
using QMacNativeToolBar = QToolBar;

// The tool bar that the main window gives to a form.
class FWWIDGETS_EXPORT FwToolBar : public QToolBar
{
    Q_OBJECT

public:
    explicit FwToolBar(QWidget* parent = nullptr);
    explicit FwToolBar(const QString& title, QWidget* parent = nullptr);
    ~FwToolBar() override;
};

#endif // FWTOOLBAR_H
