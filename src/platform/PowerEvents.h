#pragma once

#include "platform/Subscription.h"

#include <functional>

namespace vorrano::platform {

// The computer's sleep and wake. Handlers run on the main thread, also while a modal alert is up, but not during a
// pause.
class PowerEvents {
public:
    PowerEvents() = default;
    PowerEvents(const PowerEvents&) = delete;
    PowerEvents& operator=(const PowerEvents&) = delete;
    virtual ~PowerEvents() = default;

    // The computer sleeps once the handlers have returned.
    virtual Subscription onWillSleep(std::function<void()> told) = 0;
    virtual Subscription onDidWake(std::function<void()> told) = 0;
};

} // namespace vorrano::platform
