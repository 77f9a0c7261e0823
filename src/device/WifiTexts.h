#pragma once

#include <string_view>

// What the Wi-Fi tab alone says.
namespace vorrano::device::wifi_text {

inline constexpr std::string_view kPasswordHasDollarSign = "Wifi Password cannot have a '$' sign. You will need to "
                                                           "change your routers Wifi Password to not include the '$' "
                                                           "sign";
inline constexpr std::string_view kPasswordTooLong = "Password cannot be greater than 64 characters";
inline constexpr std::string_view kNoSecurityType = "Please select a Security Type";
inline constexpr std::string_view kNoWepKey = "Please Enter WEP Key";

} // namespace vorrano::device::wifi_text
