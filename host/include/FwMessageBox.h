#ifndef FWMESSAGEBOX_H
#define FWMESSAGEBOX_H

#include "FwWidgetsGlobal.h"

#include <QMessageBox>
#include <QStringList>

// The framework's message box: modal questions that return the button pressed.
class FWWIDGETS_EXPORT FwMessageBox : public QMessageBox
{
    Q_OBJECT

public:
    explicit FwMessageBox(QWidget* parent = nullptr);

    // Asks `text` in a modal box with `buttons` and `defaultButton` (offered even when missing
    // from `buttons`); Return presses the default. `captions`, when given, replace the texts of
    // the buttons in the order of QMessageBox::StandardButton. Returns the button pressed; a box that
    // goes without a click, also with its parent, gives the refusal, the button that Escape presses.
    static QMessageBox::StandardButton
    question(QWidget* parent, const QString& title, const QString& text,
             QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No,
             QMessageBox::StandardButton defaultButton = QMessageBox::NoButton,
             const QStringList& captions = QStringList());
};

#endif // FWMESSAGEBOX_H
