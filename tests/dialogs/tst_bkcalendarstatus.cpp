// The record dialog of calendar statuses: its generated layout, the three uses by type, the
// messages it leaves, and the lock after a query without a record.
#include "FwDialogRun.h"
#include "FwTestApplication.h"

#include <BkCalendarStatus.h>
#include <FwApplication.h>
#include <FwEnums.h>
#include <FwGroupBox.h>
#include <FwPtrColorPicker.h>
#include <FwPtrEdit.h>
#include <FwPushButton.h>
#include <FwTableBase.h>
#include <FwTableForm.h>
#include <SQLQuery.h>

#include <QColorDialog>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QSpacerItem>

namespace {
bool sql(const QString& statement)
{
    SQLQuery query;
    const bool ok = query.exec(statement);
    if (!ok)
        qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
    return ok;
}

// The stored statuses, "name=#color" in id order.
QStringList records()
{
    QStringList rows;
    SQLQuery query(QStringLiteral("SELECT cst_name, cst_color FROM tbl_calendarstatus ORDER BY id"),
                   SQLDatabase());
    while (query.next())
        rows.append(query.value(0).toString() + QLatin1Char('=') + query.value(1).toString());
    return rows;
}

int maxId()
{
    SQLQuery query(QStringLiteral("SELECT MAX(id) FROM tbl_calendarstatus"), SQLDatabase());
    return query.next() ? query.value(0).toInt() : -1;
}

template <typename T> T* child(const QWidget& dialog, const char* name)
{
    return dialog.findChild<T*>(QLatin1String(name));
}

FwPtrEdit* nameEdit(const BkCalendarStatus& dialog)
{
    return child<FwPtrEdit>(dialog, "fpeName");
}

FwPtrColorPicker* colorPicker(const BkCalendarStatus& dialog)
{
    return child<FwPtrColorPicker>(dialog, "fpcColor");
}

FwPushButton* createButton(const BkCalendarStatus& dialog)
{
    return child<FwPushButton>(dialog, "pbCreate");
}

FwPushButton* cancelButton(const BkCalendarStatus& dialog)
{
    return child<FwPushButton>(dialog, "pbCancel");
}

FwTableBase* tableOf(const BkCalendarStatus& dialog)
{
    return child<FwTableForm>(dialog, "ftfCalendarStatus")->priv();
}

// Replaces the name as the user does: select all, type over it.
void typeName(const BkCalendarStatus& dialog, const QString& text)
{
    FwPtrEdit* edit = nameEdit(dialog);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(edit, Qt::Key_Backspace);
    else
        QTest::keyClicks(edit, text);
}

// Up on the screen without a modal loop, for gestures made straight from the test.
bool showWithoutLoop(QWidget& dialog)
{
    dialog.show();
    return QTest::qWaitForWindowExposed(&dialog);
}

QRect cellOf(QGridLayout* grid, int index)
{
    if (index < 0)
        return QRect();
    int row = -1, column = -1, rowSpan = -1, columnSpan = -1;
    grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    return QRect(column, row, columnSpan, rowSpan);
}

QRect cellOf(QGridLayout* grid, QWidget* widget)
{
    return cellOf(grid, grid->indexOf(widget));
}

QMetaMethod publicSlot(const QObject& object, const char* signature)
{
    const QMetaObject* meta = object.metaObject();
    const int index = meta->indexOfSlot(signature);
    const QMetaMethod method = index >= 0 ? meta->method(index) : QMetaMethod();
    return method.access() == QMetaMethod::Public ? method : QMetaMethod();
}
} // namespace

class tst_BkCalendarStatus : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldBuildTheGeneratedLayout();
    void shouldBindTheFieldsToTheStatusTable();
    void shouldOfferItsSlots();
    void shouldFollowTheType_data();
    void shouldFollowTheType();
    void shouldNotGiveTheCreateButtonBack();
    void shouldKeepOneConnectionAfterSwitchingTheTypeTwice_data();
    void shouldKeepOneConnectionAfterSwitchingTheTypeTwice();
    void shouldCreateAndClose();
    void shouldCreateWithAColourPickedInItsDialog();
    void shouldNotCreateWithAnEmptyName();
    void shouldEmptyTheFieldsAndFocusTheNameWhenStayingAfterCreate();
    void shouldReportAFailedCreateAndCloseAsAccepted();
    void shouldKeepTheFieldsOfAFailedCreateWhenStaying();
    void shouldFindAndClose();
    void shouldTurnIntoAnEditOfTheFoundRecordWhenStaying();
    void shouldResetAndLockAfterAFindWithoutRecord();
    void shouldLoadTheRecordOfItsId();
    void shouldLockWhenItsIdHasNoRecord();
    void shouldUpdateAndClose();
    void shouldLogAndStayOnAnEmptyNameInEdit();
    void shouldAcceptAFailedUpdateUnlessStaying();
    void shouldKeepStoredValuesThatItCannotShowOnSave_data();
    void shouldKeepStoredValuesThatItCannotShowOnSave();
    void shouldKeepRecordIdsThatAreNoPlainNumbers_data();
    void shouldKeepRecordIdsThatAreNoPlainNumbers();
    void shouldTakeItsMessageAwayWhenItGoes();
};

