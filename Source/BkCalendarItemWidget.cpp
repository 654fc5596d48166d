#include "BkCalendarItemWidget.h"

#include "BkCalendarItem.h"

BkCalendarItemWidget::BkCalendarItemWidget(BkCalendarItem* item, QGraphicsItem* parent)
    : QObject()
    , QGraphicsItem(parent)
    , mItem(item)
{
    if (mItem)
        mItem->widget = this;
}

BkCalendarItemWidget::~BkCalendarItemWidget()
{
    if (mItem && mItem->widget == this)
        mItem->widget = nullptr;
}

void BkCalendarItemWidget::updated()
{
    // Relaying out the column's boxes belongs to the column, which is not joined to this widget yet.
}

QRectF BkCalendarItemWidget::boundingRect() const
{
    return QRectF(0.0, 0.0, 100.0, 100.0);
}

void BkCalendarItemWidget::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {}
