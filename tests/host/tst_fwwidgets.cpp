// The smaller widgets of the framework: buttons, pickers, menus, text, log, pictures and the main
// window's handling of forms.
#include "FwModal.h"
#include "FwTestApplication.h"

#include <FwDatePicker.h>
#include <FwForm.h>
#include <FwGroupBox.h>
#include <FwLog.h>
#include <FwMainWindow.h>
#include <FwMenu.h>
#include <FwMenuBar.h>
#include <FwPtrColorPicker.h>
#include <FwPushButton.h>
#include <FwTextDocument.h>
#include <FwToolBar.h>

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {
// A form that notes the calls of its life cycle.
class RecordingForm : public FwForm
{
public:
    bool open(FwFormPrivate* priv) override
    {
        calls << QStringLiteral("open");
        return FwForm::open(priv);
    }
    bool setupToolBar(FwToolBar* toolBar) override
    {
        calls << QStringLiteral("setupToolBar");
        toolBar->addAction(QStringLiteral("Day"));
        return true;
    }
    bool setupMenuBar(FwMenuBar* menuBar) override
    {
        calls << QStringLiteral("setupMenuBar");
        auto* menu = new FwMenu(QStringLiteral("Calendars"), menuBar);
        menuBar->addMenu(menu);
        return true;
    }
    void opened() override { calls << QStringLiteral("opened"); }
    bool close() override
    {
        calls << QStringLiteral("close");
        return FwForm::close();
    }
    void closed() override { calls << QStringLiteral("closed"); }

    QStringList calls;
};
} // namespace

class tst_FwWidgets : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void shouldCaptionButtonsByType_data();
    void shouldCaptionButtonsByType();
    void shouldLetTheCaptionBeChangedAfterTheType();
    void shouldGiveThePickedDate();
    void shouldPickADateByKeyboard();
    void shouldNotChangeTheDateOnCancel();
    void shouldPickAColour();
    void shouldKeepColourOnCancel();
    void shouldTakeOnlyValidColourNames_data();
    void shouldTakeOnlyValidColourNames();
    void shouldTakeRichAndPlainText();
    void shouldAddActionsToMenus();
    void shouldBeAGroupBoxAndAToolBar();
    void shouldProvideThePadlockPicture();
    void shouldLogToCategoryAndFile();
    void shouldRunTheFormLifeCycle();
    void shouldKeepTheHostsOwnMenusWhenTheFormCloses();
    void shouldSetUpAFormOnceWhenItIsOpenedAgain();
    void shouldTakeDownTheBarsOfAFormDeletedWhileShown();
    void shouldKeepTheLoggedInUser();
    void shouldTakeDocks();
    void shouldForgetTheMainWindowWhenItGoes();
};

void tst_FwWidgets::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_FwWidgets::shouldCaptionButtonsByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<bool>("isDefault");
    QTest::newRow("create") << 1 << QStringLiteral("&Create") << true;
    QTest::newRow("save") << 2 << QStringLiteral("&Save") << true;
    QTest::newRow("find") << 4 << QStringLiteral("&Find") << true;
    QTest::newRow("cancel") << 5 << QStringLiteral("C&ancel") << false;
    QTest::newRow("ok") << 11 << QStringLiteral("&OK") << true;
    QTest::newRow("clear") << 17 << QStringLiteral("C&lear") << false;
}

void tst_FwWidgets::shouldCaptionButtonsByType()
{
    QFETCH(int, type);
    QFETCH(QString, caption);
    QFETCH(bool, isDefault);
    FwPushButton button;
    button.setObjectName(QStringLiteral("pbTest"));
    button.setType(FwEnums::ButtonType(type));
    QCOMPARE(int(button.type()), type);
    QCOMPARE(button.text(), caption);
    QVERIFY(!button.icon().isNull());
    QCOMPARE(button.isDefault(), isDefault);
    QSignalSpy clicked(&button, &QAbstractButton::clicked);
    button.click();
    QCOMPARE(clicked.count(), 1);
}

void tst_FwWidgets::shouldLetTheCaptionBeChangedAfterTheType()
{
    FwPushButton button;
    button.setType(FwEnums::ButtonCreate);
    button.setText(QStringLiteral("&Create status"));
    QCOMPARE(button.text(), QStringLiteral("&Create status"));
    button.setType(FwEnums::ButtonFind); // switching the type brings its caption
    QCOMPARE(button.text(), QStringLiteral("&Find"));
    button.setType(FwEnums::ButtonNone); // no caption of its own: the text stays
    QCOMPARE(button.text(), QStringLiteral("&Find"));
    QVERIFY(button.icon().isNull());
}

