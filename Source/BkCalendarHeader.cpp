#include "BkCalendarHeader.h"

#include "BkCalendarColorScheme.h"
#include "BkCalendarColumn.h"
#include "BkCalendarNestedLoop.h"
#include "BkItemChangeNotice.h"
#include "FwApplication.h"

#include <FwMenu.h>

#include <QApplication>
#include <QBrush>
#include <QCursor>
#include <QFont>
#include <QGraphicsScene>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QKeySequence>
#include <QLinearGradient>
#include <QLocale>
#include <QPainter>
#include <QPalette>
#include <QPen>
#include <QPointer>
#include <QResource>
#include <QStringList>

namespace {

// Every header paints its pictures at each repaint, and decoding them anew was most of its paint. A
// picture is the one registered at the time of the paint, though: a host may register its icons
// late, take them back or register others under the same place. So the decoded image is kept with
// the bytes it came from, and used again only while the resource holds those same bytes; comparing
// them costs little next to decoding.
QImage picture(const QString& path)
{
    struct Decoded
    {
        QByteArray bytes;
        QImage image;
    };
    static QHash<QString, Decoded> decoded;
    const QResource resource(path);
    if (!resource.isValid() || !resource.data() || resource.size() <= 0) {
        decoded.remove(path);
        return QImage();
    }
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(resource.data()), int(resource.size()));
    const auto known = decoded.constFind(path);
    if (known != decoded.constEnd() && known->bytes == bytes)
        return known->image;
    const QImage image(path);
    if (image.isNull())
        decoded.remove(path);
    else
        // A deep copy: the registered bytes go when the host takes the resource back.
        decoded.insert(path, Decoded{QByteArray(bytes.constData(), bytes.size()), image});
    return image;
}

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
    // The kinds of the scene's items are shared with the column, whose header this is.
    setData(ItemKindRole, int(ItemKindHeader));
    setZValue(250.0);
}

BkCalendarHeader::~BkCalendarHeader()
{
    // A group rebuilt during a grip drag takes the header before the release that would give the
    // cursor back; the hand would then stay over the whole application. A day column's hand stays,
    // as it does at its release.
    endGripDrag(false);
    // The context menu has no parent widget, so the header owns it. A header that the host takes away
    // while its menu is open leaves the menu to end its loop; it goes once that loop is over.
    if (mMenuOpen && mMenu)
        BkCalendarNestedLoop::deleteAfterwards(mMenu);
    else
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
        const QImage icon = picture(isResource ? QStringLiteral(":/calendar/icons/kexi.png")
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
        painter->drawImage(mGrip, picture(QStringLiteral(":/calendar/resize.png")));
}

// Every header offers the menu, also where there is no custom size to remove: the entry then only
// writes the saved layout back unchanged.
void BkCalendarHeader::contextMenuEvent(QGraphicsSceneContextMenuEvent* event)
{
    if (mMenu)
        mMenu->clear();
    else
        mMenu = new FwMenu(nullptr);
    if (mColumn)
        mMenu->addAction(tr("Remove custom size"), mColumn, SLOT(removeCustomSize()), QKeySequence());
    else
        mMenu->addAction(tr("Remove custom size"));
    event->accept();
    const BkCalendarNestedLoop loop;
    const QPointer<BkCalendarHeader> self(this);
    mMenuOpen = true;
    mMenu->exec(event->screenPos());
    if (self)
        mMenuOpen = false;
}

void BkCalendarHeader::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    // The grip is tested without mResizable: a day column's invisible grip also shows the hand, and
    // as its release leaves the cursor alone, the hand stays there. That is how the header behaves.
    if (event->button() == Qt::LeftButton && mGrip.contains(event->pos())) {
        QGuiApplication::setOverrideCursor(QCursor(Qt::OpenHandCursor));
        mLastPos = event->pos();
    } else {
        mLastPos = QPointF(0.0, 0.0);
    }
    // The base class takes the mouse grab, so that the moves and the release come here.
    QGraphicsItem::mousePressEvent(event);
}

void BkCalendarHeader::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (!mResizable || mLastPos == QPointF(0.0, 0.0))
        return;
    // Only the horizontal travel counts; the column shares out the widths again at each step.
    const QPointF pos = event->pos();
    if (mColumn)
        mColumn->move(pos.x() - mLastPos.x());
    mLastPos = pos;
}

void BkCalendarHeader::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (!FwApplication::app())
        return;
    if (event->button() == Qt::LeftButton)
        endGripDrag(true);
    // Qt's release leaves only this header selected and tells the scene's listeners; a host that
    // rebuilds the grid in its answer takes the header away while Qt goes on with it.
    const BkCalendarHostVisit visit;
    QGraphicsItem::mouseReleaseEvent(event);
}

bool BkCalendarHeader::sceneEvent(QEvent* event)
{
    // The mouse can be taken away mid-drag, by another item or by hiding the column; no release
    // follows. The drag ends there: the cursor comes back, and the width that the column shows is
    // kept unless the column is on its way out, as it is when hidden.
    if (event->type() == QEvent::UngrabMouse)
        endGripDrag(isVisible() && FwApplication::app());
    return QGraphicsItem::sceneEvent(event);
}

QVariant BkCalendarHeader::itemChange(GraphicsItemChange change, const QVariant& value)
{
    // A press selects the header, and Qt tells the scene's listeners before it has done with the
    // header and with the press; should the host's answer take the column away, it and its header
    // last until the event loop.
    if (change == ItemSelectedChange && !mSelectionVisit)
        mSelectionVisit.emplace();
    else if (change == ItemSelectedHasChanged)
        mSelectionVisit.reset();
    // A column on its way out leaves the scene before Qt takes the mouse from its header; like a
    // deleted one, it stores no width.
    if (change == ItemSceneChange && !qvariant_cast<QGraphicsScene*>(value))
        endGripDrag(false);
    if (isItemChangeNotice(change))
        return QVariant();
    return QGraphicsItem::itemChange(change, value);
}

void BkCalendarHeader::endGripDrag(bool store)
{
    // A day column's grip ends no drag: its hand and its last position stay.
    if (mLastPos == QPointF(0.0, 0.0) || !mResizable)
        return;
    QGuiApplication::restoreOverrideCursor();
    mLastPos = QPointF(0.0, 0.0);
    if (!store)
        return;
    FwApplication* app = FwApplication::app();
    const QString key = QStringLiteral("CalendarLayout");
    QStringList list = app->localValue(key, QVariant(QVariant::Int)).toStringList();
    const double width = mRect.width();
    const int id = resource.id.toInt();
    bool found = false;
    // Every entry of this user or resource is rewritten; entries of others, and entries that
    // are not of the form type|id|width, stay as they are.
    for (QString& entry : list) {
        QStringList parts = entry.split(QLatin1Char('|'), Qt::KeepEmptyParts, Qt::CaseSensitive);
        if (parts.size() != 3 || parts.at(0).toInt() != resource.type || parts.at(1).toInt() != id)
            continue;
        parts[2] = QString::number(width, 'g', 6);
        entry = parts.join(QLatin1Char('|'));
        found = true;
    }
    if (!found)
        list.append(QStringLiteral("%1|%2|%3").arg(resource.type).arg(id).arg(width));
    app->setLocalValue(key, QVariant(list));
}

void BkCalendarHeader::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    // In the group view this lets the user choose who the column shows; in the day view nobody
    // listens. The base class would only treat it as a second press.
    Q_UNUSED(event)
    if (mColumn)
        mColumn->emitHeaderActivated();
}
