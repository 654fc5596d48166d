// The time scale's geometry: time to position and back, the rounding of the end to a whole step,
// the overlap test and the current-time marker's position.

#include <BkCalendarClock.h>
#include <BkCalendarTimeScale.h>

#include <QApplication>
#include <QGraphicsScene>
#include <QPalette>
#include <QSignalSpy>
#include <QtTest>

namespace {
int minuteOfDay(const QTime& t)
{
    return t.hour() * 60 + t.minute();
}

double expectedNowY(const BkCalendarTimeScale& scale, const QTime& now)
{
    return double(scale.topMargin()) +
           double(float(minuteOfDay(now) - minuteOfDay(scale.start())) * scale.minuteHeight());
}

// The calendar's working look: 06:00 to 20:00, quarter hours, 1.5 units a minute.
void workingDefaults(BkCalendarTimeScale& scale)
{
    scale.setMinuteHeight(1.5f);
    scale.setTopMargin(50.0f);
    scale.setTimeSteps(15);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
}
} // namespace

class tst_BkCalendarTimeScale : public QObject
{
    Q_OBJECT

private slots:
    void shouldStartWithItsDefaults();
    void shouldRoundTheDefaultDayUpToMidnight();
    void shouldLayOutTheWorkingInterval();
    void shouldPlaceTimesByMinuteWithoutClamping_data();
    void shouldPlaceTimesByMinuteWithoutClamping();
    void shouldExtendTheEndToAWholeStep_data();
    void shouldExtendTheEndToAWholeStep();
    void shouldKeepTheFullLastStepWhenTheRoundedEndWraps();
    void shouldChangeNothingOnASecondUpdate();
    void shouldAcceptAnEndBeforeTheStart();
    void shouldAlignToTheHourOnlyForDivisorsOfSixty_data();
    void shouldAlignToTheHourOnlyForDivisorsOfSixty();
    void shouldFindTheTimeOfAPositionWithSecondsCut_data();
    void shouldFindTheTimeOfAPositionWithSecondsCut();
    void shouldKeepSecondsAndWrapRoundTheClockInTimeAt();
    void shouldTellWhetherASpanOverlaps_data();
    void shouldTellWhetherASpanOverlaps();
    void shouldAnnounceEveryChange();
    void shouldPlaceTheMarkerAtTheCurrentTime_data();
    void shouldPlaceTheMarkerAtTheCurrentTime();
    void shouldMoveTheMarkerWhenTheClockRunsOn();
    void shouldFollowTheWallClockWhenNotStopped();
    void shouldRepaintTheMarkerBandFromTheMinuteTimer();
    void cleanup();
};

void tst_BkCalendarTimeScale::shouldStartWithItsDefaults()
{
    BkCalendarTimeScale scale(nullptr);
    QCOMPARE(scale.zValue(), 200.0);
    QCOMPARE(scale.pos(), QPointF(0.0, 25.0));
    QCOMPARE(scale.data(266).toInt(), 103);
    QCOMPARE(scale.start(), QTime(0, 0));
    QCOMPARE(scale.timeSteps(), 15);
    QCOMPARE(scale.minuteHeight(), 1.0f);
    QCOMPARE(scale.topMargin(), 50.0f);
    QCOMPARE(scale.width(), 50.0f);
    QVERIFY(scale.hourAligned());
    QCOMPARE(scale.highlight(),
             QApplication::palette().brush(QPalette::Current, QPalette::Highlight).color());
    QVERIFY(!scale.image().isNull());
    QVERIFY(scale.timer()->isActive());
    QCOMPARE(scale.timer()->interval(), 60000);
    QVERIFY(!scale.timer()->isSingleShot());
    QCOMPARE(scale.boundingRect(), scale.rect());
}

void tst_BkCalendarTimeScale::shouldRoundTheDefaultDayUpToMidnight()
{
    // 00:00 to 23:59:59: 1439 minutes, rest 14, so the end becomes midnight and the span a full day.
    BkCalendarTimeScale scale(nullptr);
    QCOMPARE(scale.end(), QTime(0, 0));
    QCOMPARE(scale.loops(), 96);
    QCOMPARE(scale.rect(), QRectF(0.0, 0.0, 50.0, 1440.0 + 50.0));
    // Midnight at the end reads as the end of the day.
    QVERIFY(scale.inside(QTime(23, 0), QTime(23, 30)));

    // The whole day stays whole through every later change, and so does a day set from midnight
    // to midnight.
    scale.setMinuteHeight(1.5f);
    QCOMPARE(scale.loops(), 96);
    QCOMPARE(scale.rect(), QRectF(0.0, 0.0, 50.0, 1440.0 * 1.5 + 50.0));
    scale.setTimeSteps(30);
    QCOMPARE(scale.loops(), 48);
    QCOMPARE(scale.end(), QTime(0, 0));
    scale.setInterval(QTime(0, 0), QTime(0, 0));
    QCOMPARE(scale.loops(), 48);
    QCOMPARE(scale.rect(), QRectF(0.0, 0.0, 50.0, 1440.0 * 1.5 + 50.0));
    // Another start keeps its plain arithmetic: an end of midnight is minute 0 of the day.
    scale.setInterval(QTime(18, 0), QTime(0, 0));
    QCOMPARE(scale.loops(), -36);
}

