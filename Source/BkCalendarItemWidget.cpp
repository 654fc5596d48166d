#include "BkCalendarItemWidget.h"

#include "BkBookingWatch.h"
#include "BkCalendarColorScheme.h"
#include "BkCalendarColumn.h"
#include "BkCalendarItem.h"
#include "BkCalendarNestedLoop.h"
#include "BkCalendarPainting.h"
#include "BkCalendarTimeScale.h"
#include "BkItemChangeNotice.h"
#include "BkMinutes.h"
#include "BkVariantInt.h"
#include "FwApplication.h"
#include "FwMessageBox.h"
#include "FwTextDocument.h"

#include <QBrush>
#include <QDrag>
#include <QFont>
#include <QGraphicsScene>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGuiApplication>
#include <QHash>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPalette>
#include <QPen>
#include <QPixmap>
#include <QPointer>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <QTextBlock>
#include <QTextLayout>
#include <QVarLengthArray>

#include <cmath>

namespace {

// Whether numerator / denominator == 0.0, without dividing where the answer is plain: a box's move
// lands on its time's y exactly, and a division there is the slowest step of the check. A zero
// numerator gives zero for any denominator but zero and NaN; a tiny one may still underflow.
bool isZeroQuotient(double numerator, double denominator)
{
    if (numerator == 0.0)
        return denominator != 0.0 && !std::isnan(denominator);
    return numerator / denominator == 0.0;
}

// A setting read at the moment of use, so that a change in the host counts at once. Boxes read theirs
// at every construction and paint, so the keys come as literals that need no conversion.
int settingValue(const QString& key, const QString& fallback = QString())
{
    FwApplication* app = FwApplication::app();
    return app ? app->getValue(key, fallback).toInt() : 0;
}

// A booking that two columns show at once (its user's and its resource's) has a box in each, but its
// `widget` names only the newest. The older boxes are listed here under the booking, so that its
// deletion reaches them as well and no box is left holding a deleted booking.
using Boxes = QVarLengthArray<BkCalendarItemWidget*, 2>;

QHash<const BkCalendarItem*, Boxes>& otherBoxes()
{
    static QHash<const BkCalendarItem*, Boxes> table;
    return table;
}

void forgetOtherBox(const BkCalendarItem* item, BkCalendarItemWidget* box)
{
    QHash<const BkCalendarItem*, Boxes>& table = otherBoxes();
    if (!item || table.isEmpty())
        return;
    const auto found = table.find(item);
    if (found == table.end())
        return;
    for (int i = 0; i < found->size(); ++i) {
        if (found->at(i) == box) {
            found->remove(i);
            break;
        }
    }
    if (found->isEmpty())
        table.erase(found);
}

// The booking's text kept from one paint to the next. A document keeps what it has read, pictures
// and style sheets, and lays itself out to their sizes; the files may change or appear between paints,
// so a document that has read anything is not kept.
class KeptTextDocument : public FwTextDocument
{
public:
    bool hasRead() const { return mRead; }

protected:
    QVariant loadResource(int type, const QUrl& name) override
    {
        mRead = true;
        return FwTextDocument::loadResource(type, name);
    }

private:
    bool mRead = false;
};

} // namespace

BkCalendarItemWidget::BkCalendarItemWidget(BkCalendarItem* item, BkCalendarTimeScale* scale,
                                           BkCalendarColumn* column)
    : QObject(nullptr)
    , QGraphicsItem(nullptr)
    , mMoved(false)
    , mExpanded(false)
    , mDeleting(false)
    , mPressPos(0, 0)
    , mRect(0, 0, 100, 100)
    , mColumnRect(0, 0, 100, 100)
    , mSavedRect(0, 0, 0, 0)
    , mY(0)
    , mX(0)
    , mHeight(0)
    , mColumn(nullptr)
    , mColIndex(1)
    , mColCount(1)
    , mItem(item)
    , mScale(nullptr)
    , mScheme(nullptr)
{
    // Taken before anything can let the host in, whose answer may make boxes of its own.
    mPlaceLater = column && sPlaceLaterIn == column;
    sPlaceLaterIn = nullptr;
    becomeNamed();
    setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable | QGraphicsItem::ItemIsFocusable |
             QGraphicsItem::ItemSendsGeometryChanges | QGraphicsItem::ItemSendsScenePositionChanges);
    setAcceptHoverEvents(true);
    // Tool tips are decided once per box; the booking switches them later.
    if (mItem && settingValue(QStringLiteral("set_showtooltips")) == 1)
        setToolTip(mItem->toolTip());
    mScale = scale;
    if (column)
        join(column);
    // Marked only now, the box is passed over by the layout run of its joining, and by a rebuild of
    // the column's boxes in the host's answer to it; its first place is the run that takes it in.
    setData(ItemKindRole, int(ItemKindItemWidget));
    setData(0, 1);
    updateInfo();
    mBeingMade = false;
}

