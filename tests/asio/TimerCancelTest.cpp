#include "QueueTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using platform::TimerSchedule;
using support::eventually;
using support::Gate;

class TimerCancel : public support::QueueTest {
protected:
    static constexpr TimerSchedule kEvery2ms{2ms, 2ms, 0ns};

    std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("org.example.test");
    std::atomic<int> fired = 0;
};

TEST_F(TimerCancel, CancelledBeforeItsTimeNeverFires)
{
    Gate later;
    const auto other = queue->makeTimer({30ms, 1h, 0ns}, [&] { later.open(); });
    std::shared_ptr<platform::Timer> timer;
    std::shared_ptr<std::atomic<int>> firings;
    bool isInTime = false;
    // Once more when this thread was held up between the start and the cancelling.
    while (!isInTime) {
        firings = std::make_shared<std::atomic<int>>(0);
        timer = queue->makeTimer({5ms, 5ms, 0ns}, [firings] { ++*firings; });
        const auto begun = std::chrono::steady_clock::now();
        timer->start();
        timer->cancel();
        isInTime = std::chrono::steady_clock::now() - begun < 5ms;
    }

    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(*firings, 0);
    timer->start();
    timer->cancel();
}

TEST_F(TimerCancel, MayBeCancelledByItsOwnHandler)
{
    std::shared_ptr<platform::Timer> timer;
    Gate later;
    const auto other = queue->makeTimer({30ms, 1h, 0ns}, [&] { later.open(); });
    timer = queue->makeTimer(kEvery2ms, [&] {
        ++fired;
        timer->cancel();
    });

    timer->start();
    ASSERT_TRUE(eventually([&] { return fired > 0; }));
    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerCancel, MayBeDroppedByItsOwnHandler)
{
    auto held = std::make_shared<std::shared_ptr<platform::Timer>>();
    const std::weak_ptr<std::shared_ptr<platform::Timer>> watched = held;
    *held = queue->makeTimer(kEvery2ms, [this, timer = held] {
        ++fired;
        timer->reset();
    });
    (*held)->start();
    held.reset();

    EXPECT_TRUE(eventually([&] { return watched.expired(); }));
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerCancel, CancelDoesNotWaitForTheHandler)
{
    Gate begun;
    Gate gate;
    const auto timer = queue->makeTimer({0ns, 1ms, 0ns}, [&] {
        ++fired;
        begun.open();
        gate.wait();
    });
    timer->start();
    ASSERT_TRUE(begun.wait());

    timer->cancel();

    EXPECT_FALSE(gate.isOpen());
    gate.open();
    onBackground([] {});
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerCancel, ReleasesItsHandlerWhenItIsCancelledOrDropped)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const auto cancelled = queue->makeTimer({1h, 1h, 0ns}, [held] {});
    auto dropped = queue->makeTimer({1h, 1h, 0ns}, [held = std::move(held)] {});
    cancelled->start();
    dropped->start();

    cancelled->cancel();
    EXPECT_EQ(watched.use_count(), 1);
    dropped.reset();

    EXPECT_TRUE(watched.expired());
}

TEST_F(TimerCancel, ReleasesARunningHandlerAfterwards)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    Gate begun;
    Gate gate;
    const auto timer = queue->makeTimer({0ns, 1ms, 0ns}, [&, held = std::move(held)] {
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

TEST_F(TimerCancel, CancelledAndDroppedFromManyThreadsFiresNoMore)
{
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> over = false;
        std::atomic<bool> late = false;
        auto timer = serial->makeTimer({0ns, 10us, 0ns}, [&] { late = late || over; });
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

} // namespace
