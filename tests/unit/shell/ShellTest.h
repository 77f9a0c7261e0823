#pragma once

#include "app/shell/SetupMenuViewController.h"
#include "app/shell/VorranoAppDelegate.h"
#include "cloud/LoginViewController.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vorrano::shell {

using session::GlobalVariables;
using support::FakeView;
using testing::ElementsAre;
using testing::IsEmpty;

inline const std::vector<std::string> kTabs = {"Account Information", "Register Vorrano", "Wifi Setup", "Utilities"};

// The program from its start on, and the person at it.
class ShellTest : public testing::Test {
protected:
    ShellTest()
    {
        world.layouts.prepare("SetupMenuViewController",
                              [this](FakeView& layout) { layout.setTabs("setupTabView", m_tabs); });
    }
    ~ShellTest() override
    {
        m_program.reset();
        serial::SerialPortManager::releaseShared();
        cloud::LoginViewController::forgetNetworkScan();
        GlobalVariables::releaseShared();
    }

    void launch()
    {
        m_program = std::make_unique<VorranoAppDelegate>();
        m_program->applicationDidFinishLaunching();
        world.run();
    }
    void quit() { m_program.reset(); }

    void setTabs(std::vector<std::string> tabs) { m_tabs = std::move(tabs); }

    [[nodiscard]] VorranoAppDelegate& program() { return *m_program; }
    [[nodiscard]] FakeView& login() { return world.layouts.view("LoginViewController"); }
    [[nodiscard]] FakeView& agreement() { return world.layouts.view("EULAWindowViewController"); }
    [[nodiscard]] FakeView& setup() { return world.layouts.view("SetupMenuViewController"); }
    [[nodiscard]] bool isVisible(const std::string& window)
    {
        return world.layouts.hasWindow(window) && world.layouts.window(window).isVisible();
    }

    void press(FakeView& view, const std::string& button)
    {
        EXPECT_TRUE(view.press(button)) << button;
        world.run();
    }
    void openAgreement() { press(login(), "registerVorranoButton"); }
    void openSetup()
    {
        openAgreement();
        press(agreement(), "buttonAccept");
    }
    void chooseTab(int index)
    {
        EXPECT_TRUE(setup().selectTab("setupTabView", index));
        world.run();
    }
    // What the page shows: the view loaded last under that name, or null.
    [[nodiscard]] std::shared_ptr<FakeView> page(int index) { return setup().pageOf("setupTabView", index); }

    support::World world;

private:
    std::vector<std::string> m_tabs = kTabs;
    std::unique_ptr<VorranoAppDelegate> m_program;
};

} // namespace vorrano::shell
