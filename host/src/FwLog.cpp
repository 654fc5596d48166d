#include "FwLog.h"

#include <QDateTime>
#include <QFile>
#include <QTextStream>

Q_LOGGING_CATEGORY(fwLog, "fw.log", QtInfoMsg)

namespace {
QString& logFileName()
{
    static QString name;
    return name;
}
} // namespace

void FwLog::log(const QString& text)
{
    qCInfo(fwLog).noquote() << text;

    const QString& name = logFileName();
    if (name.isEmpty())
        return;
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    QTextStream out(&file);
    out << QDateTime::currentDateTime().toString(Qt::ISODate) << ' ' << text << '\n';
}

void FwLog::setLogFile(const QString& fileName)
{
    logFileName() = fileName;
}

QString FwLog::logFile()
{
    return logFileName();
}
