// The calendar's pictures and gestures against the floor that Qt itself sets: a plain QGraphicsScene
// with as many rectangles and texts of the same sizes, painted into the same image, in the same run.
//
//   build-bench/bin/bench_views

#include "BenchTable.h"

#include <BkCalendar.h>
#include <BkCalendarClock.h>
#include <BkCalendarColumn.h>
#include <BkCalendarItem.h>
#include <BkCalendarItemWidget.h>
#include <BkCalendarModel.h>
#include <BkCalendarTimeScale.h>
#include <BkCalendarView.h>

#include <FwApplication.h>

#include <QElapsedTimer>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsView>
#include <QImage>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <functional>

namespace {

const QDate Monday(2026, 11, 23);
// Runs of each picture; a profiler run asks for fewer (second argument).
int Runs = 5;

double ms(const QElapsedTimer& timer)
{
    return timer.nsecsElapsed() / 1e6;
}

// The view into the image; a function of its own, for a profiler to find by name.
Q_NEVER_INLINE void repaint(QGraphicsView* view, QImage& image)
{
    QPainter painter(&image);
    view->render(&painter, QRectF(image.rect()), view->viewport()->rect());
}

// Where the pictures go when BENCH_VIEWS_PICTURES names a folder: a change that makes the calendar
// faster must leave them byte for byte as they were. Saving them counts in the times, so a run that
// saves pictures is not one to read the times from.
QString picturesFolder()
{
    return QString::fromLocal8Bit(qgetenv("BENCH_VIEWS_PICTURES"));
}

// The view as the screen shows it, into an image of its viewport's size.
void paint(QGraphicsView* view, QImage& image, const QString& name = QString())
{
    const bool save = !name.isEmpty() && !picturesFolder().isEmpty();
    if (save)
        image.fill(Qt::transparent);
    repaint(view, image);
    if (save)
        image.save(picturesFolder() + QLatin1Char('/') + name + QStringLiteral(".png"));
}

BkCalendarItem* booking(BkCalendarModel* model, int id, const QDate& date, const BkCalendarResource& who,
                        QTime start, int minutes)
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->setTitle(QStringLiteral("Booking %1").arg(id));
    item->setText(QStringLiteral("Text of <b>booking</b> %1").arg(id));
    item->topColor = QColor(214, 228, 250);
    item->bottomColor = QColor(150, 182, 232);
    item->setDate(date);
    if (who.type == 0)
        item->setUserId(who.id);
    else
        item->setResourceId(who.id);
    item->setTime(start, start.addSecs(minutes * 60));
    model->addItem(item);
    return item;
}

void plan(BkCalendarModel* model, const QDate& date, const BkCalendarResource& who, QTime start, QTime end)
{
    auto* block = new BkCalendarPlan;
    block->date = date;
    block->resource = who;
    block->start = start;
    block->end = end;
    block->bookable = true;
    model->addItem(block);
}

// A day of `count` bookings for one key: `overlapping` of them in groups of three that overlap each
// other, the rest one after the other, spread over 07:00 to 19:00.
int fillDay(BkCalendarModel* model, int id, const QDate& date, const BkCalendarResource& who, int count,
            int overlapping)
{
    const int single = count - overlapping;
    const int rows = single + overlapping / 3;
    const int minutes = 12 * 60 / qMax(1, rows);
    int slot = 0;
    for (int i = 0; i < overlapping; i += 3, ++slot)
        for (int k = 0; k < 3; ++k)
            booking(model, id++, date, who, QTime(7, 0).addSecs((slot * minutes + k * 5) * 60),
                    qMax(15, minutes - 5));
    for (int i = 0; i < single; ++i, ++slot)
        booking(model, id++, date, who, QTime(7, 0).addSecs(slot * minutes * 60), qMax(5, minutes - 2));
    for (int p = 0; p < 4; ++p)
        plan(model, date, who, QTime(7 + 3 * p, 0), QTime(10 + 3 * p, 0));
    return id;
}

