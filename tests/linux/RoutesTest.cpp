#include "platform/linux/Routes.h"

#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::flagsOfDefaultRoutes;
using linux_platform::flagsOfRoute;
using linux_platform::Hop;
using linux_platform::Link;
using linux_platform::Route;
using linux_platform::RouteKind;
using platform::kIsDirect;
using platform::kIsLocalAddress;
using platform::kReachable;

namespace {

const Hop kByLoopback{1, false, false};
const Hop kByLinkUp{2, true, false};
const Hop kByLinkDown{3, true, false};
const Hop kByNoLink{9, true, false};
const Hop kDirectByLinkUp{2, false, false};
const Hop kDead{2, true, true};

std::vector<Link> links() { return {{1, true, true}, {2, true, false}, {3, false, false}}; }

Route defaultRoute(std::vector<Hop> hops, RouteKind kind = RouteKind::Forwarded)
{
    return {kind, true, std::move(hops)};
}
Route otherRoute(std::vector<Hop> hops) { return {RouteKind::Forwarded, false, std::move(hops)}; }

} // namespace

struct Table {
    const char* name;
    std::vector<Route> routes;
    platform::ReachabilityFlags flags;

    friend void PrintTo(const Table& tested, std::ostream* out) { *out << tested.name; }
};

class DefaultRoutes : public testing::TestWithParam<Table> {};

TEST_P(DefaultRoutes, Tell) { EXPECT_EQ(flagsOfDefaultRoutes(GetParam().routes, links()), GetParam().flags); }

INSTANTIATE_TEST_SUITE_P(
    Tables, DefaultRoutes,
    testing::Values(Table{"NothingWithoutRoutes", {}, 0}, Table{"NothingOfAnotherRoute", {otherRoute({kByLinkUp})}, 0},
                    Table{"ReachableThroughALinkThatIsUp", {defaultRoute({kByLinkUp})}, kReachable},
                    Table{"ReachableWithoutAGatewayToo", {defaultRoute({kDirectByLinkUp})}, kReachable},
                    Table{"NothingThroughALinkThatIsDown", {defaultRoute({kByLinkDown})}, 0},
                    Table{"NothingThroughALinkThatHasGone", {defaultRoute({kByNoLink})}, 0},
                    Table{"NothingThroughTheLoopback", {defaultRoute({kByLoopback})}, 0},
                    Table{"NothingOfARouteThatRefuses", {defaultRoute({kByLinkUp}, RouteKind::Refusing)}, 0},
                    Table{"NothingOfADeadHop", {defaultRoute({kDead})}, 0},
                    Table{"ReachableByAnyOfSeveralHops", {defaultRoute({kByLinkDown, kByLinkUp})}, kReachable},
                    Table{"ReachableByAnyOfSeveralRoutes",
                          {defaultRoute({kByLinkDown}), otherRoute({kByLinkUp}), defaultRoute({kByLinkUp})},
                          kReachable}),
    [](const auto& tested) { return tested.param.name; });

struct Way {
    const char* name;
    Route route;
    platform::ReachabilityFlags flags;

    friend void PrintTo(const Way& tested, std::ostream* out) { *out << tested.name; }
};

class RouteToAnAddress : public testing::TestWithParam<Way> {};

TEST_P(RouteToAnAddress, Tells) { EXPECT_EQ(flagsOfRoute(GetParam().route, links()), GetParam().flags); }

INSTANTIATE_TEST_SUITE_P(
    Ways, RouteToAnAddress,
    testing::Values(
        Way{"ReachableByAGateway", otherRoute({kByLinkUp}), kReachable},
        Way{"DirectWithoutAGateway", otherRoute({kDirectByLinkUp}), kReachable | kIsDirect},
        Way{"NothingThroughALinkThatIsDown", otherRoute({kByLinkDown}), 0},
        Way{"NothingThroughALinkThatHasGone", otherRoute({kByNoLink}), 0}, Way{"NothingWithoutAWay", otherRoute({}), 0},
        Way{"NothingOfARouteThatRefuses", {RouteKind::Refusing, false, {kByLinkUp}}, 0},
        Way{"ALocalAddress", {RouteKind::Local, false, {kByLoopback}}, kReachable | kIsLocalAddress | kIsDirect}),
    [](const auto& tested) { return tested.param.name; });

} // namespace vorrano
