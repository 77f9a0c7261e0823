#include "unit/device/ExpectedAlerts.h"

#include "device/UtilitiesViewController.h"
#include "device/WifiSetupViewController.h"
#include "text/Text.h"

#include <stdexcept>

namespace vorrano::device {

namespace {

using support::LanguageButton;
using support::Way;

Alert success(std::optional<std::string> title) { return alertOf(std::move(title), "Success"); }

// Of a whole reply.
Alert alertOfReply(const LanguageButton& button, const std::string& reply)
{
    const auto read = text::textFromUtf8(reply);
    if (button.command.code == 'c' && read) {
        return success(text::replacingAll(*read, '$', ' '));
    }
    if (button.command.code == 'f') {
        return alertOf(reply.starts_with("60") ? "90" : "0", "Throttle is displayed");
    }
    return success(read);
}

Alerts alertsOfRequest(const LanguageButton& button, const Chunks& chunks)
{
    std::string received;
    for (const auto& chunk : chunks) {
        received += chunk;
        if (button.command.reply->isWhole(received)) {
            return {alertOfReply(button, received)};
        }
    }
    return {kTryAgain};
}

// Each chunk that is long enough is a version.
Alerts versions(const Chunks& chunks, std::size_t shortest, const std::string& informativeText)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        if (text::textFromUtf8(chunk) && chunk.size() >= shortest) {
            alerts.push_back(alertOf(chunk, informativeText));
        }
    }
    return alerts;
}

// The first chunk is only kept; the second is shown behind it.
Alerts gathered(const Chunks& chunks, const std::string& informativeText)
{
    return chunks.size() < 2 ? Alerts{} : Alerts{alertOf(chunks[0] + chunks[1], informativeText)};
}

Alerts unitOfEach(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        alerts.push_back(chunk == "1\n\r" ? alertOf("Celsius", "") : alertOf(std::nullopt, ""));
    }
    return alerts;
}

Alerts acknowledgements(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        if (chunk == "OK\n\r") {
            alerts.push_back(alertOf(chunk, ""));
        }
    }
    return alerts;
}

Alerts alertsOfRaw(const LanguageButton& button, const Chunks& chunks)
{
    switch (button.command.code) {
    case '1':
        return gathered(chunks, "ADC version number");
    case '2':
        return gathered(chunks, "Vorrano is Connected to your WIFI Network");
    case '4':
        return versions(chunks, 6, "Device Firmware Version");
    case '5':
        return versions(chunks, 13, "Wifi Firmware Version");
    case 'g':
        return acknowledgements(chunks);
    case 'h':
        return unitOfEach(chunks);
    default:
        throw std::logic_error("nobody knows what is shown of the chunks for " + button.command.name);
    }
}

} // namespace

Alerts expectedAlerts(const LanguageButton& button, const Chunks& chunks)
{
    switch (button.way) {
    case Way::Request:
        return alertsOfRequest(button, chunks);
    case Way::Raw:
        return alertsOfRaw(button, chunks);
    case Way::Reset:
        break;
    }
    return alertsOfTheTable(button);
}

Alerts alertsOfTheTable(const LanguageButton& button)
{
    return button.shown ? Alerts{alertOf(button.shown->first, button.shown->second)} : Alerts{};
}

std::shared_ptr<DeviceTabController> createTabOf(const LanguageButton& button)
{
    if (button.screen == "WifiSetupViewController") {
        return WifiSetupViewController::create();
    }
    if (button.screen == "UtilitiesViewController") {
        return UtilitiesViewController::create();
    }
    throw std::logic_error("no tab of the device's has the screen " + button.screen);
}

} // namespace vorrano::device
