#include "BkCalendarItem.h"

#include "BkBookingWatch.h"
#include "BkCalendarItemWidget.h"
#include "BkCalendarModel.h"

#include <QTextDocument>

BkCalendarItem::CompactId::~CompactId()
{
    if ((mBits & TagMask) == Heap)
        delete reinterpret_cast<QVariant*>(mBits);
}

bool BkCalendarItem::CompactId::packInline(const QVariant& value, quintptr* bits)
{
    // Only a plain null id: QVariant(QVariant::Int) is null too but keeps its type, so it goes on the
    // heap. Two bits go to the tag, so a number needs a 64-bit word, and a long long its top bits free.
    if (value.userType() == QMetaType::UnknownType) {
        *bits = 0;
        return true;
    }
    if (sizeof(quintptr) < 8 || value.isNull())
        return false;
    if (value.userType() == QMetaType::Int) {
        *bits = (quintptr(quint32(value.toInt())) << 2) | Int;
        return true;
    }
    if (value.userType() == QMetaType::LongLong) {
        const qint64 number = value.toLongLong();
        const qint64 limit = qint64(1) << 61;
        if (number >= -limit && number < limit) {
            *bits = (quintptr(number) << 2) | LongLong;
            return true;
        }
    }
    return false;
}

QVariant BkCalendarItem::CompactId::value() const
{
    switch (mBits & TagMask) {
    case Int:
        return int(quint32(mBits >> 2));
    case LongLong:
        return qlonglong(qint64(mBits) >> 2);
    default:
        return mBits ? *reinterpret_cast<const QVariant*>(mBits) : QVariant();
    }
}

void BkCalendarItem::CompactId::set(const QVariant& value)
{
    quintptr bits = 0;
    if (!packInline(value, &bits))
        bits = reinterpret_cast<quintptr>(new QVariant(value));
    if ((mBits & TagMask) == Heap)
        delete reinterpret_cast<QVariant*>(mBits);
    mBits = bits;
}

bool BkCalendarItem::CompactId::isSameAs(const QVariant& value) const
{
    quintptr bits = 0;
    if (((mBits & TagMask) == Heap && mBits) || !packInline(value, &bits))
        return false;
    return bits == mBits;
}

BkCalendarItem::BkCalendarItem() = default;

BkCalendarItem::~BkCalendarItem()
{
    // The widget survives its booking with no booking; it is neither deleted nor unfiled here.
    if (widget)
        widget->setItem(nullptr);
    BkCalendarItemWidget::releaseOtherBoxes(this);
    BkBookingWatch::gone(this);
}

QVariant BkCalendarItem::resourceId() const
{
    return mResourceId.value();
}

QVariant BkCalendarItem::userId() const
{
    return mUserId.value();
}

QTime BkCalendarItem::savedStart() const
{
    return mSaved ? mSaved->start : mStart;
}

QTime BkCalendarItem::savedEnd() const
{
    return mSaved ? mSaved->end : mEnd;
}

QVariant BkCalendarItem::savedResourceId() const
{
    return mSaved ? mSaved->resourceId : mResourceId.value();
}

QVariant BkCalendarItem::savedUserId() const
{
    return mSaved ? mSaved->userId : mUserId.value();
}

QDate BkCalendarItem::savedDate() const
{
    return mSaved ? mSaved->date : mDate;
}

BkCalendarItem::SavedValues& BkCalendarItem::savedValues()
{
    // Without a record of their own the rollback values are the present ones.
    if (!mSaved)
        mSaved.reset(new SavedValues{mStart, mEnd, mDate, mUserId.value(), mResourceId.value()});
    return *mSaved;
}

