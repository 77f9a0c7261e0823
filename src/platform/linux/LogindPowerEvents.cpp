#include "platform/linux/LogindPowerEvents.h"

#include "platform/linux/SystemBus.h"

#include <utility>
#include <vector>

#include <QDBusConnection>

namespace vorrano::linux_platform {

namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

LogindPowerEvents::LogindPowerEvents(Deliver deliver)
    : m_deliver(std::move(deliver))
    , m_self(std::make_shared<LogindPowerEvents*>(this))
{}

LogindPowerEvents::~LogindPowerEvents() = default;

platform::Subscription LogindPowerEvents::onWillSleep(std::function<void()> told)
{
    return subscribe(m_willSleep, std::move(told));
}

platform::Subscription LogindPowerEvents::onDidWake(std::function<void()> told)
{
    return subscribe(m_didWake, std::move(told));
}

platform::Subscription LogindPowerEvents::subscribe(const std::shared_ptr<Handlers>& handlers,
                                                    std::function<void()> told)
{
    start();
    const auto number = ++m_lastHandler;
    handlers->emplace(number, std::move(told));
    return platform::Subscription([weak = std::weak_ptr(handlers), number] {
        if (const auto alive = weak.lock()) {
            alive->erase(number);
        }
    });
}

void LogindPowerEvents::start()
{
    if (std::exchange(m_started, true)) {
        return;
    }
    auto bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        return;
    }
    // The slot that takes the inhibitor is found by the type's name.
    qRegisterMetaType<QDBusUnixFileDescriptor>();
    bus.connect(kLogind, kPath, kManager, QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool)));
    takeInhibitor();
}

void LogindPowerEvents::prepareForSleep(bool begins)
{
    m_deliver([weak = std::weak_ptr(m_self), begins] {
        const auto self = weak.lock();
        if (!self) {
            return;
        }
        if (begins) {
            (*self)->fallAsleep();
        } else {
            (*self)->wakeUp();
        }
    });
}

void LogindPowerEvents::fallAsleep()
{
    m_awake = false;
    // Dropped when the handlers have returned, however they do.
    const auto untilTold = std::exchange(m_inhibitor, {});
    call(*m_willSleep);
}

void LogindPowerEvents::wakeUp()
{
    m_awake = true;
    takeInhibitor();
    call(*m_didWake);
}

// A refused one is no error: the sleep then does not wait for the handlers.
void LogindPowerEvents::takeInhibitor()
{
    const auto request = methodCall(kLogind, kPath, kManager, QStringLiteral("Inhibit"),
                                    {QStringLiteral("sleep"), QStringLiteral("Vorrano Setup"),
                                     QStringLiteral("Serial ports are being closed"), QStringLiteral("delay")});
    QDBusConnection::systemBus().callWithCallback(request, this, SLOT(holdInhibitor(QDBusUnixFileDescriptor)));
}

void LogindPowerEvents::holdInhibitor(const QDBusUnixFileDescriptor& inhibitor)
{
    if (m_awake) {
        m_inhibitor = inhibitor;
    }
}

// A handler may end any subscription, its own too.
void LogindPowerEvents::call(const Handlers& handlers)
{
    std::vector<std::pair<std::uint64_t, std::function<void()>>> all(handlers.begin(), handlers.end());
    for (const auto& [number, told] : all) {
        if (handlers.contains(number)) {
            told();
        }
    }
}

} // namespace vorrano::linux_platform
