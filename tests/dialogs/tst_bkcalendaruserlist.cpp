// The picker of users and resources: its generated layout, the rows it reads from the database, and
// the choice the user makes with mouse and keys.
#include "FwDialogRun.h"
#include "FwTestApplication.h"

#include <BkCalendarRecords.h>
#include <BkCalendarUserList.h>
#include <FwEnums.h>
#include <FwPushButton.h>
#include <FwTreeWidget.h>
#include <FwTreeWidgetItem.h>
#include <SQLQuery.h>

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMetaMethod>
#include <QSpacerItem>

namespace {
const char* const UsersView = "CREATE VIEW view_user AS SELECT id, usr_initials, usr_name FROM tbl_user";

bool run(const QString& statement)
{
    SQLQuery query;
    const bool ok = query.exec(statement);
    if (!ok)
        qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
    return ok;
}

// One row of the list as the user sees it and as the dialog reads it.
struct Row
{
    QString ini;
    QString name;
    QVariant id;
    QVariant type;
    QVariant headingFlags;
};

QList<Row> rowsOf(const FwTreeWidget* tree)
{
    QList<Row> rows;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const FwTreeWidgetItem* item = tree->topLevelItem(i);
        rows.append({item->text(0), item->text(1), item->data(0, IdRole), item->data(0, TypeRole),
                     item->data(0, HeadingFlagsRole)});
    }
    return rows;
}

QStringList namesOf(const FwTreeWidget* tree)
{
    QStringList names;
    for (const Row& row : rowsOf(tree))
        names.append(row.name);
    return names;
}

FwTreeWidget* treeOf(const BkCalendarUserList& dialog)
{
    return dialog.findChild<FwTreeWidget*>(QStringLiteral("tvList"));
}

FwPushButton* buttonOf(const BkCalendarUserList& dialog, const char* name)
{
    return dialog.findChild<FwPushButton*>(QLatin1String(name));
}

// The row whose second column reads `name`.
FwTreeWidgetItem* rowNamed(const FwTreeWidget* tree, const QString& name)
{
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        if (tree->topLevelItem(i)->text(1) == name)
            return tree->topLevelItem(i);
    }
    return nullptr;
}

QPoint centerOf(const FwTreeWidget* tree, const QString& name)
{
    FwTreeWidgetItem* row = rowNamed(tree, name);
    return row ? tree->visualItemRect(row).center() : QPoint(-1, -1);
}

void clickRow(FwTreeWidget* tree, const QString& name)
{
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, centerOf(tree, name));
}

// A double click as the window system delivers it: a click, then the double click at the same spot.
void doubleClickRow(FwTreeWidget* tree, const QString& name)
{
    const QPoint pos = centerOf(tree, name);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseDClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
}

QStringList selectedNames(const FwTreeWidget* tree)
{
    QStringList names;
    for (const FwTreeWidgetItem* row : tree->selectedItems())
        names.append(row->text(1));
    return names;
}

// Row, column and spans of a layout's entry, as x, y, width and height.
QRect cellOf(QGridLayout* grid, int index)
{
    if (index < 0)
        return QRect();
    int row = -1, column = -1, rowSpan = -1, columnSpan = -1;
    grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    return QRect(column, row, columnSpan, rowSpan);
}

int slotIndex(const QObject& object, const char* signature)
{
    const QMetaObject* meta = object.metaObject();
    const int index = meta->indexOfSlot(signature);
    return index >= 0 && meta->method(index).access() == QMetaMethod::Public ? index : -1;
}
} // namespace

class tst_BkCalendarUserList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldBuildTheGeneratedLayout();
    void shouldSetUpTheListFromItsTranslatedTexts();
    void shouldListUsersThenResourcesUnderHeadings();
    void shouldSetHeadingsInBoldItalic();
    void shouldStartWithAnEmptyChoice();
    void shouldStayOpenOnOkWithoutSelection();
    void shouldChooseTheSelectedRowOnOk();
    void shouldChooseARowByDoubleClick();
    void shouldChooseARowByKeys();
    void shouldNotChooseAHeading();
    void shouldSelectNothingForANullId();
    void shouldSelectOnlyTheRowOfTheRightType_data();
    void shouldSelectOnlyTheRowOfTheRightType();
    void shouldNotChangeTheChoiceOnSetResource();
    void shouldGiveANullIdAndKeepTheChoiceOnClear();
    void shouldChangeNothingOnCancel();
    void shouldShowBothHeadingsWhenThereAreNoUsers();
    void shouldLeaveOutRowsWithoutAnId();
    void shouldLeaveOutUsersWhenTheirQueryFails();
    void shouldLeaveOutResourcesWhenTheirQueryFails();
};