void tst_FwWidgets::shouldGiveThePickedDate()
{
    QWidget parent;
    FwDatePicker* picker = new FwDatePicker(&parent, Qt::WindowFlags());
    picker->setDate(QDate(2024, 3, 1));
    QCOMPARE(picker->date(), QDate(2024, 3, 1));
    FwTest::whenModal([&](QWidget* modal) {
        QCOMPARE(modal, picker);
        picker->calendar()->setSelectedDate(QDate(2024, 3, 15));
        picker->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    });
    QCOMPARE(picker->exec(), 1);
    QCOMPARE(picker->date(), QDate(2024, 3, 15));
    delete picker;
}

void tst_FwWidgets::shouldPickADateByKeyboard()
{
    FwDatePicker picker(nullptr, Qt::WindowFlags());
    picker.setDate(QDate(2024, 2, 28));
    FwTest::whenModal([&](QWidget*) {
        QWidget* view = picker.calendar()->findChild<QAbstractItemView*>();
        QVERIFY(view);
        QTest::keyClick(view, Qt::Key_Right); // a day on: leap day
        QTest::keyClick(view, Qt::Key_Return);
    });
    QCOMPARE(picker.exec(), 1);
    QCOMPARE(picker.date(), QDate(2024, 2, 29));
}

void tst_FwWidgets::shouldNotChangeTheDateOnCancel()
{
    FwDatePicker picker(nullptr, Qt::WindowFlags());
    picker.setDate(QDate(2024, 5, 5));
    FwTest::whenModal(
        [&](QWidget*) { picker.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click(); });
    QCOMPARE(picker.exec(), 0);
    QCOMPARE(picker.date(), QDate(2024, 5, 5));
}

void tst_FwWidgets::shouldPickAColour()
{
    FwPtrColorPicker picker;
    picker.setObjectName(QStringLiteral("fpcColor"));
    picker.setFieldName(QStringLiteral("cst_color"));
    QCOMPARE(picker.fieldName(), QStringLiteral("cst_color"));
    QSignalSpy changed(&picker, &FwPtrColorPicker::colorChanged);
    FwTest::whenModal([](QWidget* modal) {
        auto dialog = qobject_cast<QColorDialog*>(modal);
        QVERIFY(dialog);
        dialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        dialog->accept();
    });
    picker.click();
    QCOMPARE(picker.colorName(), QStringLiteral("#123456"));
    QCOMPARE(picker.text(), QStringLiteral("#123456"));
    QCOMPARE(changed.count(), 1);
}

void tst_FwWidgets::shouldKeepColourOnCancel()
{
    FwPtrColorPicker picker;
    picker.setColorName(QStringLiteral("#abcdef"));
    FwTest::whenModal([](QWidget* modal) {
        auto dialog = qobject_cast<QColorDialog*>(modal);
        QVERIFY(dialog);
        dialog->setCurrentColor(Qt::red);
        dialog->reject();
    });
    picker.click();
    QCOMPARE(picker.colorName(), QStringLiteral("#abcdef"));
}

void tst_FwWidgets::shouldTakeOnlyValidColourNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("stored");
    QTest::newRow("hex") << QStringLiteral("#FF8000") << QStringLiteral("#ff8000");
    QTest::newRow("named") << QStringLiteral("red") << QStringLiteral("#ff0000");
    QTest::newRow("with alpha") << QStringLiteral("#80ff0000") << QStringLiteral("#ff0000");
    QTest::newRow("blanks") << QStringLiteral("  #00ff00 ") << QStringLiteral("#00ff00");
    QTest::newRow("garbage") << QStringLiteral("#zz") << QString();
    QTest::newRow("empty") << QString() << QString();
}

void tst_FwWidgets::shouldTakeOnlyValidColourNames()
{
    QFETCH(QString, name);
    QFETCH(QString, stored);
    FwPtrColorPicker picker;
    picker.setColorName(name);
    QCOMPARE(picker.colorName(), stored);
}

