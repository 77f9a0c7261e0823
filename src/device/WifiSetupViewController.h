#pragma once

#include "device/DeviceTabController.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorrano::platform {
class WifiInterface;
}

namespace vorrano::device {

// The Wi-Fi tab: gives the device the name, the security type and the password or key of the home network, reads back
// what it holds, and offers the networks in range to choose from.
//
// Controls, beside those of every device tab: the pick lists wifiSSIDButton and securityTypeButton; the text fields
// SSID, password and wepKeyField; the buttons buttonScanSSID, saveSSIDButton, saveSecurityTypeButton,
// savePasswordButton, saveKeyButton, buttonCheckSSID, buttonCheckPassword, buttonCheckNetworkConnection and
// buttonResetDevice.
class WifiSetupViewController : public DeviceTabController {
public:
    // The names of the security types and the device's own numbers for them, in the order in which they are offered.
    using SecurityTypes = std::vector<std::pair<std::string, std::uint16_t>>;
    [[nodiscard]] static SecurityTypes securityTypesDictionary();

    // Loads the view. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<WifiSetupViewController> create();

    // Connects, and looks for networks: only now, not while the tab stays on screen.
    void awakeFromNib() override;

    // Of the chosen security type; none for the blank entry.
    [[nodiscard]] std::optional<std::uint16_t> selectedSecurityKey() const { return m_selectedSecurityKey; }
    [[nodiscard]] const std::optional<std::vector<std::string>>& availableNetworks() const
    {
        return m_availableNetworks;
    }

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override;
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortRequestDidTimeout(serial::SerialPort& port,
                                     const std::shared_ptr<serial::SerialRequest>& request) override;

protected:
    WifiSetupViewController();

    // Copies the chosen network into the SSID field.
    void buttonScanSSID(platform::Control& sender);
    void securityTypeButton(platform::Control& sender);
    void saveSSIDButton(platform::Control& sender);
    void saveSecurityTypeButton(platform::Control& sender);
    void savePasswordButton(platform::Control& sender);
    void buttonSaveKey(platform::Control& sender);

    void loadSecurityTypeOptionsButton();
    // An absent key counts as 0.
    void updateUIForSecurityKey(std::optional<std::uint16_t> key);

private:
    void connectActions();
    void offerNetworks(const std::vector<std::string>& networks);

    platform::WifiInterface& m_wifi;
    platform::PopUpButton& m_wifiSSIDButton;
    platform::TextField& m_ssid;
    platform::PopUpButton& m_securityTypeButton;
    platform::TextField& m_password;
    platform::TextField& m_wepKeyField;
    platform::Button& m_savePasswordButton;
    platform::Button& m_saveKeyButton;
    platform::Subscription m_connections;
    std::optional<std::vector<std::string>> m_availableNetworks;
    std::optional<std::uint16_t> m_selectedSecurityKey;
};

} // namespace vorrano::device