void tst_BkCalendarUserList::initTestCase()
{
    QVERIFY(run(
        QStringLiteral("CREATE TABLE tbl_user (id INTEGER PRIMARY KEY, usr_initials TEXT, usr_name TEXT)")));
    QVERIFY(run(QStringLiteral("CREATE TABLE tbl_resource (id INTEGER PRIMARY KEY, fw_text TEXT)")));
    QVERIFY(run(QLatin1String(UsersView)));
}

void tst_BkCalendarUserList::init()
{
    // User 2 and resource 2 share their id on purpose.
    QVERIFY(run(QStringLiteral("INSERT INTO tbl_user (id, usr_initials, usr_name) VALUES "
                               "(1, 'MB', 'Mia Berg'), (2, 'AK', 'Anna Klein'), (5, 'ZZ', 'Zoe Zimmer')")));
    QVERIFY(run(
        QStringLiteral("INSERT INTO tbl_resource (id, fw_text) VALUES (2, 'Beamer'), (7, 'Attic room')")));
}

void tst_BkCalendarUserList::cleanup()
{
    // Whatever a test broke, the next one finds the tables as initTestCase made them.
    run(QStringLiteral("DROP VIEW IF EXISTS view_user"));
    QVERIFY(run(QLatin1String(UsersView)));
    // A query still open would keep SQLite from changing the tables, so each probe ends at once.
    const auto exists = [](const char* table) {
        SQLQuery probe;
        return probe.exec(QStringLiteral("SELECT 1 FROM %1").arg(QLatin1String(table)));
    };
    if (exists("tbl_resource_away")) {
        run(QStringLiteral("DROP TABLE IF EXISTS tbl_resource"));
        QVERIFY(run(QStringLiteral("ALTER TABLE tbl_resource_away RENAME TO tbl_resource")));
    }
    QVERIFY(run(QStringLiteral("DELETE FROM tbl_user")));
    QVERIFY(run(QStringLiteral("DELETE FROM tbl_resource")));
}

void tst_BkCalendarUserList::shouldBuildTheGeneratedLayout()
{
    BkCalendarUserList dialog(nullptr);
    QCOMPARE(dialog.objectName(), QStringLiteral("BkCalendarUserList"));
    QCOMPARE(dialog.size(), QSize(342, 382));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("User List"));
    QVERIFY(dialog.isModal());
    QVERIFY(!dialog.stay());

    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    QVERIFY(grid);
    QCOMPARE(grid->objectName(), QStringLiteral("gridLayout"));
    QCOMPARE(grid->spacing(), 4);
    QCOMPARE(grid->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(grid->count(), 3);

    FwTreeWidget* tree = treeOf(dialog);
    QVERIFY(tree);
    QCOMPARE(tree->parentWidget(), &dialog);
    QCOMPARE(cellOf(grid, grid->indexOf(tree)), QRect(0, 0, 1, 1));

    auto* line = dialog.findChild<QFrame*>(QStringLiteral("line"));
    QVERIFY(line);
    QCOMPARE(cellOf(grid, grid->indexOf(line)), QRect(0, 1, 1, 1));
    QCOMPARE(line->frameShape(), QFrame::HLine);
    QCOMPARE(line->frameShadow(), QFrame::Sunken);

    auto* buttons = dialog.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout"));
    QVERIFY(buttons);
    QCOMPARE(cellOf(grid, grid->indexOf(static_cast<QLayoutItem*>(buttons))), QRect(0, 2, 1, 1));
    QCOMPARE(buttons->count(), 4);
    FwPushButton* clear = buttonOf(dialog, "pbClear");
    FwPushButton* ok = buttonOf(dialog, "pbOk");
    FwPushButton* cancel = buttonOf(dialog, "pbCancel");
    QVERIFY(clear && ok && cancel);
    QCOMPARE(buttons->itemAt(0)->widget(), clear);
    QSpacerItem* spacer = buttons->itemAt(1)->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), QSize(40, 20));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(buttons->itemAt(2)->widget(), ok);
    QCOMPARE(buttons->itemAt(3)->widget(), cancel);

    // The captions come from the types alone.
    QCOMPARE(int(clear->type()), 17);
    QCOMPARE(int(ok->type()), 11);
    QCOMPARE(int(cancel->type()), 5);
    QCOMPARE(clear->text(), FwPushButton::caption(FwEnums::ButtonClear));
    QCOMPARE(ok->text(), FwPushButton::caption(FwEnums::ButtonOk));
    QCOMPARE(cancel->text(), FwPushButton::caption(FwEnums::ButtonCancel));
    QVERIFY(!clear->text().isEmpty() && !ok->text().isEmpty() && !cancel->text().isEmpty());

    QVERIFY(slotIndex(dialog, "okPressed()") >= 0);
    QVERIFY(slotIndex(dialog, "clearPressed()") >= 0);
}

