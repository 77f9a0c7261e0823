#pragma once

#include <string_view>

// What the utilities tab alone says; the spelling is meant.
namespace vorrano::device::utilities_text {

inline constexpr std::string_view kPasswordTooLong = "Passwod cannot be greater than 64 characters";
inline constexpr std::string_view kInvalidThrottle = "Invalid Throttle Value";
// The text names 20, which is refused.
inline constexpr std::string_view kThrottleRange = "Throttle should be between 20 and 90";
inline constexpr std::string_view kFinishedResettingModem = "Finished Resetting Modem";
inline constexpr std::string_view kThrottle = "Throttle is displayed";
inline constexpr std::string_view kConnected = "Vorrano is Connected to your WIFI Network";
inline constexpr std::string_view kAdcVersion = "ADC version number";
inline constexpr std::string_view kFirmwareVersion = "Device Firmware Version";
inline constexpr std::string_view kWifiFirmwareVersion = "Wifi Firmware Version";
inline constexpr std::string_view kFahrenheit = "Fahrenheit";
inline constexpr std::string_view kCelsius = "Celsius";
inline constexpr std::string_view kTestPassed = "pass";

} // namespace vorrano::device::utilities_text
