#include "support/World.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::support {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

class FakeNetwork : public ::testing::Test {
protected:
    World world;
    std::vector<std::optional<std::string>> bodies;
    std::vector<platform::ReachabilityFlags> changes;

    void fetch(const std::string& address)
    {
        world.backgroundQueue.async([this, address] { bodies.push_back(world.urlFetch.contentsOfUrl(address)); });
    }
};

TEST_F(FakeNetwork, AnswersRequestsInTheirOrder)
{
    world.urlFetch.answer("first");
    fetch("https://one");
    fetch("https://two");

    world.run();
    EXPECT_EQ(world.urlFetch.waiting(), 1U);
    world.urlFetch.answerNothing();
    world.run();

    EXPECT_THAT(bodies, ElementsAre(Optional(std::string("first")), std::nullopt));
    EXPECT_THAT(world.urlFetch.requests(), ElementsAre("https://one", "https://two"));
}

TEST_F(FakeNetwork, GivesAnswersInTheOrderOfAskingWhicheverThreadWakesFirst)
{
    std::map<std::string, std::optional<std::string>> bodyOf;
    world.time.explore(1);
    for (const std::string address : {"1", "2", "3", "4", "5"}) {
        world.backgroundQueue.async([&, address] { bodyOf[address] = world.urlFetch.contentsOfUrl(address); });
    }
    world.run();
    const auto asked = world.urlFetch.requests();
    ASSERT_EQ(asked.size(), 5U);

    for (const auto& address : asked) {
        world.urlFetch.answer("for " + address);
    }
    world.run();

    for (const auto& address : asked) {
        EXPECT_EQ(bodyOf[address], "for " + address);
    }
}

TEST_F(FakeNetwork, AnswersAfterTheDelay)
{
    world.urlFetch.answerAfter(300ms, "late");
    fetch("https://one");

    world.advance(299ms);
    EXPECT_THAT(bodies, IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(bodies, ElementsAre(Optional(std::string("late"))));
}

TEST_F(FakeNetwork, AsksAServiceInPlaceOfTheQueuedAnswers)
{
    world.urlFetch.answer("queued");
    world.urlFetch.answerBy([this](const std::string& address) {
        world.time.waitUntil([] { return false; }, world.now() + 1s);
        return std::optional("of " + address);
    });
    fetch("https://one");

    world.advance(999ms);
    EXPECT_THAT(bodies, IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(bodies, ElementsAre(Optional(std::string("of https://one"))));
}

TEST_F(FakeNetwork, GivesUpAfterAMinuteOfSilence)
{
    fetch("https://one");

    world.advance(59s);
    EXPECT_THAT(bodies, IsEmpty());
    world.advance(1s);

    EXPECT_THAT(bodies, ElementsAre(std::nullopt));
}

TEST_F(FakeNetwork, TellsScheduledReferencesOfAChange)
{
    const auto reference = world.reachability.createWithName("service.example");
    reference->setCallback([this](auto flags) { changes.push_back(flags); });
    world.reachability.change(0);
    world.run();
    EXPECT_THAT(changes, IsEmpty());

    reference->schedule();
    world.reachability.change(platform::kReachable);
    EXPECT_THAT(changes, IsEmpty());
    world.run();
    reference->unschedule();
    world.reachability.change(0);
    world.run();

    EXPECT_THAT(changes, ElementsAre(platform::kReachable));
    EXPECT_EQ(reference->flags(), 0U);
}

TEST_F(FakeNetwork, TellsADroppedReferenceNothing)
{
    auto reference = world.reachability.createWithAddress({});
    reference->setCallback([this](auto flags) { changes.push_back(flags); });
    reference->schedule();
    world.reachability.change(0);

    reference.reset();
    world.run();

    EXPECT_THAT(changes, IsEmpty());
    EXPECT_EQ(world.reachability.references(), 0);
    EXPECT_THAT(world.reachability.created(), ElementsAre("0.0.0.0:0"));
}

TEST_F(FakeNetwork, RefusesAsOrdered)
{
    EXPECT_EQ(world.reachability.createWithName(""), nullptr);
    const auto reference = world.reachability.createWithName("service.example");
    world.reachability.refuseCallback();
    world.reachability.refuseSchedule();
    world.reachability.refuseCreation();

    EXPECT_FALSE(reference->setCallback({}));
    EXPECT_FALSE(reference->schedule());
    EXPECT_EQ(world.reachability.createWithName("service.example"), nullptr);
    EXPECT_EQ(world.reachability.scheduled(), 0);
}

TEST_F(FakeNetwork, CountsWifiScans)
{
    EXPECT_EQ(world.wifi.scanForNetworks(), std::nullopt);
    world.wifi.setNetworks({{"Home", "Cafe"}});

    EXPECT_THAT(world.wifi.scanForNetworks().value(), ElementsAre("Home", "Cafe"));
    EXPECT_EQ(world.wifi.scans(), 2);
}

} // namespace
} // namespace vorrano::support
