#include "BkCalendarItem.h"
#include "BkCalendarModel.h"
#include "BkCalendarRecords.h"

#include <QLocale>
#include <QMap>
#include <QSignalSpy>
#include <QtTest>

class TestBkCalendarRecords : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void shouldMeanNobodyByDefault();
    void shouldTakeIdNameAndTypeInOrder();
    void shouldOrderKeys_data();
    void shouldOrderKeys();
    void shouldTreatKeysDifferingOnlyInNameAsOneKey();
    void shouldKeepUserAndResourceWithSameIdApart();
    void shouldFileIdsWithSameIntegerUnderOneMapKeyButCompareThemUnequal();
    void shouldMatchItemByTheIdTheKeySelects_data();
    void shouldMatchItemByTheIdTheKeySelects();
    void shouldMatchNoItemWithNullKey();
    void shouldNeedNoInfoRecordForPlanWithoutInfo();
    void shouldGiveDefaultInfoForUnknownInfoId();
    void shouldCarryRecordsInVariants();
};

void TestBkCalendarRecords::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestBkCalendarRecords::shouldMeanNobodyByDefault()
{
    const BkCalendarResource nobody;
    QVERIFY(nobody.id.isNull());
    QVERIFY(nobody.name.isEmpty());
    QCOMPARE(nobody.type, 0);
}

void TestBkCalendarRecords::shouldTakeIdNameAndTypeInOrder()
{
    const BkCalendarResource room(12, QStringLiteral("Room 1"), 1);
    QCOMPARE(room.id, QVariant(12));
    QCOMPARE(room.name, QStringLiteral("Room 1"));
    QCOMPARE(room.type, 1);

    const BkCalendarResource ann(3, QStringLiteral("Ann"));
    QCOMPARE(ann.type, 0);
}

void TestBkCalendarRecords::shouldOrderKeys_data()
{
    QTest::addColumn<QVariant>("idA");
    QTest::addColumn<int>("typeA");
    QTest::addColumn<QVariant>("idB");
    QTest::addColumn<int>("typeB");
    QTest::addColumn<bool>("aBeforeB");

    QTest::newRow("user before resource despite larger id") << QVariant(90) << 0 << QVariant(1) << 1 << true;
    QTest::newRow("resource after user") << QVariant(1) << 1 << QVariant(90) << 0 << false;
    QTest::newRow("users by id numerically") << QVariant(9) << 0 << QVariant(10) << 0 << true;
    QTest::newRow("numeric strings numerically")
        << QVariant(QStringLiteral("9")) << 1 << QVariant(QStringLiteral("10")) << 1 << true;
    QTest::newRow("larger id after") << QVariant(10) << 0 << QVariant(9) << 0 << false;
    QTest::newRow("same id not before") << QVariant(4) << 1 << QVariant(4) << 1 << false;
    QTest::newRow("non-number reads as 0")
        << QVariant(QStringLiteral("abc")) << 0 << QVariant(1) << 0 << true;
    QTest::newRow("null id reads as 0") << QVariant() << 0 << QVariant(-1) << 0 << false;
}

void TestBkCalendarRecords::shouldOrderKeys()
{
    QFETCH(QVariant, idA);
    QFETCH(int, typeA);
    QFETCH(QVariant, idB);
    QFETCH(int, typeB);
    QFETCH(bool, aBeforeB);

    QCOMPARE(BkCalendarResource(idA, QString(), typeA) < BkCalendarResource(idB, QString(), typeB), aBeforeB);
}

void TestBkCalendarRecords::shouldTreatKeysDifferingOnlyInNameAsOneKey()
{
    const BkCalendarResource a(5, QStringLiteral("Ann"), 0);
    const BkCalendarResource b(5, QStringLiteral("Anna"), 0);
    QVERIFY(a == b);
    QVERIFY(!(a != b));
    QVERIFY(!(a < b));
    QVERIFY(!(b < a));

    QMap<BkCalendarResource, int> map;
    map.insert(a, 1);
    map.insert(b, 2);
    QCOMPARE(map.size(), 1);
    QCOMPARE(map.value(a), 2);

    // The model's load ranges are keyed the same way: the second name asks for nothing new.
    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    model.items(QDate(2024, 3, 4), a);
    model.items(QDate(2024, 3, 4), b);
    QCOMPARE(loads.count(), 1);
}

void TestBkCalendarRecords::shouldKeepUserAndResourceWithSameIdApart()
{
    const BkCalendarResource user(7, QStringLiteral("Ann"), 0);
    const BkCalendarResource resource(7, QStringLiteral("Ann"), 1);
    QVERIFY(!(user == resource));
    QVERIFY(user != resource);
    QVERIFY(user < resource);
    QVERIFY(!(resource < user));

    QMap<BkCalendarResource, int> map;
    map.insert(user, 1);
    map.insert(resource, 2);
    QCOMPARE(map.size(), 2);
}

