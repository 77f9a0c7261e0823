#pragma once

#include "platform/Subscription.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::platform {

// One line each to the system log and to standard error, control characters escaped. Any thread. Never give it an
// address, a password or a key.
class SystemLog {
public:
    SystemLog() = default;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;
    virtual ~SystemLog() = default;

    virtual void write(std::string_view line) = 0;
};

struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;
};

// The version that a program's system requirement is about; none when it can't be had. Any thread.
class OperatingSystem {
public:
    OperatingSystem() = default;
    OperatingSystem(const OperatingSystem&) = delete;
    OperatingSystem& operator=(const OperatingSystem&) = delete;
    virtual ~OperatingSystem() = default;

    [[nodiscard]] virtual std::optional<OperatingSystemVersion> version() const = 0;
};

// Holds the calling thread (the main one). The windows go on being painted and answer the window system, but no input
// is delivered, no queued work and no timer of the logic runs.
class Pause {
public:
    Pause() = default;
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    virtual ~Pause() = default;

    // Not shorter than `duration`.
    virtual void pause(std::chrono::nanoseconds duration) = 0;
};

// Word of the computer's sleep. Handlers run on the main thread, past a modal alert, but not during a pause.
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

// The computer's default Wi-Fi interface.
class WifiInterface {
public:
    WifiInterface() = default;
    WifiInterface(const WifiInterface&) = delete;
    WifiInterface& operator=(const WifiInterface&) = delete;
    virtual ~WifiInterface() = default;

    // The SSIDs of the networks in range, each once, hidden ones left out; none when there is no interface, no service
    // to ask or no answer within 1 s. Main thread.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> scanForNetworks() = 0;
};

} // namespace vorrano::platform
