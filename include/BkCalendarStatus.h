#ifndef BKCALENDARSTATUS_H
#define BKCALENDARSTATUS_H

#include "FwCalendarGlobal.h"

#include <FwDialog.h>
#include <FwEnums.h>

#include <QVariant>

namespace Ui {
class BkCalendarStatus;
}

// The record dialog of the calendar statuses (table tbl_calendarstatus: a name and a colour). One
// dialog creates, finds or edits, as its type says; the table form binds and writes the fields, the
// dialog picks the mode, reports the result and closes or stays. The calendar never opens it: it is
// there for the host.
class FWCALENDAR_EXPORT BkCalendarStatus : public FwDialog
{
    Q_OBJECT

public:
    explicit BkCalendarStatus(FwEnums::DialogType type, QWidget* parent = nullptr,
                              Qt::WindowFlags flags = Qt::WindowFlags());
    // Takes a message of insertRecord away with the dialog.
    ~BkCalendarStatus() override;

    // DialogCreate (4) creates, DialogFind (2) finds, any other type edits; the button's one
    // connection follows the type.
    void setType(FwEnums::DialogType type) override;
    // Loads the record of `id` into the fields; an id without a record locks the dialog.
    void setId(QVariant id) override;

public slots:
    void insertRecord();
    void findRecord();
    bool updateRecord() override;
    // After a query that found nothing: no input and no button but Cancel.
    void lockDialog();

private:
    Ui::BkCalendarStatus* mUi;
};

#endif // BKCALENDARSTATUS_H
