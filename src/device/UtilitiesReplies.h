#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {
class Alerts;
class SystemLog;
} // namespace vorrano::platform

namespace vorrano::device {

class DeviceExchange;

// What the utilities tab shows of what the device says: each operation reads the text received last as the answer to
// one command.
//
// Threads: the main thread. Lifetime: within the exchange's.
class UtilitiesReplies {
public:
    explicit UtilitiesReplies(DeviceExchange& exchange);

    // The first chunk only begins the gathering; the alert comes with a later one that does not contain "0\n\r".
    void displayADC();
    void displayNetworkConnectivity();
    // Nothing for a chunk that is too short for a version; one that was shown is forgotten.
    void displayFirmwareVersion();
    void displayWifiFirmwareVersion();
    void displayThrottle();
    void displayTemperatureUnit();
    void displayTemperatureUnitSetAlert();

    // The answers that are gathered until their alert; none when there is nothing gathered.
    [[nodiscard]] const std::optional<std::string>& connectivityStatus() const { return m_connectivityStatus.text; }
    [[nodiscard]] const std::optional<std::string>& adcNumber() const { return m_adcNumber.text; }

private:
    // An answer that comes in several chunks.
    struct Accumulator {
        std::optional<std::string> text;
        // A chunk in it may be a stored password, which must not reach the log.
        bool mayHoldSecret = false;
    };
    void displayGathered(Accumulator& gathered, std::string_view informativeText);
    void displayVersion(std::size_t shortest, std::string_view informativeText);
    void display(std::optional<std::string_view> messageText, std::string_view informativeText);

    platform::Alerts& m_alerts;
    platform::SystemLog& m_systemLog;
    DeviceExchange& m_exchange;
    Accumulator m_connectivityStatus;
    Accumulator m_adcNumber;
};

} // namespace vorrano::device
