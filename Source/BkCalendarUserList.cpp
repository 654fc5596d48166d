#include "BkCalendarUserList.h"

#include "ui_BkCalendarUserList.h"

#include <FwEnums.h>
#include <FwTreeWidget.h>
#include <FwTreeWidgetItem.h>
#include <SQLDatabase.h>
#include <SQLQuery.h>

#include <QFont>

namespace {
const char* const SourceName = "Source/BkCalendarUserList";

// A heading row: no id, no type, only text in the second column, and not selectable.
void addHeading(FwTreeWidget* tree, const QString& text)
{
    auto* row = new FwTreeWidgetItem(tree);
    row->setData(1, Qt::DisplayRole, text);
    const QVariant current = row->data(1, Qt::FontRole);
    QFont font = current.userType() == QMetaType::QFont ? current.value<QFont>() : QFont();
    font.setWeight(75);
    font.setStyle(QFont::StyleItalic);
    row->setData(1, Qt::FontRole, font);
    row->setData(0, HeadingFlagsRole, int(Qt::ItemIsEnabled));
}
} // namespace

BkCalendarUserList::BkCalendarUserList(QWidget* parent)
    : FwDialog(parent, Qt::WindowFlags(), true, false)
    , mResource(QVariant(), QString(), 0)
    , mUi(new Ui::BkCalendarUserList)
{
    mUi->setupUi(this);
    init();
    connect(mUi->pbOk, &QAbstractButton::clicked, this, &BkCalendarUserList::okPressed);
    connect(mUi->pbClear, &QAbstractButton::clicked, this, &BkCalendarUserList::clearPressed);
    connect(mUi->pbCancel, &QAbstractButton::clicked, this, &QDialog::reject);
    // A double click or Return on a row chooses it as Ok does.
    connect(mUi->tvList, &FwTreeWidget::itemActivated, this, &BkCalendarUserList::okPressed);
}

BkCalendarUserList::~BkCalendarUserList()
{
    delete mUi;
}

void BkCalendarUserList::init()
{
    SQLQuery users{QString(), SQLDatabase()};
    SQLQuery resources{QString(), SQLDatabase()};
    users.prepare(QStringLiteral("SELECT id,usr_initials,usr_name FROM view_user ORDER BY usr_initials"),
                  true);
    resources.prepare(QStringLiteral("SELECT id,fw_text FROM tbl_resource ORDER BY fw_text"), true);

    FwTreeWidget* tree = mUi->tvList;
    // A failed query leaves its part of the list out, heading and all; the other part still comes.
    if (!users.exec()) {
        users.debugLastError(QLatin1String(SourceName), 35);
    } else {
        addHeading(tree, tr("Users"));
        while (users.next()) {
            // A row without an id names nobody: chosen, it would read as a cleared choice.
            if (users.value(0).isNull())
                continue;
            auto* row = new FwTreeWidgetItem(tree);
            row->setData(0, IdRole, users.value(0));
            row->setData(0, TypeRole, 0);
            row->setData(0, Qt::DisplayRole, users.value(1).toString());
            row->setData(1, Qt::DisplayRole, users.value(2).toString());
        }
    }

    if (!resources.exec()) {
        resources.debugLastError(QLatin1String(SourceName), 59);
        return;
    }
    addHeading(tree, tr("Resources"));
    while (resources.next()) {
        if (resources.value(0).isNull())
            continue;
        auto* row = new FwTreeWidgetItem(tree);
        row->setData(0, IdRole, resources.value(0));
        row->setData(0, TypeRole, 1);
        row->setData(1, Qt::DisplayRole, resources.value(1).toString());
    }
}

void BkCalendarUserList::setResource(const BkCalendarResource& resource)
{
    FwTreeWidget* tree = mUi->tvList;
    tree->clearSelection();
    if (resource.id.isNull())
        return;
    const QVariant type(int(resource.type));
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        FwTreeWidgetItem* row = tree->topLevelItem(i);
        if (!row)
            continue;
        // Users and resources number their ids apart: the type tells them apart.
        if (row->data(0, IdRole) == resource.id && row->data(0, TypeRole) == type) {
            tree->setItemSelected(row, true);
            return;
        }
    }
}

BkCalendarResource BkCalendarUserList::resource() const
{
    return mResource;
}

QString BkCalendarUserList::name() const
{
    return mResource.name;
}

void BkCalendarUserList::okPressed()
{
    const QList<FwTreeWidgetItem*> selected = mUi->tvList->selectedItems();
    if (selected.size() != 1)
        return;
    const FwTreeWidgetItem* row = selected.first();
    mResource.id = row->data(0, IdRole);
    mResource.name = row->data(1, Qt::DisplayRole).toString();
    mResource.type = row->data(0, TypeRole).toInt();
    mId = row->data(0, IdRole);
    accept();
}

void BkCalendarUserList::clearPressed()
{
    mId = QVariant();
    accept();
}
