#pragma once

#include "platform/NotificationCentre.h"
#include "serial/SerialPortManager.h"
#include "support/World.h"
#include "unit/serial/RecordingDelegate.h"
#include "unit/serial/SerialPortFixture.h"

#include <any>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::serial {

inline constexpr auto kA = "/dev/cu.usbserial-A1B2";
inline constexpr auto kB = "/dev/cu.usbserial-C3D4";

// A manager made on demand, and what it posts.
class PortManager : public testing::Test {
protected:
    ~PortManager() override
    {
        SerialPortManager::releaseShared();
        world.advance(200ms);
        EXPECT_EQ(world.terminal.descriptorsInUse(), 0U);
    }

    std::shared_ptr<SerialPortManager> manager() { return SerialPortManager::sharedSerialPortManager(); }

    [[nodiscard]] static Lines pathsOf(const SerialPorts& ports)
    {
        Lines paths;
        for (const auto& port : ports) {
            paths.push_back(port->path());
        }
        return paths;
    }
    Lines paths() { return pathsOf(manager()->availablePorts()); }

    // Writes down each notification with the paths it carries: "connected: A, B".
    void listen()
    {
        using namespace std::string_literals;
        const auto note = [this](std::string_view name, std::string_view key) {
            m_subscriptions.push_back(
                world.notificationCentre.observe(name, m_ear, [this, key](const platform::Notification& given) {
                    EXPECT_EQ(given.sender, manager().get());
                    EXPECT_EQ(given.userInfo.size(), 1U);
                    carried = std::any_cast<SerialPorts>(given.userInfo.at(std::string(key)));
                    auto text = std::string(given.name) + ":";
                    for (const auto& path : pathsOf(carried)) {
                        text += " " + path;
                    }
                    posted.push_back(text);
                }));
        };
        note(kSerialPortWasConnectedNotification, kConnectedSerialPortsKey);
        note(kSerialPortWasDisconnectedNotification, kDisconnectedSerialPortsKey);
    }

    std::shared_ptr<RecordingDelegate> listenTo(const std::shared_ptr<SerialPort>& port)
    {
        auto delegate = std::make_shared<RecordingDelegate>(world.mainQueue);
        port->setDelegate(delegate);
        return delegate;
    }

    support::World world;
    Lines posted;
    SerialPorts carried;

private:
    std::shared_ptr<int> m_ear = std::make_shared<int>(0);
    std::vector<platform::Subscription> m_subscriptions;
};

} // namespace vorrano::serial
