#include "platform/linux/NetlinkReachability.h"
#include "linux/EventLoop.h"
#include "linux/HeldQueue.h"
#include "linux/NetworkNamespace.h"

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::NetlinkReachability;
using platform::kIsDirect;
using platform::kIsLocalAddress;
using platform::kReachable;
using platform::ReachabilityFlags;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Background threads, until it goes.
class Threads final : public platform::BackgroundQueue {
public:
    ~Threads() override
    {
        for (auto& thread : m_threads) {
            thread.join();
        }
    }
    void async(platform::Task task) override
    {
        if (!isStuck) {
            m_threads.emplace_back(std::move(task));
        }
    }
    std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string) override { return nullptr; }

    // No task begins.
    bool isStuck = false;

private:
    std::vector<std::thread> m_threads;
};

} // namespace

class Reachability : public testing::Test {
protected:
    std::unique_ptr<platform::ReachabilityReference> to(std::array<std::uint8_t, 4> address)
    {
        return reachability.createWithAddress({.address = address});
    }
    std::optional<ReachabilityFlags> internet() { return to({0, 0, 0, 0})->flags(); }
    std::optional<ReachabilityFlags> linkLocal() { return to({169, 254, 0, 0})->flags(); }
    std::optional<ReachabilityFlags> host(const std::string& name)
    {
        return reachability.createWithName(name)->flags();
    }

    support::NetworkNamespace network;
    support::HeldQueue queue;
    Threads threads;
    NetlinkReachability reachability{queue, threads};
};

TEST_F(Reachability, HasNoInternetWithoutAnyRoute) { EXPECT_EQ(internet(), 0u); }

TEST_F(Reachability, HasNoInternetWithTheLoopbackAlone)
{
    network.ip("link set lo up");

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByADefaultRouteIntoTheLoopback)
{
    network.ip("link set lo up");
    network.ip("route add default dev lo");

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByALinkWithoutADefaultRoute)
{
    network.addLink();

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasInternetByAnIpv4DefaultRoute)
{
    network.addLink();
    network.ip("route add default via 192.0.2.1");

    EXPECT_EQ(internet(), kReachable);
}

TEST_F(Reachability, HasInternetByAnIpv6DefaultRouteAlone)
{
    network.addLink();
    network.ip("-4 address flush dev net");
    network.ip("-6 route add default via fd00::1");

    EXPECT_EQ(internet(), kReachable);
}

TEST_F(Reachability, HasInternetByAnyHopOfADefaultRoute)
{
    network.addLink();
    network.ip("link add other type veth peer name othercable");
    network.ip("address add 198.51.100.2/24 dev other");
    network.ip("link set other up");
    network.ip("route add default nexthop via 198.51.100.1 dev other onlink nexthop via 192.0.2.1 dev net");
    EXPECT_EQ(internet(), kReachable);

    network.pullCable();

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByALinkThatIsDown)
{
    network.addLink();
    network.ip("route add default via 192.0.2.1");

    network.ip("link set net down");

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByALinkWithoutCarrier)
{
    network.addLink();
    network.ip("route add default via 192.0.2.1");
    network.ip("-6 route add default via fd00::1");

    network.pullCable();

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByADefaultRouteOfAnotherTable)
{
    network.addLink();
    network.ip("route add default via 192.0.2.1 table 100");

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoInternetByADefaultRouteThatRefuses)
{
    network.addLink();
    network.ip("route add unreachable default");

    EXPECT_EQ(internet(), 0u);
}

TEST_F(Reachability, HasNoLinkLocalNetworkWithoutARoute)
{
    network.ip("link set lo up");

    EXPECT_EQ(linkLocal(), 0u);
}

TEST_F(Reachability, HasALinkLocalNetworkByAGateway)
{
    network.addLink();
    network.ip("route add default via 192.0.2.1");

    EXPECT_EQ(linkLocal(), kReachable);
}

TEST_F(Reachability, HasALinkLocalNetworkDirectlyWithoutAGateway)
{
    network.addLink();
    network.ip("address add 169.254.7.7/16 dev net");

    EXPECT_EQ(linkLocal(), kReachable | kIsDirect);
}

TEST_F(Reachability, HasNoLinkLocalNetworkWithoutCarrier)
{
    network.addLink();
    network.ip("address add 169.254.7.7/16 dev net");

    network.pullCable();

    EXPECT_EQ(linkLocal(), 0u);
}

TEST_F(Reachability, KnowsTheAddressesOfThisComputer)
{
    network.ip("link set lo up");
    network.addLink();

    EXPECT_EQ(to({127, 0, 0, 1})->flags(), kReachable | kIsLocalAddress | kIsDirect);
    EXPECT_EQ(to({192, 0, 2, 2})->flags(), kReachable | kIsLocalAddress | kIsDirect);
    EXPECT_EQ(to({192, 0, 2, 3})->flags(), kReachable | kIsDirect);
    EXPECT_EQ(to({198, 51, 100, 1})->flags(), 0u);
}

TEST_F(Reachability, KnowsThatARouteRefuses)
{
    network.addLink();
    for (const char* kind : {"unreachable", "blackhole", "prohibit"}) {
        network.ip(std::string("route replace ") + kind + " 198.51.100.0/24");

        EXPECT_EQ(to({198, 51, 100, 1})->flags(), 0u) << kind;
    }
}

