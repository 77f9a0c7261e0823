#pragma once

#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "support/FakeAlerts.h"
#include "support/FakeLayouts.h"
#include "support/FakeNetwork.h"
#include "support/FakePortAccess.h"
#include "support/FakeStayAwake.h"
#include "support/FakeSystem.h"
#include "support/VirtualTime.h"

namespace vorrano::support {

// A platform for the serial layer alone: what that runs on is given; of the rest, which it never asks, there are fakes.
//
// Lifetime: ends before what it was given.
class SerialPlatform {
public:
    SerialPlatform(platform::SystemLog& log, platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue,
                   platform::Terminal& terminal, platform::DeviceRegistry& devices)
        : m_noTime(log)
        , m_platform(platform::Interfaces{m_layouts, m_alerts, m_openPanel, mainQueue, backgroundQueue, notifications,
                                          terminal, devices, m_wifi, m_reachability, m_urlFetch, m_power, m_stayAwake,
                                          m_portAccess, m_pause, log, m_system, ""})
    {}

    platform::NotificationCentre notifications;

private:
    VirtualTime m_noTime;
    FakeMainQueue m_noQueue{m_noTime};
    FakeLayouts m_layouts{m_noQueue};
    FakeAlerts m_alerts{m_noQueue};
    FakeOpenPanel m_openPanel{m_noQueue};
    FakeWifi m_wifi;
    FakeReachability m_reachability{m_noQueue};
    FakeUrlFetch m_urlFetch{m_noTime};
    FakePause m_pause{m_noQueue};
    FakePowerEvents m_power{m_noTime, m_pause};
    FakeStayAwake m_stayAwake;
    FakePortAccess m_portAccess;
    FakeOperatingSystem m_system;
    platform::Platform m_platform;
};

} // namespace vorrano::support
