// The calendar view: days of one person or one day of a group, the week rule, the status colours,
// the info messages, the keys, and the scene that takes a drag preview back.

#include "BkShownView.h"
#include "FwTestApplication.h"

#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarHeader.h>
#include <BkCalendarInfoWidget.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarScene.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <SQLQuery.h>

#include <QFocusEvent>
#include <QGraphicsSceneDragDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <functional>

namespace {
// A Wednesday; the week around it runs from Monday 23 to Sunday 29 November.
const QDate Wednesday(2026, 11, 25);
const QDate Monday(2026, 11, 23);

QList<QDate> columnDates(const BkCalendarView& view)
{
    QList<QDate> dates;
    for (BkCalendarColumn* column : view.getColumnList())
        dates << column->date();
    return dates;
}

QList<QDate> daysFrom(const QDate& first, int count)
{
    QList<QDate> dates;
    for (int i = 0; i < count; ++i)
        dates << first.addDays(i);
    return dates;
}

QList<int> selectedIndices(const BkCalendarView& view)
{
    QList<int> selected;
    const QList<BkCalendarColumn*> columns = view.getColumnList();
    for (int i = 0; i < columns.count(); ++i)
        if (columns.at(i)->isSelected())
            selected << i;
    return selected;
}

void setHideEmpty(int value)
{
    FwApplication::app()->setValue(value, QStringLiteral("set_hideempty"), QString());
}

void addPlan(BkCalendarModel& model, const QDate& date, const BkCalendarResource& who)
{
    auto* plan = new BkCalendarPlan;
    plan->date = date;
    plan->resource = who;
    plan->start = QTime(8, 0);
    plan->end = QTime(12, 0);
    plan->bookable = true;
    model.addItem(plan);
}

// A booking of a user, and of a room when one is given, handed to the model whole.
BkCalendarItem* addBooking(BkCalendarModel& model, const QVariant& id, const QDate& date,
                           const QVariant& user, QTime start, QTime end, const QVariant& room = QVariant())
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setDate(date);
    item->setUserId(user);
    if (room.isValid())
        item->setResourceId(room);
    item->setTime(start, end);
    model.addItem(item);
    return item;
}

// The boxes of a column by the bookings they hold, in the column's order.
QList<BkCalendarItem*> boxedItems(const BkCalendarColumn* column)
{
    QList<BkCalendarItem*> items;
    for (QGraphicsItem* child : column->childItems())
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
            items << box->item();
    return items;
}

// Notes every focus that the items it watches receive, with its reason. Watching needs the watcher in the
// same scene; it paints nothing and takes no room.
class FocusWatch : public QGraphicsItem
{
public:
    QRectF boundingRect() const override { return QRectF(); }
    void paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) override {}
    QList<QPair<QGraphicsItem*, Qt::FocusReason>> focused;

protected:
    bool sceneEventFilter(QGraphicsItem* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn)
            focused << qMakePair(watched, static_cast<QFocusEvent*>(event)->reason());
        return false;
    }
};

// A column takes no keyboard focus of its own; made focusable, as a host may make it, each column of
// the view shows where the view puts the focus, and the watcher hears of it.
void watchColumnFocus(BkCalendarView& view, FocusWatch* watch)
{
    view.scene()->addItem(watch);
    for (BkCalendarColumn* column : view.getColumnList()) {
        column->setFlag(QGraphicsItem::ItemIsFocusable);
        column->installSceneEventFilter(watch);
    }
}

// A host that answers each load request of the model with the bookings its callback makes, and keeps
// the requests in their order as "type:id from-to".
struct LoadingHost
{
    LoadingHost(BkCalendarModel& model, std::function<void(const BkCalendarResource&)> answer)
    {
        QObject::connect(&model, &BkCalendarModel::loadData,
                         [this, answer](const QDate& from, const QDate& to, const BkCalendarResource& who) {
                             requests << QStringLiteral("%1:%2 %3-%4")
                                             .arg(who.type)
                                             .arg(who.id.toInt())
                                             .arg(from.toString(Qt::ISODate), to.toString(Qt::ISODate));
                             answer(who);
                         });
    }
    QStringList requests;
};

// The model answers every load with nothing, so that reads stay quiet.
struct ViewFixture
{
    ViewFixture() { view.setModel(&model); }
    BkCalendarModel model;
    BkCalendarView view;
};

// Five days of Anna from Monday on, the days of the model loaded round them.
struct AnnasWeek : ViewFixture
{
    AnnasWeek()
    {
        view.resize(800, 600);
        view.setDate(Monday);
        view.setResource(BkCalendarResource(4, QStringLiteral("Anna"), 0));
        view.setDays(5);
    }
};
} // namespace

class tst_BkCalendarView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldBuildWithTheWorkingDefaults();
    void shouldOfferDateAndDaysAsProperties();
    void shouldLoadTheStatusColours();
    void shouldKeepAnUnreadableColourAndSkipARowWithoutAnIntId();
    void shouldClearTheStatusColoursWhenTheQueryFails();
    void shouldSkipARowWhoseIdIsNoWholeNumber_data();
    void shouldSkipARowWhoseIdIsNoWholeNumber();

    void shouldShowConsecutiveDaysFromTheWeekStart_data();
    void shouldShowConsecutiveDaysFromTheWeekStart();
    void shouldBuildDayColumnsInTheirOrder();
    void shouldBuildDaysFromTheFirstDateUntilTheNextDateIsSet();
    void shouldLeaveNoColumnsForNoDays();
    void shouldRelayDayColumnSignals();
    void shouldOnlyMoveTheHighlightWithinTheShownWeek();
    void shouldReanchorADateOutsideTheShownWeek();
    void shouldReanchorARangeThatDoesNotStartOnTheWeekStart();
    void shouldOnlySelectInAOneColumnViewOnTheWeekStart();
    void shouldRewriteEveryDateInResourceMode();
    void shouldHandEveryDayColumnTheResource();
    void shouldLeaveResourceColumnsAloneOnSetResource();

    void shouldAskForAGroupWhenTheListIsEmpty();
    void shouldTellOfEmptySchedulesWhenAllAreHidden();
    void shouldKeepAnEmptyScheduleWithoutHideEmpty();
    void shouldLeaveGapsInIndicesForHiddenResources();
    void shouldNotRelayThePlaceholder();
    void shouldSelectTheResourceColumnByTypeAndId();
    void shouldKeepTheInfoWidgetUntilTheNextGroup();
    void shouldBuildResourceColumnsWithGrip();
    void shouldLeaveNoBoxWithADeletedBookingOfUserAndResource();
    void shouldBoxOnceWhatTheHostLoadsWhileAGroupIsBuilt();
    void shouldBoxOnceWhatTheHostAddsForAPersonInARoomAsTheirColumnIsUpdated();
    void shouldBoxOnceWhatTheHostLoadsWhileDaysAreBuilt();
    void shouldBoxOnceWhatTheHostLoadsWhenTheDaysMoveOn();
    void shouldBuildTheBoxesOfAnUpdateThatTheHostsAnswerStarts();
    void shouldShowTheBuiltMembersToAHostAnsweringALaterMember();
    void shouldShowTheBuiltDaysToAHostAnsweringALaterDay();
    void shouldOutliveAHostThatRebuildsTheColumnsWhenTheSelectionMoves_data();
    void shouldOutliveAHostThatRebuildsTheColumnsWhenTheSelectionMoves();
    void shouldOutliveAHostThatRebuildsTheColumnsInItsAnswerToALoad_data();
    void shouldOutliveAHostThatRebuildsTheColumnsInItsAnswerToALoad();
    void shouldGiveOneBoxToABookingThatTheAnswerToABoxUpdateBrings();
    void shouldOutliveAHostThatRebuildsTheColumnsAsTheSelectedBoxGoes();
    void shouldOutliveAColumnThatTheHostDropsOnAPlanDoubleClick();
    void shouldOutliveAColumnThatTheHostDropsOnAPlanRightClick();
    void shouldOutliveAHostThatRebuildsTheColumnsAsAHeaderIsPressed();
    void shouldOutliveAHostThatRebuildsTheColumnsAsAClickEnds();
    void shouldOutliveABoxThatTheHostRebuildsWhileItPaints_data();
    void shouldOutliveABoxThatTheHostRebuildsWhileItPaints();
    void shouldShowTheHostOnlyWholeBoxesAsTheFocusComesBack_data();
    void shouldShowTheHostOnlyWholeBoxesAsTheFocusComesBack();
    void shouldOutliveAHostThatRebuildsTheColumnsAsAClickOnAnItemEnds_data();
    void shouldOutliveAHostThatRebuildsTheColumnsAsAClickOnAnItemEnds();
    void shouldDropTheBoxBeingMadeWhenTheHostShowsAnotherWeekAsTheFocusComesBack_data();
    void shouldDropTheBoxBeingMadeWhenTheHostShowsAnotherWeekAsTheFocusComesBack();
    void shouldOutliveAHostThatShowsAGroupAsTheFocusComesBack();
    void shouldLayOutOnlyTheBoxesThatTheHostLeavesAsTheFocusComesBack_data();
    void shouldLayOutOnlyTheBoxesThatTheHostLeavesAsTheFocusComesBack();

    void shouldHandTheModelAndRaiseToEveryColumn();
    void shouldShowNothingOnceItsModelIsGone();
    void shouldStretchTheSceneToTheLeftEdge();
    void shouldScrollOnlyOnPlainArrows_data();
    void shouldScrollOnlyOnPlainArrows();
    void shouldPassEveryKeyOnToTheForm();
    void shouldTakeTheDragPreviewBackWhenTheDragLeavesTheScene();
    void shouldIgnoreForeignDragsLeavingTheScene_data();
    void shouldIgnoreForeignDragsLeavingTheScene();

private:
    void makeCaseStage();
};

void tst_BkCalendarView::initTestCase()
{
    qRegisterMetaType<BkCalendarResource>();
    qRegisterMetaType<BkCalendarItem*>();
    qRegisterMetaType<BkCalendarPlan*>();
    makeCaseStage();
}

void tst_BkCalendarView::makeCaseStage()
{
    SQLQuery query;
    QVERIFY(query.exec(QStringLiteral("DROP TABLE IF EXISTS tbl_casestage")));
    QVERIFY(
        query.exec(QStringLiteral("CREATE TABLE tbl_casestage (id INTEGER, fw_name TEXT, fw_color TEXT)")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (1, 'Open', '#ff0000')")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (4, 'Billed', '#00ff00')")));
}

void tst_BkCalendarView::init()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    setHideEmpty(0);
}

