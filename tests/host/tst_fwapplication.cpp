// The application object: settings store, local values and the message area.
#include "FwTestApplication.h"

#include <FwApplication.h>
#include <FwLog.h>
#include <FwMainWindow.h>
#include <SQLQuery.h>

#include <QSaveFile>
#include <QSettings>
#include <QSignalSpy>
#include <QSqlError>
#include <QSqlQuery>
#include <QStatusBar>
#include <QTemporaryDir>

// Some stored values below are damaged so that reading them asks for more memory than there is. An
// allocator fails such a request, and the application must live through that failure; under the
// address sanitizer the request must fail in the same way rather than end the run.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FWTEST_ADDRESS_SANITIZER
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(FWTEST_ADDRESS_SANITIZER)
extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
#endif

class tst_FwApplication : public QObject
{
    Q_OBJECT

private slots:
    void shouldBeTheLiveApplication();
    void shouldGiveFallbackForUnsetKey();
    void shouldReadBackWhatWasSet_data();
    void shouldReadBackWhatWasSet();
    void shouldOverwriteAnEarlierValue();
    void shouldKeepSettingsInTheDatabaseTable();
    void shouldReadATextEditedInTheTable();
    void shouldKeepSettingsInMemoryWithoutDatabase();
    void shouldTellOfASettingTheDatabaseRefusedAndKeepIt();
    void shouldReadWhatAnotherConnectionWroteAndHoldNoLock();
    void shouldReadATableMadeAnew();
    void shouldKeepWhatWasReadUntilTheNextEvent();
    void shouldReadMalformedRowsAsText_data();
    void shouldReadMalformedRowsAsText();
    void shouldKeepLocalValuesInSettings();
    void shouldGiveDefaultForUnsetLocalValue();
    void shouldReadALocalValueThatAnotherProcessWrote();
    void shouldKeepLocalValuesApartPerApplication();
    void shouldGiveTheDefaultForADamagedLocalValue();
    void shouldShowMessagesInTheStatusBar();
    void shouldTakeTheMessageAwayAfterItsTime();
    void shouldLogMessagesWithoutMainWindow();
};

void tst_FwApplication::shouldBeTheLiveApplication()
{
    QVERIFY(FwApplication::app());
    QCOMPARE(FwApplication::app(), iApp);
    QCOMPARE(static_cast<QCoreApplication*>(iApp), QCoreApplication::instance());
}

void tst_FwApplication::shouldGiveFallbackForUnsetKey()
{
    QCOMPARE(iApp->getValue(QStringLiteral("set_neverset"), QString()).toString(), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_neverset"), QString()).toInt(), 0);
    QCOMPARE(iApp->getValue(QStringLiteral("gst_neverset"), QStringLiteral("0")).toString(),
             QStringLiteral("0"));
    QCOMPARE(iApp->getValue(QStringLiteral("gst_neverset"), QStringLiteral("7")).toInt(), 7);
}

void tst_FwApplication::shouldReadBackWhatWasSet_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("table");
    QTest::newRow("int, no table") << QVariant(1) << QString();
    QTest::newRow("string, user table") << QVariant(QStringLiteral("3,7,12")) << QStringLiteral("tbl_user");
    QTest::newRow("string list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b,c")})
                                 << QStringLiteral("tbl_user");
    QTest::newRow("bool") << QVariant(true) << QStringLiteral("tbl_global");
    QTest::newRow("empty string") << QVariant(QString()) << QString();
    // Values without a text form of their own come back as they went in, as they do from memory.
    QTest::newRow("list") << QVariant(QVariantList{1, QStringLiteral("x")}) << QStringLiteral("tbl_user");
    QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("a"), 1}}) << QString();
    QTest::newRow("size") << QVariant(QSize(3, 4)) << QString();
    QTest::newRow("null int") << QVariant(QVariant::Int) << QString();
    QTest::newRow("bytes with a zero") << QVariant(QByteArray("a\0b", 3)) << QString();
    QTest::newRow("bytes that aren't text") << QVariant(QByteArray("\xff\xfe\x01", 3)) << QString();
    QTest::newRow("bytes of text") << QVariant(QByteArrayLiteral("3,7")) << QString();
    QTest::newRow("character") << QVariant(QChar(0x00e9)) << QString();
    QTest::newRow("date and time") << QVariant(QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3, 456)))
                                   << QString();
}

