#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorrano::platform {

// The computer's default Wi-Fi interface.
class WifiInterface {
public:
    WifiInterface() = default;
    WifiInterface(const WifiInterface&) = delete;
    WifiInterface& operator=(const WifiInterface&) = delete;
    virtual ~WifiInterface() = default;

    // The SSIDs of the networks in range, each once, hidden ones left out; none when there is no interface, no service
    // to ask or no answer within 1 s. Main thread.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> scanForNetworks() = 0;
};

} // namespace vorrano::platform