void tst_BkCalendarView::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarView::shouldBuildWithTheWorkingDefaults()
{
    BkCalendarView view;
    QVERIFY(!view.model());
    QVERIFY(view.scene());
    QCOMPARE(view.scene(), static_cast<QGraphicsScene*>(view.calendarScene()));
    QCOMPARE(view.dayMode(), 1);
    QCOMPARE(view.date(), Wednesday);
    QCOMPARE(view.selectedDate(), Wednesday);
    QCOMPARE(view.weekStart(), Qt::Monday);
    QCOMPARE(view.minWidth(), 100.0);
    QCOMPARE(view.raiseMode(), BkCalendarColumn::RaiseOnClick);
    QCOMPARE(view.scrollDx(), 0);
    QVERIFY(!view.infoWidget());
    QCOMPARE(view.alignment(), Qt::AlignLeft | Qt::AlignTop);
    QVERIFY(view.resource().id.isNull());

    BkCalendarTimeScale* scale = view.timeScale();
    QVERIFY(scale);
    QCOMPARE(scale->scene(), view.scene());
    QCOMPARE(scale->start(), QTime(6, 0));
    QCOMPARE(scale->end(), QTime(20, 0));
    QCOMPARE(scale->timeSteps(), 15);
    QCOMPARE(scale->minuteHeight(), 1.5f);
    QCOMPARE(view.minuteHeight(), 1.5);
    QCOMPARE(scale->topMargin(), 50.0f);
    QVERIFY(scale->hourAligned());
    QCOMPARE(scale->zValue(), 50.0);

    // One day column of today, selected, without grip.
    QCOMPARE(view.days(), 1);
    BkCalendarColumn* column = view.getColumnList().first();
    QCOMPARE(column->date(), Wednesday);
    QVERIFY(column->isSelected());
    QCOMPARE(view.getSelectedColumn(), column);
    QCOMPARE(column->scene(), view.scene());
    QCOMPARE(column->timeScale(), scale);
    QCOMPARE(column->colorScheme(), view.colorScheme());
    QVERIFY(!column->header()->resizable());
    QCOMPARE(column->resourceMode(), 0);
}

void tst_BkCalendarView::shouldOfferDateAndDaysAsProperties()
{
    ViewFixture f;
    QVERIFY(f.view.setProperty("days", 5));
    QCOMPARE(f.view.property("days").toInt(), 5);
    QCOMPARE(f.view.property("date").toDate(), Wednesday);
    QVERIFY(f.view.setProperty("date", QDate(2026, 12, 2)));
    QCOMPARE(f.view.property("date").toDate(), QDate(2026, 11, 30));
    QCOMPARE(f.view.selectedDate(), QDate(2026, 12, 2));
}

void tst_BkCalendarView::shouldLoadTheStatusColours()
{
    BkCalendarView view;
    const QMap<int, BkCalendarStatusEntry>& colours = view.colorScheme()->statusColors;
    QCOMPARE(colours.keys(), (QList<int>{1, 4}));
    QCOMPARE(colours.value(1).name, QStringLiteral("Open"));
    QCOMPARE(colours.value(1).color, QColor(255, 0, 0));
    QCOMPARE(colours.value(4).name, QStringLiteral("Billed"));
    QCOMPARE(colours.value(4).color, QColor(0, 255, 0));
}

void tst_BkCalendarView::shouldKeepAnUnreadableColourAndSkipARowWithoutAnIntId()
{
    SQLQuery query;
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (7, 'Odd', 'not a colour')")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES ('seven', 'Bad id', '#0000ff')")));
    // Beyond an int: cut to 32 bits, it would file the row under another status.
    QVERIFY(
        query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (99999999999, 'Too big', '#0000ff')")));
    BkCalendarView view;
    makeCaseStage();
    const QMap<int, BkCalendarStatusEntry>& colours = view.colorScheme()->statusColors;
    QCOMPARE(colours.keys(), (QList<int>{1, 4, 7}));
    QCOMPARE(colours.value(7).name, QStringLiteral("Odd"));
    QVERIFY(!colours.value(7).color.isValid());
}

void tst_BkCalendarView::shouldClearTheStatusColoursWhenTheQueryFails()
{
    BkCalendarView view;
    QCOMPARE(view.colorScheme()->statusColors.count(), 2);
    SQLQuery query;
    QVERIFY(query.exec(QStringLiteral("DROP TABLE tbl_casestage")));
    view.loadCalendarStatus();
    QVERIFY(view.colorScheme()->statusColors.isEmpty());
    makeCaseStage();
}

void tst_BkCalendarView::shouldSkipARowWhoseIdIsNoWholeNumber_data()
{
    // Ids that a database hands over as floating-point numbers. Rounded or cut, each would file its
    // row under status 4 or 0, or under no id that the statuses can have.
    QTest::addColumn<QString>("id");
    QTest::newRow("a fraction") << QStringLiteral("4.4");
    QTest::newRow("below a whole number") << QStringLiteral("3.6");
    QTest::newRow("minus infinity") << QStringLiteral("-9e999");
    QTest::newRow("infinity") << QStringLiteral("9e999");
    QTest::newRow("far below an int") << QStringLiteral("-1e19");
    QTest::newRow("far beyond an int") << QStringLiteral("1e300");
}

void tst_BkCalendarView::shouldSkipARowWhoseIdIsNoWholeNumber()
{
    QFETCH(QString, id);
    SQLQuery query;
    // A column without a declared type keeps the numbers as the database was given them.
    QVERIFY(query.exec(QStringLiteral("DROP TABLE tbl_casestage")));
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE tbl_casestage (id, fw_name, fw_color)")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (4, 'Billed', '#00ff00')")));
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (%1, 'Odd', '#0000ff')").arg(id)));
    // A whole number is a whole number, whatever its type.
    QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_casestage VALUES (8.0, 'Closed', '#ffff00')")));
    BkCalendarView view;
    makeCaseStage();
    const QMap<int, BkCalendarStatusEntry>& colours = view.colorScheme()->statusColors;
    QCOMPARE(colours.keys(), (QList<int>{4, 8}));
    QCOMPARE(colours.value(4).name, QStringLiteral("Billed"));
    QCOMPARE(colours.value(4).color, QColor(0, 255, 0));
    QCOMPARE(colours.value(8).name, QStringLiteral("Closed"));
}

void tst_BkCalendarView::shouldShowConsecutiveDaysFromTheWeekStart_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("weekStart");
    QTest::addColumn<int>("days");
    QTest::addColumn<QDate>("first");

    QTest::newRow("five days, Wednesday") << Wednesday << 1 << 5 << Monday;
    QTest::newRow("five days, Monday") << Monday << 1 << 5 << Monday;
    QTest::newRow("five days, Friday") << QDate(2026, 11, 27) << 1 << 5 << Monday;
    QTest::newRow("five days, Saturday: Saturday to Wednesday")
        << QDate(2026, 11, 28) << 1 << 5 << QDate(2026, 11, 28);
    QTest::newRow("five days, Sunday: Sunday to Thursday")
        << QDate(2026, 11, 29) << 1 << 5 << QDate(2026, 11, 29);
    QTest::newRow("seven days, Sunday") << QDate(2026, 11, 29) << 1 << 7 << Monday;
    QTest::newRow("seven days over the turn of the year")
        << QDate(2026, 12, 31) << 1 << 7 << QDate(2026, 12, 28);
    QTest::newRow("week start Friday, later than a Wednesday: forward")
        << Wednesday << 5 << 5 << QDate(2026, 11, 27);
    QTest::newRow("week start Sunday, a Tuesday") << QDate(2026, 11, 24) << 7 << 7 << QDate(2026, 11, 29);
    QTest::newRow("week start Saturday, a Saturday") << QDate(2026, 11, 28) << 6 << 5 << QDate(2026, 11, 28);
    QTest::newRow("one day never shifts") << Wednesday << 1 << 1 << Wednesday;
    QTest::newRow("the day summer time starts") << QDate(2026, 3, 29) << 1 << 7 << QDate(2026, 3, 23);
}

void tst_BkCalendarView::shouldShowConsecutiveDaysFromTheWeekStart()
{
    QFETCH(QDate, date);
    QFETCH(int, weekStart);
    QFETCH(int, days);
    QFETCH(QDate, first);

    ViewFixture f;
    f.view.setWeekStarts(Qt::DayOfWeek(weekStart));
    f.view.setDays(days);
    f.view.setDate(date);
    QCOMPARE(f.view.date(), first);
    QCOMPARE(columnDates(f.view), daysFrom(first, days));
    QCOMPARE(f.view.selectedDate(), date);
    // The selected date is highlighted when it is on show.
    const int at = int(first.daysTo(date));
    QCOMPARE(selectedIndices(f.view), at >= 0 && at < days ? QList<int>{at} : QList<int>{});
}

void tst_BkCalendarView::shouldBuildDayColumnsInTheirOrder()
{
    ViewFixture f;
    f.view.setRaise(BkCalendarColumn::RaiseOnHover);
    f.view.setResource(BkCalendarResource(12, QStringLiteral("Anna"), 0));
    f.view.setDays(5);
    f.view.setDate(Wednesday);
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columns.count(), 5);
    QCOMPARE(f.view.days(), 5);
    for (int i = 0; i < 5; ++i) {
        BkCalendarColumn* column = columns.at(i);
        QCOMPARE(column->index(), i);
        QCOMPARE(column->raise(), BkCalendarColumn::RaiseOnHover);
        QCOMPARE(column->model(), &f.model);
        QCOMPARE(column->resource().id.toInt(), 12);
        QCOMPARE(column->resourceMode(), 0);
        QCOMPARE(column->minWidth(), 100);
        QVERIFY(!column->header()->resizable());
        QCOMPARE(column->header()->date, Monday.addDays(i));
        QCOMPARE(column->scene(), f.view.scene());
    }
    QCOMPARE(f.view.dayMode(), 1);
}

void tst_BkCalendarView::shouldBuildDaysFromTheFirstDateUntilTheNextDateIsSet()
{
    // New columns start at the first date as it stands; the week rule comes with the next date.
    ViewFixture f;
    f.view.setDays(5);
    QCOMPARE(f.view.date(), Wednesday);
    QCOMPARE(columnDates(f.view), daysFrom(Wednesday, 5));
    QCOMPARE(selectedIndices(f.view), QList<int>{0});
    f.view.setDate(Wednesday);
    QCOMPARE(columnDates(f.view), daysFrom(Monday, 5));
    QCOMPARE(selectedIndices(f.view), QList<int>{2});
}

void tst_BkCalendarView::shouldLeaveNoColumnsForNoDays()
{
    ViewFixture f;
    f.view.setDays(0);
    QCOMPARE(f.view.days(), 0);
    QVERIFY(!f.view.getSelectedColumn());
    f.view.setDays(-3);
    QCOMPARE(f.view.days(), 0);
    f.view.setDate(QDate(2026, 12, 3));
    QCOMPARE(f.view.date(), QDate(2026, 12, 3));
}