// Names are unique, so that a second status of the same name fails to be written.
const char* const StatusTable = "CREATE TABLE tbl_calendarstatus (id INTEGER PRIMARY KEY, "
                                "cst_name VARCHAR(250) NOT NULL UNIQUE, cst_color VARCHAR(7))";

void tst_BkCalendarStatus::initTestCase()
{
    QVERIFY(sql(QLatin1String(StatusTable)));
}

void tst_BkCalendarStatus::init()
{
    QVERIFY(sql(QStringLiteral("INSERT INTO tbl_calendarstatus (id, cst_name, cst_color) VALUES "
                               "(1, 'Confirmed', '#00aa00'), (2, 'Tentative', '#ffcc00')")));
    iApp->clearMessage();
}

void tst_BkCalendarStatus::cleanup()
{
    QVERIFY(sql(QStringLiteral("DELETE FROM tbl_calendarstatus")));
    iApp->clearMessage();
}

void tst_BkCalendarStatus::shouldBuildTheGeneratedLayout()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QCOMPARE(dialog.objectName(), QStringLiteral("BkCalendarStatus"));
    QCOMPARE(dialog.size(), QSize(193, 128));
    QVERIFY(dialog.isModal());
    QVERIFY(!dialog.stay());
    QCOMPARE(dialog.helpText(), QStringLiteral("HelpText - BkCalendarStatus"));

    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    QVERIFY(grid);
    QCOMPARE(grid->objectName(), QStringLiteral("gridLayout"));
    QCOMPARE(grid->spacing(), 4);
    QCOMPARE(grid->contentsMargins(), QMargins(6, 6, 6, 6));
    QCOMPARE(grid->count(), 4);

    auto* box = child<FwGroupBox>(dialog, "gbCalendarStatus");
    QVERIFY(box);
    QCOMPARE(cellOf(grid, box), QRect(0, 0, 1, 1));
    QCOMPARE(box->title(), QStringLiteral("Details"));
    auto* boxGrid = qobject_cast<QGridLayout*>(box->layout());
    QVERIFY(boxGrid);
    QCOMPARE(boxGrid->objectName(), QStringLiteral("_2"));
    QCOMPARE(boxGrid->spacing(), 4);
    QCOMPARE(boxGrid->contentsMargins(), QMargins(6, 6, 6, 6));

    auto* form = child<FwTableForm>(dialog, "ftfCalendarStatus");
    QVERIFY(form);
    QCOMPARE(form->parentWidget(), box);
    QCOMPARE(cellOf(boxGrid, form), QRect(0, 0, 1, 1));
    auto* formGrid = qobject_cast<QGridLayout*>(form->layout());
    QVERIFY(formGrid);
    QCOMPARE(formGrid->objectName(), QStringLiteral("gridLayout_2"));
    QCOMPARE(formGrid->spacing(), 4);
    QCOMPARE(formGrid->contentsMargins(), QMargins(0, 0, 0, 0));

    auto* nameLabel = child<QLabel>(dialog, "label");
    auto* colorLabel = child<QLabel>(dialog, "label_2");
    QVERIFY(nameLabel && colorLabel);
    QCOMPARE(cellOf(formGrid, nameLabel), QRect(0, 0, 1, 1));
    QCOMPARE(cellOf(formGrid, nameEdit(dialog)), QRect(1, 0, 1, 1));
    QCOMPARE(cellOf(formGrid, colorLabel), QRect(0, 1, 1, 1));
    QCOMPARE(cellOf(formGrid, colorPicker(dialog)), QRect(1, 1, 1, 1));
    QCOMPARE(nameLabel->text(), QStringLiteral("&Name"));
    QCOMPARE(nameLabel->buddy(), nameEdit(dialog));
    QCOMPARE(colorLabel->text(), QStringLiteral("&Color"));
    QCOMPARE(colorLabel->buddy(), colorPicker(dialog));
    const QSizePolicy policy = colorPicker(dialog)->sizePolicy();
    QCOMPARE(policy.horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(policy.verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(policy.horizontalStretch(), 0);
    QCOMPARE(policy.verticalStretch(), 0);
    QCOMPARE(policy.hasHeightForWidth(), FwPtrColorPicker().sizePolicy().hasHeightForWidth());

    QSpacerItem* gap = grid->itemAt(grid->indexOf(box) + 1)->spacerItem();
    QVERIFY(gap);
    QCOMPARE(cellOf(grid, grid->indexOf(box) + 1), QRect(0, 1, 1, 1));
    QCOMPARE(gap->sizeHint(), QSize(0, 3));
    QCOMPARE(gap->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(gap->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);

    auto* line = child<QFrame>(dialog, "line");
    QVERIFY(line);
    QCOMPARE(cellOf(grid, line), QRect(0, 2, 1, 1));
    QCOMPARE(line->frameShape(), QFrame::HLine);
    QCOMPARE(line->frameShadow(), QFrame::Sunken);

    auto* buttons = dialog.findChild<QHBoxLayout*>(QStringLiteral("hboxLayout"));
    QVERIFY(buttons);
    QCOMPARE(cellOf(grid, grid->indexOf(static_cast<QLayoutItem*>(buttons))), QRect(0, 3, 1, 1));
    QCOMPARE(buttons->contentsMargins(), QMargins(1, 1, 1, 1));
    QCOMPARE(buttons->count(), 3);
    QSpacerItem* push = buttons->itemAt(0)->spacerItem();
    QVERIFY(push);
    QCOMPARE(push->sizeHint(), QSize(218, 23));
    QCOMPARE(push->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(push->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(buttons->itemAt(1)->widget(), createButton(dialog));
    QCOMPARE(buttons->itemAt(2)->widget(), cancelButton(dialog));
    QCOMPARE(int(createButton(dialog)->type()), 1);
    QCOMPARE(createButton(dialog)->text(), QStringLiteral("&Create"));
    QCOMPARE(int(cancelButton(dialog)->type()), 5);
    QCOMPARE(cancelButton(dialog)->text(), QStringLiteral("C&ancel"));
}

void tst_BkCalendarStatus::shouldBindTheFieldsToTheStatusTable()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    auto* form = child<FwTableForm>(dialog, "ftfCalendarStatus");
    QCOMPARE(int(form->mode()), 1);
    QCOMPARE(int(form->state()), 1);
    QCOMPARE(form->tableName(), QStringLiteral("tbl_calendarstatus"));
    FwPtrEdit* name = nameEdit(dialog);
    QCOMPARE(name->fieldName(), QStringLiteral("cst_name"));
    QCOMPARE(name->maxLength(), 250);
    QCOMPARE(name->listPosition(), 0);
    QVERIFY(name->required());
    QCOMPARE(colorPicker(dialog)->fieldName(), QStringLiteral("cst_color"));
    QCOMPARE(form->priv()->fields().size(), 2);
}

void tst_BkCalendarStatus::shouldOfferItsSlots()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QVERIFY(publicSlot(dialog, "insertRecord()").isValid());
    QVERIFY(publicSlot(dialog, "findRecord()").isValid());
    QVERIFY(publicSlot(dialog, "lockDialog()").isValid());
    const QMetaMethod update = publicSlot(dialog, "updateRecord()");
    QVERIFY(update.isValid());
    QCOMPARE(update.returnType(), int(QMetaType::Bool));
    // The ones of its own come after those of the framework's dialog.
    QVERIFY(update.methodIndex() >= BkCalendarStatus::staticMetaObject.methodOffset());
}

void tst_BkCalendarStatus::shouldFollowTheType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("buttonType");
    QTest::addColumn<QString>("buttonText");
    QTest::newRow("create") << 4 << QStringLiteral("Create CalendarStatus") << 1 << QStringLiteral("&Create");
    QTest::newRow("find") << 2 << QStringLiteral("Find CalendarStatus") << 4
                          << FwPushButton::caption(FwEnums::ButtonFind);
    QTest::newRow("edit") << 1 << QStringLiteral("Edit CalendarStatus") << 2
                          << FwPushButton::caption(FwEnums::ButtonSave);
    QTest::newRow("none is edit") << 0 << QStringLiteral("Edit CalendarStatus") << 2
                                  << FwPushButton::caption(FwEnums::ButtonSave);
    QTest::newRow("3 is edit") << 3 << QStringLiteral("Edit CalendarStatus") << 2
                               << FwPushButton::caption(FwEnums::ButtonSave);
    QTest::newRow("7 is edit") << 7 << QStringLiteral("Edit CalendarStatus") << 2
                               << FwPushButton::caption(FwEnums::ButtonSave);
}

void tst_BkCalendarStatus::shouldFollowTheType()
{
    QFETCH(int, type);
    QFETCH(QString, title);
    QFETCH(int, buttonType);
    QFETCH(QString, buttonText);
    // Given to the constructor, and set later on a dialog of another type.
    BkCalendarStatus built{FwEnums::DialogType(type)};
    BkCalendarStatus switched(type == 4 ? FwEnums::DialogEdit : FwEnums::DialogCreate);
    switched.setType(FwEnums::DialogType(type));
    for (BkCalendarStatus* dialog : {&built, &switched}) {
        QCOMPARE(dialog->windowTitle(), title);
        QCOMPARE(int(dialog->type()), type);
        if (type != 4 || dialog == &built) {
            QCOMPARE(int(createButton(*dialog)->type()), buttonType);
            QCOMPARE(createButton(*dialog)->text(), buttonText);
        }
    }
}

void tst_BkCalendarStatus::shouldNotGiveTheCreateButtonBack()
{
    BkCalendarStatus dialog(FwEnums::DialogFind);
    dialog.setType(FwEnums::DialogCreate);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Create CalendarStatus"));
    QCOMPARE(createButton(dialog)->type(), FwEnums::ButtonFind);
    // Still, the button creates.
    QVERIFY(showWithoutLoop(dialog));
    typeName(dialog, QStringLiteral("Booked"));
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Booked' created");
    QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    QCOMPARE(records().last(), QStringLiteral("Booked="));
}

void tst_BkCalendarStatus::shouldKeepOneConnectionAfterSwitchingTheTypeTwice_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("last");
    QTest::newRow("create, find, edit") << 4 << 2 << 1;
    QTest::newRow("edit, create, find") << 1 << 4 << 2;
    QTest::newRow("find, edit, create") << 2 << 1 << 4;
    QTest::newRow("create three times") << 4 << 4 << 4;
    QTest::newRow("find three times") << 2 << 2 << 2;
    QTest::newRow("edit three times") << 1 << 1 << 1;
    QTest::newRow("find, create, other") << 2 << 4 << 9;
}

