#pragma once

#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/LinuxTerminal.h"
#include "serial_pty/rig/MainLoop.h"
#include "serial_pty/rig/PtyDevices.h"
#include "serial_pty/rig/RigTerminal.h"
#include "support/FakeAlerts.h"
#include "support/FakeLayouts.h"
#include "support/FakeNetwork.h"
#include "support/FakeSystem.h"
#include "support/VirtualTime.h"

#include <cstddef>
#include <thread>

namespace vorrano::pty_rig {

// The serial layer on what it runs on in the program (the real queues, threads and terminals), without a window.
//
// Lifetime: ports are closed and gone before it ends.
class PtyWorld {
public:
    PtyWorld() = default;
    PtyWorld(const PtyWorld&) = delete;
    PtyWorld& operator=(const PtyWorld&) = delete;
    ~PtyWorld() { loop.end(); }

    support::FakeSystemLog log;
    PtyDevices devices;

private:
    // What no serial port asks for.
    support::VirtualTime m_noTime{log};
    support::FakeMainQueue m_noQueue{m_noTime};
    support::FakeLayouts m_layouts{m_noQueue};
    support::FakeAlerts m_alerts{m_noQueue};
    support::FakeOpenPanel m_openPanel{m_noQueue};
    support::FakeWifi m_wifi;
    support::FakeReachability m_reachability{m_noQueue};
    support::FakeUrlFetch m_urlFetch{m_noTime};
    support::FakePause m_pause{m_noQueue};
    support::FakePowerEvents m_power{m_noTime, m_pause};
    support::FakeOperatingSystem m_system;
    platform::NotificationCentre m_notifications;
    linux_platform::LinuxTerminal m_linux{devices};

public:
    RigTerminal terminal{m_linux};
    MainLoop loop{log};
    asio_platform::AsioBackgroundQueue background{log, std::this_thread::get_id()};

private:
    platform::Platform m_platform{platform::Ports{m_layouts, m_alerts, m_openPanel, loop, background, m_notifications,
                                                  terminal, devices, m_wifi, m_reachability, m_urlFetch, m_power,
                                                  m_pause, log, m_system, ""}};
};

// What this process has: open files, and threads.
[[nodiscard]] std::size_t openFiles();
[[nodiscard]] std::size_t threads();

} // namespace vorrano::pty_rig
