#include "BkCalendarTimeScale.h"

#include "BkCalendarClock.h"
#include "BkCalendarItemKind.h"

#include <FwApplication.h>

#include <QApplication>
#include <QBrush>
#include <QFont>
#include <QLine>
#include <QLinearGradient>
#include <QPainter>
#include <QPalette>
#include <QRect>

#include <cmath>

namespace {
const int SecondsPerDay = 24 * 60 * 60;

// Positions only know whole minutes: seconds and milliseconds play no part.
int minuteOfDay(const QTime& time)
{
    return time.hour() * 60 + time.minute();
}

// An end of exactly 00:00 stands for midnight at the end of the day; from midnight to it is the whole
// day.
const QTime Midnight(0, 0, 0, 0);

bool isWholeDay(const QTime& start, const QTime& end)
{
    return start == Midnight && end == Midnight;
}
} // namespace

BkCalendarTimeScale::BkCalendarTimeScale(QGraphicsItem* parent)
    : QObject()
    , QGraphicsItem(parent)
    , mRect()
    , mNowY(0.0)
    , mTimer()
    , mLoops(0)
    , mStart(0, 0, 0, 0)
    , mEnd(23, 59, 59, 0)
    , mTimeSteps(15)
    , mMinuteHeight(1.0f)
    , mTopMargin(50.0f)
    , mWidth(50.0f)
    , mHourAligned(true)
    , mHighlight(QApplication::palette().brush(QPalette::Current, QPalette::Highlight).color())
    , mImage(QStringLiteral(":/calendar/calendar.png"))
{
    setZValue(200.0);
    setPos(0.0, 25.0);
    setData(ItemKindRole, int(ItemKindTimeScale));
    update();
    mTimer.setInterval(60000);
    mTimer.start();
    connect(&mTimer, &QTimer::timeout, this, &BkCalendarTimeScale::timeUpdated);
}

BkCalendarTimeScale::~BkCalendarTimeScale() = default;

QRectF BkCalendarTimeScale::boundingRect() const
{
    return mRect;
}

void BkCalendarTimeScale::setInterval(QTime start, QTime end)
{
    // No check: an end before the start gives a negative span, which the caller has to avoid.
    mStart = start;
    mEnd = end;
    update();
}

void BkCalendarTimeScale::setTimeSteps(int timeSteps)
{
    // Must be positive: a step of 0 would divide by zero in update() and paint().
    mTimeSteps = timeSteps;
    update();
}

void BkCalendarTimeScale::setMinuteHeight(float minuteHeight)
{
    mMinuteHeight = minuteHeight;
    update();
}

void BkCalendarTimeScale::setTopMargin(float topMargin)
{
    mTopMargin = topMargin;
    update();
}

void BkCalendarTimeScale::setWidth(float width)
{
    mWidth = width;
    update();
}

QPointF BkCalendarTimeScale::pointAt(double x, QTime time) const
{
    const double minutes = double(minuteOfDay(time) - minuteOfDay(mStart));
    return QPointF(x, double(mTopMargin) + double(mMinuteHeight) * minutes);
}

QTime BkCalendarTimeScale::timeAt(double y) const
{
    double seconds = std::trunc((y - double(mTopMargin)) / double(mMinuteHeight) * 60.0);
    // addSecs wraps round the clock anyway; folding first keeps a far-off y inside int's range.
    seconds = std::fmod(seconds, double(SecondsPerDay));
    return mStart.addSecs(int(seconds));
}

int BkCalendarTimeScale::loops() const
{
    return mLoops;
}

bool BkCalendarTimeScale::inside(QTime start, QTime end) const
{
    // Only the scale's end gets the midnight reading, not the arguments.
    if (isWholeDay(mStart, mEnd))
        return true;
    return (mEnd == Midnight || mEnd > start) && mStart < end;
}

void BkCalendarTimeScale::update()
{
    mHourAligned = (60 % mTimeSteps == 0);
    prepareGeometryChange();

    // The default day rounds up to the whole day, and every later update (a new step or minute
    // height) has to find the whole day again instead of a span of nothing.
    int minutes = isWholeDay(mStart, mEnd) ? 24 * 60 : minuteOfDay(mEnd) - minuteOfDay(mStart);
    mLoops = minutes / mTimeSteps;
    const int rest = minutes % mTimeSteps;
    if (rest != 0) {
        // The end moves out to the next whole step, on the minute, so that a default end of 23:59:59
        // becomes the midnight that inside() understands.
        mEnd = QTime(mEnd.hour(), mEnd.minute()).addSecs((mTimeSteps - rest) * 60);
        // Past midnight the stored end steps back, yet the span keeps its full last step: the strip
        // still reaches midnight.
        if (mEnd < mStart)
            mEnd = mEnd.addSecs(-mTimeSteps * 60);
        minutes = minutes - rest + mTimeSteps;
        mLoops += 1;
    }

    const float height = float(minutes) * mMinuteHeight + mTopMargin;
    mRect = QRectF(0.0, 0.0, mWidth, height);

    timeUpdated();
    emit updated();
}