// Each use is made so that a second connection, to any of the three slots, would close the dialog a
// second time or write a second message.
void tst_BkCalendarStatus::shouldKeepOneConnectionAfterSwitchingTheTypeTwice()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(int, last);
    BkCalendarStatus dialog{FwEnums::DialogType(first)};
    dialog.setType(FwEnums::DialogType(second));
    dialog.setType(FwEnums::DialogType(last));
    QVERIFY(showWithoutLoop(dialog));
    QSignalSpy finished(&dialog, &QDialog::finished);
    QSignalSpy messages(iApp, &FwApplication::messageShown);
    const QStringList before = records();
    if (last == 4) {
        // A name that is taken: the insert fails, keeps the fields, and says so.
        typeName(dialog, QStringLiteral("Confirmed"));
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("UNIQUE")));
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("^Critical: Error creating")));
    } else if (last == 2) {
        typeName(dialog, QStringLiteral("tent"));
    } else {
        dialog.setId(2);
        typeName(dialog, QStringLiteral("Tentative!"));
    }
    QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.first().first().toInt(), int(QDialog::Accepted));
    QCOMPARE(messages.count(), last == 4 ? 1 : 0);
    QStringList after = before;
    if (last != 2 && last != 4)
        after[1] = QStringLiteral("Tentative!=#ffcc00");
    QCOMPARE(records(), after);
    QCOMPARE(dialog.id().toInt(), last == 4 ? -1 : last == 2 ? 2 : 0);
}