void tst_BkCalendarUserList::shouldSetUpTheListFromItsTranslatedTexts()
{
    BkCalendarUserList dialog(nullptr);
    FwTreeWidget* tree = treeOf(dialog);
    QCOMPARE(tree->sql(), QStringLiteral("SELECT id,usr_initials,usr_name FROM tbl_user"));
    QCOMPARE(tree->orderBy(), QStringLiteral("usr_initials"));
    QCOMPARE(tree->headers(), QStringLiteral("Ini,Name"));
    QCOMPARE(tree->headerSizes(), QStringLiteral("100,100%"));
    QCOMPARE(tree->columnCount(), 2);
    QCOMPARE(tree->headerItem()->text(0), QStringLiteral("Ini"));
    QCOMPARE(tree->headerItem()->text(1), QStringLiteral("Name"));
    QCOMPARE(tree->header()->sectionSize(0), 100);
}

void tst_BkCalendarUserList::shouldListUsersThenResourcesUnderHeadings()
{
    BkCalendarUserList dialog(nullptr);
    const QList<Row> rows = rowsOf(treeOf(dialog));
    QCOMPARE(rows.size(), 7);
    const QVariant none;
    const QVariant heading(32);
    // Users by initials, resources by text; the id as the database gives it.
    const QList<Row> expected{
        {QString(), QStringLiteral("Users"), none, none, heading},
        {QStringLiteral("AK"), QStringLiteral("Anna Klein"), 2, 0, none},
        {QStringLiteral("MB"), QStringLiteral("Mia Berg"), 1, 0, none},
        {QStringLiteral("ZZ"), QStringLiteral("Zoe Zimmer"), 5, 0, none},
        {QString(), QStringLiteral("Resources"), none, none, heading},
        {QString(), QStringLiteral("Attic room"), 7, 1, none},
        {QString(), QStringLiteral("Beamer"), 2, 1, none},
    };
    for (int i = 0; i < expected.size(); ++i) {
        const Row& row = rows.at(i);
        const Row& want = expected.at(i);
        QCOMPARE(row.ini, want.ini);
        QCOMPARE(row.name, want.name);
        QCOMPARE(row.id.isValid(), want.id.isValid());
        if (want.id.isValid())
            QCOMPARE(row.id.toInt(), want.id.toInt());
        QCOMPARE(row.type, want.type);
        QCOMPARE(row.headingFlags, want.headingFlags);
    }
    // Everything at top level.
    for (int i = 0; i < treeOf(dialog)->topLevelItemCount(); ++i)
        QCOMPARE(treeOf(dialog)->topLevelItem(i)->childCount(), 0);
}

void tst_BkCalendarUserList::shouldSetHeadingsInBoldItalic()
{
    BkCalendarUserList dialog(nullptr);
    FwTreeWidget* tree = treeOf(dialog);
    for (const QString& name : {QStringLiteral("Users"), QStringLiteral("Resources")}) {
        FwTreeWidgetItem* row = rowNamed(tree, name);
        QVERIFY(row);
        const QVariant font = row->data(1, Qt::FontRole);
        QVERIFY(font.canConvert<QFont>());
        QCOMPARE(font.value<QFont>().weight(), 75);
        QCOMPARE(font.value<QFont>().style(), QFont::StyleItalic);
        QCOMPARE(row->flags(), Qt::ItemFlags(Qt::ItemIsEnabled));
    }
    // Ordinary rows keep the list's font.
    QVERIFY(!rowNamed(tree, QStringLiteral("Mia Berg"))->data(1, Qt::FontRole).isValid());
}

