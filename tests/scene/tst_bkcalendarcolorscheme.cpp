// The grid's colour scheme: ten fixed colours and a status table that copies share until they change.

#include <BkCalendarColorScheme.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarTimeScale.h>

#include <QtTest>

class tst_BkCalendarColorScheme : public QObject
{
    Q_OBJECT

private slots:
    void shouldHoldTenFixedOpaqueColours_data();
    void shouldHoldTenFixedOpaqueColours();
    void shouldStartWithAnEmptyStatusTable();
    void shouldGiveCopiesTheirOwnStatusTable();
    void shouldNotAddAStatusByLookingItUp();
};

void tst_BkCalendarColorScheme::shouldHoldTenFixedOpaqueColours_data()
{
    QTest::addColumn<QColor>("actual");
    QTest::addColumn<QString>("hex");

    const BkCalendarColorScheme scheme;
    QTest::newRow("frame") << scheme.frame << "#5d8cc8";
    QTest::newRow("selectedFrame") << scheme.selectedFrame << "#ee9311";
    QTest::newRow("hourLine") << scheme.hourLine << "#a5bfe0";
    QTest::newRow("stepLine") << scheme.stepLine << "#e6edf7";
    QTest::newRow("header") << scheme.header << "#dee7f3";
    QTest::newRow("headerGradient") << scheme.headerGradient << "#c2d4eb";
    QTest::newRow("selectedHeader") << scheme.selectedHeader << "#fae18d";
    QTest::newRow("selectedHeaderGradient") << scheme.selectedHeaderGradient << "#f3b94e";
    QTest::newRow("resourceHeader") << scheme.resourceHeader << "#e5c2eb";
    QTest::newRow("resourceHeaderGradient") << scheme.resourceHeaderGradient << "#e0a5eb";
}

void tst_BkCalendarColorScheme::shouldHoldTenFixedOpaqueColours()
{
    QFETCH(QColor, actual);
    QFETCH(QString, hex);
    QVERIFY(actual.isValid());
    QCOMPARE(actual.spec(), QColor::Rgb);
    QCOMPARE(actual.alpha(), 255);
    QCOMPARE(actual.name(), hex);
}

void tst_BkCalendarColorScheme::shouldStartWithAnEmptyStatusTable()
{
    const BkCalendarColorScheme scheme;
    QVERIFY(scheme.statusColors.isEmpty());
}

void tst_BkCalendarColorScheme::shouldGiveCopiesTheirOwnStatusTable()
{
    // The view owns one scheme and fills its table once the database answers; copies handed out
    // before that do not see it, copies handed out after do, and a copy's changes stay its own.
    BkCalendarColorScheme live;
    const BkCalendarColorScheme before = live;

    live.statusColors.insert(3, BkCalendarStatusEntry{QStringLiteral("Confirmed"), QColor(10, 200, 30)});
    live.statusColors.insert(1, BkCalendarStatusEntry{QStringLiteral("Open"), QColor(200, 10, 30)});
    QVERIFY(before.statusColors.isEmpty());

    BkCalendarColorScheme after = live;
    QCOMPARE(after.statusColors.size(), 2);
    QCOMPARE(after.statusColors.value(3).name, QStringLiteral("Confirmed"));
    QCOMPARE(after.statusColors.value(3).color, QColor(10, 200, 30));
    // Ordered by id.
    QCOMPARE(after.statusColors.firstKey(), 1);
    QCOMPARE(after.frame, live.frame);

    after.statusColors[3].color = Qt::black;
    after.statusColors.insert(9, BkCalendarStatusEntry{QStringLiteral("Late"), Qt::gray});
    after.frame = Qt::red;
    QCOMPARE(live.statusColors.size(), 2);
    QCOMPARE(live.statusColors.value(3).color, QColor(10, 200, 30));
    QCOMPARE(live.frame, QColor(93, 140, 200));
}

void tst_BkCalendarColorScheme::shouldNotAddAStatusByLookingItUp()
{
    // The booking box is the table's one reader: an id the table lacks leaves the table as it is,
    // and the box falls back to the booking's own colours.
    BkCalendarColorScheme scheme;
    scheme.statusColors.insert(3, BkCalendarStatusEntry{QStringLiteral("Confirmed"), Qt::green});
    BkCalendarTimeScale scale(nullptr);
    BkCalendarItem item;
    item.setTime(QTime(8, 0), QTime(9, 0));
    item.topColor = Qt::red;
    item.bottomColor = Qt::blue;
    item.statusId = 42;
    BkCalendarItemWidget box(&item, &scale);
    box.setColorScheme(&scheme);

    box.itemChanged(&item);

    QCOMPARE(scheme.statusColors.size(), 1);
    QVERIFY(!scheme.statusColors.contains(42));
    QCOMPARE(box.gradient().stops().first().second, QColor(Qt::red));

    // A known id gives its colour, and the table still has its one row.
    item.statusId = 3;
    box.itemChanged(&item);
    QCOMPARE(box.gradient().stops().first().second, QColor(Qt::green));
    QCOMPARE(scheme.statusColors.size(), 1);
}

QTEST_MAIN(tst_BkCalendarColorScheme)
#include "tst_bkcalendarcolorscheme.moc"
