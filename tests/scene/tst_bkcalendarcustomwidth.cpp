// Custom widths of resource columns: the grip drag on the header, the saved "CalendarLayout"
// list, the width coming back for a new column, and the header's menu that removes it.

#include "BkBookingScene.h"
#include "BkCalendarHeader.h"
#include "BkCalendarModel.h"
#include "BkCalendarView.h"
#include "FwTestApplication.h"

#include <QGraphicsSceneContextMenuEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QtTest>

using namespace BkTest;

namespace {

const QDate Day(2024, 3, 11);
const QString Layout = QStringLiteral("CalendarLayout");
const BkCalendarResource Room7(QVariant(7), QStringLiteral("Room 7"), 1);
const BkCalendarResource User7(QVariant(7), QStringLiteral("Gert"), 0);

QStringList storedLayout()
{
    return FwApplication::app()->localValue(Layout, QVariant(QVariant::Int)).toStringList();
}

void storeLayout(const QStringList& list)
{
    FwApplication::app()->setLocalValue(Layout, QVariant(list));
}

// The view answers a column's widthChanged() by sharing out the widths and refreshing every
// column, which gives the header its new width; this stands in for it.
void followWidth(BkCalendarColumn* column)
{
    QObject::connect(column, qOverload<>(&BkCalendarColumn::widthChanged), column,
                     [column]() { column->update(); });
}

// Room 7's resizable column, following its own width, in the shown scene.
BkCalendarColumn* showRoomColumn(BookingScene& s)
{
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    followWidth(column);
    s.show();
    return column;
}

// The middle of the grip of a column's header, in scene coordinates.
QPointF gripPoint(BkCalendarColumn* column)
{
    return column->header()->mapToScene(column->header()->grip().center());
}

void dragGrip(BookingScene& s, BkCalendarColumn* column, double dx)
{
    const QPointF from = gripPoint(column);
    s.press(from);
    s.moveTo(from + QPointF(dx / 2, 3));
    s.moveTo(from + QPointF(dx, -2));
    s.release(from + QPointF(dx, -2));
}

// Sends the scene a right click on the column's header, made with the mouse, and gives whether
// anything took it.
bool rightClickHeader(BookingScene& s, BkCalendarColumn* column)
{
    QGraphicsSceneContextMenuEvent event(QEvent::GraphicsSceneContextMenu);
    event.setScenePos(column->header()->mapToScene(QPointF(40, 10)));
    event.setScreenPos(QPoint(300, 40));
    event.setReason(QGraphicsSceneContextMenuEvent::Mouse);
    event.setAccepted(false);
    QApplication::sendEvent(&s.scene, &event);
    return event.isAccepted();
}

// Right-clicks the column's header and picks the first entry of its menu, as a user would: the menu
// runs its own loop, which a timer watches. Gives the entries offered, none when no menu came within
// 30 s, and whether the column took the event.
QStringList pickFirstHeaderEntry(BookingScene& s, BkCalendarColumn* column, bool* accepted)
{
    QStringList offered;
    QTimer timer;
    int waited = 0;
    timer.setInterval(20);
    QObject::connect(&timer, &QTimer::timeout, [&]() {
        waited += 20;
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) {
            if (waited > 30000) {
                timer.stop();
                QApplication::closeAllWindows();
            }
            return;
        }
        timer.stop();
        for (QAction* action : menu->actions())
            offered << action->text();
        if (!menu->actions().isEmpty())
            menu->actions().first()->trigger();
        menu->close();
    });
    timer.start();

    *accepted = rightClickHeader(s, column);
    return offered;
}

} // namespace