TEST_F(Reachability, TakesAHostForItsAddresses)
{
    network.ip("link set lo up");
    network.addLink();

    EXPECT_EQ(host("127.0.0.1"), kReachable | kIsLocalAddress | kIsDirect);
    EXPECT_EQ(host("fd00::3"), kReachable | kIsDirect);
    EXPECT_EQ(host("fd01::3"), 0u);
    EXPECT_EQ(host("localhost"), kReachable | kIsLocalAddress | kIsDirect);
}

TEST_F(Reachability, TakesAHostWithoutAddressesForUnreachable) { EXPECT_EQ(host("nobody.invalid"), 0u); }

TEST_F(Reachability, HasNoFlagsOfAHostThatIsNotResolvedInASecond)
{
    threads.isStuck = true;

    EXPECT_EQ(host("127.0.0.1"), std::nullopt);
}

TEST_F(Reachability, RefusesAnEmptyName) { EXPECT_EQ(reachability.createWithName(""), nullptr); }

TEST_F(Reachability, RefusesAnotherFamily)
{
    EXPECT_EQ(reachability.createWithAddress({.family = 10}), nullptr);
    EXPECT_EQ(reachability.createWithAddress({.length = 28}), nullptr);
}

class ReachabilityNotifier : public Reachability {
protected:
    ReachabilityNotifier()
    {
        reference->setCallback([this](ReachabilityFlags flags) { told.push_back(flags); });
    }

    // Waits for word on the main queue and lets it through.
    void expectWord()
    {
        EXPECT_TRUE(support::spinUntil([this] { return queue.size() > 0; }));
        queue.run();
    }

    std::unique_ptr<platform::ReachabilityReference> reference = to({0, 0, 0, 0});
    std::vector<ReachabilityFlags> told;
};

TEST_F(ReachabilityNotifier, FiresOnChange)
{
    network.addLink();
    ASSERT_TRUE(reference->schedule());

    network.ip("route add default via 192.0.2.1");
    expectWord();
    EXPECT_THAT(told, ElementsAre(kReachable));
    network.pullCable();
    expectWord();
    EXPECT_THAT(told, ElementsAre(kReachable, 0u));
    network.plugCable();
    expectWord();

    EXPECT_THAT(told, ElementsAre(kReachable, 0u, kReachable));
}

TEST_F(ReachabilityNotifier, WaitsForTheMainQueue)
{
    network.addLink();
    ASSERT_TRUE(reference->schedule());

    network.ip("route add default via 192.0.2.1");
    ASSERT_TRUE(support::spinUntil([this] { return queue.size() > 0; }));

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ReachabilityNotifier, SaysNothingOfChangesThatMakeNoDifference)
{
    network.addLink();
    const auto other = to({198, 51, 100, 1});
    int otherTold = 0;
    other->setCallback([&](ReachabilityFlags) { ++otherTold; });
    ASSERT_TRUE(reference->schedule());
    ASSERT_TRUE(other->schedule());

    network.ip("route add 198.51.100.0/24 via 192.0.2.1");
    expectWord();
    EXPECT_EQ(otherTold, 1);
    network.ip("route add default via 192.0.2.1");
    expectWord();

    EXPECT_THAT(told, ElementsAre(kReachable));
}

TEST_F(ReachabilityNotifier, SaysNothingBeforeItIsScheduledAndAfterItIsNot)
{
    network.addLink();
    const auto other = to({0, 0, 0, 0});
    ASSERT_TRUE(other->schedule());
    ASSERT_TRUE(reference->schedule());
    int otherTold = 0;
    other->setCallback([&](ReachabilityFlags) { ++otherTold; });

    network.ip("route add default via 192.0.2.1");
    ASSERT_TRUE(support::spinUntil([this] { return queue.size() == 2; }));
    reference->unschedule();
    queue.run();

    EXPECT_THAT(told, IsEmpty()) << "word that was on its way is dropped";
    EXPECT_EQ(otherTold, 1);
}

TEST_F(ReachabilityNotifier, EndsWithItsReference)
{
    network.addLink();
    ASSERT_TRUE(reference->schedule());
    network.ip("route add default via 192.0.2.1");
    ASSERT_TRUE(support::spinUntil([this] { return queue.size() == 1; }));

    reference.reset();
    queue.run();

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ReachabilityNotifier, MayEndInsideItsOwnCallback)
{
    network.addLink();
    reference->setCallback([this](ReachabilityFlags flags) {
        told.push_back(flags);
        reference.reset();
    });
    ASSERT_TRUE(reference->schedule());

    network.ip("route add default via 192.0.2.1");
    expectWord();

    EXPECT_THAT(told, ElementsAre(kReachable));
}

TEST_F(ReachabilityNotifier, FollowsAHostToo)
{
    network.ip("link set lo up");
    network.addLink();
    reference = reachability.createWithName("198.51.100.1");
    reference->setCallback([this](ReachabilityFlags flags) { told.push_back(flags); });
    ASSERT_TRUE(reference->schedule());

    network.ip("route add default via 192.0.2.1");
    EXPECT_TRUE(support::spinUntil([this] {
        queue.run();
        return !told.empty();
    }));

    EXPECT_THAT(told, ElementsAre(kReachable));
}

} // namespace vorrano
