// Editing the group on the grid: a double click on a header of the group view opens the picker of
// users and resources; a pick rebinds the column, a clear removes it, the placeholder grows a new
// one, and the group is saved for the host.

#include "BkShownView.h"
#include "FwModal.h"
#include "FwTestApplication.h"
#include "PaintProbe.h"

#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarHeader.h>
#include <BkCalendarInfoWidget.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarUserList.h>
#include <BkCalendarView.h>

#include <FwApplication.h>
#include <FwPushButton.h>
#include <FwTreeWidget.h>
#include <SQLQuery.h>

#include <QImage>
#include <QPointer>
#include <QResource>
#include <QSignalSpy>

namespace {
const QDate Wednesday(2026, 11, 25);
const char GroupKey[] = "usr_bookinggrouplist";

QString savedGroup()
{
    return FwApplication::app()->getValue(QLatin1String(GroupKey), QStringLiteral("unset")).toString();
}

// How the user answers the picker: pick the row of that id and type and press Ok, press Clear, or
// press Cancel.
enum class Answer
{
    Pick,
    Clear,
    Cancel
};

// `meanwhile` runs while the picker is open, before the answer, as a host's timer would.
void answerPicker(Answer answer, int id = 0, int type = 0, std::function<void()> meanwhile = {})
{
    FwTest::whenModal([answer, id, type, meanwhile](QWidget* modal) {
        auto* dialog = qobject_cast<BkCalendarUserList*>(modal);
        QVERIFY(dialog);
        if (meanwhile)
            meanwhile();
        if (answer == Answer::Cancel) {
            QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("pbCancel")), Qt::LeftButton);
            return;
        }
        if (answer == Answer::Clear) {
            QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("pbClear")), Qt::LeftButton);
            return;
        }
        auto* list = dialog->findChild<QTreeWidget*>(QStringLiteral("tvList"));
        QVERIFY(list);
        list->clearSelection();
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            QTreeWidgetItem* row = list->topLevelItem(i);
            if (row->data(0, 256).isValid() && row->data(0, 256).toInt() == id &&
                row->data(0, 257).toInt() == type)
                row->setSelected(true);
        }
        QCOMPARE(list->selectedItems().count(), 1);
        QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("pbOk")), Qt::LeftButton);
    });
}

// Double-clicks the header of a column where the user sees it: press, release, the double click,
// and the last release once the picker has closed.
void doubleClickHeader(BkCalendarView& view, BkCalendarColumn* column)
{
    const QPoint at = view.mapFromScene(column->header()->sceneBoundingRect().center());
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

QStringList captions(const BkCalendarView& view)
{
    QStringList texts;
    for (BkCalendarColumn* column : view.getColumnList())
        texts << column->header()->text();
    return texts;
}

QList<int> indices(const BkCalendarView& view)
{
    QList<int> list;
    for (BkCalendarColumn* column : view.getColumnList())
        list << column->index();
    return list;
}

// What the viewport shows of a column's header, from the header's top left corner on.
QImage headerAsShown(BkCalendarView& view, BkCalendarColumn* column)
{
    const QImage shown = view.viewport()->grab().toImage();
    const QRect header = view.mapFromScene(column->header()->sceneBoundingRect()).boundingRect();
    return shown.copy(header);
}

// The pictures a host registers for its resources, as long as the test runs.
struct HostIcons
{
    HostIcons() { ok = QResource::registerResource(QStringLiteral(FWCALENDAR_HOST_ICONS)); }
    ~HostIcons()
    {
        if (ok)
            QResource::unregisterResource(QStringLiteral(FWCALENDAR_HOST_ICONS));
    }
    bool ok = false;
};

struct GroupView : BkShownView
{
    GroupView()
        : BkShownView(QSize(900, 500))
    {
    }

    // The group of Anna Berg with the placeholder behind her.
    void showAnnaAndAPlaceholder()
    {
        view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0),
                           BkCalendarResource(QVariant(), QStringLiteral("Add someone"), 0)});
    }
};
} // namespace

