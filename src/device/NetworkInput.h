#pragma once

#include <optional>
#include <string_view>

// What may be sent to the device as the credentials of a network. Each gives the message of the first check that fails,
// or none. Lengths are those of the UTF-16 form.
namespace vorrano::device {

[[nodiscard]] std::optional<std::string_view> refusalOfSSID(std::string_view ssid);

// The Wi-Fi tab looks for a "$" before it looks at the length; the utilities tab lets a "$" pass. An empty password is
// a password.
[[nodiscard]] std::optional<std::string_view> refusalOfWifiTabPassword(std::string_view password);
[[nodiscard]] std::optional<std::string_view> refusalOfUtilitiesTabPassword(std::string_view password);

// Whether there is a "$".
[[nodiscard]] bool wifiPasswordContainsUnsupportedCharacters(std::string_view password);

[[nodiscard]] std::optional<std::string_view> refusalOfWepKey(std::string_view key);

} // namespace vorrano::device
