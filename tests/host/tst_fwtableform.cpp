// Record forms bound to a table: insert, load, update, find and the empty result.
#include "FwTestApplication.h"

#include <FwPtrColorPicker.h>
#include <FwPtrEdit.h>
#include <FwTableBase.h>
#include <FwTableForm.h>
#include <SQLQuery.h>

#include <QSignalSpy>
#include <QVBoxLayout>

#include <memory>

namespace {
// A form like the calendar status editor: a required name and a colour.
struct StatusForm
{
    StatusForm()
        : form(new FwTableForm)
    {
        form->setTableName(QStringLiteral("tbl_calendarstatus"));
        form->setMode(FwEnums::ModeRecord);
        form->setState(FwEnums::StateReady);
        auto* layout = new QVBoxLayout(form.get());
        name = new FwPtrEdit(form.get());
        name->setObjectName(QStringLiteral("fpeName"));
        name->setFieldName(QStringLiteral("cst_name"));
        name->setRequired(true);
        name->setListPosition(0);
        name->setMaxLength(250);
        color = new FwPtrColorPicker(form.get());
        color->setObjectName(QStringLiteral("fpcColor"));
        color->setFieldName(QStringLiteral("cst_color"));
        layout->addWidget(name);
        layout->addWidget(color);
    }
    FwTableBase* table() const { return form->priv(); }

    std::unique_ptr<FwTableForm> form;
    FwPtrEdit* name;
    FwPtrColorPicker* color;
};

int countRows(const QString& where = QString())
{
    SQLQuery query(QStringLiteral("SELECT COUNT(*) FROM tbl_calendarstatus") + where, SQLDatabase{});
    return query.next() ? query.value(0).toInt() : -1;
}
} // namespace

class tst_FwTableForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void shouldKeepModeStateAndTable();
    void shouldBindTheNamedChildren();
    void shouldInsertARecordAndGiveItsId();
    void shouldGiveMinusOneWhenInsertFails();
    void shouldLoadARecordById();
    void shouldEmitQueryEmptyForAMissingId();
    void shouldUpdateTheCurrentRecord();
    void shouldNotUpdateWithoutACurrentRecord();
    void shouldFindARecordFromTheFields_data();
    void shouldFindARecordFromTheFields();
    void shouldEmitQueryEmptyWhenNothingIsFound();
    void shouldTakeUserTextAsDataOnly();
    void shouldRefuseNamesThatArentIdentifiers_data();
    void shouldRefuseNamesThatArentIdentifiers();
    void shouldClearForANewRecord();
    void shouldEnableAndDisableTheFields();
};

