#pragma once

#include "platform/NotificationCentre.h"
#include "platform/PowerEvents.h"
#include "platform/System.h"

#include <functional>

namespace vorrano::support {

// A computer that never sleeps.
class NoSleep final : public platform::PowerEvents {
public:
    platform::Subscription onWillSleep(std::function<void()> /*told*/) override { return {}; }
    platform::Subscription onDidWake(std::function<void()> /*told*/) override { return {}; }
};

// What the serial layer runs on, without a window: most of it is given.
//
// Lifetime: ends before what it was given.
class SerialSystem {
public:
    SerialSystem(platform::SystemLog& log, platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue,
                 platform::Terminal& terminal, platform::DeviceRegistry& devices)
        : m_system({mainQueue, backgroundQueue, notifications, terminal, devices, m_power, log})
    {}

    platform::NotificationCentre notifications;

private:
    NoSleep m_power;
    platform::System m_system;
};

} // namespace vorrano::support
