#include "BkCalendarStatus.h"

#include "ui_BkCalendarStatus.h"

#include <FwApplication.h>
#include <FwLog.h>
#include <FwPtrEdit.h>
#include <FwPushButton.h>
#include <FwTableBase.h>
#include <FwTableForm.h>

namespace {
const char* const SourceName = "Source/BkCalendarStatus";
const int MessageTime = 5000;
} // namespace

BkCalendarStatus::BkCalendarStatus(FwEnums::DialogType type, QWidget* parent, Qt::WindowFlags flags)
    : FwDialog(parent, flags, true, false)
    , mUi(new Ui::BkCalendarStatus)
{
    mUi->setupUi(this);
    setHelpText(tr("HelpText - BkCalendarStatus"));
    connect(mUi->pbCancel, &QAbstractButton::clicked, this, &QDialog::reject);
    // A query without a record leaves nothing to edit.
    connect(mUi->ftfCalendarStatus->priv(), &FwTableBase::queryEmpty, this, &BkCalendarStatus::lockDialog);
    setType(type);
}

BkCalendarStatus::~BkCalendarStatus()
{
    if (iApp)
        iApp->clearMessage();
    delete mUi;
}

void BkCalendarStatus::setType(FwEnums::DialogType type)
{
    FwPushButton* button = mUi->pbCreate;
    // One use at a time: the button's former slot goes before the new one comes.
    disconnect(button, &QAbstractButton::clicked, nullptr, nullptr);
    switch (type) {
    case FwEnums::DialogCreate:
        setWindowTitle(tr("Create CalendarStatus"));
        connect(button, &QAbstractButton::clicked, this, &BkCalendarStatus::insertRecord);
        break;
    case FwEnums::DialogFind:
        setWindowTitle(tr("Find CalendarStatus"));
        button->setType(FwEnums::ButtonFind);
        connect(button, &QAbstractButton::clicked, this, &BkCalendarStatus::findRecord);
        break;
    default:
        setWindowTitle(tr("Edit CalendarStatus"));
        button->setType(FwEnums::ButtonSave);
        connect(button, &QAbstractButton::clicked, this, &BkCalendarStatus::updateRecord);
        break;
    }
    FwDialog::setType(type);
}

void BkCalendarStatus::setId(QVariant id)
{
    mUi->ftfCalendarStatus->priv()->setVariantId(id);
}

void BkCalendarStatus::insertRecord()
{
    if (!validInput())
        return;
    const QString name = mUi->fpeName->text();
    FwTableBase* table = mUi->ftfCalendarStatus->priv();
    mId = table->insertCurrent();
    if (mId != QVariant(-1)) {
        // Ready for the next status, should the user keep the dialog open.
        table->initTable(true);
        mUi->fpeName->setFocus(Qt::OtherFocusReason);
        if (iApp)
            iApp->showSucces(tr("CalendarStatus '%1' created").arg(name), MessageTime);
    } else if (iApp) {
        iApp->showCritical(tr("Error creating '%1' : %2").arg(name, table->lastError()), MessageTime);
    }
    if (!stay())
        accept();
}

void BkCalendarStatus::findRecord()
{
    FwTableBase* table = mUi->ftfCalendarStatus->priv();
    if (!table->execute(QString(), QString(), false, false)) {
        table->initTable(true);
        return;
    }
    if (!stay()) {
        mId = table->getVariantId();
        accept();
        return;
    }
    // Kept open, the dialog goes on as the edit of the record it found.
    setType(FwEnums::DialogEdit);
}

bool BkCalendarStatus::updateRecord()
{
    if (!validInput()) {
        FwLog::log(QStringLiteral("[%1:%2] %3").arg(QLatin1String(SourceName)).arg(76).arg(tr("Not Valid")));
        return false;
    }
    const bool written = mUi->ftfCalendarStatus->updateCurrent();
    if (!stay())
        accept();
    return written;
}

void BkCalendarStatus::lockDialog()
{
    mUi->ftfCalendarStatus->priv()->setFieldsEnabled(false);
    mUi->pbCreate->setEnabled(false);
}
