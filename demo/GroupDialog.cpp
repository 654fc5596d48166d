#include "GroupDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const int IdRole = Qt::UserRole;
const int TypeRole = Qt::UserRole + 1;
} // namespace

GroupDialog::GroupDialog(const QList<BkCalendarResource>& everybody, const QList<BkCalendarResource>& group,
                         QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Group"));
    setObjectName(QStringLiteral("GroupDialog"));
    mList = new QListWidget(this);
    mList->setObjectName(QStringLiteral("members"));

    // The members first, in their order, then everybody else.
    QList<BkCalendarResource> order;
    for (const BkCalendarResource& member : group)
        if (!member.id.isNull() && everybody.contains(member))
            order << member;
    for (const BkCalendarResource& candidate : everybody)
        if (!order.contains(candidate))
            order << candidate;
    for (const BkCalendarResource& entry : order) {
        const QString kind = entry.type == 0 ? tr("person") : tr("resource");
        auto* row = new QListWidgetItem(QStringLiteral("%1 (%2)").arg(entry.name, kind), mList);
        row->setData(IdRole, entry.id);
        row->setData(TypeRole, entry.type);
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(group.contains(entry) ? Qt::Checked : Qt::Unchecked);
    }

    auto* up = new QPushButton(tr("Up"), this);
    auto* down = new QPushButton(tr("Down"), this);
    connect(up, &QPushButton::clicked, this, [this]() { move(-1); });
    connect(down, &QPushButton::clicked, this, [this]() { move(1); });
    auto* side = new QVBoxLayout;
    side->addWidget(up);
    side->addWidget(down);
    side->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(mList);
    top->addLayout(side);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    resize(360, 420);
}

void GroupDialog::move(int step)
{
    const int row = mList->currentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= mList->count())
        return;
    QListWidgetItem* item = mList->takeItem(row);
    mList->insertItem(target, item);
    mList->setCurrentRow(target);
}

QList<BkCalendarResource> GroupDialog::group() const
{
    QList<BkCalendarResource> members;
    for (int i = 0; i < mList->count(); ++i) {
        const QListWidgetItem* row = mList->item(i);
        if (row->checkState() != Qt::Checked)
            continue;
        QString name = row->text();
        name.truncate(name.lastIndexOf(QLatin1String(" (")));
        members << BkCalendarResource(row->data(IdRole), name, row->data(TypeRole).toInt());
    }
    return members;
}
