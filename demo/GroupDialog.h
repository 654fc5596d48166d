#ifndef GROUPDIALOG_H
#define GROUPDIALOG_H

#include <BkCalendarRecords.h>

#include <QDialog>

class QListWidget;

// Chooses the people and resources of the group view, in their order.
class GroupDialog : public QDialog
{
    Q_OBJECT

public:
    GroupDialog(const QList<BkCalendarResource>& everybody, const QList<BkCalendarResource>& group,
                QWidget* parent = nullptr);

    QList<BkCalendarResource> group() const;
    QListWidget* list() const { return mList; }

private:
    void move(int step);

    QListWidget* mList;
};

#endif // GROUPDIALOG_H
