#include "QueueTest.h"

#include <atomic>
#include <future>
#include <stdexcept>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
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
                serial->dispatch(task);
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

TEST_F(SerialQueue, RefusesATaskThatWaitsForItsOwnQueueInsteadOfHanging)
{
    bool ranInner = false;

    serial->sync([&] { serial->sync([&] { ranInner = true; }); });

    EXPECT_FALSE(ranInner);
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("Uncaught exception: a task of a serial queue waits for its own queue"));
}

TEST_F(SerialQueue, LetsSyncReturnUnrunOnceThePoolHasEnded)
{
    bool ran = false;
    queue->stop();

    serial->sync([&] { ran = true; });
    serial->async([&] { ran = true; });
    serial->dispatch([&] { ran = true; });
    queue.reset();
    serial->sync([&] { ran = true; });
    auto late = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = late;
    serial->async([late = std::move(late)] {});

    EXPECT_FALSE(ran);
    EXPECT_TRUE(watched.expired());
}

TEST_F(SerialQueue, ReleasesACallerThatWaitsUnrunOnceItsTurnComesAfterTheEnd)
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
    gate.open();

    EXPECT_TRUE(released.wait());
    EXPECT_FALSE(ran);
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
