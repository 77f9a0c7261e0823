#include "QueueTest.h"

#include <atomic>
#include <stdexcept>
#include <vector>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using platform::TimerSchedule;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using support::eventually;
using support::Gate;

class Timer : public support::QueueTest {
protected:
    static constexpr TimerSchedule kEvery2ms{2ms, 2ms, 0ns};

    std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("org.example.test");
    std::atomic<int> fired = 0;
};

TEST_F(Timer, FiresNotBeforeItIsStarted)
{
    Gate other;
    const auto timer = queue->makeTimer({0ns, 1ms, 0ns}, [&] { ++fired; });
    const auto later = queue->makeTimer({20ms, 1h, 0ns}, [&] { other.open(); });

    later->start();

    ASSERT_TRUE(other.wait());
    EXPECT_EQ(fired, 0);
}

TEST_F(Timer, IsNeverEarly)
{
    for (const nanoseconds leeway : {nanoseconds(0), nanoseconds(4ms)}) {
        std::vector<steady_clock::time_point> times;
        Gate enough;
        const auto begun = steady_clock::now();
        const auto timer = queue->makeTimer({10ms, 5ms, leeway}, [&] {
            times.push_back(steady_clock::now());
            if (times.size() == 5) {
                enough.open();
            }
        });

        timer->start();
        ASSERT_TRUE(enough.wait());
        timer->cancel();
        onBackground([] {});

        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_GE(times[i] - begun, 10ms + i * 5ms);
        }
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
    const auto timer = queue->makeTimer(kEvery2ms, [&] { ++fired; });

    timer->start();

    EXPECT_TRUE(eventually([&] { return fired > 3; }));
    EXPECT_FALSE(gate.isOpen());
    gate.open();
}

TEST_F(Timer, FiresWhileTheHandlersOfOthersBlock)
{
    Gate gate;
    std::atomic<int> blocked = 0;
    std::vector<std::shared_ptr<platform::Timer>> others;
    for (int i = 0; i < 20; ++i) {
        others.push_back(queue->makeTimer(kEvery2ms, [&] {
            ++blocked;
            gate.wait();
        }));
    }
    const auto timer = queue->makeTimer(kEvery2ms, [&] { ++fired; });

    for (const auto& other : others) {
        other->start();
    }
    timer->start();

    EXPECT_TRUE(eventually([&] { return blocked == 20 && fired > 3; }));
    EXPECT_FALSE(gate.isOpen());
    others.clear();
    gate.open();
}

TEST_F(Timer, FiresOnceWhenItHasNoInterval)
{
    Gate later;
    const auto once = queue->makeTimer({1ms, 0ns, 0ns}, [&] { ++fired; });
    const auto other = queue->makeTimer({30ms, 1h, 0ns}, [&] { later.open(); });

    once->start();
    ASSERT_TRUE(eventually([&] { return fired > 0; }));
    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(fired, 1);
}

TEST_F(Timer, StartedTwiceFiresOnceEachTime)
{
    Gate later;
    const auto other = queue->makeTimer({30ms, 1h, 0ns}, [&] { later.open(); });
    std::shared_ptr<platform::Timer> timer;
    std::shared_ptr<std::atomic<int>> firings;
    bool isInTime = false;
    // Once more when this thread was held up between the two starts.
    while (!isInTime) {
        firings = std::make_shared<std::atomic<int>>(0);
        timer = queue->makeTimer({5ms, 1h, 0ns}, [firings] { ++*firings; });
        const auto begun = steady_clock::now();
        timer->start();
        timer->start();
        isInTime = steady_clock::now() - begun < 5ms;
    }

    ASSERT_TRUE(eventually([&] { return *firings > 0; }));
    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(*firings, 1);
}

TEST_F(Timer, ThatIsDueAtTheEndOfTimeWaits)
{
    const auto never = queue->makeTimer({nanoseconds::max(), nanoseconds::max(), nanoseconds::max()}, [&] { ++fired; });
    Gate later;
    const auto other = queue->makeTimer({5ms, 1h, 0ns}, [&] { later.open(); });

    never->start();
    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(fired, 0);
}

