#include "device/DeviceTabController.h"

#include "device/ConnectionNotice.h"
#include "device/DeviceTexts.h"
#include "platform/NotificationCentre.h"
#include "platform/OkAlert.h"
#include "platform/Platform.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"

#include <algorithm>
#include <any>
#include <chrono>
#include <utility>

namespace vorrano::device {

using platform::Platform;
using serial::SerialPort;
using serial::SerialPortManager;

namespace {

constexpr unsigned long kBaudRate = 9600;
constexpr std::chrono::duration<double> kTimeLimit{2.0};

std::shared_ptr<serial::SerialRequest> makeRequest(serial::Bytes data, serial::ResponseEvaluator evaluator)
{
    return serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        std::move(data), std::any(), kTimeLimit, std::move(evaluator));
}

bool isVorrano(const std::shared_ptr<SerialPort>& port) { return port->path().find(kVorranoPath) != std::string::npos; }

} // namespace

DeviceTabController::DeviceTabController(std::string_view layoutName)
    : m_alerts(Platform::current().alerts)
    , m_notificationCentre(Platform::current().notificationCentre)
    , m_view(Platform::current().layouts.loadView(layoutName))
    , m_connectionNoticeLabel(m_view->label("connectionNoticeLabel"))
    , m_busyDisplay(*m_view)
{}

DeviceTabController::~DeviceTabController() = default;

void DeviceTabController::awakeFromNib()
{
    initializeSerialPortForCommunication();
    m_listObservation =
        m_portManager->observeAvailablePorts([this](const serial::SerialPortsChange&) { updateConnectionNotice(); });
}

void DeviceTabController::initializeSerialPortForCommunication()
{
    m_portManager = SerialPortManager::sharedSerialPortManager();
    m_availablePorts = m_portManager->availablePorts();
    const auto index = indexOfDevice();
    if (index < m_availablePorts.size()) {
        setSerialPort(SerialPort::serialPortWithPath(m_availablePorts[index]->path()));
    } else {
        setSerialPort(nullptr);
    }
    if (m_serialPort) {
        m_serialPort->open();
        // After the opening, which by itself applies the rate that the port had before.
        m_serialPort->setBaudRate(std::make_shared<const unsigned long>(kBaudRate));
    }
    m_exchange.emptyIncomingDataBuffer();
    updateConnectionNotice();
}

std::size_t DeviceTabController::indexOfDevice()
{
    const auto& ports = m_portManager->availablePorts();
    const auto found = std::find_if(ports.begin(), ports.end(), isVorrano);
    return found == ports.end() ? 0 : static_cast<std::size_t>(found - ports.begin());
}

void DeviceTabController::setSerialPort(std::shared_ptr<SerialPort> port)
{
    if (port == m_serialPort) {
        return;
    }
    if (m_serialPort) {
        m_serialPort->close();
        m_serialPort->setDelegate({});
    }
    m_serialPort = std::move(port);
    if (m_serialPort) {
        m_serialPort->setDelegate(weak_from_this());
    }
}

void DeviceTabController::serialPortWasRemovedFromSystem(SerialPort&)
{
    if (m_serialPort) {
        m_serialPort->close();
    }
    setSerialPort(nullptr);
}

platform::Subscription DeviceTabController::observeConnections()
{
    return m_notificationCentre.observe(
        serial::kSerialPortWasConnectedNotification, weak_from_this(),
        [this](const platform::Notification&) { initializeSerialPortForCommunication(); });
}

void DeviceTabController::updateConnectionNotice()
{
    const auto& ports = m_portManager->availablePorts();
    const auto notice =
        connectionNotice({.isVorranoListed = std::any_of(ports.begin(), ports.end(), isVorrano),
                          .isPortListed = std::find(ports.begin(), ports.end(), m_serialPort) != ports.end()});
    m_connectionNoticeLabel.setText(std::string(notice.value_or("")));
    m_connectionNoticeLabel.setHidden(!notice);
}

void DeviceTabController::connectQuery(std::string_view button, DeviceCommand command)
{
    m_view->button(button).onPress([weak = weak_from_this(), command](platform::Control& sender) {
        if (const auto self = weak.lock()) {
            self->query(sender, command);
        }
    });
}

void DeviceTabController::connectReset(std::string_view button, DeviceCommand command, std::string_view finished)
{
    m_view->button(button).onPress([weak = weak_from_this(), command, finished](platform::Control& sender) {
        if (const auto self = weak.lock()) {
            self->reset(sender, command, finished);
        }
    });
}

void DeviceTabController::displayAndStartProgressIndicator(platform::Control&) { m_busyDisplay.start(); }

void DeviceTabController::hideAndStopProgressIndicator(platform::Control*) { m_busyDisplay.stop(); }

void DeviceTabController::displayAlertWithMessage(std::optional<std::string_view> message)
{
    platform::showError(m_alerts, message);
}

void DeviceTabController::displayAlert(std::optional<std::string_view> messageText, std::string_view informativeText)
{
    m_alerts.runModal(platform::okAlert(messageText, informativeText));
}

void DeviceTabController::sendRequest(serial::Bytes data, serial::ResponseEvaluator evaluator)
{
    submit(makeRequest(std::move(data), std::move(evaluator)));
}

void DeviceTabController::submit(const std::shared_ptr<serial::SerialRequest>& request)
{
    if (m_serialPort) {
        m_serialPort->sendRequest(request);
    }
}

void DeviceTabController::query(platform::Control& sender, DeviceCommand command)
{
    displayAndStartProgressIndicator(sender);
    m_exchange.setQueryNumber(command);
    const auto request = makeRequest(bytesOf(command), evaluatorOf(command));
    request->setResponseSecret(command == DeviceCommand::ReadPassword);
    submit(request);
}

void DeviceTabController::send(platform::Control& sender, DeviceCommand command, std::string argument)
{
    displayAndStartProgressIndicator(sender);
    m_exchange.setQueryNumber(command);
    sendRequest(bytesOf(command));
    if (descriptionOf(command).argument == Argument::FreeText) {
        sendRequest(std::move(argument));
        sendRequest(endMark(), evaluatorOf(command));
    } else {
        sendRequest(std::move(argument), evaluatorOf(command));
    }
}

void DeviceTabController::reset(platform::Control& sender, DeviceCommand command, std::string_view finished)
{
    displayAndStartProgressIndicator(sender);
    sendRequest(bytesOf(command), evaluatorOf(command));
    displayAlert(finished, device_text::kSuccess);
    hideAndStopProgressIndicator(&sender);
}

void DeviceTabController::write(const serial::Bytes& data)
{
    if (m_serialPort) {
        m_serialPort->sendData(data);
    }
}

} // namespace vorrano::device
