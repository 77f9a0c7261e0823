#include "app/program/Program.h"

#include "app/shell/VorranoAppDelegate.h"
#include "cloud/LoginViewController.h"
#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/LogindPowerEvents.h"
#include "platform/linux/LogindStayAwake.h"
#include "platform/linux/NetlinkReachability.h"
#include "platform/linux/NetworkManagerWifi.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "platform/posix/LazyFetch.h"
#include "platform/posix/PosixOperatingSystem.h"
#include "platform/posix/PosixPortAccess.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/posix/StandardStreams.h"
#include "platform/qt/FontReading.h"
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"
#include "platform/qt/QtMainLoop.h"
#include "platform/qt/QtOpenPanel.h"
#include "platform/qt/QtPause.h"
#include "platform/qtcore/QtMainQueue.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>
#include <utility>

namespace vorrano::program {

namespace {

// A control call that an unplugged adapter holds up fails after 5 s.
constexpr std::chrono::seconds kLongestControlCall{6};

// The objects that are one per process, once nothing calls them any more.
void releaseProcessWideObjects()
{
    serial::SerialPortManager::releaseShared();
    session::GlobalVariables::releaseShared();
    cloud::LoginViewController::forgetNetworkScan();
}

// What needs nothing else.
struct Basics {
    posix_platform::PosixSystemLog log;
    posix_platform::PosixOperatingSystem operatingSystem;
    posix_platform::LazyFetch urlFetch{log};
    platform::NotificationCentre notificationCentre;
};

// The main thread and its windows.
struct Desktop {
    Desktop(int& argc, char** argv, Basics& basics)
        : application(argc, argv, basics.log)
        , mainQueue(basics.log)
        , gate(mainQueue)
        , loop(mainQueue, gate, basics.notificationCentre, basics.log)
        , layouts({gate, mainQueue, basics.log}, [this] { loop.quit(); })
        , alerts(gate, layouts)
        , openPanel(gate, layouts)
        , pause(mainQueue, gate)
    {
        fonts.wait();
    }

    qt::FontReading fonts;
    qt::QtApplication application;
    qt::QtMainQueue mainQueue;
    qt::QtGate gate;
    qt::QtMainLoop loop;
    qt::QtLayouts layouts;
    qt::QtAlerts alerts;
    qt::QtOpenPanel openPanel;
    qt::QtPause pause;
};

// The computer: its devices, its network, its power, and the threads that wait for them.
struct Computer {
    Computer(const Composition& composition, Basics& basics, Desktop& desktop)
        : powerEvents([&desktop](platform::Task task) { desktop.mainQueue.asyncPastAlerts(std::move(task)); })
        , deviceRegistry(composition.makeDeviceRegistry(desktop.mainQueue))
        , terminal(*deviceRegistry)
        , portAccess(*deviceRegistry)
        , wifi(composition.makeWifi())
        , backgroundQueue(basics.log)
        , reachability(composition.makeReachability(desktop.mainQueue, backgroundQueue))
    {}

    linux_platform::LogindPowerEvents powerEvents;
    linux_platform::LogindStayAwake stayAwake;
    std::unique_ptr<platform::DeviceRegistry> deviceRegistry;
    posix_platform::PosixTerminal terminal;
    posix_platform::PosixPortAccess portAccess;
    std::unique_ptr<platform::WifiInterface> wifi;
    asio_platform::AsioBackgroundQueue backgroundQueue;
    std::unique_ptr<platform::NetworkReachability> reachability;
};

// All adapters, in the order in which they need each other.
class Adapters {
public:
    Adapters(int& argc, char** argv, const Composition& composition)
        : m_desktop(argc, argv, m_basics)
        , m_computer(composition, m_basics, m_desktop)
        , m_platform(interfaces(composition))
    {}

    qt::QtMainLoop& loop() { return m_desktop.loop; }

    // Ends the fetches and the threads. False when a thread is stuck in the kernel.
    bool endBackgroundWork()
    {
        m_basics.urlFetch.abort();
        m_computer.backgroundQueue.stop();
        return m_computer.backgroundQueue.joinWithin(kLongestControlCall);
    }

private:
    platform::Interfaces interfaces(const Composition& composition)
    {
        return {
            m_desktop.layouts,
            m_desktop.alerts,
            m_desktop.openPanel,
            m_desktop.mainQueue,
            m_computer.backgroundQueue,
            m_basics.notificationCentre,
            m_computer.terminal,
            *m_computer.deviceRegistry,
            *m_computer.wifi,
            *m_computer.reachability,
            m_basics.urlFetch,
            m_computer.powerEvents,
            m_computer.stayAwake,
            m_computer.portAccess,
            m_desktop.pause,
            m_basics.log,
            m_basics.operatingSystem,
            composition.serviceBaseUrl,
        };
    }

    Basics m_basics;
    Desktop m_desktop;
    Computer m_computer;
    platform::Platform m_platform;
};

} // namespace

Composition thisComputer(std::string serviceBaseUrl)
{
    return {
        .serviceBaseUrl = std::move(serviceBaseUrl),
        .makeDeviceRegistry =
            [](platform::MainQueue& queue) { return std::make_unique<linux_platform::UdevDeviceRegistry>(queue); },
        .makeWifi = [] { return std::make_unique<linux_platform::NetworkManagerWifi>(); },
        .makeReachability =
            [](platform::MainQueue& queue, platform::BackgroundQueue& background) {
                return std::make_unique<linux_platform::NetlinkReachability>(queue, background);
            },
    };
}

int run(int argc, char** argv, const Composition& composition)
{
    posix_platform::occupyStandardStreams();
    Adapters adapters(argc, argv, composition);
    std::optional<shell::VorranoAppDelegate> delegate(std::in_place);
    const int status = adapters.loop().run([&] { delegate->applicationDidFinishLaunching(); });
    delegate.reset();
    releaseProcessWideObjects();
    if (!adapters.endBackgroundWork()) {
        std::_Exit(status);
    }
    return status;
}

} // namespace vorrano::program