TEST_F(Timer, NeverOverlapsItself)
{
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    Gate slow;
    const auto timer = queue->makeTimer({0ns, 1ms, 0ns}, [&] {
        overlapped = overlapped || ++inside != 1;
        if (++fired == 1) {
            slow.wait();
        }
        --inside;
    });
    std::atomic<int> ticks = 0;
    const auto meanwhile = queue->makeTimer({1ms, 1ms, 0ns}, [&] { ++ticks; });

    timer->start();
    meanwhile->start();
    ASSERT_TRUE(eventually([&] { return ticks > 10; }));
    EXPECT_EQ(fired, 1);
    slow.open();

    EXPECT_TRUE(eventually([&] { return fired > 5; }));
    EXPECT_FALSE(overlapped);
}

TEST_F(Timer, MakesUpForMissedFiringsByOne)
{
    Gate slow;
    Gate enough;
    std::vector<steady_clock::time_point> times;
    std::atomic<int> ticks = 0;
    const auto missing = queue->makeTimer({0ns, 20ms, 0ns}, [&] {
        times.push_back(steady_clock::now());
        if (times.size() == 1) {
            slow.wait();
        } else if (times.size() == 4) {
            enough.open();
        }
    });
    const auto meanwhile = queue->makeTimer({5ms, 5ms, 0ns}, [&] { ++ticks; });

    missing->start();
    meanwhile->start();
    ASSERT_TRUE(eventually([&] { return ticks > 20; }));
    slow.open();

    ASSERT_TRUE(enough.wait());
    // The second makes up for all that were missed; the third and the fourth come at their own times.
    EXPECT_GE(times[3] - times[1], 20ms);
}

TEST_F(Timer, GoesOnAfterAnExceptionOfItsHandler)
{
    const auto timer = queue->makeTimer(kEvery2ms, [&] {
        ++fired;
        throw std::runtime_error("tick");
    });

    timer->start();

    EXPECT_TRUE(eventually([&] { return fired > 2; }));
    EXPECT_THAT(log.lines(), testing::Contains("Uncaught exception of a background task: tick"));
}

TEST_F(Timer, OfASerialQueueFiresAsATaskOfTheQueue)
{
    Gate gate;
    Gate begun;
    Gate ticked;
    std::atomic<int> ticks = 0;
    const auto meanwhile = queue->makeTimer({1ms, 1ms, 0ns}, [&] { ++ticks; });
    const auto timer = serial->makeTimer({1ms, 1ms, 0ns}, [&] {
        ++fired;
        ticked.open();
    });
    serial->async([&] {
        begun.open();
        gate.wait();
    });
    ASSERT_TRUE(begun.wait());

    timer->start();
    meanwhile->start();
    ASSERT_TRUE(eventually([&] { return ticks > 10; }));

    EXPECT_EQ(fired, 0);
    gate.open();
    EXPECT_TRUE(ticked.wait());
}

TEST_F(Timer, OfASerialQueueCancelledBeforeItsTurnNeverFires)
{
    std::atomic<int> ticks = 0;
    const auto meanwhile = queue->makeTimer({1ms, 1ms, 0ns}, [&] { ++ticks; });
    const auto timer = serial->makeTimer({1ms, 1h, 0ns}, [&] { ++fired; });
    meanwhile->start();

    serial->sync([&] {
        timer->start();
        const int begun = ticks;
        EXPECT_TRUE(eventually([&] { return ticks > begun + 10; }));
        timer->cancel();
    });
    serial->sync([] {});

    EXPECT_EQ(fired, 0);
}

TEST_F(Timer, OfADroppedSerialQueueFiresNoMore)
{
    Gate later;
    const auto timer = serial->makeTimer({1ms, 1ms, 0ns}, [&] { ++fired; });
    const auto other = queue->makeTimer({30ms, 1h, 0ns}, [&] { later.open(); });

    serial.reset();
    timer->start();
    other->start();

    ASSERT_TRUE(later.wait());
    EXPECT_EQ(fired, 0);
}

TEST_F(Timer, IsCancelledByTheEndOfThePool)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const auto timer = queue->makeTimer({1h, 1h, 0ns}, [held = std::move(held)] {});
    const auto late = queue->makeTimer({0ns, 1ms, 0ns}, [&] { ++fired; });
    timer->start();

    queue.reset();
    late->start();

    EXPECT_TRUE(watched.expired());
    timer->cancel();
    EXPECT_EQ(fired, 0);
}

} // namespace
