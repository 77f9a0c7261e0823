#pragma once

#include "device/ConnectionNotice.h"
#include "platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>

namespace vorrano::platform {
class MainQueue;
class PortAccess;
} // namespace vorrano::platform

namespace vorrano::serial {
class SerialPort;
class SerialPortDelegate;
} // namespace vorrano::serial

namespace vorrano::device {

// Why a tab's port could not be opened. While there is such a reason, the port is looked at every second, and opened
// as soon as its permissions let it. Of the tabs that share a port, its delegate alone does so; the others see the
// outcome. Nothing runs while the port is open, or was not opened yet.
//
// Threads: the main thread; ports that are followed are opened on it.
// Lifetime: its tab's.
class RefusedPort : public std::enable_shared_from_this<RefusedPort> {
public:
    // Calls `changed` after each change of refusal() that the port makes.
    [[nodiscard]] static std::shared_ptr<RefusedPort> create(const serial::SerialPortDelegate& tab,
                                                             std::function<void()> changed);

    // From now on this port, which the caller opens afterwards; null for none. refusal() is none then, without a call
    // of `changed`.
    void follow(std::shared_ptr<serial::SerialPort> port);

    // None for a port that is open, or was not opened yet.
    [[nodiscard]] const std::optional<PortRefusal>& refusal() const { return m_refusal; }

private:
    RefusedPort(const serial::SerialPortDelegate& tab, std::function<void()> changed);

    void update();
    [[nodiscard]] std::optional<PortRefusal> refusalWith(std::optional<int> error) const;
    void lookLater();
    void look();

    const serial::SerialPortDelegate& m_tab;
    const std::function<void()> m_changed;
    platform::MainQueue& m_mainQueue;
    const platform::PortAccess& m_portAccess;
    std::shared_ptr<serial::SerialPort> m_port;
    platform::Subscription m_failures;
    platform::Subscription m_opens;
    std::optional<PortRefusal> m_refusal;
    bool m_isLookDue = false;
};

} // namespace vorrano::device