void tst_FwWidgets::shouldTakeRichAndPlainText()
{
    FwTextDocument document;
    document.setRichText(QStringLiteral("<b>Meeting</b> with <i>Ann</i>"));
    QCOMPARE(document.toPlainText(), QStringLiteral("Meeting with Ann"));
    QVERIFY(document.toHtml().contains(QStringLiteral("font-weight:600")));
    document.setRichText(QStringLiteral("Line one\nLine two"));
    QCOMPARE(document.blockCount(), 2);
    document.setRichText(QStringLiteral("a < b"));
    QCOMPARE(document.toPlainText(), QStringLiteral("a < b"));
    document.setDocumentMargin(0);
    document.setTextWidth(100);
    QCOMPARE(document.textWidth(), 100.0);
}

void tst_FwWidgets::shouldAddActionsToMenus()
{
    FwMenu menu(nullptr);
    QWidget target;
    QAction* action =
        menu.addAction(QStringLiteral("Remove custom size"), &target, SLOT(hide()), QKeySequence());
    QVERIFY(action);
    QCOMPARE(menu.actions().size(), 1);
    target.show();
    action->trigger();
    QVERIFY(!target.isVisible());
    auto* other = new QAction(QStringLiteral("Day"), &menu);
    menu.addAction(other);
    QCOMPARE(menu.actions().size(), 2);
    FwMenu titled(QStringLiteral("Calendars"), nullptr);
    QCOMPARE(titled.title(), QStringLiteral("Calendars"));
    FwMenuBar bar;
    bar.addMenu(&titled);
    QCOMPARE(bar.actions().size(), 1);
    QCOMPARE(bar.actions().first()->menu(), &titled);
}

void tst_FwWidgets::shouldBeAGroupBoxAndAToolBar()
{
    FwGroupBox box(nullptr);
    box.setTitle(QStringLiteral("Details"));
    QCOMPARE(box.title(), QStringLiteral("Details"));
    FwToolBar bar;
    bar.setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    QMacNativeToolBar* base = &bar;
    base->addAction(new QAction(QStringLiteral("Day"), &bar));
    QCOMPARE(bar.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QCOMPARE(bar.actions().size(), 1);
}

void tst_FwWidgets::shouldProvideThePadlockPicture()
{
    const QImage lock(QStringLiteral(":/widgets/lock.png"));
    QVERIFY(!lock.isNull());
    QCOMPARE(lock.size(), QSize(16, 16));
    QVERIFY(lock.hasAlphaChannel());
    QCOMPARE(qAlpha(lock.pixel(0, 0)), 0);    // drawn on a clear ground
    QVERIFY(qAlpha(lock.pixel(8, 12)) > 200); // the body of the lock
}

void tst_FwWidgets::shouldLogToCategoryAndFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("calendar.log"));
    FwLog::setLogFile(file);
    QCOMPARE(FwLog::logFile(), file);
    QTest::ignoreMessage(QtInfoMsg, "[Source/BkCalendarStatus:76] Not Valid");
    FwLog::log(QStringLiteral("[%1:%2] %3")
                   .arg(QStringLiteral("Source/BkCalendarStatus"))
                   .arg(76)
                   .arg(QStringLiteral("Not Valid")));
    FwLog::setLogFile(QString());
    QTest::ignoreMessage(QtInfoMsg, "not in the file");
    FwLog::log(QStringLiteral("not in the file"));
    QFile log(file);
    QVERIFY(log.open(QIODevice::ReadOnly | QIODevice::Text));
    const QString content = QString::fromUtf8(log.readAll());
    QVERIFY(content.endsWith(QStringLiteral(" [Source/BkCalendarStatus:76] Not Valid\n")));
    QVERIFY(!content.contains(QStringLiteral("not in the file")));
    QCOMPARE(QString::fromLatin1(fwLog().categoryName()), QStringLiteral("fw.log"));
    QVERIFY(fwLog().isInfoEnabled());
}

void tst_FwWidgets::shouldRunTheFormLifeCycle()
{
    FwMainWindow window;
    QPointer<RecordingForm> form = new RecordingForm;
    form->setTitle(QStringLiteral("Calendar"));
    QVERIFY(window.openForm(form));
    QCOMPARE(form->calls, (QStringList{QStringLiteral("setupMenuBar"), QStringLiteral("setupToolBar"),
                                       QStringLiteral("open"), QStringLiteral("opened")}));
    QVERIFY(form->isOpen());
    QCOMPARE(window.centralWidget(), form.data());
    QCOMPARE(window.form(), form.data());
    QCOMPARE(form->toolBar(), window.formToolBar());
    QCOMPARE(window.formToolBar()->actions().size(), 1);
    QCOMPARE(window.fwMenuBar()->actions().size(), 1);
    const QPointer<QMenu> menu = window.fwMenuBar()->actions().first()->menu();
    QVERIFY(menu);
    QVERIFY(window.closeForm());
    QCOMPARE(form->calls.mid(4), (QStringList{QStringLiteral("close"), QStringLiteral("closed")}));
    QVERIFY(!window.form());
    QVERIFY(window.fwMenuBar()->actions().isEmpty());
    QVERIFY(!window.formToolBar());
    QTRY_VERIFY(form.isNull()); // the window deletes the form it took over
    // The menus that the form put on the bar go with it: each opening would leave another set.
    QTRY_VERIFY(menu.isNull());
}