void tst_FwTableForm::init()
{
    SQLQuery query;
    QVERIFY(query.exec(QStringLiteral("DROP TABLE IF EXISTS tbl_calendarstatus")));
    QVERIFY(
        query.exec(QStringLiteral("CREATE TABLE tbl_calendarstatus (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                                  "cst_name VARCHAR(250) NOT NULL, cst_color VARCHAR(20))")));
    QVERIFY(
        query.exec(QStringLiteral("INSERT INTO tbl_calendarstatus (cst_name, cst_color) VALUES "
                                  "('Confirmed', '#00ff00'), ('Tentative', '#ffff00'), ('Cancelled', NULL), "
                                  "('50% paid', '#0000ff')")));
}

void tst_FwTableForm::shouldKeepModeStateAndTable()
{
    StatusForm status;
    QCOMPARE(status.form->tableName(), QStringLiteral("tbl_calendarstatus"));
    QCOMPARE(status.form->mode(), FwEnums::ModeRecord);
    QCOMPARE(status.form->state(), FwEnums::StateReady);
    QCOMPARE(int(FwEnums::ModeRecord), 1);
    QCOMPARE(int(FwEnums::StateReady), 1);
    QCOMPARE(status.table()->tableName(), QStringLiteral("tbl_calendarstatus"));
}

void tst_FwTableForm::shouldBindTheNamedChildren()
{
    StatusForm status;
    auto* unbound = new FwPtrEdit(status.form.get()); // no field name: not part of the record
    const QList<QWidget*> fields = status.table()->fields();
    QCOMPARE(fields.size(), 2);
    QVERIFY(fields.contains(status.name));
    QVERIFY(fields.contains(status.color));
    QVERIFY(!fields.contains(unbound));
}

void tst_FwTableForm::shouldInsertARecordAndGiveItsId()
{
    StatusForm status;
    status.name->setText(QStringLiteral("Billed"));
    status.color->setColor(QColor(255, 0, 0));
    const QVariant id = status.table()->insertCurrent();
    QCOMPARE(id, QVariant(5));
    QCOMPARE(status.table()->getVariantId(), QVariant(5));
    QVERIFY(status.table()->lastError().isEmpty());
    SQLQuery query(QStringLiteral("SELECT cst_name, cst_color FROM tbl_calendarstatus WHERE id = 5"),
                   SQLDatabase{});
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("Billed"));
    QCOMPARE(query.value(1).toString(), QStringLiteral("#ff0000"));
}

void tst_FwTableForm::shouldGiveMinusOneWhenInsertFails()
{
    StatusForm status; // empty name violates NOT NULL
    QTest::ignoreMessage(QtInfoMsg,
                         QRegularExpression(QStringLiteral("^\\[host/src/FwTableBase:\\d+\\] .*NOT NULL")));
    const QVariant id = status.table()->insertCurrent();
    QCOMPARE(id, QVariant(-1));
    QVERIFY(status.table()->lastError().contains(QStringLiteral("NOT NULL")));
    QCOMPARE(countRows(), 4);
}

void tst_FwTableForm::shouldLoadARecordById()
{
    StatusForm status;
    QSignalSpy empty(status.table(), &FwTableBase::queryEmpty);
    QVERIFY(status.table()->setVariantId(2));
    QCOMPARE(status.name->text(), QStringLiteral("Tentative"));
    QCOMPARE(status.color->colorName(), QStringLiteral("#ffff00"));
    QCOMPARE(status.table()->getVariantId(), QVariant(2));
    // A null colour in the table leaves the picker without colour.
    QVERIFY(status.table()->setVariantId(QStringLiteral("3")));
    QCOMPARE(status.name->text(), QStringLiteral("Cancelled"));
    QVERIFY(!status.color->color().isValid());
    QCOMPARE(status.color->colorName(), QString());
    QCOMPARE(empty.count(), 0);
}

void tst_FwTableForm::shouldEmitQueryEmptyForAMissingId()
{
    StatusForm status;
    QVERIFY(status.table()->setVariantId(1));
    QSignalSpy empty(status.table(), &FwTableBase::queryEmpty);
    QVERIFY(!status.table()->setVariantId(99));
    QCOMPARE(empty.count(), 1);
    QVERIFY(status.table()->getVariantId().isNull());
    QCOMPARE(status.name->text(), QString());
}

void tst_FwTableForm::shouldUpdateTheCurrentRecord()
{
    StatusForm status;
    QVERIFY(status.table()->setVariantId(1));
    status.name->setText(QStringLiteral("Confirmed by phone"));
    status.color->setColorName(QStringLiteral("#123456"));
    QVERIFY(status.form->updateCurrent());
    SQLQuery query(QStringLiteral("SELECT cst_name, cst_color FROM tbl_calendarstatus WHERE id = 1"),
                   SQLDatabase{});
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("Confirmed by phone"));
    QCOMPARE(query.value(1).toString(), QStringLiteral("#123456"));
    QCOMPARE(countRows(QStringLiteral(" WHERE cst_name = 'Tentative'")), 1); // others untouched
}

void tst_FwTableForm::shouldNotUpdateWithoutACurrentRecord()
{
    StatusForm status;
    status.name->setText(QStringLiteral("Nothing loaded"));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("No current record")));
    QVERIFY(!status.form->updateCurrent());
    QVERIFY(!status.table()->lastError().isEmpty());
    // A record deleted behind the form's back can't be written either.
    QVERIFY(status.table()->setVariantId(4));
    SQLQuery query(QStringLiteral("DELETE FROM tbl_calendarstatus WHERE id = 4"), SQLDatabase{});
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("no longer exists")));
    QVERIFY(!status.form->updateCurrent());
}

void tst_FwTableForm::shouldFindARecordFromTheFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("color");
    QTest::addColumn<bool>("exact");
    QTest::addColumn<int>("expectedId");
    QTest::newRow("part of a name") << QStringLiteral("tat") << QString() << false << 2;
    QTest::newRow("other case") << QStringLiteral("CANCEL") << QString() << false << 3;
    QTest::newRow("whole name") << QStringLiteral("confirmed") << QString() << true << 1;
    QTest::newRow("colour alone") << QString() << QStringLiteral("#ffff00") << false << 2;
    QTest::newRow("name and colour") << QStringLiteral("A") << QStringLiteral("#0000FF") << false << 4;
    QTest::newRow("nothing filled: first record") << QString() << QString() << false << 1;
}

