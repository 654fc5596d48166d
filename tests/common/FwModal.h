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
// gives up after `timeoutMs` (generous, as machines are loaded), warning so that the hang is
// explained.

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace FwTest {
inline void whenModal(std::function<void(QWidget*)> answer, int timeoutMs = 30000)
{
    auto* timer = new QTimer(qApp);
    auto waited = std::make_shared<int>(0);
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, waited, answer, timeoutMs]() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            timer->stop();
            timer->deleteLater();
            answer(modal);
            return;
        }
        *waited += timer->interval();
        if (*waited > timeoutMs) {
            qWarning("FwTest::whenModal: no modal widget appeared");
            timer->stop();
            timer->deleteLater();
        }
    });
    timer->start();
}
} // namespace FwTest

#endif // FWMODAL_H