void tst_BkCalendarView::shouldRelayDayColumnSignals()
{
    ViewFixture f;
    f.view.setDays(5);
    f.view.setDate(Wednesday);
    QSignalSpy dates(&f.view, &BkCalendarView::dateSelected);
    f.view.getColumnList().at(3)->setSelected(true);
    QCOMPARE(dates.count(), 1);
    QCOMPARE(dates.first().first().toDate(), Monday.addDays(3));

    QSignalSpy activated(&f.view, &BkCalendarView::itemActivated);
    BkCalendarItem item;
    QMetaObject::invokeMethod(f.view.getColumnList().at(0), "itemActivated", Q_ARG(BkCalendarItem*, &item));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.first().first().value<BkCalendarItem*>(), &item);

    // Day columns have no header activation to pass on.
    QSignalSpy sizes(&f.view, qOverload<int, int>(&BkCalendarView::sizeChanged));
    f.view.getColumnList().at(0)->emitHeaderActivated();
    QCOMPARE(sizes.count(), 0);
}

void tst_BkCalendarView::shouldOnlyMoveTheHighlightWithinTheShownWeek()
{
    // Shown and active, so that the scene hands out keyboard focus.
    BkShownView shown(QSize(800, 600));
    QVERIFY(shown.ok);
    QVERIFY(shown.activate());
    BkCalendarView& view = shown.view;
    view.setResource(BkCalendarResource(4, QStringLiteral("Anna"), 0));
    view.setDays(5);
    view.setDate(Wednesday);
    QCOMPARE(view.date(), Monday);
    QCOMPARE(selectedIndices(view), QList<int>{2});
    const QList<BkCalendarColumn*> before = view.getColumnList();
    BkCalendarItem* friday = addBooking(shown.model, 1, QDate(2026, 11, 27), 4, QTime(9, 0), QTime(10, 0));
    QPointer<BkCalendarItemWidget> box(friday->widget);
    QVERIFY(box);
    auto* watch = new FocusWatch;
    watchColumnFocus(view, watch);
    QVERIFY(!view.scene()->focusItem());

    view.setDate(QDate(2026, 11, 27));
    QCOMPARE(view.date(), Monday);
    QCOMPARE(view.selectedDate(), QDate(2026, 11, 27));
    QCOMPARE(selectedIndices(view), QList<int>{4});
    QCOMPARE(view.getColumnList(), before);
    QCOMPARE(view.getSelectedColumn(), before.at(4));
    // The columns were not built again: the box of Friday's booking is the one from before.
    QVERIFY(box);
    QCOMPARE(box->item(), friday);
    QCOMPARE(boxedItems(before.at(4)), QList<BkCalendarItem*>{friday});
    // The highlighted column has the focus, as any other way of moving the highlight gives it.
    QCOMPARE(view.scene()->focusItem(), static_cast<QGraphicsItem*>(before.at(4)));
    QCOMPARE(watch->focused,
             (QList<QPair<QGraphicsItem*, Qt::FocusReason>>{qMakePair(before.at(4), Qt::OtherFocusReason)}));
}

void tst_BkCalendarView::shouldReanchorADateOutsideTheShownWeek()
{
    ViewFixture f;
    f.view.setDays(5);
    f.view.setDate(QDate(2026, 12, 3));
    QCOMPARE(f.view.date(), QDate(2026, 11, 30));
    QCOMPARE(columnDates(f.view), daysFrom(QDate(2026, 11, 30), 5));
    QCOMPARE(selectedIndices(f.view), QList<int>{3});
    // Backwards as well, and the columns are the same objects with new dates.
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    f.view.setDate(QDate(2026, 11, 20));
    QCOMPARE(f.view.date(), QDate(2026, 11, 16));
    QCOMPARE(f.view.getColumnList(), columns);
    QCOMPARE(selectedIndices(f.view), QList<int>{4});
}

void tst_BkCalendarView::shouldReanchorARangeThatDoesNotStartOnTheWeekStart()
{
    // A Saturday range runs Saturday to Wednesday; picking its Monday re-anchors, although the
    // Monday is on show.
    ViewFixture f;
    f.view.setDays(5);
    f.view.setDate(QDate(2026, 11, 28));
    QCOMPARE(f.view.date(), QDate(2026, 11, 28));
    f.view.setDate(QDate(2026, 11, 30));
    QCOMPARE(f.view.date(), QDate(2026, 11, 30));
    QCOMPARE(columnDates(f.view), daysFrom(QDate(2026, 11, 30), 5));
    QCOMPARE(selectedIndices(f.view), QList<int>{0});
}

void tst_BkCalendarView::shouldOnlySelectInAOneColumnViewOnTheWeekStart()
{
    BkShownView shown(QSize(800, 600));
    QVERIFY(shown.ok);
    QVERIFY(shown.activate());
    BkCalendarView& view = shown.view;
    view.setResource(BkCalendarResource(4, QStringLiteral("Anna"), 0));
    view.setDate(Monday);
    QCOMPARE(view.date(), Monday);
    BkCalendarColumn* column = view.getColumnList().first();
    BkCalendarItem* monday = addBooking(shown.model, 1, Monday, 4, QTime(9, 0), QTime(10, 0));
    QPointer<BkCalendarItemWidget> box(monday->widget);
    QVERIFY(box);
    auto* watch = new FocusWatch;
    watchColumnFocus(view, watch);
    column->setSelected(false);
    QSignalSpy dates(&view, &BkCalendarView::dateSelected);
    view.setDate(Monday);
    QVERIFY(column->isSelected());
    QCOMPARE(view.getColumnList().first(), column);
    QCOMPARE(column->date(), Monday);
    QCOMPARE(dates.count(), 1);
    // Only the selection: the column keeps the box it had, and it gets the focus.
    QVERIFY(box);
    QCOMPARE(box->item(), monday);
    QCOMPARE(view.scene()->focusItem(), static_cast<QGraphicsItem*>(column));
    QCOMPARE(watch->focused,
             (QList<QPair<QGraphicsItem*, Qt::FocusReason>>{qMakePair(column, Qt::OtherFocusReason)}));
}

void tst_BkCalendarView::shouldRewriteEveryDateInResourceMode()
{
    ViewFixture f;
    f.view.setResources(
        {BkCalendarResource(1, QStringLiteral("A"), 0), BkCalendarResource(2, QStringLiteral("B"), 1)});
    QCOMPARE(f.view.dayMode(), 0);
    QCOMPARE(columnDates(f.view), (QList<QDate>{Wednesday, Wednesday}));
    // The same date again rewrites as well; no shift to a week start.
    f.view.setDate(Wednesday);
    f.view.setDate(QDate(2026, 11, 28));
    QCOMPARE(f.view.date(), QDate(2026, 11, 28));
    QCOMPARE(columnDates(f.view), (QList<QDate>{QDate(2026, 11, 28), QDate(2026, 11, 28)}));
    QCOMPARE(f.view.days(), 2);
}

void tst_BkCalendarView::shouldHandEveryDayColumnTheResource()
{
    ViewFixture f;
    f.view.setDays(5);
    f.view.setDate(Wednesday);
    addBooking(f.model, 1, Monday.addDays(1), 30, QTime(9, 0), QTime(10, 0));
    QSignalSpy selected(&f.view, &BkCalendarView::resourceSelected);
    f.view.setResource(BkCalendarResource(30, QStringLiteral("Ben"), 0));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.first().first().value<BkCalendarResource>().id.toInt(), 30);
    for (BkCalendarColumn* column : f.view.getColumnList())
        QCOMPARE(column->resource().id.toInt(), 30);
    QCOMPARE(f.view.getColumnList().at(1)->getItems(false).count(), 1);
    QCOMPARE(f.view.resource().name, QStringLiteral("Ben"));
}

void tst_BkCalendarView::shouldLeaveResourceColumnsAloneOnSetResource()
{
    ViewFixture f;
    f.view.setResources(
        {BkCalendarResource(1, QStringLiteral("A"), 0), BkCalendarResource(2, QStringLiteral("B"), 0)});
    QCOMPARE(selectedIndices(f.view), QList<int>{});
    QSignalSpy selected(&f.view, &BkCalendarView::resourceSelected);
    f.view.setResource(BkCalendarResource(2, QStringLiteral("B"), 0));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(f.view.getColumnList().at(0)->resource().id.toInt(), 1);
    QCOMPARE(f.view.getColumnList().at(1)->resource().id.toInt(), 2);
    // Not even the highlight follows until the next group.
    QCOMPARE(selectedIndices(f.view), QList<int>{});
}

void tst_BkCalendarView::shouldLeaveNoBoxWithADeletedBookingOfUserAndResource()
{
    // The booking of user 4 in room 9 stands in both columns of the group. Clearing the model deletes
    // it while both boxes stay on the screen until the next rebuild: both lose it, and the view paints.
    ViewFixture f;
    f.view.resize(600, 400);
    f.view.setDate(Wednesday);
    f.view.setResources(
        {BkCalendarResource(4, QStringLiteral("Anna"), 0), BkCalendarResource(9, QStringLiteral("Room"), 1)});
    BkCalendarItem* item = addBooking(f.model, 1, Wednesday, 4, QTime(9, 0), QTime(10, 0));
    item->setResourceId(9);
    f.view.updateWidgets();
    QList<QPointer<BkCalendarItemWidget>> boxes;
    for (BkCalendarColumn* column : f.view.getColumnList()) {
        for (QGraphicsItem* child : column->childItems())
            if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
                boxes << box;
    }
    QCOMPARE(boxes.size(), 2);
    QVERIFY(boxes.at(0)->item() == item && boxes.at(1)->item() == item);

    f.model.clear();
    for (const QPointer<BkCalendarItemWidget>& box : qAsConst(boxes)) {
        QVERIFY(box);
        QVERIFY(!box->item());
    }
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldBoxOnceWhatTheHostLoadsWhileAGroupIsBuilt()
{
    // Each member of the group asks for its days as its column is set up, and the host answers at
    // once. Booking c of user 5 in room 9 arrives with the room, after the column of user 5 is set
    // up: every column shows each of its bookings in exactly one box.
    ViewFixture f;
    f.view.resize(800, 600);
    f.view.setDate(Wednesday);
    QHash<QString, BkCalendarItem*> loaded;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        const QString key = QStringLiteral("%1:%2").arg(who.type).arg(who.id.toInt());
        if (key == QLatin1String("0:4")) {
            loaded[QStringLiteral("a")] = addBooking(f.model, 1, Wednesday, 4, QTime(9, 0), QTime(10, 0));
            loaded[QStringLiteral("a")]->setResourceId(9);
        } else if (key == QLatin1String("0:5")) {
            loaded[QStringLiteral("b")] = addBooking(f.model, 2, Wednesday, 5, QTime(10, 0), QTime(11, 0));
        } else if (key == QLatin1String("1:9")) {
            loaded[QStringLiteral("c")] =
                addBooking(f.model, 3, Wednesday, 5, QTime(9, 30), QTime(11, 30), 9);
        }
    });
    f.view.setResources({BkCalendarResource(4, QStringLiteral("Anna"), 0),
                         BkCalendarResource(5, QStringLiteral("Ben"), 0),
                         BkCalendarResource(9, QStringLiteral("Room"), 1)});

    const QString range = QStringLiteral(" 2026-11-17-2026-12-03");
    QCOMPARE(host.requests, QStringList({QStringLiteral("0:4") + range, QStringLiteral("0:5") + range,
                                         QStringLiteral("1:9") + range}));
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columns.size(), 3);
    BkCalendarItem* a = loaded.value(QStringLiteral("a"));
    BkCalendarItem* b = loaded.value(QStringLiteral("b"));
    BkCalendarItem* c = loaded.value(QStringLiteral("c"));
    QCOMPARE(boxedItems(columns.at(0)), QList<BkCalendarItem*>({a}));
    QCOMPARE(boxedItems(columns.at(1)), QList<BkCalendarItem*>({b, c}));
    QCOMPARE(boxedItems(columns.at(2)), QList<BkCalendarItem*>({a, c}));
    // A booking in two columns names the box of the later one; c overlaps both others.
    QCOMPARE(a->widget->parentItem(), columns.at(2));
    QCOMPARE(c->widget->parentItem(), columns.at(2));
    QCOMPARE(c->widget->colCount(), 2);
    QCOMPARE(b->widget->colCount(), 2);
    QCOMPARE(a->widget->colIndex(), 0);
    QCOMPARE(c->widget->colIndex(), 1);

    // The next day is built by the same columns, and the host is asked for nothing more.
    f.view.setDate(Wednesday.addDays(1));
    addBooking(f.model, 4, Wednesday.addDays(1), 4, QTime(8, 0), QTime(9, 0));
    QCOMPARE(boxedItems(columns.at(0)).size(), 1);
    QCOMPARE(host.requests.size(), 3);
}

