#pragma once

#include "platform/System.h"

#include <string>

namespace vorrano::platform {

class Alerts;
class BackgroundQueue;
class DeviceRegistry;
class Layouts;
class MainQueue;
class NetworkReachability;
class NotificationCentre;
class OpenPanel;
class OperatingSystem;
class Pause;
class PortAccess;
class PowerEvents;
class StayAwake;
class SystemLog;
class Terminal;
class UrlFetch;
class WifiInterface;

// The interfaces through which the logic reaches the system, and the one configuration value.
struct Interfaces {
    Layouts& layouts;
    Alerts& alerts;
    OpenPanel& openPanel;
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    NotificationCentre& notificationCentre;
    Terminal& terminal;
    DeviceRegistry& deviceRegistry;
    WifiInterface& wifi;
    NetworkReachability& reachability;
    UrlFetch& urlFetch;
    PowerEvents& powerEvents;
    StayAwake& stayAwake;
    PortAccess& portAccess;
    Pause& pause;
    SystemLog& systemLog;
    OperatingSystem& operatingSystem;
    // ServiceBaseURL: where the vendor's web service is, without a slash at the end.
    std::string serviceBaseUrl;
};

// The interfaces of this process. A program's main, or a test's fixture, makes it before any object of the logic; it
// outlives all of them.
//
// Threads: made on the main thread, which it remembers. current() on the main thread only, and never in a destructor;
// an object that needs an interface on another thread, or at its end, keeps it from the time when it is made.
class Platform : public Interfaces {
public:
    explicit Platform(const Interfaces& interfaces);
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    ~Platform();

    // Asserts that the caller is on the main thread.
    [[nodiscard]] static Platform& current();

private:
    System m_system;
};

} // namespace vorrano::platform
