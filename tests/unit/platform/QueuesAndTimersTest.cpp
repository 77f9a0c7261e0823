#include "support/World.h"

#include "platform/SerialQueue.h"

#include <memory>
#include <string>
#include <vector>

// What the tests' queues have beyond the program's: exact times on the virtual clock, and a memory.
namespace vorrano::support {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QueuesAndTimers : public ::testing::Test {
protected:
    World world;
    std::shared_ptr<platform::SerialQueue> queue = world.backgroundQueue.makeSerialQueue("org.example.queue");
    std::vector<std::string> told;
    std::vector<Nanoseconds> fired;

    Task tell(std::string text)
    {
        return [this, text] { told.push_back(text); };
    }

    Task fire()
    {
        return [this] { fired.push_back(world.now()); };
    }

    // A task that keeps its thread until the clock has gone on so far.
    Task busyFor(Nanoseconds duration)
    {
        return [this, duration] { world.time.waitUntil([] { return false; }, world.now() + duration); };
    }
};

TEST_F(QueuesAndTimers, ATaskStartsWhenTheOneBeforeItHasEnded)
{
    queue->async([&] {
        busyFor(10ms)();
        fired.push_back(world.now());
    });
    queue->async(fire());

    world.advance(9ms);
    EXPECT_THAT(fired, IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(fired, ElementsAre(10ms, 10ms));
}

TEST_F(QueuesAndTimers, TheMainThreadRunsNoOtherMainTaskWhileItWaitsForASerialTask)
{
    world.mainQueue.async(tell("other main task"));

    queue->sync(tell("task"));

    EXPECT_THAT(told, ElementsAre("task"));
    world.run();
    EXPECT_THAT(told, ElementsAre("task", "other main task"));
}

TEST_F(QueuesAndTimers, ATimerFiresExactlyWhenItIsDue)
{
    const auto timer = queue->makeTimer({10ms, 5ms}, fire());
    world.advance(5ms);

    timer->start();
    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(15ms));
}

TEST_F(QueuesAndTimers, ATimerIsLateByTheShareOfItsLeewayThatIsAskedFor)
{
    world.time.setLateness(0.5);
    const auto timer = queue->makeTimer({10ms, 4ms}, fire());

    timer->start();
    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(12ms));
}

TEST_F(QueuesAndTimers, RemembersTheLabels)
{
    EXPECT_THAT(world.backgroundQueue.serialQueues(), ElementsAre("org.example.queue"));
}

} // namespace
} // namespace vorrano::support
