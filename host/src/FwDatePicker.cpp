#include "FwDatePicker.h"

#include <QCalendarWidget>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

FwDatePicker::FwDatePicker(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
    , mCalendar(new QCalendarWidget(this))
{
    setModal(true);
    setWindowTitle(tr("Select Date"));
    mCalendar->setObjectName(QStringLiteral("calendar"));
    mCalendar->setGridVisible(true);
    mCalendar->setSelectedDate(QDate::currentDate());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // A double click or Return on a day picks it at once.
    connect(mCalendar, &QCalendarWidget::activated, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(4);
    layout->addWidget(mCalendar);
    layout->addWidget(buttons);
    mCalendar->setFocus(Qt::OtherFocusReason);
}

FwDatePicker::~FwDatePicker() = default;

QDate FwDatePicker::date() const
{
    return mCalendar->selectedDate();
}

void FwDatePicker::setDate(const QDate& date)
{
    if (date.isValid())
        mCalendar->setSelectedDate(date);
}
