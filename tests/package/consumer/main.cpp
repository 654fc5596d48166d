// A host project that knows the calendar only through its installed package.
#include <BkCalendarItem.h>
#include <BkCalendarModel.h>
#include <BkCalendarRecords.h>
#include <FwCalendar.h>
#include <FwLog.h>
#include <SQLDatabase.h>

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const BkCalendarResource user(7, QStringLiteral("Ann"), 0);
    const BkCalendarResource resource(7, QStringLiteral("Room"), 1);
    FwLog::log(QStringLiteral("consumer linked"));
    SQLDatabase database;
    if (!(user < resource) || user == resource)
        return 1;

    // The host fills a booking and hands it over; the model finds it again under its key.
    BkCalendarModel model;
    int requests = 0;
    QObject::connect(&model, &BkCalendarModel::loadData, [&requests] { ++requests; });
    const QDate day(2024, 3, 11);
    auto* booking = new BkCalendarItem;
    booking->id = 1;
    booking->setDate(day);
    booking->setUserId(7);
    booking->setTime(QTime(9, 0), QTime(10, 0));
    booking->setTitle(QStringLiteral("Service"));
    booking->setType(BkCalendarItem::Meeting);
    if (!model.addItem(booking))
        return 2;
    const QList<BkCalendarItem*> found = model.items(day, user);
    if (found.size() != 1 || found.first() != booking || found.first()->title() != QStringLiteral("Service"))
        return 3;
    if (requests != 1 || !model.items(day, resource).isEmpty())
        return 4;
    return 0;
}