class tst_BkCalendarViewGroup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void shouldChangeNothingOnCancelButStillResize();
    void shouldRebindAColumnToThePick();
    void shouldSaveUsersAndThePlaceholder();
    void shouldGrowANewPlaceholderBehindAFilledOne();
    void shouldRemoveAClearedColumnAndRenumber();
    void shouldLeaveNothingWhenTheLastColumnIsCleared();
    void shouldTurnTheHeaderToAResource();
    void shouldRelayAgainAtEveryPick();
    void shouldGiveTheNewColumnItsSavedWidth();
    void shouldIgnoreHeaderDoubleClicksInDayMode();
    void shouldLeaveAGroupAloneThatTheHostRebuiltDuringThePick_data();
    void shouldLeaveAGroupAloneThatTheHostRebuiltDuringThePick();
    void shouldSurviveAViewClosedDuringThePick();
    void shouldLeaveAGroupAloneThatTheHostRebuiltAsTheClearedColumnLeft();
    void shouldStopTheEditWhenTheHostRebuildsTheGroupOnTheLoad_data();
    void shouldStopTheEditWhenTheHostRebuildsTheGroupOnTheLoad();
    void shouldShowThePickedPersonsBookingsFromTheHostsAnswer();
};

void tst_BkCalendarViewGroup::initTestCase()
{
    qRegisterMetaType<BkCalendarResource>();
    qRegisterMetaType<BkCalendarItem*>();
    SQLQuery query;
    QVERIFY(
        query.exec(QStringLiteral("CREATE TABLE view_user (id INTEGER, usr_initials TEXT, usr_name TEXT)")));
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE tbl_resource (id INTEGER, fw_text TEXT)")));
    for (const QString& row :
         {QStringLiteral("(12, 'AB', 'Anna Berg')"), QStringLiteral("(30, 'CD', 'Carl Dahl')"),
          QStringLiteral("(7, 'EF', 'Eva Fors')")})
        QVERIFY(query.exec(QStringLiteral("INSERT INTO view_user VALUES ") + row));
    for (const QString& row : {QStringLiteral("(7, 'Room 7')"), QStringLiteral("(8, 'Car')")})
        QVERIFY(query.exec(QStringLiteral("INSERT INTO tbl_resource VALUES ") + row));
}

void tst_BkCalendarViewGroup::init()
{
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    FwApplication::app()->setValue(QStringLiteral("untouched"), QLatin1String(GroupKey),
                                   QStringLiteral("tbl_user"));
    FwApplication::app()->setLocalValue(QStringLiteral("CalendarLayout"), QStringList());
}

void tst_BkCalendarViewGroup::cleanup()
{
    BkCalendarClock::setFixedNow(QDateTime());
}

void tst_BkCalendarViewGroup::shouldChangeNothingOnCancelButStillResize()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0)});
    const QList<BkCalendarColumn*> before = g.view.getColumnList();
    QSignalSpy sizes(&g.view, qOverload<int, int>(&BkCalendarView::sizeChanged));
    answerPicker(Answer::Cancel);
    doubleClickHeader(g.view, before.first());
    QCOMPARE(g.view.getColumnList(), before);
    QCOMPARE(captions(g.view), QStringList{QStringLiteral("Anna Berg")});
    QCOMPARE(before.first()->resource().id.toInt(), 12);
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
    QCOMPARE(sizes.count(), 1);
}

void tst_BkCalendarViewGroup::shouldRebindAColumnToThePick()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0),
                         BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0)});
    BkCalendarColumn* first = g.view.getColumnList().first();
    answerPicker(Answer::Pick, 7, 0);
    doubleClickHeader(g.view, first);
    QCOMPARE(g.view.getColumnList().first(), first);
    QCOMPARE(first->resource().id.toInt(), 7);
    QCOMPARE(first->resource().type, 0);
    QCOMPARE(captions(g.view), (QStringList{QStringLiteral("Eva Fors"), QStringLiteral("Carl Dahl")}));
    QCOMPARE(g.view.days(), 2);
    QCOMPARE(savedGroup(), QStringLiteral("7:0,30:0"));
}

