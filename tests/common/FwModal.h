#ifndef FWMODAL_H
#define FWMODAL_H

// Answers a modal dialog from a timer, as a user would, while the code under test sits in exec.
//
//     FwTest::whenModal([](QWidget* modal) {
//         auto box = qobject_cast<QMessageBox*>(modal);
//         QVERIFY(box);
//         box->button(QMessageBox::Yes)->click();
//     });
//     const auto answer = FwMessageBox::question(...); // returns once the callback clicked
//
// The callback runs once, on the first modal widget that shows up. It polls every 20 ms and
// gives up once `timeoutMs` have passed on the clock (generous, as machines are loaded), warning so
// that the hang is explained. The timer it returns is gone once it has answered or given up.

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace FwTest {
inline QPointer<QTimer> whenModal(std::function<void(QWidget*)> answer, int timeoutMs = 30000)
{
    auto* timer = new QTimer(qApp);
    // The clock, not the count of polls: a loaded machine polls less often than asked.
    auto waited = std::make_shared<QElapsedTimer>();
    waited->start();
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, waited, answer, timeoutMs]() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            timer->stop();
            timer->deleteLater();
            answer(modal);
            return;
        }
        if (waited->elapsed() > timeoutMs) {
            qWarning("FwTest::whenModal: no modal widget appeared");
            timer->stop();
            timer->deleteLater();
        }
    });
    timer->start();
    return timer;
}
} // namespace FwTest

#endif // FWMODAL_H
