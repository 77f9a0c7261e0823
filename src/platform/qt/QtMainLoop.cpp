#include "platform/qt/QtMainLoop.h"

#include "platform/Guarded.h"
#include "platform/NotificationCentre.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtMainQueue.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <utility>

#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace vorrano::qt {

namespace {

constexpr std::array kEndingSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> s_wakeDescriptor{-1};

void wakeOnSignal(int)
{
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(s_wakeDescriptor.load(), &one, sizeof one);
    errno = error;
}

} // namespace

// Turns the signals that ask a program to end into an event of the main loop, for as long as it lives. A signal that
// was ignored from the start (nohup) stays so.
class QtMainLoop::Signals {
public:
    explicit Signals(const std::function<void()>& told)
        : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
        , m_notifier(m_descriptor, QSocketNotifier::Read)
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this, told] {
            std::uint64_t count = 0;
            if (read(m_descriptor, &count, sizeof count) == sizeof count) {
                told();
            }
        });
        s_wakeDescriptor = m_descriptor;
        for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
            struct sigaction action = {};
            sigaction(kEndingSignals[i], nullptr, &m_before[i]);
            action.sa_handler = wakeOnSignal;
            action.sa_flags = SA_RESTART;
            if (m_before[i].sa_handler != SIG_IGN) {
                sigaction(kEndingSignals[i], &action, nullptr);
            }
        }
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    ~Signals()
    {
        for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
            sigaction(kEndingSignals[i], &m_before[i], nullptr);
        }
        s_wakeDescriptor = -1;
        m_notifier.setEnabled(false);
        close(m_descriptor);
    }

private:
    const int m_descriptor;
    QSocketNotifier m_notifier;
    std::array<struct sigaction, kEndingSignals.size()> m_before{};
};

QtMainLoop::QtMainLoop(QtMainQueue& queue, QtGate& gate, platform::NotificationCentre& centre, platform::SystemLog& log)
    : m_queue(queue)
    , m_gate(gate)
    , m_centre(centre)
    , m_log(log)
    , m_signals(std::make_unique<Signals>([this] { quit(); }))
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
