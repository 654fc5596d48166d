#include "BookingDialog.h"

#include <BkCalendarItem.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QTimeEdit>

BookingDialog::BookingDialog(const DemoBookingRow& row, const QMap<int, BkCalendarStatusEntry>& statuses,
                             QWidget* parent)
    : QDialog(parent)
    , mRow(row)
{
    setWindowTitle(row.isValid() ? tr("Edit booking") : tr("New booking"));
    setObjectName(QStringLiteral("BookingDialog"));

    mTitle = new QLineEdit(row.title, this);
    mTitle->setObjectName(QStringLiteral("title"));
    mTitle->setMaxLength(250);
    mText = new QTextEdit(this);
    mText->setObjectName(QStringLiteral("text"));
    mText->setAcceptRichText(true);
    mText->setHtml(row.text);
    mText->document()->setModified(false);
    mText->setMinimumHeight(80);
    mDate = new QDateEdit(row.date, this);
    mDate->setObjectName(QStringLiteral("date"));
    mDate->setCalendarPopup(true);
    mStart = new QTimeEdit(row.start, this);
    mStart->setObjectName(QStringLiteral("start"));
    mEnd = new QTimeEdit(row.end, this);
    mEnd->setObjectName(QStringLiteral("end"));
    for (QTimeEdit* edit : {mStart, mEnd})
        edit->setDisplayFormat(QStringLiteral("HH:mm"));
    auto* times = new QHBoxLayout;
    times->addWidget(mStart);
    times->addWidget(new QLabel(tr("to"), this));
    times->addWidget(mEnd);

    mKind = new QComboBox(this);
    mKind->setObjectName(QStringLiteral("kind"));
    mKind->addItem(tr("Booking"), 0);
    mKind->addItem(tr("Meeting"), int(BkCalendarItem::Meeting));
    mKind->addItem(tr("Reserved"), int(BkCalendarItem::Reserved));
    mKind->addItem(tr("Note only"), int(BkCalendarItem::TextOnly));
    // A kind that another program stored and the calendar has no name for stays as it is.
    if (mKind->findData(row.type) < 0)
        mKind->addItem(tr("Other (%1)").arg(row.type), row.type);
    mKind->setCurrentIndex(mKind->findData(row.type));

    mStatus = new QComboBox(this);
    mStatus->setObjectName(QStringLiteral("status"));
    mStatus->addItem(tr("No status"), QVariant());
    for (auto it = statuses.cbegin(); it != statuses.cend(); ++it) {
        QPixmap swatch(12, 12);
        swatch.fill(it.value().color.isValid() ? it.value().color : QColor(Qt::transparent));
        mStatus->addItem(QIcon(swatch), it.value().name, it.key());
    }
    // So does a status that is gone from the list, until the user picks another.
    if (!row.statusId.isNull() && mStatus->findData(row.statusId.toInt()) < 0)
        mStatus->addItem(tr("Unknown status %1").arg(row.statusId.toInt()), row.statusId.toInt());
    mStatus->setCurrentIndex(row.statusId.isNull() ? 0 : mStatus->findData(row.statusId.toInt()));

    mPhone = new QCheckBox(tr("Call back by phone"), this);
    mPhone->setObjectName(QStringLiteral("phone"));
    mPhone->setChecked(row.flags & BkCalendarItem::FlagPhone);
    mMail = new QCheckBox(tr("Send a mail"), this);
    mMail->setObjectName(QStringLiteral("mail"));
    mMail->setChecked(row.flags & BkCalendarItem::FlagMail);
    mLocked = new QCheckBox(tr("Locked: can't be moved"), this);
    mLocked->setObjectName(QStringLiteral("locked"));
    mLocked->setChecked(row.locked != 0);

    mProblem = new QLabel(this);
    mProblem->setObjectName(QStringLiteral("problem"));
    mProblem->setStyleSheet(QStringLiteral("color: #b00020"));
    mButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(mButtons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(mButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout(this);
    form->addRow(tr("&Title"), mTitle);
    form->addRow(tr("Te&xt"), mText);
    form->addRow(tr("&Day"), mDate);
    form->addRow(tr("T&ime"), times);
    form->addRow(tr("&Kind"), mKind);
    form->addRow(tr("&Status"), mStatus);
    form->addRow(QString(), mPhone);
    form->addRow(QString(), mMail);
    form->addRow(QString(), mLocked);
    form->addRow(mProblem);
    form->addRow(mButtons);

    connect(mStart, &QTimeEdit::timeChanged, this, &BookingDialog::check);
    connect(mEnd, &QTimeEdit::timeChanged, this, &BookingDialog::check);
    check();
}

void BookingDialog::check()
{
    // A booking must end after it starts; the calendar can't show anything else.
    const bool ok = mStart->time() < mEnd->time();
    mProblem->setText(ok ? QString() : tr("The booking must end after it starts."));
    mButtons->button(QDialogButtonBox::Ok)->setEnabled(ok);
}

DemoBookingRow BookingDialog::row() const
{
    DemoBookingRow row = mRow;
    row.title = mTitle->text();
    // Left as it was unless the user wrote in it, so that looking at a booking changes nothing.
    if (mText->document()->isModified())
        row.text = mText->toPlainText().isEmpty() ? QString() : mText->toHtml();
    row.date = mDate->date();
    row.start = mStart->time();
    row.end = mEnd->time();
    row.type = mKind->currentData().toInt();
    row.statusId = mStatus->currentData();
    // Bits other than phone and mail are kept, though the calendar gives them no meaning.
    const int own = int(BkCalendarItem::FlagPhone) | int(BkCalendarItem::FlagMail);
    row.flags = (mRow.flags & ~own) | (mPhone->isChecked() ? int(BkCalendarItem::FlagPhone) : 0) |
                (mMail->isChecked() ? int(BkCalendarItem::FlagMail) : 0);
    row.locked = mLocked->isChecked() ? 1 : 0;
    return row;
}
