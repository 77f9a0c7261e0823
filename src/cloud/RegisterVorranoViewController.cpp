#include "cloud/RegisterVorranoViewController.h"

#include "cloud/CloudAlerts.h"
#include "cloud/RegisterTexts.h"
#include "device/DeviceCommand.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "platform/SystemLog.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"
#include "text/Text.h"
#include "web/Reachability.h"
#include "web/ServiceAddress.h"

#include <exception>

namespace vorrano::cloud {

using device::DeviceCommand;
using platform::Control;
using platform::Platform;
using session::GlobalVariables;

std::shared_ptr<RegisterVorranoViewController> RegisterVorranoViewController::create()
{
    const auto controller =
        platform::destroyedOnMainThread(new RegisterVorranoViewController, Platform::current().mainQueue);
    controller->connect("saveButton", &RegisterVorranoViewController::saveButton);
    return controller;
}

RegisterVorranoViewController::RegisterVorranoViewController()
    : DeviceTabController("RegisterVorranoViewController")
    , m_alerts(Platform::current().alerts)
    , m_systemLog(Platform::current().systemLog)
    , m_vorranoName(view()->textField("vorranoName"))
{}

void RegisterVorranoViewController::awakeFromNib()
{
    DeviceTabController::awakeFromNib();
    observeConnections().keep();
    queryForMacAddress();
}

std::size_t RegisterVorranoViewController::indexOfDevice()
{
    m_deviceIndex = 0;
    m_deviceIndex = static_cast<std::int32_t>(DeviceTabController::indexOfDevice());
    return static_cast<std::size_t>(m_deviceIndex);
}

void RegisterVorranoViewController::queryForMacAddress()
{
    const auto& ports = serial::SerialPortManager::sharedSerialPortManager()->availablePorts();
    const auto index = static_cast<std::size_t>(m_deviceIndex);
    // Send no query to a port of another kind: the device behind it may take it for a command of its own.
    if (index >= ports.size() || !device::isVorranoPath(ports[index]->path())) {
        return;
    }
    m_exchange.setQueryNumber(DeviceCommand::MacAddress);
    sendRequest(device::bytesOf(DeviceCommand::MacAddress), device::evaluatorOf(DeviceCommand::MacAddress));
}

serial::SerialPortCallbacks RegisterVorranoViewController::callbacks() const
{
    using enum serial::SerialPortCallback;
    return {WasRemovedFromSystem, DidReceiveResponseToRequest, RequestDidTimeout};
}

void RegisterVorranoViewController::serialPortDidReceiveResponseToRequest(serial::SerialPort&,
                                                                          const serial::Bytes& response,
                                                                          const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    m_macAddressString = text::textFromUtf8(response);
}

void RegisterVorranoViewController::serialPortRequestDidTimeout(serial::SerialPort&,
                                                                const std::shared_ptr<serial::SerialRequest>&)
{
    platform::assertMainThread();
    m_systemLog.write(register_text::kNoMacAddressLine);
}

void RegisterVorranoViewController::saveButton(Control&)
{
    if (isNetworkConnectionNotReachable()) {
        m_alerts.runModal(networkNotReachableAlert());
        return;
    }
    if (m_vorranoName.text().empty()) {
        displayErrorAlertWithString(register_text::kNoName);
        return;
    }
    registerVorrano();
}

void RegisterVorranoViewController::registerVorrano()
{
    if (!m_macAddressString) {
        // Without it there is no address to call.
        displayErrorAlertWithString(register_text::kNoMacAddress);
        return;
    }
    const auto self = std::static_pointer_cast<RegisterVorranoViewController>(shared_from_this());
    m_webCall.fetch(web::registrationAddress(web::serviceRoot(), GlobalVariables::getGlobalAccountID(),
                                             *m_macAddressString, m_vorranoName.text()),
                    [self](const web::Reply& reply) { self->updateUIWithDictionary(reply); });
}

void RegisterVorranoViewController::updateUIWithDictionary(const web::Reply&)
{
    platform::assertMainThread();
    try {
        displaySuccessAlertWithString(register_text::kRegistered);
    } catch (const std::exception&) {
        displayErrorAlertWithString(register_text::kNotRegistered);
    }
}

void RegisterVorranoViewController::displaySuccessAlertWithString(std::optional<std::string_view> text)
{
    if (text) {
        displayAlert(register_text::kSuccessTitle, *text);
    }
}

void RegisterVorranoViewController::displayErrorAlertWithString(std::optional<std::string_view> text)
{
    displayAlertWithMessage(text);
}

bool RegisterVorranoViewController::isNetworkConnectionNotReachable() const
{
    return web::isNetworkConnectionNotReachable();
}

} // namespace vorrano::cloud
