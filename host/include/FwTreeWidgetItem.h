#ifndef FWTREEWIDGETITEM_H
#define FWTREEWIDGETITEM_H

#include "FwEnums.h"
#include "FwWidgetsGlobal.h"

#include <QMetaType>
#include <QTreeWidgetItem>

class FwTreeWidget;

// A row of an FwTreeWidget. Setting HeadingFlagsRole (in any column) gives the row those item
// flags instead of its own, e.g. Qt::ItemIsEnabled alone for a heading that can't be selected;
// clearing it gives the row's own flags back.
class FWWIDGETS_EXPORT FwTreeWidgetItem : public QTreeWidgetItem
{
public:
    enum
    {
        Type = QTreeWidgetItem::UserType + 1
    };

    FwTreeWidgetItem();
    // Appends a top-level row to `tree`.
    explicit FwTreeWidgetItem(FwTreeWidget* tree);
    explicit FwTreeWidgetItem(FwTreeWidgetItem* parent);
    ~FwTreeWidgetItem() override;

    void setData(int column, int role, const QVariant& value) override;
    QVariant data(int column, int role) const override;
    QTreeWidgetItem* clone() const override;

    FwTreeWidget* fwTreeWidget() const;

    // True while HeadingFlagsRole rules the row's flags.
    bool isHeading() const { return mHeading; }

private:
    bool mHeading = false;
    Qt::ItemFlags mOwnFlags;
};

// Rows travel in signals (itemActivated) and in QVariant.
Q_DECLARE_METATYPE(FwTreeWidgetItem*)

#endif // FWTREEWIDGETITEM_H
