#ifndef BKCALENDARLISTDELEGATE_H
#define BKCALENDARLISTDELEGATE_H

#include "FwCalendarGlobal.h"

#include <QItemDelegate>

// Paints a row of the job list as a small card from the row's roles alone: a shadow, a box with a
// gradient, the booking's strips, and two lines of text, the time span and the title.
class FWCALENDAR_EXPORT BkCalendarListDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    explicit BkCalendarListDelegate(QObject* parent = nullptr);
    ~BkCalendarListDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

#endif // BKCALENDARLISTDELEGATE_H