void tst_BkCalendarUserList::shouldStartWithAnEmptyChoice()
{
    BkCalendarUserList dialog(nullptr);
    const BkCalendarResource choice = dialog.resource();
    QVERIFY(choice.id.isNull());
    QVERIFY(choice.name.isEmpty());
    QCOMPARE(choice.type, 0);
    QVERIFY(dialog.name().isEmpty());
    QVERIFY(dialog.id().isNull());
    QVERIFY(treeOf(dialog)->selectedItems().isEmpty());
}

void tst_BkCalendarUserList::shouldStayOpenOnOkWithoutSelection()
{
    BkCalendarUserList dialog(nullptr);
    QStringList selectedWhenOk{QStringLiteral("not run")};
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        selectedWhenOk = selectedNames(treeOf(dialog));
        QTest::mouseClick(buttonOf(dialog, "pbOk"), Qt::LeftButton);
    });
    QVERIFY(run.shown);
    QVERIFY(selectedWhenOk.isEmpty());
    QVERIFY(run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QVERIFY(dialog.resource().id.isNull());
    QVERIFY(dialog.id().isNull());
}

void tst_BkCalendarUserList::shouldChooseTheSelectedRowOnOk()
{
    BkCalendarUserList dialog(nullptr);
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        clickRow(treeOf(dialog), QStringLiteral("Mia Berg"));
        QTest::mouseClick(buttonOf(dialog, "pbOk"), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.id().toInt(), 1);
    QCOMPARE(dialog.name(), QStringLiteral("Mia Berg"));
    QCOMPARE(dialog.resource().id.toInt(), 1);
    QCOMPARE(dialog.resource().name, QStringLiteral("Mia Berg"));
    QCOMPARE(dialog.resource().type, 0);
}

void tst_BkCalendarUserList::shouldChooseARowByDoubleClick()
{
    BkCalendarUserList dialog(nullptr);
    const FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { doubleClickRow(treeOf(dialog), QStringLiteral("Attic room")); });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.id().toInt(), 7);
    QCOMPARE(dialog.resource().id.toInt(), 7);
    QCOMPARE(dialog.resource().type, 1);
    QCOMPARE(dialog.name(), QStringLiteral("Attic room"));
}

void tst_BkCalendarUserList::shouldChooseARowByKeys()
{
    BkCalendarUserList dialog(nullptr);
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        FwTreeWidget* tree = treeOf(dialog);
        // From Anna Klein, two rows down is Zoe Zimmer; Return chooses the current row.
        clickRow(tree, QStringLiteral("Anna Klein"));
        QTest::keyClick(tree, Qt::Key_Down);
        QTest::keyClick(tree, Qt::Key_Down);
        QTest::keyClick(tree, Qt::Key_Return);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.name(), QStringLiteral("Zoe Zimmer"));
    QCOMPARE(dialog.id().toInt(), 5);
}

void tst_BkCalendarUserList::shouldNotChooseAHeading()
{
    BkCalendarUserList dialog(nullptr);
    QStringList selectedAfterClick{QStringLiteral("not run")};
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        FwTreeWidget* tree = treeOf(dialog);
        clickRow(tree, QStringLiteral("Resources"));
        selectedAfterClick = selectedNames(tree);
        doubleClickRow(tree, QStringLiteral("Users"));
        QTest::mouseClick(buttonOf(dialog, "pbOk"), Qt::LeftButton);
    });
    QVERIFY(selectedAfterClick.isEmpty());
    QVERIFY(run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QVERIFY(dialog.resource().id.isNull());
    QVERIFY(dialog.resource().name.isEmpty());
}

