// The kernel's answers about links and routes, and what they say about how far the network reaches.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "platform/linux/NetlinkMessages.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <libmnl/libmnl.h>

using namespace vorrano;
using fuzz::check;
using linux_platform::Link;
using linux_platform::Route;

namespace {

struct Dump {
    std::vector<Link> links;
    std::vector<Route> routes;
};

int takeMessage(const nlmsghdr* message, void* data)
{
    auto& dump = *static_cast<Dump*>(data);
    if (auto link = linux_platform::linkFrom(*message)) {
        dump.links.push_back(*link);
    }
    if (auto route = linux_platform::routeFrom(*message)) {
        dump.routes.push_back(*std::move(route));
    }
    return MNL_CB_OK;
}

// What is read of an answer must not depend on what is behind it in the buffer.
Dump dumpFrom(const std::string& answer)
{
    Dump dump;
    std::vector<char> exactly(answer.begin(), answer.end());
    if (!linux_platform::areWholeMessages(exactly)) {
        return dump;
    }
    mnl_cb_run(exactly.data(), exactly.size(), 0, 0, takeMessage, &dump);
    return dump;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [links, routes] = dumpFrom(fuzz::Input(data, size).rest());
    const bool isAnyUp = std::any_of(links.begin(), links.end(), [](const Link& link) { return link.isUp; });
    const auto general = linux_platform::flagsOfDefaultRoutes(routes, links);
    check(general == 0 || general == platform::kReachable, "a default route leads out, or not");
    check(isAnyUp || general == 0, "nothing is reached without a link");
    for (const auto& route : routes) {
        check(!route.hops.empty(), "a route takes a way");
        const auto flags = linux_platform::flagsOfRoute(route, links);
        constexpr auto kKnown = platform::kReachable | platform::kIsLocalAddress | platform::kIsDirect;
        check((flags & ~kKnown) == 0, "only known flags are set");
        check(flags == 0 || (flags & platform::kReachable) != 0, "whatever is so is reachable");
        check(route.kind != linux_platform::RouteKind::Refusing || flags == 0, "a refusing route leads nowhere");
    }
    return 0;
}
