#include "contract/Queues.h"

#include "platform/SerialQueue.h"

#include <atomic>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What every timer of a serial queue promises, the program's and the one that tests use in its place.
namespace vorrano::contract {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

template <class Queues>
class ATimer : public testing::Test {
protected:
    [[nodiscard]] std::shared_ptr<platform::Timer> make(nanoseconds delay, platform::Task handler)
    {
        return queue->makeTimer({delay, 0ns}, std::move(handler));
    }
    [[nodiscard]] std::shared_ptr<platform::Timer> makeCounting(nanoseconds delay)
    {
        return make(delay, [this] { ++fired; });
    }

    // Until a timer that was started now with that delay has fired.
    void pass(nanoseconds delay)
    {
        std::atomic<bool> passed = false;
        const auto timer = make(delay, [&] { passed = true; });
        timer->start();
        ASSERT_TRUE(queues.eventually([&] { return passed.load(); }));
    }

    Queues queues;
    std::shared_ptr<platform::SerialQueue> queue = queues.background().makeSerialQueue("org.example.queue");
    std::atomic<int> fired = 0;
};

using Makers = testing::Types<RealQueues, FakeQueues>;
TYPED_TEST_SUITE(ATimer, Makers);

TYPED_TEST(ATimer, FiresOnceAfterItsStart)
{
    const auto timer = this->makeCounting(5ms);
    this->pass(10ms);
    EXPECT_EQ(this->fired, 0);

    timer->start();
    timer->start();

    EXPECT_TRUE(this->queues.eventually([&] { return this->fired > 0; }));
    this->pass(10ms);
    EXPECT_EQ(this->fired, 1);
}

TYPED_TEST(ATimer, FiresInTheOrderOfTheTimes)
{
    std::vector<int> order;
    const auto later = this->make(30ms, [&] { order.push_back(30); });
    const auto sooner = this->make(10ms, [&] { order.push_back(10); });

    later->start();
    sooner->start();
    this->pass(40ms);

    this->queue->sync([&] { EXPECT_THAT(order, testing::ElementsAre(10, 30)); });
}

TYPED_TEST(ATimer, FiresAsATaskOfItsQueue)
{
    std::atomic<bool> begun = false;
    std::atomic<bool> over = false;
    this->queue->async([&] {
        begun = true;
        this->queues.blockUntil([&] { return over.load(); });
    });
    ASSERT_TRUE(this->queues.eventually([&] { return begun.load(); }));
    const auto other = this->queues.background().makeSerialQueue("org.example.other");
    std::atomic<bool> passed = false;
    const auto clock = other->makeTimer({10ms, 0ns}, [&] { passed = true; });
    const auto timer = this->makeCounting(1ms);

    timer->start();
    clock->start();
    ASSERT_TRUE(this->queues.eventually([&] { return passed.load(); }));
    EXPECT_EQ(this->fired, 0);
    over = true;

    EXPECT_TRUE(this->queues.eventually([&] { return this->fired == 1; }));
}

TYPED_TEST(ATimer, FiresThoughItsQueueHasBeenDropped)
{
    const auto timer = this->makeCounting(5ms);
    timer->start();
    this->queue.reset();

    EXPECT_TRUE(this->queues.eventually([&] { return this->fired == 1; }));
}

TYPED_TEST(ATimer, CancelledBeforeItsTimeNeverFires)
{
    const auto timer = this->makeCounting(20ms);
    timer->start();

    timer->cancel();
    timer->start();
    this->pass(30ms);

    EXPECT_EQ(this->fired, 0);
}

TYPED_TEST(ATimer, CancelledByATaskOfItsQueueWhileItsTurnWaitsNeverFires)
{
    const auto other = this->queues.background().makeSerialQueue("org.example.other");
    std::atomic<bool> passed = false;
    const auto clock = other->makeTimer({10ms, 0ns}, [&] { passed = true; });
    const auto timer = this->makeCounting(1ms);

    this->queue->sync([&] {
        timer->start();
        clock->start();
        this->queues.blockUntil([&] { return passed.load(); });
        timer->cancel();
    });
    this->pass(5ms);

    EXPECT_EQ(this->fired, 0);
}

TYPED_TEST(ATimer, DroppedNeverFires)
{
    auto timer = this->makeCounting(5ms);
    timer->start();

    timer.reset();
    this->pass(10ms);

    EXPECT_EQ(this->fired, 0);
}

TYPED_TEST(ATimer, ReleasesItsHandlerWhenItWasCancelledOrDropped)
{
    const auto held = std::make_shared<int>(0);
    const auto cancelled = this->make(1h, [held] {});
    auto dropped = this->make(1h, [held] {});
    cancelled->start();
    dropped->start();
    EXPECT_EQ(held.use_count(), 3);

    cancelled->cancel();
    dropped.reset();

    EXPECT_EQ(held.use_count(), 1);
}

TYPED_TEST(ATimer, ReleasesItsHandlerWhenItHasRun)
{
    const auto held = std::make_shared<int>(0);
    const auto timer = this->make(1ms, [held] {});

    timer->start();

    EXPECT_TRUE(this->queues.eventually([&] { return held.use_count() == 1; }));
}

TYPED_TEST(ATimer, MayBeDroppedByItsOwnHandler)
{
    auto holder = std::make_shared<std::shared_ptr<platform::Timer>>();
    const std::weak_ptr<std::shared_ptr<platform::Timer>> watched = holder;
    *holder = this->make(1ms, [this, holder] {
        holder->reset();
        ++this->fired;
    });
    (*holder)->start();
    holder.reset();

    EXPECT_TRUE(this->queues.eventually([&] { return watched.expired(); }));
    EXPECT_EQ(this->fired, 1);
}

TYPED_TEST(ATimer, FiresWhileTheHandlersOfOtherQueuesBlock)
{
    std::atomic<int> blocked = 0;
    std::atomic<bool> over = false;
    std::vector<std::shared_ptr<platform::SerialQueue>> others;
    std::vector<std::shared_ptr<platform::Timer>> timers;
    for (int i = 0; i < 20; ++i) {
        others.push_back(this->queues.background().makeSerialQueue("org.example.other"));
        timers.push_back(others.back()->makeTimer({1ms, 0ns}, [&] {
            ++blocked;
            this->queues.blockUntil([&] { return over.load(); });
            --blocked;
        }));
        timers.back()->start();
    }
    ASSERT_TRUE(this->queues.eventually([&] { return blocked == 20; }));

    this->pass(5ms);

    EXPECT_EQ(blocked, 20);
    over = true;
    EXPECT_TRUE(this->queues.eventually([&] { return blocked == 0; }));
}

TYPED_TEST(ATimer, WritesAnExceptionOfItsHandlerToTheLog)
{
    const auto timer = this->make(1ms, [] { throw std::runtime_error("tick"); });

    timer->start();

    EXPECT_TRUE(this->queues.eventually([&] { return !this->queues.log().empty(); }));
    EXPECT_THAT(this->queues.log(), testing::ElementsAre(testing::EndsWith(": tick")));
}

TYPED_TEST(ATimer, ThatIsDueAtTheEndOfTimeWaits)
{
    const auto never = this->queue->makeTimer({nanoseconds::max(), nanoseconds::max()}, [this] { ++this->fired; });

    never->start();
    this->pass(5ms);

    EXPECT_EQ(this->fired, 0);
}

} // namespace
} // namespace vorrano::contract