void tst_BkCalendarStatus::shouldCreateAndClose()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QSignalSpy messages(iApp, &FwApplication::messageShown);
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Booked' created");
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Booked"));
        colorPicker(dialog)->setColor(QColor(0x33, 0x66, 0x99));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.shown);
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(records().last(), QStringLiteral("Booked=#336699"));
    QCOMPARE(dialog.id(), QVariant(maxId()));
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages.first().at(0).toString(), QStringLiteral("CalendarStatus 'Booked' created"));
    QCOMPARE(messages.first().at(1).toBool(), false);
    QCOMPARE(iApp->currentMessage(), QStringLiteral("CalendarStatus 'Booked' created"));
}

void tst_BkCalendarStatus::shouldCreateWithAColourPickedInItsDialog()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Away' created");
    bool pickerShown = false;
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Away"));
        // The colour dialog is modal in its turn; answered from its own timer.
        FwTest::whenModal([&](QWidget* modal) {
            auto* colors = qobject_cast<QColorDialog*>(modal);
            pickerShown = colors != nullptr;
            if (colors) {
                colors->setCurrentColor(QColor(0xcc, 0x00, 0x33));
                QTest::keyClick(colors, Qt::Key_Return);
            }
            if (modal->isVisible() && modal != &dialog)
                modal->close();
        });
        QTest::mouseClick(colorPicker(dialog), Qt::LeftButton);
        // Back in the name, Return presses the create button.
        QTest::mouseClick(nameEdit(dialog), Qt::LeftButton);
        QTest::keyClick(nameEdit(dialog), Qt::Key_Return);
    });
    QVERIFY(pickerShown);
    QCOMPARE(run.result, 1);
    QCOMPARE(records().last(), QStringLiteral("Away=#cc0033"));
}