void tst_BkCalendarTimeScale::shouldLayOutTheWorkingInterval()
{
    BkCalendarTimeScale scale(nullptr);
    workingDefaults(scale);
    QCOMPARE(scale.end(), QTime(20, 0));
    QCOMPARE(scale.loops(), 56);
    QCOMPARE(scale.rect(), QRectF(0.0, 0.0, 50.0, 1310.0));
    QCOMPARE(scale.pointAt(0.0, QTime(6, 0)).y(), 50.0);
    QCOMPARE(scale.pointAt(0.0, QTime(6, 10)).y(), 65.0);
    QCOMPARE(scale.pointAt(0.0, QTime(20, 0)).y(), 1310.0);
}

void tst_BkCalendarTimeScale::shouldPlaceTimesByMinuteWithoutClamping_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QPointF>("point");

    QTest::newRow("start") << 0.0 << QTime(6, 0) << QPointF(0.0, 50.0);
    QTest::newRow("x is kept") << 123.25 << QTime(6, 10) << QPointF(123.25, 65.0);
    QTest::newRow("seconds ignored") << 0.0 << QTime(6, 10, 59, 999) << QPointF(0.0, 65.0);
    QTest::newRow("before the start") << 0.0 << QTime(5, 0) << QPointF(0.0, 50.0 - 90.0);
    QTest::newRow("after the end") << 0.0 << QTime(21, 0) << QPointF(0.0, 1310.0 + 90.0);
    QTest::newRow("midnight") << 0.0 << QTime(0, 0) << QPointF(0.0, 50.0 - 540.0);
}

void tst_BkCalendarTimeScale::shouldPlaceTimesByMinuteWithoutClamping()
{
    QFETCH(double, x);
    QFETCH(QTime, time);
    QFETCH(QPointF, point);
    BkCalendarTimeScale scale(nullptr);
    workingDefaults(scale);
    QCOMPARE(scale.pointAt(x, time), point);
}

void tst_BkCalendarTimeScale::shouldExtendTheEndToAWholeStep_data()
{
    QTest::addColumn<QTime>("start");
    QTest::addColumn<QTime>("end");
    QTest::addColumn<int>("step");
    QTest::addColumn<QTime>("roundedEnd");
    QTest::addColumn<int>("loops");

    QTest::newRow("17:10 at 15") << QTime(8, 0) << QTime(17, 10) << 15 << QTime(17, 15) << 37;
    QTest::newRow("on the step") << QTime(8, 0) << QTime(17, 15) << 15 << QTime(17, 15) << 37;
    QTest::newRow("one minute over") << QTime(8, 0) << QTime(9, 1) << 30 << QTime(9, 30) << 3;
    QTest::newRow("step of 7") << QTime(8, 0) << QTime(9, 0) << 7 << QTime(9, 3) << 9;
    QTest::newRow("start off the hour") << QTime(8, 10) << QTime(9, 0) << 20 << QTime(9, 10) << 3;
    QTest::newRow("seconds of the end are cut by the step")
        << QTime(8, 0) << QTime(8, 50, 30) << 15 << QTime(9, 0) << 4;
}

void tst_BkCalendarTimeScale::shouldExtendTheEndToAWholeStep()
{
    QFETCH(QTime, start);
    QFETCH(QTime, end);
    QFETCH(int, step);
    QFETCH(QTime, roundedEnd);
    QFETCH(int, loops);

    BkCalendarTimeScale scale(nullptr);
    scale.setTimeSteps(step);
    scale.setInterval(start, end);
    QCOMPARE(scale.start(), start);
    QCOMPARE(scale.end(), roundedEnd);
    QCOMPARE(scale.loops(), loops);
    const double minutes = minuteOfDay(roundedEnd) - minuteOfDay(start);
    QCOMPARE(scale.rect().height(), minutes * scale.minuteHeight() + scale.topMargin());
}

