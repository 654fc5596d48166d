#ifndef BKCALENDARUSERLIST_H
#define BKCALENDARUSERLIST_H

#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <FwDialog.h>

#include <QString>

namespace Ui {
class BkCalendarUserList;
}

// The picker of one person or one resource for a column of the group view. Its one list holds all
// users and then all resources, each under a heading row that can't be chosen. The caller acts only
// when exec gives 1: a null id() then means the clear button (no one), otherwise resource() and
// name() hold the choice.
class FWCALENDAR_EXPORT BkCalendarUserList : public FwDialog
{
    Q_OBJECT

public:
    explicit BkCalendarUserList(QWidget* parent = nullptr);
    ~BkCalendarUserList() override;

    // Selects the row of `resource` (id and type must both match, as a user and a resource may share
    // an id); a null id leaves the list without selection. The choice itself stays as it is.
    void setResource(const BkCalendarResource& resource);
    BkCalendarResource resource() const;
    QString name() const;

    // Fills the list from the database: users, then resources, each under its heading.
    void init();

public slots:
    // Takes the one selected row as the choice and accepts; without exactly one, the dialog stays.
    void okPressed();
    // Accepts with a null id: the caller drops the column.
    void clearPressed();

private:
    BkCalendarResource mResource;
    Ui::BkCalendarUserList* mUi;
};

#endif // BKCALENDARUSERLIST_H
