// The framework's tree: headers and sizes from text, heading rows, lookups, drag and drop.
#include "FwTestApplication.h"

#include <FwTreeWidget.h>
#include <FwTreeWidgetItem.h>

#include <QHeaderView>
#include <QMimeData>
#include <QSignalSpy>

namespace {
FwTreeWidgetItem* addRow(FwTreeWidget* tree, int id, int type, const QString& text)
{
    auto* row = new FwTreeWidgetItem(tree);
    row->setData(0, IdRole, id);
    row->setData(0, TypeRole, type);
    row->setData(1, Qt::DisplayRole, text);
    return row;
}

FwTreeWidgetItem* addHeading(FwTreeWidget* tree, const QString& text)
{
    auto* row = new FwTreeWidgetItem(tree);
    row->setData(1, Qt::DisplayRole, text);
    row->setData(0, HeadingFlagsRole, 32);
    return row;
}

QPoint centerOf(FwTreeWidget* tree, QTreeWidgetItem* row)
{
    return tree->visualItemRect(row).center();
}

void sendMouse(QWidget* target, QEvent::Type type, const QPoint& pos, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, pos, target->mapToGlobal(pos),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

// A double click as the window system delivers it: press, release, double click, release.
void doubleClick(QWidget* target, const QPoint& pos)
{
    sendMouse(target, QEvent::MouseButtonPress, pos, Qt::LeftButton);
    sendMouse(target, QEvent::MouseButtonRelease, pos, Qt::NoButton);
    sendMouse(target, QEvent::MouseButtonDblClick, pos, Qt::LeftButton);
    sendMouse(target, QEvent::MouseButtonRelease, pos, Qt::NoButton);
}
} // namespace

class tst_FwTreeWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void shouldDeclareTheRoles();
    void shouldTakeHeadersFromText();
    void shouldSizeColumnsFromText();
    void shouldKeepSqlAndOrder();
    void shouldTakeSqlAndOrderAsProperties();
    void shouldNotSelectHeadingsByClick();
    void shouldNotSelectHeadingsByProgram();
    void shouldSelectOrdinaryRows();
    void shouldGiveTheRowsOwnFlagsBackWhenHeadingCleared();
    void shouldGiveRowsByIndexPointAndNumber();
    void shouldRemoveARowWhenItIsDeleted();
    void shouldEmitItemActivatedWithTheRow();
    void shouldNotActivateHeadings();
    void shouldEmitDragStartedWhenDragIsAccepted();
    void shouldNotEmitDragStartedForShortMovesOrWhenOff();
    void shouldEmitDataDroppedWhenDropsAreAccepted();
    void shouldIgnoreDropsWhenOff();

private:
    FwTreeWidget* mTree = nullptr;
};

void tst_FwTreeWidget::init()
{
    mTree = new FwTreeWidget;
    mTree->resize(400, 300);
    mTree->setHeaders(QStringLiteral("Ini,Name"));
    mTree->setHeaderSizes(QStringLiteral("100,100%"));
    mTree->show();
    QVERIFY(QTest::qWaitForWindowExposed(mTree));
}

void tst_FwTreeWidget::cleanup()
{
    delete mTree;
    mTree = nullptr;
}

void tst_FwTreeWidget::shouldDeclareTheRoles()
{
    QCOMPARE(int(IdRole), 256);
    QCOMPARE(int(IdRole), int(Qt::UserRole));
    QCOMPARE(int(TypeRole), 257);
    QCOMPARE(int(HeadingFlagsRole), 568);
    QCOMPARE(FwTreeWidget::dragFormat(), QStringLiteral("application/x-fwtreewidget"));
}

void tst_FwTreeWidget::shouldTakeHeadersFromText()
{
    mTree->setHeaders(QStringLiteral("Start,End,Title"));
    QCOMPARE(mTree->columnCount(), 3);
    QCOMPARE(mTree->headerItem()->text(0), QStringLiteral("Start"));
    QCOMPARE(mTree->headerItem()->text(1), QStringLiteral("End"));
    QCOMPARE(mTree->headerItem()->text(2), QStringLiteral("Title"));
    QCOMPARE(mTree->headers(), QStringLiteral("Start,End,Title"));
}

