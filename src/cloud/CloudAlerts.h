#pragma once

#include "platform/OkAlert.h"

// The alert that the cloud screens have in common.
namespace vorrano::cloud {

[[nodiscard]] inline platform::Alert networkNotReachableAlert()
{
    return platform::okAlert("Wi-Fi not connected", "Please check your connection and try again");
}

} // namespace vorrano::cloud