void tst_BkCalendarTimeScale::shouldKeepTheFullLastStepWhenTheRoundedEndWraps()
{
    // 06:00 to 23:50 at 15 rounds to 00:00, which lies before 06:00, so the stored end falls back to
    // 23:45 while loops and height still count up to 24:00.
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(1.5f);
    scale.setInterval(QTime(6, 0), QTime(23, 50));
    QCOMPARE(scale.end(), QTime(23, 45));
    QCOMPARE(scale.loops(), 72);
    QCOMPARE(scale.rect().height(), 1080.0 * 1.5 + 50.0);
}

void tst_BkCalendarTimeScale::shouldChangeNothingOnASecondUpdate()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setInterval(QTime(8, 0), QTime(17, 10));
    const QRectF rect = scale.rect();
    scale.setTimeSteps(15); // lays out again with the same values
    QCOMPARE(scale.end(), QTime(17, 15));
    QCOMPARE(scale.loops(), 37);
    QCOMPARE(scale.rect(), rect);

    // Only the wrapped case moves: the span shrinks back to the stored end.
    scale.setInterval(QTime(6, 0), QTime(23, 50));
    QCOMPARE(scale.loops(), 72);
    scale.setTimeSteps(15);
    QCOMPARE(scale.end(), QTime(23, 45));
    QCOMPARE(scale.loops(), 71);
    QCOMPARE(scale.rect().height(), 1065.0 + 50.0);
}

void tst_BkCalendarTimeScale::shouldAcceptAnEndBeforeTheStart()
{
    BkCalendarTimeScale scale(nullptr);
    scale.setInterval(QTime(10, 0), QTime(8, 0));
    QCOMPARE(scale.start(), QTime(10, 0));
    QCOMPARE(scale.end(), QTime(8, 0));
    QCOMPARE(scale.loops(), -8);
    QCOMPARE(scale.rect().height(), -120.0 + 50.0);
    QVERIFY(scale.rect().height() < scale.topMargin());
}

void tst_BkCalendarTimeScale::shouldAlignToTheHourOnlyForDivisorsOfSixty_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("aligned");
    QTest::newRow("7") << 7 << false;
    QTest::newRow("15") << 15 << true;
    QTest::newRow("20") << 20 << true;
    QTest::newRow("45") << 45 << false;
    QTest::newRow("60") << 60 << true;
    QTest::newRow("90") << 90 << false;
}

void tst_BkCalendarTimeScale::shouldAlignToTheHourOnlyForDivisorsOfSixty()
{
    QFETCH(int, step);
    QFETCH(bool, aligned);
    BkCalendarTimeScale scale(nullptr);
    scale.setTimeSteps(step);
    QCOMPARE(scale.hourAligned(), aligned);
}

void tst_BkCalendarTimeScale::shouldFindTheTimeOfAPositionWithSecondsCut_data()
{
    QTest::addColumn<float>("minuteHeight");
    QTest::addColumn<QTime>("time");
    QTest::newRow("1.5, on the minute") << 1.5f << QTime(6, 10);
    QTest::newRow("1.5, seconds cut") << 1.5f << QTime(14, 37, 42, 500);
    QTest::newRow("1.0") << 1.0f << QTime(19, 59, 59);
    QTest::newRow("0.75") << 0.75f << QTime(12, 1, 1);
    QTest::newRow("1.3, float truncation") << 1.3f << QTime(11, 23, 45);
    QTest::newRow("2.7, before the start") << 2.7f << QTime(5, 13, 5);
}

void tst_BkCalendarTimeScale::shouldFindTheTimeOfAPositionWithSecondsCut()
{
    QFETCH(float, minuteHeight);
    QFETCH(QTime, time);
    BkCalendarTimeScale scale(nullptr);
    scale.setMinuteHeight(minuteHeight);
    scale.setInterval(QTime(6, 0), QTime(20, 0));

    const QTime cut(time.hour(), time.minute());
    const QTime back = scale.timeAt(scale.pointAt(0.0, time).y());
    // The float division may land a hair under the minute and truncate to the second before.
    QVERIFY2(back == cut || back == cut.addSecs(-1), qPrintable(back.toString("hh:mm:ss.zzz")));
    if (minuteHeight == 1.5f || minuteHeight == 1.0f || minuteHeight == 0.75f)
        QCOMPARE(back, cut);
}

