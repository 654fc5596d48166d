// The demo in a real window of a real X server (Xvfb), driven by the X server's own pointer through
// xdotool, as a user's hand would: a booking dragged to a later time, saved to the file, and the screen
// captured for a look.
//
// Runs under scripts/with-xvfb.sh, which starts the server.

#include "BkBookingScene.h"
#include "FwTestApplication.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarView.h>

#include <DemoDatabase.h>
#include <DemoStore.h>
#include <DemoWindow.h>

#include <QDir>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPointer>
#include <QProcess>
#include <QScreen>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTimer>

#include <optional>

namespace {
const QDate Wednesday(2026, 11, 25);

// A field of a booking's row as the file holds it, read through a connection of its own.
QString storedField(const QString& file, int id, const QString& field)
{
    QString value;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery query(db);
            query.prepare(QStringLiteral("SELECT %1 FROM demo_booking WHERE id = ?").arg(field));
            query.addBindValue(id);
            if (query.exec() && query.next())
                value = query.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    return value;
}

QString storedStart(const QString& file, int id)
{
    return storedField(file, id, QStringLiteral("bk_start"));
}

// The demo on a fresh practice database, Wednesday in its day view (or the one asked for) on the screen
// at the top left.
struct DemoDay
{
    bool open(DemoWindow::View shown = DemoWindow::Day)
    {
        BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
        for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
            FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
        if (!dir.isValid())
            return false;
        file = dir.filePath(QStringLiteral("practice.sqlite"));
        DemoConnection connection;
        connection.file = file;
        if (!db.open(connection, Wednesday)) {
            qWarning() << db.lastError();
            return false;
        }
        window.emplace(1);
        window->showView(shown);
        window->calendar()->setDate(Wednesday);
        window->move(0, 0);
        window->show();
        if (!QTest::qWaitForWindowExposed(&*window))
            return false;
        window->activateWindow();
        QTest::qWait(300);
        return true;
    }
    ~DemoDay() { db.close(); }
    BkCalendarView* view() { return window->calendar()->view(); }

    QTemporaryDir dir;
    QString file;
    DemoDatabase db;
    std::optional<DemoWindow> window;
};

// A free spot of the day column, in a block that is open or closed as `open` says, between `from`
// and `to`, on the screen. The spot is scrolled into view first; null when none is free.
QPoint freeSpotOfBlock(BkCalendarView* view, BkCalendarColumn* column, QTime from, QTime to, bool open)
{
    for (QTime time = from; time < to; time = time.addSecs(5 * 60)) {
        BkCalendarPlan* plan = column->planAt(time, QTime());
        const QPointF scenePos =
            column->mapToScene(view->timeScale()->pointAt(0.0, time)) + QPointF(40.0, 3.0);
        bool free = plan && plan->bookable == open;
        for (QGraphicsItem* under : view->scene()->items(scenePos))
            free = free && !qgraphicsitem_cast<BkCalendarItemWidget*>(under);
        if (free) {
            view->ensureVisible(QRectF(scenePos, QSizeF(1.0, 1.0)));
            QCoreApplication::processEvents();
            return view->viewport()->mapToGlobal(view->mapFromScene(scenePos));
        }
    }
    return QPoint();
}

// Notes a right button that comes up anywhere in the application, the menu's own events included.
class RightRelease : public QObject
{
public:
    bool seen = false;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(event)->button() == Qt::RightButton)
            seen = true;
        return false;
    }
};

// Runs xdotool's steps while the application goes on handling its events; true when all went through.
bool runXdotool(const QStringList& steps)
{
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"), steps);
    if (!xdotool.waitForStarted())
        return false;
    QElapsedTimer waited;
    waited.start();
    while (xdotool.state() != QProcess::NotRunning && waited.elapsed() < 30000)
        QTest::qWait(20);
    return xdotool.state() == QProcess::NotRunning && xdotool.exitCode() == 0;
}

bool runXdotool(const QPoint& at, const QString& button)
{
    return runXdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
                       QStringLiteral("sleep"), QStringLiteral("0.3"), QStringLiteral("click"), button,
                       QStringLiteral("sleep"), QStringLiteral("0.3")});
}