void tst_BkCalendarView::shouldBoxOnceWhatTheHostAddsForAPersonInARoomAsTheirColumnIsUpdated()
{
    // The group of Ben and his room stands, and Ben's booking is selected. Ben's column is updated: its
    // selected box goes, and the host hears the selection change while the column is still taking
    // its boxes away. It answers with a booking of Ben in the room. Both columns box the new booking
    // as it comes, and the room's column, which hears of it after Ben's, is the one the booking names;
    // Ben's column, reading its day after the answer, must not box the booking a second time.
    ViewFixture f;
    f.view.resize(800, 600);
    f.view.setDate(Wednesday);
    f.view.setResources(
        {BkCalendarResource(5, QStringLiteral("Ben"), 0), BkCalendarResource(9, QStringLiteral("Room"), 1)});
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columns.size(), 2);
    BkCalendarItem* bens = addBooking(f.model, 1, Wednesday, 5, QTime(8, 0), QTime(8, 30));
    QVERIFY(bens->widget);
    bens->widget->setSelected(true);
    BkCalendarItem* shared = nullptr;
    connect(f.view.scene(), &QGraphicsScene::selectionChanged, this, [&] {
        if (shared)
            return;
        shared = addBooking(f.model, 7, Wednesday, 5, QTime(9, 0), QTime(10, 0), 9);
    });

    columns.at(0)->update();
    QVERIFY(shared);
    // The booking of the answer came first, while Ben's old box went.
    QCOMPARE(boxedItems(columns.at(0)), QList<BkCalendarItem*>({shared, bens}));
    QCOMPARE(boxedItems(columns.at(1)), QList<BkCalendarItem*>({shared}));
    QCOMPARE(shared->widget->parentItem(), columns.at(1));
    // The two bookings of Ben do not overlap: each box has the column's whole width.
    for (QGraphicsItem* child : columns.at(0)->childItems()) {
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
            QCOMPARE(box->colCount(), 1);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(boxedItems(columns.at(0)), QList<BkCalendarItem*>({shared, bens}));
}

void tst_BkCalendarView::shouldBoxOnceWhatTheHostLoadsWhileDaysAreBuilt()
{
    // One request covers the five days of the person from the date on; the host answers with a
    // booking on each of them.
    ViewFixture f;
    f.view.resize(800, 600);
    f.view.setDate(Wednesday);
    QList<BkCalendarItem*> loaded;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        for (int day = 0; day < 5; ++day)
            loaded << addBooking(f.model, 10 + day, Wednesday.addDays(day), who.id, QTime(9, day * 10),
                                 QTime(10, 0));
    });
    f.view.setResource(BkCalendarResource(4, QStringLiteral("Anna"), 0));
    f.view.setDays(5);

    QCOMPARE(host.requests, QStringList({QStringLiteral("0:4 2026-11-17-2026-12-03")}));
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columnDates(f.view), daysFrom(Wednesday, 5));
    for (int day = 0; day < 5; ++day) {
        QCOMPARE(boxedItems(columns.at(day)), QList<BkCalendarItem*>({loaded.at(day)}));
        QCOMPARE(loaded.at(day)->widget->parentItem(), columns.at(day));
    }
}

void tst_BkCalendarView::shouldBoxOnceWhatTheHostLoadsWhenTheDaysMoveOn()
{
    // The week moves on to days the model has not loaded: the first column asks, and the host
    // answers with a booking on each day of the new week, while the columns are being updated.
    AnnasWeek f;
    const QDate nextMonday = Monday.addDays(14);
    QList<BkCalendarItem*> loaded;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        for (int day = 0; day < 5 && loaded.size() < 5; ++day)
            loaded << addBooking(f.model, 20 + day, nextMonday.addDays(day), who.id, QTime(9, 0),
                                 QTime(9, 45));
    });
    f.view.setDate(nextMonday);

    QCOMPARE(host.requests, QStringList({QStringLiteral("0:4 2026-12-02-2026-12-15")}));
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columnDates(f.view), daysFrom(nextMonday, 5));
    for (int day = 0; day < 5; ++day) {
        QCOMPARE(boxedItems(columns.at(day)), QList<BkCalendarItem*>({loaded.at(day)}));
        QCOMPARE(loaded.at(day)->widget->parentItem(), columns.at(day));
        QCOMPARE(loaded.at(day)->widget->colCount(), 1);
    }

    // A column that a host gave another person shows the view's person again in the next week.
    const QDate later = nextMonday.addDays(9);
    BkCalendarItem* ben = addBooking(f.model, 30, later, 7, QTime(8, 0), QTime(8, 30));
    BkCalendarItem* anna = addBooking(f.model, 31, later, 4, QTime(10, 0), QTime(10, 30));
    columns.at(2)->setResource(BkCalendarResource(7, QStringLiteral("Ben"), 0));
    columns.at(2)->update();
    QCOMPARE(boxedItems(columns.at(2)), QList<BkCalendarItem*>());
    f.view.setDate(later);
    QCOMPARE(columns.at(2)->date(), later);
    QCOMPARE(boxedItems(columns.at(2)), QList<BkCalendarItem*>({anna}));
    QVERIFY(!ben->widget);
}

void tst_BkCalendarView::shouldBuildTheBoxesOfAnUpdateThatTheHostsAnswerStarts()
{
    // The host answers the load request of the first day column with its bookings and has the view
    // update its columns at once: the column that asked shows its booking within the answer already.
    AnnasWeek f;
    const QDate nextMonday = Monday.addDays(14);
    BkCalendarItem* loaded = nullptr;
    QList<BkCalendarItem*> seenInTheAnswer;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        loaded = addBooking(f.model, 40, nextMonday, who.id, QTime(9, 0), QTime(9, 45));
        f.view.updateWidgets();
        seenInTheAnswer = boxedItems(f.view.getColumnList().first());
    });
    f.view.setDate(nextMonday);

    QCOMPARE(host.requests.size(), 1);
    QCOMPARE(seenInTheAnswer, QList<BkCalendarItem*>({loaded}));
    QCOMPARE(boxedItems(f.view.getColumnList().first()), QList<BkCalendarItem*>({loaded}));
}

void tst_BkCalendarView::shouldShowTheBuiltMembersToAHostAnsweringALaterMember()
{
    // While the group is built, the host is asked for Ben's days after Anna's column is set up. What
    // it finds of Anna's column, and what an update of the view that it runs in its answer shows,
    // are her bookings in their boxes.
    ViewFixture f;
    f.view.resize(800, 600);
    f.view.setDate(Wednesday);
    BkCalendarItem* annas = nullptr;
    QList<BkCalendarItem*> seenInTheAnswer;
    QList<BkCalendarItem*> seenAfterAnUpdate;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        if (who.id.toInt() == 4) {
            annas = addBooking(f.model, 1, Wednesday, 4, QTime(9, 0), QTime(10, 0));
            return;
        }
        seenInTheAnswer = boxedItems(f.view.getColumnList().first());
        f.view.updateWidgets();
        seenAfterAnUpdate = boxedItems(f.view.getColumnList().first());
    });
    f.view.setResources(
        {BkCalendarResource(4, QStringLiteral("Anna"), 0), BkCalendarResource(5, QStringLiteral("Ben"), 0)});

    QCOMPARE(host.requests.size(), 2);
    QVERIFY(annas);
    QCOMPARE(seenInTheAnswer, QList<BkCalendarItem*>({annas}));
    QCOMPARE(seenAfterAnUpdate, QList<BkCalendarItem*>({annas}));
    QCOMPARE(boxedItems(f.view.getColumnList().first()), QList<BkCalendarItem*>({annas}));
    QCOMPARE(boxedItems(f.view.getColumnList().last()), QList<BkCalendarItem*>());
}

void tst_BkCalendarView::shouldShowTheBuiltDaysToAHostAnsweringALaterDay()
{
    // Anna's days are loaded round Monday. A week from Saturday on reaches past them: the fifth day
    // asks for more, and the host finds the four days before it with their bookings.
    AnnasWeek f;
    const QDate saturday = Monday.addDays(5);
    BkCalendarItem* saturdays = addBooking(f.model, 50, saturday, 4, QTime(9, 0), QTime(10, 0));
    f.view.setDays(1);
    f.view.setDate(saturday);
    QList<BkCalendarItem*> seenInTheAnswer;
    LoadingHost host(f.model, [&](const BkCalendarResource&) {
        seenInTheAnswer = boxedItems(f.view.getColumnList().first());
    });
    f.view.setDays(7);

    QCOMPARE(host.requests, QStringList({QStringLiteral("0:4 2026-12-02-2026-12-10")}));
    QCOMPARE(columnDates(f.view), daysFrom(saturday, 7));
    QCOMPARE(seenInTheAnswer, QList<BkCalendarItem*>({saturdays}));
    QCOMPARE(boxedItems(f.view.getColumnList().first()), QList<BkCalendarItem*>({saturdays}));
}

