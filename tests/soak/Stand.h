#pragma once

#include "app/shell/VorranoAppDelegate.h"
#include "platform/Alerts.h"
#include "platform/NetworkReachability.h"
#include "platform/NotificationCentre.h"
#include "platform/OpenPanel.h"
#include "platform/Pause.h"
#include "platform/Platform.h"
#include "platform/PowerEvents.h"
#include "platform/StayAwake.h"
#include "platform/SystemLog.h"
#include "platform/UrlFetch.h"
#include "platform/WifiInterface.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "platform/posix/PosixPortAccess.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"
#include "platform/qtcore/QtMainQueue.h"
#include "simulator/service/SimulatedService.h"
#include "soak/PtySource.h"
#include "soak/PtyVorrano.h"
#include "support/FakeSystem.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <QTimer>

namespace vorrano::soak {

// One that keeps its lines would grow.
class NoLog : public platform::SystemLog {
public:
    void write(std::string_view) override {}
};

// Alerts that are answered at once, the person's way: the answers queued first, then with the first button.
class AnsweredAlerts : public platform::Alerts {
public:
    int runModal(const platform::Alert& alert) override;
    void queueAnswer(int button) { m_answers.push_back(button); }

    [[nodiscard]] std::size_t count() const { return m_count; }
    [[nodiscard]] const platform::Alert& last() const { return m_last; }

private:
    std::deque<int> m_answers;
    platform::Alert m_last;
    std::size_t m_count = 0;
};

class ChosenFile : public platform::OpenPanel {
public:
    explicit ChosenFile(std::filesystem::path file)
        : m_file(std::move(file))
    {}
    [[nodiscard]] std::vector<std::filesystem::path> runModal() override { return {m_file}; }

private:
    std::filesystem::path m_file;
};

// Pauses of another clock: they are over at once.
class NoPause : public platform::Pause {
public:
    void pause(std::chrono::nanoseconds duration) override { m_now += duration; }
    [[nodiscard]] std::chrono::nanoseconds now() const override { return m_now; }

private:
    std::chrono::nanoseconds m_now{};
};

class NoPower : public platform::PowerEvents {
public:
    platform::Subscription onWillSleep(std::function<void()>) override { return {}; }
    platform::Subscription onDidWake(std::function<void()>) override { return {}; }
};

// Never wants to sleep.
class NotSleepy : public platform::StayAwake {
public:
    platform::Subscription stayAwake(std::string_view) override { return {}; }
};

class TwoNetworks : public platform::WifiInterface {
public:
    [[nodiscard]] std::optional<std::vector<std::string>> scanForNetworks() override
    {
        return std::vector<std::string>{"Home", "Away"};
    }
};

class AlwaysReachable : public platform::NetworkReachability {
public:
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference> createWithName(const std::string&) override;
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference>
    createWithAddress(const platform::SocketAddress&) override;
};

// The simulated web service in this process.
class ServiceFetch : public platform::UrlFetch {
public:
    [[nodiscard]] std::optional<std::string> contentsOfUrl(const std::string& address) override;
    void abort() override {}
    void addAccount();

private:
    std::mutex m_mutex;
    simulator::SimulatedService m_service;
};

// What the demo is made of, in one process: the program's own windows (on Qt's offscreen platform), main queue,
// threads, device registry, terminal and logic; the simulated Vorrano behind a pseudo-terminal. In place of a person
// alerts and panel answer themselves, pauses take no time, and the web service is an object.
//
// Threads: the main thread.
class Stand {
public:
    Stand(int& argc, char** argv, std::filesystem::path image);
    Stand(const Stand&) = delete;
    Stand& operator=(const Stand&) = delete;
    ~Stand();

    void signIn();
    void plug();
    void unplug();
    // Presses a button on the screen and waits until so many alerts have been shown; gives the last one.
    platform::Alert press(const char* button, std::size_t alerts = 1);
    void chooseTab(int index);

    // Has the program's pool keep as many free threads as it ever does. Their number can be compared only then: it
    // depends on how much went on at the same time before.
    void fillThreadPool();

    // Runs the program until the condition holds; std::runtime_error when it does not in time.
    void runUntil(const std::string& what, const std::function<bool()>& condition);

    [[nodiscard]] AnsweredAlerts& alerts() { return m_alerts; }
    [[nodiscard]] PtyVorrano& vorrano() { return m_vorrano; }
    // Whether the program lists a Vorrano.
    [[nodiscard]] bool isVorranoListed();

private:
    [[nodiscard]] QWidget& find(const char* name);

    NoLog m_log;
    support::FakeOperatingSystem m_operatingSystem;
    ServiceFetch m_urlFetch;
    platform::NotificationCentre m_notificationCentre;
    qt::QtApplication m_application;
    QTimer m_look;
    qt::QtMainQueue m_mainQueue{m_log};
    qt::QtGate m_gate{m_mainQueue};
    qt::QtLayouts m_layouts{{m_gate, m_mainQueue, m_log}, [] {}};
    AnsweredAlerts m_alerts;
    ChosenFile m_openPanel;
    NoPause m_pause;
    NoPower m_powerEvents;
    NotSleepy m_stayAwake;
    PtyVorrano m_vorrano;
    PtySource* m_source = nullptr;
    std::unique_ptr<linux_platform::UdevDeviceRegistry> m_registry;
    posix_platform::PosixTerminal m_terminal;
    posix_platform::PosixPortAccess m_portAccess;
    TwoNetworks m_wifi;
    AlwaysReachable m_reachability;
    asio_platform::AsioBackgroundQueue m_backgroundQueue{m_log};
    platform::Platform m_platform;
    std::unique_ptr<shell::VorranoAppDelegate> m_program;
};

} // namespace vorrano::soak
