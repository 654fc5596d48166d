#ifndef FWDIALOG_H
#define FWDIALOG_H

#include "FwEnums.h"
#include "FwWidgetsGlobal.h"

#include <QDialog>
#include <QVariant>

class QAction;
class QKeyEvent;

// A record dialog of the framework: it knows what it does (create, find, edit), whether it stays
// open after a save or find, the id it chose, and whether its fields are filled as required.
class FWWIDGETS_EXPORT FwDialog : public QDialog
{
    Q_OBJECT

public:
    // `modal` makes the dialog application modal; `stay` is the first value of stay().
    explicit FwDialog(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags(), bool modal = true,
                      bool stay = false);
    ~FwDialog() override;

    // The dialog's result: the id of the record chosen, null when nothing was chosen.
    QVariant id() const { return mId; }
    // Writes the result id and nothing else (setId may do more in a derived dialog).
    void setResultId(const QVariant& id) { mId = id; }

    // True when the dialog stays open after a save or a find.
    bool stay() const { return mStay; }
    FwEnums::DialogType type() const { return mType; }

    // True when every required field has content and every field accepts its input.
    bool validInput() const;

    // The help that F1 shows.
    void setHelpText(const QString& text);
    QString helpText() const { return mHelpText; }

    // The action in the context menu by which the user keeps the dialog open.
    QAction* stayAction() const { return mStayAction; }

public slots:
    // Runs initContent the first time, then the modal loop.
    int exec() override;

    virtual void setStay(bool stay);
    virtual void setType(FwEnums::DialogType type);
    virtual void setId(QVariant id);
    virtual void adjust();
    // Writes the records of the dialog's table forms; true when all were written.
    virtual bool updateRecord();
    // Forgets the result id and empties the fields.
    virtual void clear();
    virtual void confirmYes();
    virtual void confirmNo();
    // Writes the record, and closes as accepted when the input is valid and was written.
    virtual void confirmOk();
    virtual void initContent();

signals:
    void stayChanged(bool stay);
    void typeChanged(FwEnums::DialogType type);

protected:
    void keyPressEvent(QKeyEvent* event) override;

    // The result id; dialogs write it directly before they accept.
    QVariant mId;

private:
    bool mStay = false;
    bool mContentReady = false;
    FwEnums::DialogType mType = FwEnums::DialogNone;
    QString mHelpText;
    QAction* mStayAction = nullptr;
};

#endif // FWDIALOG_H
