#ifndef FWMAINWINDOW_H
#define FWMAINWINDOW_H

#include "FwWidgetsGlobal.h"

#include <QMainWindow>
#include <QPointer>
#include <QVariant>

class FwForm;
class FwMenuBar;
class FwToolBar;
class QDockWidget;

// The one main window of a framework host. It shows one form at a time in its centre, runs that
// form's set-up (menu bar, tool bar, open) and takes it down again, and knows the logged-in user.
class FWWIDGETS_EXPORT FwMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit FwMainWindow(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~FwMainWindow() override;

    // The main window, null while there is none.
    static FwMainWindow* wnd();

    // The logged-in user.
    QVariant userId() const { return mUserId; }
    void setUserId(const QVariant& id);

    FwMenuBar* fwMenuBar() const { return mMenuBar; }
    // The tool bar of the form on show, null when it has none.
    FwToolBar* formToolBar() const;

    // Shows `form` in the centre: setupMenuBar, setupToolBar (when the form has a tool bar),
    // open, opened. The window takes the form over; a form shown before is closed first. Opening the
    // form on show again leaves it as it is.
    bool openForm(FwForm* form);
    // Closes the form on show; false when the form refuses. The form is deleted.
    bool closeForm();
    FwForm* form() const;

    // The dock widgets that stand in the window at present.
    QList<QDockWidget*> dockWidgets() const;

signals:
    void userIdChanged(const QVariant& id);

private:
    // Takes away what the form on show put on the menu bar, and its tool bar.
    void takeDownFormBars();

    static FwMainWindow* sWindow;
    QVariant mUserId;
    FwMenuBar* mMenuBar = nullptr;
    QPointer<FwToolBar> mToolBar;
    // The entries that the form on show put on the menu bar; the host's own stay when it goes.
    QList<QPointer<QAction>> mFormMenuActions;
    QPointer<FwForm> mForm;
    // Takes the form's bars down when the form is deleted while on show.
    QMetaObject::Connection mFormGone;
};

#endif // FWMAINWINDOW_H
