// The demo in a real window of a real X server (Xvfb), driven by the X server's own pointer through
// xdotool, as a user's hand would: a booking dragged to a later time, saved to the file, and the screen
// captured for a look.
//
// Runs under scripts/with-xvfb.sh, which starts the server.

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
#include <QProcess>
#include <QScreen>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace {
const QDate Wednesday(2026, 11, 25);

QString storedStart(const QString& file, int id)
{
    QString start;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        db.setDatabaseName(file);
        if (db.open()) {
            QSqlQuery query(db);
            query.prepare(QStringLiteral("SELECT bk_start FROM demo_booking WHERE id = ?"));
            query.addBindValue(id);
            if (query.exec() && query.next())
                start = query.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    return start;
}
} // namespace

class tst_DemoDrive : public QObject
{
    Q_OBJECT

private slots:
    void shouldDragABookingWithTheRealPointer();
};

void tst_DemoDrive::shouldDragABookingWithTheRealPointer()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    BkCalendarClock::setFixedNow(QDateTime(Wednesday, QTime(10, 0)));
    for (const char* key : {"demo/geometry", "demo/state", "demo/view"})
        FwApplication::app()->setLocalValue(QLatin1String(key), QVariant());
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("practice.sqlite"));
    DemoDatabase db;
    DemoConnection connection;
    connection.file = file;
    QVERIFY2(db.open(connection, Wednesday), qPrintable(db.lastError()));

    DemoWindow window(1);
    window.showView(DemoWindow::Day);
    window.calendar()->setDate(Wednesday);
    window.move(0, 0);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QTest::qWait(300);

    // A plain booking of the morning that can go half an hour later inside the plan.
    BkCalendarView* view = window.calendar()->view();
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
    db.close();
}

FW_TEST_MAIN(tst_DemoDrive)
#include "tst_demodrive.moc"
