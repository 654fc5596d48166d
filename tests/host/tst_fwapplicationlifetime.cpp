// The application object is reachable exactly while it lives.
#include <FwApplication.h>

#include <QtTest>

class tst_FwApplicationLifetime : public QObject
{
    Q_OBJECT

private slots:
    void shouldBeNullBeforeConstruction();
    void shouldBeTheObjectWhileItLives();
    void shouldBeNullAfterDestruction();
};

void tst_FwApplicationLifetime::shouldBeNullBeforeConstruction()
{
    QVERIFY(!FwApplication::app());
    QVERIFY(!iApp);
}

void tst_FwApplicationLifetime::shouldBeTheObjectWhileItLives()
{
    int argc = 1;
    char name[] = "tst_fwapplicationlifetime";
    char* argv[] = {name, nullptr};
    FwApplication app(argc, argv);
    QCOMPARE(FwApplication::app(), &app);
    QCOMPARE(iApp, &app);
}

void tst_FwApplicationLifetime::shouldBeNullAfterDestruction()
{
    QVERIFY(!FwApplication::app());
    QVERIFY(!iApp);
}

QTEST_APPLESS_MAIN(tst_FwApplicationLifetime)
#include "tst_fwapplicationlifetime.moc"
