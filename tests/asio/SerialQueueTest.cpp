#include "QueueTest.h"

#include <atomic>
#include <future>
#include <stdexcept>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using support::eventually;
using support::Gate;

class SerialQueue : public support::QueueTest {
protected:
    std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("org.example.test");

    // Waits until all that was submitted so far has run.
    void settle()
    {
        serial->sync([] {});
    }

    // Keeps the queue busy with a task of its own until the gate opens.
    void occupy(Gate& gate)
    {
        Gate begun;
        serial->async([&begun, &gate] {
            begun.open();
            gate.wait();
        });
        ASSERT_TRUE(begun.wait());
    }
};

TEST_F(SerialQueue, RunsTasksInTheOrderOfSubmission)
{
    std::vector<int> order;

    for (int i = 0; i < 1000; ++i) {
        serial->async([&order, i] { order.push_back(i); });
    }
    settle();

    ASSERT_EQ(order.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(SerialQueue, RunsOneTaskAtATimeWhoeverSubmitsThem)
{
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    int count = 0;
    const auto task = [&] {
        overlapped = overlapped || ++inside != 1;
        ++count;
        --inside;
    };
    std::vector<std::thread> threads;

    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                serial->async(task);
                serial->inPlaceOrAsync(task);
                serial->sync(task);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    settle();

    EXPECT_FALSE(overlapped);
    EXPECT_EQ(count, 4 * 300 * 3);
}

TEST_F(SerialQueue, NeverRunsATaskOnTheMainThread)
{
    const auto main = std::this_thread::get_id();
    std::vector<std::thread::id> ranOn;
    const auto task = [&] { ranOn.push_back(std::this_thread::get_id()); };

    serial->async(task);
    serial->inPlaceOrAsync(task);
    serial->sync(task);

    ASSERT_EQ(ranOn.size(), 3U);
    EXPECT_EQ(std::count(ranOn.begin(), ranOn.end(), main), 0);
}

TEST_F(SerialQueue, RunsATaskInPlaceWhenItIsIdle)
{
    bool ranInside = false;

    onBackground([&] {
        const auto caller = std::this_thread::get_id();
        serial->inPlaceOrAsync([&] { ranInside = std::this_thread::get_id() == caller; });
        EXPECT_TRUE(ranInside);
    });

    EXPECT_TRUE(ranInside);
}

TEST_F(SerialQueue, DoesNotHoldUpACallerWhenItIsBusy)
{
    Gate gate;
    occupy(gate);
    std::atomic<bool> ran = false;

    onBackground([&] { serial->inPlaceOrAsync([&] { ran = true; }); });

    EXPECT_FALSE(ran);
    gate.open();
    settle();
    EXPECT_TRUE(ran);
}

TEST_F(SerialQueue, RunsATaskOfOneOfItsTasksLater)
{
    std::vector<std::string> order;

    serial->sync([&] {
        serial->inPlaceOrAsync([&] { order.emplace_back("inner"); });
        order.emplace_back("outer");
    });
    settle();

    EXPECT_THAT(order, testing::ElementsAre("outer", "inner"));
}

TEST_F(SerialQueue, ContinuesOnAnotherThreadBeforeAnythingThatWaits)
{
    std::vector<std::string> order;
    std::thread::id lent;
    std::thread::id continued;
    Gate rested;

    std::thread lender([&] {
        serial->inPlaceOrAsync([&] {
            lent = std::this_thread::get_id();
            serial->async([&] { order.emplace_back("waiting"); });
            serial->continueOnPool([&] {
                rested.wait();
                continued = std::this_thread::get_id();
                order.emplace_back("continued");
            });
            order.emplace_back("lent");
        });
        // The lent thread is free again while the continuation still runs.
        rested.open();
    });
    lender.join();
    settle();

    EXPECT_THAT(order, testing::ElementsAre("lent", "continued", "waiting"));
    EXPECT_NE(continued, std::thread::id());
    EXPECT_NE(continued, lent);
}

TEST_F(SerialQueue, RunsSeveralContinuationsInTheirOrder)
{
    std::vector<int> order;

    serial->sync([&] {
        serial->async([&] { order.push_back(4); });
        serial->continueOnPool([&] {
            order.push_back(1);
            serial->continueOnPool([&] { order.push_back(3); });
        });
        serial->continueOnPool([&] { order.push_back(2); });
    });
    settle();

    EXPECT_THAT(order, testing::ElementsAre(1, 2, 3, 4));
}

TEST_F(SerialQueue, DoesNotLetALentThreadRunWhatOthersSubmittedMeanwhile)
{
    std::thread::id lent;
    std::thread::id other;
    Gate gate;

    std::thread lender([&] {
        lent = std::this_thread::get_id();
        serial->inPlaceOrAsync([&] {
            serial->async([&] {
                other = std::this_thread::get_id();
                gate.wait();
            });
        });
        gate.open();
    });
    lender.join();
    settle();

    EXPECT_NE(other, std::thread::id());
    EXPECT_NE(other, lent);
}

TEST_F(SerialQueue, RunsASyncFromABackgroundThreadInPlaceWhenItIsIdle)
{
    onBackground([&] {
        const auto caller = std::this_thread::get_id();
        std::thread::id ranOn;
        serial->sync([&] { ranOn = std::this_thread::get_id(); });
        EXPECT_EQ(ranOn, caller);
    });
}

TEST_F(SerialQueue, KeepsASyncsPlaceInTheOrder)
{
    std::vector<int> order;
    Gate gate;
    occupy(gate);
    serial->async([&] { order.push_back(1); });
    std::thread opener([&] { gate.open(); });

    serial->sync([&] { order.push_back(2); });

    EXPECT_THAT(order, testing::ElementsAre(1, 2));
    opener.join();
}

TEST_F(SerialQueue, GivesASyncFromTheMainThreadAThreadAtOnceWhileOthersAreBlocked)
{
    Gate gate;
    std::atomic<int> blocked = 0;
    for (int i = 0; i < 64; ++i) {
        queue->async([&] {
            ++blocked;
            gate.wait();
        });
    }
    ASSERT_TRUE(eventually([&] { return blocked == 64; }));
    bool ran = false;

    serial->sync([&] { ran = true; });

    EXPECT_TRUE(ran);
    EXPECT_FALSE(gate.isOpen());
    gate.open();
}

TEST_F(SerialQueue, RefusesATaskThatWaitsForItsOwnQueueInsteadOfHanging)
{
    bool ranInner = false;

    serial->sync([&] { serial->sync([&] { ranInner = true; }); });

    EXPECT_FALSE(ranInner);
    EXPECT_THAT(log.lines(), testing::ElementsAre("Uncaught exception of a background task: "
                                                  "a task of a serial queue waits for its own queue"));
}

TEST_F(SerialQueue, WritesAnExceptionThatLeavesATaskToTheLogAndGoesOn)
{
    bool ran = false;
    serial->async([] { throw std::runtime_error("one"); });
    serial->sync([] { throw std::runtime_error("two"); });
    onBackground([&] { serial->inPlaceOrAsync([] { throw std::runtime_error("three"); }); });

    serial->sync([&] { ran = true; });

    EXPECT_TRUE(ran);
    EXPECT_EQ(log.lines().size(), 3U);
}

TEST_F(SerialQueue, DestroysASyncsTaskBeforeItsCallerGoesOn)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;

    serial->sync([held = std::move(held)] {});

    EXPECT_TRUE(watched.expired());
}

TEST_F(SerialQueue, RunsWhatWasSubmittedWhenItIsDropped)
{
    std::atomic<int> ran = 0;
    Gate gate;
    occupy(gate);
    for (int i = 0; i < 10; ++i) {
        serial->async([&] { ++ran; });
    }

    serial.reset();

    gate.open();
    EXPECT_TRUE(eventually([&] { return ran == 10; }));
}

TEST_F(SerialQueue, LetsSyncReturnUnrunOnceThePoolHasEnded)
{
    bool ran = false;
    queue->stop();

    serial->sync([&] { ran = true; });
    serial->async([&] { ran = true; });
    serial->inPlaceOrAsync([&] { ran = true; });
    queue.reset();
    serial->sync([&] { ran = true; });
    auto late = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = late;
    serial->async([late = std::move(late)] {});

    EXPECT_FALSE(ran);
    EXPECT_TRUE(watched.expired());
}

TEST_F(SerialQueue, ReleasesACallerThatWaitsWhenThePoolEnds)
{
    Gate gate;
    Gate waits;
    Gate released;
    std::atomic<bool> ran = false;
    occupy(gate);
    std::thread caller([&] {
        waits.open();
        serial->sync([&] { ran = true; });
        released.open();
    });
    ASSERT_TRUE(waits.wait());

    queue->stop();

    EXPECT_TRUE(released.wait());
    EXPECT_FALSE(ran);
    gate.open();
    caller.join();
}

TEST_F(SerialQueue, MadeAfterTheEndDoesNothing)
{
    queue->stop();

    const auto late = queue->makeSerialQueue("late");
    bool ran = false;
    late->sync([&] { ran = true; });

    EXPECT_FALSE(ran);
}

} // namespace