void BkCalendarItemWidget::join(BkCalendarColumn* column)
{
    // The box joins its column only once it is whole: Qt activates it as it comes into an active
    // scene, the scene's notice of the focus lets the host in, and the host's answer may ask every
    // box for its bounds or rebuild the view. The visit keeps what the answer takes away until the
    // event loop, as Qt goes on with the column and the box.
    const BkCalendarHostVisit visit;
    const QScopedValueRollback<bool> joining(mJoining, true);
    setParentItem(column);
}

BkCalendarItemWidget::~BkCalendarItemWidget()
{
    // First of all, so that a layout run during the teardown passes this box over.
    mDeleting = true;
    letGoOfItem();
    // Leaving the scene lets the host in: the focus leaves, the selection changes, and the answer may
    // update the column or measure the scene. The box leaves while it is still whole, so the answer
    // finds a box that is being deleted, not an item half torn down whose own calls are gone.
    if (QGraphicsScene* owner = scene())
        owner->removeItem(this);
}

void BkCalendarItemWidget::letGoOfItem()
{
    if (mItem && mItem->widget == this)
        mItem->widget = nullptr;
    forgetOtherBox(mItem, this);
    mItem = nullptr;
}

void BkCalendarItemWidget::retire(QGraphicsItem* marked)
{
    if (auto* box = dynamic_cast<BkCalendarItemWidget*>(marked)) {
        box->mDeleting = true;
        box->letGoOfItem();
    }
}

void BkCalendarItemWidget::setItem(BkCalendarItem* item)
{
    if (item != mItem)
        forgetOtherBox(mItem, this);
    mItem = item;
}

void BkCalendarItemWidget::releaseOtherBoxes(const BkCalendarItem* item)
{
    if (otherBoxes().isEmpty())
        return;
    const Boxes boxes = otherBoxes().take(item);
    for (BkCalendarItemWidget* box : boxes)
        box->mItem = nullptr;
}

void BkCalendarItemWidget::becomeNamed()
{
    if (!mItem || mItem->widget == this || mDeleting)
        return;
    forgetOtherBox(mItem, this);
    if (mItem->widget && mItem->widget->item() == mItem)
        otherBoxes()[mItem].append(mItem->widget);
    mItem->widget = this;
}

QVarLengthArray<BkCalendarItemWidget*, 2> BkCalendarItemWidget::boxesOf(const BkCalendarItem* item)
{
    QVarLengthArray<BkCalendarItemWidget*, 2> boxes;
    if (!item)
        return boxes;
    if (item->widget && !item->widget->deleting())
        boxes.append(item->widget);
    const auto found = otherBoxes().isEmpty() ? otherBoxes().constEnd() : otherBoxes().constFind(item);
    if (found != otherBoxes().constEnd()) {
        for (BkCalendarItemWidget* box : *found) {
            if (box && !box->deleting() && box != item->widget)
                boxes.append(box);
        }
    }
    return boxes;
}

BkCalendarItemWidget* BkCalendarItemWidget::boxIn(const BkCalendarItem* item, const QGraphicsItem* column)
{
    if (!item)
        return nullptr;
    auto standsIn = [column](const BkCalendarItemWidget* box) {
        return box && box->parentItem() == column && !box->deleting();
    };
    if (standsIn(item->widget))
        return item->widget;
    if (otherBoxes().isEmpty())
        return nullptr;
    const auto found = otherBoxes().constFind(item);
    if (found == otherBoxes().constEnd())
        return nullptr;
    for (BkCalendarItemWidget* box : *found) {
        if (standsIn(box))
            return box;
    }
    return nullptr;
}

QRectF BkCalendarItemWidget::boundingRect() const
{
    return mRect;
}

