#include "FwForm.h"

#include "FwMainWindow.h"

#include <QKeyEvent>

FwForm::FwForm(QWidget* parent, Qt::WindowFlags flags)
    : QWidget(parent, flags)
{
}

FwForm::~FwForm() = default;

void FwForm::setTitle(const QString& title)
{
    if (mTitle == title)
        return;
    mTitle = title;
    emit titleChanged(mTitle);
}

void FwForm::setCloseable(bool closeable)
{
    mCloseable = closeable;
}

bool FwForm::close()
{
    if (!closeable())
        return false;
    mOpen = false;
    mActive = false;
    return true;
}

bool FwForm::open(FwFormPrivate* priv)
{
    Q_UNUSED(priv)
    if (!mOpen) {
        mOpen = true;
        init();
    }
    return true;
}

bool FwForm::setupToolBar(FwToolBar* toolBar)
{
    Q_UNUSED(toolBar)
    return false;
}

bool FwForm::setupMenuBar(FwMenuBar* menuBar)
{
    Q_UNUSED(menuBar)
    return false;
}

void FwForm::createActions() {}

void FwForm::saveSession() {}

void FwForm::resetFields() {}

void FwForm::init() {}

void FwForm::activate()
{
    mActive = true;
}

void FwForm::deactivate()
{
    mActive = false;
}

QVariant FwForm::id()
{
    return mId;
}

void FwForm::setId(QVariant id)
{
    mId = id;
    emit idChanged(mId);
}

QString FwForm::title()
{
    return mTitle.isEmpty() ? windowTitle() : mTitle;
}

bool FwForm::closeable()
{
    return mCloseable;
}

bool FwForm::forceGlobal()
{
    return false;
}

void FwForm::finalize() {}

bool FwForm::hasToolBar()
{
    return true;
}

FwToolBar* FwForm::toolBar()
{
    FwMainWindow* window = FwMainWindow::wnd();
    return (window && window->form() == this) ? window->formToolBar() : nullptr;
}

void FwForm::opened() {}

void FwForm::closed() {}

bool FwForm::updateRecord()
{
    return true;
}

void FwForm::keyPressEvent(QKeyEvent* event)
{
    QWidget::keyPressEvent(event);
}