void tst_BkCalendarUserList::shouldSelectNothingForANullId()
{
    BkCalendarUserList dialog(nullptr);
    FwTreeWidget* tree = treeOf(dialog);
    dialog.setResource(BkCalendarResource(1, QString(), 0));
    QCOMPARE(selectedNames(tree), QStringList{QStringLiteral("Mia Berg")});
    dialog.setResource(BkCalendarResource());
    QVERIFY(tree->selectedItems().isEmpty());
    // A null id of a resource is no id either, though headings have no id.
    dialog.setResource(BkCalendarResource(QVariant(), QStringLiteral("Beamer"), 1));
    QVERIFY(tree->selectedItems().isEmpty());
}

void tst_BkCalendarUserList::shouldSelectOnlyTheRowOfTheRightType_data()
{
    QTest::addColumn<BkCalendarResource>("resource");
    QTest::addColumn<QStringList>("selected");
    QTest::newRow("user 2") << BkCalendarResource(2, QString(), 0)
                            << QStringList{QStringLiteral("Anna Klein")};
    QTest::newRow("resource 2") << BkCalendarResource(2, QString(), 1)
                                << QStringList{QStringLiteral("Beamer")};
    QTest::newRow("user 7 is none") << BkCalendarResource(7, QString(), 0) << QStringList();
    QTest::newRow("resource 7") << BkCalendarResource(7, QString(), 1)
                                << QStringList{QStringLiteral("Attic room")};
    QTest::newRow("resource 5 is none") << BkCalendarResource(5, QString(), 1) << QStringList();
    QTest::newRow("unknown id") << BkCalendarResource(99, QString(), 0) << QStringList();
    // The name plays no part: only id and type.
    QTest::newRow("name ignored") << BkCalendarResource(1, QStringLiteral("Beamer"), 0)
                                  << QStringList{QStringLiteral("Mia Berg")};
}

void tst_BkCalendarUserList::shouldSelectOnlyTheRowOfTheRightType()
{
    QFETCH(BkCalendarResource, resource);
    QFETCH(QStringList, selected);
    BkCalendarUserList dialog(nullptr);
    // A selection from before never survives.
    dialog.setResource(BkCalendarResource(5, QString(), 0));
    dialog.setResource(resource);
    QCOMPARE(selectedNames(treeOf(dialog)), selected);
}

void tst_BkCalendarUserList::shouldNotChangeTheChoiceOnSetResource()
{
    BkCalendarUserList dialog(nullptr);
    dialog.setResource(BkCalendarResource(2, QStringLiteral("Beamer"), 1));
    QVERIFY(dialog.resource().id.isNull());
    QVERIFY(dialog.name().isEmpty());
    QVERIFY(dialog.id().isNull());
    // The preselected row is what Ok takes.
    const FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { QTest::mouseClick(buttonOf(dialog, "pbOk"), Qt::LeftButton); });
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.resource().type, 1);
    QCOMPARE(dialog.resource().id.toInt(), 2);
    QCOMPARE(dialog.name(), QStringLiteral("Beamer"));
}

void tst_BkCalendarUserList::shouldGiveANullIdAndKeepTheChoiceOnClear()
{
    BkCalendarUserList dialog(nullptr);
    dialog.setResource(BkCalendarResource(1, QString(), 0));
    FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { QTest::mouseClick(buttonOf(dialog, "pbClear"), Qt::LeftButton); });
    QCOMPARE(run.result, 1);
    QVERIFY(dialog.id().isNull());
    QVERIFY(dialog.resource().id.isNull());
    QVERIFY(dialog.name().isEmpty());
    QCOMPARE(dialog.resource().type, 0);

    // Chosen once, then cleared: the earlier choice stays.
    run = FwTest::runDialog(dialog, [&] { doubleClickRow(treeOf(dialog), QStringLiteral("Beamer")); });
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.id().toInt(), 2);
    run = FwTest::runDialog(dialog, [&] { QTest::mouseClick(buttonOf(dialog, "pbClear"), Qt::LeftButton); });
    QCOMPARE(run.result, 1);
    QVERIFY(dialog.id().isNull());
    QCOMPARE(dialog.resource().id.toInt(), 2);
    QCOMPARE(dialog.resource().type, 1);
    QCOMPARE(dialog.name(), QStringLiteral("Beamer"));
}

