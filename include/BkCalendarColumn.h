#ifndef BKCALENDARCOLUMN_H
#define BKCALENDARCOLUMN_H

#include "BkCalendarHostVisit.h"
#include "BkCalendarItemKind.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QDate>
#include <QGraphicsItem>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRectF>
#include <QTime>

#include <memory>
#include <optional>

class BkCalendarColorScheme;
class BkCalendarHeader;
class BkCalendarItem;
class BkCalendarItemWidget;
class BkCalendarTimeScale;
class QPainter;

// How a column reads its width value: a share of the free view width, or pixels.
enum WidthType
{
    WidthProportional = 0,
    WidthFixed = 1
};

// Orders bookings by their start time.
FWCALENDAR_EXPORT bool calendarItemLessThan(BkCalendarItem* a, BkCalendarItem* b);

// One vertical strip of the grid: the bookings and plan blocks of one date for one user or resource.
// It is the graphics parent of its header and of one item widget per shown booking.
class FWCALENDAR_EXPORT BkCalendarColumn : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    // When a short booking box grows to the expand size.
    enum Raise
    {
        RaiseOnClick = 0,
        RaiseOnHover = 1
    };
    Q_ENUM(Raise)

    BkCalendarColumn(QGraphicsItem* parent, bool resizable);
    ~BkCalendarColumn() override;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    void setModel(BkCalendarModel* model);
    // While set, a rebuild of the boxes removes the old ones and asks the model for the day, but makes
    // no new ones. The view sets it while it sets a new column up, off the scene, and for the first of
    // the two updates that a day column of its person gets at a new date: in both cases another update
    // rebuilds the column right after, so the boxes are made once instead of twice.
    void setDeferBoxes(bool defer) { mDeferBoxes = defer; }
    bool defersBoxes() const { return mDeferBoxes; }
    double setWidthScale(double scale, WidthType type, double start);
    double widthScale() const { return mWidthScale; }
    Raise raise() const { return mRaise; }
    void setRaise(Raise raise);
    QRectF moveHeader(int y);

    QList<BkCalendarItem*> getItems(bool excludeReserved) const;
    QList<BkCalendarItem*> getSortedItems() const;
    BkCalendarItem* getSelectedItem() const;
    // The box of a booking in this column, or null. A booking that two columns show (its person's and
    // its room's) has a box in each, and its `widget` names only the newest.
    BkCalendarItemWidget* boxOf(const BkCalendarItem* item) const;
    void selectNextItem();
    void selectPreviousItem();
    bool isChildSelected();

    // Collision layout: shares the column's width among overlapping boxes.
    void checkCollisions();

    // Booking rules and drag and drop.
    bool allowBooking(QTime start, QTime end);
    BkCalendarPlan* planAt(QTime start, QTime end);
    bool isResourceBooked(BkCalendarItem* item);
    bool tryToMoveItem(BkCalendarItem* item, QTime start);
    // The snap grid of moved bookings: a time goes to the nearest grid point of its hour, a tie
    // forward; snapMinutes() is the host's set_snaponmovebooking, 1 where that is not positive.
    static QTime roundToSnap(const QTime& time, int snap);
    static int snapMinutes();
    // Takes a column away for its view. While the host is let in (BkCalendarHostVisit) the column is
    // retired: it hears its model no more, and its boxes let go of their bookings at once, as its
    // deletion would.
    static void discard(BkCalendarColumn* column);

    // Custom column width.
    void move(double delta);
    void initSavedValue();

    void paintLines(QPainter* painter);
    void paintPlan(QPainter* painter);

    // Readers.
    WidthType widthType() const { return mWidthType; }
    int minWidth() const { return mMinWidth; }
    QList<BkCalendarPlan*> plans() const { return mPlans; }
    QDate date() const { return mDate; }
    BkCalendarResource resource() const { return mResource; }
    int resourceMode() const { return mResourceMode; }
    int index() const { return mIndex; }
    bool customSize() const { return mCustomSize; }
    BkCalendarHeader* header() const { return mHeader; }
    BkCalendarModel* model() const { return mModel; }
    BkCalendarTimeScale* timeScale() const { return mScale; }
    BkCalendarColorScheme* colorScheme() const { return mScheme; }

    // Fields the view writes directly; each setter only writes, update() applies them.
    void setDate(const QDate& date) { mDate = date; }
    void setIndex(int index) { mIndex = index; }
    void setTimeScale(BkCalendarTimeScale* scale) { mScale = scale; }
    void setColorScheme(BkCalendarColorScheme* scheme) { mScheme = scheme; }
    void setResourceMode(int mode) { mResourceMode = mode; }
    void setResource(const BkCalendarResource& resource) { mResource = resource; }

