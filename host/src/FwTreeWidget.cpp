#include "FwTreeWidget.h"

#include <QApplication>
#include <QDropEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScrollBar>

FwTreeWidget::FwTreeWidget(QWidget* parent)
    : QTreeWidget(parent)
{
    qRegisterMetaType<FwTreeWidgetItem*>();
    qRegisterMetaType<QDropEvent*>();
    setRootIsDecorated(false);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    // Drags and drops are the owner's: the view's own row moving stays off.
    setDragEnabled(false);
    setDragDropMode(QAbstractItemView::NoDragDrop);
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* row, int column) {
        // A heading is no choice: activating it does nothing.
        auto fwRow = dynamic_cast<FwTreeWidgetItem*>(row);
        if (fwRow && (fwRow->flags() & Qt::ItemIsSelectable))
            emit itemActivated(fwRow, column);
    });
}

FwTreeWidget::~FwTreeWidget() = default;

QString FwTreeWidget::dragFormat()
{
    return QStringLiteral("application/x-fwtreewidget");
}

void FwTreeWidget::setHeaders(const QString& headers)
{
    mHeaders = headers;
    QStringList labels = headers.split(QLatin1Char(','));
    for (QString& label : labels)
        label = label.trimmed();
    setColumnCount(labels.size());
    setHeaderLabels(labels);
    applyHeaderSizes(true);
}

void FwTreeWidget::setHeaderSizes(const QString& sizes)
{
    mHeaderSizes = sizes;
    mSizes.clear();
    const QStringList entries = sizes.split(QLatin1Char(','));
    for (const QString& entry : entries) {
        ColumnSize size;
        QString text = entry.trimmed();
        if (text.endsWith(QLatin1Char('%'))) {
            size.percent = true;
            text.chop(1);
        }
        bool ok = false;
        size.value = text.trimmed().toInt(&ok);
        size.valid = ok && size.value > 0;
        mSizes.append(size);
    }
    applyHeaderSizes(true);
}

void FwTreeWidget::applyHeaderSizes(bool pixelColumns)
{
    QHeaderView* head = header();
    bool anyPercent = false;
    int totalPercent = 0;
    for (int column = 0; column < mSizes.size() && column < columnCount(); ++column) {
        if (mSizes.at(column).valid && mSizes.at(column).percent) {
            anyPercent = true;
            totalPercent += mSizes.at(column).value;
        }
    }
    // Percentage columns share what the other columns leave; the header must not stretch on top.
    head->setStretchLastSection(!anyPercent);
    int fixedWidth = 0;
    for (int column = 0; column < columnCount(); ++column) {
        const ColumnSize size = column < mSizes.size() ? mSizes.at(column) : ColumnSize();
        if (size.valid && size.percent)
            continue;
        // Pixel columns are set once, so that a width the user drags stays on later resizes.
        if (size.valid && pixelColumns)
            head->resizeSection(column, size.value);
        fixedWidth += head->sectionSize(column);
    }
    if (!anyPercent)
        return;
    const int room = qMax(0, viewport()->width() - fixedWidth);
    const int scale = qMax(100, totalPercent);
    for (int column = 0; column < mSizes.size() && column < columnCount(); ++column) {
        const ColumnSize size = mSizes.at(column);
        if (size.valid && size.percent)
            head->resizeSection(column, qMax(head->minimumSectionSize(), room * size.value / scale));
    }
}

void FwTreeWidget::setSql(const QString& sql)
{
    mSql = sql;
}

void FwTreeWidget::setOrderBy(const QString& column)
{
    mOrderBy = column;
}

void FwTreeWidget::setAcceptDrag(bool accept)
{
    mAcceptDrag = accept;
    mDragPending = false;
}

void FwTreeWidget::setAcceptDrops(bool accept)
{
    mAcceptDrops = accept;
    QTreeWidget::setAcceptDrops(accept);
    viewport()->setAcceptDrops(accept);
}

FwTreeWidgetItem* FwTreeWidget::topLevelItem(int index) const
{
    return dynamic_cast<FwTreeWidgetItem*>(QTreeWidget::topLevelItem(index));
}

FwTreeWidgetItem* FwTreeWidget::currentItem() const
{
    return dynamic_cast<FwTreeWidgetItem*>(QTreeWidget::currentItem());
}

QList<FwTreeWidgetItem*> FwTreeWidget::selectedItems() const
{
    QList<FwTreeWidgetItem*> rows;
    const QList<QTreeWidgetItem*> selected = QTreeWidget::selectedItems();
    for (QTreeWidgetItem* row : selected) {
        if (auto fwRow = dynamic_cast<FwTreeWidgetItem*>(row))
            rows.append(fwRow);
    }
    return rows;
}

void FwTreeWidget::setItemSelected(const FwTreeWidgetItem* item, bool select)
{
    if (!item || item->treeWidget() != this)
        return;
    // A row that can't be selected stays so, also when the program asks.
    if (select && !(item->flags() & Qt::ItemIsSelectable))
        return;
    const_cast<FwTreeWidgetItem*>(item)->setSelected(select);
}

FwTreeWidgetItem* FwTreeWidget::item(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != model())
        return nullptr;
    return dynamic_cast<FwTreeWidgetItem*>(itemFromIndex(index));
}

FwTreeWidgetItem* FwTreeWidget::itemAt(const QPoint& point) const
{
    return dynamic_cast<FwTreeWidgetItem*>(QTreeWidget::itemAt(point));
}

void FwTreeWidget::mousePressEvent(QMouseEvent* event)
{
    mDragPending = mAcceptDrag && event->button() == Qt::LeftButton && itemAt(event->pos());
    mPressPos = event->pos();
    QTreeWidget::mousePressEvent(event);
}

void FwTreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (mDragPending && (event->buttons() & Qt::LeftButton) &&
        (event->pos() - mPressPos).manhattanLength() >= QApplication::startDragDistance()) {
        // One drag per press; the owner runs it, usually in a nested loop of QDrag::exec.
        mDragPending = false;
        emit dragStarted(dragFormat(), mPressPos);
        return;
    }
    if (mDragPending)
        return; // no rubber band or selection sweep while a drag may still start
    QTreeWidget::mouseMoveEvent(event);
}

void FwTreeWidget::mouseReleaseEvent(QMouseEvent* event)
{
    mDragPending = false;
    QTreeWidget::mouseReleaseEvent(event);
}

void FwTreeWidget::dragEnterEvent(QDragEnterEvent* event)
{
    // Which payloads count is for the owner to say at the drop.
    if (mAcceptDrops)
        event->acceptProposedAction();
    else
        event->ignore();
}

void FwTreeWidget::dragMoveEvent(QDragMoveEvent* event)
{
    if (mAcceptDrops)
        event->acceptProposedAction();
    else
        event->ignore();
}

void FwTreeWidget::dropEvent(QDropEvent* event)
{
    if (!mAcceptDrops) {
        event->ignore();
        return;
    }
    emit dataDropped(event);
}

void FwTreeWidget::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    applyHeaderSizes(false);
}