int BkCalendarItemWidget::type() const
{
    return Type;
}

bool BkCalendarItemWidget::Colours::sameAs(const Colours& other) const
{
    // QColor compares colours of extended range, and those given by hue, saturation and lightness,
    // only roughly: two of them a hair apart count as equal, yet give other pixels. Colours of extended
    // range always count as changed; the others of the two are compared by their own components.
    auto same = [](const QColor& a, const QColor& b) {
        if (a.spec() == QColor::ExtendedRgb || b.spec() == QColor::ExtendedRgb)
            return false;
        if (a.spec() == QColor::Hsl || b.spec() == QColor::Hsl)
            return a.spec() == b.spec() && a.hslHueF() == b.hslHueF() &&
                   a.hslSaturationF() == b.hslSaturationF() && a.lightnessF() == b.lightnessF() &&
                   a.alphaF() == b.alphaF();
        return a == b;
    };
    return scheme == other.scheme && same(fillTop, other.fillTop) && same(fillBottom, other.fillBottom) &&
           same(selectedTop, other.selectedTop) && same(selectedBottom, other.selectedBottom) &&
           same(outline, other.outline);
}

void BkCalendarItemWidget::settleColours() const
{
    // The layout calls updateInfo for every box whose share changes, so the colours are worked out
    // anew only when what they come from has changed.
    if (!mWantedColours || (mColours && mColours->sameAs(*mWantedColours)))
        return;
    const Colours& from = *mWantedColours;
    mGradient = QLinearGradient(0, 0, 0, 100);
    mGradient.setColorAt(0.0, from.fillTop);
    mGradient.setColorAt(1.0, from.fillBottom);
    if (!from.scheme) {
        mSelectedGradient = mGradient;
    } else {
        mSelectedGradient = QLinearGradient(0, 0, 0, 100);
        mSelectedGradient.setColorAt(0.0, from.selectedTop);
        mSelectedGradient.setColorAt(1.0, from.selectedBottom);
    }
    // A value below 10 stays at 0, so that a very dark colour still gives a valid, black outline.
    int hue = 0;
    int saturation = 0;
    int value = 0;
    from.outline.getHsv(&hue, &saturation, &value);
    mBorder = QColor::fromHsv(hue, saturation, qMax(0, value - 10), 255);
    mColours = from;
}

BkCalendarColumn* BkCalendarItemWidget::sPlaceLaterIn = nullptr;

void BkCalendarItemWidget::placeNow()
{
    mPlaceLater = false;
    updateInfo();
}

void BkCalendarItemWidget::updateInfo()
{
    if (!mScale || !mItem || mPlaceLater)
        return;
    // Written in place, since the layout comes here for every box whose share changes.
    Colours& from = mWantedColours ? *mWantedColours : mWantedColours.emplace();
    from.fillTop = mItem->topColor;
    from.fillBottom = mItem->bottomColor;
    const int statusId = variantToInt(mItem->statusId);
    if (!mItem->statusId.isNull() && mScheme && mScheme->statusColors.contains(statusId)) {
        from.fillTop = mScheme->statusColors.value(statusId).color;
        from.fillBottom = from.fillTop.darker(150);
    }
    from.selectedTop = mScheme ? mScheme->selectedHeader : QColor();
    from.selectedBottom = mScheme ? mScheme->selectedHeaderGradient : QColor();
    // The outline follows the booking's own colour even when a status colour fills the box.
    from.outline = mItem->bottomColor;
    from.scheme = mScheme != nullptr;

    const double m = double(mScale->minuteHeight());
    const double t = double(mScale->topMargin());
    mY = minutesBetween(mScale->start(), mItem->start()) * m + t;
    mHeight = minutesBetween(mItem->start(), mItem->end()) * m;
    mX = mColIndex * (mColumnRect.width() / mColCount);
    const QRectF rect(0, 0, mColumnRect.width() / mColCount, mHeight);
    // A box that keeps its size needs no notice of a geometry change; a move announces its own.
    // (QRectF's own comparison is fuzzy, so each value is compared exactly.)
    if (rect.x() != mRect.x() || rect.y() != mRect.y() || rect.width() != mRect.width() ||
        rect.height() != mRect.height()) {
        prepareGeometryChange();
        mRect = rect;
    }

    setPos(mX, mY);
    QGraphicsItem::update();
}

