#pragma once

#include "platform/NetworkReachability.h"

#include <cstdint>
#include <vector>

namespace vorrano::linux_platform {

// A network interface, as far as it matters for what can be reached.
struct Link {
    std::uint32_t index = 0;
    // Switched on, and with carrier.
    bool isUp = false;
    bool isLoopback = false;
};

enum class RouteKind {
    // To elsewhere, by a gateway or without one.
    Forwarded,
    // To an address of this computer's.
    Local,
    // Unreachable, prohibited and such.
    Refusing,
};

// One way that a route takes.
struct Hop {
    std::uint32_t link = 0;
    bool hasGateway = false;
    bool isDead = false;
};

struct Route {
    RouteKind kind = RouteKind::Forwarded;
    // For any destination, and in the main table.
    bool isMainDefault = false;
    std::vector<Hop> hops;
};

// What can be reached in general: kReachable when a default route of the main table leads through a link that is up
// and is not the loopback.
[[nodiscard]] platform::ReachabilityFlags flagsOfDefaultRoutes(const std::vector<Route>& routes,
                                                               const std::vector<Link>& links);

// How the destination can be reached for which the system has chosen the route.
[[nodiscard]] platform::ReachabilityFlags flagsOfRoute(const Route& route, const std::vector<Link>& links);

} // namespace vorrano::linux_platform
