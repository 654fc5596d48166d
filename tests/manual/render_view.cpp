// Renders the calendar as a user sees it, into PNGs: the bare view with five days of one person and
// with one day of a group of people and resources, then the whole form with its docks inside a main
// window, in the same two modes. Duty plans stand behind the bookings:
//   QT_QPA_PLATFORM=offscreen build/bin/render_view docs/view-5days.png docs/view-group.png
//       docs/form-5days.png docs/form-group.png
#include <FwCalendar.h>

#include <FwApplication.h>
#include <FwMainWindow.h>

#include <QCalendarWidget>

#include <QImage>
#include <QLocale>
#include <QSqlDatabase>

namespace {

const QDate Monday(2026, 11, 23);

struct Palette
{
    QColor top;
    QColor bottom;
};
const Palette Blue{QColor(214, 228, 250), QColor(150, 182, 232)};
const Palette Green{QColor(214, 240, 214), QColor(140, 200, 140)};
const Palette Sand{QColor(252, 236, 204), QColor(230, 190, 120)};
const Palette Grey{QColor(220, 220, 220), QColor(150, 150, 150)};

BkCalendarItem* booking(BkCalendarModel& model, int id, const QDate& date, const BkCalendarResource& who,
                        QTime start, QTime end, const QString& title, const QString& text,
                        const Palette& colours, BkCalendarItem::ItemType type = BkCalendarItem::ItemType(0))
{
    auto* item = new BkCalendarItem;
    item->id = id;
    item->topColor = colours.top;
    item->bottomColor = colours.bottom;
    item->setType(type);
    item->setTitle(title);
    item->setText(text);
    item->setDate(date);
    if (who.type == 0)
        item->setUserId(who.id);
    else
        item->setResourceId(who.id);
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

void workingDay(BkCalendarModel& model, const QDate& date, const BkCalendarResource& who, int infoId)
{
    plan(model, date, who, QTime(8, 0), QTime(12, 0), true, infoId);
    plan(model, date, who, QTime(12, 0), QTime(13, 0), false, infoId);
    plan(model, date, who, QTime(13, 0), QTime(17, 0), true, infoId);
}

const BkCalendarResource Anna(7, QStringLiteral("Anna Berg"), 0);
const BkCalendarResource Carl(8, QStringLiteral("Carl Dahl"), 0);
const BkCalendarResource Room(3, QStringLiteral("Room 3"), 1);
const BkCalendarResource Car(4, QStringLiteral("Car"), 1);

// A small practice: two people and two resources, their week's plans and bookings.
void fill(BkCalendarModel& model)
{
    BkCalendarPlanInfo office;
    office.id = 1;
    office.color = QColor(238, 244, 252);
    office.label = QStringLiteral("Office");
    model.addItem(office);
    BkCalendarPlanInfo rooms;
    rooms.id = 2;
    rooms.color = QColor(240, 248, 236);
    rooms.label = QStringLiteral("Open");
    model.addItem(rooms);

    for (int day = 0; day < 5; ++day) {
        workingDay(model, Monday.addDays(day), Anna, 1);
        workingDay(model, Monday.addDays(day), Carl, 1);
        plan(model, Monday.addDays(day), Room, QTime(7, 0), QTime(18, 0), true, 2);
    }

    int id = 1;
    booking(model, id++, Monday, Anna, QTime(8, 30), QTime(9, 30), QStringLiteral("Team review"),
            QStringLiteral("Agenda: <b>figures</b>"), Blue)
        ->leftColor = QColor(220, 80, 80);
    booking(model, id++, Monday, Anna, QTime(9, 0), QTime(10, 15), QStringLiteral("Call supplier"),
            QStringLiteral("Order 4711"), Sand)
        ->setItemFlags(BkCalendarItem::FlagPhone);
    booking(model, id++, Monday, Anna, QTime(13, 30), QTime(15, 0), QString(), QStringLiteral("Room 4"),
            Green, BkCalendarItem::Meeting);
    booking(model, id++, Monday.addDays(1), Anna, QTime(10, 0), QTime(11, 0), QStringLiteral("Dentist"),
            QString(), Grey, BkCalendarItem::Reserved);
    booking(model, id++, Monday.addDays(1), Anna, QTime(14, 0), QTime(15, 30), QStringLiteral("Workshop"),
            QStringLiteral("Bring the <i>prototype</i>"), Blue)
        ->setItemFlags(BkCalendarItem::FlagMail);
    BkCalendarItem* locked = booking(model, id++, Monday.addDays(2), Anna, QTime(8, 15), QTime(9, 45),
                                     QStringLiteral("Customer visit"), QStringLiteral("Main entrance"), Sand);
    locked->locked = 1;
    booking(model, id++, Monday.addDays(2), Anna, QTime(9, 0), QTime(10, 0), QStringLiteral("Stand-up"),
            QString(), Green);
    booking(model, id++, Monday.addDays(2), Anna, QTime(9, 30), QTime(11, 0), QStringLiteral("Review"),
            QString(), Blue);
    booking(model, id++, Monday.addDays(3), Anna, QTime(11, 0), QTime(12, 0), QStringLiteral("Lunch talk"),
            QStringLiteral("Canteen"), Green)
        ->rightColor = QColor(90, 160, 90);
    booking(model, id++, Monday.addDays(4), Anna, QTime(8, 0), QTime(9, 0), QStringLiteral("Planning"),
            QString(), Blue);
    booking(model, id++, Monday.addDays(4), Anna, QTime(15, 0), QTime(16, 30), QStringLiteral("Week report"),
            QStringLiteral("Send to <b>all</b>"), Sand)
        ->setItemFlags(BkCalendarItem::FlagMail | BkCalendarItem::FlagPhone);
    // The group's Wednesday.
    booking(model, id++, Monday.addDays(2), Carl, QTime(8, 0), QTime(9, 30), QStringLiteral("Patient Meyer"),
            QStringLiteral("Check-up"), Blue);
    booking(model, id++, Monday.addDays(2), Carl, QTime(9, 30), QTime(10, 0), QStringLiteral("Call back"),
            QString(), Sand)
        ->setItemFlags(BkCalendarItem::FlagPhone);
    booking(model, id++, Monday.addDays(2), Carl, QTime(14, 0), QTime(15, 0), QStringLiteral("Patient Roth"),
            QString(), Green);
    booking(model, id++, Monday.addDays(2), Room, QTime(9, 0), QTime(11, 30), QStringLiteral("Surgery"),
            QStringLiteral("Dr. Berg"), Blue);
    booking(model, id++, Monday.addDays(2), Room, QTime(13, 0), QTime(14, 0), QStringLiteral("Cleaning"),
            QString(), Grey, BkCalendarItem::Reserved);
    booking(model, id++, Monday.addDays(2), Car, QTime(10, 0), QTime(12, 30), QStringLiteral("Home visits"),
            QStringLiteral("North district"), Sand);
}

bool render(QWidget& view, const QString& file)
{
    view.show();
    QCoreApplication::processEvents();
    return view.grab().toImage().save(file);
}

} // namespace

int main(int argc, char** argv)
{
    FwApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const auto output = [argc, argv](int i, const char* fallback) {
        return argc > i ? QString::fromLocal8Bit(argv[i]) : QString::fromLatin1(fallback);
    };
    app.setValue(1, QStringLiteral("set_calshowtime"), QString());
    // The current-time marker stands at a quarter past ten on the Wednesday of the pictures.
    const QDate wednesday = Monday.addDays(2);
    BkCalendarClock::setFixedNow(QDateTime(wednesday, QTime(10, 15)));

    BkCalendarModel model;
    fill(model);
    BkCalendarView view;
    view.setModel(&model);
    view.setInterval(QTime(7, 0), QTime(17, 0));
    view.resize(1100, 860);
    view.setResource(Anna);
    view.setDays(5);
    view.setWidthType(WidthProportional);
    view.setDate(wednesday);
    bool ok = render(view, output(1, "view-5days.png"));

    view.setMinWidth(200);
    view.setResources({Anna, Carl, Room, Car});
    view.setDate(wednesday);
    view.setWidthType(WidthProportional);
    ok = render(view, output(2, "view-group.png")) && ok;
    view.hide();

    // The whole form as a host embeds it.
    FwMainWindow window;
    window.setUserId(Anna.id);
    window.resize(1400, 900);
    auto* form = new BkCalendar(nullptr, BkCalendar::Show1Day | BkCalendar::Show5Day | BkCalendar::Show7Day |
                                             BkCalendar::ShowMonth | BkCalendar::ShowGroup);
    fill(*form->model());
    form->setResource(Anna);
    form->setResourceList({Anna, Carl, Room, Car});
    form->setInterval(QTime(7, 0), QTime(17, 0));
    form->setMinWidth(150);
    window.openForm(form);
    window.show();
    form->show5Day();
    form->setDate(wednesday);
    form->datePicker()->setSelectedDate(wednesday);
    form->jobList()->setDate(wednesday);
    ok = render(window, output(3, "form-5days.png")) && ok;
    form->showGroup();
    form->setDate(wednesday);
    // As a click on the day in the picker: the job list follows it.
    emit form->datePicker()->clicked(wednesday);
    ok = render(window, output(4, "form-group.png")) && ok;
    return ok ? 0 : 1;
}