void BkCalendarItemWidget::widthChanged(double width)
{
    if (!mPlaceLater)
        prepareGeometryChange();
    mColumnRect.setWidth(width - 5.0);
    updateInfo();
}

void BkCalendarItemWidget::itemChanged(BkCalendarItem* item)
{
    // The model tells every box of every booking.
    if (!item || item != mItem)
        return;
    const QPointF was = pos();
    const double height = mRect.height();
    updateInfo();
    // A booking whose end alone changed (a rollback to an earlier length, or a host's new end) gets its
    // new height where it stands; as it does not move, nothing else lays the column out, and its old
    // share would leave it lying over its new neighbours, or beside a gap.
    if (mItem == item && pos().x() == was.x() && pos().y() == was.y() && mRect.height() != height)
        updated();
}

void BkCalendarItemWidget::itemRemoved(BkCalendarItem* item)
{
    if (!item || item != mItem)
        return;
    mItem->widget = nullptr;
    setItem(nullptr);
    deleteLater();
}

void BkCalendarItemWidget::updated()
{
    if (mColumn && !mDeleting)
        mColumn->checkCollisions();
}

void BkCalendarItemWidget::setColInfo(int index, int count)
{
    // The early return ends the re-entrance: setPos below runs the column's layout again, and that
    // nested run finds this box settled.
    if (index == mColIndex && count == mColCount)
        return;
    mColIndex = index;
    mColCount = count;
    updateInfo();
}

QList<BkCalendarItemWidget*> BkCalendarItemWidget::intersectList(QList<BkCalendarItemWidget*> list)
{
    QList<BkCalendarItemWidget*> result;
    double top = pos().y();
    double bottom = top + boundingRect().height();
    bool tookSome = true;
    while (tookSome) {
        tookSome = false;
        QList<BkCalendarItemWidget*> rest;
        for (BkCalendarItemWidget* other : qAsConst(list)) {
            if (other == this)
                continue;
            const double otherTop = other->pos().y();
            const double otherBottom = otherTop + other->boundingRect().height();
            // Strict on both sides: boxes that only touch do not overlap. The span widens at once,
            // so later boxes of the same pass already meet it.
            if (bottom > otherTop && otherBottom > top) {
                result.append(other);
                top = qMin(otherTop, top);
                if (otherBottom > bottom)
                    bottom = otherBottom;
                tookSome = true;
            } else {
                rest.append(other);
            }
        }
        list = rest;
    }
    result.append(this);
    return result;
}

QVariant BkCalendarItemWidget::itemChange(QGraphicsItem::GraphicsItemChange change, const QVariant& value)
{
    // The end of a change of selection that let the host in; a box retired meanwhile ends it too.
    if (change == ItemSelectedHasChanged)
        mSelectionVisit.reset();
    // A box whose booking is gone waits for its deletion and takes part in nothing; one made without
    // a booking still joins the column that it was made in.
    if (!mItem && !(mJoining && change == ItemParentChange))
        return QVariant(false);

    switch (change) {
    case ItemPositionChange:
        if (mItem->type() != BkCalendarItem::Reserved && mScale) {
            // The booking's time decides where the box stands: a proposal is taken only at the y
            // that the time gives, and sideways only together with it. The comparison is exact, so
            // it holds for minute heights that a float carries exactly (1, 1.5, 2, ...); hosts keep
            // to those. The time's y is worked out in double and only then kept as a float.
            const QPointF proposed = value.toPointF();
            const double m = double(mScale->minuteHeight());
            const double t = double(mScale->topMargin());
            const double snapped = std::trunc((proposed.y() - t) / m) * m + t;
            const float expected = float(minutesBetween(mScale->start(), mItem->start()) * m + t);
            if (isZeroQuotient(snapped - double(expected), m)) {
                // The proposal itself when it already lies on the snapped y: the same point, and
                // no new value for Qt to allocate at every move of a box.
                if (snapped == proposed.y() && std::signbit(snapped) == std::signbit(proposed.y()))
                    return value;
                return QPointF(proposed.x(), snapped);
            }
            return pos();
        }
        break;
    case ItemSelectedChange:
        // Qt tells the scene's listeners before it has done with this box, and a press goes on
        // with the box after that; what the host takes away meanwhile lasts until the event loop.
        if (!mSelectionVisit)
            mSelectionVisit.emplace();
        break;
    case ItemPositionHasChanged:
        if (mColumn)
            mColumn->checkCollisions();
        break;
    case ItemParentChange: {
        if (mColumn)
            disconnect(mColumn, qOverload<double>(&BkCalendarColumn::widthChanged), this,
                       &BkCalendarItemWidget::widthChanged);
        QGraphicsItem* parent = qvariant_cast<QGraphicsItem*>(value);
        mColumn = dynamic_cast<BkCalendarColumn*>(parent);
        if (mColumn)
            connect(mColumn, qOverload<double>(&BkCalendarColumn::widthChanged), this,
                    &BkCalendarItemWidget::widthChanged);
        break;
    }
    default:
        break;
    }
    if (isItemChangeNotice(change))
        return QVariant();
    return QGraphicsItem::itemChange(change, value);
}

