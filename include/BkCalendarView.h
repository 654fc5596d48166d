#ifndef BKCALENDARVIEW_H
#define BKCALENDARVIEW_H

#include "BkCalendarColorScheme.h"
#include "BkCalendarColumn.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QDate>
#include <QGraphicsView>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QTime>

class BkCalendarInfoWidget;
class BkCalendarItem;
class BkCalendarPlan;
class BkCalendarScene;
class BkCalendarTimeScale;
class BkCalendarUserList;

// The grid that the form embeds: the scene with the one time scale and the day columns. It shows
// either several consecutive days of one person or resource (day mode), or one day of a whole group,
// a column per member (resource mode). It sizes the columns to the widget and keeps the scale and
// the headers in sight while the grid scrolls.
class FWCALENDAR_EXPORT BkCalendarView : public QGraphicsView
{
    Q_OBJECT
    Q_PROPERTY(QDate date READ date WRITE setDate)
    Q_PROPERTY(int days READ days WRITE setDays)

public:
    explicit BkCalendarView(QWidget* parent = nullptr);
    ~BkCalendarView() override;

    // The widget's own repaint overloads stay reachable beside the private update() below.
    using QGraphicsView::update;

    void setModel(BkCalendarModel* model);
    BkCalendarModel* model() const { return mModel; }
    // The first date shown, not the selected one.
    QDate date() const { return mDate; }
    // The number of columns, in either mode.
    int days() const { return mColumns.count(); }
    BkCalendarResource resource() const { return mResource; }
    QList<QGraphicsItem*> selectedItems() const;
    QList<BkCalendarColumn*> getColumnList() const { return mColumns; }
    BkCalendarColumn* getSelectedColumn() const;

    void setMinWidth(int width);
    void setMinuteHeight(double height);
    double minuteHeight() const;
    void setInterval(QTime start, QTime end);
    void loadCalendarStatus();

    // Readers.
    BkCalendarTimeScale* timeScale() const { return mScale; }
    BkCalendarColorScheme* colorScheme() { return &mScheme; }
    BkCalendarInfoWidget* infoWidget() const { return mInfo; }
    BkCalendarScene* calendarScene() const { return mScene; }
    int dayMode() const { return mDayMode; }
    QDate selectedDate() const { return mSelectedDate; }
    Qt::DayOfWeek weekStart() const { return mWeekStart; }
    WidthType widthType() const { return mWidthType; }
    double minWidth() const { return mMinWidth; }
    BkCalendarColumn::Raise raiseMode() const { return mRaise; }
    int scrollDx() const { return mScrollDx; }

signals:
    void sizeChanged(int width);
    void sizeChanged(int width, int height);
    void dateSelected(QDate date);
    void itemActivated(BkCalendarItem* item);
    void resourceSelected(BkCalendarResource resource);
    void planActivated(BkCalendarPlan* plan, QTime time);
    void itemContextMenu(QPoint pos, BkCalendarItem* item);
    void planContextMenu(QPoint pos, BkCalendarPlan* plan, QTime time);

public slots:
    void setDays(int days);
    void setResources(QList<BkCalendarResource> resources);
    void setDate(QDate date);
    void setResource(BkCalendarResource resource);
    void setWidth(double width, WidthType type);
    void setWidthType(WidthType type);
    void setWeekStarts(Qt::DayOfWeek day);
    void setRaise(BkCalendarColumn::Raise raise);
    void updateWidgets();
    // The scene's rectangle, from the left edge round everything on it: the last step of updateWidgets.
    void fitSceneRect();
    void headerActivated(BkCalendarColumn* column, BkCalendarResource resource);
    void calculateSizes();
    void setTimeSteps(int minutes);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private slots:
    void update();
    void moveScale();

private:
    // False when the host's answer to a change of selection on the way built columns of its own.
    bool deleteColumns();
    void relayColumn(BkCalendarColumn* column);
    void makeDeferredBoxes();
    void makeBoxesBeforeLoad(const BkCalendarResource& resource, const QDate& date);
    BkCalendarColumn* setUpGroupColumn(const QString& caption, const BkCalendarResource& resource,
                                       bool deferBoxes);
    void showInfo(int type);
    void takePick(BkCalendarColumn* column, const BkCalendarResource& was, const BkCalendarUserList& picker);
    void saveGroup();

    // Not owned; the host may delete the model first, and then it reads as none.
    QPointer<BkCalendarModel> mModel;
    BkCalendarTimeScale* mScale;
    BkCalendarInfoWidget* mInfo;
    int mDayMode;
    BkCalendarScene* mScene;
    QDate mDate;
    QDate mSelectedDate;
    BkCalendarResource mResource;
    double mMinWidth;
    WidthType mWidthType;
    Qt::DayOfWeek mWeekStart;
    BkCalendarColumn::Raise mRaise;
    int mScrollDx;
    QList<BkCalendarColumn*> mColumns;
    // The column that setDays or setResources is setting up, not yet listed; and a count of the builds
    // begun, by which a build notices that the host's answer to a load request began another.
    BkCalendarColumn* mColumnInSetUp = nullptr;
    quint64 mBuilds = 0;
    BkCalendarColorScheme mScheme;
};

#endif // BKCALENDARVIEW_H
