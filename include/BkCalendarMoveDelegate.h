#ifndef BKCALENDARMOVEDELEGATE_H
#define BKCALENDARMOVEDELEGATE_H

#include "FwCalendarGlobal.h"

#include <QItemDelegate>

// Paints a row of a move list in two lines, the time span and the title, for a host that fills its
// rows with the three roles below and installs the delegate itself.
class FWCALENDAR_EXPORT BkCalendarMoveDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    enum Role
    {
        MoveStartRole = 257,
        MoveEndRole = 258,
        MoveTitleRole = 259
    };

    explicit BkCalendarMoveDelegate(QObject* parent = nullptr);
    ~BkCalendarMoveDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

#endif // BKCALENDARMOVEDELEGATE_H
