#pragma once

#include "cloud/RegisterVorranoViewController.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "unit/cloud/CloudTest.h"

#include <chrono>
#include <memory>
#include <string>

namespace vorrano::cloud {

using namespace std::chrono_literals;
using session::GlobalVariables;

inline const std::string kMac = "00:1B:44:11:3A:B7";
inline const std::string kMacReply = kMac + "\n\r";
inline const std::string kNoMacLine = "There was an error retrieving Mac Address of the Device";

inline const auto kRegistered = alertOf("Success", "Device Successfully Registered. Proceed to WiFi Setup.");
inline const auto kNoMac = alertOf("ERROR", "Failed to retrieve Mac Address of the Vorrano. Please try again");

// The operations that no person can ask for.
struct OpenRegisterTab : RegisterVorranoViewController {
    using RegisterVorranoViewController::displayErrorAlertWithString;
    using RegisterVorranoViewController::displaySuccessAlertWithString;
    using RegisterVorranoViewController::queryForMacAddress;
};

// The registration tab, the person at it, and what is on the cable.
struct RegisterTab : CloudTest {
    std::shared_ptr<RegisterVorranoViewController> controller;

    void TearDown() override
    {
        controller.reset();
        serial::SerialPortManager::releaseShared();
        CloudTest::TearDown();
    }

    support::FakeView& view() { return world.layouts.view("RegisterVorranoViewController"); }

    // As the setup window does on choosing the tab.
    void chooseTab()
    {
        controller = RegisterVorranoViewController::create();
        controller->awakeFromNib();
        world.run();
    }

    // A Vorrano that answers the MAC query with these bytes.
    support::FakeLine& plugVorranoThatAnswers(const std::string& reply)
    {
        auto& line = world.plugVorrano();
        line.onWrite([&line, reply](const std::string& bytes) {
            if (bytes == "3") {
                line.reply(reply);
            }
        });
        return line;
    }

    // Signed in as 57, with a Vorrano whose MAC has been read.
    void openWithMac()
    {
        GlobalVariables::setGlobalAccountID("57");
        plugVorranoThatAnswers(kMacReply);
        chooseTab();
    }

    void save(const std::string& name)
    {
        view().type("vorranoName", name);
        EXPECT_TRUE(view().press("saveButton"));
        world.run();
    }
};

} // namespace vorrano::cloud
