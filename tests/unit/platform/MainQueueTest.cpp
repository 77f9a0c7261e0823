#include "support/World.h"

#include <string>
#include <vector>

namespace vorrano::support {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FakeMainQueueTest : public ::testing::Test {
protected:
    World world;
    FakeMainQueue& queue = world.mainQueue;
    std::vector<std::string> told;

    Task tell(std::string text)
    {
        return [this, text] { told.push_back(text); };
    }
};

TEST_F(FakeMainQueueTest, HoldsTasksBackWhileAnAlertIsUpAndThenRunsThemOneByOneInOrder)
{
    queue.async([&] {
        world.alerts.runModal({});
        told.push_back("alert gone");
    });
    queue.async(tell("second"));
    queue.after(10ms, tell("third"));
    world.alerts.whileUp([&] {
        queue.async(tell("fourth"));
        world.advance(20ms);
        EXPECT_THAT(told, IsEmpty());
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("alert gone", "second", "fourth", "third"));
}

TEST_F(FakeMainQueueTest, RunsNoTaskInsideAnother)
{
    queue.async([&] {
        queue.async(tell("inner"));
        world.run();
        told.push_back("outer");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("outer", "inner"));
}

TEST_F(FakeMainQueueTest, LetsABackgroundTaskWaitForItsTurn)
{
    world.backgroundQueue.async([&] {
        EXPECT_FALSE(queue.isMainThread());
        const auto ran = queue.sync([&] {
            EXPECT_TRUE(queue.isMainThread());
            told.push_back("on main");
        });
        told.push_back(ran ? "ran" : "did not run");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("on main", "ran"));
}

TEST_F(FakeMainQueueTest, KeepsABackgroundTaskWaitingThroughAnAlert)
{
    world.backgroundQueue.async([&] {
        queue.sync(tell("on main"));
        EXPECT_EQ(world.now(), 5s);
    });
    world.alerts.whileUp([&] { world.advance(5s); });

    world.alerts.runModal({});
    EXPECT_THAT(told, IsEmpty());
    world.run();

    EXPECT_THAT(told, ElementsAre("on main"));
}

TEST_F(FakeMainQueueTest, RunsASyncTaskOfTheMainThreadAtOnce)
{
    EXPECT_TRUE(queue.sync(tell("at once")));

    EXPECT_THAT(told, ElementsAre("at once"));
}

TEST_F(FakeMainQueueTest, ReleasesTheWaitingUnrunWhenTheMainLoopEnds)
{
    bool ran = true;
    world.backgroundQueue.async([&] { ran = queue.sync(tell("never")); });
    const auto hold = queue.hold();
    world.run();

    queue.end();
    queue.async(tell("never"));
    queue.after(0ns, tell("never"));
    world.run();

    EXPECT_FALSE(ran);
    EXPECT_FALSE(queue.sync(tell("never")));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(FakeMainQueueTest, WaitsOutAPauseWhileTheClockAndTheBackgroundGoOn)
{
    queue.async(tell("main"));
    queue.after(10ms, tell("delayed"));
    world.backgroundQueue.async(tell("background"));

    world.pause.pause(3s);

    EXPECT_THAT(told, ElementsAre("background"));
    EXPECT_EQ(world.now(), 3s);
    EXPECT_THAT(world.pause.pauses(), ElementsAre(3s));

    world.run();

    EXPECT_THAT(told, ElementsAre("background", "main", "delayed"));
}

TEST_F(FakeMainQueueTest, TellsOfSleepPastAnAlertButNotDuringAPause)
{
    const auto sleep = world.power.onWillSleep(tell("sleep"));
    const auto wake = world.power.onDidWake(tell("wake"));
    world.alerts.whileUp([&] {
        world.power.sleep();
        EXPECT_THAT(told, ElementsAre("sleep"));
    });
    world.pause.whilePaused([&] { world.power.wake(); });

    world.alerts.runModal({});
    world.pause.pause(1s);
    EXPECT_THAT(told, ElementsAre("sleep"));
    world.run();

    EXPECT_THAT(told, ElementsAre("sleep", "wake"));
}

} // namespace
} // namespace vorrano::support
