#pragma once

#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "support/FakeAlerts.h"
#include "support/FakeBackgroundQueue.h"
#include "support/FakeDeviceRegistry.h"
#include "support/FakeLayouts.h"
#include "support/FakeMainQueue.h"
#include "support/FakeNetwork.h"
#include "support/FakePortAccess.h"
#include "support/FakeStayAwake.h"
#include "support/FakeSystem.h"
#include "support/FakeTerminal.h"
#include "support/VirtualTime.h"

#include <string>
#include <utility>

namespace vorrano::support {

// All ports of a program, as fakes on a virtual clock, and the Platform of them. A fixture has one as its first member.
//
// Threads: the thread that makes it is the main thread. See VirtualTime for the others.
// Lifetime: objects of the logic that are still alive at its end may hold open ports: their background tasks are ended
// by it. What is process-wide is released by the fixture before that.
class World {
public:
    explicit World(std::string serviceBaseUrl = "https://service.example");
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    ~World();

    // Everything that is ready, main and background, until idle; the clock stands still.
    void run() { time.run(); }

    // The clock goes on; everything that falls due runs at its exact time.
    void advance(Nanoseconds duration) { time.advance(duration); }
    // The clock goes on by this much while the main thread is busy; inside a task of the main thread.
    void pass(Nanoseconds duration)
    {
        time.waitUntil([] { return false; }, time.now() + duration);
    }

    // Does something in the test's name when the clock has gone on so far, also while the main thread waits.
    void later(Nanoseconds delay, Task task) { time.at(time.now() + delay, std::move(task)); }
    [[nodiscard]] Nanoseconds now() const { return time.now(); }

    // A device in the registry and its line, at /dev/cu.usbserial-SERIAL; the node is the first free ttyUSB.
    FakeLine& plugVorrano(const std::string& serial = "A1B2");

    // Any other; its line is at its callout path (which it must have).
    FakeLine& plugSerialDevice(const DeviceProperties& properties);

    // A device that only has that callout path; its node is made up from it.
    FakeLine& plugSerialDevice(const std::string& calloutPath);

    // Pulls the plug: the line is hung up, and the registry tells of it.
    void unplug(const std::string& calloutPath);
    void unplug(FakeLine& line) { unplug(line.path()); }

    FakeSystemLog log;
    VirtualTime time;
    FakeMainQueue mainQueue;
    FakeBackgroundQueue backgroundQueue;
    FakeLayouts layouts;
    FakeAlerts alerts;
    FakeOpenPanel openPanel;
    platform::NotificationCentre notificationCentre;
    FakeTerminal terminal;
    FakeDeviceRegistry registry;
    FakeWifi wifi;
    FakeReachability reachability;
    FakeUrlFetch urlFetch;
    FakePause pause;
    FakePowerEvents power;
    FakeStayAwake stayAwake;
    FakePortAccess portAccess;
    FakeOperatingSystem os;
    platform::Platform platform;
};

} // namespace vorrano::support
