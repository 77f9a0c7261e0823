#pragma once

#include <string_view>

// What more than one of the device's tabs says. The wording is meant, "routers" without an apostrophe included.
namespace vorrano::device::device_text {

inline constexpr std::string_view kError = "Error";
inline constexpr std::string_view kSuccess = "Success";
inline constexpr std::string_view kTryAgain = "Please try again";
inline constexpr std::string_view kFinishedResettingDevice = "Finished Resetting Device";

inline constexpr std::string_view kNoVorranoConnected = "No Vorrano is connected. Plug it in with its USB cable.";
inline constexpr std::string_view kVorranoInUseUnplugged =
    "The Vorrano in use was unplugged. Another one is connected: choose this tab again to use it.";

inline constexpr std::string_view kNoSSID = "Please enter a valid SSID";
inline constexpr std::string_view kSSIDTooLong = "Network SSID cannot be greater than 32 characters";
inline constexpr std::string_view kSSIDHasDollarSign =
    "SSID cannot have a '$' sign. You will need to change your routers Wifi SSID to not include the '$' sign";

} // namespace vorrano::device::device_text