class tst_BkCalendarCustomWidth : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        storeLayout(QStringList());
        QVERIFY(storedLayout().isEmpty());
    }
    void cleanup()
    {
        // A day column's grip leaves its hand cursor behind by design; no test hands it on.
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
    }

    void firstDragAppendsAndSecondRewrites();
    void gripDragFollowsThePointerLive();
    void pressOutsideTheGripChangesNothing();
    void rightPressInTheGripStartsNoDrag();
    void everyEntryOfTheResourceIsRewritten();
    void moveIsBoundByTheMinimumWidth();
    void dayColumnIgnoresTheLayout();
    void dayColumnGripShowsTheHandAndKeepsIt();
    void columnGoneMidDragGivesTheCursorBack_data();
    void columnGoneMidDragGivesTheCursorBack();
    void grabLostMidDragEndsTheDragAtTheWidthShown();
    void savedWidthComesBackForTheSameTypeAndId();
    void firstMatchIsReadLastMatchIsRemoved();
    void malformedEntriesAreLeftAlone();
    void widthNoColumnCanHaveIsNoWidth_data();
    void widthNoColumnCanHaveIsNoWidth();
    void contextMenuRemovesTheCustomSize();
    void contextMenuOnADayColumn();
    void contextMenuOutlivesItsColumn();
    void removeOnADayColumnTakesThePersonsSavedWidth();
    void firstStepOfAFirstDragGoesToTheShareOut();
};

void tst_BkCalendarCustomWidth::firstDragAppendsAndSecondRewrites()
{
    BookingScene s;
    BkCalendarColumn* column = showRoomColumn(s);
    QCOMPARE(column->boundingRect().width(), 200.0);
    QVERIFY(!column->customSize());

    dragGrip(s, column, 40);
    QCOMPARE(column->widthScale(), 240.0);
    QVERIFY(column->customSize());
    QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|240"));

    dragGrip(s, column, 11);
    QCOMPARE(column->widthScale(), 251.0);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|251"));

    // The width survives in a column built anew for the same resource.
    BookingScene other;
    BkCalendarColumn* again = other.addColumn(Day, Room7, true, 1);
    again->initSavedValue();
    QCOMPARE(again->widthScale(), 251.0);
    QCOMPARE(again->widthType(), WidthFixed);
    QVERIFY(again->customSize());
}

void tst_BkCalendarCustomWidth::gripDragFollowsThePointerLive()
{
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    followWidth(column);
    QSignalSpy shareOut(column, qOverload<>(&BkCalendarColumn::widthChanged));
    s.show();

    const QPointF from = gripPoint(column);
    s.press(from);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::OpenHandCursor);
    s.moveTo(from + QPointF(30, 0));
    QCOMPARE(column->widthScale(), 230.0);
    QCOMPARE(column->header()->boundingRect().width(), 230.0);
    // Only x counts.
    s.moveTo(from + QPointF(10, 80));
    QCOMPARE(column->widthScale(), 210.0);
    QCOMPARE(shareOut.count(), 2);
    // Nothing is written before the release.
    QVERIFY(storedLayout().isEmpty());
    s.release(from + QPointF(10, 80));
    QVERIFY(!QGuiApplication::overrideCursor());
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|210"));
}

void tst_BkCalendarCustomWidth::pressOutsideTheGripChangesNothing()
{
    BookingScene s;
    BkCalendarColumn* column = showRoomColumn(s);

    const QPointF from = column->header()->mapToScene(QPointF(40, 10));
    s.press(from);
    QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
    s.moveTo(from + QPointF(40, 0));
    s.release(from + QPointF(40, 0));
    QCOMPARE(column->widthScale(), 200.0);
    QVERIFY(!column->customSize());
    QVERIFY(storedLayout().isEmpty());
    QVERIFY(!QGuiApplication::overrideCursor());
}

