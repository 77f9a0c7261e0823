#include "device/WifiSetupViewController.h"

#include "device/DeviceTexts.h"
#include "device/NetworkInput.h"
#include "device/WifiTexts.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "platform/WifiInterface.h"

namespace vorrano::device {

using platform::Control;
using platform::Platform;

std::shared_ptr<WifiSetupViewController> WifiSetupViewController::create()
{
    const auto controller = platform::destroyedOnMainThread(new WifiSetupViewController, Platform::current().mainQueue);
    controller->connectActions();
    return controller;
}

WifiSetupViewController::WifiSetupViewController()
    : DeviceTabController("WifiSetupViewController")
    , m_wifi(Platform::current().wifi)
    , m_wifiSSIDButton(view()->popUpButton("wifiSSIDButton"))
    , m_ssid(view()->textField("SSID"))
    , m_securityTypeButton(view()->popUpButton("securityTypeButton"))
    , m_password(view()->textField("password"))
    , m_wepKeyField(view()->textField("wepKeyField"))
    , m_savePasswordButton(view()->button("savePasswordButton"))
    , m_saveKeyButton(view()->button("saveKeyButton"))
{}

void WifiSetupViewController::connectActions()
{
    using Tab = WifiSetupViewController;
    m_securityTypeButton.onChoose(handler(&Tab::securityTypeButton));
    connect("buttonScanSSID", &Tab::buttonScanSSID);
    connect("saveSSIDButton", &Tab::saveSSIDButton);
    connect("saveSecurityTypeButton", &Tab::saveSecurityTypeButton);
    connect("savePasswordButton", &Tab::savePasswordButton);
    connect("saveKeyButton", &Tab::buttonSaveKey);
    connectQuery("buttonCheckSSID", DeviceCommand::ReadSSID);
    connectQuery("buttonCheckPassword", DeviceCommand::ReadPassword);
    connectQuery("buttonCheckNetworkConnection", DeviceCommand::ConnectivityStatus);
    connectReset("buttonResetDevice", DeviceCommand::ResetDevice, device_text::kFinishedResettingDevice);
}

void WifiSetupViewController::awakeFromNib()
{
    DeviceTabController::awakeFromNib();
    m_connections = observeConnections();
    loadSecurityTypeOptionsButton();
    m_availableNetworks = m_wifi.scanForNetworks();
    if (m_availableNetworks) {
        offerNetworks(*m_availableNetworks);
    }
}

void WifiSetupViewController::offerNetworks(const std::vector<std::string>& networks)
{
    m_wifiSSIDButton.removeAllItems();
    m_wifiSSIDButton.addItems(networks);
    m_wepKeyField.setEnabled(false);
    m_saveKeyButton.setEnabled(false);
    if (!networks.empty()) {
        m_wifiSSIDButton.selectItem(networks.front());
        m_ssid.setText(networks.front());
    }
}

WifiSetupViewController::SecurityTypes WifiSetupViewController::securityTypesDictionary() { return securityTypes(); }

void WifiSetupViewController::loadSecurityTypeOptionsButton()
{
    std::vector<std::string> titles = {""};
    for (const auto& [name, key] : securityTypesDictionary()) {
        titles.push_back(name);
    }
    m_securityTypeButton.removeAllItems();
    m_securityTypeButton.addItems(titles);
}

void WifiSetupViewController::updateUIForSecurityKey(std::optional<std::uint16_t> key)
{
    const bool wep = hasWepKey(key);
    m_wepKeyField.setEnabled(wep);
    m_saveKeyButton.setEnabled(wep);
    m_password.setEnabled(!wep);
    m_savePasswordButton.setEnabled(!wep);
}

void WifiSetupViewController::buttonScanSSID(Control&)
{
    if (const auto title = m_wifiSSIDButton.titleOfSelectedItem()) {
        m_ssid.setText(*title);
    }
}

void WifiSetupViewController::securityTypeButton(Control&)
{
    m_selectedSecurityKey = numberOf(securityTypes(), m_securityTypeButton.titleOfSelectedItem().value_or(""));
    updateUIForSecurityKey(m_selectedSecurityKey);
}

void WifiSetupViewController::saveSSIDButton(Control& sender)
{
    const auto ssid = m_ssid.text();
    if (const auto refusal = refusalOfSSID(ssid)) {
        displayAlertWithMessage(refusal);
        return;
    }
    send(sender, DeviceCommand::SetSSID, replaceSSIDSpacesWithDollarSign(ssid));
}

void WifiSetupViewController::saveSecurityTypeButton(Control& sender)
{
    if (m_securityTypeButton.titleOfSelectedItem() == "") {
        displayAlertWithMessage(wifi_text::kNoSecurityType);
        return;
    }
    send(sender, DeviceCommand::SetSecurityType, characterOfLow16Bits(m_selectedSecurityKey.value_or(0)));
}

void WifiSetupViewController::savePasswordButton(Control& sender)
{
    const auto password = m_password.text();
    if (const auto refusal = refusalOfWifiTabPassword(password)) {
        displayAlertWithMessage(refusal);
        return;
    }
    send(sender, DeviceCommand::SetPassword, password);
}

void WifiSetupViewController::buttonSaveKey(Control& sender)
{
    const auto key = m_wepKeyField.text();
    if (const auto refusal = refusalOfWepKey(key)) {
        displayAlertWithMessage(refusal);
        return;
    }
    send(sender, DeviceCommand::SetWepKey, key);
}

serial::SerialPortCallbacks WifiSetupViewController::callbacks() const
{
    using enum serial::SerialPortCallback;
    return {WasRemovedFromSystem, DidReceiveResponseToRequest, RequestDidTimeout};
}

void WifiSetupViewController::serialPortDidReceiveResponseToRequest(serial::SerialPort&, const serial::Bytes& response,
                                                                    const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    m_exchange.receiveResponse(response);
    hideAndStopProgressIndicator(nullptr);
    displayAlert(m_exchange.receivedString(), device_text::kSuccess);
}

void WifiSetupViewController::serialPortRequestDidTimeout(serial::SerialPort&,
                                                          const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    displayAlertWithMessage(device_text::kTryAgain);
    hideAndStopProgressIndicator(nullptr);
}

} // namespace vorrano::device