void tst_BkCalendarViewGroup::shouldSaveUsersAndThePlaceholder()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0),
                         BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0),
                         BkCalendarResource(QVariant(), QStringLiteral("Add someone"), 0)});
    // Picking the same user again changes nothing but saves the group.
    answerPicker(Answer::Pick, 30, 0);
    doubleClickHeader(g.view, g.view.getColumnList().at(1));
    QCOMPARE(savedGroup(), QStringLiteral("12:0,30:0,0:0"));
}

void tst_BkCalendarViewGroup::shouldGrowANewPlaceholderBehindAFilledOne()
{
    GroupView g;
    QVERIFY(g.ok);
    g.showAnnaAndAPlaceholder();
    answerPicker(Answer::Pick, 30, 0);
    doubleClickHeader(g.view, g.view.getColumnList().at(1));
    QCOMPARE(g.view.days(), 3);
    QCOMPARE(captions(g.view), (QStringList{QStringLiteral("Anna Berg"), QStringLiteral("Carl Dahl"),
                                            QStringLiteral("Double click to set")}));
    BkCalendarColumn* placeholder = g.view.getColumnList().last();
    QVERIFY(placeholder->resource().id.isNull());
    QVERIFY(placeholder->header()->resizable());
    QCOMPARE(placeholder->resourceMode(), 1);
    QCOMPARE(placeholder->date(), Wednesday);
    QCOMPARE(placeholder->model(), &g.model);
    QCOMPARE(indices(g.view), (QList<int>{0, 1, 2}));
    QCOMPARE(savedGroup(), QStringLiteral("12:0,30:0,0:0"));
    // The new placeholder stands where the sizes put it, right of the others.
    QVERIFY(placeholder->pos().x() > g.view.getColumnList().at(1)->pos().x());

    // And it can be filled in turn.
    answerPicker(Answer::Pick, 8, 1);
    doubleClickHeader(g.view, placeholder);
    QCOMPARE(g.view.days(), 4);
    QCOMPARE(savedGroup(), QStringLiteral("12:0,30:0,8:1,0:0"));
}

void tst_BkCalendarViewGroup::shouldRemoveAClearedColumnAndRenumber()
{
    GroupView g;
    QVERIFY(g.ok);
    FwApplication::app()->setValue(1, QStringLiteral("set_hideempty"), QString());
    auto* plan = new BkCalendarPlan;
    plan->date = Wednesday;
    plan->start = QTime(8, 0);
    plan->end = QTime(9, 0);
    auto* plan2 = new BkCalendarPlan(*plan);
    plan->resource = BkCalendarResource(12, QString(), 0);
    plan2->resource = BkCalendarResource(7, QString(), 1);
    g.model.addItem(plan);
    g.model.addItem(plan2);
    // Carl has no schedule and stays out: the indices have a gap.
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0),
                         BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0),
                         BkCalendarResource(7, QStringLiteral("Room 7"), 1)});
    FwApplication::app()->setValue(0, QStringLiteral("set_hideempty"), QString());
    QCOMPARE(indices(g.view), (QList<int>{0, 2}));

    BkCalendarColumn* anna = g.view.getColumnList().first();
    QSignalSpy destroyed(anna, &QObject::destroyed);
    answerPicker(Answer::Clear);
    doubleClickHeader(g.view, anna);
    QCOMPARE(destroyed.count(), 1);
    QCOMPARE(g.view.days(), 1);
    QCOMPARE(indices(g.view), QList<int>{0});
    QCOMPARE(g.view.getColumnList().first()->pos().x(), 50.0);
    QCOMPARE(savedGroup(), QStringLiteral("7:1"));
}

void tst_BkCalendarViewGroup::shouldLeaveNothingWhenTheLastColumnIsCleared()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0)});
    answerPicker(Answer::Clear);
    doubleClickHeader(g.view, g.view.getColumnList().first());
    QCOMPARE(g.view.days(), 0);
    QVERIFY(!g.view.infoWidget());
    QCOMPARE(savedGroup(), QString());
}

