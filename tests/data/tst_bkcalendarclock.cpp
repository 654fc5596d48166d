// The calendar's clock: the wall clock, or a moment at which a test has stopped it.

#include <BkCalendarClock.h>

#include <QtTest>

class tst_BkCalendarClock : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void shouldRunWithTheWallClock();
    void shouldStandStillAtTheFixedMoment_data();
    void shouldStandStillAtTheFixedMoment();
    void shouldRunAgainAfterAnInvalidMoment();
};

void tst_BkCalendarClock::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarClock::shouldRunWithTheWallClock()
{
    QVERIFY(!BkCalendarClock::isFixed());
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime now = BkCalendarClock::now();
    const QDate date = BkCalendarClock::currentDate();
    const QTime time = BkCalendarClock::currentTime();
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(before <= now && now <= after);
    QVERIFY(before.date() <= date && date <= after.date());
    const QDateTime read(date, time);
    QVERIFY2(before <= read && read <= after, qPrintable(read.toString(Qt::ISODateWithMs)));
}

void tst_BkCalendarClock::shouldStandStillAtTheFixedMoment_data()
{
    QTest::addColumn<QDateTime>("moment");
    QTest::newRow("Sunday night") << QDateTime(QDate(2026, 11, 22), QTime(23, 59, 59, 999));
    QTest::newRow("New Year's Eve") << QDateTime(QDate(2026, 12, 31), QTime(23, 59));
    QTest::newRow("summer time starts") << QDateTime(QDate(2026, 3, 29), QTime(3, 0));
    QTest::newRow("summer time ends") << QDateTime(QDate(2026, 10, 25), QTime(2, 30));
}

void tst_BkCalendarClock::shouldStandStillAtTheFixedMoment()
{
    QFETCH(QDateTime, moment);
    BkCalendarClock::setFixedNow(moment);
    QVERIFY(BkCalendarClock::isFixed());
    QCOMPARE(BkCalendarClock::now(), moment);
    QTest::qWait(20);
    QCOMPARE(BkCalendarClock::now(), moment);
    QCOMPARE(BkCalendarClock::currentDate(), moment.date());
    QCOMPARE(BkCalendarClock::currentTime(), moment.time());
}

void tst_BkCalendarClock::shouldRunAgainAfterAnInvalidMoment()
{
    BkCalendarClock::setFixedNow(QDateTime(QDate(2000, 1, 1), QTime(12, 0)));
    BkCalendarClock::setFixedNow(QDateTime());
    QVERIFY(!BkCalendarClock::isFixed());
    QVERIFY(BkCalendarClock::now().date() > QDate(2000, 1, 1));
}

QTEST_MAIN(tst_BkCalendarClock)
#include "tst_bkcalendarclock.moc"
