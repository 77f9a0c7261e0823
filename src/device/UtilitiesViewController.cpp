#include "device/UtilitiesViewController.h"

#include "device/DeviceTexts.h"
#include "device/NetworkInput.h"
#include "device/UtilitiesTexts.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/SystemLog.h"
#include "serial/SerialPort.h"
#include "text/Text.h"

#include <algorithm>
#include <exception>

namespace vorrano::device {

using platform::Control;
using platform::Platform;

namespace {

// 20 is refused, though the message names it.
constexpr std::int64_t kSmallestThrottle = 21;
constexpr std::int64_t kLargestThrottle = 90;
constexpr std::size_t kShortestFirmwareVersion = 6;
constexpr std::size_t kShortestWifiFirmwareVersion = 13;
constexpr std::string_view kZeroLine = "0\n\r";
constexpr std::string_view kOneLine = "1\n\r";
constexpr std::string_view kOkLine = "OK\n\r";
constexpr const char* kWithheld = "(withheld)";

std::optional<std::string_view> unitOfReply(const std::optional<std::string>& reply)
{
    if (reply == kZeroLine) {
        return utilities_text::kFahrenheit;
    }
    if (reply == kOneLine) {
        return utilities_text::kCelsius;
    }
    return std::nullopt;
}

std::uint16_t numberOfUnit(const std::optional<std::string>& title)
{
    const auto units = UtilitiesViewController::tempDisplayDictionary();
    const auto found = std::find_if(units.begin(), units.end(), [&](const auto& unit) { return unit.first == title; });
    return found == units.end() ? std::uint16_t{0} : found->second;
}

} // namespace

std::shared_ptr<UtilitiesViewController> UtilitiesViewController::create()
{
    const std::shared_ptr<UtilitiesViewController> controller(
        new UtilitiesViewController,
        platform::MainThreadDeleter<UtilitiesViewController>(Platform::current().mainQueue));
    controller->connectActions();
    return controller;
}

UtilitiesViewController::UtilitiesViewController()
    : DeviceTabController("UtilitiesViewController")
    , m_systemLog(Platform::current().systemLog)
    , m_setSSID(view()->textField("setSSID"))
    , m_setPassword(view()->textField("setPassword"))
    , m_setThrottleTextField(view()->textField("setThrottleTextField"))
    , m_temperatureDisplayUnitButton(view()->popUpButton("temperatureDisplayUnitButton"))
    , m_firmwareUpdate(*this)
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
    connect("buttonNetworkConnectivityStatus", &Tab::buttonNetworkConnectivityStatus);
    connect("buttonSetSSID", &Tab::buttonSetSSID);
    connect("buttonSetPassword", &Tab::buttonSetPassword);
    connect("buttonSetThrottle", &Tab::buttonSetThrottle);
    connect("buttonSetTemperatureUnit", &Tab::buttonSetTemperatureUnit);
    connect("resetDevice", &Tab::resetDevice);
    connect("resetModem", &Tab::resetModem);
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
    return {{std::string(utilities_text::kFahrenheit), 0}, {std::string(utilities_text::kCelsius), 1}};
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
    view()->button(button).onPress([weak = weak_from_this(), command](Control&) {
        if (const auto self = weak.lock()) {
            self->setQueryNumber(command);
            self->writeAwaitingAck(bytesOf(command));
        }
    });
}

void UtilitiesViewController::buttonNetworkConnectivityStatus(Control&)
{
    setQueryNumber(DeviceCommand::ConnectivityStatus);
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
    setQueryNumber(DeviceCommand::SetThrottle);
    setWaitingForAck();
    const auto throttle = text::integerValue(m_setThrottleTextField.text());
    if (throttle < kSmallestThrottle || throttle > kLargestThrottle) {
        displayAlert(utilities_text::kInvalidThrottle, utilities_text::kThrottleRange);
        return;
    }
    send(sender, DeviceCommand::SetThrottle, characterOfLow8Bits(storedThrottle(throttle)));
}

void UtilitiesViewController::buttonSetTemperatureUnit(Control&)
{
    setQueryNumber(DeviceCommand::SetTemperatureUnit);
    setWaitingForAck();
    write(bytesOf(DeviceCommand::SetTemperatureUnit));
    write(characterOfLow16Bits(numberOfUnit(m_temperatureDisplayUnitButton.titleOfSelectedItem())));
}

void UtilitiesViewController::resetDevice(Control& sender)
{
    reset(sender, DeviceCommand::ResetDevice, device_text::kFinishedResettingDevice);
}

void UtilitiesViewController::resetModem(Control& sender)
{
    reset(sender, DeviceCommand::ResetModem, utilities_text::kFinishedResettingModem);
}

void UtilitiesViewController::buttonUpdateFirmware(Control& sender) { m_firmwareUpdate.buttonUpdateFirmware(sender); }

