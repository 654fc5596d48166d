#ifndef BKCALENDARLIST_H
#define BKCALENDARLIST_H

#include "BkCalendarColorScheme.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QDate>
#include <QHash>
#include <QListWidget>
#include <QPointer>

class BkCalendarItem;

// The job list: one person's or one resource's bookings of one day, as painted cards. A second view of
// the model beside the columns; each row holds a copy of what it shows, so painting never touches the
// booking.
class FWCALENDAR_EXPORT BkCalendarList : public QListWidget
{
    Q_OBJECT

public:
    // The roles of a row; the delegate reads them.
    enum Role
    {
        ItemRole = Qt::UserRole + 1000,
        TitleRole,
        TextRole,
        StartRole,
        EndRole,
        LeftColorRole,
        RightColorRole,
        TopColorRole,
        BottomColorRole,
        TypeRole,
        ListRole
    };

    explicit BkCalendarList(QWidget* parent = nullptr);
    ~BkCalendarList() override;

    QDate date() const { return mDate; }
    BkCalendarResource resource() const { return mResource; }
    BkCalendarColorScheme* colorSchemePtr() { return &mColorScheme; }
    // The store; named apart from the widget's own item model.
    BkCalendarModel* calendarModel() const { return mModel; }
    // The form writes the store, then calls updateModel once.
    void setCalendarModel(BkCalendarModel* model) { mModel = model; }
    QHash<BkCalendarItem*, QListWidgetItem*> rows() const { return mRows; }

public slots:
    void setDate(QDate date);
    void setResource(BkCalendarResource resource);
    void updateModel();

private slots:
    void update();
    void itemChanged(BkCalendarItem* item);
    void itemRemoved(BkCalendarItem* item);
    void itemAdded(BkCalendarItem* item);

private:
    void fillRow(QListWidgetItem* row, BkCalendarItem* item);
    void addRow(BkCalendarItem* item);
    void dropRow(BkCalendarItem* item);
    void forgetRow(QListWidgetItem* row);

    QHash<BkCalendarItem*, QListWidgetItem*> mRows;
    QDate mDate;
    BkCalendarResource mResource;
    // Not owned; the host may delete the model first, and then it reads as none.
    QPointer<BkCalendarModel> mModel;
    BkCalendarColorScheme mColorScheme;
};

#endif // BKCALENDARLIST_H
