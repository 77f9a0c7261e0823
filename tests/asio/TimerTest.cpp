#include "QueueTest.h"

#include <atomic>
#include <thread>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using support::eventually;
using support::Gate;

class Timer : public support::QueueTest {
protected:
    std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("org.example.test");
    std::atomic<int> fired = 0;
};

TEST_F(Timer, IsNeverEarly)
{
    for (const auto delay : {nanoseconds(0), nanoseconds(1ms), nanoseconds(15ms)}) {
        steady_clock::time_point time;
        Gate gate;
        const auto timer = serial->makeTimer({delay, 0ns}, [&] {
            time = steady_clock::now();
            gate.open();
        });
        const auto begun = steady_clock::now();

        timer->start();

        ASSERT_TRUE(gate.wait());
        EXPECT_GE(time - begun, delay);
    }
}

TEST_F(Timer, FiresWhileEveryThreadIsBlocked)
{
    Gate gate;
    std::atomic<int> blocked = 0;
    for (int i = 0; i < 20; ++i) {
        queue->async([&] {
            ++blocked;
            gate.wait();
        });
    }
    ASSERT_TRUE(eventually([&] { return blocked == 20; }));
    const auto timer = serial->makeTimer({2ms, 0ns}, [&] { ++fired; });

    timer->start();

    EXPECT_TRUE(eventually([&] { return fired == 1; }));
    EXPECT_FALSE(gate.isOpen());
    gate.open();
}

// Expiries that bring nothing to do must not leave the timers without a thread that looks after them.
TEST_F(Timer, FiresWhenAHandlerBlocksAfterManyCancelledTimers)
{
    const auto blocking = queue->makeSerialQueue("org.example.blocking");
    Gate gate;
    for (int i = 0; i < 50; ++i) {
        const auto cancelled = serial->makeTimer({1ms, 0ns}, [] {});
        cancelled->start();
        cancelled->cancel();
    }
    const auto blocked = blocking->makeTimer({2ms, 0ns}, [&] { gate.wait(); });
    blocked->start();
    const auto timer = serial->makeTimer({4ms, 0ns}, [&] { ++fired; });

    timer->start();

    EXPECT_TRUE(eventually([&] { return fired == 1; }));
    EXPECT_FALSE(gate.isOpen());
    gate.open();
}

TEST_F(Timer, ReleasesARunningHandlerAfterwards)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    Gate begun;
    Gate gate;
    const auto timer = serial->makeTimer({0ns, 0ns}, [&, held = std::move(held)] {
        begun.open();
        gate.wait();
    });
    timer->start();
    ASSERT_TRUE(begun.wait());

    timer->cancel();

    EXPECT_FALSE(watched.expired());
    gate.open();
    EXPECT_TRUE(eventually([&] { return watched.expired(); }));
}

TEST_F(Timer, CancelledFromManyThreadsFiresNoMore)
{
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> over = false;
        std::atomic<bool> late = false;
        auto timer = serial->makeTimer({10us, 0ns}, [&] { late = late || over; });
        timer->start();
        std::thread first([&] { timer->cancel(); });
        std::thread second([&] { timer->cancel(); });
        first.join();
        second.join();
        serial->sync([&] { over = true; });
        serial->sync([] {});
        timer.reset();
        EXPECT_FALSE(late);
    }
}

TEST_F(Timer, OutlivesTheQueueAndFiresNoMore)
{
    const auto running = serial->makeTimer({1h, 0ns}, [&] { ++fired; });
    const auto late = serial->makeTimer({0ns, 0ns}, [&] { ++fired; });
    running->start();

    queue.reset();
    late->start();
    running->cancel();

    EXPECT_EQ(fired, 0);
}

} // namespace