// The left button pressed at `grab`, taken to `drop` in a few steps as a hand moves, and let go there.
bool dragWithThePointer(const QPoint& grab, const QPoint& drop)
{
    QStringList steps{QStringLiteral("mousemove"), QString::number(grab.x()), QString::number(grab.y()),
                      QStringLiteral("sleep"),     QStringLiteral("0.2"),     QStringLiteral("mousedown"),
                      QStringLiteral("1"),         QStringLiteral("sleep"),   QStringLiteral("0.2")};
    for (int i = 1; i <= 6; ++i) {
        const QPoint at = grab + (drop - grab) * i / 6;
        steps << QStringLiteral("mousemove") << QString::number(at.x()) << QString::number(at.y())
              << QStringLiteral("sleep") << QStringLiteral("0.2");
    }
    steps << QStringLiteral("mouseup") << QStringLiteral("1") << QStringLiteral("sleep")
          << QStringLiteral("0.3");
    return runXdotool(steps);
}
} // namespace

class tst_DemoDrive : public QObject
{
    Q_OBJECT

private slots:
    void shouldDragABookingWithTheRealPointer();
    void shouldOfferThePlanMenuWithTheRealPointer();
    void shouldDragABookingOfAPersonAndARoomAcrossTheGroupWithTheRealPointer();
    void shouldTakeABookingOfAPersonAndARoomToAnotherPersonWithTheRealPointer();
};