namespace {
// Anna's week from Monday on, shown, with a block of her schedule on Monday from 08:00 to 12:00; the
// point is at 10:00 in Monday's column, in viewport coordinates.
struct AnnasShownWeek : BkShownView
{
    explicit AnnasShownWeek(bool bookable)
    {
        view.setDate(Monday);
        view.setResource(BkCalendarResource(4, QStringLiteral("Anna"), 0));
        view.setDays(5);
        auto* plan = new BkCalendarPlan;
        plan->date = Monday;
        plan->resource = view.resource();
        plan->start = QTime(8, 0);
        plan->end = QTime(12, 0);
        plan->bookable = bookable;
        model.addItem(plan);
        BkCalendarColumn* monday = view.getColumnList().first();
        const double y = view.timeScale()->topMargin() + 4 * 60 * view.timeScale()->minuteHeight();
        point = view.mapFromScene(monday->mapToScene(QPointF(20.0, y)));
    }
    QPoint point;
};
} // namespace

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsWhenTheSelectionMoves_data()
{
    // Anna's week from Monday on, Monday selected. The host hears of the new selection, of a date from
    // the view or of any change from the scene, and rebuilds the columns in its answer, once.
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("fromScene");
    QTest::addColumn<int>("rebuildTo");
    QTest::addColumn<QList<QDate>>("dates");
    QTest::addColumn<QList<int>>("selected");
    QTest::newRow("a date within the week")
        << QStringLiteral("Wednesday") << false << 1 << QList<QDate>({Monday}) << QList<int>();
    QTest::newRow("a date in another week") << QStringLiteral("a fortnight on") << false << 1
                                            << QList<QDate>({Monday.addDays(14)}) << QList<int>();
    QTest::newRow("more days") << QStringLiteral("seven days") << false << 1 << QList<QDate>({Monday})
                               << QList<int>({0});
    QTest::newRow("a group") << QStringLiteral("group") << false << 1 << QList<QDate>({Monday})
                             << QList<int>({0});
    QTest::newRow("the scene, a date within the week")
        << QStringLiteral("Wednesday") << true << 7 << daysFrom(Monday, 7) << QList<int>({2});
    QTest::newRow("the scene, a date in another week") << QStringLiteral("a fortnight on") << true << 7
                                                       << daysFrom(Monday.addDays(14), 7) << QList<int>({2});
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsWhenTheSelectionMoves()
{
    QFETCH(QString, action);
    QFETCH(bool, fromScene);
    QFETCH(int, rebuildTo);
    QFETCH(QList<QDate>, dates);
    QFETCH(QList<int>, selected);
    AnnasWeek f;
    QCOMPARE(selectedIndices(f.view), QList<int>({0}));
    bool answered = false;
    auto answer = [&] {
        if (answered)
            return;
        answered = true;
        f.view.setDays(rebuildTo);
    };
    if (fromScene)
        connect(f.view.scene(), &QGraphicsScene::selectionChanged, &f.view, answer);
    else
        connect(&f.view, &BkCalendarView::dateSelected, &f.view, answer);

    if (action == QLatin1String("Wednesday"))
        f.view.setDate(Wednesday);
    else if (action == QLatin1String("a fortnight on"))
        f.view.setDate(Wednesday.addDays(14));
    else if (action == QLatin1String("seven days"))
        f.view.setDays(7);
    else
        f.view.setResources({f.view.resource(), BkCalendarResource(5, QStringLiteral("Ben"), 0)});

    QVERIFY(answered);
    QCOMPARE(f.view.dayMode(), 1);
    QCOMPARE(columnDates(f.view), dates);
    QCOMPARE(selectedIndices(f.view), selected);
    // The columns that the host's answer replaced have left the scene.
    int shown = 0;
    for (QGraphicsItem* item : f.view.scene()->items())
        shown += item->data(ItemKindRole).toInt() == ItemKindColumn;
    QCOMPARE(shown, dates.size());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!f.view.grab().isNull());
}

namespace {
// Anna's week from Monday on, with a booking of Anna and one of Ben on every day from four weeks
// before Monday to eight weeks after, which the model has but was never asked for: each day that the
// view reaches beyond Monday's range asks the host for it.
struct AnnasWeekWithBookings : AnnasWeek
{
    AnnasWeekWithBookings()
    {
        int id = 1000;
        for (int day = -28; day <= 56; ++day) {
            addBooking(model, ++id, Monday.addDays(day), 4, QTime(9, 0), QTime(9, 45));
            addBooking(model, ++id, Monday.addDays(day), 5, QTime(10, 0), QTime(10, 45));
        }
    }

    void act(const QString& action)
    {
        const BkCalendarResource anna(4, QStringLiteral("Anna"), 0);
        const BkCalendarResource ben(5, QStringLiteral("Ben"), 0);
        if (action == QLatin1String("three weeks on")) {
            view.setDate(Monday.addDays(21));
        } else if (action == QLatin1String("fourteen days")) {
            view.setDays(14);
        } else if (action == QLatin1String("Ben")) {
            view.setResource(ben);
        } else if (action == QLatin1String("a group")) {
            view.setResources({anna, ben});
        } else if (action == QLatin1String("the group three weeks on")) {
            view.setDate(Monday.addDays(21));
        } else if (action == QLatin1String("fixed widths after a clear")) {
            model.clear();
            view.setWidthType(WidthFixed);
        } else if (action == QLatin1String("shared widths after a clear")) {
            model.clear();
            view.setWidthType(WidthProportional);
        } else if (action == QLatin1String("set widths after a clear")) {
            model.clear();
            view.setWidth(120.0, WidthFixed);
        }
    }
};

// Every column of the view stands in the scene and nothing else of the calendar does, and every
// booking of a column that its scale shows has one box, in that column.
void verifyColumnsAndBoxes(BkCalendarView& view)
{
    QSet<QGraphicsItem*> columnsInScene;
    int boxesInScene = 0;
    for (QGraphicsItem* item : view.scene()->items()) {
        if (item->data(ItemKindRole).toInt() == ItemKindColumn)
            columnsInScene << item;
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(item)) {
            ++boxesInScene;
            QVERIFY(box->item());
            QCOMPARE(box->item()->widget, box);
        }
    }
    QSet<QGraphicsItem*> listed;
    int boxesListed = 0;
    for (BkCalendarColumn* column : view.getColumnList()) {
        listed << column;
        const QList<BkCalendarItem*> items = column->getItems(false);
        QCOMPARE(boxedItems(column).size(), items.size());
        for (BkCalendarItem* item : items) {
            QVERIFY(item->widget);
            QCOMPARE(item->widget->parentItem(), static_cast<QGraphicsItem*>(column));
        }
        boxesListed += items.size();
    }
    QCOMPARE(columnsInScene, listed);
    QCOMPARE(boxesInScene, boxesListed);
}