void BkCalendarItemWidget::grow(int height)
{
    mExpanded = true;
    mSavedRect = mRect;
    prepareGeometryChange();
    mRect.setHeight(height);
    setZValue(100.0);
    QGraphicsItem::update(mRect);
}

void BkCalendarItemWidget::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    if (!mItem || mItem->type() == BkCalendarItem::Reserved)
        return;
    const QPointF p = event->pos();
    if (p.x() < 0.0 || p.x() > mRect.width()) {
        // Out of the box sideways: the booking goes on as a drag to another column.
        QPointer<BkCalendarItemWidget> self(this);
        auto* drag = new QDrag(event->widget());
        auto* data = new QMimeData;
        data->setData(QStringLiteral("text/calitem"), QByteArray::number(mItem->id.toInt(), 10));
        drag->setMimeData(data);
        drag->setHotSpot(QPoint(15, 20));
        {
            const BkCalendarNestedLoop loop;
            drag->exec(Qt::MoveAction);
        }
        // The drag runs a loop of its own, in which the drop may have taken this box away.
        if (!self)
            return;
    } else {
        if (!mMoved) {
            const int sensitivity =
                settingValue(QStringLiteral("gst_calendarsensitivity"), QStringLiteral("0"));
            // The travel is the sum of both directions, and it has to exceed the sensitivity.
            if (qAbs(mPressPos.x() - p.x()) + qAbs(mPressPos.y() - p.y()) > sensitivity)
                mMoved = true;
        }
        if (mMoved) {
            // The box's top follows the pointer in steps of the snap grid; the length stays.
            if (mScale && mColumn) {
                const QTime start = BkCalendarColumn::roundToSnap(mScale->timeAt(mapToParent(p).y()),
                                                                  BkCalendarColumn::snapMinutes());
                const QTime end = start.addSecs(mItem->start().secsTo(mItem->end()));
                if (mColumn->allowBooking(start, end))
                    mItem->setTime(start, end);
            }
            QGraphicsItem::mouseMoveEvent(event);
        }
    }
    mSavedRect = mRect;
}

void BkCalendarItemWidget::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    if (!mItem)
        return;
    QPointer<BkCalendarItemWidget> self(this);
    if (mItem->type() != BkCalendarItem::Reserved) {
        const BkCalendarNestedLoop loop;
        emit itemActivated(mItem);
    }
    // The host may have opened a dialog on the signal, in which this box went away.
    if (self)
        QGraphicsItem::mouseDoubleClickEvent(event);
}

void BkCalendarItemWidget::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (!mItem || mItem->type() == BkCalendarItem::Reserved)
        return;
    // The check may read a day of the resource that the model lacks; the host's answer to that load
    // request, like the question's own loop, may take this box away while its booking lives on in a
    // box of the answer. The release is the booking's, so it is finished on the booking.
    QPointer<BkCalendarItemWidget> self(this);
    BkCalendarItem* const item = mItem;
    const BkBookingWatch watch(item);
    bool keep = true;
    if (mMoved && mColumn && mColumn->isResourceBooked(item) && watch.lives()) {
        const BkCalendarNestedLoop loop;
        keep = FwMessageBox::question(event->widget(), tr("Resource booked double"),
                                      tr("Do you want to make a double booked resource ?"), QMessageBox::Yes,
                                      QMessageBox::No, QStringList()) != QMessageBox::No;
        if (!keep && watch.lives())
            item->rollback();
    }
    // Every release commits, a plain click included.
    if (keep && watch.lives())
        item->commit(false);
    if (!self)
        return;
    mMoved = false;
    mPressPos = QPointF(0.0, 0.0);
    // Qt's release leaves only this box selected and tells the scene's listeners before it selects the
    // box once more; a host that rebuilds the grid in its answer takes the box away while Qt goes on
    // with it.
    const BkCalendarHostVisit visit;
    QGraphicsItem::mouseReleaseEvent(event);
}

