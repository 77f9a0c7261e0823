#include "device/UtilitiesViewController.h"

#include "device/DeviceTexts.h"
#include "device/NetworkInput.h"
#include "device/UtilitiesTexts.h"
#include "platform/ActionOf.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "platform/SystemLog.h"
#include "serial/SerialPort.h"

#include <exception>

namespace vorrano::device {

using platform::Control;
using platform::Platform;

std::shared_ptr<UtilitiesViewController> UtilitiesViewController::create()
{
    const auto controller = platform::destroyedOnMainThread(new UtilitiesViewController, Platform::current().mainQueue);
    controller->connectActions();
    return controller;
}

UtilitiesViewController::UtilitiesViewController()
    : DeviceTabController("UtilitiesViewController")
    , m_setSSID(view()->textField("setSSID"))
    , m_setPassword(view()->textField("setPassword"))
    , m_setThrottleTextField(view()->textField("setThrottleTextField"))
    , m_temperatureDisplayUnitButton(view()->popUpButton("temperatureDisplayUnitButton"))
    , m_replies(m_exchange)
    , m_firmwareUpdate(*this, *view(), busyDisplay())
{}

void UtilitiesViewController::connectActions()
{
    using Tab = UtilitiesViewController;
    connectQuery("buttonPowerStatus", DeviceCommand::PowerStatus);
    connectQuery("buttonMacAddress", DeviceCommand::MacAddress);
    connectQuery("buttonGetSSID", DeviceCommand::ReadSSID);
    connectQuery("buttonGetNetworkPassword", DeviceCommand::ReadPassword);
    connectQuery("buttonGetThrottle", DeviceCommand::ReadThrottle);
    connectRawQuery("buttonFirmwareVersion", DeviceCommand::FirmwareVersion);
    connectRawQuery("wifiFirmwareQuery", DeviceCommand::WifiFirmwareVersion);
    connectRawQuery("buttonADC", DeviceCommand::AdcVersion);
    connectRawQuery("buttonGetTemperatureUnit", DeviceCommand::ReadTemperatureUnit);
    connectReset("resetDevice", DeviceCommand::ResetDevice, device_text::kFinishedResettingDevice);
    connectReset("resetModem", DeviceCommand::ResetModem, utilities_text::kFinishedResettingModem);
    connect("buttonNetworkConnectivityStatus", &Tab::buttonNetworkConnectivityStatus);
    connect("buttonSetSSID", &Tab::buttonSetSSID);
    connect("buttonSetPassword", &Tab::buttonSetPassword);
    connect("buttonSetThrottle", &Tab::buttonSetThrottle);
    connect("buttonSetTemperatureUnit", &Tab::buttonSetTemperatureUnit);
    connect("buttonUpdateFirmware", &Tab::buttonUpdateFirmware);
}

void UtilitiesViewController::awakeFromNib()
{
    DeviceTabController::awakeFromNib();
    setUpTemperatureDisplayPopupButton();
    observeConnections().keep();
}

UtilitiesViewController::TemperatureUnits UtilitiesViewController::tempDisplayDictionary()
{
    return temperatureUnits();
}

void UtilitiesViewController::setUpTemperatureDisplayPopupButton()
{
    std::vector<std::string> titles;
    for (const auto& [name, number] : tempDisplayDictionary()) {
        titles.push_back(name);
    }
    m_temperatureDisplayUnitButton.removeAllItems();
    m_temperatureDisplayUnitButton.addItems(titles);
    m_temperatureDisplayUnitButton.selectItem(titles[1]);
}

void UtilitiesViewController::connectRawQuery(std::string_view button, DeviceCommand command)
{
    view()->button(button).onPress(platform::actionOf(weak_from_this(), [command](DeviceTabController& self, Control&) {
        static_cast<UtilitiesViewController&>(self).writeQuery(command);
    }));
}

void UtilitiesViewController::writeQuery(DeviceCommand command)
{
    m_exchange.setQueryNumber(command);
    writeAwaitingAck(bytesOf(command));
}

void UtilitiesViewController::writeAwaitingAck(const serial::Bytes& data)
{
    write(data);
    m_exchange.setWaitingForAck();
}

void UtilitiesViewController::buttonNetworkConnectivityStatus(Control&)
{
    m_exchange.setQueryNumber(DeviceCommand::ConnectivityStatus);
    write(bytesOf(DeviceCommand::ConnectivityStatus));
}

void UtilitiesViewController::buttonSetSSID(Control& sender)
{
    const auto ssid = m_setSSID.text();
    if (const auto refusal = refusalOfSSID(ssid)) {
        displayAlertWithMessage(refusal);
        return;
    }
    send(sender, DeviceCommand::SetSSID, replaceSSIDSpacesWithDollarSign(ssid));
}

void UtilitiesViewController::buttonSetPassword(Control& sender)
{
    const auto password = m_setPassword.text();
    if (const auto refusal = refusalOfUtilitiesTabPassword(password)) {
        displayAlertWithMessage(refusal);
        return;
    }
    send(sender, DeviceCommand::SetPassword, password);
}

void UtilitiesViewController::buttonSetThrottle(Control& sender)
{
    // Even when the input is refused.
    m_exchange.setQueryNumber(DeviceCommand::SetThrottle);
    m_exchange.setWaitingForAck();
    const auto throttle = throttleOf(m_setThrottleTextField.text());
    if (!throttle) {
        displayAlert(utilities_text::kInvalidThrottle, utilities_text::kThrottleRange);
        return;
    }
    send(sender, DeviceCommand::SetThrottle, characterOfLow8Bits(storedThrottle(*throttle)));
}

void UtilitiesViewController::buttonSetTemperatureUnit(Control&)
{
    m_exchange.setQueryNumber(DeviceCommand::SetTemperatureUnit);
    m_exchange.setWaitingForAck();
    write(bytesOf(DeviceCommand::SetTemperatureUnit));
    const auto unit = m_temperatureDisplayUnitButton.titleOfSelectedItem().value_or("");
    write(characterOfLow16Bits(numberOf(temperatureUnits(), unit).value_or(0)));
}

void UtilitiesViewController::buttonUpdateFirmware(Control&) { m_firmwareUpdate.buttonUpdateFirmware(); }

serial::SerialPortCallbacks UtilitiesViewController::callbacks() const
{
    using enum serial::SerialPortCallback;
    return {WasRemovedFromSystem, DidReceiveData, DidReceiveResponseToRequest, RequestDidTimeout};
}

void UtilitiesViewController::serialPortDidReceiveResponseToRequest(serial::SerialPort&, const serial::Bytes& response,
                                                                    const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    m_exchange.receiveResponse(response);
    const bool throttle = m_exchange.queryNumber() == DeviceCommand::ReadThrottle;
    hideAndStopProgressIndicator(nullptr);
    if (throttle) {
        m_replies.displayThrottle();
    } else {
        displayAlert(m_exchange.receivedString(), device_text::kSuccess);
    }
}

void UtilitiesViewController::serialPortRequestDidTimeout(serial::SerialPort&,
                                                          const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    hideAndStopProgressIndicator(nullptr);
    displayAlertWithMessage(device_text::kTryAgain);
}

void UtilitiesViewController::serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data)
{
    platform::assertMainThread();
    m_exchange.receiveChunk(data);
    m_exchange.setChunkSecret(port.isReceivedDataSecret());
    routeToBootloader();
    routeByQueryNumber();
}

