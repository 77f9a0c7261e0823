#pragma once

#include "device/DeviceTabController.h"
#include "device/FirmwareUpdate.h"
#include "device/UtilitiesReplies.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorrano::device {

// The utilities tab: asks the device anything, adjusts it, resets it, and begins its firmware update.
//
// Replies are told apart by the last command alone. A completed request arrives as a response; every chunk, also those
// of a response, arrives as data first. Whatever the device says unasked is taken for an answer to the last question.
// Controls, beside those of every device tab: the text fields setSSID, setPassword and setThrottleTextField; the pick
// list temperatureDisplayUnitButton; a button for each question, setting and reset, and buttonUpdateFirmware.
class UtilitiesViewController : public DeviceTabController, private FirmwareLine {
public:
    // The names of the temperature units and the device's own numbers for them, in the order in which they are offered.
    using TemperatureUnits = std::vector<std::pair<std::string, std::uint16_t>>;
    [[nodiscard]] static TemperatureUnits tempDisplayDictionary();

    // Loads the view. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<UtilitiesViewController> create();

    void awakeFromNib() override;

    [[nodiscard]] const UtilitiesReplies& replies() const { return m_replies; }
    [[nodiscard]] const FirmwareUpdate& firmwareUpdate() const { return m_firmwareUpdate; }

    // Bound to no control.
    [[nodiscard]] bool dataBufferHasCompleteMacAddressPacket() const;
    void test();

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override;
    void serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data) override;
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortRequestDidTimeout(serial::SerialPort& port,
                                     const std::shared_ptr<serial::SerialRequest>& request) override;

protected:
    UtilitiesViewController();

    void buttonNetworkConnectivityStatus(platform::Control& sender);
    void buttonSetSSID(platform::Control& sender);
    void buttonSetPassword(platform::Control& sender);
    void buttonSetThrottle(platform::Control& sender);
    void buttonSetTemperatureUnit(platform::Control& sender);
    void buttonUpdateFirmware(platform::Control& sender);

    void setUpTemperatureDisplayPopupButton();

private:
    void writeQuery(DeviceCommand command) override;
    void writeAwaitingAck(const serial::Bytes& data) override;

    void connectActions();
    // Presses of the button ask the device that, past the request queue.
    void connectRawQuery(std::string_view button, DeviceCommand command);
    void routeToBootloader();
    void routeByQueryNumber();
    void displayFirmwareVersion();

    platform::TextField& m_setSSID;
    platform::TextField& m_setPassword;
    platform::TextField& m_setThrottleTextField;
    platform::PopUpButton& m_temperatureDisplayUnitButton;
    UtilitiesReplies m_replies;
    FirmwareUpdate m_firmwareUpdate;
};

} // namespace vorrano::device
