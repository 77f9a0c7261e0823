#pragma once

#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/LinuxSystemLog.h"
#include "platform/linux/LinuxTerminal.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "platform/qt/QtMainQueue.h"
#include "support/FakeAlerts.h"
#include "support/FakeLayouts.h"
#include "support/FakeNetwork.h"
#include "support/FakeSystem.h"
#include "support/VirtualTime.h"

#include <thread>

namespace vorrano::kernel_test {

// All that the serial layer runs on in the program: its main queue, threads, terminals and device list.
//
// Lifetime: the application object outlives it; ports and the port manager are gone before it ends.
struct ProbeWorld {
    linux_platform::LinuxSystemLog log;
    qt::QtMainQueue mainQueue{log};
    asio_platform::AsioBackgroundQueue background{log, std::this_thread::get_id()};
    platform::NotificationCentre notifications;

private:
    linux_platform::UdevDeviceRegistry m_registry{mainQueue};
    linux_platform::LinuxTerminal m_terminal{m_registry};

    // The rest of a platform, which the serial layer never asks.
    support::FakeSystemLog m_noLog;
    support::VirtualTime m_noTime{m_noLog};
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

    platform::Platform m_platform{platform::Ports{m_layouts, m_alerts, m_openPanel, mainQueue, background,
                                                  notifications, m_terminal, m_registry, m_wifi, m_reachability,
                                                  m_urlFetch, m_power, m_pause, log, m_system, ""}};
};

} // namespace vorrano::kernel_test