void BkCalendarItemWidget::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    const int expandSize = settingValue(QStringLiteral("set_calexpandsize"));
    if (!mItem)
        return;
    mMoved = false;
    mPressPos = event->pos();
    // A reserved box cannot even be selected by the mouse.
    if (mItem->type() == BkCalendarItem::Reserved)
        return;
    if (event->button() == Qt::LeftButton) {
        if (mColumn && mColumn->raise() == BkCalendarColumn::RaiseOnClick && mRect.height() < expandSize)
            grow(expandSize);
    } else {
        event->accept();
    }
    QGraphicsItem::mousePressEvent(event);
}

void BkCalendarItemWidget::keyPressEvent(QKeyEvent* event)
{
    const int keysDisabled = settingValue(QStringLiteral("set_disablekeysbooking"));
    if (!mItem || mItem->type() == BkCalendarItem::Reserved)
        return;
    // The arrows of the keypad are arrows too; any modifier held passes the key on.
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const int key = event->key();
    if (keysDisabled == 0 && plain && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        moveBySeconds(key == Qt::Key_Up ? -1 : 1);
        if (mItem)
            mItem->commit(false);
        return;
    }
    event->ignore();
    QGraphicsItem::keyPressEvent(event);
}

void BkCalendarItemWidget::hoverEnterEvent(QGraphicsSceneHoverEvent* event)
{
    if (mItem && mItem->type() != BkCalendarItem::Reserved && mColumn &&
        mColumn->raise() == BkCalendarColumn::RaiseOnHover) {
        const int expandSize = settingValue(QStringLiteral("set_calexpandsize"));
        if (mRect.height() < expandSize)
            grow(expandSize);
    }
    QGraphicsItem::hoverEnterEvent(event);
}

void BkCalendarItemWidget::hoverLeaveEvent(QGraphicsSceneHoverEvent* event)
{
    // The only way back from a grown box; the layout then sees the box at its own height again.
    if (mExpanded) {
        prepareGeometryChange();
        mExpanded = false;
        const QRectF grown = mRect;
        mRect = mSavedRect;
        setZValue(1.0);
        if (mColumn)
            mColumn->checkCollisions();
        QGraphicsItem::update(grown);
    }
    QGraphicsItem::hoverLeaveEvent(event);
}

void BkCalendarItemWidget::contextMenuEvent(QGraphicsSceneContextMenuEvent* event)
{
    event->accept();
    if (mItem && mItem->type() != BkCalendarItem::Reserved) {
        const BkCalendarNestedLoop loop;
        emit itemContextMenu(event->screenPos(), mItem);
    }
}

bool BkCalendarItemWidget::moveBySeconds(int n)
{
    // The argument counts minutes, whatever the name says; no snapping, so one key is one minute.
    if (!mItem || !mColumn)
        return false;
    const QTime start = mItem->start().addSecs(n * 60);
    const QTime end = mItem->end().addSecs(n * 60);
    if (!mColumn->allowBooking(start, end))
        return false;
    mItem->setTime(start, end);
    return true;
}