// The columns and boxes as the host's answer left them, and again once the event loop has deleted
// what the answer took away.
void verifyColumnsAndBoxesNowAndAfterTheEventLoop(BkCalendarView& view)
{
    verifyColumnsAndBoxes(view);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    verifyColumnsAndBoxes(view);
}
} // namespace

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsInItsAnswerToALoad_data()
{
    // The host answers the first load request by building other columns, or by updating the view,
    // while the view is in the middle of moving to a date, building days or a group, changing the
    // person, or giving the columns their widths after the model was cleared; the request comes from a
    // column being set up or updated, or from the group's check for members without a schedule.
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("answer");
    const QStringList actions = {QStringLiteral("three weeks on"),
                                 QStringLiteral("fourteen days"),
                                 QStringLiteral("Ben"),
                                 QStringLiteral("a group"),
                                 QStringLiteral("the group three weeks on"),
                                 QStringLiteral("fixed widths after a clear"),
                                 QStringLiteral("shared widths after a clear"),
                                 QStringLiteral("set widths after a clear")};
    const QStringList answers = {QStringLiteral("two days"), QStringLiteral("thirty days"),
                                 QStringLiteral("another group"), QStringLiteral("an update")};
    for (const QString& action : actions)
        for (const QString& answer : answers)
            QTest::addRow("%s, %s", qPrintable(action), qPrintable(answer)) << action << answer;
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsInItsAnswerToALoad()
{
    QFETCH(QString, action);
    QFETCH(QString, answer);
    const QList<BkCalendarResource> otherGroup = {BkCalendarResource(6, QStringLiteral("Carl"), 0),
                                                  BkCalendarResource(7, QStringLiteral("Dora"), 0)};
    // The same steps without the host's answer, for what an update leaves.
    AnnasWeekWithBookings alone;
    AnnasWeekWithBookings f;
    if (action == QLatin1String("the group three weeks on")) {
        const QList<BkCalendarResource> group = {f.view.resource(),
                                                 BkCalendarResource(5, QStringLiteral("Ben"), 0)};
        alone.view.setResources(group);
        f.view.setResources(group);
    }
    alone.act(action);

    bool answered = false;
    LoadingHost host(f.model, [&](const BkCalendarResource&) {
        if (answered)
            return;
        answered = true;
        if (answer == QLatin1String("two days"))
            f.view.setDays(2);
        else if (answer == QLatin1String("thirty days"))
            f.view.setDays(30);
        else if (answer == QLatin1String("another group"))
            f.view.setResources(otherGroup);
        else
            f.view.updateWidgets();
    });
    f.act(action);

    QVERIFY(answered);
    if (answer.endsWith(QLatin1String(" days"))) {
        QCOMPARE(f.view.dayMode(), 1);
        QCOMPARE(f.view.getColumnList().size(), answer == QLatin1String("two days") ? 2 : 30);
    } else if (answer == QLatin1String("another group")) {
        QCOMPARE(f.view.dayMode(), 0);
        QCOMPARE(f.view.getColumnList().size(), 2);
        QCOMPARE(f.view.getColumnList().first()->resource().id, otherGroup.first().id);
        QCOMPARE(f.view.getColumnList().last()->resource().id, otherGroup.last().id);
    } else {
        QCOMPARE(f.view.dayMode(), alone.view.dayMode());
        QCOMPARE(columnDates(f.view), columnDates(alone.view));
        QCOMPARE(selectedIndices(f.view), selectedIndices(alone.view));
    }
    verifyColumnsAndBoxesNowAndAfterTheEventLoop(f.view);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldGiveOneBoxToABookingThatTheAnswerToABoxUpdateBrings()
{
    // The host reloaded its bookings: the model is cleared, and the first read of Monday's bookings,
    // by the update of the boxes of Monday's column, asks for them. The booking of the answer gets its
    // box as it comes, and the update gives it no second one.
    AnnasWeek f;
    f.model.clear();
    BkCalendarItem* loaded = nullptr;
    LoadingHost host(f.model, [&](const BkCalendarResource& who) {
        if (!loaded)
            loaded = addBooking(f.model, 70, Monday, who.id, QTime(9, 0), QTime(9, 45));
    });
    BkCalendarColumn* monday = f.view.getColumnList().first();
    monday->updateChildren();
    QVERIFY(loaded);
    QCOMPARE(boxedItems(monday), QList<BkCalendarItem*>({loaded}));
    verifyColumnsAndBoxes(f.view);
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsAsTheSelectedBoxGoes()
{
    // A booking of Monday is selected. The view moves three weeks on, and Monday's column lets its
    // boxes go; the scene tells of the selection going with the selected one, and the host answers
    // by showing two days. The two days stand, and the old columns are left alone.
    AnnasWeekWithBookings f;
    BkCalendarColumn* monday = f.view.getColumnList().first();
    const QList<BkCalendarItem*> mondays = boxedItems(monday);
    QVERIFY(!mondays.isEmpty());
    mondays.first()->widget->setSelected(true);
    bool answered = false;
    connect(f.view.scene(), &QGraphicsScene::selectionChanged, &f.view, [&] {
        if (answered)
            return;
        answered = true;
        f.view.setDays(2);
    });
    f.view.setDate(Monday.addDays(21));

    QVERIFY(answered);
    QCOMPARE(f.view.getColumnList().size(), 2);
    verifyColumnsAndBoxesNowAndAfterTheEventLoop(f.view);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldOutliveAColumnThatTheHostDropsOnAPlanDoubleClick()
{
    // A host that opens the day of a double-clicked block in a view of its own: the column that told
    // it goes while its mouse handler still runs.
    AnnasShownWeek f(true);
    QVERIFY(f.ok);
    QList<QTime> activated;
    connect(&f.view, &BkCalendarView::planActivated, &f.view, [&](BkCalendarPlan*, QTime time) {
        activated << time;
        f.view.setDays(1);
    });
    QTest::mouseDClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, f.point);

    QCOMPARE(activated, QList<QTime>({QTime(10, 0)}));
    QCOMPARE(f.view.days(), 1);
    QCOMPARE(columnDates(f.view), QList<QDate>({Monday}));

    // A host that shows a group instead: the click went to a column that is gone, and selects none of
    // the group's.
    AnnasShownWeek g(true);
    QVERIFY(g.ok);
    connect(&g.view, &BkCalendarView::planActivated, &g.view,
            [&] { g.view.setResources({BkCalendarResource(5, QStringLiteral("Ben"), 0)}); });
    QSignalSpy selected(&g.view, &BkCalendarView::dateSelected);
    QTest::mouseDClick(g.view.viewport(), Qt::LeftButton, Qt::NoModifier, g.point);
    QCOMPARE(g.view.days(), 1);
    QCOMPARE(selectedIndices(g.view), QList<int>());
    QCOMPARE(selected.count(), 0);
}

void tst_BkCalendarView::shouldOutliveAColumnThatTheHostDropsOnAPlanRightClick()
{
    // The host's menu of a block that is not bookable switches to a one-day view.
    AnnasShownWeek f(false);
    QVERIFY(f.ok);
    QList<QTime> offered;
    connect(&f.view, &BkCalendarView::planContextMenu, &f.view, [&](QPoint, BkCalendarPlan*, QTime time) {
        offered << time;
        f.view.setDays(1);
    });
    QTest::mouseClick(f.view.viewport(), Qt::RightButton, Qt::NoModifier, f.point);

    QCOMPARE(offered, QList<QTime>({QTime(10, 0)}));
    QCOMPARE(f.view.days(), 1);
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsAsAHeaderIsPressed()
{
    // A press on Monday's header selects the header; the scene tells of the change, and the host
    // answers by showing a group. Qt goes on with the header after the answer: it and its column
    // stand, hidden and out of the scene, until the event loop runs.
    AnnasShownWeek f(true);
    QVERIFY(f.ok);
    BkCalendarColumn* monday = f.view.getColumnList().first();
    const QPointer<BkCalendarHeader> header(monday->header());
    bool answered = false;
    bool headerStood = false;
    connect(f.view.scene(), &QGraphicsScene::selectionChanged, &f.view, [&] {
        if (answered)
            return;
        answered = true;
        f.view.setResources({BkCalendarResource(5, QStringLiteral("Ben"), 0)});
        headerStood = header && !header->isVisible() && !header->scene();
    });
    const QPoint at = f.view.mapFromScene(header->sceneBoundingRect().center());
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, at);

    QVERIFY(answered);
    QVERIFY(headerStood);
    QVERIFY(header);
    QCOMPARE(f.view.getColumnList().size(), 1);
    QCOMPARE(f.view.getColumnList().first()->resource().id.toInt(), 5);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!header);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsAsAClickEnds()
{
    // The press selects Monday's header, and the host answers by selecting Tuesday's header as well.
    // The release leaves only the clicked header selected: the scene tells of it, and the host answers
    // by showing a group. Qt goes on with the clicked header after the answer.
    AnnasShownWeek f(true);
    QVERIFY(f.ok);
    BkCalendarColumn* monday = f.view.getColumnList().first();
    BkCalendarColumn* tuesday = f.view.getColumnList().at(1);
    const QPointer<BkCalendarColumn> clicked(monday);
    int answers = 0;
    bool rebuilt = false;
    connect(f.view.scene(), &QGraphicsScene::selectionChanged, &f.view, [&] {
        ++answers;
        if (answers == 1) {
            tuesday->header()->QGraphicsItem::setSelected(true);
        } else if (!rebuilt && !tuesday->header()->isSelected()) {
            rebuilt = true;
            f.view.setResources({BkCalendarResource(5, QStringLiteral("Ben"), 0)});
        }
    });
    const QPoint at = f.view.mapFromScene(monday->header()->sceneBoundingRect().center());
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, at);

    QVERIFY(rebuilt);
    QCOMPARE(f.view.getColumnList().size(), 1);
    QCOMPARE(f.view.getColumnList().first()->resource().id.toInt(), 5);
    QVERIFY(clicked);
    QVERIFY(!clicked->scene());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!clicked);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldOutliveABoxThatTheHostRebuildsWhileItPaints_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("reload the boxes") << QStringLiteral("updateWidgets");
    QTest::newRow("same date again") << QStringLiteral("setDate");
    QTest::newRow("another group") << QStringLiteral("setResources");
    QTest::newRow("days of one person") << QStringLiteral("setDays");
    QTest::newRow("the booking goes") << QStringLiteral("removeItem");
}

void tst_BkCalendarView::shouldOutliveABoxThatTheHostRebuildsWhileItPaints()
{
    // A selected booking's paint selects its column, which tells the host of the date. A host that
    // answers by showing the day afresh takes away the box, and perhaps its column, while the box
    // is still being drawn.
    QFETCH(QString, answer);
    BkShownView f;
    QVERIFY(f.ok);
    f.view.setDate(Monday);
    const BkCalendarResource anna(4, QStringLiteral("Anna"), 0);
    const BkCalendarResource ben(5, QStringLiteral("Ben"), 0);
    f.view.setResource(anna);
    f.view.setResources({anna, ben});
    BkCalendarItem* booking = addBooking(f.model, 1, Monday, 4, QTime(9, 0), QTime(10, 0));
    QVERIFY(booking->widget);
    f.view.scene()->clearSelection();
    QCoreApplication::processEvents();

    QList<QDate> told;
    connect(&f.view, &BkCalendarView::dateSelected, &f.view, [&](QDate date) {
        told << date;
        // New columns select the view's date as they are built, and tell of it again.
        if (told.size() > 1)
            return;
        if (answer == QLatin1String("updateWidgets"))
            f.view.updateWidgets();
        else if (answer == QLatin1String("setDate"))
            f.view.setDate(date);
        else if (answer == QLatin1String("setResources"))
            f.view.setResources({ben, anna});
        else if (answer == QLatin1String("setDays"))
            f.view.setDays(3);
        else
            f.model.removeItem(booking);
    });
    QPointer<BkCalendarItemWidget> box = booking->widget;
    const QPoint at = f.view.mapFromScene(box->sceneBoundingRect().center());
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QVERIFY(box && box->isSelected());
    const QImage picture = f.view.viewport()->grab().toImage();

    QVERIFY(!told.isEmpty());
    QCOMPARE(told.first(), Monday);
    const int tellings = told.size();
    // The old box goes once the paint is over; the booking has a box in the new columns.
    QTRY_VERIFY(!box);
    if (answer == QLatin1String("removeItem")) {
        QVERIFY(f.model.findId(1) == nullptr);
        delete booking;
        return;
    }
    QVERIFY(booking->widget);
    QCOMPARE(booking->widget->scene(), f.view.scene());
    QVERIFY(booking->widget->isVisible());
    QVERIFY(!picture.isNull());
    // What the host built is drawn like any other day, and tells the host nothing new.
    const QImage again = f.view.viewport()->grab().toImage();
    QCOMPARE(told.size(), tellings);
    QVERIFY(!again.isNull());
}

void tst_BkCalendarView::shouldShowTheHostOnlyWholeBoxesAsTheFocusComesBack_data()
{
    QTest::addColumn<bool>("added");
    QTest::addColumn<bool>("takenAway");
    QTest::newRow("a booking is added") << true << false;
    QTest::newRow("the column is updated") << false << false;
    QTest::newRow("the added booking is taken away") << true << true;
}

namespace {
// Anna's week in an active window beside a line edit. Her box of Tuesday had the keyboard focus before
// the line edit took it: a new box that comes into the scene now is activated by Qt, and the scene
// takes the focus back to the old box and tells of it.
struct AnnasWeekBesideAnEdit
{
    AnnasWeekBesideAnEdit()
    {
        auto* layout = new QVBoxLayout(&window);
        auto* edit = new QLineEdit(&window);
        layout->addWidget(edit);
        layout->addWidget(&f.view);
        window.resize(900, 700);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            return;
        BkCalendarItem* focused = boxedItems(f.view.getColumnList().at(1)).value(0);
        f.view.setFocus();
        focused->widget->setFocus();
        const bool boxFocused = f.view.scene()->focusItem() == focused->widget;
        edit->setFocus();
        ok = boxFocused && !f.view.scene()->hasFocus();
    }
    QWidget window;
    AnnasWeekWithBookings f;
    bool ok = false;
};
// Monday's first box is made, as a booking of Monday comes or as Monday's column is updated; the focus
// comes back into the scene as the box joins its column. Returns the booking that came, or null.
BkCalendarItem* makeMondaysFirstBox(AnnasWeekWithBookings& f, bool added)
{
    if (added)
        return addBooking(f.model, 1, Monday, 4, QTime(14, 0), QTime(15, 0));
    f.view.getColumnList().first()->update();
    return nullptr;
}
} // namespace

void tst_BkCalendarView::shouldShowTheHostOnlyWholeBoxesAsTheFocusComesBack()
{
    // The host answers the focus that comes back by updating the view: it asks every item of the scene
    // for its bounds, the new box among them, and rebuilds the columns' boxes, or takes the new booking
    // out of the model again.
    QFETCH(bool, added);
    QFETCH(bool, takenAway);
    AnnasWeekBesideAnEdit w;
    QVERIFY(w.ok);
    AnnasWeekWithBookings& f = w.f;
    BkCalendarColumn* monday = f.view.getColumnList().first();
    int answers = 0;
    connect(f.view.scene(), &QGraphicsScene::focusItemChanged, &f.view, [&](QGraphicsItem* now) {
        if (!now)
            return;
        ++answers;
        if (BkCalendarItem* newcomer = f.model.findId(1); takenAway && newcomer)
            f.model.removeItem(newcomer);
        f.view.updateWidgets();
    });
    BkCalendarItem* newcomer = makeMondaysFirstBox(f, added);

    QVERIFY(answers > 0);
    verifyColumnsAndBoxesNowAndAfterTheEventLoop(f.view);
    // Every booking of Monday has one box, where its time puts it.
    const QList<BkCalendarItem*> mondays = monday->getItems(false);
    QCOMPARE(mondays.size(), added && !takenAway ? 2 : 1);
    if (takenAway) {
        QVERIFY(!boxedItems(monday).contains(newcomer));
        QVERIFY(!newcomer->widget);
        delete newcomer;
    }
    for (BkCalendarItem* item : mondays) {
        QCOMPARE(boxedItems(monday).count(item), 1);
        QCOMPARE(item->widget->parentItem(), static_cast<QGraphicsItem*>(monday));
        const double y = f.view.timeScale()->topMargin() + f.view.timeScale()->start().secsTo(item->start()) /
                                                               60 * f.view.timeScale()->minuteHeight();
        QCOMPARE(item->widget->y(), y);
    }
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsAsAClickOnAnItemEnds_data()
{
    QTest::addColumn<bool>("onBox");
    QTest::newRow("a booking's box") << true;
    QTest::newRow("a column") << false;
}

void tst_BkCalendarView::shouldOutliveAHostThatRebuildsTheColumnsAsAClickOnAnItemEnds()
{
    // Monday and its booking are both selected, and the user clicks one of them. The release leaves
    // only the clicked one selected: Qt tells the scene's listeners of that before it selects the
    // clicked item once more, and the host answers by showing a group, which takes the item away.
    QFETCH(bool, onBox);
    AnnasShownWeek f(true);
    QVERIFY(f.ok);
    BkCalendarItem* booking = addBooking(f.model, 1, Monday, 4, QTime(9, 0), QTime(10, 0));
    BkCalendarColumn* monday = f.view.getColumnList().first();
    QVERIFY(booking->widget);
    QGraphicsItem* target = onBox ? static_cast<QGraphicsItem*>(booking->widget) : monday;
    const QPointF scenePoint =
        onBox ? booking->widget->sceneBoundingRect().center()
              : monday->mapToScene(QPointF(20.0, f.view.timeScale()->topMargin() +
                                                     5 * 60 * f.view.timeScale()->minuteHeight()));
    QCOMPARE(f.view.scene()->itemAt(scenePoint, QTransform()), target);
    monday->setSelected(true);
    booking->widget->setSelected(true);
    QVERIFY(monday->isSelected() && booking->widget->isSelected());
    // The clicked item, which Qt goes on with after the answer: it stands, hidden and out of the scene,
    // until the event loop runs.
    const QPointer<QObject> clicked(onBox ? static_cast<QObject*>(booking->widget) : monday);
    bool rebuilt = false;
    bool clickedStood = false;
    connect(f.view.scene(), &QGraphicsScene::selectionChanged, &f.view, [&] {
        if (rebuilt)
            return;
        rebuilt = true;
        f.view.setResources({BkCalendarResource(5, QStringLiteral("Ben"), 0)});
        clickedStood = clicked && !target->scene();
    });
    const QPoint at = f.view.mapFromScene(scenePoint);
    QTest::mouseClick(f.view.viewport(), Qt::LeftButton, Qt::NoModifier, at);

    QVERIFY(rebuilt);
    QVERIFY(clickedStood);
    QCOMPARE(f.view.getColumnList().size(), 1);
    QCOMPARE(f.view.getColumnList().first()->resource().id.toInt(), 5);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!clicked);
    verifyColumnsAndBoxes(f.view);
    QVERIFY(!booking->widget);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldDropTheBoxBeingMadeWhenTheHostShowsAnotherWeekAsTheFocusComesBack_data()
{
    QTest::addColumn<bool>("added");
    QTest::newRow("a booking is added") << true;
    QTest::newRow("the column is updated") << false;
}

void tst_BkCalendarView::shouldDropTheBoxBeingMadeWhenTheHostShowsAnotherWeekAsTheFocusComesBack()
{
    // The focus comes back as the first box of Monday joins its column, and the host answers by showing
    // the next week: the columns take their new days and make their boxes, while the box that was being
    // made is one of last week's.
    QFETCH(bool, added);
    AnnasWeekBesideAnEdit w;
    QVERIFY(w.ok);
    AnnasWeekWithBookings& f = w.f;
    BkCalendarColumn* monday = f.view.getColumnList().first();
    int answers = 0;
    connect(f.view.scene(), &QGraphicsScene::focusItemChanged, &f.view, [&](QGraphicsItem* now) {
        if (now && answers++ == 0)
            f.view.setDate(Monday.addDays(7));
    });
    BkCalendarItem* newcomer = makeMondaysFirstBox(f, added);

    QVERIFY(answers > 0);
    QCOMPARE(monday->date(), Monday.addDays(7));
    verifyColumnsAndBoxesNowAndAfterTheEventLoop(f.view);
    // Every column shows its own day's bookings, one box each, and nothing of last week.
    for (BkCalendarColumn* column : f.view.getColumnList()) {
        for (BkCalendarItem* item : boxedItems(column))
            QCOMPARE(item->date(), column->date());
    }
    QCOMPARE(boxedItems(monday).size(), 1);
    if (newcomer)
        QVERIFY(!newcomer->widget);
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldOutliveAHostThatShowsAGroupAsTheFocusComesBack()
{
    // The host answers the focus that comes back by showing a group: the column that the new box is
    // joining goes, and Qt still goes on with the two.
    AnnasWeekBesideAnEdit w;
    QVERIFY(w.ok);
    AnnasWeekWithBookings& f = w.f;
    QPointer<BkCalendarColumn> monday = f.view.getColumnList().first();
    const BkCalendarResource anna(4, QStringLiteral("Anna"), 0);
    const BkCalendarResource ben(5, QStringLiteral("Ben"), 0);
    bool answered = false;
    connect(f.view.scene(), &QGraphicsScene::focusItemChanged, &f.view, [&](QGraphicsItem* now) {
        if (!now || answered)
            return;
        answered = true;
        f.view.setDate(Monday);
        f.view.setResources({anna, ben});
    });
    BkCalendarItem* newcomer = addBooking(f.model, 1, Monday, 4, QTime(14, 0), QTime(15, 0));

    QVERIFY(answered);
    QCOMPARE(f.view.getColumnList().size(), 2);
    verifyColumnsAndBoxes(f.view);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!monday);
    verifyColumnsAndBoxes(f.view);
    // Anna's column of the group shows the new booking.
    BkCalendarColumn* annas = f.view.getColumnList().first();
    QCOMPARE(annas->resource().id, anna.id);
    QVERIFY(boxedItems(annas).contains(newcomer));
    QCOMPARE(newcomer->widget->parentItem(), static_cast<QGraphicsItem*>(annas));
    QVERIFY(!f.view.grab().isNull());
}

void tst_BkCalendarView::shouldLayOutOnlyTheBoxesThatTheHostLeavesAsTheFocusComesBack_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::newRow("the host hides a box") << true;
    QTest::newRow("the host marks a box as something else") << false;
}

void tst_BkCalendarView::shouldLayOutOnlyTheBoxesThatTheHostLeavesAsTheFocusComesBack()
{
    // Monday has two overlapping bookings when a third comes. Its box is activated by Qt as it joins
    // the column, after the layout run of its joining; the focus comes back into the scene, and the
    // host answers by taking the first of Monday's boxes out of the layout. The run at the new box's
    // first place lays out the two boxes that are left, beside each other.
    QFETCH(bool, hidden);
    AnnasWeekBesideAnEdit w;
    QVERIFY(w.ok);
    AnnasWeekWithBookings& f = w.f;
    BkCalendarColumn* monday = f.view.getColumnList().first();
    BkCalendarItem* first = addBooking(f.model, 1, Monday, 4, QTime(14, 0), QTime(15, 0));
    BkCalendarItem* second = addBooking(f.model, 2, Monday, 4, QTime(14, 30), QTime(15, 30));
    QCOMPARE(second->widget->colCount(), 2);
    // The first booking's coming gave the scene the focus back, while the line edit kept the window's;
    // the view takes that, and the line edit takes it back.
    f.view.setFocus();
    w.window.findChild<QLineEdit*>()->setFocus();
    QVERIFY(!f.view.scene()->hasFocus());
    int answers = 0;
    connect(f.view.scene(), &QGraphicsScene::focusItemChanged, &f.view, [&](QGraphicsItem* now) {
        if (!now || answers++ > 0)
            return;
        if (hidden)
            first->widget->setVisible(false);
        else
            first->widget->setData(ItemKindRole, 0);
    });
    BkCalendarItem* third = addBooking(f.model, 3, Monday, 4, QTime(14, 45), QTime(15, 45));

    QCOMPARE(answers, 1);
    QCOMPARE(third->widget->parentItem(), static_cast<QGraphicsItem*>(monday));
    QCOMPARE(second->widget->colIndex(), 0);
    QCOMPARE(second->widget->colCount(), 2);
    QCOMPARE(third->widget->colIndex(), 1);
    QCOMPARE(third->widget->colCount(), 2);
    const double half = (monday->boundingRect().width() - 5.0) / 2;
    QCOMPARE(second->widget->boundingRect().width(), half);
    QCOMPARE(third->widget->x(), half);
    // The box taken out keeps what it had.
    QCOMPARE(first->widget->colIndex(), 0);
    QCOMPARE(first->widget->colCount(), 2);
}

void tst_BkCalendarView::shouldAskForAGroupWhenTheListIsEmpty()
{
    ViewFixture f;
    f.view.resize(800, 600);
    f.view.setResources({});
    QCOMPARE(f.view.days(), 0);
    QCOMPARE(f.view.dayMode(), 0);
    BkCalendarInfoWidget* info = f.view.infoWidget();
    QVERIFY(info);
    QCOMPARE(info->messageType(), 0);
    QCOMPARE(info->scene(), f.view.scene());
    QCOMPARE(info->margin(), 50);
    // It got its size from the view at once.
    QVERIFY(info->boundingRect().width() > 0.0);

    // Resized with the view.
    const QRectF before = info->boundingRect();
    f.view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.view));
    f.view.resize(1000, 700);
    QTRY_VERIFY(info->boundingRect() != before);
}

