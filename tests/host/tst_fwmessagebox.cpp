// Questions to the user, answered from a timer while the box runs.
#include "FwModal.h"
#include "FwTestApplication.h"

#include <FwMessageBox.h>

#include <QPushButton>

class tst_FwMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void shouldReturnThePressedButton_data();
    void shouldReturnThePressedButton();
    void shouldPressTheDefaultOnReturn();
    void shouldOfferTheDefaultButtonToo();
    void shouldShowTitleTextAndCaptions();
    void shouldRefuseWhenClosedWithoutAButton();
    void shouldRefuseWhenItsParentGoes();
};

void tst_FwMessageBox::shouldReturnThePressedButton_data()
{
    QTest::addColumn<int>("pressed");
    QTest::newRow("yes") << int(QMessageBox::Yes);
    QTest::newRow("no") << int(QMessageBox::No);
}

void tst_FwMessageBox::shouldReturnThePressedButton()
{
    QFETCH(int, pressed);
    bool answered = false;
    FwTest::whenModal([&](QWidget* modal) {
        auto box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        answered = true;
        box->button(QMessageBox::StandardButton(pressed))->click();
    });
    const auto answer =
        FwMessageBox::question(nullptr, QStringLiteral("Calendar"), QStringLiteral("Book twice?"),
                               QMessageBox::Yes, QMessageBox::No, QStringList());
    QVERIFY(answered);
    QCOMPARE(int(answer), pressed);
}

void tst_FwMessageBox::shouldPressTheDefaultOnReturn()
{
    FwTest::whenModal([](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Return); });
    const auto answer =
        FwMessageBox::question(nullptr, QStringLiteral("Calendar"), QStringLiteral("Book twice?"),
                               QMessageBox::Yes, QMessageBox::No, QStringList());
    QCOMPARE(answer, QMessageBox::No);
}

void tst_FwMessageBox::shouldOfferTheDefaultButtonToo()
{
    QList<QMessageBox::StandardButton> offered;
    FwTest::whenModal([&](QWidget* modal) {
        auto box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        for (QAbstractButton* button : box->buttons())
            offered.append(box->standardButton(button));
        box->button(QMessageBox::Yes)->click();
    });
    FwMessageBox::question(nullptr, QString(), QStringLiteral("?"), QMessageBox::Yes, QMessageBox::No,
                           QStringList());
    QCOMPARE(offered.size(), 2);
    QVERIFY(offered.contains(QMessageBox::Yes));
    QVERIFY(offered.contains(QMessageBox::No));
}

void tst_FwMessageBox::shouldShowTitleTextAndCaptions()
{
    QString title;
    QString text;
    QString yesCaption;
    QString noCaption;
    FwTest::whenModal([&](QWidget* modal) {
        auto box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        title = box->windowTitle();
        text = box->text();
        yesCaption = box->button(QMessageBox::Yes)->text();
        noCaption = box->button(QMessageBox::No)->text();
        box->button(QMessageBox::No)->click();
    });
    QWidget parent;
    const auto answer =
        FwMessageBox::question(&parent, QStringLiteral("Double booking"), QStringLiteral("Room taken"),
                               QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
                               {QStringLiteral("Book anyway"), QStringLiteral("Leave it")});
    QCOMPARE(answer, QMessageBox::No);
    QCOMPARE(title, QStringLiteral("Double booking"));
    QCOMPARE(text, QStringLiteral("Room taken"));
    QCOMPARE(yesCaption, QStringLiteral("Book anyway"));
    QCOMPARE(noCaption, QStringLiteral("Leave it"));
}

void tst_FwMessageBox::shouldRefuseWhenClosedWithoutAButton()
{
    // The caller takes every answer but No as a Yes; a box that goes without a click must not agree.
    FwTest::whenModal([](QWidget* modal) {
        auto box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box);
        box->reject();
    });
    const auto answer =
        FwMessageBox::question(nullptr, QStringLiteral("Calendar"), QStringLiteral("Book twice?"),
                               QMessageBox::Yes, QMessageBox::No, QStringList());
    QCOMPARE(answer, QMessageBox::No);
}

void tst_FwMessageBox::shouldRefuseWhenItsParentGoes()
{
    auto* parent = new QWidget;
    parent->show();
    FwTest::whenModal([parent](QWidget*) { delete parent; });
    const auto answer =
        FwMessageBox::question(parent, QStringLiteral("Calendar"), QStringLiteral("Book twice?"),
                               QMessageBox::Yes, QMessageBox::No, QStringList());
    QCOMPARE(answer, QMessageBox::No);
    QVERIFY(!QApplication::activeModalWidget());
}

FW_TEST_MAIN(tst_FwMessageBox)
#include "tst_fwmessagebox.moc"
