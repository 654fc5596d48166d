#include "FwDialog.h"

#include "FwPtrColorPicker.h"
#include "FwPtrEdit.h"
#include "FwTableBase.h"
#include "FwTableForm.h"

#include <QAction>
#include <QKeyEvent>
#include <QWhatsThis>

FwDialog::FwDialog(QWidget* parent, Qt::WindowFlags flags, bool modal, bool stay)
    : QDialog(parent, flags)
    , mStay(stay)
{
    setModal(modal);
    // The user keeps a dialog open for a run of records through its context menu.
    mStayAction = new QAction(tr("Keep open"), this);
    mStayAction->setObjectName(QStringLiteral("fwStayAction"));
    mStayAction->setCheckable(true);
    mStayAction->setChecked(mStay);
    connect(mStayAction, &QAction::toggled, this, [this](bool on) { setStay(on); });
    addAction(mStayAction);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

FwDialog::~FwDialog() = default;

bool FwDialog::validInput() const
{
    const QList<FwPtrEdit*> edits = findChildren<FwPtrEdit*>();
    for (const FwPtrEdit* edit : edits) {
        if (edit->required() && edit->text().trimmed().isEmpty())
            return false;
        if (!edit->hasAcceptableInput())
            return false;
    }
    return true;
}

void FwDialog::setHelpText(const QString& text)
{
    mHelpText = text;
    setWhatsThis(text);
}

int FwDialog::exec()
{
    if (!mContentReady) {
        mContentReady = true;
        initContent();
    }
    return QDialog::exec();
}

void FwDialog::setStay(bool stay)
{
    if (mStay == stay)
        return;
    mStay = stay;
    mStayAction->setChecked(stay);
    emit stayChanged(stay);
}

void FwDialog::setType(FwEnums::DialogType type)
{
    if (mType == type)
        return;
    mType = type;
    emit typeChanged(type);
}

void FwDialog::setId(QVariant id)
{
    mId = id;
}

void FwDialog::adjust()
{
    adjustSize();
}

bool FwDialog::updateRecord()
{
    bool written = true;
    const QList<FwTableForm*> forms = findChildren<FwTableForm*>();
    for (FwTableForm* form : forms)
        written = form->updateCurrent() && written;
    return written;
}

void FwDialog::clear()
{
    mId = QVariant();
    const QList<FwTableForm*> forms = findChildren<FwTableForm*>();
    for (FwTableForm* form : forms)
        form->priv()->initTable(true);
    // Fields outside any table form are emptied as well.
    const QList<FwPtrEdit*> edits = findChildren<FwPtrEdit*>();
    for (FwPtrEdit* edit : edits)
        edit->clear();
    const QList<FwPtrColorPicker*> pickers = findChildren<FwPtrColorPicker*>();
    for (FwPtrColorPicker* picker : pickers)
        picker->setColor(QColor());
}

void FwDialog::confirmYes()
{
    accept();
}

void FwDialog::confirmNo()
{
    reject();
}

void FwDialog::confirmOk()
{
    if (!validInput())
        return;
    if (updateRecord())
        accept();
}

void FwDialog::initContent() {}

void FwDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier && !mHelpText.isEmpty()) {
        QWhatsThis::showText(mapToGlobal(rect().center()), mHelpText, this);
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
