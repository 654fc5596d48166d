#include "BkCalendarList.h"

#include "BkCalendarClock.h"
#include "BkCalendarItem.h"
#include "BkCalendarListDelegate.h"
#include "BkCalendarModel.h"

BkCalendarList::BkCalendarList(QWidget* parent)
    : QListWidget(parent)
    , mRows()
    , mDate(BkCalendarClock::currentDate())
    , mResource()
    , mModel(nullptr)
    , mColorScheme()
{
    setSortingEnabled(true);
    sortItems(Qt::AscendingOrder);
    // Not owned by the list, as the form has always done it; it lives as long as the process.
    setItemDelegate(new BkCalendarListDelegate(nullptr));
    // Whoever holds the list may delete, take or clear rows through the widget itself. The list
    // forgets such a row before it goes, so that a later signal of its booking neither touches nor
    // deletes it.
    connect(model(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) {
                for (int i = first; i <= last; ++i)
                    forgetRow(item(i));
            });
    connect(model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { mRows.clear(); });
}

BkCalendarList::~BkCalendarList()
{
    // The widget's rows outlive this part of the list; their removal has nothing to tell it.
    disconnect(model(), nullptr, this, nullptr);
}

void BkCalendarList::setDate(QDate date)
{
    mDate = date;
    update();
}

void BkCalendarList::setResource(BkCalendarResource resource)
{
    mResource.id = resource.id;
    mResource.name = resource.name;
    mResource.type = resource.type;
    update();
}

void BkCalendarList::updateModel()
{
    connect(mModel, &BkCalendarModel::itemChanged, this, &BkCalendarList::itemChanged);
    connect(mModel, &BkCalendarModel::itemRemoved, this, &BkCalendarList::itemRemoved);
    connect(mModel, &BkCalendarModel::itemAdded, this, &BkCalendarList::itemAdded);
    // A clear deletes the bookings without a removal each; their rows stay with what they copied, but
    // the list forgets whose they were, so that a new booking at a freed address gets a row of its
    // own instead of taking an old one for its own.
    connect(mModel, &BkCalendarModel::reset, this, [this] { mRows.clear(); });
    update();
}

void BkCalendarList::update()
{
    // Without a model or a key there is nothing to show, and the last day shown stays.
    if (!mModel || mResource.id.isNull() || mResource.id.toInt() == -1)
        return;
    mRows.clear();
    clear();
    // Reading may make the host load the day at once: those bookings come through itemAdded while
    // items() runs, and have their row already. The date and key go by reference on purpose: a host
    // that sends the list elsewhere in its answer has the store read for where the list is now.
    const QList<BkCalendarItem*> items = mModel->items(mDate, mResource);
    for (BkCalendarItem* item : items)
        if (!mRows.contains(item))
            addRow(item);
}

void BkCalendarList::fillRow(QListWidgetItem* row, BkCalendarItem* item)
{
    row->setData(ItemRole, qulonglong(quintptr(item)));
    row->setData(TitleRole, item->title());
    row->setData(TextRole, item->text());
    row->setData(StartRole, item->start());
    row->setData(EndRole, item->end());
    row->setData(LeftColorRole, item->leftColor);
    row->setData(RightColorRole, item->rightColor);
    row->setData(TopColorRole, item->topColor);
    row->setData(BottomColorRole, item->bottomColor);
    row->setData(TypeRole, int(item->type()));
    row->setData(ListRole, qulonglong(quintptr(this)));
    // The sort key, written last. In "HHMMSS" only HH is a time expression: the rows are ordered by
    // the hour alone, and within the hour as the widget's sorting leaves them. Hosts know the list so.
    row->setData(Qt::DisplayRole, item->start().toString(QStringLiteral("HHMMSS")));
}

void BkCalendarList::addRow(BkCalendarItem* item)
{
    auto* row = new QListWidgetItem(this, 0);
    fillRow(row, item);
    mRows.insert(item, row);
}

void BkCalendarList::dropRow(BkCalendarItem* item)
{
    if (QListWidgetItem* row = mRows.take(item))
        delete row;
}

void BkCalendarList::forgetRow(QListWidgetItem* row)
{
    if (!row)
        return;
    // The key is only looked up, never followed: its booking may be gone.
    auto* item = reinterpret_cast<BkCalendarItem*>(quintptr(row->data(ItemRole).toULongLong()));
    const auto found = mRows.constFind(item);
    if (found != mRows.constEnd() && found.value() == row)
        mRows.remove(item);
}

void BkCalendarList::itemAdded(BkCalendarItem* item)
{
    // The date alone decides here; whether the booking is of the shown key is a question for
    // itemChanged, which takes a stranger's row away again. A booking that the host took out of the
    // model in its own answer to this notice is no longer there to show.
    if (!item || item->model != mModel || item->date() != mDate || mRows.contains(item))
        return;
    addRow(item);
}

void BkCalendarList::itemChanged(BkCalendarItem* item)
{
    if (!item)
        return;
    if (item->date() != mDate || !item->isLike(mResource)) {
        dropRow(item);
        return;
    }
    // A change alone never makes a row.
    if (QListWidgetItem* row = mRows.value(item))
        fillRow(row, item);
}

void BkCalendarList::itemRemoved(BkCalendarItem* item)
{
    dropRow(item);
}
