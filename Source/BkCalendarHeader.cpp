#include "BkCalendarHeader.h"

#include "BkCalendarColorScheme.h"

#include <FwMenu.h>

#include <QApplication>
#include <QBrush>
#include <QFont>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QLinearGradient>
#include <QLocale>
#include <QPainter>
#include <QPalette>
#include <QPen>

namespace {
const int ItemKindRole = 266;
const int KindHeader = 104;
} // namespace

BkCalendarHeader::BkCalendarHeader(QGraphicsItem* parent)
    : QObject()
    , QGraphicsItem(parent)
    , mRect(0.0, 0.0, 100.0, 20.0)
    , mSelected(false)
    , mText()
    , mResizable(false)
    , mGrip(0.0, 0.0, 0.0, 0.0)
    , mMenu(nullptr)
    , mLastPos(0.0, 0.0)
    , mColumn(nullptr)
    , mScheme(nullptr)
    , date()
    , resource()
    , mResourceMode(false)
{
    setFlags(QGraphicsItem::ItemIsSelectable);
    setAcceptDrops(false);
    setData(ItemKindRole, KindHeader);
    setZValue(250.0);
}

BkCalendarHeader::~BkCalendarHeader()
{
    // The context menu has no parent widget, so the header owns it.
    delete mMenu;
}

QRectF BkCalendarHeader::boundingRect() const
{
    return mRect;
}

void BkCalendarHeader::setSelected(bool selected)
{
    if (mSelected == selected)
        return;
    mSelected = selected;
    QGraphicsItem::update();
}

void BkCalendarHeader::widthChanged(double width)
{
    prepareGeometryChange();
    mRect.setWidth(width);
    QGraphicsItem::update();
}

void BkCalendarHeader::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    // A header not yet given its column's scheme paints in the standard colours.
    static const BkCalendarColorScheme standardScheme;
    const BkCalendarColorScheme& scheme = mScheme ? *mScheme : standardScheme;
    const double w = mRect.width();
    const bool isResource = resource.type != 0;

    painter->drawRects(&mRect, 1);

    // Selection wins over the resource colours.
    if (mSelected) {
        painter->setPen(scheme.selectedFrame);
        painter->setBrush(QBrush(scheme.selectedHeader, Qt::SolidPattern));
    } else {
        painter->setPen(scheme.frame);
        painter->setBrush(QBrush(isResource ? scheme.resourceHeader : scheme.header, Qt::SolidPattern));
    }
    const QRectF strip(0.0, 0.0, w, 20.0);
    painter->drawRects(&strip, 1);

    // The lower half fades from the darker stop into the fill; the frame stays visible round it.
    QLinearGradient gradient(0.0, 10.0, 0.0, 19.0);
    if (mSelected) {
        gradient.setColorAt(0.0, scheme.selectedHeaderGradient);
        gradient.setColorAt(1.0, scheme.selectedHeader);
    } else if (isResource) {
        gradient.setColorAt(0.0, scheme.resourceHeaderGradient);
        gradient.setColorAt(1.0, scheme.resourceHeader);
    } else {
        gradient.setColorAt(0.0, scheme.headerGradient);
        gradient.setColorAt(1.0, scheme.header);
    }
    painter->fillRect(QRectF(1.0, 10.0, w - 1.0, 9.0), gradient);

    // The resource icon is looked up under "icons/", a place that only a host fills; without it a
    // resource column shows no icon.
    if (!resource.id.isNull()) {
        const QImage icon(isResource ? QStringLiteral(":/calendar/icons/kexi.png")
                                     : QStringLiteral(":/calendar/user.png"));
        if (!icon.isNull())
            painter->drawImage(QPointF(2.0, 2.0), icon);
    }

    painter->setPen(QApplication::palette().brush(QPalette::Current, QPalette::WindowText).color());

    if (!mResourceMode) {
        // Day names follow the system's locale, as QDate's own day names do.
        QString dayName = QLocale::system().dayName(date.dayOfWeek(), QLocale::LongFormat);
        if (!dayName.isEmpty())
            dayName[0] = dayName.at(0).toUpper();
        painter->drawText(strip, Qt::AlignHCenter | Qt::AlignVCenter, dayName);

        const QFont font = painter->font();
        QFont bold = font;
        bold.setWeight(75);
        painter->setFont(bold);
        painter->drawText(QRectF(20.0, 3.0, w - 40.0, 20.0), Qt::AlignLeft | Qt::AlignVCenter,
                          QStringLiteral("%1").arg(date.day()));
        painter->setFont(font);
    } else {
        painter->drawText(QRectF(20.0, 0.0, w - 40.0, 20.0), Qt::AlignLeft | Qt::AlignVCenter, mText);
    }

    if (mResizable)
        painter->drawImage(mGrip, QImage(QStringLiteral(":/calendar/resize.png")));
}

// The grip drag, the custom-width menu and the double click need the column's operations; until they
// are joined up, these handlers behave as a plain graphics item does.
void BkCalendarHeader::contextMenuEvent(QGraphicsSceneContextMenuEvent* event)
{
    QGraphicsItem::contextMenuEvent(event);
}

void BkCalendarHeader::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mousePressEvent(event);
}

void BkCalendarHeader::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mouseMoveEvent(event);
}

void BkCalendarHeader::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mouseReleaseEvent(event);
}

void BkCalendarHeader::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem::mouseDoubleClickEvent(event);
}