void tst_FwApplication::shouldReadBackWhatWasSet()
{
    QFETCH(QVariant, value);
    QFETCH(QString, table);
    const QString key = QStringLiteral("set_roundtrip_%1").arg(QTest::currentDataTag());
    iApp->setValue(value, key, table);
    const QVariant read = iApp->getValue(key, QStringLiteral("fallback"));
    QCOMPARE(read, value);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read.toString(), value.toString());
    QCOMPARE(read.toByteArray(), value.toByteArray());
}

void tst_FwApplication::shouldOverwriteAnEarlierValue()
{
    iApp->setValue(1, QStringLiteral("set_alwaysroundup"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_alwaysroundup"), QString()).toInt(), 1);
    iApp->setValue(0, QStringLiteral("set_alwaysroundup"), QStringLiteral("tbl_user"));
    QCOMPARE(iApp->getValue(QStringLiteral("set_alwaysroundup"), QString()).toInt(), 0);
}

void tst_FwApplication::shouldKeepSettingsInTheDatabaseTable()
{
    iApp->setValue(QStringLiteral("4,5"), QStringLiteral("usr_bookinggrouplist"), QStringLiteral("tbl_user"));
    SQLQuery query;
    QVERIFY(
        query.prepare(QStringLiteral("SELECT fw_table, fw_value FROM fw_setting WHERE fw_key = ?"), true));
    query.addBindValue(QStringLiteral("usr_bookinggrouplist"));
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("tbl_user"));
    QCOMPARE(query.value(1).toString(), QStringLiteral("4,5"));
}

void tst_FwApplication::shouldReadATextEditedInTheTable()
{
    iApp->setValue(1, QStringLiteral("set_calshowtime"), QString());
    SQLQuery query;
    QVERIFY(
        query.exec(QStringLiteral("UPDATE fw_setting SET fw_value = '0' WHERE fw_key = 'set_calshowtime'")));
    QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QString()).toInt(), 0);
}

void tst_FwApplication::shouldKeepSettingsInMemoryWithoutDatabase()
{
    QSqlDatabase db = QSqlDatabase::database();
    iApp->setValue(5, QStringLiteral("set_before"), QString());
    db.close();
    QVERIFY(!db.isOpen());
    iApp->setValue(2, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QString()).toInt(), 2);
    QCOMPARE(iApp->getValue(QStringLiteral("set_before"), QStringLiteral("none")).toString(),
             QStringLiteral("none"));
    QVERIFY(db.open()); // a fresh, empty :memory: database
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QString()).toInt(), 2);
    // Written to the database again once it is there, and still read back.
    iApp->setValue(3, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QString()).toInt(), 3);
    SQLQuery query(QStringLiteral("SELECT fw_value FROM fw_setting WHERE fw_key = 'set_calexpandsize'"));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 3);
}

