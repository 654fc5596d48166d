#ifndef FWTREEWIDGET_H
#define FWTREEWIDGET_H

#include "FwTreeWidgetItem.h"
#include "FwWidgetsGlobal.h"

#include <QDropEvent>
#include <QTreeWidget>
#include <QVector>

// A list of rows (FwTreeWidgetItem) with headers and column sizes given as comma-separated text,
// and a simple drag and drop protocol: the owner starts drags (dragStarted) and takes drops
// (dataDropped) itself.
class FWWIDGETS_EXPORT FwTreeWidget : public QTreeWidget
{
    Q_OBJECT
    Q_PROPERTY(QString headers READ headers WRITE setHeaders)
    Q_PROPERTY(QString headerSizes READ headerSizes WRITE setHeaderSizes)
    // Set from the generated set-up code of the dialogs that hold the tree.
    Q_PROPERTY(QString sql READ sql WRITE setSql)
    Q_PROPERTY(QString orderBy READ orderBy WRITE setOrderBy)

public:
    explicit FwTreeWidget(QWidget* parent = nullptr);
    ~FwTreeWidget() override;

    // The drag format of rows that leave this tree.
    static QString dragFormat();

    // Column titles, e.g. "Start,End,Title"; the number of titles is the number of columns.
    QString headers() const { return mHeaders; }
    void setHeaders(const QString& headers);
    // Column widths, plain pixels or percentages of the room the pixel columns leave, e.g.
    // "50,50,100%". Entries that are neither are left to the header.
    QString headerSizes() const { return mHeaderSizes; }
    void setHeaderSizes(const QString& sizes);

    // The statement and order column of the list, kept for the owner that fills it.
    QString sql() const { return mSql; }
    void setSql(const QString& sql);
    QString orderBy() const { return mOrderBy; }
    void setOrderBy(const QString& column);

    bool acceptDrag() const { return mAcceptDrag; }
    void setAcceptDrag(bool accept);
    bool acceptDrops() const { return mAcceptDrops; }
    void setAcceptDrops(bool accept);

    FwTreeWidgetItem* topLevelItem(int index) const;
    FwTreeWidgetItem* currentItem() const;
    QList<FwTreeWidgetItem*> selectedItems() const;
    void setItemSelected(const FwTreeWidgetItem* item, bool select);
    // The row of an index of this tree's model; null for other indexes.
    FwTreeWidgetItem* item(const QModelIndex& index) const;
    // The row under a point of the viewport, or null.
    FwTreeWidgetItem* itemAt(const QPoint& point) const;
    FwTreeWidgetItem* itemAt(int x, int y) const { return itemAt(QPoint(x, y)); }

signals:
    void dataDropped(QDropEvent* event);
    // A drag begins at `pos` (viewport coordinates of the press); the owner makes the QDrag.
    void dragStarted(const QString& format, const QPoint& pos);
    void itemActivated(FwTreeWidgetItem* item, int column);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct ColumnSize
    {
        int value = 0;
        bool percent = false;
        bool valid = false;
    };

    void applyHeaderSizes(bool pixelColumns);

    QString mHeaders;
    QString mHeaderSizes;
    QVector<ColumnSize> mSizes;
    QString mSql;
    QString mOrderBy;
    bool mAcceptDrag = false;
    bool mAcceptDrops = false;
    bool mDragPending = false;
    QPoint mPressPos;
};

// Drops travel in dataDropped; declared here once so that spies and queued connections know the type.
Q_DECLARE_METATYPE(QDropEvent*)

#endif // FWTREEWIDGET_H