void UtilitiesViewController::routeToBootloader()
{
    try {
        m_firmwareUpdate.bootloaderDidAnswer(m_exchange.receivedString());
    } catch (const std::exception&) {
        // Whatever becomes of the update, the chunk is still read as an answer.
    }
}

void UtilitiesViewController::routeByQueryNumber()
{
    if (!m_exchange.queryNumber()) {
        return;
    }
    switch (*m_exchange.queryNumber()) {
    case DeviceCommand::ReadTemperatureUnit:
        m_replies.displayTemperatureUnit();
        break;
    case DeviceCommand::SetTemperatureUnit:
        m_replies.displayTemperatureUnitSetAlert();
        break;
    case DeviceCommand::AdcVersion:
        m_replies.displayADC();
        break;
    case DeviceCommand::ConnectivityStatus:
        m_replies.displayNetworkConnectivity();
        break;
    case DeviceCommand::FirmwareVersion:
        displayFirmwareVersion();
        break;
    case DeviceCommand::WifiFirmwareVersion:
        m_replies.displayWifiFirmwareVersion();
        break;
    default:
        break;
    }
}

void UtilitiesViewController::displayFirmwareVersion()
{
    if (!m_firmwareUpdate.readVersion()) {
        m_replies.displayFirmwareVersion();
        return;
    }
    m_firmwareUpdate.checkLatestFirmware(m_exchange.receivedString().value_or(""));
    m_exchange.forgetReceivedString();
}

bool UtilitiesViewController::dataBufferHasCompleteMacAddressPacket() const
{
    return kMacPacket.isWhole(m_exchange.incomingDataBuffer());
}

void UtilitiesViewController::test()
{
    displayAlert(utilities_text::kTestPassed, utilities_text::kFirmwareVersion);
    m_exchange.forgetReceivedString();
}

} // namespace vorrano::device