void tst_DemoDrive::shouldDragABookingWithTheRealPointer()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    DemoDay demo;
    QVERIFY(demo.open(DemoWindow::Day));
    const QString file = demo.file;

    // A plain booking of the morning that can go half an hour later inside the plan.
    BkCalendarView* view = demo.view();
    BkCalendarColumn* column = view->getColumnList().first();
    BkCalendarItem* item = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (!item && candidate->type() == 0 && !candidate->locked && candidate->resourceId().isNull() &&
            candidate->widget && candidate->start() >= QTime(8, 0) && candidate->end() <= QTime(11, 30) &&
            candidate->start().secsTo(candidate->end()) >= 30 * 60)
            item = candidate;
    QVERIFY(item);
    const int id = item->id.toInt();
    const QTime later = item->start().addSecs(30 * 60);
    // The morning is on screen as the window opens.
    QVERIFY(view->viewport()->rect().contains(
        view->mapFromScene(item->widget->sceneBoundingRect().bottomLeft())));

    // Grabbed near its top; the box's top follows the pointer, so it is let go at the new start.
    const QPointF grabScene = item->widget->sceneBoundingRect().topLeft() + QPointF(30.0, 6.0);
    const QPointF dropScene(grabScene.x(), column->mapToScene(view->timeScale()->pointAt(0.0, later)).y());
    const QPoint grab = view->viewport()->mapToGlobal(view->mapFromScene(grabScene));
    const QPoint drop = view->viewport()->mapToGlobal(view->mapFromScene(dropScene));
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"),
                  {QStringLiteral("mousemove"), QString::number(grab.x()), QString::number(grab.y()),
                   QStringLiteral("sleep"),     QStringLiteral("0.2"),     QStringLiteral("mousedown"),
                   QStringLiteral("1"),         QStringLiteral("sleep"),   QStringLiteral("0.2"),
                   QStringLiteral("mousemove"), QString::number(grab.x()), QString::number(grab.y() + 12),
                   QStringLiteral("sleep"),     QStringLiteral("0.2"),     QStringLiteral("mousemove"),
                   QString::number(drop.x()),   QString::number(drop.y()), QStringLiteral("sleep"),
                   QStringLiteral("0.2"),       QStringLiteral("mouseup"), QStringLiteral("1")});
    QVERIFY(xdotool.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(xdotool.state() == QProcess::NotRunning, 20000);
    QCOMPARE(xdotool.exitCode(), 0);

    // The booking's top followed the pointer to the half hour later, and the save wrote it.
    QTRY_COMPARE_WITH_TIMEOUT(QTime(item->start().hour(), item->start().minute()), later, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(storedStart(file, id).startsWith(later.toString(QStringLiteral("HH:mm"))),
                             20000);

    // The screen as the user sees it.
    const QString shot =
        QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(QStringLiteral("demo-drive.png"));
    QVERIFY(QGuiApplication::primaryScreen()->grabWindow(0).save(shot));
}

// Right-clicks with the real pointer: on a free spot of an open block the demo's menu opens once and,
// closed again, leaves the next left-click to the booking under the pointer; on the closed lunch hour
// the host hears of the block through the release and opens nothing.
void tst_DemoDrive::shouldOfferThePlanMenuWithTheRealPointer()
{
    DemoDay demo;
    QVERIFY(demo.open());

    BkCalendarView* view = demo.view();
    BkCalendarColumn* column = view->getColumnList().first();
    QSignalSpy offered(demo.window->calendar(), &BkCalendar::planContextMenu);
    int menus = 0;
    // A menu is counted once, and closed only after the click's release has come in, as a user lets go
    // of the button while the menu is open; closed earlier, the release would reach the column itself.
    RightRelease release;
    qApp->installEventFilter(&release);
    QPointer<QWidget> counted;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (QWidget* popup = QApplication::activePopupWidget()) {
            if (popup != counted) {
                ++menus;
                counted = popup;
            }
            if (release.seen)
                popup->close();
        }
    });
    closer.start(100);

    const QPoint open = freeSpotOfBlock(view, column, QTime(8, 0), QTime(12, 0), true);
    QVERIFY(!open.isNull());
    QVERIFY(runXdotool(open, QStringLiteral("3")));
    QTRY_COMPARE_WITH_TIMEOUT(menus, 1, 5000);
    QTest::qWait(300);
    QCOMPARE(menus, 1);
    QCOMPARE(offered.count(), 1);
    QVERIFY(offered.first().at(1).value<BkCalendarPlan*>()->bookable);

    BkCalendarItem* booking = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (!booking && candidate->widget && candidate->start() >= QTime(8, 0) &&
            candidate->end() <= QTime(12, 0))
            booking = candidate;
    QVERIFY(booking);
    const QPointF bookingScene = booking->widget->sceneBoundingRect().topLeft() + QPointF(20.0, 6.0);
    view->ensureVisible(QRectF(bookingScene, QSizeF(1.0, 1.0)));
    QCoreApplication::processEvents();
    QVERIFY(runXdotool(view->viewport()->mapToGlobal(view->mapFromScene(bookingScene)), QStringLiteral("1")));
    QTRY_VERIFY_WITH_TIMEOUT(booking->widget && booking->widget->isSelected(), 5000);

    const QPoint lunch = freeSpotOfBlock(view, column, QTime(12, 0), QTime(13, 0), false);
    QVERIFY(!lunch.isNull());
    QVERIFY(runXdotool(lunch, QStringLiteral("3")));
    QTRY_COMPARE_WITH_TIMEOUT(offered.count(), 2, 5000);
    QVERIFY(!offered.last().at(1).value<BkCalendarPlan*>()->bookable);
    const QTime at = offered.last().at(2).toTime();
    QVERIFY2(at >= QTime(12, 0) && at < QTime(13, 0), qPrintable(at.toString()));
    QTest::qWait(300);
    QCOMPARE(menus, 1);
    QCOMPARE(offered.count(), 2);
}

