#include "support/World.h"

#include "platform/SerialQueue.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

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

TEST_F(QueuesAndTimers, ASerialQueueRunsOneTaskAtATimeInOrder)
{
    queue->async([&] {
        busyFor(10ms)();
        told.push_back("first");
    });
    queue->async(tell("second"));

    world.run();
    EXPECT_THAT(told, IsEmpty());
    world.advance(10ms);

    EXPECT_THAT(told, ElementsAre("first", "second"));
}

TEST_F(QueuesAndTimers, AnIdleSerialQueueRunsInPlaceForABackgroundTask)
{
    world.backgroundQueue.async([&] {
        queue->inPlaceOrAsync(tell("in place"));
        told.push_back("after");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("in place", "after"));
}

TEST_F(QueuesAndTimers, ABusySerialQueueRunsNothingInPlace)
{
    queue->async(busyFor(10ms));
    world.run();
    world.backgroundQueue.async([&] {
        queue->inPlaceOrAsync(tell("later"));
        told.push_back("after");
    });

    world.advance(10ms);

    EXPECT_THAT(told, ElementsAre("after", "later"));
}

TEST_F(QueuesAndTimers, TheMainThreadNeverRunsASerialTaskInPlace)
{
    queue->inPlaceOrAsync([&] { told.push_back(world.mainQueue.isMainThread() ? "main" : "background"); });
    EXPECT_THAT(told, IsEmpty());

    world.run();

    EXPECT_THAT(told, ElementsAre("background"));
}

TEST_F(QueuesAndTimers, WhatContinuesGoesBeforeWhateverWaits)
{
    queue->async([&] {
        queue->async(tell("waits"));
        queue->continueOnPool(tell("continues"));
        told.push_back("first");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("first", "continues", "waits"));
}

TEST_F(QueuesAndTimers, AnInPlaceTaskContinuesOnThePoolAndGivesItsThreadBack)
{
    world.backgroundQueue.async([&] {
        queue->inPlaceOrAsync([&] { queue->continueOnPool(tell("continues")); });
        told.push_back("reader goes on");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("reader goes on", "continues"));
}

TEST_F(QueuesAndTimers, TheMainThreadWaitsForASerialTaskThatRunsInTheBackground)
{
    world.mainQueue.async(tell("other main task"));
    queue->async(tell("before"));

    queue->sync([&] { told.push_back(world.mainQueue.isMainThread() ? "main" : "background"); });

    EXPECT_THAT(told, ElementsAre("before", "background"));
}

TEST_F(QueuesAndTimers, ABackgroundTaskWaitsForASerialTask)
{
    queue->async(busyFor(10ms));
    world.backgroundQueue.async([&] {
        queue->sync(tell("task"));
        told.push_back("waiter");
    });

    world.advance(10ms);

    EXPECT_THAT(told, ElementsAre("task", "waiter"));
}

TEST_F(QueuesAndTimers, ABackgroundTaskRunsItsSyncInPlaceOnAnIdleQueue)
{
    world.backgroundQueue.async([&] {
        const auto caller = std::this_thread::get_id();
        queue->sync([&] { told.emplace_back(std::this_thread::get_id() == caller ? "in place" : "elsewhere"); });
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("in place"));
}

TEST_F(QueuesAndTimers, TheMainThreadRunsAStepInPlaceOnAnIdleQueueThatAsksForIt)
{
    queue->syncInPlace([&] { told.emplace_back(world.mainQueue.isMainThread() ? "main" : "background"); });

    EXPECT_THAT(told, ElementsAre("main"));
}

TEST_F(QueuesAndTimers, TheMainThreadWaitsItsTurnOnABusyQueue)
{
    queue->async(busyFor(10ms));

    queue->syncInPlace([&] { told.emplace_back(world.mainQueue.isMainThread() ? "main" : "background"); });

    EXPECT_THAT(told, ElementsAre("background"));
    EXPECT_EQ(world.now(), 10ms);
}

TEST_F(QueuesAndTimers, WhatTheMainThreadLeavesComesFirstAndInTheBackground)
{
    const auto tellThread = [this](const std::string& text) {
        return [this, text] { told.push_back(text + (world.mainQueue.isMainThread() ? " on main" : " elsewhere")); };
    };
    queue->syncInPlace([&] {
        queue->async(tellThread("third"));
        queue->continueOnPool(tellThread("second"));
        queue->offMainThread(tellThread("first"));
        tellThread("step")();
    });
    queue->syncInPlace(tellThread("last"));

    EXPECT_THAT(
        told, ElementsAre("step on main", "first elsewhere", "second elsewhere", "third elsewhere", "last elsewhere"));
}

TEST_F(QueuesAndTimers, AReaderThatComesByDoesFirstWhatTheMainThreadLeft)
{
    world.time.setLateness(1.0);
    queue->syncInPlace([&] { queue->offMainThread(tell("left")); });
    world.backgroundQueue.async([&] {
        queue->inPlaceOrAsync(tell("reply"));
        told.emplace_back("reader goes on");
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("left", "reply", "reader goes on"));
}

TEST_F(QueuesAndTimers, WhatTheMainThreadLeavesIsDoneAtTheLatestTwoMillisecondsLater)
{
    world.time.setLateness(1.0);
    queue->syncInPlace([&] { queue->offMainThread(tell("left")); });

    world.advance(1ms);
    EXPECT_THAT(told, IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(told, ElementsAre("left"));
}

TEST_F(QueuesAndTimers, ABackgroundTaskLeavesNothing)
{
    world.backgroundQueue.async([&] {
        queue->syncInPlace([&] {
            queue->offMainThread(tell("at once"));
            told.emplace_back("step");
        });
    });

    world.run();

    EXPECT_THAT(told, ElementsAre("at once", "step"));
}

TEST_F(QueuesAndTimers, ATaskThatThrowsLeavesTheQueueAtWork)
{
    queue->async([] { throw std::runtime_error("of the task"); });
    world.backgroundQueue.async([&] { queue->inPlaceOrAsync([] { throw std::runtime_error("in place"); }); });
    world.run();

    queue->sync(tell("next"));

    EXPECT_THAT(told, ElementsAre("next"));
    EXPECT_THAT(world.log.lines(), ElementsAre("Uncaught exception: of the task", "Uncaught exception: in place"));
}

TEST_F(QueuesAndTimers, TasksStillRunWhenTheSerialQueueIsDroppedButItsTimersDoNot)
{
    const auto timer = queue->makeTimer({10ms, 10ms}, fire());
    timer->start();
    queue->async(tell("task"));
    queue.reset();

    world.advance(50ms);

    EXPECT_THAT(told, ElementsAre("task"));
    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(QueuesAndTimers, ATimersTurnThatWaitsDoesNotRunWhenTheSerialQueueIsDropped)
{
    const auto timer = queue->makeTimer({10ms, 10ms}, fire());
    timer->start();
    queue->async(busyFor(15ms));
    world.advance(12ms);
    queue.reset();

    world.advance(50ms);

    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(QueuesAndTimers, ATimerFiresWhenDueAndThenAtItsInterval)
{
    const auto timer = world.backgroundQueue.makeTimer({0ns, 10ms, 5ms}, fire());
    world.advance(5ms);
    EXPECT_THAT(fired, IsEmpty());

    timer->start();
    world.advance(25ms);

    EXPECT_THAT(fired, ElementsAre(5ms, 15ms, 25ms));
}

TEST_F(QueuesAndTimers, ATimerIsLateByTheShareOfItsLeewayThatIsAskedFor)
{
    world.time.setLateness(1.0);
    const auto timer = world.backgroundQueue.makeTimer({10ms, 20ms, 4ms}, fire());

    timer->start();
    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(14ms, 34ms));
}

TEST_F(QueuesAndTimers, ATimerWithALimitBeyondTheClockNeverFires)
{
    const auto timer = queue->makeTimer({Nanoseconds::max(), Nanoseconds::max(), Nanoseconds::max()}, fire());

    world.advance(1h);
    timer->start();
    world.advance(1h);

    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(QueuesAndTimers, ACancelledTimerFiresNoMore)
{
    const auto timer = queue->makeTimer({10ms, 10ms}, fire());
    timer->start();
    world.advance(10ms);

    timer->cancel();
    timer->start();
    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(10ms));
}

TEST_F(QueuesAndTimers, ACancelledTimersHandlerDoesNotRunAlthoughItsTurnWaits)
{
    const auto timer = queue->makeTimer({10ms, 10ms}, fire());
    timer->start();
    queue->async([&] {
        busyFor(15ms)();
        timer->cancel();
    });

    world.advance(50ms);

    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(QueuesAndTimers, ADroppedTimerFiresNoMoreAndLetsGoOfItsHandler)
{
    const auto held = std::make_shared<int>(0);
    auto timer = queue->makeTimer({10ms, 10ms}, [held] {});
    timer->start();
    EXPECT_EQ(held.use_count(), 2);

    timer.reset();

    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(QueuesAndTimers, ATimersHandlerNeverOverlapsItselfAndCatchesUpOnce)
{
    const auto timer = world.backgroundQueue.makeTimer({10ms, 10ms}, [this] {
        fired.push_back(world.now());
        busyFor(25ms)();
    });
    timer->start();

    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(10ms, 35ms));
}

TEST_F(QueuesAndTimers, ATimerMayBeDroppedByItsOwnHandler)
{
    std::shared_ptr<platform::Timer> timer;
    timer = queue->makeTimer({10ms, 10ms}, [&] {
        timer.reset();
        fired.push_back(world.now());
    });
    timer->start();

    world.advance(50ms);

    EXPECT_THAT(fired, ElementsAre(10ms));
}

TEST_F(QueuesAndTimers, RemembersSchedulesAndLabels)
{
    const auto timer = world.backgroundQueue.makeTimer({0ns, 10ms, 5ms}, [] {});

    ASSERT_EQ(world.backgroundQueue.timers().size(), 1U);
    EXPECT_EQ(world.backgroundQueue.timers().front().leeway, 5ms);
    EXPECT_THAT(world.backgroundQueue.serialQueues(), ElementsAre("org.example.queue"));
}

} // namespace
} // namespace vorrano::support