void tst_BkCalendarCustomWidth::rightPressInTheGripStartsNoDrag()
{
    BookingScene s;
    BkCalendarColumn* column = showRoomColumn(s);

    const QPointF from = gripPoint(column);
    s.press(from, Qt::RightButton);
    QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
    s.mouse(QEvent::MouseMove, from + QPointF(40, 0), Qt::NoButton, Qt::RightButton);
    s.release(from + QPointF(40, 0), Qt::RightButton);
    QCOMPARE(column->widthScale(), 200.0);
    QVERIFY(!column->customSize());
    QVERIFY(storedLayout().isEmpty());

    // A right press during a left drag ends the drag: the header forgets where it was.
    s.press(from);
    QVERIFY(column->header()->lastPos() != QPointF(0, 0));
    s.mouse(QEvent::MouseButtonPress, from, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
    s.mouse(QEvent::MouseMove, from + QPointF(40, 0), Qt::NoButton, Qt::LeftButton | Qt::RightButton);
    QCOMPARE(column->widthScale(), 200.0);
    s.mouse(QEvent::MouseButtonRelease, from + QPointF(40, 0), Qt::RightButton, Qt::LeftButton);
    s.release(from + QPointF(40, 0));
    QCOMPARE(column->widthScale(), 200.0);
    QVERIFY(!column->customSize());
    QVERIFY(storedLayout().isEmpty());
}

void tst_BkCalendarCustomWidth::everyEntryOfTheResourceIsRewritten()
{
    storeLayout(QStringList() << QStringLiteral("1|7|230.5") << QStringLiteral("0|7|120")
                              << QStringLiteral("1|7|310") << QStringLiteral("1|8|150")
                              << QStringLiteral("junk") << QStringLiteral("1|7")
                              << QStringLiteral("1|7|5|extra"));
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->initSavedValue();
    QCOMPARE(column->widthScale(), 230.5);
    column->update();
    followWidth(column);
    s.show();

    dragGrip(s, column, -50);
    QCOMPARE(column->widthScale(), 180.5);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|180.5") << QStringLiteral("0|7|120")
                                           << QStringLiteral("1|7|180.5") << QStringLiteral("1|8|150")
                                           << QStringLiteral("junk") << QStringLiteral("1|7")
                                           << QStringLiteral("1|7|5|extra"));
}

void tst_BkCalendarCustomWidth::moveIsBoundByTheMinimumWidth()
{
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->setMinWidth(120);
    QSignalSpy shareOut(column, qOverload<>(&BkCalendarColumn::widthChanged));
    QSignalSpy width(column, qOverload<double>(&BkCalendarColumn::widthChanged));

    column->move(-1000);
    QCOMPARE(column->widthScale(), 120.0);
    QCOMPARE(column->boundingRect().width(), 120.0);
    QVERIFY(column->customSize());
    QCOMPARE(shareOut.count(), 1);
    QCOMPARE(width.count(), 1);
    QCOMPARE(width.at(0).at(0).toDouble(), 120.0);
    // The type stays; the view keeps a custom column at its width.
    QCOMPARE(column->widthType(), WidthFixed);
    // Nothing is stored by a move alone.
    QVERIFY(storedLayout().isEmpty());
}

void tst_BkCalendarCustomWidth::dayColumnIgnoresTheLayout()
{
    storeLayout(QStringList() << QStringLiteral("0|17|240.5"));
    BookingScene s;
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    BkCalendarColumn* column = s.addColumn(Day, anna, false);
    column->initSavedValue();
    QCOMPARE(column->widthScale(), 200.0);
    QVERIFY(!column->customSize());
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("0|17|240.5"));
}

void tst_BkCalendarCustomWidth::dayColumnGripShowsTheHandAndKeepsIt()
{
    BookingScene s;
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    BkCalendarColumn* column = s.addColumn(Day, anna, false);
    followWidth(column);
    s.show();

    const QPointF from = gripPoint(column);
    s.press(from);
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::OpenHandCursor);
    s.moveTo(from + QPointF(40, 0));
    QCOMPARE(column->widthScale(), 200.0);
    s.release(from + QPointF(40, 0));
    // Without a grip of its own the release neither restores the cursor nor writes anything.
    QVERIFY(QGuiApplication::overrideCursor());
    QVERIFY(!column->customSize());
    QVERIFY(storedLayout().isEmpty());
}

void tst_BkCalendarCustomWidth::columnGoneMidDragGivesTheCursorBack_data()
{
    QTest::addColumn<int>("how");
    QTest::newRow("deleted") << 0;
    // A column that the host takes away while it is let in is hidden at once and deleted later.
    QTest::newRow("hidden") << 1;
    QTest::newRow("out of the scene, then deleted") << 2;
}

