#ifndef FWLOG_H
#define FWLOG_H

#include "FwWidgetsGlobal.h"

#include <QLoggingCategory>
#include <QString>

// The category of the log lines, "fw.log".
FWWIDGETS_EXPORT const QLoggingCategory& fwLog();

// The application's log: every line goes through Qt's logging (category "fw.log", info level) and,
// when a log file is set, is appended to that file as well.
class FWWIDGETS_EXPORT FwLog
{
public:
    static void log(const QString& text);

    // An empty name stops writing to a file.
    static void setLogFile(const QString& fileName);
    static QString logFile();
};

#endif // FWLOG_H
