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
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"
#include "platform/qt/QtMainLoop.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtOpenPanel.h"
#include "platform/qt/QtPause.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace vorrano::program {

namespace {

// A control call that an unplugged adapter holds up fails after 5 s.
constexpr std::chrono::seconds kLongestControlCall{6};

// The serial layer takes 0 for "closed", so no port may get the number of a standard stream that the caller closed.
void occupyStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    ::close(descriptor);
}

// The objects that are one per process, once nothing calls them any more.
void releaseProcessWideObjects()
{
    serial::SerialPortManager::releaseShared();
    session::GlobalVariables::releaseShared();
    cloud::LoginViewController::forgetNetworkScan();
}

// The adapters in the order in which they need each other.
class Adapters {
public:
    Adapters(int& argc, char** argv, const Composition& composition)
        : m_urlFetch(m_log)
        , m_application(argc, argv, m_log)
        , m_mainQueue(m_log)
        , m_gate(m_mainQueue)
        , m_loop(m_mainQueue, m_gate, m_notificationCentre, m_log)
        , m_layouts({m_gate, m_mainQueue, m_log}, [this] { m_loop.quit(); })
        , m_alerts(m_gate, m_layouts)
        , m_openPanel(m_gate, m_layouts)
        , m_pause(m_mainQueue, m_gate)
        , m_powerEvents([this](platform::Task task) { m_mainQueue.asyncPastAlerts(std::move(task)); })
        , m_deviceRegistry(composition.makeDeviceRegistry(m_mainQueue))
        , m_terminal(*m_deviceRegistry)
        , m_portAccess(*m_deviceRegistry)
        , m_wifi(composition.makeWifi())
        , m_backgroundQueue(m_log)
        , m_reachability(composition.makeReachability(m_mainQueue, m_backgroundQueue))
        , m_platform(platform::Interfaces{m_layouts, m_alerts, m_openPanel, m_mainQueue, m_backgroundQueue,
                                          m_notificationCentre, m_terminal, *m_deviceRegistry, *m_wifi, *m_reachability,
                                          m_urlFetch, m_powerEvents, m_stayAwake, m_portAccess, m_pause, m_log,
                                          m_operatingSystem, composition.serviceBaseUrl})
    {}

    qt::QtMainLoop& loop() { return m_loop; }

    // Ends the fetches and the threads. False when a thread is stuck in the kernel.
    bool endBackgroundWork()
    {
        m_urlFetch.abort();
        m_backgroundQueue.stop();
        return m_backgroundQueue.joinWithin(kLongestControlCall);
    }

private:
    posix_platform::PosixSystemLog m_log;
    posix_platform::PosixOperatingSystem m_operatingSystem;
    posix_platform::LazyFetch m_urlFetch;
    platform::NotificationCentre m_notificationCentre;
    qt::QtApplication m_application;
    qt::QtMainQueue m_mainQueue;
    qt::QtGate m_gate;
    qt::QtMainLoop m_loop;
    qt::QtLayouts m_layouts;
    qt::QtAlerts m_alerts;
    qt::QtOpenPanel m_openPanel;
    qt::QtPause m_pause;
    linux_platform::LogindPowerEvents m_powerEvents;
    linux_platform::LogindStayAwake m_stayAwake;
    std::unique_ptr<platform::DeviceRegistry> m_deviceRegistry;
    posix_platform::PosixTerminal m_terminal;
    posix_platform::PosixPortAccess m_portAccess;
    std::unique_ptr<platform::WifiInterface> m_wifi;
    asio_platform::AsioBackgroundQueue m_backgroundQueue;
    std::unique_ptr<platform::NetworkReachability> m_reachability;
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
    occupyStandardStreams();
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