void tst_BkCalendarViewGroup::shouldTurnTheHeaderToAResource()
{
    HostIcons icons;
    QVERIFY(icons.ok);
    const QImage userIcon(QStringLiteral(":/calendar/user.png"));
    const QImage resourceIcon(QStringLiteral(":/calendar/icons/kexi.png"));
    QVERIFY(!userIcon.isNull() && !resourceIcon.isNull());
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0)});
    BkCalendarColumn* column = g.view.getColumnList().first();
    const BkCalendarColorScheme& scheme = *g.view.colorScheme();
    QCOMPARE(column->header()->resource.type, 0);
    // A plain spot of the strip, right of the caption and left of the grip.
    const int x = int(column->header()->boundingRect().width()) - 30;
    g.view.scene()->clearSelection();
    QImage shown = headerAsShown(g.view, column);
    QVERIFY(!column->header()->headerSelected());
    QCOMPARE(shown.pixelColor(x, 5), scheme.header);
    QVERIFY(PaintProbe::showsPicture(shown, userIcon, QPoint(2, 2)));

    answerPicker(Answer::Pick, 7, 1);
    doubleClickHeader(g.view, column);
    QCOMPARE(column->resource().type, 1);
    QCOMPARE(column->resource().id.toInt(), 7);
    QCOMPARE(column->header()->resource.type, 1);
    QCOMPARE(column->header()->text(), QStringLiteral("Room 7"));
    QCOMPARE(savedGroup(), QStringLiteral("7:1"));

    // The header now shows a resource: the lilac strip and the resource's icon instead of the user's.
    g.view.scene()->clearSelection();
    shown = headerAsShown(g.view, column);
    QVERIFY(!column->header()->headerSelected());
    QCOMPARE(shown.pixelColor(x, 5), scheme.resourceHeader);
    QVERIFY(PaintProbe::showsPicture(shown, resourceIcon, QPoint(2, 2)));
    QVERIFY(!PaintProbe::showsPicture(shown, userIcon, QPoint(2, 2)));
}

void tst_BkCalendarViewGroup::shouldRelayAgainAtEveryPick()
{
    GroupView g;
    QVERIFY(g.ok);
    g.showAnnaAndAPlaceholder();
    BkCalendarColumn* anna = g.view.getColumnList().at(0);
    BkCalendarColumn* placeholder = g.view.getColumnList().at(1);
    answerPicker(Answer::Pick, 30, 0);
    doubleClickHeader(g.view, placeholder);
    answerPicker(Answer::Pick, 7, 0);
    doubleClickHeader(g.view, anna);

    QSignalSpy activated(&g.view, &BkCalendarView::itemActivated);
    BkCalendarItem item;
    // Anna's column came relayed from the group and was picked once more: it reports twice.
    QMetaObject::invokeMethod(anna, "itemActivated", Q_ARG(BkCalendarItem*, &item));
    QCOMPARE(activated.count(), 2);
    // The filled placeholder was picked once.
    activated.clear();
    QMetaObject::invokeMethod(placeholder, "itemActivated", Q_ARG(BkCalendarItem*, &item));
    QCOMPARE(activated.count(), 1);
    // The new placeholder reports nothing.
    activated.clear();
    QMetaObject::invokeMethod(g.view.getColumnList().last(), "itemActivated", Q_ARG(BkCalendarItem*, &item));
    QCOMPARE(activated.count(), 0);
}

void tst_BkCalendarViewGroup::shouldGiveTheNewColumnItsSavedWidth()
{
    GroupView g;
    QVERIFY(g.ok);
    FwApplication::app()->setLocalValue(QStringLiteral("CalendarLayout"),
                                        QStringList{QStringLiteral("0|30|250")});
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0)});
    answerPicker(Answer::Pick, 30, 0);
    doubleClickHeader(g.view, g.view.getColumnList().first());
    BkCalendarColumn* column = g.view.getColumnList().first();
    QVERIFY(column->customSize());
    QCOMPARE(column->boundingRect().width(), 250.0);
}

