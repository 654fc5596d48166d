#include "FwMainWindow.h"

#include "FwForm.h"
#include "FwMenuBar.h"
#include "FwToolBar.h"

#include <QDockWidget>
#include <QMenu>
#include <QStatusBar>

FwMainWindow* FwMainWindow::sWindow = nullptr;

FwMainWindow::FwMainWindow(QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags)
    , mMenuBar(new FwMenuBar(this))
{
    sWindow = this;
    setMenuBar(mMenuBar);
    // A message's colour goes with the message.
    connect(statusBar(), &QStatusBar::messageChanged, this, [this](const QString& message) {
        if (message.isEmpty())
            statusBar()->setStyleSheet(QString());
    });
    // Forms bring docks of their own; let the user stack and tab them.
    setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowNestedDocks |
                   QMainWindow::AllowTabbedDocks);
}

FwMainWindow::~FwMainWindow()
{
    // The form goes with the window's children, after this window's own members.
    disconnect(mFormGone);
    if (sWindow == this)
        sWindow = nullptr;
}

FwMainWindow* FwMainWindow::wnd()
{
    return sWindow;
}

void FwMainWindow::setUserId(const QVariant& id)
{
    if (mUserId == id && mUserId.userType() == id.userType())
        return;
    mUserId = id;
    emit userIdChanged(mUserId);
}

FwToolBar* FwMainWindow::formToolBar() const
{
    return mToolBar;
}

FwForm* FwMainWindow::form() const
{
    return mForm;
}

bool FwMainWindow::openForm(FwForm* form)
{
    if (!form)
        return false;
    // A form on show is set up already: a second set-up would put its menus and tool bar up twice.
    if (form == mForm)
        return true;
    if (mForm && !closeForm())
        return false;
    mForm = form;
    // A form deleted while on show leaves no menus or tool bar of its own behind.
    mFormGone = connect(form, &QObject::destroyed, this, &FwMainWindow::takeDownFormBars);
    form->setParent(this);
    form->createActions();
    const QList<QAction*> hostActions = mMenuBar->actions();
    form->setupMenuBar(mMenuBar);
    mFormMenuActions.clear();
    for (QAction* action : mMenuBar->actions()) {
        if (!hostActions.contains(action))
            mFormMenuActions.append(action);
    }
    if (form->hasToolBar()) {
        mToolBar = new FwToolBar(form->title(), this);
        mToolBar->setObjectName(QStringLiteral("formToolBar"));
        addToolBar(mToolBar);
        form->setupToolBar(mToolBar);
    }
    setCentralWidget(form);
    setWindowTitle(form->title());
    const bool result = form->open(nullptr);
    form->show();
    form->activate();
    form->opened();
    return result;
}

bool FwMainWindow::closeForm()
{
    if (!mForm)
        return true;
    FwForm* form = mForm;
    if (!form->closeable())
        return false;
    form->deactivate();
    form->saveSession();
    if (!form->close())
        return false;
    form->closed();
    form->finalize();
    disconnect(mFormGone);
    takeDownFormBars();
    takeCentralWidget();
    mForm = nullptr;
    form->deleteLater();
    return true;
}

void FwMainWindow::takeDownFormBars()
{
    // The form made its menus as children of the bar; they go with it. Later, since the close may come
    // from one of their own actions.
    for (const QPointer<QAction>& action : qAsConst(mFormMenuActions)) {
        if (!action)
            continue;
        mMenuBar->removeAction(action);
        QMenu* menu = action->menu();
        if (menu && menu->parent() == mMenuBar)
            menu->deleteLater();
        else if (!menu && action->parent() == mMenuBar)
            action->deleteLater();
    }
    mFormMenuActions.clear();
    delete mToolBar;
}

QList<QDockWidget*> FwMainWindow::dockWidgets() const
{
    QList<QDockWidget*> docks;
    for (QDockWidget* dock : findChildren<QDockWidget*>()) {
        if (dockWidgetArea(dock) != Qt::NoDockWidgetArea)
            docks.append(dock);
    }
    return docks;
}
