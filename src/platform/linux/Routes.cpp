#include "platform/linux/Routes.h"

#include <algorithm>

namespace vorrano::linux_platform {

namespace {

const Link* linkOf(const Hop& hop, const std::vector<Link>& links)
{
    const auto found =
        std::find_if(links.begin(), links.end(), [&](const Link& link) { return link.index == hop.link; });
    return found == links.end() ? nullptr : &*found;
}

bool isUp(const Hop& hop, const std::vector<Link>& links)
{
    const auto* link = linkOf(hop, links);
    return link != nullptr && link->isUp && !hop.isDead;
}

} // namespace

platform::ReachabilityFlags flagsOfDefaultRoutes(const std::vector<Route>& routes, const std::vector<Link>& links)
{
    const auto leadsOut = [&](const Hop& hop) { return isUp(hop, links) && !linkOf(hop, links)->isLoopback; };
    const bool isReachable = std::any_of(routes.begin(), routes.end(), [&](const Route& route) {
        return route.isMainDefault && route.kind == RouteKind::Forwarded &&
               std::any_of(route.hops.begin(), route.hops.end(), leadsOut);
    });
    return isReachable ? platform::kReachable : 0;
}

platform::ReachabilityFlags flagsOfRoute(const Route& route, const std::vector<Link>& links)
{
    if (route.kind == RouteKind::Local) {
        return platform::kReachable | platform::kIsLocalAddress | platform::kIsDirect;
    }
    const auto hop = std::find_if(route.hops.begin(), route.hops.end(),
                                  [&](const Hop& candidate) { return isUp(candidate, links); });
    if (route.kind == RouteKind::Refusing || hop == route.hops.end()) {
        return 0;
    }
    return hop->hasGateway ? platform::kReachable : platform::kReachable | platform::kIsDirect;
}

} // namespace vorrano::linux_platform
