#ifndef BKCALENDARHEADER_H
#define BKCALENDARHEADER_H

#include "BkCalendarHostVisit.h"
#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QDate>
#include <QGraphicsItem>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <optional>

class BkCalendarColorScheme;
class BkCalendarColumn;
class FwMenu;

// The caption strip of one column: the day or the person it shows, the selection and resource
// colours, and the grip with which a resource column is given a width of its own. The column owns
// it as a graphics child and keeps it up to date; the header never reads the model itself.
class FWCALENDAR_EXPORT BkCalendarHeader : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    explicit BkCalendarHeader(QGraphicsItem* parent = nullptr);
    ~BkCalendarHeader() override;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    // The header's own highlight, apart from the item's selection; the column sets it while painting.
    void setSelected(bool selected);

    bool headerSelected() const { return mSelected; }
    QString text() const { return mText; }
    bool resizable() const { return mResizable; }
    QRectF grip() const { return mGrip; }
    FwMenu* menu() const { return mMenu; }
    QPointF lastPos() const { return mLastPos; }
    BkCalendarColumn* column() const { return mColumn; }
    BkCalendarColorScheme* colorScheme() const { return mScheme; }
    bool resourceMode() const { return mResourceMode; }

    // The column's writers.
    void setText(const QString& text) { mText = text; }
    void setResizable(bool resizable) { mResizable = resizable; }
    void setGrip(const QRectF& grip) { mGrip = grip; }
    void setColumn(BkCalendarColumn* column) { mColumn = column; }
    void setColorScheme(BkCalendarColorScheme* scheme) { mScheme = scheme; }
    void setResourceMode(bool resourceMode) { mResourceMode = resourceMode; }

public slots:
    void widthChanged(double width);

protected:
    void contextMenuEvent(QGraphicsSceneContextMenuEvent* event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    bool sceneEvent(QEvent* event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    void endGripDrag(bool store);

    QRectF mRect;
    bool mSelected = false;
    QString mText;
    bool mResizable = false;
    QRectF mGrip;
    FwMenu* mMenu = nullptr;
    QPointF mLastPos;
    BkCalendarColumn* mColumn = nullptr;
    BkCalendarColorScheme* mScheme = nullptr;

public:
    QDate date;
    BkCalendarResource resource;

private:
    bool mResourceMode = false;
    // Held while the header's own selection changes, which lets the host in.
    std::optional<BkCalendarHostVisit> mSelectionVisit;
    // The menu's own loop is running.
    bool mMenuOpen = false;
};

#endif // BKCALENDARHEADER_H