void tst_BkCalendarTimeScale::shouldKeepSecondsAndWrapRoundTheClockInTimeAt()
{
    BkCalendarTimeScale scale(nullptr);
    workingDefaults(scale);
    // 10.5 minutes below the start line, truncated to whole seconds.
    QCOMPARE(scale.timeAt(50.0 + 1.5 * 10.5), QTime(6, 10, 30));
    QCOMPARE(scale.timeAt(50.0 + 1.5 * 10.0 + 0.01), QTime(6, 10, 0));
    // Above the margin goes back before the start, toward zero.
    QCOMPARE(scale.timeAt(50.0 - 1.5 * 30.0), QTime(5, 30));
    // A day and an hour further wraps round the clock.
    QCOMPARE(scale.timeAt(50.0 + 1.5 * 25 * 60), QTime(7, 0));
    QCOMPARE(scale.timeAt(50.0 - 1.5 * 7 * 60), QTime(23, 0));
    // Far outside the span it still answers a time of day.
    QVERIFY(scale.timeAt(1e12).isValid());
    QVERIFY(scale.timeAt(-1e12).isValid());
}

void tst_BkCalendarTimeScale::shouldTellWhetherASpanOverlaps_data()
{
    QTest::addColumn<QTime>("scaleStart");
    QTest::addColumn<QTime>("scaleEnd");
    QTest::addColumn<QTime>("start");
    QTest::addColumn<QTime>("end");
    QTest::addColumn<bool>("inside");

    const QTime midnight(0, 0);
    QTest::newRow("whole day, any span") << midnight << midnight << QTime(8, 0) << QTime(9, 0) << true;
    QTest::newRow("whole day, empty span") << midnight << midnight << midnight << midnight << true;
    QTest::newRow("whole day, reversed span") << midnight << midnight << QTime(9, 0) << QTime(8, 0) << true;
    QTest::newRow("ends at the start") << QTime(9, 0) << QTime(17, 0) << QTime(8, 0) << QTime(9, 0) << false;
    QTest::newRow("ends a minute in") << QTime(8, 59) << QTime(17, 0) << QTime(8, 0) << QTime(9, 0) << true;
    QTest::newRow("ends a millisecond in")
        << QTime(9, 0) << QTime(17, 0) << QTime(8, 0) << QTime(9, 0, 0, 1) << true;
    QTest::newRow("starts at the end")
        << QTime(9, 0) << QTime(17, 0) << QTime(17, 0) << QTime(18, 0) << false;
    QTest::newRow("starts before the end")
        << QTime(9, 0) << QTime(17, 0) << QTime(16, 59, 59, 999) << QTime(18, 0) << true;
    QTest::newRow("covers the scale") << QTime(9, 0) << QTime(17, 0) << QTime(7, 0) << QTime(19, 0) << true;
    QTest::newRow("wholly after") << QTime(9, 0) << QTime(17, 0) << QTime(18, 0) << QTime(19, 0) << false;
    QTest::newRow("scale ends at midnight")
        << QTime(18, 0) << midnight << QTime(22, 0) << QTime(23, 0) << true;
    QTest::newRow("an end argument of midnight is plain midnight")
        << QTime(18, 0) << midnight << QTime(23, 0) << midnight << false;
}

void tst_BkCalendarTimeScale::shouldTellWhetherASpanOverlaps()
{
    QFETCH(QTime, scaleStart);
    QFETCH(QTime, scaleEnd);
    QFETCH(QTime, start);
    QFETCH(QTime, end);
    QFETCH(bool, inside);
    BkCalendarTimeScale scale(nullptr);
    scale.setInterval(scaleStart, scaleEnd);
    // An end of midnight must stay exactly midnight for its end-of-day reading.
    if (scaleEnd == QTime(0, 0))
        QCOMPARE(scale.end(), scaleEnd);
    QCOMPARE(scale.inside(start, end), inside);
}

void tst_BkCalendarTimeScale::shouldAnnounceEveryChange()
{
    BkCalendarTimeScale scale(nullptr);
    QSignalSpy spy(&scale, &BkCalendarTimeScale::updated);
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    QCOMPARE(spy.count(), 1);
    // No change detection: the same value announces again.
    scale.setInterval(QTime(6, 0), QTime(20, 0));
    QCOMPARE(spy.count(), 2);
    scale.setTimeSteps(30);
    QCOMPARE(spy.count(), 3);
    scale.setMinuteHeight(2.0f);
    QCOMPARE(spy.count(), 4);
    QCOMPARE(scale.rect().height(), 840.0 * 2.0 + 50.0);
    scale.setTopMargin(40.0f);
    QCOMPARE(spy.count(), 5);
    QCOMPARE(scale.rect().height(), 840.0 * 2.0 + 40.0);
    scale.setWidth(60.0f);
    QCOMPARE(spy.count(), 6);
    QCOMPARE(scale.rect(), QRectF(0.0, 0.0, 60.0, 1720.0));
}

