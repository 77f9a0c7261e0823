#pragma once

#include "platform/WifiInterface.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::linux_platform {

// The access points that NetworkManager has of the default Wi-Fi device, as it has them now. Each reading sends off a
// request for a scan, whose outcome the next reading finds.
//
// The default device is, of the Wi-Fi devices that NetworkManager manages and that are available, the activated one,
// else the first.
// A NetworkManager that does not run is not started. Access points that vanish while they are read are left out, as
// are SSIDs that are no UTF-8.
class NetworkManagerWifi final : public platform::WifiInterface {
public:
    [[nodiscard]] std::optional<std::vector<std::string>> scanForNetworks() override;
};

} // namespace vorrano::linux_platform
