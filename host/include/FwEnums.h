#ifndef FWENUMS_H
#define FWENUMS_H

#include "FwWidgetsGlobal.h"

#include <QObject>

// Item data roles of the framework's tree rows. They are plain ints so that callers can pass them
// wherever Qt expects a role.
enum FwItemRole
{
    IdRole = Qt::UserRole,       // 256: the record id of the row
    TypeRole = Qt::UserRole + 1, // 257: kind of record (0 user, 1 resource)
    HeadingFlagsRole = 568       // item flags that replace the row's own; marks heading rows
};

// The enumerations shared by the framework's dialogs, buttons and table forms.
class FWWIDGETS_EXPORT FwEnums
{
    Q_GADGET

public:
    // What a record dialog does with its record.
    enum DialogType
    {
        DialogNone = 0,
        DialogEdit = 1,
        DialogFind = 2,
        DialogCreate = 4
    };
    Q_ENUM(DialogType)

    // Look and caption of an FwPushButton.
    enum ButtonType
    {
        ButtonNone = 0,
        ButtonCreate = 1,
        ButtonSave = 2,
        ButtonFind = 4,
        ButtonCancel = 5,
        ButtonOk = 11,
        ButtonClear = 17
    };
    Q_ENUM(ButtonType)

    // How an FwTableForm presents its table: one record at a time.
    enum Mode
    {
        ModeNone = 0,
        ModeRecord = 1
    };
    Q_ENUM(Mode)

    // The state an FwTableForm starts in: ready for input.
    enum State
    {
        StateNone = 0,
        StateReady = 1
    };
    Q_ENUM(State)
};

#endif // FWENUMS_H