void tst_BkCalendarCustomWidth::columnGoneMidDragGivesTheCursorBack()
{
    // The group can be rebuilt while the user drags a grip; the release then reaches no header, and
    // the width of a column on its way out is not stored.
    QFETCH(int, how);
    BookingScene s;
    BkCalendarColumn* column = showRoomColumn(s);

    const QPointF from = gripPoint(column);
    s.press(from);
    s.moveTo(from + QPointF(20, 0));
    QCOMPARE(column->widthScale(), 220.0);
    QVERIFY(QGuiApplication::overrideCursor());
    if (how == 1) {
        column->hide();
    } else {
        if (how == 2) {
            s.scene.removeItem(column);
            QVERIFY(!QGuiApplication::overrideCursor());
            QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
        }
        delete column;
    }
    QVERIFY(!QGuiApplication::overrideCursor());
    s.moveTo(from + QPointF(30, 0));
    s.release(from + QPointF(30, 0));
    QVERIFY(!QGuiApplication::overrideCursor());
    QVERIFY(storedLayout().isEmpty());

    // A day column's hand stays, as it does at its release.
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    BkCalendarColumn* day = s.addColumn(Day, anna, false);
    const QPointF grip = gripPoint(day);
    s.press(grip);
    QVERIFY(QGuiApplication::overrideCursor());
    delete day;
    QVERIFY(QGuiApplication::overrideCursor());
}

void tst_BkCalendarCustomWidth::grabLostMidDragEndsTheDragAtTheWidthShown()
{
    // Another item can take the mouse while the user drags a grip; the release then never reaches
    // the header. The drag ends there, at the width the column shows.
    BookingScene s;
    BkCalendarColumn* column = showRoomColumn(s);

    const QPointF from = gripPoint(column);
    s.press(from);
    s.moveTo(from + QPointF(25, 0));
    QCOMPARE(column->widthScale(), 225.0);
    QCOMPARE(s.scene.mouseGrabberItem(), column->header());
    auto* other = new QGraphicsRectItem(0, 0, 10, 10);
    s.scene.addItem(other);
    other->grabMouse();
    QVERIFY(!QGuiApplication::overrideCursor());
    QCOMPARE(column->header()->lastPos(), QPointF(0, 0));
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|225"));
    QCOMPARE(column->widthScale(), 225.0);

    // The header hears nothing more of that drag; the next one starts as usual.
    other->ungrabMouse();
    s.moveTo(from + QPointF(40, 0));
    s.release(from + QPointF(40, 0));
    QCOMPARE(column->widthScale(), 225.0);
    QVERIFY(!QGuiApplication::overrideCursor());
    dragGrip(s, column, 5);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|230"));
    QVERIFY(!QGuiApplication::overrideCursor());

    // A day column's hand stays, as it does at its release.
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    BkCalendarColumn* day = s.addColumn(Day, anna, false);
    s.press(gripPoint(day));
    QCOMPARE(s.scene.mouseGrabberItem(), day->header());
    day->header()->ungrabMouse();
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|230"));
}

void tst_BkCalendarCustomWidth::savedWidthComesBackForTheSameTypeAndId()
{
    storeLayout(QStringList() << QStringLiteral("1|7|230.5"));
    BookingScene s;
    BkCalendarColumn* room = s.addColumn(Day, Room7, true, 1);
    BkCalendarColumn* user = s.addColumn(Day, User7, true, 1);
    room->initSavedValue();
    user->initSavedValue();

    QCOMPARE(room->widthScale(), 230.5);
    QCOMPARE(room->widthType(), WidthFixed);
    QVERIFY(room->customSize());
    QCOMPARE(user->widthScale(), 200.0);
    QVERIFY(!user->customSize());

    // A custom column keeps its width when the view shares out the widths.
    room->setWidthScale(0.5, WidthProportional, -1.0);
    QCOMPARE(room->widthScale(), 230.5);
    QCOMPARE(room->boundingRect().width(), 230.5);
}

void tst_BkCalendarCustomWidth::firstMatchIsReadLastMatchIsRemoved()
{
    storeLayout(QStringList() << QStringLiteral("1|7|210") << QStringLiteral("0|7|120")
                              << QStringLiteral("1|7|220") << QStringLiteral("1|7|230"));
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->initSavedValue();
    QCOMPARE(column->widthScale(), 210.0);
    QVERIFY(column->customSize());

    QSignalSpy shareOut(column, qOverload<>(&BkCalendarColumn::widthChanged));
    column->removeCustomSize();
    QVERIFY(!column->customSize());
    QCOMPARE(shareOut.count(), 1);
    // The width value stays until the view shares the widths out again.
    QCOMPARE(column->widthScale(), 210.0);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|210") << QStringLiteral("0|7|120")
                                           << QStringLiteral("1|7|220"));

    // Without a custom size it is still written back, unchanged where nothing matches.
    BkCalendarColumn* other = s.addColumn(Day, BkCalendarResource(QVariant(9), QString(), 1), true, 1);
    other->removeCustomSize();
    QCOMPARE(storedLayout().size(), 3);

    // Without its custom size the column takes the view's width again.
    column->setWidthScale(180.0, WidthFixed, -1.0);
    QCOMPARE(column->widthScale(), 180.0);
}