void TestBkCalendarRecords::shouldFileIdsWithSameIntegerUnderOneMapKeyButCompareThemUnequal()
{
    const BkCalendarResource a(QStringLiteral("007"), QString(), 0);
    const BkCalendarResource b(QStringLiteral("7"), QString(), 0);
    QVERIFY(a != b);
    QVERIFY(!(a < b) && !(b < a));

    QMap<BkCalendarResource, int> map;
    map.insert(a, 1);
    map.insert(b, 2);
    QCOMPARE(map.size(), 1);
}

void TestBkCalendarRecords::shouldMatchItemByTheIdTheKeySelects_data()
{
    QTest::addColumn<QVariant>("keyId");
    QTest::addColumn<int>("keyType");
    QTest::addColumn<bool>("match");

    // The item below has user 3 and resource 8.
    QTest::newRow("user by user id") << QVariant(3) << 0 << true;
    QTest::newRow("resource by resource id") << QVariant(8) << 1 << true;
    QTest::newRow("user key never by resource id") << QVariant(8) << 0 << false;
    QTest::newRow("resource key never by user id") << QVariant(3) << 1 << false;
    QTest::newRow("other user") << QVariant(4) << 0 << false;
    QTest::newRow("type 2 refused") << QVariant(8) << 2 << false;
    QTest::newRow("type 2 refused for user id") << QVariant(3) << 2 << false;
    QTest::newRow("null id") << QVariant() << 0 << false;
}

void TestBkCalendarRecords::shouldMatchItemByTheIdTheKeySelects()
{
    QFETCH(QVariant, keyId);
    QFETCH(int, keyType);
    QFETCH(bool, match);

    BkCalendarItem item;
    item.setUserId(3);
    item.setResourceId(8);
    QCOMPARE(item.isLike(BkCalendarResource(keyId, QString(), keyType)), match);
}

void TestBkCalendarRecords::shouldMatchNoItemWithNullKey()
{
    // An item without user is still refused by a key that has no id at all.
    BkCalendarItem item;
    item.setResourceId(2);
    QVERIFY(!item.isLike(BkCalendarResource()));
    QVERIFY(!item.isLike(BkCalendarResource(QVariant(), QString(), 1)));

    BkCalendarModel model;
    QSignalSpy loads(&model, &BkCalendarModel::loadData);
    QVERIFY(model.items(QDate(2024, 5, 6), BkCalendarResource()).isEmpty());
    QCOMPARE(loads.count(), 0);
    // Plans do not make that test: a key without an id asks for data.
    QVERIFY(model.plans(QDate(2024, 5, 6), BkCalendarResource()).isEmpty());
    QCOMPARE(loads.count(), 1);
}

void TestBkCalendarRecords::shouldNeedNoInfoRecordForPlanWithoutInfo()
{
    BkCalendarPlan plan;
    QCOMPARE(plan.infoId, -1);
    QVERIFY(!plan.bookable);

    BkCalendarModel model;
    QVERIFY(model.planInfos().isEmpty());
    const BkCalendarPlanInfo info = model.planInfo(plan.infoId);
    QVERIFY(info.id.isNull());
    QVERIFY(!info.color.isValid());
    QVERIFY(info.label.isEmpty());
}

void TestBkCalendarRecords::shouldGiveDefaultInfoForUnknownInfoId()
{
    BkCalendarModel model;
    BkCalendarPlanInfo known;
    known.id = 1;
    known.color = Qt::green;
    known.label = QStringLiteral("Open");
    known.description = QStringLiteral("Open for booking");
    model.addItem(known);

    const BkCalendarPlanInfo found = model.planInfo(QVariant(1));
    QCOMPARE(found.color, QColor(Qt::green));
    QCOMPARE(found.label, QStringLiteral("Open"));
    QCOMPARE(found.description, QStringLiteral("Open for booking"));

    const BkCalendarPlanInfo unknown = model.planInfo(QVariant(2));
    QVERIFY(unknown.id.isNull());
    QVERIFY(!unknown.color.isValid());
    QVERIFY(unknown.label.isEmpty());
    QVERIFY(unknown.description.isEmpty());
}

void TestBkCalendarRecords::shouldCarryRecordsInVariants()
{
    QVERIFY(QMetaType::type("BkCalendarResource") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("BkCalendarItem*") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("QList<BkCalendarItem*>") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("BkCalendarPlan*") != QMetaType::UnknownType);

    const QVariant value = QVariant::fromValue(BkCalendarResource(4, QStringLiteral("Bo"), 1));
    const BkCalendarResource back = value.value<BkCalendarResource>();
    QCOMPARE(back.id, QVariant(4));
    QCOMPARE(back.name, QStringLiteral("Bo"));
    QCOMPARE(back.type, 1);

    BkCalendarPlan plan;
    QCOMPARE(QVariant::fromValue(&plan).value<BkCalendarPlan*>(), &plan);
}

QTEST_MAIN(TestBkCalendarRecords)
#include "tst_bkcalendarrecords.moc"