void tst_FwTreeWidget::shouldSizeColumnsFromText()
{
    mTree->setHeaders(QStringLiteral("Start,End,Title"));
    mTree->setHeaderSizes(QStringLiteral("50,50,100%"));
    QCOMPARE(mTree->header()->sectionSize(0), 50);
    QCOMPARE(mTree->header()->sectionSize(1), 50);
    const int room = mTree->viewport()->width();
    QCOMPARE(mTree->header()->sectionSize(2), room - 100);
    // The percentage column follows the width; the pixel columns stay.
    mTree->resize(600, 300);
    QTRY_COMPARE(mTree->header()->sectionSize(2), mTree->viewport()->width() - 100);
    QCOMPARE(mTree->header()->sectionSize(0), 50);
    // Two shares split the room; malformed entries are left alone.
    mTree->setHeaderSizes(QStringLiteral("x,50%,50%"));
    const int rest = mTree->viewport()->width() - mTree->header()->sectionSize(0);
    QVERIFY(qAbs(mTree->header()->sectionSize(1) - rest / 2) <= 1);
    QVERIFY(qAbs(mTree->header()->sectionSize(2) - rest / 2) <= 1);
}

void tst_FwTreeWidget::shouldKeepSqlAndOrder()
{
    mTree->setSql(QStringLiteral("SELECT id,usr_initials,usr_name FROM tbl_user"));
    mTree->setOrderBy(QStringLiteral("usr_initials"));
    QCOMPARE(mTree->sql(), QStringLiteral("SELECT id,usr_initials,usr_name FROM tbl_user"));
    QCOMPARE(mTree->orderBy(), QStringLiteral("usr_initials"));
}

// Designer and the generated set-up code of a dialog reach them by property name.
void tst_FwTreeWidget::shouldTakeSqlAndOrderAsProperties()
{
    QVERIFY(mTree->setProperty("sql", QStringLiteral("SELECT id,fw_text FROM tbl_resource")));
    QVERIFY(mTree->setProperty("orderBy", QStringLiteral("fw_text")));
    QCOMPARE(mTree->sql(), QStringLiteral("SELECT id,fw_text FROM tbl_resource"));
    QCOMPARE(mTree->orderBy(), QStringLiteral("fw_text"));
    mTree->setSql(QStringLiteral("SELECT id FROM tbl_user"));
    mTree->setOrderBy(QStringLiteral("id"));
    QCOMPARE(mTree->property("sql").toString(), QStringLiteral("SELECT id FROM tbl_user"));
    QCOMPARE(mTree->property("orderBy").toString(), QStringLiteral("id"));
    const QMetaObject* meta = mTree->metaObject();
    QVERIFY(meta->property(meta->indexOfProperty("sql")).isWritable());
    QVERIFY(meta->property(meta->indexOfProperty("orderBy")).isWritable());
}

void tst_FwTreeWidget::shouldNotSelectHeadingsByClick()
{
    FwTreeWidgetItem* heading = addHeading(mTree, QStringLiteral("Users"));
    addRow(mTree, 1, 0, QStringLiteral("Ann"));
    QCOMPARE(heading->flags(), Qt::ItemFlags(Qt::ItemIsEnabled));
    QTest::mouseClick(mTree->viewport(), Qt::LeftButton, Qt::NoModifier, centerOf(mTree, heading));
    QVERIFY(mTree->selectedItems().isEmpty());
    doubleClick(mTree->viewport(), centerOf(mTree, heading));
    QVERIFY(mTree->selectedItems().isEmpty());
}

void tst_FwTreeWidget::shouldNotSelectHeadingsByProgram()
{
    FwTreeWidgetItem* heading = addHeading(mTree, QStringLiteral("Resources"));
    mTree->setItemSelected(heading, true);
    QVERIFY(mTree->selectedItems().isEmpty());
    // A row that was selected before it became a heading loses the selection.
    FwTreeWidgetItem* row = addRow(mTree, 2, 1, QStringLiteral("Room"));
    mTree->setItemSelected(row, true);
    QCOMPARE(mTree->selectedItems(), QList<FwTreeWidgetItem*>{row});
    row->setData(1, HeadingFlagsRole, 32);
    QVERIFY(mTree->selectedItems().isEmpty());
    QCOMPARE(row->data(0, HeadingFlagsRole).toInt(), 32);
}