void tst_BkCalendarUserList::shouldChangeNothingOnCancel()
{
    BkCalendarUserList dialog(nullptr);
    FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        clickRow(treeOf(dialog), QStringLiteral("Zoe Zimmer"));
        QTest::mouseClick(buttonOf(dialog, "pbCancel"), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QVERIFY(dialog.id().isNull());
    QVERIFY(dialog.resource().id.isNull());
    // Escape cancels as well.
    run = FwTest::runDialog(dialog, [&] { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QVERIFY(dialog.name().isEmpty());
}

void tst_BkCalendarUserList::shouldShowBothHeadingsWhenThereAreNoUsers()
{
    QVERIFY(run(QStringLiteral("DELETE FROM tbl_user")));
    BkCalendarUserList dialog(nullptr);
    QCOMPARE(namesOf(treeOf(dialog)), (QStringList{QStringLiteral("Users"), QStringLiteral("Resources"),
                                                   QStringLiteral("Attic room"), QStringLiteral("Beamer")}));
    QCOMPARE(rowsOf(treeOf(dialog)).at(1).headingFlags, QVariant(32));
}

// A row without an id names nobody; chosen, it would read as a cleared choice and take the column
// away. Such rows of either table are left out, and the others still come.
void tst_BkCalendarUserList::shouldLeaveOutRowsWithoutAnId()
{
    QVERIFY(run(QStringLiteral("DROP VIEW view_user")));
    QVERIFY(run(QStringLiteral("CREATE VIEW view_user AS SELECT id, usr_initials, usr_name FROM tbl_user "
                               "UNION ALL SELECT NULL, 'NU', 'Nobody'")));
    QVERIFY(run(QStringLiteral("ALTER TABLE tbl_resource RENAME TO tbl_resource_away")));
    QVERIFY(run(QStringLiteral("CREATE TABLE tbl_resource (id INTEGER, fw_text TEXT)")));
    QVERIFY(run(QStringLiteral(
        "INSERT INTO tbl_resource (id, fw_text) VALUES (NULL, 'Nowhere'), (7, 'Attic room')")));
    BkCalendarUserList dialog(nullptr);
    QCOMPARE(namesOf(treeOf(dialog)),
             (QStringList{QStringLiteral("Users"), QStringLiteral("Anna Klein"), QStringLiteral("Mia Berg"),
                          QStringLiteral("Zoe Zimmer"), QStringLiteral("Resources"),
                          QStringLiteral("Attic room")}));
    for (const Row& row : rowsOf(treeOf(dialog)))
        QVERIFY(row.headingFlags.isValid() || !row.id.isNull());
}

void tst_BkCalendarUserList::shouldLeaveOutUsersWhenTheirQueryFails()
{
    QVERIFY(run(QStringLiteral("DROP VIEW view_user")));
    QTest::ignoreMessage(
        QtInfoMsg, QRegularExpression(QStringLiteral("^\\[Source/BkCalendarUserList:35\\] .*view_user")));
    BkCalendarUserList dialog(nullptr);
    QCOMPARE(namesOf(treeOf(dialog)), (QStringList{QStringLiteral("Resources"), QStringLiteral("Attic room"),
                                                   QStringLiteral("Beamer")}));
    // The dialog opens all the same, and the resources can be chosen.
    const FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { doubleClickRow(treeOf(dialog), QStringLiteral("Beamer")); });
    QVERIFY(run.shown);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.name(), QStringLiteral("Beamer"));
}

void tst_BkCalendarUserList::shouldLeaveOutResourcesWhenTheirQueryFails()
{
    QVERIFY(run(QStringLiteral("ALTER TABLE tbl_resource RENAME TO tbl_resource_away")));
    QTest::ignoreMessage(
        QtInfoMsg, QRegularExpression(QStringLiteral("^\\[Source/BkCalendarUserList:59\\] .*tbl_resource")));
    BkCalendarUserList dialog(nullptr);
    QCOMPARE(namesOf(treeOf(dialog)),
             (QStringList{QStringLiteral("Users"), QStringLiteral("Anna Klein"), QStringLiteral("Mia Berg"),
                          QStringLiteral("Zoe Zimmer")}));
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [] {});
    QVERIFY(run.shown);
    QCOMPARE(run.result, 0);
}

FW_TEST_MAIN(tst_BkCalendarUserList)
#include "tst_bkcalendaruserlist.moc"