void tst_FwTableForm::shouldFindARecordFromTheFields()
{
    QFETCH(QString, name);
    QFETCH(QString, color);
    QFETCH(bool, exact);
    QFETCH(int, expectedId);
    StatusForm status;
    status.name->setText(name);
    status.color->setColorName(color);
    QSignalSpy empty(status.table(), &FwTableBase::queryEmpty);
    QVERIFY(status.table()->execute(QString(), QString(), exact, false));
    QCOMPARE(status.table()->getVariantId(), QVariant(expectedId));
    SQLQuery query;
    QVERIFY(query.prepare(QStringLiteral("SELECT cst_name FROM tbl_calendarstatus WHERE id = ?"), true));
    query.addBindValue(expectedId);
    QVERIFY(query.exec() && query.next());
    QCOMPARE(status.name->text(), query.value(0).toString()); // the record is loaded
    QCOMPARE(empty.count(), 0);
}

void tst_FwTableForm::shouldEmitQueryEmptyWhenNothingIsFound()
{
    StatusForm status;
    status.name->setText(QStringLiteral("Unknown"));
    QSignalSpy empty(status.table(), &FwTableBase::queryEmpty);
    QVERIFY(!status.table()->execute(QString(), QString(), false, false));
    QCOMPARE(empty.count(), 1);
    QVERIFY(status.table()->getVariantId().isNull());
    // A whole-name search doesn't take a part for the whole.
    status.name->setText(QStringLiteral("Confirm"));
    QVERIFY(!status.table()->execute(QString(), QString(), true, false));
    QCOMPARE(empty.count(), 2);
}

void tst_FwTableForm::shouldTakeUserTextAsDataOnly()
{
    StatusForm status;
    // Wildcards match only themselves.
    status.name->setText(QStringLiteral("%"));
    QVERIFY(status.table()->execute(QString(), QString(), false, false));
    QCOMPARE(status.table()->getVariantId(), QVariant(4));
    status.name->setText(QStringLiteral("_"));
    QVERIFY(!status.table()->execute(QString(), QString(), false, false));
    // Quotes are stored as they stand.
    status.table()->initTable(true);
    status.name->setText(QStringLiteral("O'Brien'); DROP TABLE tbl_calendarstatus; --"));
    const QVariant id = status.table()->insertCurrent();
    QVERIFY(id.toInt() > 0);
    QCOMPARE(countRows(), 5);
    QVERIFY(status.table()->setVariantId(id));
    QCOMPARE(status.name->text(), QStringLiteral("O'Brien'); DROP TABLE tbl_calendarstatus; --"));
}

void tst_FwTableForm::shouldRefuseNamesThatArentIdentifiers_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("field");
    QTest::newRow("table with statement")
        << QStringLiteral("tbl_calendarstatus; DROP TABLE x") << QStringLiteral("cst_name");
    QTest::newRow("field with space") << QStringLiteral("tbl_calendarstatus") << QStringLiteral("cst name");
    QTest::newRow("field with quote") << QStringLiteral("tbl_calendarstatus") << QStringLiteral("cst_name'");
    QTest::newRow("empty table") << QString() << QStringLiteral("cst_name");
}

void tst_FwTableForm::shouldRefuseNamesThatArentIdentifiers()
{
    QFETCH(QString, table);
    QFETCH(QString, field);
    StatusForm status;
    status.form->setTableName(table);
    status.name->setFieldName(field);
    status.name->setText(QStringLiteral("Any"));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("Invalid (table|field) name")));
    QCOMPARE(status.table()->insertCurrent(), QVariant(-1));
    QVERIFY(status.table()->lastError().startsWith(QStringLiteral("Invalid")));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("Invalid (table|field) name")));
    QVERIFY(!status.table()->setVariantId(1));
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("Invalid (table|field) name")));
    QVERIFY(!status.table()->execute(QString(), QString(), false, false));
    QCOMPARE(countRows(), 4);
}

void tst_FwTableForm::shouldClearForANewRecord()
{
    StatusForm status;
    QVERIFY(status.table()->setVariantId(1));
    status.table()->initTable(false);
    QVERIFY(status.table()->getVariantId().isNull());
    QCOMPARE(status.name->text(), QStringLiteral("Confirmed")); // kept as a template
    QVERIFY(status.table()->setVariantId(1));
    status.table()->initTable(true);
    QVERIFY(status.table()->getVariantId().isNull());
    QCOMPARE(status.name->text(), QString());
    QVERIFY(!status.color->color().isValid());
}

void tst_FwTableForm::shouldEnableAndDisableTheFields()
{
    StatusForm status;
    status.table()->setFieldsEnabled(false);
    QVERIFY(!status.name->isEnabled());
    QVERIFY(!status.color->isEnabled());
    status.table()->setFieldsEnabled(true);
    QVERIFY(status.name->isEnabled());
    QVERIFY(status.color->isEnabled());
}

FW_TEST_MAIN(tst_FwTableForm)
#include "tst_fwtableform.moc"