void tst_FwTreeWidget::shouldSelectOrdinaryRows()
{
    addHeading(mTree, QStringLiteral("Users"));
    FwTreeWidgetItem* ann = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    FwTreeWidgetItem* bob = addRow(mTree, 2, 0, QStringLiteral("Bob"));
    QTest::mouseClick(mTree->viewport(), Qt::LeftButton, Qt::NoModifier, centerOf(mTree, ann));
    QCOMPARE(mTree->selectedItems(), QList<FwTreeWidgetItem*>{ann});
    mTree->clearSelection();
    QVERIFY(mTree->selectedItems().isEmpty());
    mTree->setItemSelected(bob, true);
    QCOMPARE(mTree->selectedItems(), QList<FwTreeWidgetItem*>{bob});
    mTree->setItemSelected(bob, false);
    QVERIFY(mTree->selectedItems().isEmpty());
}

void tst_FwTreeWidget::shouldGiveTheRowsOwnFlagsBackWhenHeadingCleared()
{
    FwTreeWidgetItem* row = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    const Qt::ItemFlags own = row->flags();
    QVERIFY(own & Qt::ItemIsSelectable);
    row->setData(0, HeadingFlagsRole, 32);
    QVERIFY(row->isHeading());
    row->setData(0, HeadingFlagsRole, QVariant());
    QVERIFY(!row->isHeading());
    QCOMPARE(row->flags(), own);
    // A value that is no number isn't a set of flags.
    row->setData(0, HeadingFlagsRole, QStringLiteral("bold"));
    QCOMPARE(row->flags(), own);
}

void tst_FwTreeWidget::shouldGiveRowsByIndexPointAndNumber()
{
    FwTreeWidgetItem* heading = addHeading(mTree, QStringLiteral("Users"));
    FwTreeWidgetItem* ann = addRow(mTree, 7, 0, QStringLiteral("Ann"));
    QCOMPARE(mTree->topLevelItemCount(), 2);
    QCOMPARE(mTree->topLevelItem(0), heading);
    QCOMPARE(mTree->topLevelItem(1), ann);
    QCOMPARE(mTree->topLevelItem(2), nullptr);
    QCOMPARE(mTree->topLevelItem(-1), nullptr);
    QCOMPARE(mTree->itemAt(centerOf(mTree, ann)), ann);
    QCOMPARE(mTree->itemAt(QPoint(5, mTree->viewport()->height() - 2)), nullptr);
    const QModelIndex index = mTree->model()->index(1, 1);
    QCOMPARE(mTree->item(index), ann);
    QCOMPARE(mTree->item(index)->data(0, IdRole), QVariant(7));
    QCOMPARE(mTree->item(QModelIndex()), nullptr);
    FwTreeWidget other;
    addRow(&other, 1, 0, QStringLiteral("x"));
    QCOMPARE(mTree->item(other.model()->index(0, 0)), nullptr);
}

void tst_FwTreeWidget::shouldRemoveARowWhenItIsDeleted()
{
    addRow(mTree, 1, 0, QStringLiteral("Ann"));
    FwTreeWidgetItem* bob = addRow(mTree, 2, 0, QStringLiteral("Bob"));
    delete bob;
    QCOMPARE(mTree->topLevelItemCount(), 1);
    QCOMPARE(mTree->topLevelItem(0)->data(0, IdRole), QVariant(1));
}

void tst_FwTreeWidget::shouldEmitItemActivatedWithTheRow()
{
    FwTreeWidgetItem* ann = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    QSignalSpy activated(mTree, SIGNAL(itemActivated(FwTreeWidgetItem*, int)));
    QVERIFY(activated.isValid());
    mTree->setCurrentItem(ann);
    QTest::keyClick(mTree, Qt::Key_Return);
    doubleClick(mTree->viewport(), centerOf(mTree, ann));
    QCOMPARE(activated.count(), 2);
    QCOMPARE(activated.at(0).at(0).value<FwTreeWidgetItem*>(), ann);
    QCOMPARE(activated.at(1).at(0).value<FwTreeWidgetItem*>(), ann);
}

