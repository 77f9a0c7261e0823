#pragma once

namespace vorrano::platform {

class BackgroundQueue;
class DeviceRegistry;
class MainQueue;
class NotificationCentre;
class PowerEvents;
class SystemLog;
class Terminal;

// The interfaces that need no window: what the serial layer runs on, in every program.
struct SystemInterfaces {
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    NotificationCentre& notificationCentre;
    Terminal& terminal;
    DeviceRegistry& deviceRegistry;
    PowerEvents& powerEvents;
    SystemLog& systemLog;
};

// Those of this process. A program with windows has them from its Platform; another one makes this object before any
// object of the logic, which it outlives.
//
// Threads: made on the main thread, which it remembers. current() on the main thread only, and never in a destructor;
// an object that needs an interface on another thread, or at its end, keeps it from the time when it is made.
class System : public SystemInterfaces {
public:
    explicit System(const SystemInterfaces& interfaces);
    System(const System&) = delete;
    System& operator=(const System&) = delete;
    ~System();

    // Asserts that the caller is on the main thread.
    [[nodiscard]] static System& current();
};

// Asserts that the caller is on the main thread of the System that there is, if there is one. For the entry points of
// objects that live on the main thread.
void assertMainThread();

} // namespace vorrano::platform
