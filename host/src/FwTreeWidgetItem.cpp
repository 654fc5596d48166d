#include "FwTreeWidgetItem.h"

#include "FwTreeWidget.h"

FwTreeWidgetItem::FwTreeWidgetItem()
    : QTreeWidgetItem(Type)
{
}

FwTreeWidgetItem::FwTreeWidgetItem(FwTreeWidget* tree)
    : QTreeWidgetItem(tree, Type)
{
}

FwTreeWidgetItem::FwTreeWidgetItem(FwTreeWidgetItem* parent)
    : QTreeWidgetItem(parent, Type)
{
}

FwTreeWidgetItem::~FwTreeWidgetItem() = default;

void FwTreeWidgetItem::setData(int column, int role, const QVariant& value)
{
    if (role != HeadingFlagsRole) {
        QTreeWidgetItem::setData(column, role, value);
        return;
    }
    // The flags belong to the row, not to a column; they are kept in column 0 whatever column
    // the caller names, so that one call marks the whole row.
    bool ok = false;
    const int flags = value.toInt(&ok);
    const bool heading = value.isValid() && ok;
    QTreeWidgetItem::setData(0, HeadingFlagsRole, heading ? QVariant(flags) : QVariant());
    if (heading) {
        if (!mHeading)
            mOwnFlags = QTreeWidgetItem::flags();
        mHeading = true;
        setFlags(Qt::ItemFlags(flags));
        if (!(flags & Qt::ItemIsSelectable) && isSelected())
            setSelected(false);
    } else if (mHeading) {
        mHeading = false;
        setFlags(mOwnFlags);
    }
}

QVariant FwTreeWidgetItem::data(int column, int role) const
{
    if (role == HeadingFlagsRole)
        return QTreeWidgetItem::data(0, role);
    return QTreeWidgetItem::data(column, role);
}

QTreeWidgetItem* FwTreeWidgetItem::clone() const
{
    auto* copy = new FwTreeWidgetItem;
    *static_cast<QTreeWidgetItem*>(copy) = *this;
    copy->mHeading = mHeading;
    copy->mOwnFlags = mOwnFlags;
    for (int i = 0; i < childCount(); ++i)
        copy->addChild(child(i)->clone());
    return copy;
}

FwTreeWidget* FwTreeWidgetItem::fwTreeWidget() const
{
    return qobject_cast<FwTreeWidget*>(treeWidget());
}