serial::SerialPortCallbacks UtilitiesViewController::callbacks() const
{
    using enum serial::SerialPortCallback;
    return {WasRemovedFromSystem, DidReceiveData, DidReceiveResponseToRequest, RequestDidTimeout};
}

void UtilitiesViewController::serialPortDidReceiveResponseToRequest(serial::SerialPort&, const serial::Bytes& response,
                                                                    const std::shared_ptr<serial::SerialRequest>&)
{
    receiveResponse(response);
    const bool throttle = queryNumber() == DeviceCommand::ReadThrottle;
    hideAndStopProgressIndicator(nullptr);
    if (throttle) {
        displayThrottle();
    } else {
        displayAlert(receivedString(), device_text::kSuccess);
    }
}

void UtilitiesViewController::serialPortRequestDidTimeout(serial::SerialPort&,
                                                          const std::shared_ptr<serial::SerialRequest>&)
{
    hideAndStopProgressIndicator(nullptr);
    displayAlertWithMessage(device_text::kTryAgain);
}

void UtilitiesViewController::serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data)
{
    receive(data);
    m_isChunkSecret = port.isReceivedDataSecret();
    m_incomingDataBuffer += data;
    routeToBootloader();
    routeByQueryNumber();
}

void UtilitiesViewController::routeToBootloader()
{
    try {
        m_firmwareUpdate.bootloaderDidAnswer(receivedString());
    } catch (const std::exception&) {
        // Whatever becomes of the update, the chunk is still read as an answer.
    }
}

void UtilitiesViewController::routeByQueryNumber()
{
    if (!queryNumber()) {
        return;
    }
    switch (*queryNumber()) {
    case DeviceCommand::ReadTemperatureUnit:
        displayTemperatureUnit();
        break;
    case DeviceCommand::SetTemperatureUnit:
        displayTemperatureUnitSetAlert();
        break;
    case DeviceCommand::AdcVersion:
        displayADC();
        break;
    case DeviceCommand::ConnectivityStatus:
        displayNetworkConnectivity();
        break;
    case DeviceCommand::FirmwareVersion:
        displayFirmwareVersion();
        break;
    case DeviceCommand::WifiFirmwareVersion:
        displayWifiFirmwareVersion();
        break;
    default:
        break;
    }
}

void UtilitiesViewController::displayADC() { displayGathered(m_adcNumber, utilities_text::kAdcVersion); }

void UtilitiesViewController::displayNetworkConnectivity()
{
    displayGathered(m_connectivityStatus, utilities_text::kConnected);
}

// The first chunk only begins the gathering; the alert comes with a later one that holds no zero line.
void UtilitiesViewController::displayGathered(Accumulator& gathered, std::string_view informativeText)
{
    gathered.mayHoldSecret = gathered.mayHoldSecret || m_isChunkSecret;
    if (!gathered.text) {
        gathered.text = receivedString();
        forgetReceivedString();
    }
    const auto& chunk = receivedString();
    if (chunk) {
        *gathered.text += *chunk;
    }
    if (!chunk || chunk->find(kZeroLine) != std::string::npos) {
        m_systemLog.write("The string is " + (gathered.mayHoldSecret ? kWithheld : gathered.text.value_or("(null)")));
        return;
    }
    displayAlert(gathered.text, informativeText);
    gathered = {};
}

void UtilitiesViewController::displayFirmwareVersion()
{
    if (m_firmwareUpdate.readVersion()) {
        m_firmwareUpdate.checkLatestFirmware(receivedString().value_or(""));
        forgetReceivedString();
        return;
    }
    displayVersion(kShortestFirmwareVersion, utilities_text::kFirmwareVersion);
}

void UtilitiesViewController::displayWifiFirmwareVersion()
{
    displayVersion(kShortestWifiFirmwareVersion, utilities_text::kWifiFirmwareVersion);
}

void UtilitiesViewController::displayVersion(std::size_t shortest, std::string_view informativeText)
{
    if (receivedString() && text::utf16Length(*receivedString()) >= shortest) {
        displayAlert(receivedString(), informativeText);
        forgetReceivedString();
    }
}

void UtilitiesViewController::displayThrottle()
{
    const auto throttle = throttleFromReply(receivedString().value_or(""));
    displayAlert(std::to_string(throttle), utilities_text::kThrottle);
}

void UtilitiesViewController::displayTemperatureUnit() { displayAlert(unitOfReply(receivedString()), ""); }

void UtilitiesViewController::displayTemperatureUnitSetAlert()
{
    if (receivedString() == kOkLine) {
        displayAlert(receivedString(), "");
    }
}

bool UtilitiesViewController::dataBufferHasCompleteMacAddressPacket() const
{
    return kMacPacket.isWhole(incomingDataBuffer());
}

void UtilitiesViewController::test()
{
    displayAlert(utilities_text::kTestPassed, utilities_text::kFirmwareVersion);
    forgetReceivedString();
}

} // namespace vorrano::device