void BkCalendarItemWidget::drawRichText(QPainter* painter, const QRectF& area, const QFont& font,
                                        const QPointF& origin, const QRectF& reach)
{
    // The text is cut to its area, so a repaint that cannot reach the area passes it over.
    const QRect clip(0, 0, int(area.width()), int(area.height()));
    if (!reach.intersects(QRectF(clip).translated(origin)))
        return;
    painter->save();
    painter->translate(origin);
    painter->setClipRect(clip, Qt::ReplaceClip);
    const qint64 palette = QGuiApplication::palette().cacheKey();
    if (!mTextLayout || static_cast<KeptTextDocument*>(mTextLayout.get())->hasRead() ||
        mLaidOutText != mItem->text() || mLaidOutFont != font || mLaidOutPalette != palette) {
        mTextLayout = std::make_unique<KeptTextDocument>();
        mTextLayout->setDefaultFont(font);
        mTextLayout->setDocumentMargin(0);
        mTextLayout->setRichText(mItem->text());
        mTextLayout->setTextWidth(area.width());
        // A document's lines give their shaped glyphs away after each paint and shape them anew at
        // the next; this one is kept for the next paint, so its glyphs are kept with it.
        for (QTextBlock block = mTextLayout->firstBlock(); block.isValid(); block = block.next())
            block.layout()->setCacheEnabled(true);
        mLaidOutText = mItem->text();
        mLaidOutFont = font;
        mLaidOutWidth = area.width();
        mLaidOutPalette = palette;
    } else if (mLaidOutWidth != area.width()) {
        // A box of a cluster that gains or loses a neighbour only changes its width: the document
        // breaks its lines anew from the glyphs it has, instead of being parsed and shaped again.
        mTextLayout->setTextWidth(area.width());
        mLaidOutWidth = area.width();
    }
    mTextLayout->drawContents(painter, QRectF());
    painter->restore();
}

const QString& BkCalendarItemWidget::ClockText::of(QTime t)
{
    if (!written || t != time) {
        time = t;
        text = t.toString(QStringLiteral("h:mm"));
        written = true;
    }
    return text;
}