// The database refuses every write of a setting, as a file turned read-only or a lost server would:
// the value counts in this process all the same, and the application tells of the refusal. Without a
// database memory is the place of settings, and nothing is told.
void tst_FwApplication::shouldTellOfASettingTheDatabaseRefusedAndKeepIt()
{
    iApp->setValue(1, QStringLiteral("set_hideempty"), QString());
    SQLQuery refuse;
    QVERIFY(refuse.exec(QStringLiteral("CREATE TRIGGER refuse_update BEFORE UPDATE ON fw_setting "
                                       "BEGIN SELECT RAISE(ABORT, 'no writes today'); END")));
    QVERIFY(refuse.exec(QStringLiteral("CREATE TRIGGER refuse_insert BEFORE INSERT ON fw_setting "
                                       "BEGIN SELECT RAISE(ABORT, 'no writes today'); END")));
    QSignalSpy refused(iApp, &FwApplication::settingNotStored);
    iApp->setValue(0, QStringLiteral("set_hideempty"), QString());
    iApp->setValue(QStringLiteral("2:0"), QStringLiteral("usr_bookinggrouplist"), QStringLiteral("tbl_user"));
    QCOMPARE(refused.count(), 2);
    QCOMPARE(refused.at(0).at(0).toString(), QStringLiteral("set_hideempty"));
    QVERIFY2(refused.at(0).at(1).toString().contains(QStringLiteral("no writes today")),
             qPrintable(refused.at(0).at(1).toString()));
    QCOMPARE(refused.at(1).at(0).toString(), QStringLiteral("usr_bookinggrouplist"));
    QCOMPARE(iApp->getValue(QStringLiteral("set_hideempty"), QString()).toInt(), 0);
    QCOMPARE(iApp->getValue(QStringLiteral("usr_bookinggrouplist"), QString()).toString(),
             QStringLiteral("2:0"));
    SQLQuery stored(QStringLiteral("SELECT fw_value FROM fw_setting WHERE fw_key = 'set_hideempty'"));
    QVERIFY(stored.next());
    QCOMPARE(stored.value(0).toInt(), 1);
    stored.query().finish();

    QVERIFY(refuse.exec(QStringLiteral("DROP TRIGGER refuse_update")));
    QVERIFY(refuse.exec(QStringLiteral("DROP TRIGGER refuse_insert")));
    iApp->setValue(0, QStringLiteral("set_hideempty"), QString());
    QSqlDatabase db = QSqlDatabase::database();
    db.close();
    iApp->setValue(1, QStringLiteral("set_hideempty"), QString());
    QVERIFY(db.open()); // a fresh, empty :memory: database
    QCOMPARE(refused.count(), 2);
    iApp->setValue(0, QStringLiteral("set_hideempty"), QString());
}

void tst_FwApplication::shouldReadWhatAnotherConnectionWroteAndHoldNoLock()
{
    // The default connection moves to a file that a second connection writes as well, as another
    // user's session writes the practice's database.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("settings.sqlite"));
    QSqlDatabase db = QSqlDatabase::database();
    QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QString()).toInt(), 0); // on :memory:
    db.close();
    db.setDatabaseName(file);
    QVERIFY(db.open());
    iApp->setValue(1, QStringLiteral("set_calshowtime"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QString()).toInt(), 1);
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(file);
        // No waiting: a read of the application that still held its rows would make this fail at once.
        other.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        QVERIFY(other.open());
        for (int value = 2; value < 5; ++value) {
            QSqlQuery write(other);
            QVERIFY2(write.exec(QStringLiteral("UPDATE fw_setting SET fw_value = '%1' WHERE fw_key = "
                                               "'set_calshowtime'")
                                    .arg(value)),
                     qPrintable(write.lastError().text()));
            // Another program's edit counts from the application's next event.
            QCoreApplication::processEvents();
            QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QString()).toInt(), value);
        }
        QSqlQuery remove(other);
        QVERIFY(remove.exec(QStringLiteral("DELETE FROM fw_setting WHERE fw_key = 'set_calshowtime'")));
        QCoreApplication::processEvents();
        QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QStringLiteral("gone")).toString(),
                 QStringLiteral("gone"));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
    // Back to a fresh :memory: database for the tests that follow.
    db.close();
    db.setDatabaseName(QStringLiteral(":memory:"));
    QVERIFY(db.open());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calshowtime"), QStringLiteral("none")).toString(),
             QStringLiteral("none"));
}