void tst_BkCalendarTimeScale::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarTimeScale::shouldPlaceTheMarkerAtTheCurrentTime_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<double>("y");
    QTest::addColumn<double>("yFromEight");
    // 06:00 to 20:00 at 1.5 a minute: 06:00 is at 50; a start at 08:00 moves everything up by 180.
    const QDate monday(2026, 11, 23);
    QTest::newRow("start of the span") << QDateTime(monday, QTime(6, 0)) << 50.0 << -130.0;
    QTest::newRow("seconds play no part") << QDateTime(monday, QTime(12, 0, 59, 999)) << 590.0 << 410.0;
    QTest::newRow("end of the span") << QDateTime(monday, QTime(20, 0)) << 1310.0 << 1130.0;
    QTest::newRow("before the span, above the strip") << QDateTime(monday, QTime(0, 3)) << -485.5 << -665.5;
    QTest::newRow("Sunday night, below the strip")
        << QDateTime(QDate(2026, 11, 22), QTime(23, 59)) << 1668.5 << 1488.5;
    QTest::newRow("New Year's Eve") << QDateTime(QDate(2026, 12, 31), QTime(19, 59)) << 1308.5 << 1128.5;
    QTest::newRow("the hour that summer time skips")
        << QDateTime(QDate(2026, 3, 29), QTime(3, 30)) << -175.0 << -355.0;
}

void tst_BkCalendarTimeScale::shouldPlaceTheMarkerAtTheCurrentTime()
{
    QFETCH(QDateTime, now);
    QFETCH(double, y);
    QFETCH(double, yFromEight);
    BkCalendarClock::setFixedNow(now);
    BkCalendarTimeScale scale(nullptr);
    workingDefaults(scale);
    QCOMPARE(scale.nowY(), y);
    QCOMPARE(scale.nowY(), expectedNowY(scale, now.time()));

    // A later start moves the marker up by the same number of minutes, outside the strip if need be.
    scale.setInterval(QTime(8, 0), QTime(20, 0));
    QCOMPARE(scale.nowY(), yFromEight);
}

void tst_BkCalendarTimeScale::shouldMoveTheMarkerWhenTheClockRunsOn()
{
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    BkCalendarTimeScale scale(nullptr);
    workingDefaults(scale);
    QCOMPARE(scale.nowY(), 320.0);
    // Nothing changes until the minute timer fires; its timeout is joined to timeUpdated().
    BkCalendarClock::setFixedNow(QDateTime(QDate(2026, 11, 23), QTime(9, 10)));
    QCOMPARE(scale.nowY(), 320.0);
    const_cast<QTimer*>(scale.timer())->start(10);
    QTRY_COMPARE(scale.nowY(), 335.0);
}

void tst_BkCalendarTimeScale::shouldFollowTheWallClockWhenNotStopped()
{
    QVERIFY(!BkCalendarClock::isFixed());
    BkCalendarTimeScale scale(nullptr);
    const QTime before = QTime::currentTime();
    workingDefaults(scale);
    const QTime after = QTime::currentTime();
    // The minute may turn between the two readings, and midnight may come between them too.
    const double y = scale.nowY();
    QVERIFY2(y == expectedNowY(scale, before) || y == expectedNowY(scale, after),
             qPrintable(QString::number(y)));
}

void tst_BkCalendarTimeScale::shouldRepaintTheMarkerBandFromTheMinuteTimer()
{
    QGraphicsScene scene;
    auto* scale = new BkCalendarTimeScale(nullptr);
    scene.addItem(scale);
    QSignalSpy changed(&scene, &QGraphicsScene::changed);
    QTRY_VERIFY(changed.count() > 0);
    QCoreApplication::processEvents();
    changed.clear();
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 0);

    // Let the minute timer run fast; its timeout must repaint the band round the marker.
    const_cast<QTimer*>(scale->timer())->start(10);
    QTRY_VERIFY_WITH_TIMEOUT(changed.count() > 0, 20000);
    const QList<QRectF> regions = changed.first().first().value<QList<QRectF>>();
    QVERIFY(!regions.isEmpty());
    const QRectF band = scale->mapRectToScene(QRectF(0.0, scale->nowY() - 5.0 * scale->minuteHeight(),
                                                     scale->width(), 10.0 * scale->minuteHeight()));
    bool touched = false;
    for (const QRectF& region : regions)
        touched = touched || region.intersects(band);
    QVERIFY(touched);
}

QTEST_MAIN(tst_BkCalendarTimeScale)
#include "tst_bkcalendartimescale.moc"
