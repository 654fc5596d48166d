// Record dialogs: result id, stay, type, input checks and the modal run.
#include "FwModal.h"
#include "FwTestApplication.h"

#include <FwDialog.h>
#include <FwPtrColorPicker.h>
#include <FwPtrEdit.h>
#include <FwTableBase.h>
#include <FwTableForm.h>
#include <SQLQuery.h>

#include <QAction>
#include <QSignalSpy>
#include <QVBoxLayout>

namespace {
// A dialog that chooses its id as the calendar's dialogs do: writes it, then accepts.
class ChoosingDialog : public FwDialog
{
public:
    explicit ChoosingDialog(QWidget* parent = nullptr)
        : FwDialog(parent, Qt::WindowFlags(), true, false)
    {
        auto* layout = new QVBoxLayout(this);
        form = new FwTableForm(this);
        form->setTableName(QStringLiteral("tbl_item"));
        auto* formLayout = new QVBoxLayout(form);
        name = new FwPtrEdit(form);
        name->setFieldName(QStringLiteral("itm_name"));
        name->setRequired(true);
        note = new FwPtrEdit(form);
        note->setFieldName(QStringLiteral("itm_note"));
        formLayout->addWidget(name);
        formLayout->addWidget(note);
        layout->addWidget(form);
    }
    void choose(const QVariant& id)
    {
        mId = id;
        accept();
    }
    void initContent() override { ++initContentCalls; }

    FwTableForm* form;
    FwPtrEdit* name;
    FwPtrEdit* note;
    int initContentCalls = 0;
};
} // namespace

class tst_FwDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void shouldStartWithoutIdAndStay();
    void shouldTakeModalAndStayFromTheConstructor();
    void shouldKeepStayAndType();
    void shouldLetTheUserKeepItOpen();
    void shouldCheckRequiredFields();
    void shouldCheckValidatedFields();
    void shouldGiveTheIdWrittenBeforeAccept();
    void shouldGiveNullIdWhenNothingChosen();
    void shouldInitContentOnceOnExec();
    void shouldWriteTheRecordOnUpdate();
    void shouldClearIdAndFields();
    void shouldConfirm();
    void shouldKeepTheHelpText();
};

void tst_FwDialog::initTestCase()
{
    SQLQuery query;
    QVERIFY(query.exec(
        QStringLiteral("CREATE TABLE tbl_item (id INTEGER PRIMARY KEY, itm_name TEXT, itm_note TEXT)")));
    QVERIFY(query.exec(
        QStringLiteral("INSERT INTO tbl_item (itm_name, itm_note) VALUES ('Desk', 'by the window')")));
}

void tst_FwDialog::shouldStartWithoutIdAndStay()
{
    FwDialog dialog;
    QVERIFY(dialog.id().isNull());
    QVERIFY(!dialog.stay());
    QCOMPARE(dialog.type(), FwEnums::DialogNone);
    QVERIFY(dialog.validInput()); // no fields, nothing to miss
}

void tst_FwDialog::shouldTakeModalAndStayFromTheConstructor()
{
    FwDialog modal(nullptr, Qt::WindowFlags(), true, false);
    QVERIFY(modal.isModal());
    QVERIFY(!modal.stay());
    FwDialog staying(nullptr, Qt::WindowFlags(), false, true);
    QVERIFY(!staying.isModal());
    QVERIFY(staying.stay());
}

void tst_FwDialog::shouldKeepStayAndType()
{
    FwDialog dialog;
    QSignalSpy typeChanged(&dialog, &FwDialog::typeChanged);
    dialog.setStay(true);
    QVERIFY(dialog.stay());
    dialog.setType(FwEnums::DialogFind);
    QCOMPARE(dialog.type(), FwEnums::DialogFind);
    dialog.setType(FwEnums::DialogCreate);
    QCOMPARE(int(dialog.type()), 4);
    QCOMPARE(typeChanged.count(), 2);
    QCOMPARE(int(FwEnums::DialogEdit), 1);
    QCOMPARE(int(FwEnums::DialogFind), 2);
}

void tst_FwDialog::shouldLetTheUserKeepItOpen()
{
    FwDialog dialog;
    QVERIFY(dialog.actions().contains(dialog.stayAction()));
    dialog.stayAction()->trigger();
    QVERIFY(dialog.stay());
    dialog.setStay(false);
    QVERIFY(!dialog.stayAction()->isChecked());
}