void tst_FwApplication::shouldReadATableMadeAnew()
{
    iApp->setValue(4, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QString()).toInt(), 4);
    SQLQuery drop;
    QVERIFY(drop.exec(QStringLiteral("DROP TABLE fw_setting")));
    QCoreApplication::processEvents();
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QStringLiteral("none")).toString(),
             QStringLiteral("none"));
    iApp->setValue(6, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(iApp->getValue(QStringLiteral("set_calexpandsize"), QString()).toInt(), 6);
}

void tst_FwApplication::shouldKeepWhatWasReadUntilTheNextEvent()
{
    auto read = [](const char* key) {
        return iApp->getValue(QString::fromLatin1(key), QStringLiteral("unset")).toString();
    };
    auto edit = [](const QString& statement) {
        SQLQuery query;
        return query.exec(statement);
    };
    iApp->setValue(1, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(read("set_calexpandsize"), QStringLiteral("1"));
    QCOMPARE(read("set_kept_unset"), QStringLiteral("unset"));

    // An edit of the table from outside, as another program makes it: the work under way goes on
    // with the values it has read, a key found missing included.
    QVERIFY(edit(QStringLiteral("UPDATE fw_setting SET fw_value = '7' WHERE fw_key = 'set_calexpandsize'")));
    QVERIFY(edit(QStringLiteral("INSERT INTO fw_setting (fw_key, fw_table, fw_value, fw_type) "
                                "VALUES ('set_kept_unset', '', '3', 2)")));
    QCOMPARE(read("set_calexpandsize"), QStringLiteral("1"));
    QCOMPARE(read("set_kept_unset"), QStringLiteral("unset"));

    // From the next event on, both count.
    QCoreApplication::processEvents();
    QCOMPARE(read("set_calexpandsize"), QStringLiteral("7"));
    QCOMPARE(read("set_kept_unset"), QStringLiteral("3"));

    // A value written through the application counts at once.
    iApp->setValue(9, QStringLiteral("set_calexpandsize"), QString());
    QCOMPARE(read("set_calexpandsize"), QStringLiteral("9"));
    QVERIFY(edit(QStringLiteral("DELETE FROM fw_setting WHERE fw_key = 'set_kept_unset'")));
}

void tst_FwApplication::shouldReadMalformedRowsAsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("type");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("list not in JSON") << QStringLiteral("a,b") << QVariant(int(QMetaType::QStringList))
                                      << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")});
    QTest::newRow("broken JSON list") << QStringLiteral("[\"a\",") << QVariant(int(QMetaType::QStringList))
                                      << QVariant(QStringList{QStringLiteral("[\"a\""), QString()});
    QTest::newRow("int that isn't one")
        << QStringLiteral("abc") << QVariant(int(QMetaType::Int)) << QVariant(QStringLiteral("abc"));
    QTest::newRow("unknown type") << QStringLiteral("1") << QVariant(987654) << QVariant(QStringLiteral("1"));
    QTest::newRow("type not a number")
        << QStringLiteral("1") << QVariant(QStringLiteral("x")) << QVariant(QStringLiteral("1"));
    QTest::newRow("no type") << QStringLiteral("2") << QVariant() << QVariant(QStringLiteral("2"));
    QTest::newRow("list of values by hand")
        << QStringLiteral("1,x") << QVariant(int(QMetaType::QVariantList)) << QVariant(QStringLiteral("1,x"));
    QTest::newRow("size in another stream")
        << QStringLiteral("AAAAFQAAAAADAAAABA==") << QVariant(int(QMetaType::QVariantMap))
        << QVariant(QStringLiteral("AAAAFQAAAAADAAAABA=="));
    // A list whose count claims far more entries than the row holds must not take the memory for them.
    QTest::newRow("list claiming more entries than it holds")
        << QStringLiteral("AAAACQB////w") << QVariant(int(QMetaType::QVariantList))
        << QVariant(QStringLiteral("AAAACQB////w"));
}

