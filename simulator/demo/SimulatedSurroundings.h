#pragma once

#include "platform/NetworkReachability.h"
#include "platform/WifiInterface.h"

namespace vorrano::demo {

// A computer at home: some networks in range.
class SimulatedWifi final : public platform::WifiInterface {
public:
    [[nodiscard]] std::optional<std::vector<std::string>> scanForNetworks() override;
};

// A network path to everywhere, for ever.
class SimulatedReachability final : public platform::NetworkReachability {
public:
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference> createWithName(const std::string& host) override;
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference>
    createWithAddress(const platform::SocketAddress& address) override;
};

} // namespace vorrano::demo
