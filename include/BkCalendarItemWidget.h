#ifndef BKCALENDARITEMWIDGET_H
#define BKCALENDARITEMWIDGET_H

#include "BkCalendarHostVisit.h"
#include "BkCalendarTextBlock.h"
#include "FwCalendarGlobal.h"

#include <QColor>
#include <QFont>
#include <QGraphicsItem>
#include <QLinearGradient>
#include <QList>
#include <QObject>
#include <QTime>
#include <QVarLengthArray>

#include <QPoint>
#include <QPointF>
#include <QRectF>
#include <memory>
#include <optional>

class BkCalendarColorScheme;
class BkCalendarColumn;
class FwTextDocument;
class BkCalendarItem;
class BkCalendarTimeScale;
class QKeyEvent;
class QPainter;

// The box of one booking inside a column. The booking's time decides where the box stands; the
// collision layout decides which share of the column's width it takes.
class FWCALENDAR_EXPORT BkCalendarItemWidget : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)
    // The column builds and refreshes its widgets through updateInfo().
    friend class BkCalendarColumn;

public:
    enum
    {
        Type = QGraphicsItem::UserType + 1
    };

    // Without a scale the box only holds its booking; without a column it has no parent.
    explicit BkCalendarItemWidget(BkCalendarItem* item, BkCalendarTimeScale* scale = nullptr,
                                  BkCalendarColumn* column = nullptr);
    ~BkCalendarItemWidget() override;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    int type() const override;

    bool deleting() const { return mDeleting; }
    // Runs the column's layout again; the booking calls it when the host asks for a refresh.
    void updated();

    // Collision layout.
    void setColInfo(int index, int count);
    QList<BkCalendarItemWidget*> intersectList(QList<BkCalendarItemWidget*> list);

    // Moves the booking by n minutes (key moves).
    bool moveBySeconds(int n);

    // Readers. The box's place and height in column coordinates are boxX(), boxY() and boxHeight():
    // x() and y() of the graphics item give its present position, which the time may have refused.
    int colIndex() const { return mColIndex; }
    int colCount() const { return mColCount; }
    double boxX() const { return mX; }
    double boxY() const { return mY; }
    double boxHeight() const { return mHeight; }
    QRectF columnRect() const { return mColumnRect; }
    QRectF savedRect() const { return mSavedRect; }
    bool expanded() const { return mExpanded; }
    bool moved() const { return mMoved; }
    QPointF pressPos() const { return mPressPos; }
    // The colours that the last updateInfo gave.
    QColor border() const
    {
        settleColours();
        return mBorder;
    }
    QLinearGradient gradient() const
    {
        settleColours();
        return mGradient;
    }
    QLinearGradient selectedGradient() const
    {
        settleColours();
        return mSelectedGradient;
    }
    BkCalendarColumn* column() const { return mColumn; }
    BkCalendarItem* item() const { return mItem; }
    BkCalendarTimeScale* timeScale() const { return mScale; }
    BkCalendarColorScheme* colorScheme() const { return mScheme; }

    // The column writes the colours directly after construction.
    void setColorScheme(BkCalendarColorScheme* scheme) { mScheme = scheme; }
    // Written by the booking when it goes, so that the box outlives it with no booking.
    void setItem(BkCalendarItem* item);
    // Called by a booking as it goes: the boxes of other columns that show it, beside its `widget`,
    // outlive it with no booking too.
    static void releaseOtherBoxes(const BkCalendarItem* item);
    // The box of the booking that stands in the given column, if any. A booking that two columns show
    // names only its newest box; the column that made the other may be asked as well.
    static BkCalendarItemWidget* boxIn(const BkCalendarItem* item, const QGraphicsItem* column);

signals:
    void itemActivated(BkCalendarItem* item);
    void itemContextMenu(QPoint pos, BkCalendarItem* item);

public slots:
    void itemRemoved(BkCalendarItem* item);
    void itemChanged(BkCalendarItem* item);
    void widthChanged(double width);

protected slots:
    void updateInfo();

protected:
    QVariant itemChange(QGraphicsItem::GraphicsItemChange change, const QVariant& value) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;
    void contextMenuEvent(QGraphicsSceneContextMenuEvent* event) override;

