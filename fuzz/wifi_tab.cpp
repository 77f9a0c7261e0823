// The Wi-Fi tab: what a person types and presses, and the device's replies.
#include "device/WifiSetupViewController.h"
#include "fuzz/Input.h"
#include "fuzz/TabWorld.h"

#include <array>

using namespace vorrano;
using device::DeviceCommand;
using fuzz::check;
using platform::Alert;

namespace {

constexpr std::array kButtons{
    "buttonScanSSID",  "saveSSIDButton",      "saveSecurityTypeButton",       "savePasswordButton", "saveKeyButton",
    "buttonCheckSSID", "buttonCheckPassword", "buttonCheckNetworkConnection", "buttonResetDevice"};
constexpr std::array kFields{"SSID", "password", "wepKeyField"};
constexpr std::array kTypes{"", "Open", "WEP-128", "WPA1", "WPA mixed", "WPA2", "WEP-64"};

Alert alertOf(std::optional<std::string> title, std::string text)
{
    return {std::move(title), {"OK"}, std::move(text)};
}

class Tab {
public:
    Tab()
    {
        m_world.world.wifi.setNetworks(std::vector<std::string>{"Home", "Away"});
        m_tab->awakeFromNib();
    }

    void act(fuzz::Input& input)
    {
        m_world.world.alerts.forget();
        switch (input.below(5)) {
        case 0:
            view().type(kFields[input.below(kFields.size())], input.text());
            break;
        case 1:
            view().choose("securityTypeButton", kTypes[input.below(kTypes.size())]);
            break;
        case 2:
            view().press(kButtons[input.below(kButtons.size())]);
            break;
        case 3:
            reply(input.text());
            break;
        default:
            timeOut();
        }
        m_world.checkAlerts();
        check(m_world.world.alerts.shown().size() <= 1, "one thing happens, one alert says so");
        check(view().isEnabled("wepKeyField") != view().isEnabled("password"), "a password, or a key");
    }

private:
    support::FakeView& view() { return static_cast<support::FakeView&>(*m_tab->view()); }

    void checkIdle()
    {
        check(view().alpha() == 1.0 && view().isHidden("loginProgressIndicator"), "the tab is not busy any more");
    }

    void reply(const std::string& bytes)
    {
        m_tab->serialPortDidReceiveResponseToRequest(m_world.port(), bytes, fuzz::requestOf("c"));
        std::optional<std::string> shown;
        if (fuzz::isUtf8(bytes)) {
            shown = bytes;
            if (m_tab->exchange().queryNumber() == DeviceCommand::ReadSSID) {
                std::replace(shown->begin(), shown->end(), '$', ' ');
            }
        }
        check(m_world.world.alerts.only() == alertOf(shown, "Success"), "a reply is shown as it is");
        checkIdle();
    }

    void timeOut()
    {
        m_tab->serialPortRequestDidTimeout(m_world.port(), fuzz::requestOf("c"));
        check(m_world.world.alerts.only() == alertOf("ERROR", "Please try again"), "a time-out is told");
        checkIdle();
    }

    fuzz::TabWorld m_world;
    std::shared_ptr<device::WifiSetupViewController> m_tab = device::WifiSetupViewController::create();
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::actThrough<Tab>(data, size);
    return 0;
}