void tst_FwTreeWidget::shouldNotActivateHeadings()
{
    FwTreeWidgetItem* heading = addHeading(mTree, QStringLiteral("Users"));
    FwTreeWidgetItem* ann = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    mTree->setItemSelected(ann, true);
    QSignalSpy activated(mTree, &FwTreeWidget::itemActivated);
    doubleClick(mTree->viewport(), centerOf(mTree, heading));
    QCOMPARE(activated.count(), 0);
}

void tst_FwTreeWidget::shouldEmitDragStartedWhenDragIsAccepted()
{
    FwTreeWidgetItem* ann = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    mTree->setAcceptDrag(true);
    QSignalSpy started(mTree, &FwTreeWidget::dragStarted);
    const QPoint press = centerOf(mTree, ann);
    const QPoint far = press + QPoint(QApplication::startDragDistance() + 5, 0);
    sendMouse(mTree->viewport(), QEvent::MouseButtonPress, press, Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseMove, far, Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseMove, far + QPoint(10, 0), Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseButtonRelease, far, Qt::NoButton);
    QCOMPARE(started.count(), 1); // one drag per press
    QCOMPARE(started.first().at(0).toString(), QStringLiteral("application/x-fwtreewidget"));
    QCOMPARE(started.first().at(1).toPoint(), press);
    QCOMPARE(mTree->itemAt(started.first().at(1).toPoint()), ann);
}

void tst_FwTreeWidget::shouldNotEmitDragStartedForShortMovesOrWhenOff()
{
    FwTreeWidgetItem* ann = addRow(mTree, 1, 0, QStringLiteral("Ann"));
    QSignalSpy started(mTree, &FwTreeWidget::dragStarted);
    const QPoint press = centerOf(mTree, ann);
    const QPoint far = press + QPoint(QApplication::startDragDistance() + 5, 0);
    // Off: a long move starts nothing.
    sendMouse(mTree->viewport(), QEvent::MouseButtonPress, press, Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseMove, far, Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseButtonRelease, far, Qt::NoButton);
    QCOMPARE(started.count(), 0);
    // On: a move shorter than the drag distance starts nothing either, nor a move without button.
    mTree->setAcceptDrag(true);
    sendMouse(mTree->viewport(), QEvent::MouseButtonPress, press, Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseMove, press + QPoint(1, 0), Qt::LeftButton);
    sendMouse(mTree->viewport(), QEvent::MouseButtonRelease, press, Qt::NoButton);
    sendMouse(mTree->viewport(), QEvent::MouseMove, far, Qt::NoButton);
    QCOMPARE(started.count(), 0);
}

void tst_FwTreeWidget::shouldEmitDataDroppedWhenDropsAreAccepted()
{
    mTree->setAcceptDrops(true);
    QVERIFY(mTree->viewport()->acceptDrops());
    QSignalSpy dropped(mTree, &FwTreeWidget::dataDropped);
    QMimeData mime;
    mime.setData(QStringLiteral("text/calitem"), QByteArray("42"));
    const QPoint pos(20, 20);
    QDragEnterEvent enter(pos, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDragMoveEvent move(pos, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &move);
    QVERIFY(move.isAccepted());
    QDropEvent drop(pos, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QByteArray seen;
    connect(mTree, &FwTreeWidget::dataDropped, this,
            [&](QDropEvent* event) { seen = event->mimeData()->data(QStringLiteral("text/calitem")); });
    QApplication::sendEvent(mTree->viewport(), &drop);
    QCOMPARE(dropped.count(), 1);
    QCOMPARE(seen, QByteArray("42"));
    QCOMPARE(mTree->topLevelItemCount(), 0); // the tree itself adds nothing
}

void tst_FwTreeWidget::shouldIgnoreDropsWhenOff()
{
    QSignalSpy dropped(mTree, &FwTreeWidget::dataDropped);
    QMimeData mime;
    mime.setData(QStringLiteral("text/calitem"), QByteArray("42"));
    QDragEnterEvent enter(QPoint(20, 20), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &enter);
    QVERIFY(!enter.isAccepted());
    QDropEvent drop(QPoint(20, 20), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &drop);
    QCOMPARE(dropped.count(), 0);
}

FW_TEST_MAIN(tst_FwTreeWidget)
#include "tst_fwtreewidget.moc"
