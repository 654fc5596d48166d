#ifndef BKCALENDARITEM_H
#define BKCALENDARITEM_H

#include "BkCalendarRecords.h"
#include "FwCalendarGlobal.h"

#include <QColor>
#include <QDate>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QTime>
#include <QVariant>

#include <memory>

class BkCalendarItemWidget;
class BkCalendarModel;

// One booking. The host creates it, fills it and hands it to BkCalendarModel::addItem, which owns it
// from then on. Every setter that matters tells the model (unless the item is blocked), so the views
// repaint and the item waits on the model's unsaved list for the next save.
class FWCALENDAR_EXPORT BkCalendarItem
{
public:
    // Stored as an int: a host may hand over any kind, and all but these three behave alike.
    enum ItemType : int
    {
        Meeting = 1,
        Reserved = 6,
        TextOnly = 7
    };

    enum ItemFlag
    {
        FlagPhone = 1,
        FlagMail = 2
    };

    BkCalendarItem();
    ~BkCalendarItem();

    BkCalendarItem(const BkCalendarItem&) = delete;
    BkCalendarItem& operator=(const BkCalendarItem&) = delete;

    // Read and written directly by the host and the views.
    QColor leftColor;
    QColor rightColor;
    QColor topColor;
    QColor bottomColor;
    QVariant id;
    QVariant statusId;
    QVariant workPlaceId;
    int locked = 0;
    BkCalendarItemWidget* widget = nullptr; // not owned; the widget sets and clears it
    BkCalendarModel* model = nullptr;       // not owned; only the model writes it

    ItemType type() const { return mType; }
    int flags() const { return mItemFlags; }
    QString title() const { return mTitle; }
    QString toolTip() const { return mToolTip; }
    QString text() const { return mText; }
    QString plainText() const;
    QVariant resourceId() const;
    QVariant userId() const;
    QDate date() const { return mDate; }
    QTime start() const { return mStart; }
    QTime end() const { return mEnd; }
    bool isBlocked() const { return mBlocked; }

    // The values a rollback returns to.
    QTime savedStart() const;
    QTime savedEnd() const;
    QVariant savedResourceId() const;
    QVariant savedUserId() const;
    QDate savedDate() const;

    void setLocked(int locked);
    void setWorkPlaceId(const QVariant& id);
    void setBlocked(bool blocked);

    void setTitle(const QString& title);
    void setText(const QString& text);
    void setItemFlags(int flags);
    void setType(ItemType type);
    void setStart(const QTime& start);
    void setEnd(const QTime& end);
    void setToolTip(const QString& toolTip);
    void setStatusId(const QVariant& id);
    void setTime(const QTime& start, const QTime& end);

    void setDate(const QDate& date, bool silent = false);
    void setUserId(const QVariant& id, bool silent = false);
    void setResourceId(const QVariant& id, bool silent = false);
    void setKeys(const QDate& date, const BkCalendarResource& resource);
    void setKeys(const QDate& date, const QVariant& userId, const QVariant& resourceId);

    bool isLike(const BkCalendarResource& resource) const;

    void invalidate(bool addToList);
    void commit(bool immediately);
    void rollback();
    void updated();
    void setToolTipsEnabled(bool enabled);

private:
    // A user or resource id in eight bytes: null, an int or a long long (the usual database keys) are
    // held inline, any other value on the heap. It gives back exactly the QVariant it was given.
    class CompactId
    {
    public:
        CompactId() = default;
        ~CompactId();
        CompactId(const CompactId&) = delete;
        CompactId& operator=(const CompactId&) = delete;

        QVariant value() const;
        void set(const QVariant& value);
        // True only where value() would give the same type and value: inline ids compare directly, and
        // a value on the heap never counts as the same.
        bool isSameAs(const QVariant& value) const;

    private:
        enum Tag : quintptr
        {
            Heap = 0, // a QVariant* (or 0 for a null id)
            Int = 1,
            LongLong = 2,
            TagMask = 3
        };
        static bool packInline(const QVariant& value, quintptr* bits);
        quintptr mBits = 0;
    };

    // The rollback values, held apart only while one of them differs from the present value: a clean
    // booking, the most common kind, has none.
    struct SavedValues
    {
        QTime start;
        QTime end;
        QDate date;
        QVariant userId;
        QVariant resourceId;
    };

    void notify();
    SavedValues& savedValues();
    void dropSavedIfSame();
    enum class Key
    {
        Date,
        User,
        Resource
    };
    void changeKey(Key key, const QVariant& value, const QDate& date, bool silent);
    void writeKey(Key key, const QVariant& value, const QDate& date);

    QString mTitle;
    QString mText;
    QString mToolTip;
    QDate mDate;
    CompactId mUserId;
    CompactId mResourceId;
    // The host always sets the type; 0 has no special behaviour, so it is a harmless start.
    ItemType mType = ItemType(0);
    int mItemFlags = 0;
    QTime mStart;
    QTime mEnd;
    std::unique_ptr<SavedValues> mSaved;

    // The model's bookkeeping: where the booking stands in the model's list of all bookings, and how
    // often it stands there, so that taking it out costs the same whatever the size of the store. The
    // count sticks at its top, which only means a walk.
    friend class BkCalendarModel;
    int mStorePosition = -1;
    quint16 mStoreCount = 0;
    bool mBlocked = false;
};

Q_DECLARE_METATYPE(BkCalendarItem*)

#endif // BKCALENDARITEM_H
