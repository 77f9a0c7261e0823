#pragma once

#include "platform/MainQueue.h"
#include "platform/PowerEvents.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace vorrano::linux_platform {

// Sleep and wake as logind tells them. It delays the sleep until the handlers have returned, 5 s at most by logind's
// own rule. Without logind nothing is told.
//
// It asks logind with the first subscription, and needs the main thread's event loop from then on.
class LogindPowerEvents final : public QObject, public platform::PowerEvents {
    Q_OBJECT

public:
    // Runs a task on the main thread, in order: now, or once a pause that is on has ended.
    using Deliver = std::function<void(platform::Task)>;

    explicit LogindPowerEvents(Deliver deliver);
    ~LogindPowerEvents() override;

    platform::Subscription onWillSleep(std::function<void()> told) override;
    platform::Subscription onDidWake(std::function<void()> told) override;

private:
    using Handlers = std::map<std::uint64_t, std::function<void()>>;

    Q_SLOT void prepareForSleep(bool begins);
    Q_SLOT void holdInhibitor(const QDBusUnixFileDescriptor& inhibitor);
    void start();
    void fallAsleep();
    void wakeUp();
    void takeInhibitor();
    platform::Subscription subscribe(const std::shared_ptr<Handlers>& handlers, std::function<void()> told);
    static void call(const Handlers& handlers);

    const Deliver m_deliver;
    const std::shared_ptr<Handlers> m_willSleep = std::make_shared<Handlers>();
    const std::shared_ptr<Handlers> m_didWake = std::make_shared<Handlers>();
    std::uint64_t m_lastHandler = 0;
    bool m_started = false;
    bool m_awake = true;
    // While this is open the computer does not fall asleep.
    QDBusUnixFileDescriptor m_inhibitor;
    // Held weakly by the tasks that are still to be delivered.
    const std::shared_ptr<LogindPowerEvents*> m_self;
};

} // namespace vorrano::linux_platform