void BkCalendarItemWidget::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    Q_UNUSED(widget)
    if (!mItem)
        return;

    const QRectF shadow(mRect.x() + 4, mRect.y() + 6, mRect.width() - 5, mRect.height() - 7);
    QRectF r(mRect.x(), mRect.y() + 2, mRect.width() - 5, mRect.height() - 7);
    const int type = int(mItem->type());

    if (type == BkCalendarItem::Reserved) {
        // A foreign reservation shows nothing of its own.
        painter->setPen(Qt::darkGray);
        painter->setBrush(QBrush(QColor(100, 100, 100, 50)));
        painter->drawRoundedRect(r, 5.0, 5.0, Qt::AbsoluteSize);
        QFont bold = painter->font();
        bold.setWeight(75);
        painter->setFont(bold);
        painter->drawText(r, Qt::AlignHCenter | Qt::AlignVCenter, tr("Reserved"));
        return;
    }

    settleColours();
    // A repaint of a strip at the box's edge passes over the shapes that lie wholly outside it; a
    // shape's pixels stay within its rectangle and the pen's half pixel around it.
    const QRectF reach = BkCalendarPainting::repaintArea(painter);
    auto reaches = [&reach](const QRectF& shape) {
        return reach.intersects(shape.normalized().adjusted(-1, -1, 1, 1));
    };

    painter->setPen(Qt::NoPen);
    painter->setBrush(QBrush(QColor(100, 100, 100, 50)));
    if (reaches(shadow))
        painter->drawRoundedRect(shadow, 5.0, 5.0, Qt::AbsoluteSize);

    if (option && (option->state & QStyle::State_Selected)) {
        painter->setBrush(QBrush(mSelectedGradient));
        // Selecting a booking selects its column as well, and the column tells the host of its date.
        // The host's answer may take this box away (it is then retired, see the column's itemChange),
        // or its booking: then it draws nothing more.
        if (parentItem())
            parentItem()->setSelected(true);
        if (!mItem)
            return;
    } else {
        painter->setBrush(QBrush(mGradient));
    }
    painter->setPen(mBorder);
    if (reaches(r))
        painter->drawRoundedRect(r, 5.0, 5.0, Qt::AbsoluteSize);

    if (mItem->leftColor.isValid()) {
        painter->setBrush(QBrush(mItem->leftColor));
        QRectF strip = r;
        strip.setWidth(5.0);
        painter->setClipping(true);
        painter->setClipRect(strip, Qt::ReplaceClip);
        painter->drawRoundedRect(strip, 5.0, 5.0, Qt::AbsoluteSize);
        painter->setClipping(false);
        painter->setPen(mBorder);
        const int x = int(r.x() + 5);
        painter->drawLine(x, 2, x, int(strip.height() - 4));
        r.setLeft(r.left() + 8);
    } else {
        r.setLeft(r.left() + 3);
    }

    if (mItem->rightColor.isValid()) {
        painter->setBrush(QBrush(mItem->rightColor));
        QRectF strip = r;
        painter->setClipping(true);
        strip.setLeft(strip.right() - 5);
        painter->setClipRect(strip, Qt::ReplaceClip);
        painter->drawRoundedRect(strip, 5.0, 5.0, Qt::AbsoluteSize);
        painter->setClipping(false);
        painter->setPen(mBorder);
        const int x = int(r.x() + r.width() - 5);
        painter->drawLine(x, 2, x, int(strip.height() - 4));
        r.setRight(r.right() - 8);
    } else {
        // Not the mirror of the left strip: without strips the text starts 6 in from the left.
        r.setLeft(r.left() + 3);
    }

    painter->setPen(Qt::black);
    const QFont originalFont = painter->font();
    QFont font = originalFont;
    font.setWeight(75);
    painter->setFont(font);
    const double textX = r.left();

    // A box narrower than its margins has no room for text: a line clipped to an area of no width
    // leaves no pixel, so it is not laid out at all. Only the icons at the foot of the text area
    // depend on where the lines would end, so for them the lines are still measured.
    const bool textShows = r.width() > 0.0;
    const bool iconsFollowText = type == BkCalendarItem::Meeting ||
                                 (mItem->flags() & (BkCalendarItem::FlagMail | BkCalendarItem::FlagPhone));
    QRectF bounds(0, 0, 0, 0);
    auto drawLine = [&](BkCalendarTextBlock& block, const QRectF& area, int flags, const QString& line) {
        if (textShows)
            block.draw(painter, area, flags, line, &bounds);
        else if (iconsFollowText && !line.isEmpty())
            // drawText reports no bounds for an empty line, so the measure that stands in for it
            // leaves them as they are too.
            bounds = block.measure(painter, area, flags, line);
    };
    if (settingValue(QStringLiteral("set_calshowtime")) == 1 && type != BkCalendarItem::TextOnly) {
        // The times are put into words only where the line is drawn or measured: the narrow boxes of
        // a large group do neither, and writing the times was a good part of their paint.
        if (textShows || iconsFollowText)
            drawLine(mTimeLine, r, Qt::AlignLeft,
                     tr("%1 - %2").arg(mStartText.of(mItem->start()), mEndText.of(mItem->end())));
        r.setTop(bounds.bottom());
    }
    if (type == BkCalendarItem::Meeting)
        drawLine(mTitleLines, r, Qt::AlignLeft, tr("Meeting"));
    else if (type != BkCalendarItem::TextOnly)
        drawLine(mTitleLines, r, Qt::AlignLeft | Qt::TextWordWrap, mItem->title());

    if (mItem->locked != 0) {
        painter->drawPixmap(QPointF(int(r.x() + r.width() - 16), 1.0), QPixmap(":/widgets/lock.png"));
        r.setWidth(r.width() - 16);
    }
    if (type != BkCalendarItem::TextOnly)
        r.moveLeft(5.0);
    // For text only, nothing was drawn yet and the text starts at the very top of the box.
    r.setTop(bounds.bottom());

    font.setWeight(50);
    painter->setFont(font);

    // Text only starts at the very top of the box; the others below their title. The text replaces the
    // painter's clip with its own, so only the window's repaint region limits what it can reach.
    if (r.width() > 0.0)
        drawRichText(painter, r, font, QPointF(textX, type == BkCalendarItem::TextOnly ? 0.0 : r.y()),
                     BkCalendarPainting::exposedArea(painter));
    painter->setFont(originalFont);

    // The icons stand at the height of the text area from the top, not at its foot.
    if (r.height() > 40) {
        int x = int(r.x() + r.width());
        const int y = int(r.height() - 5.0);
        if (type == BkCalendarItem::Meeting) {
            x -= 20;
            painter->drawPixmap(x, y, QPixmap(":/calendar/users.png"));
        }
        if (mItem->flags() & BkCalendarItem::FlagMail) {
            x -= 20;
            painter->drawPixmap(x, y, QPixmap(":/calendar/mail.png"));
        }
        if (mItem->flags() & BkCalendarItem::FlagPhone) {
            x -= 20;
            painter->drawPixmap(x, y, QPixmap(":/calendar/phone.png"));
        }
    }
}
