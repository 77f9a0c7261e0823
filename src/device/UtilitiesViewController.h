#pragma once

#include "device/DeviceTabController.h"
#include "device/FirmwareUpdate.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::device {

// The utilities tab: asks the device anything, adjusts it, resets it, and begins its firmware update.
//
// Replies are told apart by the last command alone. A completed request arrives as a response; every chunk, also those
// of a response, arrives as data first. Whatever the device says unasked is taken for an answer to the last question.
// Controls, beside those of every device tab: the text fields setSSID, setPassword and setThrottleTextField; the pick
// list temperatureDisplayUnitButton; a button for each action below.
class UtilitiesViewController : public DeviceTabController {
public:
    // Loads the view. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<UtilitiesViewController> create();

    // Only by way of create().
    UtilitiesViewController();

    void awakeFromNib() override;

    void buttonNetworkConnectivityStatus(platform::Control& sender);
    void buttonSetSSID(platform::Control& sender);
    void buttonSetPassword(platform::Control& sender);
    void buttonSetThrottle(platform::Control& sender);
    void buttonSetTemperatureUnit(platform::Control& sender);
    void resetDevice(platform::Control& sender);
    void resetModem(platform::Control& sender);
    void buttonUpdateFirmware(platform::Control& sender);

    // The names of the temperature units and the device's own numbers for them, in the order in which they are offered.
    using TemperatureUnits = std::vector<std::pair<std::string, std::uint16_t>>;
    [[nodiscard]] static TemperatureUnits tempDisplayDictionary();
    void setUpTemperatureDisplayPopupButton();

    void displayADC();
    void displayNetworkConnectivity();
    void displayFirmwareVersion();
    void displayWifiFirmwareVersion();
    void displayThrottle();
    void displayTemperatureUnit();
    void displayTemperatureUnitSetAlert();

    // The answers that are gathered until their alert; none when there is nothing gathered.
    [[nodiscard]] const std::optional<std::string>& connectivityStatus() const { return m_connectivityStatus.text; }
    [[nodiscard]] const std::optional<std::string>& adcNumber() const { return m_adcNumber.text; }

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

private:
    void connectActions();
    // Presses of the button ask the device that, past the request queue.
    void connectRawQuery(std::string_view button, DeviceCommand command);
    void routeToBootloader();
    void routeByQueryNumber();
    // An answer that comes in several chunks.
    struct Accumulator {
        std::optional<std::string> text;
        // A chunk in it may be a stored password, which must not reach the log.
        bool mayHoldSecret = false;
    };
    void displayGathered(Accumulator& gathered, std::string_view informativeText);
    void displayVersion(std::size_t shortest, std::string_view informativeText);

    platform::SystemLog& m_systemLog;
    platform::TextField& m_setSSID;
    platform::TextField& m_setPassword;
    platform::TextField& m_setThrottleTextField;
    platform::PopUpButton& m_temperatureDisplayUnitButton;
    FirmwareUpdate m_firmwareUpdate;
    Accumulator m_connectivityStatus;
    Accumulator m_adcNumber;
    bool m_isChunkSecret = false; // of the chunk in receivedString
};

} // namespace vorrano::device
