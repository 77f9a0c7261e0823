#pragma once

#include "device/DeviceTabController.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::device {

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::Alert;
using support::FakeLine;
using support::FakeView;
using testing::ElementsAre;
using testing::IsEmpty;

inline Alert alertOf(std::optional<std::string> messageText, std::string informativeText)
{
    return {std::move(messageText), {"OK"}, std::move(informativeText), platform::AlertStyle::Informational};
}

inline Alert error(std::string text) { return alertOf("ERROR", std::move(text)); }

inline const Alert kTryAgain = error("Please try again");

// A device's tab, the person at it, and what is on the cable.
template <class Tab>
class DeviceTabTest : public testing::Test {
protected:
    ~DeviceTabTest() override
    {
        tab.reset();
        serial::SerialPortManager::releaseShared();
    }

    // As the setup window does on choosing the tab: the controller before goes once the new one is there.
    void chooseTab()
    {
        tab = Tab::create();
        tab->awakeFromNib();
        world.run();
    }

    // The same, with a Vorrano on the cable.
    FakeLine& chooseTabWithVorrano()
    {
        auto& line = world.plugVorrano();
        chooseTab();
        return line;
    }

    [[nodiscard]] FakeView& view() { return static_cast<FakeView&>(*tab->view()); }
    [[nodiscard]] FakeLine& line() { return world.terminal.line("/dev/cu.usbserial-A1B2"); }

    void press(const std::string& button)
    {
        EXPECT_TRUE(view().press(button)) << button;
        world.run();
    }

    // One chunk of the device's.
    void reply(const std::string& bytes)
    {
        line().reply(bytes);
        world.run();
    }

    [[nodiscard]] bool isBusy()
    {
        const bool dimmed = view().alpha() == 0.3;
        const auto& spinner = view().progressIndicator("loginProgressIndicator");
        EXPECT_EQ(spinner.isAnimating(), dimmed);
        EXPECT_EQ(spinner.isHidden(), !dimmed);
        return dimmed;
    }

    [[nodiscard]] const std::vector<Alert>& alerts() const { return world.alerts.shown(); }

    [[nodiscard]] std::vector<std::string> writes()
    {
        std::vector<std::string> bytes;
        for (const auto& write : line().writes()) {
            bytes.push_back(write.bytes);
        }
        return bytes;
    }

    support::World world;
    std::shared_ptr<Tab> tab;
};

} // namespace vorrano::device