void tst_BkCalendarCustomWidth::malformedEntriesAreLeftAlone()
{
    // The list is kept on the machine and may have been edited: what is not a width is no width.
    storeLayout(QStringList() << QStringLiteral("1|7|wide") << QStringLiteral("1|7|-40")
                              << QStringLiteral("1|7") << QString() << QStringLiteral("|||"));
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->initSavedValue();
    QCOMPARE(column->widthScale(), 200.0);
    QVERIFY(!column->customSize());

    storeLayout(QStringList() << QStringLiteral("1|7|wide") << QStringLiteral("1|7|260"));
    column->initSavedValue();
    QCOMPARE(column->widthScale(), 260.0);

    // Something that is no list at all reads as an empty list and is replaced by the first drag.
    FwApplication::app()->setLocalValue(Layout, QVariant(42));
    BookingScene t;
    BkCalendarColumn* fresh = t.addColumn(Day, Room7, true, 1);
    fresh->initSavedValue();
    QCOMPARE(fresh->widthScale(), 200.0);
}

void tst_BkCalendarCustomWidth::widthNoColumnCanHaveIsNoWidth_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<double>("width");
    QTest::newRow("huge") << QStringLiteral("1|7|1e300") << 200.0;
    QTest::newRow("beyond Qt's widest widget") << QStringLiteral("1|7|16777216") << 200.0;
    QTest::newRow("Qt's widest widget") << QStringLiteral("1|7|16777215") << 16777215.0;
    // Under a pixel no part of the header could be hit to drag it wider or remove the width.
    QTest::newRow("tiny") << QStringLiteral("1|7|1e-300") << 200.0;
    QTest::newRow("under a pixel") << QStringLiteral("1|7|0.9999") << 200.0;
    QTest::newRow("one pixel") << QStringLiteral("1|7|1") << 1.0;
}

void tst_BkCalendarCustomWidth::widthNoColumnCanHaveIsNoWidth()
{
    // A width that no widget can have, or one under a pixel, comes from a hand-edited list; taken, it
    // would overflow the whole-pixel arithmetic of the view and of Qt, or leave a column that the
    // mouse cannot find. It is no width, and the view stays usable.
    QFETCH(QString, entry);
    QFETCH(double, width);
    storeLayout(QStringList() << entry);
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->initSavedValue();
    QCOMPARE(column->widthScale(), width);
    QCOMPARE(column->customSize(), width != 200.0);

    BkCalendarModel model;
    BkCalendarView view;
    view.setModel(&model);
    view.resize(600, 400);
    view.setDate(Day);
    view.setResources({Room7});
    QCOMPARE(view.getColumnList().first()->customSize(), width != 200.0);
    QVERIFY(!view.grab().isNull());
}

void tst_BkCalendarCustomWidth::contextMenuRemovesTheCustomSize()
{
    storeLayout(QStringList() << QStringLiteral("1|7|230.5") << QStringLiteral("1|8|150"));
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    column->initSavedValue();
    QVERIFY(column->customSize());
    s.show();

    bool accepted = false;
    const QStringList offered = pickFirstHeaderEntry(s, column, &accepted);

    QVERIFY(!offered.isEmpty());
    QVERIFY(accepted);
    QCOMPARE(offered, QStringList() << QStringLiteral("Remove custom size"));
    QVERIFY(column->header()->menu());
    QVERIFY(!column->customSize());
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|8|150"));
}

void tst_BkCalendarCustomWidth::contextMenuOutlivesItsColumn()
{
    // While the header's menu is open, the host takes the column away; the user then closes the menu.
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, Room7, true, 1);
    s.show();
    QPointer<BkCalendarHeader> header(column->header());
    QPointer<QMenu> shown;
    QTimer timer;
    timer.setInterval(5);
    QObject::connect(&timer, &QTimer::timeout, [&]() {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        timer.stop();
        shown = menu;
        s.columns.removeAll(column);
        delete column;
        menu->close();
    });
    timer.start();
    rightClickHeader(s, column);

    QVERIFY(!header);
    // The menu goes once control is back in the event loop.
    QVERIFY(shown);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!shown);
}

