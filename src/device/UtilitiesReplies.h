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

    // The first chunk only begins the gathering; the alert comes with a later one that holds no zero line.
    void displayADC();
    void displayNetworkConnectivity();
    // Nothing for a chunk that is too short for a version; one that was shown is forgotten.
    void displayFirmwareVersion();
    void displayWifiFirmwareVersion();
    void displayThrottle();
    void displayTemperatureUnit();
    void displayTemperatureUnitSetAlert();

    // A query that is pressed meanwhile takes the password for its own answer. What was gathered then stays out of the
    // log.
    void passwordWasAskedFor() { ++m_passwordsOnTheirWay; }
    void passwordHasCome() { --m_passwordsOnTheirWay; }

    // The answers that are gathered until their alert; none when there is nothing gathered.
    [[nodiscard]] const std::optional<std::string>& connectivityStatus() const { return m_connectivityStatus; }
    [[nodiscard]] const std::optional<std::string>& adcNumber() const { return m_adcNumber; }

private:
    void displayGathered(std::optional<std::string>& gathered, std::string_view informativeText);
    void displayVersion(std::size_t shortest, std::string_view informativeText);
    void display(std::optional<std::string_view> messageText, std::string_view informativeText);

    platform::Alerts& m_alerts;
    platform::SystemLog& m_systemLog;
    DeviceExchange& m_exchange;
    std::optional<std::string> m_connectivityStatus;
    std::optional<std::string> m_adcNumber;
    // How often the stored password was asked for and has not come.
    int m_passwordsOnTheirWay = 0;
    bool m_passwordWasGathered = false;
};

} // namespace vorrano::device
