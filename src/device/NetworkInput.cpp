#include "device/NetworkInput.h"

#include "device/DeviceTexts.h"
#include "device/UtilitiesTexts.h"
#include "device/WifiTexts.h"
#include "session/TextScreening.h"
#include "text/Text.h"

#include <cstddef>

namespace vorrano::device {

namespace {
constexpr std::size_t kLongestSSID = 32;
constexpr std::size_t kLongestPassword = 64;
} // namespace

std::optional<std::string_view> refusalOfSSID(std::string_view ssid)
{
    if (ssid.empty()) {
        return device_text::kNoSSID;
    }
    if (text::utf16Length(ssid) > kLongestSSID) {
        return device_text::kSSIDTooLong;
    }
    if (session::hasDollarSign(ssid)) {
        return device_text::kSSIDHasDollarSign;
    }
    return std::nullopt;
}

bool wifiPasswordContainsUnsupportedCharacters(std::string_view password) { return session::hasDollarSign(password); }

std::optional<std::string_view> refusalOfWifiTabPassword(std::string_view password)
{
    if (wifiPasswordContainsUnsupportedCharacters(password)) {
        return wifi_text::kPasswordHasDollarSign;
    }
    if (text::utf16Length(password) > kLongestPassword) {
        return wifi_text::kPasswordTooLong;
    }
    return std::nullopt;
}

std::optional<std::string_view> refusalOfUtilitiesTabPassword(std::string_view password)
{
    if (text::utf16Length(password) > kLongestPassword) {
        return utilities_text::kPasswordTooLong;
    }
    return std::nullopt;
}

std::optional<std::string_view> refusalOfWepKey(std::string_view key)
{
    if (key.empty()) {
        return wifi_text::kNoWepKey;
    }
    return std::nullopt;
}

} // namespace vorrano::device
