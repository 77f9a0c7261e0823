#include "platform/qt/QtMainLoop.h"

#include "platform/Guarded.h"
#include "platform/NotificationCentre.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtGate.h"
#include "platform/qtcore/QtMainQueue.h"
#include "platform/qtcore/QtSignals.h"

#include <utility>

namespace vorrano::qt {

QtMainLoop::QtMainLoop(QtMainQueue& queue, QtGate& gate, platform::NotificationCentre& centre, platform::SystemLog& log)
    : m_queue(queue)
    , m_gate(gate)
    , m_centre(centre)
    , m_log(log)
    , m_signals(std::make_unique<QtSignals>([this](int /*number*/) { quit(); }))
{
    QApplication::setQuitOnLastWindowClosed(false);
    if (auto* const application = dynamic_cast<QtApplication*>(QCoreApplication::instance())) {
        application->onQuitRequest([this] { quit(); });
    }
}

QtMainLoop::~QtMainLoop()
{
    if (auto* const application = dynamic_cast<QtApplication*>(QCoreApplication::instance())) {
        application->onQuitRequest(nullptr);
    }
}

int QtMainLoop::run(std::function<void()> onLaunched)
{
    m_queue.async(std::move(onLaunched));
    const int status = QApplication::exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}

void QtMainLoop::quit()
{
    if (std::exchange(m_quitting, true)) {
        return;
    }
    m_gate.end();
    m_queue.asyncFirst([this] { finish(); });
}

void QtMainLoop::finish()
{
    guarded(m_log, [this] {
        m_centre.post({std::string(platform::kApplicationWillTerminateNotification), nullptr, {}});
    });
    m_queue.endAndDrain();
    QCoreApplication::exit(0);
}

} // namespace vorrano::qt