void tst_BkCalendarStatus::shouldNotCreateWithAnEmptyName()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QSignalSpy messages(iApp, &FwApplication::messageShown);
    const QStringList before = records();
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        colorPicker(dialog)->setColor(Qt::red);
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("   "));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QCOMPARE(messages.count(), 0);
    QCOMPARE(records(), before);
    QVERIFY(dialog.id().isNull());
    // Nothing was reset either.
    QCOMPARE(colorPicker(dialog)->colorName(), QStringLiteral("#ff0000"));
    QCOMPARE(nameEdit(dialog)->text(), QStringLiteral("   "));
}

void tst_BkCalendarStatus::shouldEmptyTheFieldsAndFocusTheNameWhenStayingAfterCreate()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    dialog.setStay(true);
    QWidget* focusAfterCreate = nullptr;
    QStringList fieldsAfterCreate;
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Booked' created");
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Holiday' created");
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Booked"));
        colorPicker(dialog)->setColor(QColor(0x12, 0x34, 0x56));
        // The click puts the focus on the button first.
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
        focusAfterCreate = dialog.focusWidget();
        fieldsAfterCreate << nameEdit(dialog)->text() << colorPicker(dialog)->colorName();
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Holiday"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.openAfterGestures);
    QCOMPARE(focusAfterCreate, nameEdit(dialog));
    QCOMPARE(fieldsAfterCreate, (QStringList{QString(), QString()}));
    QCOMPARE(records().mid(2), (QStringList{QStringLiteral("Booked=#123456"), QStringLiteral("Holiday=")}));
    // The table starts a new record each time, and the dialog's id is the last one made.
    QVERIFY(tableOf(dialog)->getVariantId().isNull());
    QCOMPARE(dialog.id(), QVariant(maxId()));
    QCOMPARE(iApp->currentMessage(), QStringLiteral("CalendarStatus 'Holiday' created"));
}

void tst_BkCalendarStatus::shouldReportAFailedCreateAndCloseAsAccepted()
{
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    QSignalSpy messages(iApp, &FwApplication::messageShown);
    const QStringList before = records();
    QTest::ignoreMessage(QtInfoMsg,
                         QRegularExpression(QStringLiteral("^\\[host/src/FwTableBase:\\d+\\] .*UNIQUE")));
    QTest::ignoreMessage(QtInfoMsg,
                         QRegularExpression(QStringLiteral("^Critical: Error creating 'Confirmed' : ")));
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Confirmed"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.id(), QVariant(-1));
    QCOMPARE(records(), before);
    QCOMPARE(messages.count(), 1);
    const QString error = tableOf(dialog)->lastError();
    QVERIFY(error.contains(QStringLiteral("UNIQUE")));
    QCOMPARE(messages.first().at(0).toString(), QStringLiteral("Error creating 'Confirmed' : %1").arg(error));
    QCOMPARE(messages.first().at(1).toBool(), true);
}

