#ifndef BKCALENDARITEMWIDGET_H
#define BKCALENDARITEMWIDGET_H

#include "FwCalendarGlobal.h"

#include <QGraphicsItem>
#include <QObject>

class BkCalendarItem;

// The graphics item that shows one booking. The booking and its widget point at each other; each
// clears the other's pointer when it goes.
class FWCALENDAR_EXPORT BkCalendarItemWidget : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    explicit BkCalendarItemWidget(BkCalendarItem* item, QGraphicsItem* parent = nullptr);
    ~BkCalendarItemWidget() override;

    BkCalendarItem* item() const { return mItem; }
    // Written by the booking when it goes, so the widget outlives it with no item.
    void setItem(BkCalendarItem* item) { mItem = item; }

    void updated();

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    BkCalendarItem* mItem = nullptr;
};

#endif // BKCALENDARITEMWIDGET_H
