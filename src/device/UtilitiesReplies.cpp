#include "device/UtilitiesReplies.h"

#include "device/DeviceExchange.h"
#include "device/UtilitiesTexts.h"
#include "platform/OkAlert.h"
#include "platform/Platform.h"
#include "platform/SystemLog.h"
#include "text/Text.h"

namespace vorrano::device {

using platform::Platform;

namespace {

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

} // namespace

UtilitiesReplies::UtilitiesReplies(DeviceExchange& exchange)
    : m_alerts(Platform::current().alerts)
    , m_systemLog(Platform::current().systemLog)
    , m_exchange(exchange)
{}

void UtilitiesReplies::displayADC() { displayGathered(m_adcNumber, utilities_text::kAdcVersion); }

void UtilitiesReplies::displayNetworkConnectivity()
{
    displayGathered(m_connectivityStatus, utilities_text::kConnected);
}

void UtilitiesReplies::displayGathered(Accumulator& gathered, std::string_view informativeText)
{
    gathered.mayHoldSecret = gathered.mayHoldSecret || m_exchange.isChunkSecret();
    if (!gathered.text) {
        gathered.text = m_exchange.receivedString();
        m_exchange.forgetReceivedString();
    }
    const auto& chunk = m_exchange.receivedString();
    if (chunk) {
        *gathered.text += *chunk;
    }
    if (!chunk || chunk->find(kZeroLine) != std::string::npos) {
        m_systemLog.write("The string is " + (gathered.mayHoldSecret ? kWithheld : gathered.text.value_or("(null)")));
        return;
    }
    display(gathered.text, informativeText);
    gathered = {};
}

void UtilitiesReplies::displayFirmwareVersion()
{
    displayVersion(kShortestFirmwareVersion, utilities_text::kFirmwareVersion);
}

void UtilitiesReplies::displayWifiFirmwareVersion()
{
    displayVersion(kShortestWifiFirmwareVersion, utilities_text::kWifiFirmwareVersion);
}

void UtilitiesReplies::displayVersion(std::size_t shortest, std::string_view informativeText)
{
    const auto& chunk = m_exchange.receivedString();
    if (chunk && text::utf16Length(*chunk) >= shortest) {
        display(chunk, informativeText);
        m_exchange.forgetReceivedString();
    }
}

void UtilitiesReplies::displayThrottle()
{
    const auto throttle = throttleFromReply(m_exchange.receivedString().value_or(""));
    display(std::to_string(throttle), utilities_text::kThrottle);
}

void UtilitiesReplies::displayTemperatureUnit() { display(unitOfReply(m_exchange.receivedString()), ""); }

void UtilitiesReplies::displayTemperatureUnitSetAlert()
{
    if (m_exchange.receivedString() == kOkLine) {
        display(m_exchange.receivedString(), "");
    }
}

void UtilitiesReplies::display(std::optional<std::string_view> messageText, std::string_view informativeText)
{
    m_alerts.runModal(platform::okAlert(messageText, informativeText));
}

} // namespace vorrano::device