void tst_BkCalendarStatus::shouldKeepTheFieldsOfAFailedCreateWhenStaying()
{
    // A name with place markers of its own stays as it is in the message.
    QVERIFY(sql(QStringLiteral("UPDATE tbl_calendarstatus SET cst_name = '50% %1' WHERE id = 1")));
    BkCalendarStatus dialog(FwEnums::DialogCreate);
    dialog.setStay(true);
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("UNIQUE")));
    QTest::ignoreMessage(QtInfoMsg,
                         QRegularExpression(QStringLiteral("^Critical: Error creating '50% %1' : ")));
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("50% %1"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.openAfterGestures);
    QCOMPARE(nameEdit(dialog)->text(), QStringLiteral("50% %1"));
    QCOMPARE(dialog.id(), QVariant(-1));
    QVERIFY(iApp->currentMessageCritical());
    QVERIFY(iApp->currentMessage().startsWith(QStringLiteral("Error creating '50% %1' : ")));
}

void tst_BkCalendarStatus::shouldFindAndClose()
{
    BkCalendarStatus dialog(FwEnums::DialogFind);
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("tent"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(dialog.id(), QVariant(2));
    QCOMPARE(nameEdit(dialog)->text(), QStringLiteral("Tentative"));
}

void tst_BkCalendarStatus::shouldTurnIntoAnEditOfTheFoundRecordWhenStaying()
{
    BkCalendarStatus dialog(FwEnums::DialogFind);
    dialog.setStay(true);
    QString titleAfterFind;
    QString colorAfterFind;
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("firm"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
        titleAfterFind = dialog.windowTitle();
        colorAfterFind = colorPicker(dialog)->colorName();
        typeName(dialog, QStringLiteral("Confirmed by phone"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.openAfterGestures);
    QCOMPARE(titleAfterFind, QStringLiteral("Edit CalendarStatus"));
    QCOMPARE(colorAfterFind, QStringLiteral("#00aa00"));
    QCOMPARE(dialog.type(), FwEnums::DialogEdit);
    QCOMPARE(createButton(dialog)->type(), FwEnums::ButtonSave);
    QCOMPARE(records().first(), QStringLiteral("Confirmed by phone=#00aa00"));
    QVERIFY(dialog.id().isNull()); // a find that stays chose nothing yet
}

void tst_BkCalendarStatus::shouldResetAndLockAfterAFindWithoutRecord()
{
    BkCalendarStatus dialog(FwEnums::DialogFind);
    QStringList fieldsAfterFind;
    bool lockedAfterFind = false;
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("Nobody"));
        colorPicker(dialog)->setColor(Qt::blue);
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
        fieldsAfterFind << nameEdit(dialog)->text() << colorPicker(dialog)->colorName();
        lockedAfterFind = !nameEdit(dialog)->isEnabled() && !colorPicker(dialog)->isEnabled() &&
                          !createButton(dialog)->isEnabled();
        // Typing goes nowhere now; Cancel still closes.
        QTest::keyClicks(nameEdit(dialog), QStringLiteral("x"));
        fieldsAfterFind << nameEdit(dialog)->text();
        QTest::mouseClick(cancelButton(dialog), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 0);
    QVERIFY(lockedAfterFind);
    QCOMPARE(fieldsAfterFind, (QStringList{QString(), QString(), QString()}));
    QVERIFY(cancelButton(dialog)->isEnabled());
    QVERIFY(dialog.id().isNull());
}

void tst_BkCalendarStatus::shouldLoadTheRecordOfItsId()
{
    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(2);
    QCOMPARE(nameEdit(dialog)->text(), QStringLiteral("Tentative"));
    QCOMPARE(colorPicker(dialog)->colorName(), QStringLiteral("#ffcc00"));
    QCOMPARE(tableOf(dialog)->getVariantId(), QVariant(2));
    QVERIFY(nameEdit(dialog)->isEnabled());
    QVERIFY(createButton(dialog)->isEnabled());
    // Loading is all: the dialog's own result stays unset.
    QVERIFY(dialog.id().isNull());
}

void tst_BkCalendarStatus::shouldLockWhenItsIdHasNoRecord()
{
    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(99);
    QVERIFY(!nameEdit(dialog)->isEnabled());
    QVERIFY(!colorPicker(dialog)->isEnabled());
    QVERIFY(!createButton(dialog)->isEnabled());
    QVERIFY(nameEdit(dialog)->text().isEmpty());
    const FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { QTest::mouseClick(cancelButton(dialog), Qt::LeftButton); });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 0);
}

