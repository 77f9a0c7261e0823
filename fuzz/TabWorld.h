#pragma once

#include "cloud/LoginViewController.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "fuzz/Utf8.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"
#include "support/World.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace vorrano::fuzz {

// A world of one input, without a device; and a port to call a tab's callbacks with, whose device was there once.
class TabWorld {
public:
    TabWorld()
    {
        // What the fakes forbid ends the program, too.
        GTEST_FLAG_SET(break_on_failure, true);
        constexpr auto kPath = "/dev/cu.usbserial-A1B2";
        world.registry.plug({.calloutPath = kPath, .dialinPath = "/dev/ttyUSB0"});
        m_port = serial::SerialPort::serialPortWithPath(kPath);
        world.registry.unplug(kPath);
    }
    TabWorld(const TabWorld&) = delete;
    TabWorld& operator=(const TabWorld&) = delete;
    ~TabWorld()
    {
        m_port.reset();
        serial::SerialPortManager::releaseShared();
        cloud::LoginViewController::forgetNetworkScan();
        session::GlobalVariables::releaseShared();
    }

    [[nodiscard]] serial::SerialPort& port() { return *m_port; }

    // What every alert must be, whatever came in.
    void checkAlerts() const
    {
        for (const auto& alert : world.alerts.shown()) {
            check(isUtf8(alert.messageText.value_or("")), "an alert is UTF-8");
            check(!alert.buttons.empty(), "an alert can be answered");
        }
    }

    support::World world;

private:
    std::shared_ptr<serial::SerialPort> m_port;
};

// Lets a new tab do what the input says, to its end.
template <class Tab>
void actThrough(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    Tab tab;
    while (!input.atEnd()) {
        tab.act(input);
    }
}

// A request as a tab would have sent it: only its bytes are looked at.
inline std::shared_ptr<serial::SerialRequest> requestOf(std::string bytes)
{
    return serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        std::move(bytes), {}, std::chrono::duration<double>(2), {});
}

} // namespace vorrano::fuzz
