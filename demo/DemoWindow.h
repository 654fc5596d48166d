#ifndef DEMOWINDOW_H
#define DEMOWINDOW_H

#include "DemoBookingRow.h"

#include <BkCalendarRecords.h>

#include <FwMainWindow.h>

#include <QDate>
#include <QPoint>
#include <QTime>

#include <functional>

class BkCalendar;
class BkCalendarItem;
class BkCalendarPlan;
class DemoStore;
class QAction;
class QUndoStack;

// The demo's main window: the calendar form on the practice's database, with bookings created, edited,
// deleted and undone, the group and the settings chosen, and the window's layout kept between runs.
class DemoWindow : public FwMainWindow
{
    Q_OBJECT

public:
    enum View
    {
        Day,
        FiveDays,
        SevenDays,
        Month,
        Group
    };

    explicit DemoWindow(const QVariant& userId, QWidget* parent = nullptr);
    ~DemoWindow() override;

    BkCalendar* calendar() const { return mCalendar; }
    DemoStore* store() const { return mStore; }
    QUndoStack* undoStack() const { return mUndo; }

    void showView(View view);
    View currentView() const;
    static bool viewFromName(const QString& name, View* view);

    // The group view's members, read from the setting the calendar writes, with a trailing
    // placeholder to add someone from the headers.
    QList<BkCalendarResource> savedGroup() const;

    // What the user does, also reachable from tests.
    // A new booking of `who`, with the other values of `row`.
    BkCalendarItem* createBooking(const BkCalendarResource& who, DemoBookingRow row);
    bool editBooking(BkCalendarItem* item, const DemoBookingRow& changed);
    bool deleteBooking(BkCalendarItem* item);
    void setStatus(BkCalendarItem* item, const QVariant& statusId);

public slots:
    // One step back or forward on the undo stack. A step that could not be written stays where it
    // was, so that trying again takes back this change and not the one before it.
    void undoChange();
    void redoChange();
    void chooseGroup();
    void openSettings();
    void step(int direction);

protected:
    void closeEvent(QCloseEvent* event) override;

private slots:
    void itemActivated(BkCalendarItem* item);
    void planActivated(BkCalendarPlan* plan, QTime time);
    void itemContextMenu(QPoint pos, BkCalendarItem* item);
    void planContextMenu(QPoint pos, BkCalendarPlan* plan, QTime time);
    void written(const QList<DemoBookingRow>& before, const QList<DemoBookingRow>& after);
    void settingNotStored(const QString& key, const QString& reason);

private:
    void setupActions();
    void restoreLayout();
    void saveLayout();
    void newBookingAt(const BkCalendarPlan* plan, QTime time);
    // The booking of this id that the calendar holds now, if any.
    BkCalendarItem* bookingOf(const QVariant& id) const;
    void showSelectedDay();
    QDate dayOnShow() const;
    void followSelectedColumn();
    // Runs `answer` for a gesture of the calendar, unless it answered this gesture already.
    void answerOnce(const std::function<void()>& answer);

    BkCalendar* mCalendar = nullptr;
    DemoStore* mStore = nullptr;
    QUndoStack* mUndo = nullptr;
    bool mAnswering = false;
};

#endif // DEMOWINDOW_H
