#include "BkCalendarItem.h"

#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"

#include <QTextDocument>

BkCalendarItem::BkCalendarItem() = default;

BkCalendarItem::~BkCalendarItem()
{
    // The widget survives its booking with no booking; it is neither deleted nor unfiled here.
    if (widget)
        widget->setItem(nullptr);
}

QString BkCalendarItem::plainText() const
{
    QTextDocument document;
    document.setHtml(mText);
    return document.toPlainText();
}

void BkCalendarItem::notify()
{
    if (model && !mBlocked)
        model->itemInvalid(this, true);
}

void BkCalendarItem::setLocked(int locked)
{
    this->locked = locked;
}

void BkCalendarItem::setWorkPlaceId(const QVariant& id)
{
    workPlaceId = id;
}

void BkCalendarItem::setBlocked(bool blocked)
{
    mBlocked = blocked;
}

// These setters do not compare: setting the present value still marks the booking changed.
void BkCalendarItem::setTitle(const QString& title)
{
    mTitle = title;
    notify();
}

void BkCalendarItem::setText(const QString& text)
{
    mText = text;
    notify();
}

void BkCalendarItem::setItemFlags(int flags)
{
    mItemFlags = flags;
    notify();
}

void BkCalendarItem::setType(ItemType type)
{
    mType = type;
    notify();
}

void BkCalendarItem::setStart(const QTime& start)
{
    mStart = start;
    notify();
}

void BkCalendarItem::setEnd(const QTime& end)
{
    mEnd = end;
    notify();
}

void BkCalendarItem::setToolTip(const QString& toolTip)
{
    mToolTip = toolTip;
    // Shown even while tool tips are switched off; the next setToolTipsEnabled(false) removes it.
    if (widget)
        widget->setToolTip(mToolTip);
    notify();
}

void BkCalendarItem::setStatusId(const QVariant& id)
{
    if (statusId == id)
        return;
    statusId = id;
    notify();
}

// The rollback values are taken from the new values while the booking is clean: the first change
// after a save becomes the baseline, and only later changes can be taken back.
void BkCalendarItem::setTime(const QTime& start, const QTime& end)
{
    if (!model || !model->isInvalid(this)) {
        mSavedStart = start;
        mSavedEnd = end;
    }
    mStart = start;
    mEnd = end;
    notify();
}

// The model files bookings by date, user and resource: a change of one of them unfiles the booking
// under the old value and files it again under the new one, with the same pointer.
template <typename T> void BkCalendarItem::changeKey(T& field, T& savedField, const T& value, bool silent)
{
    if (value == field)
        return;
    if (!model) {
        savedField = value;
        field = value;
    } else {
        BkCalendarModel* owner = model;
        if (!owner->isInvalid(this))
            savedField = value;
        if (silent)
            owner->blockSignals(true);
        owner->removeItem(this);
        field = value;
        owner->addItem(this);
        if (silent)
            owner->blockSignals(false);
    }
    notify();
}

void BkCalendarItem::setDate(const QDate& date, bool silent)
{
    changeKey(mDate, mSavedDate, date, silent);
}

void BkCalendarItem::setUserId(const QVariant& id, bool silent)
{
    changeKey(mUserId, mSavedUserId, id, silent);
}

void BkCalendarItem::setResourceId(const QVariant& id, bool silent)
{
    changeKey(mResourceId, mSavedResourceId, id, silent);
}

void BkCalendarItem::setKeys(const QDate& date, const BkCalendarResource& resource)
{
    setDate(date, true);
    if (resource.type != 0)
        setResourceId(resource.id, true);
    else
        setUserId(resource.id, true);
}

void BkCalendarItem::setKeys(const QDate& date, const QVariant& userId, const QVariant& resourceId)
{
    if (date == mDate && resourceId == mResourceId && userId == mUserId)
        return;
    if (!model) {
        // Without a model the rollback values stay as they are.
        mDate = date;
        mUserId = userId;
        mResourceId = resourceId;
    } else {
        BkCalendarModel* owner = model;
        if (!owner->isInvalid(this)) {
            mSavedDate = date;
            mSavedResourceId = resourceId;
            mSavedUserId = userId;
        }
        // Always a silent move: the caller moves the widget on the screen.
        owner->blockSignals(true);
        owner->removeItem(this);
        mDate = date;
        mUserId = userId;
        mResourceId = resourceId;
        owner->addItem(this);
        owner->blockSignals(false);
    }
    notify();
}

bool BkCalendarItem::isLike(const BkCalendarResource& resource) const
{
    if (resource.id.isNull())
        return false;
    if (resource.type == 0 && resource.id == mUserId)
        return true;
    if (resource.type == 1)
        return resource.id == mResourceId;
    return false;
}

void BkCalendarItem::invalidate(bool addToList)
{
    if (model && !mBlocked)
        model->itemInvalid(this, addToList);
}

void BkCalendarItem::commit(bool immediately)
{
    if (!model)
        return;
    if (immediately)
        model->commitToDatabase();
    else
        model->commit();
}

void BkCalendarItem::rollback()
{
    // Only a booking in a model has rollback values that mean anything; without one, leave it be.
    if (!model)
        return;
    mStart = mSavedStart;
    mEnd = mSavedEnd;
    if (mDate != mSavedDate)
        setDate(mSavedDate, false);
    if (mResourceId != mSavedResourceId)
        setResourceId(mSavedResourceId, false);
    if (mUserId != mSavedUserId)
        setUserId(mSavedUserId, false);
    if (model)
        model->itemValid(this);
}

void BkCalendarItem::updated()
{
    if (widget)
        widget->updated();
}

void BkCalendarItem::setToolTipsEnabled(bool enabled)
{
    if (widget)
        widget->setToolTip(enabled ? mToolTip : QString());
}