void tst_BkCalendarCustomWidth::contextMenuOnADayColumn()
{
    BookingScene s;
    BkCalendarColumn* column = s.addColumn(Day, BkCalendarResource(QVariant(17), QString(), 0), false);
    s.show();

    int shown = 0;
    QStringList offered;
    auto* timer = new QTimer(this);
    int waited = 0;
    timer->setInterval(20);
    connect(timer, &QTimer::timeout, this, [&]() {
        waited += 20;
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) {
            if (waited > 30000)
                timer->stop();
            return;
        }
        ++shown;
        offered.clear();
        for (QAction* action : menu->actions())
            offered << action->text();
        menu->close();
    });
    timer->start();

    // Twice: the menu is made once and then reused with one entry.
    for (int i = 0; i < 2; ++i)
        rightClickHeader(s, column);
    delete timer;
    QCOMPARE(shown, 2);
    QCOMPARE(offered, QStringList() << QStringLiteral("Remove custom size"));
}

void tst_BkCalendarCustomWidth::removeOnADayColumnTakesThePersonsSavedWidth()
{
    // A day column has no width of its own, but its menu entry still removes the saved width of the
    // person it shows, which the group view then no longer finds.
    storeLayout(QStringList() << QStringLiteral("0|17|240.5") << QStringLiteral("1|17|150"));
    BookingScene s;
    const BkCalendarResource anna(QVariant(17), QStringLiteral("Anna"), 0);
    BkCalendarColumn* column = s.addColumn(Day, anna, false);
    column->initSavedValue();
    QVERIFY(!column->customSize());
    QSignalSpy shareOut(column, qOverload<>(&BkCalendarColumn::widthChanged));
    s.show();

    bool accepted = false;
    const bool triggered = !pickFirstHeaderEntry(s, column, &accepted).isEmpty();

    QVERIFY(triggered);
    QCOMPARE(shareOut.count(), 1);
    QCOMPARE(column->widthScale(), 200.0);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|17|150"));

    BookingScene group;
    BkCalendarColumn* member = group.addColumn(Day, anna, true, 1);
    member->initSavedValue();
    QVERIFY(!member->customSize());
    QCOMPARE(member->widthScale(), 200.0);
}

void tst_BkCalendarCustomWidth::firstStepOfAFirstDragGoesToTheShareOut()
{
    // The column asks the view for the share-out before it counts as custom, so in a group view the
    // first step of the first drag is given the share again; from the second step on it follows.
    BkCalendarModel model;
    BkCalendarView view;
    view.setModel(&model);
    view.resize(800, 500);
    view.setDate(Day);
    view.setResources({Room7, User7});
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    BkCalendarColumn* room = view.getColumnList().first();
    BkCalendarColumn* user = view.getColumnList().last();
    const double share = room->widthScale();
    QVERIFY(share > 100.0);
    QVERIFY(!room->customSize());

    auto send = [&view](QEvent::Type type, const QPointF& scenePos, Qt::MouseButton button,
                        Qt::MouseButtons buttons) {
        const QPoint local = view.mapFromScene(scenePos);
        QMouseEvent event(type, local, view.viewport()->mapToGlobal(local), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &event);
    };
    const QPointF from = gripPoint(room);
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, from + QPointF(-10, 0), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(room->widthScale(), share);
    QVERIFY(room->customSize());
    send(QEvent::MouseMove, from + QPointF(-20, 0), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(room->widthScale(), share - 10.0);
    QCOMPARE(room->header()->boundingRect().width(), share - 10.0);
    // The neighbour takes up what the custom column gave away.
    QCOMPARE(user->pos().x(), room->pos().x() + share - 10.0);
    send(QEvent::MouseMove, from + QPointF(-30, 0), Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, from + QPointF(-30, 0), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(room->widthScale(), share - 20.0);
    QCOMPARE(storedLayout(), QStringList() << QStringLiteral("1|7|%1").arg(share - 20.0));
    QVERIFY(!QGuiApplication::overrideCursor());
}

FW_TEST_MAIN(tst_BkCalendarCustomWidth)
#include "tst_bkcalendarcustomwidth.moc"