// Qt's floor: the same number of columns, boxes and texts as plain items of the same sizes.
double floorOf(const QSize& size, int columns, int boxesPerColumn, int plansPerColumn, double columnWidth)
{
    QElapsedTimer timer;
    timer.start();
    QGraphicsScene scene;
    const double height = 12 * 60 * 1.5;
    for (int c = 0; c < columns; ++c) {
        const double x = 50.0 + c * columnWidth;
        scene.addRect(QRectF(x, 25.0, columnWidth, height + 50.0), QPen(Qt::gray), QBrush(Qt::white));
        for (int p = 0; p < plansPerColumn; ++p)
            scene.addRect(QRectF(x, 75.0 + p * height / plansPerColumn, columnWidth, height / plansPerColumn),
                          Qt::NoPen, QBrush(QColor(238, 244, 252)));
        for (int b = 0; b < boxesPerColumn; ++b) {
            const QRectF box(x + 2, 75.0 + b * height / qMax(1, boxesPerColumn), columnWidth - 6,
                             height / qMax(1, boxesPerColumn) - 2);
            scene.addRect(box, QPen(Qt::gray), QBrush(QColor(150, 182, 232)));
            QGraphicsSimpleTextItem* text = scene.addSimpleText(QStringLiteral("Booking %1").arg(b));
            text->setPos(box.topLeft() + QPointF(3, 2));
        }
    }
    QGraphicsView view(&scene);
    view.resize(size);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    QImage image(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    paint(&view, image);
    return ms(timer);
}

struct Form
{
    explicit Form(const QSize& size = QSize(1920, 1080))
        : calendar(nullptr,
                   BkCalendar::NoDocks | BkCalendar::Show5Day | BkCalendar::Show7Day | BkCalendar::ShowGroup)
    {
        calendar.resize(size);
        calendar.setInterval(QTime(7, 0), QTime(19, 0));
        calendar.show();
        QCoreApplication::processEvents();
        image = QImage(calendar.view()->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    }
    BkCalendarModel* model() { return calendar.model(); }
    BkCalendarView* view() { return calendar.view(); }
    BkCalendar calendar;
    QImage image;
};

// minWidth 0 keeps the form's own minimum column width, so that the group scrolls sideways; 1 puts
// every column on the screen at once. A host that shows a resource label of its own listens to
// hideResourceInfo, and the form then brings the columns up to date once more after it.
void groupView(BenchTable& table, int resources, int bookings, int minWidth, bool labelHeard = false)
{
    QVector<double> open, next, floors;
    for (int run = 0; run < Runs; ++run) {
        Form form;
        QList<BkCalendarResource> group;
        int id = 1;
        for (int r = 0; r < resources; ++r) {
            const BkCalendarResource who(r + 1, QStringLiteral("Resource %1").arg(r + 1), 1);
            group << who;
            for (int d = 0; d < 2; ++d)
                id = fillDay(form.model(), id, Monday.addDays(d), who, bookings, bookings / 4);
        }
        if (labelHeard)
            QObject::connect(&form.calendar, &BkCalendar::hideResourceInfo, [] {});
        form.calendar.setResourceList(group);
        if (minWidth > 0)
            form.calendar.setMinWidth(minWidth);
        form.calendar.setDate(Monday);
        QElapsedTimer timer;
        const QString name =
            QStringLiteral("group-%1%2").arg(resources).arg(minWidth > 0 ? "" : "-scrolling");
        timer.start();
        form.calendar.showGroup();
        paint(form.view(), form.image, name + QStringLiteral("-open"));
        open << ms(timer);
        timer.restart();
        form.calendar.setDate(Monday.addDays(1));
        paint(form.view(), form.image, name + QStringLiteral("-next"));
        next << ms(timer);
        const double width = form.view()->getColumnList().first()->boundingRect().width();
        floors << floorOf(form.image.size(), resources, bookings, 4, width);
    }
    QString what =
        QStringLiteral("group view, %1 resources of %2 bookings and 4 plans").arg(resources).arg(bookings);
    what += minWidth > 0 ? QStringLiteral(", all on screen") : QStringLiteral(", scrolling");
    if (labelHeard)
        what += QStringLiteral(", the host listening to hideResourceInfo");
    table.add(what + QStringLiteral(": open and first paint"), BenchTable::median(open), QStringLiteral("ms"),
              BenchTable::median(floors));
    table.add(what + QStringLiteral(": next day and paint"), BenchTable::median(next), QStringLiteral("ms"),
              BenchTable::median(floors));
}

void weekView(BenchTable& table, int perDay, int overlapping, int days, int more)
{
    QVector<double> first, again, onAndBack, floors;
    for (int run = 0; run < Runs; ++run) {
        Form form;
        const BkCalendarResource anna(1, QStringLiteral("Anna"), 0);
        int id = 1;
        for (int d = 0; d < days; ++d)
            id = fillDay(form.model(), id, Monday.addDays(d), anna, perDay, overlapping);
        // A store with years of other bookings, on other days and of other people.
        for (int i = 0; i < more; ++i)
            booking(form.model(), id++, Monday.addDays(10 + i % 400),
                    BkCalendarResource(2 + i % 500, QString(), i % 2),
                    QTime(8, 0).addSecs((i % 40) * 15 * 60), 30);
        form.calendar.setResource(BkCalendarResource());
        QElapsedTimer timer;
        timer.start();
        form.calendar.setResource(anna);
        if (days == 7)
            form.calendar.show7Day();
        else
            form.calendar.show1Day();
        form.calendar.setDate(Monday);
        const QString name = QStringLiteral("days-%1-%2-%3").arg(days).arg(perDay).arg(more);
        paint(form.view(), form.image, name + QStringLiteral("-first"));
        first << ms(timer);
        timer.restart();
        paint(form.view(), form.image, name + QStringLiteral("-again"));
        again << ms(timer);
        // A step to the empty week after and back, as the user pages through the weeks: the columns
        // are updated twice and the shown week painted once more.
        timer.restart();
        form.calendar.setDate(Monday.addDays(7));
        form.calendar.setDate(Monday);
        paint(form.view(), form.image, name + QStringLiteral("-back"));
        onAndBack << ms(timer);
        // A profiler run may ask for the repaint alone, many times over.
        for (int extra = qEnvironmentVariableIntValue("BENCH_VIEWS_REPAINTS"); extra > 0; --extra)
            repaint(form.view(), form.image);
        const double width = form.view()->getColumnList().first()->boundingRect().width();
        floors << floorOf(form.image.size(), days, perDay, 4, width);
    }
    QString what = days == 7
                       ? QStringLiteral("week view, %1 a day (%2 overlapping)").arg(perDay).arg(overlapping)
                       : QStringLiteral("one day of %1 (%2 overlapping)").arg(perDay).arg(overlapping);
    if (more > 0)
        what += QStringLiteral(", %1 more in the store").arg(more);
    table.add(what + QStringLiteral(": first complete paint"), BenchTable::median(first),
              QStringLiteral("ms"), BenchTable::median(floors));
    table.add(what + QStringLiteral(": full repaint"), BenchTable::median(again), QStringLiteral("ms"));
    table.add(what + QStringLiteral(": a week on and back, and paint"), BenchTable::median(onAndBack),
              QStringLiteral("ms"));
}

// The scene's changes reach the viewport as one update of the dirty region, painted at once.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    QCoreApplication::processEvents();
}

// One drag of a booking to a point of the scene and the drop there, as QDrag delivers it (enter,
// move and drop), to the end of the repaint. A function of its own, for a profiler to find by name.
Q_NEVER_INLINE void dragAndDrop(QGraphicsView* view, QMimeData* data, const QPointF& scenePos)
{
    for (QEvent::Type type :
         {QEvent::GraphicsSceneDragEnter, QEvent::GraphicsSceneDragMove, QEvent::GraphicsSceneDrop}) {
        QGraphicsSceneDragDropEvent event(type);
        event.setScenePos(scenePos);
        event.setScreenPos(view->viewport()->mapToGlobal(view->mapFromScene(scenePos)));
        event.setButtons(Qt::LeftButton);
        event.setPossibleActions(Qt::MoveAction);
        event.setProposedAction(Qt::MoveAction);
        event.setDropAction(Qt::MoveAction);
        event.setMimeData(data);
        event.setWidget(view->viewport());
        QApplication::sendEvent(view->scene(), &event);
    }
    settle();
}

void gestures(BenchTable& table)
{
    Form form(QSize(1200, 1000));
    const BkCalendarResource anna(1, QStringLiteral("Anna"), 0);
    int id = 1;
    for (int d = 0; d < 5; ++d)
        id = fillDay(form.model(), id, Monday.addDays(d), anna, 30, 9);
    form.calendar.setResource(anna);
    form.calendar.show5Day();
    form.calendar.setDate(Monday);
    QCoreApplication::processEvents();
    BkCalendarView* view = form.view();
    BkCalendarColumn* column = view->getColumnList().first();
    BkCalendarItem* item = nullptr;
    for (BkCalendarItem* candidate : column->getItems(true))
        if (!item && candidate->widget && candidate->start() >= QTime(7, 30))
            item = candidate;
    if (!item)
        return;
    auto mouse = [view](QEvent::Type type, const QPointF& scenePos, Qt::MouseButtons buttons) {
        const QPoint local = view->mapFromScene(scenePos);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, local, view->viewport()->mapToGlobal(local), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    };

    // A mouse move of one snap step: from the event to the end of the repaint it causes.
    QPointF at = item->widget->sceneBoundingRect().center();
    mouse(QEvent::MouseButtonPress, at, Qt::LeftButton);
    at += QPointF(0.0, 12.0);
    mouse(QEvent::MouseMove, at, Qt::LeftButton);
    QCoreApplication::processEvents();
    QVector<double> moves;
    QElapsedTimer timer;
    for (int i = 0; i < 20; ++i) {
        at += QPointF(0.0, (i % 2 ? -1.0 : 1.0) * 5 * 1.5);
        timer.start();
        mouse(QEvent::MouseMove, at, Qt::LeftButton);
        settle();
        moves << ms(timer);
    }
    mouse(QEvent::MouseButtonRelease, at, Qt::NoButton);
    QCoreApplication::processEvents();

    // The Up key on the selected booking.
    item->widget->setSelected(true);
    view->scene()->setFocusItem(item->widget);
    QVector<double> keys;
    for (int i = 0; i < 20; ++i) {
        QKeyEvent key(QEvent::KeyPress, i % 2 ? Qt::Key_Down : Qt::Key_Up, Qt::NoModifier);
        timer.start();
        QApplication::sendEvent(view->scene(), &key);
        settle();
        keys << ms(timer);
    }

    // Drags to the neighbouring column and drops there, back and forth between the first two columns:
    // each time the booking leaves one column for the other.
    QMimeData data;
    data.setData(QStringLiteral("text/calitem"), item->id.toString().toLatin1());
    QVector<double> drops;
    for (int i = 0; i < 20; ++i) {
        BkCalendarColumn* to = view->getColumnList().at(i % 2 ? 0 : 1);
        const QPointF target = to->mapToScene(view->timeScale()->pointAt(20.0, QTime(16, 0)));
        timer.start();
        dragAndDrop(view, &data, target);
        drops << ms(timer);
    }

    // The floor: a plain rectangle moved by as much, and the viewport repainted.
    QGraphicsScene scene;
    QGraphicsRectItem* rect = scene.addRect(QRectF(0, 0, 180, 60), QPen(Qt::gray), QBrush(Qt::blue));
    for (int i = 0; i < 40; ++i)
        scene.addRect(QRectF((i % 5) * 200, (i / 5) * 80, 180, 60), QPen(Qt::gray), QBrush(Qt::lightGray));
    QGraphicsView plain(&scene);
    plain.resize(1200, 1000);
    plain.show();
    QCoreApplication::processEvents();
    QVector<double> floors;
    for (int i = 0; i < 20; ++i) {
        timer.start();
        rect->setPos(0, (i % 2) * 7.5);
        settle();
        floors << ms(timer);
    }
    const double floor = BenchTable::median(floors);
    table.add(QStringLiteral(
                  "mouse move by one snap step, column of 30 (9 overlapping), to the end of its repaint"),
              BenchTable::median(moves), QStringLiteral("ms"), floor);
    table.add(QStringLiteral("Up key move, to the end of its repaint"), BenchTable::median(keys),
              QStringLiteral("ms"), floor);
    table.add(QStringLiteral("drag to the next column and drop, to the end of its repaint"),
              BenchTable::median(drops), QStringLiteral("ms"), floor);
    // The first drop after the view opened pays for what the later ones find ready.
    table.add(QStringLiteral("the first of these drops"), drops.first(), QStringLiteral("ms"), floor);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    FwApplication app(argc, argv);
    BkCalendarClock::setFixedNow(QDateTime(Monday, QTime(12, 0)));
    app.setValue(1, QStringLiteral("set_calshowtime"), QString());

    // One part alone, for a profiler: group (group300, group100), week, week400k or gesture.
    const QString only = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (argc > 2)
        Runs = qMax(1, QByteArray(argv[2]).toInt());
    BenchTable views(QStringLiteral("Views, 1920×1080, medians of %1 runs").arg(Runs));
    if (only.isEmpty() || only.startsWith(QLatin1String("group"))) {
        if (only != QLatin1String("group100")) {
            groupView(views, 300, 12, 1);
            groupView(views, 300, 12, 1, true);
            groupView(views, 300, 12, 0);
        }
        if (only != QLatin1String("group300"))
            groupView(views, 100, 24, 1);
    }
    if (only.isEmpty() || only == QLatin1String("week")) {
        weekView(views, 40, 15, 7, 0);
        weekView(views, 200, 75, 1, 0);
    }
    if (only.isEmpty() || only == QLatin1String("week400k"))
        weekView(views, 40, 15, 7, 400000);
    views.print();

    BenchTable gesture(QStringLiteral("Gestures"));
    if (only.isEmpty() || only == QLatin1String("gesture"))
        gestures(gesture);
    gesture.print();
    return 0;
}