void tst_BkCalendarView::shouldTellOfEmptySchedulesWhenAllAreHidden()
{
    ViewFixture f;
    setHideEmpty(1);
    f.view.setResources(
        {BkCalendarResource(1, QStringLiteral("A"), 0), BkCalendarResource(2, QStringLiteral("B"), 1)});
    QCOMPARE(f.view.days(), 0);
    QVERIFY(f.view.infoWidget());
    QCOMPARE(f.view.infoWidget()->messageType(), 1);
    QVERIFY(f.view.infoWidget()->message() != BkCalendarInfoWidget(0).message());
}

void tst_BkCalendarView::shouldKeepAnEmptyScheduleWithoutHideEmpty()
{
    ViewFixture f;
    setHideEmpty(0);
    f.view.setResources({BkCalendarResource(1, QStringLiteral("A"), 0)});
    QCOMPARE(f.view.days(), 1);
    QVERIFY(!f.view.infoWidget());
}

void tst_BkCalendarView::shouldLeaveGapsInIndicesForHiddenResources()
{
    ViewFixture f;
    setHideEmpty(1);
    const BkCalendarResource a(1, QStringLiteral("A"), 0);
    const BkCalendarResource b(2, QStringLiteral("B"), 0);
    const BkCalendarResource c(3, QStringLiteral("C"), 1);
    addPlan(f.model, Wednesday, a);
    addPlan(f.model, Wednesday, c);
    f.view.setResources({a, b, c});
    const QList<BkCalendarColumn*> columns = f.view.getColumnList();
    QCOMPARE(columns.count(), 2);
    QCOMPARE(columns.at(0)->index(), 0);
    QCOMPARE(columns.at(1)->index(), 2);
    QCOMPARE(columns.at(1)->resource().type, 1);
    QVERIFY(!f.view.infoWidget());
}

