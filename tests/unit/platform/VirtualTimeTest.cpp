#include "support/World.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vorrano::support {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class VirtualTimeTest : public ::testing::Test {
protected:
    World world;
    std::vector<std::string> told;

    Task tell(std::string text)
    {
        return [this, text] { told.push_back(text); };
    }
};

TEST_F(VirtualTimeTest, RunsNothingBeforeItIsAskedTo)
{
    world.mainQueue.async(tell("main"));
    world.backgroundQueue.async(tell("background"));

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(VirtualTimeTest, RunsMainAndBackgroundTasksInTheOrderOfSubmission)
{
    world.mainQueue.async(tell("main 1"));
    world.backgroundQueue.async(tell("background 1"));
    world.mainQueue.async(tell("main 2"));
    world.backgroundQueue.async(tell("background 2"));

    world.run();

    EXPECT_THAT(told, ElementsAre("main 1", "background 1", "main 2", "background 2"));
    EXPECT_EQ(world.now(), 0ns);
}

TEST_F(VirtualTimeTest, GivesEveryBackgroundTaskAThreadOfItsOwn)
{
    const auto main = std::this_thread::get_id();
    std::thread::id first;
    std::thread::id second;
    world.backgroundQueue.async([&] {
        first = std::this_thread::get_id();
        world.mainQueue.sync([&] { EXPECT_EQ(std::this_thread::get_id(), main); });
    });
    world.backgroundQueue.async([&] { second = std::this_thread::get_id(); });

    world.run();

    EXPECT_NE(first, main);
    EXPECT_NE(second, main);
    EXPECT_NE(first, second);
}

TEST_F(VirtualTimeTest, StopsAtEachDueTimeExactly)
{
    std::vector<Nanoseconds> times;
    world.mainQueue.after(30ms, [&] { times.push_back(world.now()); });
    world.mainQueue.after(10ms, [&] {
        times.push_back(world.now());
        world.mainQueue.after(5ms, [&] { times.push_back(world.now()); });
    });

    world.advance(25ms);

    EXPECT_THAT(times, ElementsAre(10ms, 15ms));
    EXPECT_EQ(world.now(), 25ms);

    world.advance(5ms);

    EXPECT_THAT(times, ElementsAre(10ms, 15ms, 30ms));
}

TEST_F(VirtualTimeTest, LetsTimePassInsideAnAdvance)
{
    std::vector<Nanoseconds> times;
    world.alerts.whileUp([&] { world.advance(50ms); });
    world.mainQueue.after(10ms, [&] { world.alerts.runModal({}); });
    world.mainQueue.after(20ms, [&] { times.push_back(world.now()); });

    world.advance(30ms);

    EXPECT_EQ(world.now(), 60ms);
    EXPECT_THAT(times, ElementsAre(60ms));
}

TEST_F(VirtualTimeTest, GoesOnForAsLongAsATestLikes)
{
    constexpr int kManySteps = 300'000;
    int steps = 0;
    Task again = [&] {
        ++steps;
        world.time.at(world.now() + 1ms, again);
    };
    world.time.at(1ms, again);

    world.advance(kManySteps * 1ms);

    EXPECT_EQ(steps, kManySteps);
}

TEST_F(VirtualTimeTest, LogsTheExceptionsThatLeaveATask)
{
    world.mainQueue.async([] { throw std::runtime_error("on main"); });
    world.backgroundQueue.async([] { throw std::runtime_error("in the background"); });
    world.backgroundQueue.makeSerialQueue("queue")->async([] { throw 1; });
    world.mainQueue.async(tell("and on it goes"));

    world.run();

    EXPECT_THAT(world.log.lines(), ElementsAre("Uncaught exception: on main", "Uncaught exception: in the background",
                                               "Uncaught exception: not a std::exception"));
    EXPECT_THAT(told, ElementsAre("and on it goes"));
}

TEST_F(VirtualTimeTest, LetsTheMainThreadWaitWhileTheOthersRunAndTheClockMoves)
{
    bool done = false;
    world.time.at(40ms, [&] { done = true; });
    world.mainQueue.async(tell("main"));
    world.backgroundQueue.async(tell("background"));

    const auto waited = world.time.waitUntil([&] { return done; }, 1s);

    EXPECT_EQ(waited, VirtualTime::Wait::Met);
    EXPECT_EQ(world.now(), 40ms);
    EXPECT_THAT(told, ElementsAre("background"));
}

TEST_F(VirtualTimeTest, EndsAWaitAtItsDeadline)
{
    auto waited = VirtualTime::Wait::Met;
    world.backgroundQueue.async([&] { waited = world.time.waitUntil([] { return false; }, 70ms); });

    world.advance(69ms);
    EXPECT_EQ(world.time.backgroundTasks(), 1U);
    world.advance(1ms);

    EXPECT_EQ(waited, VirtualTime::Wait::TimedOut);
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(VirtualTimeTest, GivesTheSameRunForTheSameSeedAndAnotherForAnother)
{
    const auto runOf = [](std::uint32_t seed) {
        FakeSystemLog log;
        VirtualTime time(log);
        time.explore(seed);
        std::string order;
        for (char name = 'a'; name < 'i'; ++name) {
            time.runInBackground([&order, &time, name] {
                order += name;
                time.crossing();
                order += name;
            });
        }
        time.run();
        return order;
    };

    EXPECT_EQ(runOf(1), runOf(1));
    EXPECT_NE(runOf(1), runOf(2));
    EXPECT_EQ(runOf(3).size(), 16U);
}

TEST_F(VirtualTimeTest, LetsTheBackgroundInBetweenTwoTerminalCallsOfTheMainThreadOnlyWhenItExplores)
{
    const auto ranInBetween = [this] {
        bool ran = false;
        world.backgroundQueue.async([&] { ran = true; });
        static_cast<void>(world.terminal.open("/dev/cu.nothing"));
        const auto inBetween = ran;
        world.run();
        return inBetween;
    };
    for (int round = 0; round < 20; ++round) {
        EXPECT_FALSE(ranInBetween());
    }

    world.time.explore(7);
    int times = 0;
    for (int round = 0; round < 20; ++round) {
        times += ranInBetween() ? 1 : 0;
    }

    EXPECT_GT(times, 0);
    EXPECT_LT(times, 20);
}

} // namespace
} // namespace vorrano::support
