#ifndef FWFORM_H
#define FWFORM_H

#include "FwFormPrivate.h"
#include "FwWidgetsGlobal.h"

#include <QVariant>
#include <QWidget>

class FwMenuBar;
class FwToolBar;
class QKeyEvent;

// A form of the framework: a widget that the main window shows, with a life cycle of set-up,
// open, activation and close. Every step is a virtual slot with a default that does the plain
// thing, so a form overrides only what it needs.
class FWWIDGETS_EXPORT FwForm : public QWidget
{
    Q_OBJECT

public:
    explicit FwForm(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~FwForm() override;

    bool isOpen() const { return mOpen; }
    bool isActive() const { return mActive; }

    void setTitle(const QString& title);
    void setCloseable(bool closeable);

public slots:
    // Takes the form down; true when it may go. Forms that refuse return false.
    virtual bool close();
    // Opens the form; the argument belongs to the framework and is only passed through.
    virtual bool open(FwFormPrivate* priv);
    // Put the form's actions into the tool bar / menu bar; true when something was added.
    virtual bool setupToolBar(FwToolBar* toolBar);
    virtual bool setupMenuBar(FwMenuBar* menuBar);
    virtual void createActions();
    virtual void saveSession();
    virtual void resetFields();
    virtual void init();
    virtual void activate();
    virtual void deactivate();
    virtual QVariant id();
    virtual void setId(QVariant id);
    virtual QString title();
    virtual bool closeable();
    virtual bool forceGlobal();
    virtual void finalize();
    virtual bool hasToolBar();
    virtual FwToolBar* toolBar();
    virtual void opened();
    virtual void closed();
    virtual bool updateRecord();

signals:
    void titleChanged(const QString& title);
    void idChanged(const QVariant& id);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QVariant mId;
    QString mTitle;
    bool mCloseable = true;
    bool mOpen = false;
    bool mActive = false;
};

#endif // FWFORM_H
