#pragma once

#include "platform/OperatingSystem.h"
#include "platform/Pause.h"
#include "platform/PowerEvents.h"
#include "platform/SystemLog.h"
#include "platform/WifiInterface.h"
#include "support/FakeMainQueue.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::support {

// Any thread.
class FakeSystemLog : public platform::SystemLog {
public:
    void write(std::string_view line) override;
    [[nodiscard]] std::vector<std::string> lines() const;
    void forget();

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

// New enough at first.
class FakeOperatingSystem : public platform::OperatingSystem {
public:
    [[nodiscard]] std::optional<platform::OperatingSystemVersion> version() const override { return m_version; }
    void setVersion(std::optional<platform::OperatingSystemVersion> version) { m_version = version; }

private:
    std::optional<platform::OperatingSystemVersion> m_version = platform::OperatingSystemVersion{11, 0, 0};
};

// A pause moves the virtual clock; background threads run meanwhile, main tasks do not.
class FakePause : public platform::Pause {
public:
    explicit FakePause(FakeMainQueue& mainQueue);

    void pause(std::chrono::nanoseconds duration) override;

    // How long each pause was, in order, and when it began.
    [[nodiscard]] const std::vector<Nanoseconds>& pauses() const { return m_pauses; }
    [[nodiscard]] const std::vector<Nanoseconds>& begins() const { return m_begins; }

    // Runs at the begin of the next pause that has none yet, as a person at the screen.
    void whilePaused(std::function<void()> meanwhile);
    [[nodiscard]] bool isOn() const { return m_on > 0; }

    // What waits for the end of the pause.
    void afterwards(Task task);

private:
    FakeMainQueue& m_mainQueue;
    std::vector<Nanoseconds> m_pauses;
    std::vector<Nanoseconds> m_begins;
    std::deque<std::function<void()>> m_meanwhile;
    std::vector<Task> m_afterwards;
    int m_on = 0;
};

// Sleep and wake, past an alert, but not during a pause.
class FakePowerEvents : public platform::PowerEvents {
public:
    FakePowerEvents(VirtualTime& time, FakePause& pause);

    platform::Subscription onWillSleep(std::function<void()> told) override;
    platform::Subscription onDidWake(std::function<void()> told) override;

    // Main thread; the handlers have returned afterwards, except in a pause.
    void sleep();
    void wake();

    // Handlers that are registered, of both kinds.
    [[nodiscard]] std::size_t watchers() const;

private:
    using Handlers = std::map<std::uint64_t, std::function<void()>>;
    platform::Subscription add(const std::shared_ptr<Handlers>& handlers, std::function<void()> told);
    void tell(const std::shared_ptr<Handlers>& handlers);

    VirtualTime& m_time;
    FakePause& m_pause;
    std::shared_ptr<Handlers> m_willSleep = std::make_shared<Handlers>();
    std::shared_ptr<Handlers> m_didWake = std::make_shared<Handlers>();
    std::uint64_t m_lastId = 0;
};

// No Wi-Fi interface at first.
class FakeWifi : public platform::WifiInterface {
public:
    [[nodiscard]] std::optional<std::vector<std::string>> scanForNetworks() override;
    void setNetworks(std::optional<std::vector<std::string>> networks) { m_networks = std::move(networks); }

    // Runs inside the next scan.
    void whileScanning(std::function<void()> meanwhile) { m_meanwhile = std::move(meanwhile); }

    // How often the program scanned.
    [[nodiscard]] int scans() const { return m_scans; }

private:
    std::optional<std::vector<std::string>> m_networks;
    std::function<void()> m_meanwhile;
    int m_scans = 0;
};

} // namespace vorrano::support
