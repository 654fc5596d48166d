#ifndef FWDIALOGRUN_H
#define FWDIALOGRUN_H

// Runs a dialog's exec as its caller does, with the user's gestures made from a timer while the
// dialog is up (see FwModal.h):
//
//     const FwTest::DialogRun run = FwTest::runDialog(dialog, [&] {
//         QTest::mouseClick(okButton, Qt::LeftButton);
//     });
//     QCOMPARE(run.result, 1);
//
// After the gestures it notes whether the dialog is still open, and if it is, rejects it, so that a
// gesture which fails to close the dialog shows up as `openAfterGestures` instead of a hang.

#include "FwModal.h"

#include <QDialog>

#include <functional>

namespace FwTest {
struct DialogRun
{
    int result = -1;                // what exec returned
    bool shown = false;             // the dialog was the modal widget the gestures went to
    bool openAfterGestures = false; // still open once the gestures were made
};

inline DialogRun runDialog(QDialog& dialog, const std::function<void()>& gestures)
{
    DialogRun run;
    whenModal([&](QWidget* modal) {
        run.shown = modal == &dialog;
        if (run.shown)
            gestures();
        run.openAfterGestures = dialog.isVisible();
        if (dialog.isVisible())
            dialog.reject();
    });
    run.result = dialog.exec();
    return run;
}
} // namespace FwTest

#endif // FWDIALOGRUN_H
