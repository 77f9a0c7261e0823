#pragma once

#include "platform/Alerts.h"

#include <string>
#include <string_view>

// The alerts that the cloud screens have in common.
namespace vorrano::cloud {

inline constexpr std::string_view kErrorTitle = "ERROR";

[[nodiscard]] inline platform::Alert okAlert(std::string_view title, std::string_view text)
{
    return {std::string(title), {"OK"}, std::string(text), platform::AlertStyle::Informational};
}

[[nodiscard]] inline platform::Alert networkNotReachableAlert()
{
    return okAlert("Wi-Fi not connected", "Please check your connection and try again");
}

} // namespace vorrano::cloud
