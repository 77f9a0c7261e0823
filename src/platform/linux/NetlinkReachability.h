#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/NetworkReachability.h"

#include <memory>
#include <string>

namespace vorrano::linux_platform {

// Reachability as the kernel's routes tell it: for 0.0.0.0 by the default routes of both families, for any other
// address by the route to it. A host is what its name resolves to: on a background thread, for which flags() waits 1 s
// at most. A notifier follows the changes of links, addresses and routes, and needs the main thread's event loop.
//
// Lifetime: both queues outlive it and its references.
class NetlinkReachability final : public platform::NetworkReachability {
public:
    NetlinkReachability(platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue);

    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference> createWithName(const std::string& host) override;
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference>
    createWithAddress(const platform::SocketAddress& address) override;

private:
    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
};

} // namespace vorrano::linux_platform
