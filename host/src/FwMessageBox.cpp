#include "FwMessageBox.h"

#include <QAbstractButton>
#include <QPointer>
#include <QPushButton>

namespace {
// The refusal of a box: the button that Escape presses, chosen as QMessageBox chooses it (Cancel, else
// the only button, else the one rejecting button, else the one "no" button); NoButton when there is none.
QMessageBox::StandardButton refusalOf(const QMessageBox& box)
{
    if (box.button(QMessageBox::Cancel))
        return QMessageBox::Cancel;
    const QList<QAbstractButton*> buttons = box.buttons();
    if (buttons.size() == 1)
        return box.standardButton(buttons.first());
    for (const QMessageBox::ButtonRole role : {QMessageBox::RejectRole, QMessageBox::NoRole}) {
        QAbstractButton* found = nullptr;
        int count = 0;
        for (QAbstractButton* button : buttons) {
            if (box.buttonRole(button) == role) {
                found = button;
                ++count;
            }
        }
        if (count == 1)
            return box.standardButton(found);
    }
    return QMessageBox::NoButton;
}
} // namespace

FwMessageBox::FwMessageBox(QWidget* parent)
    : QMessageBox(parent)
{
}

QMessageBox::StandardButton FwMessageBox::question(QWidget* parent, const QString& title, const QString& text,
                                                   QMessageBox::StandardButtons buttons,
                                                   QMessageBox::StandardButton defaultButton,
                                                   const QStringList& captions)
{
    // The default is an answer the caller expects, so the box offers it whatever `buttons` say.
    if (defaultButton != QMessageBox::NoButton)
        buttons |= defaultButton;
    if (buttons == QMessageBox::NoButton)
        buttons = QMessageBox::Ok;

    // On the heap: a parent that goes while the question is open takes the box with it.
    const QPointer<FwMessageBox> box = new FwMessageBox(parent);
    box->setIcon(QMessageBox::Question);
    box->setWindowTitle(title);
    box->setText(text);
    box->setStandardButtons(buttons);
    if (defaultButton != QMessageBox::NoButton)
        box->setDefaultButton(defaultButton);
    // A box that goes without a click answers like a refusal, and Escape presses the same button.
    const QMessageBox::StandardButton refusal = refusalOf(*box);
    if (refusal != QMessageBox::NoButton)
        box->setEscapeButton(refusal);

    int caption = 0;
    for (uint flag = QMessageBox::FirstButton; flag <= QMessageBox::LastButton && caption < captions.size();
         flag <<= 1) {
        if (!(buttons & flag))
            continue;
        if (QAbstractButton* button = box->button(static_cast<QMessageBox::StandardButton>(flag))) {
            if (!captions.at(caption).isEmpty())
                button->setText(captions.at(caption));
        }
        ++caption;
    }

    const int result = box->exec();
    if (!box)
        return refusal;
    delete box;
    if (!(buttons & result))
        return refusal;
    return static_cast<QMessageBox::StandardButton>(result);
}