void tst_FwApplication::shouldReadMalformedRowsAsText()
{
    QFETCH(QString, text);
    QFETCH(QVariant, type);
    QFETCH(QVariant, expected);
    iApp->setValue(QStringList{QStringLiteral("x")}, QStringLiteral("set_damaged"), QString());
    SQLQuery query;
    QVERIFY(query.prepare(QStringLiteral("UPDATE fw_setting SET fw_value = ?, fw_type = ? WHERE fw_key = ?"),
                          true));
    query.addBindValue(text);
    query.addBindValue(type);
    query.addBindValue(QStringLiteral("set_damaged"));
    QVERIFY(query.exec());
    QCOMPARE(query.numRowsAffected(), 1);
    QCOMPARE(iApp->getValue(QStringLiteral("set_damaged"), QString()), expected);
}

void tst_FwApplication::shouldKeepLocalValuesInSettings()
{
    const QStringList layout{QStringLiteral("1:120"), QStringLiteral("3:80")};
    iApp->setLocalValue(QStringLiteral("CalendarLayout"), layout);
    QCOMPARE(iApp->localValue(QStringLiteral("CalendarLayout"), QVariant(QVariant::Int)).toStringList(),
             layout);
    // A new QSettings of the application, as after a restart, sees the same value.
    QSettings settings(QCoreApplication::organizationName(), QCoreApplication::applicationName());
    QCOMPARE(settings.value(QStringLiteral("CalendarLayout")).toStringList(), layout);
    // The test mode keeps the value away from the user's own settings.
    QVERIFY(settings.fileName().contains(QStringLiteral("qttest")));
}

void tst_FwApplication::shouldGiveDefaultForUnsetLocalValue()
{
    const QVariant value = iApp->localValue(QStringLiteral("NeverStored"), QVariant(QVariant::Int));
    QCOMPARE(value.userType(), int(QMetaType::Int));
    QVERIFY(value.toStringList().isEmpty());
}

void tst_FwApplication::shouldReadALocalValueThatAnotherProcessWrote()
{
    const QString key = QStringLiteral("CalendarLayout");
    iApp->setLocalValue(key, QStringList{QStringLiteral("1:120")});
    QCOMPARE(iApp->localValue(key).toStringList(), QStringList{QStringLiteral("1:120")});

    // Another process writes the file its own way, past this process's view of it; twice, so that
    // the second write may come within the same millisecond as the first.
    const QString path =
        QSettings(QCoreApplication::organizationName(), QCoreApplication::applicationName()).fileName();
    const QList<QByteArray> writes{QByteArrayLiteral("[General]\nCalendarLayout=2:90, 3:80\n"),
                                   QByteArrayLiteral("[General]\nCalendarLayout=4:70, 5:60, 6:50\n")};
    const QList<QStringList> expected{
        {QStringLiteral("2:90"), QStringLiteral("3:80")},
        {QStringLiteral("4:70"), QStringLiteral("5:60"), QStringLiteral("6:50")}};
    for (int i = 0; i < writes.size(); ++i) {
        QSaveFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(writes.at(i));
        QVERIFY(file.commit());
        QCOMPARE(iApp->localValue(key).toStringList(), expected.at(i));
    }
    // And what this process writes next is what it reads, and what the file holds.
    iApp->setLocalValue(key, QStringList{QStringLiteral("7:40")});
    QCOMPARE(iApp->localValue(key).toStringList(), QStringList{QStringLiteral("7:40")});
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("7:40"));
}

void tst_FwApplication::shouldKeepLocalValuesApartPerApplication()
{
    const QString key = QStringLiteral("demo/view");
    const QString name = QCoreApplication::applicationName();
    iApp->setLocalValue(key, 1);
    QCoreApplication::setApplicationName(name + QStringLiteral("-other"));
    QCOMPARE(iApp->localValue(key, 0).toInt(), 0);
    iApp->setLocalValue(key, 2);
    QCoreApplication::setApplicationName(name);
    QCOMPARE(iApp->localValue(key, 0).toInt(), 1);
    QCoreApplication::setApplicationName(name + QStringLiteral("-other"));
    QCOMPARE(iApp->localValue(key, 0).toInt(), 2);
    iApp->setLocalValue(key, QVariant());
    QCoreApplication::setApplicationName(name);
    iApp->setLocalValue(key, QVariant());
}

