#ifndef BKCALENDARINFOWIDGET_H
#define BKCALENDARINFOWIDGET_H

#include "FwCalendarGlobal.h"

#include <QGraphicsItem>
#include <QObject>
#include <QRectF>
#include <QString>

// Fills an empty group view with an information symbol and one message under it, centred in the
// area right of the time scale. It takes no input.
class FWCALENDAR_EXPORT BkCalendarInfoWidget : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    // type 0: no group chosen; any other value: the group holds only empty duty schedules.
    explicit BkCalendarInfoWidget(int type, QGraphicsItem* parent = nullptr);
    ~BkCalendarInfoWidget() override;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    // Takes effect at the next sizeChanged.
    void setMargin(int margin);

    int messageType() const { return mType; }
    int margin() const { return mMargin; }
    // The translated message that paint shows for the type.
    QString message() const;

public slots:
    void sizeChanged(int width, int height);

private:
    QRectF mRect;
    int mType;
    int mMargin = 0;
};

#endif // BKCALENDARINFOWIDGET_H