void tst_BkCalendarStatus::shouldUpdateAndClose()
{
    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(1);
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        typeName(dialog, QStringLiteral("Fixed"));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(records(), (QStringList{QStringLiteral("Fixed=#00aa00"), QStringLiteral("Tentative=#ffcc00")}));

    BkCalendarStatus direct(FwEnums::DialogEdit);
    direct.setId(2);
    nameEdit(direct)->setText(QStringLiteral("Maybe"));
    QVERIFY(direct.updateRecord());
    QCOMPARE(direct.result(), int(QDialog::Accepted));
    QCOMPARE(records().last(), QStringLiteral("Maybe=#ffcc00"));
}

void tst_BkCalendarStatus::shouldLogAndStayOnAnEmptyNameInEdit()
{
    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(1);
    const QStringList before = records();
    QSignalSpy finished(&dialog, &QDialog::finished);
    QTest::ignoreMessage(QtInfoMsg, "[Source/BkCalendarStatus:76] Not Valid");
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        typeName(dialog, QString());
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(run.openAfterGestures);
    QCOMPARE(records(), before);
    QCOMPARE(finished.count(), 1); // only the test's own close

    QTest::ignoreMessage(QtInfoMsg, "[Source/BkCalendarStatus:76] Not Valid");
    QVERIFY(!dialog.updateRecord());
    QCOMPARE(finished.count(), 1);
}

void tst_BkCalendarStatus::shouldAcceptAFailedUpdateUnlessStaying()
{
    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(2);
    // The record goes away behind the dialog's back.
    QVERIFY(sql(QStringLiteral("DELETE FROM tbl_calendarstatus WHERE id = 2")));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("no longer exists")));
    const FwTest::DialogRun run =
        FwTest::runDialog(dialog, [&] { QTest::mouseClick(createButton(dialog), Qt::LeftButton); });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);

    BkCalendarStatus staying(FwEnums::DialogEdit);
    staying.setId(1);
    staying.setStay(true);
    QVERIFY(sql(QStringLiteral("DELETE FROM tbl_calendarstatus WHERE id = 1")));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("no longer exists")));
    QSignalSpy finished(&staying, &QDialog::finished);
    QVERIFY(!staying.updateRecord());
    QCOMPARE(finished.count(), 0);
}

void tst_BkCalendarStatus::shouldKeepStoredValuesThatItCannotShowOnSave_data()
{
    QTest::addColumn<QString>("storedName");
    QTest::addColumn<QString>("storedColor");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<QString>("newColor");
    QTest::addColumn<QString>("expected");
    const QString longName(300, QLatin1Char('n'));
    QTest::newRow("colour the picker can't read, name edited")
        << QStringLiteral("Confirmed") << QStringLiteral("greenish") << QStringLiteral("Fixed") << QString()
        << QStringLiteral("Fixed=greenish");
    QTest::newRow("colour with transparency, name edited")
        << QStringLiteral("Confirmed") << QStringLiteral("#80ff0000") << QStringLiteral("Fixed") << QString()
        << QStringLiteral("Fixed=#80ff0000");
    QTest::newRow("colour by name, name edited")
        << QStringLiteral("Confirmed") << QStringLiteral("red") << QStringLiteral("Fixed") << QString()
        << QStringLiteral("Fixed=red");
    QTest::newRow("name longer than the field, colour edited")
        << longName << QStringLiteral("#00aa00") << QString() << QStringLiteral("#123456")
        << longName + QStringLiteral("=#123456");
    QTest::newRow("what the user changes is written")
        << QStringLiteral("Confirmed") << QStringLiteral("greenish") << QStringLiteral("Fixed")
        << QStringLiteral("#123456") << QStringLiteral("Fixed=#123456");
}

// Rows come from outside: a value that the fields can't show as it is stays in the record unless
// the user changes that very field.
void tst_BkCalendarStatus::shouldKeepStoredValuesThatItCannotShowOnSave()
{
    QFETCH(QString, storedName);
    QFETCH(QString, storedColor);
    QFETCH(QString, newName);
    QFETCH(QString, newColor);
    QFETCH(QString, expected);
    SQLQuery store;
    QVERIFY(store.prepare(
        QStringLiteral("UPDATE tbl_calendarstatus SET cst_name = ?, cst_color = ? WHERE id = 1")));
    store.addBindValue(storedName);
    store.addBindValue(storedColor);
    QVERIFY(store.exec());

    BkCalendarStatus dialog(FwEnums::DialogEdit);
    dialog.setId(1);
    const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
        if (!newName.isEmpty())
            typeName(dialog, newName);
        if (!newColor.isEmpty())
            colorPicker(dialog)->setColor(QColor(newColor));
        QTest::mouseClick(createButton(dialog), Qt::LeftButton);
    });
    QVERIFY(!run.openAfterGestures);
    QCOMPARE(run.result, 1);
    QCOMPARE(records().first(), expected);
}