void tst_FwApplication::shouldGiveTheDefaultForADamagedLocalValue()
{
    const QString name = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(name + QStringLiteral("-damaged"));
    const QString key = QStringLiteral("CalendarLayout");
    const QString path =
        QSettings(QCoreApplication::organizationName(), QCoreApplication::applicationName()).fileName();
    QFile::remove(path);
    iApp->setLocalValue(key, QStringList{QStringLiteral("1:120")});
    QCOMPARE(iApp->localValue(key).toStringList(), QStringList{QStringLiteral("1:120")});
    // A stored list whose count claims far more entries than the file holds.
    QSaveFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        QByteArrayLiteral("[General]\nCalendarLayout=\"@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xf0)\"\n"));
    QVERIFY(file.commit());

    const QVariant fallback(QVariant::Int);
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("damaged local value can't be read")));
    QCOMPARE(iApp->localValue(key, fallback), fallback);
    QCOMPARE(iApp->localValue(key, fallback), fallback);
    // A write is refused rather than break off half done; the file stays as it was.
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("CalendarLayout can't be stored")));
    iApp->setLocalValue(key, QStringList{QStringLiteral("2:90")});
    QCOMPARE(iApp->localValue(key, fallback), fallback);
    QCOMPARE(iApp->localValue(QStringLiteral("other"), 5).toInt(), 5);
    QCoreApplication::processEvents();

    QVERIFY(QFile::remove(path));
    QCoreApplication::setApplicationName(name);
}

void tst_FwApplication::shouldShowMessagesInTheStatusBar()
{
    FwMainWindow window;
    QCOMPARE(FwMainWindow::wnd(), &window);
    QSignalSpy shown(iApp, &FwApplication::messageShown);
    iApp->showSucces(QStringLiteral("Saved"), 5000);
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("Saved"));
    QTest::ignoreMessage(QtInfoMsg, "Critical: Broken");
    iApp->showCritical(QStringLiteral("Broken"), 5000);
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("Broken"));
    QCOMPARE(iApp->currentMessage(), QStringLiteral("Broken"));
    QVERIFY(iApp->currentMessageCritical());
    QCOMPARE(shown.count(), 2);
    QCOMPARE(shown.at(1).at(1).toBool(), true);
    iApp->clearMessage();
    QCOMPARE(window.statusBar()->currentMessage(), QString());
    QCOMPARE(window.statusBar()->styleSheet(), QString());
}

void tst_FwApplication::shouldTakeTheMessageAwayAfterItsTime()
{
    FwMainWindow window;
    iApp->showSucces(QStringLiteral("Short"), 50);
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("Short"));
    QTRY_COMPARE_WITH_TIMEOUT(window.statusBar()->currentMessage(), QString(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(iApp->currentMessage(), QString(), 30000);
    QCOMPARE(window.statusBar()->styleSheet(), QString()); // the next message starts plain
}

void tst_FwApplication::shouldLogMessagesWithoutMainWindow()
{
    QVERIFY(!FwMainWindow::wnd());
    QSignalSpy cleared(iApp, &FwApplication::messageCleared);
    QTest::ignoreMessage(QtInfoMsg, "Success: Done");
    iApp->showSucces(QStringLiteral("Done"), 5000);
    QCOMPARE(iApp->currentMessage(), QStringLiteral("Done"));
    QVERIFY(!iApp->currentMessageCritical());
    iApp->clearMessage();
    QCOMPARE(iApp->currentMessage(), QString());
    QCOMPARE(cleared.count(), 1);
    iApp->clearMessage(); // nothing left to clear
    QCOMPARE(cleared.count(), 1);
}

FW_TEST_MAIN(tst_FwApplication)
#include "tst_fwapplication.moc"
