#include "BkCalendarListDelegate.h"

#include "BkCalendarItem.h"
#include "BkCalendarList.h"

#include <QCoreApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QTime>

BkCalendarListDelegate::BkCalendarListDelegate(QObject* parent)
    : QItemDelegate(parent)
{
}

BkCalendarListDelegate::~BkCalendarListDelegate() = default;

QSize BkCalendarListDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    return QSize(200, 48);
}

void BkCalendarListDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    const QString title = index.data(BkCalendarList::TitleRole).toString();
    const int type = index.data(BkCalendarList::TypeRole).toInt();
    const QTime start = index.data(BkCalendarList::StartRole).toTime();
    const QTime end = index.data(BkCalendarList::EndRole).toTime();
    const QColor left = index.data(BkCalendarList::LeftColorRole).value<QColor>();
    const QColor right = index.data(BkCalendarList::RightColorRole).value<QColor>();
    const QColor top = index.data(BkCalendarList::TopColorRole).value<QColor>();
    const QColor bottom = index.data(BkCalendarList::BottomColorRole).value<QColor>();
    auto* list =
        reinterpret_cast<BkCalendarList*>(quintptr(index.data(BkCalendarList::ListRole).toULongLong()));
    if (!list)
        return;

    // In the painter's coordinates, not the row's: only the first rows get the full gradient, the
    // rest its last colour. That is how the cards look.
    QLinearGradient gradient(0.0, 0.0, 0.0, 50.0);
    if (option.state & QStyle::State_Selected) {
        gradient.setColorAt(0.0, list->colorSchemePtr()->selectedHeader);
        gradient.setColorAt(1.0, list->colorSchemePtr()->selectedHeaderGradient);
    } else {
        gradient.setColorAt(0.0, top);
        gradient.setColorAt(1.0, bottom);
    }
    const QString times = QStringLiteral("%1 - %2").arg(start.toString(QStringLiteral("h:mm")),
                                                        end.toString(QStringLiteral("h:mm")));

    const int l = option.rect.left();
    const int t = option.rect.top();
    const int r = option.rect.right();
    const int b = option.rect.bottom();
    const QRectF box(l, t + 2, r - l - 3, b - t - 5);
    QRect text(QPoint(l, t + 2), QPoint(r - 4, b - 4));

    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(230, 230, 230, 255));
    painter->drawRoundedRect(QRectF(l + 2, t + 4, r - l - 2, b - t - 4), 5.0, 5.0, Qt::AbsoluteSize);
    painter->setPen(Qt::gray);
    painter->setBrush(gradient);
    painter->drawRoundedRect(box, 5.0, 5.0, Qt::AbsoluteSize);

    // The strips follow the box's rounded corners through a clip. Their closing lines stand in the
    // painter's coordinates as well, at the top of the viewport.
    const int h = text.bottom() - text.top();
    if (left.isValid()) {
        painter->setBrush(left);
        QRect clip = text;
        clip.setRight(clip.left() + 4);
        painter->setClipping(true);
        painter->setClipRect(clip, Qt::ReplaceClip);
        painter->drawRoundedRect(box, 5.0, 5.0, Qt::AbsoluteSize);
        painter->setClipping(false);
        painter->setPen(bottom);
        painter->drawLine(5, 0, 5, h);
    }
    if (right.isValid()) {
        painter->setBrush(right);
        QRect clip = text;
        clip.setLeft(clip.right() - 5);
        painter->setClipping(true);
        painter->setClipRect(clip, Qt::ReplaceClip);
        painter->drawRoundedRect(box, 5.0, 5.0, Qt::AbsoluteSize);
        painter->setClipping(false);
        painter->setPen(bottom);
        const int x = text.right() - 5;
        painter->drawLine(x, 0, x, h);
    }

    // A plain number, not an offset from the row: only the right strip moves the text.
    text.setLeft(right.isValid() ? 8 : 3);
    QRect titleRect = text;

    painter->setPen(Qt::black);
    const QFont font = painter->font();
    QFont bold = font;
    bold.setWeight(75);
    painter->setFont(bold);
    text.setBottom(text.top() + 24);
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, times);
    titleRect.setTop(titleRect.top() + 24);
    const QString shown = type == BkCalendarItem::Meeting
                              ? QCoreApplication::translate("BkCalendarListDelegate", "Meeting")
                              : title;
    painter->drawText(titleRect, Qt::AlignVCenter | Qt::TextSingleLine, shown);
    painter->setFont(font);
}
