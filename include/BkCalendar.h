#ifndef BKCALENDAR_H
#define BKCALENDAR_H

#include "BkCalendarColorScheme.h"
#include "BkCalendarColumn.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <FwForm.h>

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QTime>

class BkCalendarItem;
class BkCalendarList;
class BkCalendarModel;
class BkCalendarPlan;
class BkCalendarView;
class FwTreeWidget;
class QAction;
class QActionGroup;
class QCalendarWidget;
class QDockWidget;
class QDropEvent;
class QGridLayout;

namespace Ui {
class BkCalendar;
}

// The booking calendar as one form for a host application: the grid of day columns, the five ways
// of looking at it (one, five or seven days of one person, a month, or one day of a group), the keys,
// and, unless the host asks for none, three docks beside it: a date picker, the job list of the day
// and the move list. The host answers loadData with bookings for the model and writes what comes
// with saveItems; everything else is optional.
class FWCALENDAR_EXPORT BkCalendar : public FwForm
{
    Q_OBJECT

public:
    // Show types and the flags that say which of them a host offers; they share their values.
    enum ShowType
    {
        Show1Day = 1,
        Show5Day = 2,
        Show7Day = 4,
        ShowMonth = 8,
        ShowGroup = 16,
        NoDocks = 64
    };
    Q_ENUM(ShowType)

    explicit BkCalendar(QWidget* parent = nullptr,
                        int flags = Show1Day | Show5Day | Show7Day | ShowMonth | ShowGroup);
    ~BkCalendar() override;

    void setFlags(int flags);
    BkCalendarColorScheme scheme() const;
    QDate date() const;
    QDate selectedDate() const;
    BkCalendarItem* selectedItem() const;

    bool addToMoveList(BkCalendarItem* item);
    void moveFromList();
    void initMoveList(FwTreeWidget* tree);

    void clear();
    void setRaise(BkCalendarColumn::Raise raise);
    void setMinuteHeight(double height);
    void setTimeSteps(int minutes);
    void setInterval(QTime start, QTime end);
    void setResource(BkCalendarResource resource);
    void setResourceList(QList<BkCalendarResource> resources);
    void setMinWidth(int width);
    int minWidth() const { return mMinWidth; }
    void setToolTipsEnabled(bool enabled);
    BkCalendarModel* model() const { return mModel; }
    BkCalendarColumn* getSelectedColumn() const;
    void focusCalendar();
    // The database server's clock; invalid when it cannot be read.
    static QDateTime now();
    void setKeysEnabled(bool enabled);
    void selectNextColumn();
    void selectPreviousColumn();
    void detectResource();

    // Readers.
    int showType() const { return mShowType; }
    int flags() const { return mFlags; }
    bool keysEnabled() const { return mKeysEnabled; }
    bool isOverview() const { return mOverview; }
    QList<BkCalendarResource> resources() const { return mResources; }
    BkCalendarView* view() const;
    BkCalendarList* list() const { return mList; }
    BkCalendarList* jobList() const { return mList; }
    QCalendarWidget* datePicker() const { return mDatePicker; }
    FwTreeWidget* moveList() const;
    QDockWidget* dateDock() const { return mDateDock; }
    QDockWidget* listDock() const { return mListDock; }
    QDockWidget* moveDock() const { return mMoveDock; }
    QActionGroup* showActions() const { return mShowGroup; }
    QAction* action1Day() const { return mAction1Day; }
    QAction* action5Day() const { return mAction5Day; }
    QAction* action7Day() const { return mAction7Day; }
    QAction* actionMonth() const { return mActionMonth; }
    QAction* actionGroup() const { return mActionGroup; }
    int savedMinWidth() const { return mSavedMinWidth; }
    double savedMinuteHeight() const { return mSavedMinuteHeight; }

signals:
    void itemActivated(BkCalendarItem* item);
    void planActivated(BkCalendarPlan* plan, QTime time);
    void itemContextMenu(QPoint pos, BkCalendarItem* item);
    void planContextMenu(QPoint pos, BkCalendarPlan* plan, QTime time);
    void saveItems(QList<BkCalendarItem*> items);
    void loadData(QDate from, QDate to, BkCalendarResource resource);
    void dateSelected(QDate date);
    void dateChanged(QDate date);
    void resourceSelected(BkCalendarResource resource);
    void hideResourceInfo();
    void showResourceInfo();
    void selectionChanged();

public slots:
    void show1Day();
    void show5Day();
    void show7Day();
    void showMonth();
    void showGroup();
    void overview();
    void jumpTo();
    void jumpToToday();
    void setDate(QDate date);
    void refresh();
    bool addSelectedItemToMoveList();

    bool close() override;
    bool open(FwFormPrivate* priv) override;
    bool setupToolBar(FwToolBar* toolBar) override;
    bool setupMenuBar(FwMenuBar* menuBar) override;
    void opened() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void moveListDataDropped(QDropEvent* event);
    void moveListDragStarted(QString format, QPoint pos);

private:
    void setupDock();
    void setupActions();
    void connectDocks();
    void reclaimDocks();
    QList<QAction*> offeredActions() const;
    void stepDay(int days);
    void finishDays();
    void selectColumn(BkCalendarColumn* column, bool bringIntoSight);

    QDockWidget* mMoveDock = nullptr;
    QDockWidget* mListDock = nullptr;
    QDockWidget* mDateDock = nullptr;
    BkCalendarList* mList = nullptr;
    BkCalendarModel* mModel = nullptr;
    QCalendarWidget* mDatePicker = nullptr;
    // A host may hand in a tree of its own and delete it later; the list then reads as none.
    QPointer<FwTreeWidget> mMoveList;
    QActionGroup* mShowGroup = nullptr;
    QList<BkCalendarResource> mResources;
    int mShowType = Show1Day;
    int mFlags = 0;
    int mMinWidth = 300;
    int mSavedMinWidth = 0;
    double mSavedMinuteHeight = 0.0;
    bool mKeysEnabled = true;
    bool mOverview = false;
    QAction* mAction1Day = nullptr;
    QAction* mAction5Day = nullptr;
    QAction* mAction7Day = nullptr;
    QAction* mActionMonth = nullptr;
    QAction* mActionGroup = nullptr;
    Ui::BkCalendar* mUi = nullptr;
    // Brings the docks back when the main window that holds them goes.
    QMetaObject::Connection mWindowWatch;
};

#endif // BKCALENDAR_H