void tst_BkCalendarStatus::shouldKeepRecordIdsThatAreNoPlainNumbers_data()
{
    QTest::addColumn<QString>("idType");
    QTest::addColumn<QVariant>("id");
    QTest::addColumn<QVariant>("neighbour");
    QTest::newRow("fractional id") << QStringLiteral("NUMERIC") << QVariant(2.5) << QVariant(3);
    QTest::newRow("text id with leading zeros")
        << QStringLiteral("TEXT") << QVariant(QStringLiteral("007")) << QVariant(QStringLiteral("7"));
}

// Another program's table may key its statuses otherwise than by whole numbers. The record found is
// the one that is chosen and saved, not the one whose id looks the same as a whole number.
void tst_BkCalendarStatus::shouldKeepRecordIdsThatAreNoPlainNumbers()
{
    QFETCH(QString, idType);
    QFETCH(QVariant, id);
    QFETCH(QVariant, neighbour);
    struct Restore
    {
        ~Restore()
        {
            sql(QStringLiteral("DROP TABLE tbl_calendarstatus"));
            sql(QLatin1String(StatusTable));
        }
    } restore;
    QVERIFY(sql(QStringLiteral("DROP TABLE tbl_calendarstatus")));
    QVERIFY(sql(QStringLiteral("CREATE TABLE tbl_calendarstatus (id %1 PRIMARY KEY, cst_name VARCHAR(250), "
                               "cst_color VARCHAR(7))")
                    .arg(idType)));
    SQLQuery insert;
    QVERIFY(insert.prepare(
        QStringLiteral("INSERT INTO tbl_calendarstatus VALUES (?, ?, '#00aa00'), (?, ?, '#ffcc00')")));
    insert.addBindValue(id);
    insert.addBindValue(QStringLiteral("Odd"));
    insert.addBindValue(neighbour);
    insert.addBindValue(QStringLiteral("Plain"));
    QVERIFY(insert.exec());

    BkCalendarStatus finder(FwEnums::DialogFind);
    FwTest::DialogRun run = FwTest::runDialog(finder, [&] {
        QTest::keyClicks(nameEdit(finder), QStringLiteral("Odd"));
        QTest::mouseClick(createButton(finder), Qt::LeftButton);
    });
    QCOMPARE(run.result, 1);
    QCOMPARE(finder.id().toString(), id.toString());

    BkCalendarStatus editor(FwEnums::DialogFind);
    editor.setStay(true);
    run = FwTest::runDialog(editor, [&] {
        QTest::keyClicks(nameEdit(editor), QStringLiteral("Odd"));
        QTest::mouseClick(createButton(editor), Qt::LeftButton);
        typeName(editor, QStringLiteral("Odder"));
        QTest::mouseClick(createButton(editor), Qt::LeftButton);
    });
    QCOMPARE(records(), (QStringList{QStringLiteral("Odder=#00aa00"), QStringLiteral("Plain=#ffcc00")}));
}

void tst_BkCalendarStatus::shouldTakeItsMessageAwayWhenItGoes()
{
    QSignalSpy cleared(iApp, &FwApplication::messageCleared);
    auto* dialog = new BkCalendarStatus(FwEnums::DialogCreate);
    dialog->setStay(true);
    QVERIFY(showWithoutLoop(*dialog));
    typeName(*dialog, QStringLiteral("Booked"));
    QTest::ignoreMessage(QtInfoMsg, "Success: CalendarStatus 'Booked' created");
    QTest::mouseClick(createButton(*dialog), Qt::LeftButton);
    QCOMPARE(iApp->currentMessage(), QStringLiteral("CalendarStatus 'Booked' created"));
    QCOMPARE(cleared.count(), 0);
    delete dialog;
    QCOMPARE(cleared.count(), 1);
    QVERIFY(iApp->currentMessage().isEmpty());
}

FW_TEST_MAIN(tst_BkCalendarStatus)
#include "tst_bkcalendarstatus.moc"