void tst_BkCalendarView::shouldNotRelayThePlaceholder()
{
    ViewFixture f;
    f.view.setResources({BkCalendarResource(1, QStringLiteral("A"), 0),
                         BkCalendarResource(QVariant(), QStringLiteral("Choose someone"), 0)});
    QCOMPARE(f.view.days(), 2);
    BkCalendarColumn* placeholder = f.view.getColumnList().at(1);
    QCOMPARE(placeholder->header()->text(), QStringLiteral("Choose someone"));
    QSignalSpy dates(&f.view, &BkCalendarView::dateSelected);
    QSignalSpy activated(&f.view, &BkCalendarView::itemActivated);
    placeholder->setSelected(true);
    BkCalendarItem item;
    QMetaObject::invokeMethod(placeholder, "itemActivated", Q_ARG(BkCalendarItem*, &item));
    QCOMPARE(dates.count(), 0);
    QCOMPARE(activated.count(), 0);
    f.view.getColumnList().at(0)->setSelected(true);
    QCOMPARE(dates.count(), 1);
}

void tst_BkCalendarView::shouldSelectTheResourceColumnByTypeAndId()
{
    ViewFixture f;
    f.view.setResource(BkCalendarResource(7, QStringLiteral("another name"), 1));
    f.view.setResources({BkCalendarResource(7, QStringLiteral("Anna"), 0),
                         BkCalendarResource(7, QStringLiteral("Room"), 1),
                         BkCalendarResource(8, QStringLiteral("Car"), 1)});
    QCOMPARE(selectedIndices(f.view), QList<int>{1});
}

void tst_BkCalendarView::shouldKeepTheInfoWidgetUntilTheNextGroup()
{
    ViewFixture f;
    f.view.setResources({});
    BkCalendarInfoWidget* info = f.view.infoWidget();
    QVERIFY(info);
    f.view.setDays(5);
    QCOMPARE(f.view.infoWidget(), info);
    QCOMPARE(info->scene(), f.view.scene());
    QCOMPARE(f.view.days(), 5);
    f.view.setResources({BkCalendarResource(1, QStringLiteral("A"), 0)});
    QVERIFY(!f.view.infoWidget());
    int infos = 0;
    for (QGraphicsItem* item : f.view.scene()->items())
        infos += item->data(ItemKindRole).toInt() == ItemKindInfoWidget;
    QCOMPARE(infos, 0);
}

void tst_BkCalendarView::shouldBuildResourceColumnsWithGrip()
{
    ViewFixture f;
    f.view.setRaise(BkCalendarColumn::RaiseOnHover);
    f.view.setResources(
        {BkCalendarResource(1, QStringLiteral("Anna"), 0), BkCalendarResource(2, QStringLiteral("Room"), 1)});
    for (BkCalendarColumn* column : f.view.getColumnList()) {
        QVERIFY(column->header()->resizable());
        QCOMPARE(column->resourceMode(), 1);
        QCOMPARE(column->date(), Wednesday);
        QCOMPARE(column->model(), &f.model);
        QCOMPARE(column->raise(), BkCalendarColumn::RaiseOnHover);
    }
    QCOMPARE(f.view.getColumnList().at(0)->header()->text(), QStringLiteral("Anna"));
    QCOMPARE(f.view.getColumnList().at(1)->header()->text(), QStringLiteral("Room"));
}

void tst_BkCalendarView::shouldHandTheModelAndRaiseToEveryColumn()
{
    BkCalendarView view;
    view.setDays(3);
    BkCalendarModel model;
    view.setModel(&model);
    QCOMPARE(view.model(), &model);
    QCOMPARE(view.calendarScene()->model(), &model);
    view.setRaise(BkCalendarColumn::RaiseOnHover);
    for (BkCalendarColumn* column : view.getColumnList()) {
        QCOMPARE(column->model(), &model);
        QCOMPARE(column->raise(), BkCalendarColumn::RaiseOnHover);
    }
    QCOMPARE(view.raiseMode(), BkCalendarColumn::RaiseOnHover);
}

void tst_BkCalendarView::shouldShowNothingOnceItsModelIsGone()
{
    // The view does not own its model, and a host may delete it first: the view, its scene and its
    // columns then have no model, show no bookings, and go on working.
    BkCalendarView view;
    auto* model = new BkCalendarModel;
    view.setModel(model);
    view.resize(600, 400);
    view.setResource(BkCalendarResource(5, QStringLiteral("Anna"), 0));
    view.setDate(Wednesday);
    view.setDays(1);
    BkCalendarItem* item = addBooking(*model, 1, Wednesday, 5, QTime(9, 0), QTime(10, 0));
    QPointer<BkCalendarItemWidget> box = item->widget;
    QVERIFY(box);

    delete model;
    QVERIFY(!view.model());
    QVERIFY(!view.calendarScene()->model());
    for (BkCalendarColumn* column : view.getColumnList())
        QVERIFY(!column->model());
    QVERIFY(!box || !box->item());
    QVERIFY(!view.grab().isNull());

    view.setDate(Wednesday.addDays(1));
    view.setDays(3);
    QCOMPARE(view.getColumnList().size(), 3);
    for (BkCalendarColumn* column : view.getColumnList())
        QVERIFY(column->getItems(false).isEmpty());
    QVERIFY(!view.grab().isNull());
}

void tst_BkCalendarView::shouldStretchTheSceneToTheLeftEdge()
{
    ViewFixture f;
    f.view.setDays(2);
    // An item left of the origin widens the items' bounds; the scene starts at 0 all the same.
    QGraphicsRectItem* stray = f.view.scene()->addRect(QRectF(-80.0, 10.0, 20.0, 20.0), Qt::NoPen);
    f.view.updateWidgets();
    const QRectF items = f.view.scene()->itemsBoundingRect();
    QCOMPARE(items.left(), -80.0);
    const QRectF rect = f.view.scene()->sceneRect();
    QCOMPARE(rect.left(), 0.0);
    QCOMPARE(rect.right(), items.right());
    QCOMPARE(rect.top(), items.top());
    QCOMPARE(rect.height(), items.height());
    delete stray;
}

void tst_BkCalendarView::shouldScrollOnlyOnPlainArrows_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("plain") << int(Qt::NoModifier) << true;
    QTest::newRow("Shift") << int(Qt::ShiftModifier) << false;
    QTest::newRow("Ctrl") << int(Qt::ControlModifier) << false;
    QTest::newRow("keypad") << int(Qt::KeypadModifier) << false;
}

void tst_BkCalendarView::shouldScrollOnlyOnPlainArrows()
{
    QFETCH(int, modifiers);
    QFETCH(bool, scrolls);
    ViewFixture f;
    f.view.resize(600, 300);
    f.view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.view));
    QScrollBar* bar = f.view.verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    const int before = bar->value();
    QTest::keyClick(&f.view, Qt::Key_Down, Qt::KeyboardModifiers(modifiers));
    QCOMPARE(bar->value() > before, scrolls);
}

void tst_BkCalendarView::shouldPassEveryKeyOnToTheForm()
{
    ViewFixture f;
    f.view.resize(600, 300);
    for (int key : {int(Qt::Key_Down), int(Qt::Key_Up), int(Qt::Key_Left), int(Qt::Key_Right),
                    int(Qt::Key_Space), int(Qt::Key_PageDown), int(Qt::Key_Delete)}) {
        for (Qt::KeyboardModifiers modifiers :
             {Qt::KeyboardModifiers(Qt::NoModifier), Qt::KeyboardModifiers(Qt::ShiftModifier)}) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            event.accept();
            QCoreApplication::sendEvent(&f.view, &event);
            QVERIFY2(!event.isAccepted(), qPrintable(QString::number(key)));
        }
    }
}

void tst_BkCalendarView::shouldTakeTheDragPreviewBackWhenTheDragLeavesTheScene()
{
    ViewFixture f;
    f.view.setResource(BkCalendarResource(5, QStringLiteral("Anna"), 0));
    BkCalendarItem* item = addBooking(f.model, 42, Wednesday, 5, QTime(9, 0), QTime(10, 0));
    // The preview of a drag has moved the booking, which is on the unsaved list since the drag began.
    item->invalidate(true);
    item->setTime(QTime(11, 0), QTime(12, 0));
    QCOMPARE(item->start(), QTime(11, 0));

    QMimeData data;
    data.setData(QStringLiteral("text/calitem"), QByteArrayLiteral("42"));
    QGraphicsSceneDragDropEvent event(QEvent::GraphicsSceneDragLeave);
    event.setMimeData(&data);
    event.accept();
    QCoreApplication::sendEvent(f.view.scene(), &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(item->start(), QTime(9, 0));
    QCOMPARE(item->end(), QTime(10, 0));
}

void tst_BkCalendarView::shouldIgnoreForeignDragsLeavingTheScene_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("another format") << QStringLiteral("text/plain") << QByteArrayLiteral("42");
    QTest::newRow("not a number") << QStringLiteral("text/calitem") << QByteArrayLiteral("4x2");
    QTest::newRow("unknown id") << QStringLiteral("text/calitem") << QByteArrayLiteral("43");
    QTest::newRow("empty") << QStringLiteral("text/calitem") << QByteArray();
}

void tst_BkCalendarView::shouldIgnoreForeignDragsLeavingTheScene()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, payload);
    ViewFixture f;
    BkCalendarItem* item = addBooking(f.model, 42, Wednesday, 5, QTime(9, 0), QTime(10, 0));
    item->invalidate(true);
    item->setTime(QTime(11, 0), QTime(12, 0));
    QMimeData data;
    data.setData(format, payload);
    QGraphicsSceneDragDropEvent event(QEvent::GraphicsSceneDragLeave);
    event.setMimeData(&data);
    QCoreApplication::sendEvent(f.view.scene(), &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(item->start(), QTime(11, 0));
}

FW_TEST_MAIN(tst_BkCalendarView)
#include "tst_bkcalendarview.moc"