void tst_BkCalendarViewGroup::shouldIgnoreHeaderDoubleClicksInDayMode()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setDays(5);
    g.view.setDate(Wednesday);
    bool opened = false;
    const QPointer<QTimer> watch = FwTest::whenModal(
        [&opened](QWidget* modal) {
            opened = true;
            modal->close();
        },
        1000);
    QTest::ignoreMessage(QtWarningMsg, "FwTest::whenModal: no modal widget appeared");
    doubleClickHeader(g.view, g.view.getColumnList().at(2));
    // The watch looks for a second at least before it gives up.
    QTRY_VERIFY_WITH_TIMEOUT(!watch, 30000);
    QVERIFY(!opened);
    QCOMPARE(g.view.days(), 5);
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
}

void tst_BkCalendarViewGroup::shouldLeaveAGroupAloneThatTheHostRebuiltDuringThePick_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("onPlaceholder");
    QTest::newRow("pick for a member") << int(Answer::Pick) << false;
    QTest::newRow("pick for the placeholder") << int(Answer::Pick) << true;
    QTest::newRow("clear a member") << int(Answer::Clear) << false;
}

void tst_BkCalendarViewGroup::shouldLeaveAGroupAloneThatTheHostRebuiltDuringThePick()
{
    QFETCH(int, answer);
    QFETCH(bool, onPlaceholder);
    GroupView g;
    QVERIFY(g.ok);
    g.showAnnaAndAPlaceholder();
    BkCalendarColumn* clicked = g.view.getColumnList().at(onPlaceholder ? 1 : 0);
    QPointer<BkCalendarColumn> gone(clicked);
    QSignalSpy sizes(&g.view, qOverload<int, int>(&BkCalendarView::sizeChanged));
    // While the picker is open the host shows another group: the clicked column is gone.
    answerPicker(Answer(answer), 7, 0, [&g, &sizes] {
        g.view.setResources({BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0),
                             BkCalendarResource(8, QStringLiteral("Car"), 1)});
        sizes.clear();
    });
    doubleClickHeader(g.view, clicked);
    QVERIFY(!gone);
    // The host's group stands as the host built it, and nothing was saved for the lost column.
    QCOMPARE(captions(g.view), (QStringList{QStringLiteral("Carl Dahl"), QStringLiteral("Car")}));
    QCOMPARE(indices(g.view), (QList<int>{0, 1}));
    QCOMPARE(g.view.getColumnList().at(0)->resource().id.toInt(), 30);
    QCOMPARE(g.view.getColumnList().at(1)->resource().id.toInt(), 8);
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
    // The resize pass after the picker still runs.
    QCOMPARE(sizes.count(), 1);
}

void tst_BkCalendarViewGroup::shouldLeaveAGroupAloneThatTheHostRebuiltAsTheClearedColumnLeft()
{
    // The double click selected Anna's header. The user clears her column; as it leaves the scene,
    // the scene tells of the selection going with it, and the host answers by showing another group.
    GroupView g;
    QVERIFY(g.ok);
    g.showAnnaAndAPlaceholder();
    BkCalendarColumn* clicked = g.view.getColumnList().first();
    QPointer<BkCalendarColumn> gone(clicked);
    bool armed = false;
    int answers = 0;
    connect(g.view.scene(), &QGraphicsScene::selectionChanged, &g.view, [&] {
        if (!armed || answers++)
            return;
        g.view.setResources({BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0),
                             BkCalendarResource(8, QStringLiteral("Car"), 1)});
    });
    answerPicker(Answer::Clear, 0, 0, [&armed, clicked] {
        QVERIFY(clicked->header()->isSelected());
        armed = true;
    });
    doubleClickHeader(g.view, clicked);

    QCOMPARE(answers, 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!gone);
    // The host's group stands as the host built it, and the group it replaced was not saved.
    QCOMPARE(captions(g.view), (QStringList{QStringLiteral("Carl Dahl"), QStringLiteral("Car")}));
    QCOMPARE(indices(g.view), (QList<int>{0, 1}));
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
    QVERIFY(!g.view.grab().isNull());
}

