#ifndef FWDATEPICKER_H
#define FWDATEPICKER_H

#include "FwWidgetsGlobal.h"

#include <QDate>
#include <QDialog>

class QCalendarWidget;

// A modal dialog in which the user picks a day from a month calendar. exec gives 1 when the user
// accepted; date() then holds the day.
class FWWIDGETS_EXPORT FwDatePicker : public QDialog
{
    Q_OBJECT

public:
    explicit FwDatePicker(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~FwDatePicker() override;

    QDate date() const;
    void setDate(const QDate& date);

    QCalendarWidget* calendar() const { return mCalendar; }

private:
    QCalendarWidget* mCalendar = nullptr;
};

#endif // FWDATEPICKER_H
