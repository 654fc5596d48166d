// A host project that knows the calendar only through its installed package.
#include <FwCalendar.h>
#include <BkCalendarRecords.h>
#include <FwLog.h>
#include <SQLDatabase.h>

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const BkCalendarResource user(7, QStringLiteral("Ann"), 0);
    const BkCalendarResource resource(7, QStringLiteral("Room"), 1);
    FwLog::log(QStringLiteral("consumer linked"));
    SQLDatabase database;
    return (user < resource && !(user == resource)) ? 0 : 1;
}
