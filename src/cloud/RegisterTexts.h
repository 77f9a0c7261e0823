#pragma once

#include <string_view>

// What the registration tab says.
namespace vorrano::cloud::register_text {

inline constexpr std::string_view kNoName = "Please name your Vorrano";
inline constexpr std::string_view kNoMacAddress = "Failed to retrieve Mac Address of the Vorrano. Please try again";
inline constexpr std::string_view kSuccessTitle = "Success";
inline constexpr std::string_view kRegistered = "Device Successfully Registered. Proceed to WiFi Setup.";
inline constexpr std::string_view kNotRegistered = "Failed to Register your device. Please try again";
// The log's line for a MAC query that got no reply in time.
inline constexpr std::string_view kNoMacAddressLine = "There was an error retrieving Mac Address of the Device";

} // namespace vorrano::cloud::register_text
