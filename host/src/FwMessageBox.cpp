#include "FwMessageBox.h"

#include <QAbstractButton>
#include <QPushButton>

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

    FwMessageBox box(parent);
    box.setIcon(QMessageBox::Question);
    box.setWindowTitle(title);
    box.setText(text);
    box.setStandardButtons(buttons);
    if (defaultButton != QMessageBox::NoButton)
        box.setDefaultButton(defaultButton);

    int caption = 0;
    for (uint flag = QMessageBox::FirstButton; flag <= QMessageBox::LastButton && caption < captions.size();
         flag <<= 1) {
        if (!(buttons & flag))
            continue;
        if (QAbstractButton* button = box.button(static_cast<QMessageBox::StandardButton>(flag))) {
            if (!captions.at(caption).isEmpty())
                button->setText(captions.at(caption));
        }
        ++caption;
    }

    const int result = box.exec();
    // A box closed without a button (Escape with no escape button) answers like a refusal.
    if (!(buttons & result))
        return QMessageBox::NoButton;
    return static_cast<QMessageBox::StandardButton>(result);
}