void tst_FwDialog::shouldCheckRequiredFields()
{
    ChoosingDialog dialog;
    QVERIFY(!dialog.validInput()); // the required name is empty
    dialog.name->setText(QStringLiteral("   "));
    QVERIFY(!dialog.validInput()); // blanks are no content
    dialog.name->setText(QStringLiteral("Desk"));
    QVERIFY(dialog.validInput()); // the note isn't required
    dialog.name->setRequired(false);
    dialog.name->clear();
    QVERIFY(dialog.validInput());
}

void tst_FwDialog::shouldCheckValidatedFields()
{
    ChoosingDialog dialog;
    dialog.name->setText(QStringLiteral("Desk"));
    dialog.note->setInputMask(QStringLiteral("99"));
    dialog.note->setText(QStringLiteral("1"));
    QVERIFY(!dialog.validInput());
    dialog.note->setText(QStringLiteral("12"));
    QVERIFY(dialog.validInput());
}

void tst_FwDialog::shouldGiveTheIdWrittenBeforeAccept()
{
    ChoosingDialog dialog;
    FwTest::whenModal([&](QWidget* modal) {
        QCOMPARE(modal, &dialog);
        dialog.choose(7);
    });
    QCOMPARE(dialog.exec(), 1);
    QCOMPARE(dialog.id(), QVariant(7));
    dialog.setResultId(QVariant(9));
    QCOMPARE(dialog.id(), QVariant(9));
}

void tst_FwDialog::shouldGiveNullIdWhenNothingChosen()
{
    ChoosingDialog dialog;
    dialog.setResultId(3);
    FwTest::whenModal([&](QWidget*) { dialog.choose(QVariant()); });
    QCOMPARE(dialog.exec(), 1);
    QVERIFY(dialog.id().isNull());
    // Escape rejects.
    FwTest::whenModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
    QCOMPARE(dialog.exec(), 0);
}

void tst_FwDialog::shouldInitContentOnceOnExec()
{
    ChoosingDialog dialog;
    QCOMPARE(dialog.initContentCalls, 0);
    FwTest::whenModal([&](QWidget*) { dialog.reject(); });
    dialog.exec();
    FwTest::whenModal([&](QWidget*) { dialog.reject(); });
    dialog.exec();
    QCOMPARE(dialog.initContentCalls, 1);
}

void tst_FwDialog::shouldWriteTheRecordOnUpdate()
{
    ChoosingDialog dialog;
    QVERIFY(dialog.form->priv()->setVariantId(1));
    QCOMPARE(dialog.name->text(), QStringLiteral("Desk"));
    dialog.note->setText(QStringLiteral("by the door"));
    QVERIFY(dialog.updateRecord());
    SQLQuery query(QStringLiteral("SELECT itm_note FROM tbl_item WHERE id = 1"), SQLDatabase{});
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("by the door"));
}

void tst_FwDialog::shouldClearIdAndFields()
{
    ChoosingDialog dialog;
    QVERIFY(dialog.form->priv()->setVariantId(1));
    dialog.setResultId(1);
    dialog.clear();
    QVERIFY(dialog.id().isNull());
    QVERIFY(dialog.form->priv()->getVariantId().isNull());
    QCOMPARE(dialog.name->text(), QString());
}

void tst_FwDialog::shouldConfirm()
{
    ChoosingDialog dialog;
    dialog.show();
    dialog.confirmNo();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    dialog.show();
    dialog.confirmYes();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    // OK with a missing required field stays open.
    dialog.setResult(QDialog::Rejected);
    dialog.show();
    QVERIFY(dialog.form->priv()->setVariantId(1));
    dialog.name->clear();
    dialog.confirmOk();
    QVERIFY(dialog.isVisible());
    dialog.name->setText(QStringLiteral("Table"));
    dialog.confirmOk();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void tst_FwDialog::shouldKeepTheHelpText()
{
    FwDialog dialog;
    dialog.setHelpText(QStringLiteral("HelpText - Test"));
    QCOMPARE(dialog.helpText(), QStringLiteral("HelpText - Test"));
    QCOMPARE(dialog.whatsThis(), QStringLiteral("HelpText - Test"));
}

FW_TEST_MAIN(tst_FwDialog)
#include "tst_fwdialog.moc"