void tst_FwWidgets::shouldKeepTheHostsOwnMenusWhenTheFormCloses()
{
    FwMainWindow window;
    const QPointer<QMenu> edit = window.fwMenuBar()->addMenu(QStringLiteral("&Edit"));
    QVERIFY(window.openForm(new RecordingForm));
    QCOMPARE(window.fwMenuBar()->actions().size(), 2);
    QVERIFY(window.closeForm());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // Only what the form put on the bar goes with it.
    QVERIFY(edit);
    QCOMPARE(window.fwMenuBar()->actions(), QList<QAction*>{edit->menuAction()});
}

void tst_FwWidgets::shouldSetUpAFormOnceWhenItIsOpenedAgain()
{
    FwMainWindow window;
    QPointer<RecordingForm> form = new RecordingForm;
    QVERIFY(window.openForm(form));
    QVERIFY(window.openForm(form));
    QCOMPARE(window.form(), form.data());
    QCOMPARE(form->calls, (QStringList{QStringLiteral("setupMenuBar"), QStringLiteral("setupToolBar"),
                                       QStringLiteral("open"), QStringLiteral("opened")}));
    QCOMPARE(window.fwMenuBar()->actions().size(), 1);
    QCOMPARE(window.findChildren<FwToolBar*>().size(), 1);
    QVERIFY(window.closeForm());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(form.isNull());
    QVERIFY(window.fwMenuBar()->actions().isEmpty());
    QVERIFY(window.findChildren<FwToolBar*>().isEmpty());
}

void tst_FwWidgets::shouldTakeDownTheBarsOfAFormDeletedWhileShown()
{
    FwMainWindow window;
    const QPointer<QMenu> edit = window.fwMenuBar()->addMenu(QStringLiteral("&Edit"));
    auto* form = new RecordingForm;
    QVERIFY(window.openForm(form));
    const QPointer<QMenu> menu = window.fwMenuBar()->actions().last()->menu();
    delete form;
    QVERIFY(!window.form());
    QVERIFY(!window.formToolBar());
    QCOMPARE(window.fwMenuBar()->actions(), QList<QAction*>{edit->menuAction()});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(menu.isNull());
    QVERIFY(window.findChildren<FwToolBar*>().isEmpty());
    // The next form finds the bars as clean as the first one did.
    auto* next = new RecordingForm;
    QVERIFY(window.openForm(next));
    QCOMPARE(window.fwMenuBar()->actions().size(), 2);
    QCOMPARE(window.findChildren<FwToolBar*>().size(), 1);
    QVERIFY(window.closeForm());
}

void tst_FwWidgets::shouldKeepTheLoggedInUser()
{
    FwMainWindow window;
    QVERIFY(window.userId().isNull());
    QSignalSpy changed(&window, &FwMainWindow::userIdChanged);
    window.setUserId(12);
    QCOMPARE(FwMainWindow::wnd()->userId(), QVariant(12));
    QCOMPARE(FwMainWindow::wnd()->userId().toInt(), 12);
    QCOMPARE(changed.count(), 1);
}

void tst_FwWidgets::shouldTakeDocks()
{
    FwMainWindow window;
    auto* dock = new QDockWidget(QStringLiteral("Date"), &window);
    QVERIFY(window.dockWidgets().isEmpty());
    FwMainWindow::wnd()->addDockWidget(Qt::RightDockWidgetArea, dock);
    QCOMPARE(window.dockWidgets(), QList<QDockWidget*>{dock});
    FwMainWindow::wnd()->removeDockWidget(dock);
    QVERIFY(window.dockWidgets().isEmpty());
}

void tst_FwWidgets::shouldForgetTheMainWindowWhenItGoes()
{
    {
        FwMainWindow window;
        QCOMPARE(FwMainWindow::wnd(), &window);
    }
    QVERIFY(!FwMainWindow::wnd());
}

FW_TEST_MAIN(tst_FwWidgets)
#include "tst_fwwidgets.moc"