// In the group, a booking of a person and a room stands in both of their columns. Dragged with the
// real pointer out of the room's column into the person's, to another time, it keeps one box in each
// column, and the save writes the new time.
void tst_DemoDrive::shouldDragABookingOfAPersonAndARoomAcrossTheGroupWithTheRealPointer()
{
    DemoDay demo;
    QVERIFY(demo.open(DemoWindow::Group));
    BkCalendarView* view = demo.view();
    const QList<BkCalendarColumn*> columns = view->getColumnList();

    BkCalendarItem* item = nullptr;
    BkCalendarColumn* person = nullptr;
    BkCalendarColumn* room = nullptr;
    QTime later;
    for (BkCalendarColumn* roomColumn : columns) {
        if (item || roomColumn->resource().type != 1)
            continue;
        for (BkCalendarItem* candidate : roomColumn->getItems(true)) {
            if (item || candidate->userId().isNull() || BkTest::boxesOf(roomColumn, candidate).size() != 1)
                continue;
            for (BkCalendarColumn* personColumn : columns) {
                if (item || personColumn->resource().type != 0 ||
                    personColumn->resource().id != candidate->userId() ||
                    BkTest::boxesOf(personColumn, candidate).size() != 1)
                    continue;
                // A time that the person's schedule allows and where the room is free, so that no
                // question about a double booking comes.
                for (int minutes : {30, -30, 60, -60, 90, -90, 120, -120}) {
                    const QTime to = candidate->start().addSecs(minutes * 60);
                    const QTime end = to.addSecs(candidate->start().secsTo(candidate->end()));
                    bool roomFree = true;
                    for (BkCalendarItem* other :
                         demo.window->calendar()->model()->items(candidate->date(), roomColumn->resource()))
                        roomFree =
                            roomFree && (other == candidate || other->end() <= to || end <= other->start());
                    if (!item && roomFree && to.isValid() && personColumn->allowBooking(to, end)) {
                        item = candidate;
                        person = personColumn;
                        room = roomColumn;
                        later = to;
                    }
                }
            }
        }
    }
    QVERIFY2(item, "the demo's group shows a booking of a person and a room that can move");
    // The demo's shared bookings are locked; the user unlocks this one first, as in its dialog.
    item->locked = false;
    const int id = item->id.toInt();
    BkCalendarItemWidget* roomsBox = BkTest::boxesOf(room, item).first();
    BkCalendarItemWidget* personsBox = BkTest::boxesOf(person, item).first();

    // Grabbed near the top of the room's box, taken sideways out of it, which starts the drag, and let
    // go in the person's column at the new time: a drop moves the booking to the time under the pointer.
    view->ensureVisible(roomsBox->sceneBoundingRect());
    QCoreApplication::processEvents();
    const QPointF grabScene = roomsBox->sceneBoundingRect().topLeft() + QPointF(20.0, 6.0);
    const QPointF dropScene = person->mapToScene(view->timeScale()->pointAt(40.0, later)) + QPointF(0.0, 1.0);
    const QPoint grab = view->viewport()->mapToGlobal(view->mapFromScene(grabScene));
    const QPoint drop = view->viewport()->mapToGlobal(view->mapFromScene(dropScene));
    QVERIFY(view->viewport()->rect().contains(view->mapFromScene(dropScene)));
    QVERIFY(dragWithThePointer(grab, drop));

    QTRY_COMPARE_WITH_TIMEOUT(QTime(item->start().hour(), item->start().minute()), later, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(storedStart(demo.file, id).startsWith(later.toString(QStringLiteral("HH:mm"))),
                             20000);
    QCOMPARE(BkTest::boxesOf(person, item), QList<BkCalendarItemWidget*>() << personsBox);
    QCOMPARE(BkTest::boxesOf(room, item), QList<BkCalendarItemWidget*>() << roomsBox);
    QCOMPARE(personsBox->sceneBoundingRect().top(), roomsBox->sceneBoundingRect().top());

    const QString shot =
        QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(QStringLiteral("demo-drive-group.png"));
    QVERIFY(QGuiApplication::primaryScreen()->grabWindow(0).save(shot));
}

void tst_DemoDrive::shouldTakeABookingOfAPersonAndARoomToAnotherPersonWithTheRealPointer()
{
    // The person's box of a booking that the group shows twice, taken to another person at the same
    // time: the booking changes its person and keeps its room, so the box goes along and the room's
    // column keeps its own.
    DemoDay demo;
    QVERIFY(demo.open(DemoWindow::Group));
    BkCalendarView* view = demo.view();
    BkCalendarModel* model = demo.window->calendar()->model();
    const QList<BkCalendarColumn*> columns = view->getColumnList();
    const auto columnOf = [&columns](int type, const QVariant& id) -> BkCalendarColumn* {
        for (BkCalendarColumn* column : columns) {
            if (column->resource().type == type && column->resource().id == id)
                return column;
        }
        return nullptr;
    };

    BkCalendarItem* item = nullptr;
    BkCalendarColumn* person = nullptr;
    BkCalendarColumn* room = nullptr;
    BkCalendarColumn* other = nullptr;
    for (BkCalendarColumn* roomColumn : columns) {
        if (roomColumn->resource().type != 1)
            continue;
        for (BkCalendarItem* candidate : roomColumn->getItems(true)) {
            BkCalendarColumn* personColumn = columnOf(0, candidate->userId());
            if (item || candidate->userId().isNull() || !personColumn ||
                BkTest::boxesOf(roomColumn, candidate).size() != 1 ||
                BkTest::boxesOf(personColumn, candidate).size() != 1)
                continue;
            for (BkCalendarColumn* otherColumn : columns) {
                if (!item && otherColumn->resource().type == 0 && otherColumn != personColumn &&
                    otherColumn->allowBooking(candidate->start(), candidate->end())) {
                    item = candidate;
                    person = personColumn;
                    room = roomColumn;
                    other = otherColumn;
                }
            }
        }
    }
    QVERIFY2(item, "the demo's group shows a booking of a person and a room that another person can take");
    item->locked = false;
    const int id = item->id.toInt();
    const QTime start = item->start();
    // The room keeps its time: the drop asks about a double booking only if the room was booked twice
    // there before, and the user says yes.
    bool roomTaken = false;
    for (BkCalendarItem* same : model->items(item->date(), room->resource()))
        roomTaken = roomTaken || (same != item && same->start() < item->end() && item->start() < same->end());
    BkTest::QuestionAnswerer answerer(QMessageBox::Yes);
    BkCalendarItemWidget* roomsBox = BkTest::boxesOf(room, item).first();
    BkCalendarItemWidget* personsBox = BkTest::boxesOf(person, item).first();

    // Grabbed near the top of the person's box and let go in the other person's column at the same
    // time; the drop takes the time under the pointer.
    view->ensureVisible(personsBox->sceneBoundingRect());
    QCoreApplication::processEvents();
    const QPointF grabScene = personsBox->sceneBoundingRect().topLeft() + QPointF(20.0, 6.0);
    view->ensureVisible(QRectF(other->mapToScene(view->timeScale()->pointAt(40.0, start)), QSizeF(1, 1)));
    QCoreApplication::processEvents();
    const QPointF dropScene = other->mapToScene(view->timeScale()->pointAt(40.0, start)) + QPointF(0.0, 1.0);
    QVERIFY(view->viewport()->rect().contains(view->mapFromScene(grabScene)));
    QVERIFY(view->viewport()->rect().contains(view->mapFromScene(dropScene)));
    const QPoint grab = view->viewport()->mapToGlobal(view->mapFromScene(grabScene));
    const QPoint drop = view->viewport()->mapToGlobal(view->mapFromScene(dropScene));
    QVERIFY(dragWithThePointer(grab, drop));

    QTRY_COMPARE_WITH_TIMEOUT(item->userId(), other->resource().id, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(storedField(demo.file, id, QStringLiteral("bk_user")),
                              other->resource().id.toString(), 20000);
    QCOMPARE(storedField(demo.file, id, QStringLiteral("bk_resource")), room->resource().id.toString());
    QCOMPARE(QTime(item->start().hour(), item->start().minute()), start);
    QCOMPARE(answerer.asked, roomTaken ? 1 : 0);
    // The person's box went along; the person it left shows nothing of it, the room still does.
    QVERIFY(BkTest::boxesOf(person, item).isEmpty());
    QCOMPARE(BkTest::boxesOf(other, item), QList<BkCalendarItemWidget*>() << personsBox);
    QCOMPARE(BkTest::boxesOf(room, item), QList<BkCalendarItemWidget*>() << roomsBox);
    QCOMPARE(personsBox->sceneBoundingRect().top(), roomsBox->sceneBoundingRect().top());

    const QString shot =
        QDir(QStringLiteral(QT_TESTCASE_BUILDDIR)).filePath(QStringLiteral("demo-drive-group-person.png"));
    QVERIFY(QGuiApplication::primaryScreen()->grabWindow(0).save(shot));
}

FW_TEST_MAIN(tst_DemoDrive)
#include "tst_demodrive.moc"