private:
    // What the deletion of a box undoes: the booking no longer names it or counts it among its boxes.
    void letGoOfItem();
    // All boxes of the booking that are not being deleted, the one its `widget` names first.
    static QVarLengthArray<BkCalendarItemWidget*, 2> boxesOf(const BkCalendarItem* item);
    // Makes this box the one that its booking names; the one named before counts among its others.
    void becomeNamed();
    // Makes the finished box a child of its column.
    void join(BkCalendarColumn* column);
    // Ends a later placing: the box takes its size and place, as updateInfo gives them.
    void placeNow();
    // Done at once to a box that is retired rather than deleted, so that nothing sees it any more.
    // The box mark is only data, which an item of the host's may carry too; such an item has no links.
    static void retire(QGraphicsItem* marked);
    // Grows a short box to the expand height until the pointer leaves it.
    void grow(int height);
    // The booking's rich text in the area left below its title, from origin on.
    // `reach`: what the paint can reach, in the box's coordinates.
    void drawRichText(QPainter* painter, const QRectF& area, const QFont& font, const QPointF& origin,
                      const QRectF& reach);
    // Works out the gradients and the outline from the colours that the last updateInfo saw.
    void settleColours() const;

    bool mMoved;
    bool mExpanded;
    bool mDeleting;
    bool mJoining = false;
    // True from the start of the constructor to its end: the stretch from the box's joining to its
    // first place, in which only the calendar's own steps and Qt's run.
    bool mBeingMade = true;
    // Made by a column that builds its boxes in one go: the box takes its place only when the column
    // has given it its width. Nothing can see it between its joining and then, and every move on the
    // way would cost Qt its full round of notices for nothing.
    bool mPlaceLater = false;
    // The column whose next box places itself later; taken by that box as it begins.
    static BkCalendarColumn* sPlaceLaterIn;
    QPointF mPressPos;
    QRectF mRect;
    QRectF mColumnRect;
    QRectF mSavedRect;
    mutable QColor mBorder;
    double mY;
    double mX;
    double mHeight;
    mutable QLinearGradient mGradient;
    mutable QLinearGradient mSelectedGradient;
    BkCalendarColumn* mColumn;
    int mColIndex;
    int mColCount;
    BkCalendarItem* mItem;
    BkCalendarTimeScale* mScale;
    BkCalendarColorScheme* mScheme;
    // Held while Qt changes the box's selection: the scene tells the host in the middle of it, and
    // what the host's answer takes away meanwhile is retired, not deleted under Qt's feet.
    std::optional<BkCalendarHostVisit> mSelectionVisit;

    // What the gradients and the outline come from.
    struct Colours
    {
        QColor fillTop;
        QColor fillBottom;
        QColor selectedTop;
        QColor selectedBottom;
        QColor outline;
        bool scheme = false;
        bool sameAs(const Colours& other) const;
    };
    // The colours that the last updateInfo saw, and those that the gradients and the outline were last
    // worked out from (nothing before the first time). A box may be made and replaced several times
    // within one show operation without ever being painted, so the work waits for a reader.
    std::optional<Colours> mWantedColours;
    mutable std::optional<Colours> mColours;

    // A time as the time line writes it, kept with the time it was written for: a box is painted far
    // more often than its booking moves.
    struct ClockText
    {
        QTime time;
        QString text;
        bool written = false;
        const QString& of(QTime t);
    };
    ClockText mStartText;
    ClockText mEndText;
    // The time line and the title as laid out for the last paint.
    BkCalendarTextBlock mTimeLine;
    BkCalendarTextBlock mTitleLines;
    // The booking's text laid out for the last paint, since laying out rich text is most of a box's
    // paint: made again only when text or font differ, and only broken into lines again for a width.
    std::unique_ptr<FwTextDocument> mTextLayout;
    QString mLaidOutText;
    // None until the text is first laid out: see BkCalendarTextBlock.
    std::optional<QFont> mLaidOutFont;
    double mLaidOutWidth = -1.0;
    // The application palette that the text was read with: links take its colour as they are read.
    qint64 mLaidOutPalette = 0;
};

#endif // BKCALENDARITEMWIDGET_H
