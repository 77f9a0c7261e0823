#pragma once

#include "platform/Subscription.h"

#include <string_view>

namespace vorrano::platform {

// Keeps the computer awake during work that must not be interrupted: it neither sleeps nor counts as idle, and neither
// its closed lid nor a request to shut down ends the work.
//
// Where the system offers no such thing, or refuses it, nothing happens: the work goes on and may be interrupted.
// Threads: the main thread. No call waits, none throws.
class StayAwake {
public:
    StayAwake() = default;
    StayAwake(const StayAwake&) = delete;
    StayAwake& operator=(const StayAwake&) = delete;
    virtual ~StayAwake() = default;

    // Keeps the computer awake until the returned token is dropped. Each token counts for itself. `why` is a short text
    // that a desktop may show to the person who wants the computer to sleep.
    virtual Subscription stayAwake(std::string_view why) = 0;
};

} // namespace vorrano::platform
