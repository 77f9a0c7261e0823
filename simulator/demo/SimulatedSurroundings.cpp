#include "simulator/demo/SimulatedSurroundings.h"

namespace vorrano::demo {
namespace {

class AlwaysReachable final : public platform::ReachabilityReference {
public:
    [[nodiscard]] std::optional<platform::ReachabilityFlags> flags() override { return platform::kReachable; }
    bool setCallback(std::function<void(platform::ReachabilityFlags)>) override { return true; }
    bool schedule() override { return true; }
    void unschedule() override {}
};

} // namespace

std::optional<std::vector<std::string>> SimulatedWifi::scanForNetworks()
{
    return std::vector<std::string>{"My Home Net", "Garden Shed", "Caf\u00E9 next door", "Guests"};
}

std::unique_ptr<platform::ReachabilityReference> SimulatedReachability::createWithName(const std::string&)
{
    return std::make_unique<AlwaysReachable>();
}

std::unique_ptr<platform::ReachabilityReference>
SimulatedReachability::createWithAddress(const platform::SocketAddress&)
{
    return std::make_unique<AlwaysReachable>();
}

} // namespace vorrano::demo