signals:
    void widthChanged(double width);
    void widthChanged();
    void dateSelected(QDate date);
    void headerActivated(BkCalendarColumn* column, BkCalendarResource resource);
    void itemActivated(BkCalendarItem* item);
    void itemContextMenu(QPoint pos, BkCalendarItem* item);
    void planActivated(BkCalendarPlan* plan, QTime time);
    void planContextMenu(QPoint pos, BkCalendarPlan* plan, QTime time);

public slots:
    void init(double start);
    void init();
    void update();
    void updateInfo();
    void updateSize();
    void sizeChanged(int viewWidth);
    void updateChildren();
    void setHeaderText(const QString& text);
    void removeCustomSize();
    void setMinWidth(int width);
    void emitHeaderActivated();
    void itemAdded(BkCalendarItem* item);
    void planAdded(BkCalendarPlan* plan);

protected:
    void contextMenuEvent(QGraphicsSceneContextMenuEvent* event) override;
    QVariant itemChange(QGraphicsItem::GraphicsItemChange change, const QVariant& value) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void dragEnterEvent(QGraphicsSceneDragDropEvent* event) override;
    void dragMoveEvent(QGraphicsSceneDragDropEvent* event) override;
    void dropEvent(QGraphicsSceneDragDropEvent* event) override;
    void dragLeaveEvent(QGraphicsSceneDragDropEvent* event) override;

private:
    struct LayoutRun;
    struct LayoutMemo;
    void settleLayout(LayoutRun& run);
    bool takeBoxesOfJoining(LayoutRun& run, const QList<QGraphicsItem*>& children);
    void keepBoxesOfJoining(const LayoutRun& run, const QList<QGraphicsItem*>& children);
    void keepOrderOfComing(QGraphicsItem* child);
    void moveTo(const QPointF& position);
    bool showsSomething() const;
    void placeGrip();
    BkCalendarItemWidget* makeWidget(BkCalendarItem* item);
    // The box of another column that a booking moved here takes along, or null for a new one.
    BkCalendarItemWidget* boxToTakeAlong(const BkCalendarItem* item) const;
    // This column's boxes of the bookings that have one here, in the bookings' order.
    QList<BkCalendarItemWidget*> boxesInOrder(const QList<BkCalendarItem*>& items) const;

    QRectF mRect;
    // Not owned; the host may delete the model first, and then it reads as none.
    QPointer<BkCalendarModel> mModel;
    BkCalendarHeader* mHeader;
    WidthType mWidthType;
    Raise mRaise;
    double mWidthScale;
    int mMinWidth;
    QList<BkCalendarPlan*> mPlans;
    BkCalendarTimeScale* mScale;
    BkCalendarColorScheme* mScheme;
    QDate mDate;
    BkCalendarResource mResource;
    int mResourceMode;
    int mIndex;
    bool mCustomSize;
    // The layout run in progress, shared with the runs nested in it; null between runs.
    LayoutRun* mLayoutRun;
    std::unique_ptr<LayoutMemo> mLayoutMemo;
    // True while updateChildren replaces the boxes; it lays them out once at the end.
    bool mHoldLayout;
    bool mDeferBoxes;
    // Taken away while the host was let in, and waiting for the event loop to delete it: it asks the
    // model nothing more and makes no boxes.
    bool mRetired = false;
    // The children besides the header, and whether they stand before it in the order of coming.
    int mOtherChildren;
    bool mOthersBeforeHeader;
    // Held while Qt changes the column's selection: the column tells the host of its date in the
    // middle of it, and what the host's answer takes away meanwhile is retired, not deleted.
    std::optional<BkCalendarHostVisit> mSelectionVisit;
    // How deep the column is in telling of its date, and how many changes of its selection Qt has
    // yet to finish: a change that the host makes meanwhile must not end the visit that an outer
    // change still needs.
    int mTellingDate = 0;
    int mChangesUnderway = 0;
    // Counts the updates of the boxes, so that one can tell that another ran inside it.
    quint32 mChildUpdates = 0;
};

#endif // BKCALENDARCOLUMN_H
