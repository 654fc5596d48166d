#include "BkCalendarMoveDelegate.h"

#include <FwTreeWidget.h>

#include <QLinearGradient>
#include <QPainter>
#include <QTime>

BkCalendarMoveDelegate::BkCalendarMoveDelegate(QObject* parent)
    : QItemDelegate(parent)
{
}

BkCalendarMoveDelegate::~BkCalendarMoveDelegate() = default;

QSize BkCalendarMoveDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    return QSize(200, 48);
}

void BkCalendarMoveDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    // The row of the tree that owns the index; an index of any other model has none.
    auto* tree =
        qobject_cast<FwTreeWidget*>(const_cast<QObject*>(index.model() ? index.model()->parent() : nullptr));
    FwTreeWidgetItem* row = tree ? tree->item(index.sibling(index.row(), 0)) : nullptr;
    if (!row)
        return;
    const QTime start = row->data(0, MoveStartRole).toTime();
    const QTime end = row->data(0, MoveEndRole).toTime();
    const QString title = row->data(0, MoveTitleRole).toString();

    QRect rect = option.rect;
    rect.setTop(rect.top() + 2);
    rect.setBottom(rect.bottom() - 2);
    // In the painter's coordinates: it does not follow the row.
    QLinearGradient gradient(0, 0, 0, 50);

    painter->save();
    if (option.state & QStyle::State_Selected) {
        gradient.setColorAt(0.0, QColor(165, 191, 224, 255));
        gradient.setColorAt(1.0, QColor(230, 237, 247, 255));
        painter->setPen(QColor(93, 140, 200, 255));
        painter->setBrush(gradient);
        painter->drawRoundedRect(QRectF(rect), 4, 4, Qt::RelativeSize);
    } else {
        painter->setPen(Qt::NoPen);
        painter->fillRect(rect, option.palette.brush(QPalette::Current, QPalette::Base).color());
    }
    painter->restore();

    const QString times = QStringLiteral("%1 - %2").arg(start.toString(QStringLiteral("h:mm")),
                                                        end.toString(QStringLiteral("h:mm")));
    // Absolute edges: right for a row at the view's origin, and kept so for every row.
    QRect timeRect = rect;
    timeRect.setLeft(3);
    QRect titleRect = rect;
    titleRect.setLeft(3);

    painter->setPen(Qt::black);
    const QFont font = painter->font();
    QFont bold = font;
    bold.setWeight(75);
    painter->setFont(bold);
    timeRect.setBottom(24);
    painter->drawText(timeRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, times);
    titleRect.setTop(24);
    painter->drawText(titleRect, Qt::AlignVCenter | Qt::TextSingleLine, title);
    painter->setFont(font);
}
