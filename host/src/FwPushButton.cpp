#include "FwPushButton.h"

#include <QStyle>

FwPushButton::FwPushButton(QWidget* parent)
    : QPushButton(parent)
{
}

FwPushButton::~FwPushButton() = default;

QString FwPushButton::caption(FwEnums::ButtonType type)
{
    switch (type) {
    case FwEnums::ButtonCreate:
        return tr("&Create");
    case FwEnums::ButtonSave:
        return tr("&Save");
    case FwEnums::ButtonFind:
        return tr("&Find");
    case FwEnums::ButtonCancel:
        return tr("C&ancel");
    case FwEnums::ButtonOk:
        return tr("&OK");
    case FwEnums::ButtonClear:
        return tr("C&lear");
    case FwEnums::ButtonNone:
        break;
    }
    return QString();
}

void FwPushButton::setType(FwEnums::ButtonType type)
{
    mType = type;
    QStyle::StandardPixmap pixmap = QStyle::SP_CustomBase;
    switch (type) {
    case FwEnums::ButtonCreate:
        pixmap = QStyle::SP_FileIcon;
        break;
    case FwEnums::ButtonSave:
        pixmap = QStyle::SP_DialogSaveButton;
        break;
    case FwEnums::ButtonFind:
        pixmap = QStyle::SP_FileDialogContentsView;
        break;
    case FwEnums::ButtonCancel:
        pixmap = QStyle::SP_DialogCancelButton;
        break;
    case FwEnums::ButtonOk:
        pixmap = QStyle::SP_DialogOkButton;
        break;
    case FwEnums::ButtonClear:
        pixmap = QStyle::SP_DialogResetButton;
        break;
    case FwEnums::ButtonNone:
        break;
    }
    setIcon(pixmap == QStyle::SP_CustomBase ? QIcon() : style()->standardIcon(pixmap, nullptr, this));
    const QString text = caption(type);
    if (!text.isEmpty())
        setText(text);
    // The button that does the dialog's work answers Return.
    const bool action = type == FwEnums::ButtonCreate || type == FwEnums::ButtonSave ||
                        type == FwEnums::ButtonFind || type == FwEnums::ButtonOk;
    setAutoDefault(action);
    setDefault(action);
}
