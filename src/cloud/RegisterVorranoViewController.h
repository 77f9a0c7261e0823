#pragma once

#include "device/DeviceTabController.h"
#include "web/Reply.h"
#include "web/WebCall.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::cloud {

// The registration tab: reads the MAC address of the Vorrano on the cable, and registers it under a name to the
// session's account.
//
// Controls, beside those of every device tab: the text field vorranoName and the button saveButton.
// Threads: the main thread; the last reference may fall on any.
// Lifetime: the setup window's, until its tab is chosen again; a call under way holds it too, so that the outcome is
// still reported.
class RegisterVorranoViewController : public device::DeviceTabController {
public:
    // Loads the view. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<RegisterVorranoViewController> create();

    // Connects, then asks for the MAC address; a device that is plugged in later is connected, but not asked.
    void awakeFromNib() override;

    // The reply to the last MAC query, as it came; none until there was one.
    [[nodiscard]] const std::optional<std::string>& macAddressString() const { return m_macAddressString; }
    [[nodiscard]] std::int32_t deviceIndex() const { return m_deviceIndex; }

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override;
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortRequestDidTimeout(serial::SerialPort& port,
                                     const std::shared_ptr<serial::SerialRequest>& request) override;

protected:
    RegisterVorranoViewController();

    [[nodiscard]] std::size_t indexOfDevice() override;
    void queryForMacAddress();
    void saveButton(platform::Control& sender);
    void registerVorrano();
    // Reports success whatever the reply is.
    void updateUIWithDictionary(const web::Reply& reply);
    // Nothing for an absent text.
    void displaySuccessAlertWithString(std::optional<std::string_view> text);
    void displayErrorAlertWithString(std::optional<std::string_view> text);
    [[nodiscard]] bool isNetworkConnectionNotReachable() const;

private:
    platform::Alerts& m_alerts;
    platform::SystemLog& m_systemLog;
    web::WebCall m_webCall;
    platform::TextField& m_vorranoName;
    std::optional<std::string> m_macAddressString;
    std::int32_t m_deviceIndex = 0;
};

} // namespace vorrano::cloud