void BkCalendarItem::dropSavedIfSame()
{
    if (mSaved && mSaved->start == mStart && mSaved->end == mEnd && mSaved->date == mDate &&
        mUserId.isSameAs(mSaved->userId) && mResourceId.isSameAs(mSaved->resourceId)) {
        mSaved.reset();
    }
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

// The rollback values stay as they are.
void BkCalendarItem::setStart(const QTime& start)
{
    if (start != mStart) {
        savedValues();
        mStart = start;
        dropSavedIfSame();
    }
    notify();
}

void BkCalendarItem::setEnd(const QTime& end)
{
    if (end != mEnd) {
        savedValues();
        mEnd = end;
        dropSavedIfSame();
    }
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
    // QVariant equality converts its right-hand side: the new value is asked, as in the key setters.
    if (id == statusId)
        return;
    statusId = id;
    notify();
}

// The rollback values are taken from the new values while the booking is clean: the first change
// after a save becomes the baseline, and only later changes can be taken back.
void BkCalendarItem::setTime(const QTime& start, const QTime& end)
{
    if (!model || !model->isInvalid(this)) {
        if (mSaved) {
            mSaved->start = start;
            mSaved->end = end;
        }
    } else if (start != mStart || end != mEnd) {
        savedValues();
    }
    mStart = start;
    mEnd = end;
    dropSavedIfSame();
    notify();
}

void BkCalendarItem::writeKey(Key key, const QVariant& value, const QDate& date)
{
    switch (key) {
    case Key::Date:
        mDate = date;
        break;
    case Key::User:
        mUserId.set(value);
        break;
    case Key::Resource:
        mResourceId.set(value);
        break;
    }
}

// The model files bookings by date, user and resource: a change of one of them unfiles the booking
// under the old value and files it again under the new one, with the same pointer.
void BkCalendarItem::changeKey(Key key, const QVariant& value, const QDate& date, bool silent)
{
    // The rollback value keeps its own record while it differs from the present one: on the unsaved
    // list, and during a move that slots see, where it takes the new value before the booking does.
    const bool takesNewValue = !model || !model->isInvalid(this);
    if (!takesNewValue || mSaved || (model && !silent)) {
        SavedValues& saved = savedValues();
        if (takesNewValue) {
            if (key == Key::Date)
                saved.date = date;
            else if (key == Key::User)
                saved.userId = value;
            else
                saved.resourceId = value;
        }
    }
    if (!model) {
        writeKey(key, value, date);
    } else {
        BkCalendarModel* owner = model;
        if (silent)
            owner->blockSignals(true);
        // The removal and the filing are told, unless silent; an answer that deleted the booking
        // ends the move, and the booking is filed nowhere again.
        const BkBookingWatch watch(this);
        owner->removeItem(this);
        if (watch.lives()) {
            writeKey(key, value, date);
            owner->addItem(this);
        }
        if (silent)
            owner->blockSignals(false);
        if (!watch.lives())
            return;
    }
    dropSavedIfSame();
    notify();
}

void BkCalendarItem::setDate(const QDate& date, bool silent)
{
    if (date != mDate)
        changeKey(Key::Date, QVariant(), date, silent);
}

void BkCalendarItem::setUserId(const QVariant& id, bool silent)
{
    if (id != mUserId.value())
        changeKey(Key::User, id, QDate(), silent);
}

void BkCalendarItem::setResourceId(const QVariant& id, bool silent)
{
    if (id != mResourceId.value())
        changeKey(Key::Resource, id, QDate(), silent);
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
    if (date == mDate && resourceId == mResourceId.value() && userId == mUserId.value())
        return;
    // Without a model the rollback values stay as they are; so they do on the unsaved list. The move
    // is silent, so nothing sees the rollback values before the booking has its new ones.
    if (!model || model->isInvalid(this) || mSaved) {
        SavedValues& saved = savedValues();
        if (model && !model->isInvalid(this)) {
            saved.date = date;
            saved.resourceId = resourceId;
            saved.userId = userId;
        }
    }
    if (!model) {
        mDate = date;
        mUserId.set(userId);
        mResourceId.set(resourceId);
    } else {
        BkCalendarModel* owner = model;
        // Always a silent move: the caller moves the widget on the screen.
        owner->blockSignals(true);
        owner->removeItem(this);
        mDate = date;
        mUserId.set(userId);
        mResourceId.set(resourceId);
        owner->addItem(this);
        owner->blockSignals(false);
    }
    dropSavedIfSame();
    notify();
}

bool BkCalendarItem::isLike(const BkCalendarResource& resource) const
{
    if (resource.id.isNull())
        return false;
    if (resource.type == 0 && resource.id == mUserId.value())
        return true;
    if (resource.type == 1)
        return resource.id == mResourceId.value();
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
    if (mSaved) {
        mStart = mSaved->start;
        mEnd = mSaved->end;
        dropSavedIfSame();
    }
    // Each step reads the rollback values anew: a slot of the signals of a move may have changed them,
    // or deleted the booking, which ends the rollback.
    const BkBookingWatch watch(this);
    if (mDate != savedDate())
        setDate(savedDate(), false);
    if (!watch.lives())
        return;
    if (resourceId() != savedResourceId())
        setResourceId(savedResourceId(), false);
    if (!watch.lives())
        return;
    if (userId() != savedUserId())
        setUserId(savedUserId(), false);
    if (watch.lives() && model)
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
