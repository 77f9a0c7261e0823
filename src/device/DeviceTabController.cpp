#include "device/DeviceTabController.h"

#include "device/ConnectionNotice.h"
#include "device/DeviceRequests.h"
#include "device/DeviceTexts.h"
#include "device/RefusedPort.h"
#include "platform/NotificationCentre.h"
#include "platform/OkAlert.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"

#include <algorithm>
#include <utility>

namespace vorrano::device {

using platform::Platform;
using serial::SerialPort;
using serial::SerialPortManager;

namespace {

bool isVorrano(const std::shared_ptr<SerialPort>& port) { return isVorranoPath(port->path()); }

} // namespace

DeviceTabController::DeviceTabController(std::string_view layoutName)
    : m_alerts(Platform::current().alerts)
    , m_notificationCentre(Platform::current().notificationCentre)
    , m_view(Platform::current().layouts.loadView(layoutName))
    , m_connectionNotice(m_view->label("connectionNoticeLabel"))
    , m_busyDisplay(*m_view)
    , m_refusedPort(RefusedPort::create(*this, [this] { updateConnectionNotice(); }))
{}

DeviceTabController::~DeviceTabController() = default;

void DeviceTabController::awakeFromNib()
{
    platform::assertMainThread();
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
    // Another kind of device is no business of this program's: its port is tried once, and not reported.
    m_refusedPort->follow(m_serialPort && isVorrano(m_serialPort) ? m_serialPort : nullptr);
}

void DeviceTabController::serialPortWasRemovedFromSystem(SerialPort&)
{
    platform::assertMainThread();
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
    m_connectionNotice.show(
        connectionNotice({.isVorranoListed = std::any_of(ports.begin(), ports.end(), isVorrano),
                          .isPortListed = std::find(ports.begin(), ports.end(), m_serialPort) != ports.end(),
                          .refusal = m_refusedPort->refusal()}));
}

void DeviceTabController::connectQuery(std::string_view button, DeviceCommand command)
{
    m_view->button(button).onPress(
        platform::actionOf(weak_from_this(), [command](DeviceTabController& self, platform::Control& sender) {
            self.query(sender, command);
        }));
}

void DeviceTabController::connectReset(std::string_view button, DeviceCommand command, std::string_view finished)
{
    m_view->button(button).onPress(
        platform::actionOf(weak_from_this(), [command, finished](DeviceTabController& self, platform::Control& sender) {
            self.reset(sender, command, finished);
        }));
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
    submit({makeRequest(std::move(data), std::move(evaluator))});
}

void DeviceTabController::submit(const std::vector<std::shared_ptr<serial::SerialRequest>>& requests)
{
    for (const auto& request : requests) {
        if (m_serialPort) {
            m_serialPort->sendRequest(request);
        }
    }
}

void DeviceTabController::query(platform::Control& sender, DeviceCommand command)
{
    displayAndStartProgressIndicator(sender);
    m_exchange.setQueryNumber(command);
    submit(requestsOf(command));
}

void DeviceTabController::send(platform::Control& sender, DeviceCommand command, std::string argument)
{
    displayAndStartProgressIndicator(sender);
    m_exchange.setQueryNumber(command);
    submit(requestsOf(command, std::move(argument)));
}

void DeviceTabController::reset(platform::Control& sender, DeviceCommand command, std::string_view finished)
{
    displayAndStartProgressIndicator(sender);
    submit(requestsOf(command));
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
