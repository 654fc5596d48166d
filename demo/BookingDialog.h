#ifndef BOOKINGDIALOG_H
#define BOOKINGDIALOG_H

#include "DemoBookingRow.h"

#include <BkCalendarStatusEntry.h>

#include <QDialog>
#include <QMap>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QTextEdit;
class QTimeEdit;

// Edits one booking: title, text, day, times, kind, phone and mail flags, lock and status.
class BookingDialog : public QDialog
{
    Q_OBJECT

public:
    BookingDialog(const DemoBookingRow& row, const QMap<int, BkCalendarStatusEntry>& statuses,
                  QWidget* parent = nullptr);

    // The row with what the user entered.
    DemoBookingRow row() const;

    QLineEdit* titleEdit() const { return mTitle; }
    QTimeEdit* startEdit() const { return mStart; }
    QTimeEdit* endEdit() const { return mEnd; }
    QComboBox* kindBox() const { return mKind; }
    QComboBox* statusBox() const { return mStatus; }
    QDialogButtonBox* buttons() const { return mButtons; }

private:
    void check();

    DemoBookingRow mRow;
    QLineEdit* mTitle;
    QTextEdit* mText;
    QDateEdit* mDate;
    QTimeEdit* mStart;
    QTimeEdit* mEnd;
    QComboBox* mKind;
    QComboBox* mStatus;
    QCheckBox* mPhone;
    QCheckBox* mMail;
    QCheckBox* mLocked;
    QLabel* mProblem;
    QDialogButtonBox* mButtons;
};

#endif // BOOKINGDIALOG_H
