// Renders three day columns of one person with the time scale into a PNG, the way the calendar's
// view lays them out, for the README's picture and for looking at changes by eye:
//   QT_QPA_PLATFORM=offscreen build/bin/render_week docs/screenshot.png
#include <FwCalendar.h>

#include <FwApplication.h>

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QLocale>
#include <QSqlDatabase>

namespace {

const double ColumnWidth = 230.0;

BkCalendarItem* booking(BkCalendarModel& model, int id, const QDate& date, const QVariant& user, QTime start,
                        QTime end, const QString& title, const QString& text, const QColor& top,
                        const QColor& bottom, BkCalendarItem::ItemType type = BkCalendarItem::ItemType(0))
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->topColor = top;
    item->bottomColor = bottom;
    item->setType(type);
    item->setTitle(title);
    item->setText(text);
    item->setDate(date);
    item->setUserId(user);
    item->setTime(start, end);
    model.addItem(item);
    return item;
}

void plan(BkCalendarModel& model, const QDate& date, const BkCalendarResource& who, QTime start, QTime end,
          bool bookable, int infoId)
{
    auto* block = new BkCalendarPlan;
    block->date = date;
    block->resource = who;
    block->start = start;
    block->end = end;
    block->bookable = bookable;
    block->infoId = infoId;
    model.addItem(block);
}

} // namespace

int main(int argc, char** argv)
{
    FwApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QString output = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("fwcalendar-week.png");
    app.setValue(1, QStringLiteral("set_calshowtime"), QString());

    BkCalendarModel model;
    BkCalendarColorScheme scheme;
    QGraphicsScene scene;
    auto* scale = new BkCalendarTimeScale;
    scene.addItem(scale);
    scale->setZValue(50.0);
    scale->setInterval(QTime(7, 0), QTime(17, 0));
    scale->setTimeSteps(15);
    scale->setMinuteHeight(1.5f);
    scale->setTopMargin(50.0f);

    BkCalendarPlanInfo office;
    office.id = 1;
    office.color = QColor(238, 244, 252);
    office.label = QStringLiteral("Office");
    model.addItem(office);

    const BkCalendarResource anna(7, QStringLiteral("Anna"), 0);
    const QDate monday(2026, 11, 23);
    for (int day = 0; day < 3; ++day) {
        const QDate date = monday.addDays(day);
        plan(model, date, anna, QTime(8, 0), QTime(12, 0), true, 1);
        plan(model, date, anna, QTime(12, 0), QTime(13, 0), false, 1);
        plan(model, date, anna, QTime(13, 0), QTime(16, 30), true, 1);
    }
    const QColor blueTop(214, 228, 250), blueBottom(150, 182, 232);
    const QColor greenTop(214, 240, 214), greenBottom(140, 200, 140);
    const QColor sandTop(252, 236, 204), sandBottom(230, 190, 120);
    booking(model, 1, monday, 7, QTime(8, 30), QTime(9, 30), QStringLiteral("Team review"),
            QStringLiteral("Agenda: <b>figures</b>"), blueTop, blueBottom)
        ->leftColor = QColor(220, 80, 80);
    booking(model, 2, monday, 7, QTime(9, 0), QTime(10, 15), QStringLiteral("Call supplier"),
            QStringLiteral("Order 4711"), sandTop, sandBottom)
        ->setItemFlags(BkCalendarItem::FlagPhone);
    booking(model, 3, monday, 7, QTime(13, 30), QTime(15, 0), QString(), QStringLiteral("Room 4"), greenTop,
            greenBottom, BkCalendarItem::Meeting);
    booking(model, 4, monday.addDays(1), 7, QTime(10, 0), QTime(11, 0), QStringLiteral("Dentist"), QString(),
            QColor(200, 200, 200), QColor(100, 100, 100), BkCalendarItem::Reserved);
    booking(model, 5, monday.addDays(1), 7, QTime(14, 0), QTime(15, 30), QStringLiteral("Workshop"),
            QStringLiteral("Bring the <i>prototype</i>"), blueTop, blueBottom)
        ->setItemFlags(BkCalendarItem::FlagMail);
    BkCalendarItem* locked =
        booking(model, 6, monday.addDays(2), 7, QTime(8, 15), QTime(9, 45), QStringLiteral("Customer visit"),
                QStringLiteral("Main entrance"), sandTop, sandBottom);
    locked->locked = 1;
    booking(model, 7, monday.addDays(2), 7, QTime(9, 0), QTime(10, 0), QStringLiteral("Stand-up"), QString(),
            greenTop, greenBottom);
    booking(model, 8, monday.addDays(2), 7, QTime(9, 30), QTime(11, 0), QStringLiteral("Review"), QString(),
            blueTop, blueBottom);

    for (int day = 0; day < 3; ++day) {
        auto* column = new BkCalendarColumn(nullptr, false);
        scene.addItem(column);
        column->setTimeScale(scale);
        column->setColorScheme(&scheme);
        column->setIndex(day);
        column->setModel(&model);
        column->setDate(monday.addDays(day));
        column->setResource(anna);
        column->setWidthScale(ColumnWidth, WidthFixed, -1.0);
        column->update();
    }

    QGraphicsView view(&scene);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.setFrameShape(QFrame::NoFrame);
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const QRectF area = scene.itemsBoundingRect();
    view.setSceneRect(QRectF(0, 0, area.right() + 2, area.bottom() + 2));
    view.resize(int(area.right()) + 2, int(area.bottom()) + 2);
    view.show();
    app.processEvents();
    return view.grab().toImage().save(output) ? 0 : 1;
}