void BkCalendarTimeScale::timeUpdated()
{
    const QTime now = BkCalendarClock::currentTime();
    mNowY = double(mTopMargin);
    mNowY += double(float(minuteOfDay(now) - minuteOfDay(mStart)) * mMinuteHeight);
    // Only a band of five minutes either side of the marker needs repainting.
    QGraphicsItem::update(
        QRectF(0.0, mNowY + double(-5.0f * mMinuteHeight), mWidth, double(10.0f * mMinuteHeight)));
}

void BkCalendarTimeScale::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    QTime t = mStart;
    const int rest = t.minute() % mTimeSteps;
    // A start off the step grid puts the second tick on the next multiple of the step.
    const int first = mTimeSteps - rest;

    // Read at each paint, so a changed setting shows at the next repaint; only 1 means anything.
    int roundUp = 0;
    if (FwApplication::app())
        roundUp = FwApplication::app()->getValue(QStringLiteral("set_alwaysroundup"), QString()).toInt();

    const QPalette palette = QApplication::palette();
    const QColor background = palette.brush(QPalette::Current, QPalette::Window).color();
    const QColor line = palette.brush(QPalette::Current, QPalette::Mid).color();
    const QColor text = palette.brush(QPalette::Current, QPalette::WindowText).color();

    // Integer pixels throughout, with the float arithmetic deciding where each line lands.
    const int right = int(mWidth - 2.0f);
    const float stepHeight = float(mTimeSteps) * mMinuteHeight;
    const int top = int(mTopMargin);
    const int largeRight = int(mWidth - 12.0f);

    auto smallLabel = [&](const QRect& rect) {
        painter->drawText(rect, Qt::AlignRight | Qt::AlignVCenter, t.toString(QStringLiteral("h:mm")));
    };
    // The hour alone, in a rectangle two steps tall so that it runs past the next tick.
    auto largeLabel = [&](const QRect& rect) {
        const QFont font = painter->font();
        QFont large = font;
        large.setPointSize(int(font.pointSize() * 1.75));
        painter->setFont(large);
        painter->drawText(rect, Qt::AlignRight | Qt::AlignTop, t.toString(QStringLiteral("h")));
        painter->setFont(font);
    };

    // Frame.
    painter->setBrush(QBrush(background, Qt::SolidPattern));
    painter->drawRects(&mRect, 1);
    painter->setPen(line);
    painter->drawLine(QLine(0, top, right, top));
    painter->setFont(QFont(QStringLiteral("Arial"), 12));
    painter->drawImage(QPoint(0, 0), mImage);

    // First tick: the label of the start in the row from the margin, its line at the foot of that row.
    const int firstBottom = int(stepHeight + mTopMargin);
    painter->setPen(text);
    if (roundUp != 1 && mHourAligned) {
        if (mTimeSteps > 30)
            smallLabel(QRect(0, top, right, int(stepHeight)));
        else
            largeLabel(QRect(0, top, largeRight, int(stepHeight + stepHeight)));
    } else {
        smallLabel(QRect(0, top, right, int(stepHeight)));
    }
    painter->setPen(line);
    painter->drawLine(QLine(35, firstBottom, right, firstBottom));

    t = t.addSecs(first * 60);

    for (int i = 0; i <= mLoops - 2; ++i) {
        const int y = int(float(mTimeSteps * i + first) * mMinuteHeight + mTopMargin);
        const int next = int(float(mTimeSteps) * mMinuteHeight + float(y));
        const QRect row(QPoint(0, y), QPoint(right - 1, next - 1));
        if (!mHourAligned) {
            painter->setPen(text);
            smallLabel(row);
            painter->setPen(line);
            painter->drawLine(QLine(35, next, right, next));
        } else if (roundUp == 1) {
            painter->setPen(line);
            painter->drawLine(QLine(35, y, right, y));
            painter->setPen(text);
            smallLabel(row);
        } else if (t.minute() == 0) {
            painter->setPen(text);
            if (mTimeSteps > 30)
                smallLabel(row);
            else
                largeLabel(QRect(QPoint(0, y), QPoint(largeRight - 1, y + (next - y) * 2 - 1)));
            painter->setPen(line);
            painter->drawLine(QLine(5, y, right, y));
        } else {
            painter->setPen(line);
            painter->drawLine(QLine(35, y, right, y));
        }
        t = t.addSecs(mTimeSteps * 60);
    }

    // Closing: the right border stays at 49 whatever the width, then the current-time marker, which
    // is drawn even when the time lies outside the span.
    painter->setPen(line);
    painter->drawLine(QLine(49, 0, 49, int(mRect.height())));
    QLinearGradient gradient(0.0, mNowY - 1.0, 0.0, mNowY + 2.0);
    gradient.setColorAt(0.0, Qt::white);
    gradient.setColorAt(1.0, mHighlight);
    painter->fillRect(QRectF(20.0, mNowY - 1.0, double(mWidth) - 20.0, 3.0), gradient);
}
