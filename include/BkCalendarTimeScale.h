#ifndef BKCALENDARTIMESCALE_H
#define BKCALENDARTIMESCALE_H

#include "FwCalendarGlobal.h"

#include <QColor>
#include <QGraphicsItem>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QTime>
#include <QTimer>

// The strip at the left of the grid, and the one place that turns a time of day into a vertical
// position and back. Every column, header and booking box asks it for positions.
class FWCALENDAR_EXPORT BkCalendarTimeScale : public QObject, public QGraphicsItem
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    explicit BkCalendarTimeScale(QGraphicsItem* parent = nullptr);
    ~BkCalendarTimeScale() override;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    // The view's writers; each one lays the scale out again.
    void setInterval(QTime start, QTime end);
    void setTimeSteps(int timeSteps);
    void setMinuteHeight(float minuteHeight);
    void setTopMargin(float topMargin);
    void setWidth(float width);

    QPointF pointAt(double x, QTime time) const;
    QTime timeAt(double y) const;
    int loops() const;
    bool inside(QTime start, QTime end) const;

    QRectF rect() const { return mRect; }
    double nowY() const { return mNowY; }
    const QTimer* timer() const { return &mTimer; }
    QTime start() const { return mStart; }
    QTime end() const { return mEnd; }
    int timeSteps() const { return mTimeSteps; }
    float minuteHeight() const { return mMinuteHeight; }
    float topMargin() const { return mTopMargin; }
    float width() const { return mWidth; }
    bool hourAligned() const { return mHourAligned; }
    QColor highlight() const { return mHighlight; }
    QImage image() const { return mImage; }

signals:
    void updated();

private slots:
    void update();
    void timeUpdated();

private:
    QRectF mRect;
    double mNowY = 0.0;
    QTimer mTimer;
    int mLoops = 0;
    QTime mStart;
    QTime mEnd;
    int mTimeSteps = 15;
    float mMinuteHeight = 1.0f;
    float mTopMargin = 50.0f;
    float mWidth = 50.0f;
    bool mHourAligned = true;
    QColor mHighlight;
    QImage mImage;
};

#endif // BKCALENDARTIMESCALE_H
