#pragma once

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

// Everything the logic reaches the system through, and the one configuration value.
struct Ports {
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

// The ports of this process. Made by a program's main, or by a test's fixture, before any object of the logic and
// outliving all of them.
//
// Threads: current() on the main thread only, when an object is made, which then keeps what it needs; never in a
// destructor.
class Platform : public Ports {
public:
    explicit Platform(Ports ports);
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    ~Platform();

    [[nodiscard]] static Platform& current();
};

} // namespace vorrano::platform