void tst_BkCalendarViewGroup::shouldSurviveAViewClosedDuringThePick()
{
    BkCalendarModel model;
    auto* view = new BkCalendarView;
    QPointer<BkCalendarView> alive(view);
    view->setModel(&model);
    view->resize(900, 500);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view));
    view->setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0),
                        BkCalendarResource(QVariant(), QStringLiteral("Add someone"), 0)});
    BkCalendarColumn* column = view->getColumnList().first();
    // The host closes the calendar while the picker is open, and the picker goes with it.
    bool answered = false;
    FwTest::whenModal([view, &answered](QWidget*) {
        answered = true;
        delete view;
    });
    column->emitHeaderActivated();
    QVERIFY(answered);
    QVERIFY(!alive);
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
}

void tst_BkCalendarViewGroup::shouldStopTheEditWhenTheHostRebuildsTheGroupOnTheLoad_data()
{
    QTest::addColumn<bool>("onPlaceholder");
    QTest::newRow("member") << false;
    QTest::newRow("placeholder") << true;
}

void tst_BkCalendarViewGroup::shouldStopTheEditWhenTheHostRebuildsTheGroupOnTheLoad()
{
    QFETCH(bool, onPlaceholder);
    GroupView g;
    QVERIFY(g.ok);
    g.showAnnaAndAPlaceholder();
    BkCalendarColumn* clicked = g.view.getColumnList().at(onPlaceholder ? 1 : 0);
    QPointer<BkCalendarColumn> gone(clicked);
    // The host answers the request for the picked user's bookings by showing another group.
    bool rebuilt = false;
    QObject::connect(&g.model, &BkCalendarModel::loadData, &g.view,
                     [&g, &rebuilt](const QDate&, const QDate&, const BkCalendarResource& resource) {
                         if (rebuilt || resource.id.toInt() != 7)
                             return;
                         rebuilt = true;
                         g.view.setResources({BkCalendarResource(30, QStringLiteral("Carl Dahl"), 0)});
                     });
    answerPicker(Answer::Pick, 7, 0);
    doubleClickHeader(g.view, clicked);
    QVERIFY(rebuilt);
    // Taken away while the host was let in, the column goes once the event loop runs.
    QVERIFY(!g.view.getColumnList().contains(clicked));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!gone);
    QCOMPARE(captions(g.view), QStringList{QStringLiteral("Carl Dahl")});
    QCOMPARE(indices(g.view), QList<int>{0});
    QCOMPARE(savedGroup(), QStringLiteral("untouched"));
}

void tst_BkCalendarViewGroup::shouldShowThePickedPersonsBookingsFromTheHostsAnswer()
{
    GroupView g;
    QVERIFY(g.ok);
    g.view.setResources({BkCalendarResource(12, QStringLiteral("Anna Berg"), 0)});
    BkCalendarColumn* column = g.view.getColumnList().first();
    // The host answers the request for Eva's days with one booking of hers.
    QList<BkCalendarResource> asked;
    QObject::connect(&g.model, &BkCalendarModel::loadData, &g.view,
                     [&g, &asked](const QDate&, const QDate&, const BkCalendarResource& resource) {
                         asked << resource;
                         if (resource.id.toInt() != 7)
                             return;
                         auto* item = new BkCalendarItem;
                         item->id = 501;
                         item->setDate(Wednesday);
                         item->setUserId(7);
                         item->setTime(QTime(9, 0), QTime(10, 0));
                         g.model.addItem(item);
                     });
    answerPicker(Answer::Pick, 7, 0);
    doubleClickHeader(g.view, column);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().id.toInt(), 7);
    QCOMPARE(column->resource().id.toInt(), 7);
    int boxes = 0;
    for (QGraphicsItem* child : column->childItems()) {
        if (auto* box = qgraphicsitem_cast<BkCalendarItemWidget*>(child))
            boxes += box->item() && box->item()->id.toInt() == 501;
    }
    QCOMPARE(boxes, 1);
    QCOMPARE(savedGroup(), QStringLiteral("7:0"));
}

FW_TEST_MAIN(tst_BkCalendarViewGroup)
#include "tst_bkcalendarviewgroup.moc"
