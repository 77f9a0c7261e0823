#include "contract/Queues.h"

#include "platform/SerialQueue.h"

#include <atomic>
#include <mutex>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What every serial queue promises, the program's and the one that tests use in its place.
namespace vorrano::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Queues>
class ASerialQueue : public testing::Test {
protected:
    void tell(const std::string& text)
    {
        const std::lock_guard lock(m_mutex);
        m_told.push_back(text);
    }

    [[nodiscard]] std::vector<std::string> told() const
    {
        const std::lock_guard lock(m_mutex);
        return m_told;
    }

    [[nodiscard]] bool hasTold(std::size_t count)
    {
        return queues.eventually([this, count] { return told().size() == count; });
    }

    // Does it as a task of the background queue, and waits for its end.
    void inBackground(const platform::Task& task)
    {
        std::atomic<bool> ended = false;
        queues.background().async([&] {
            task();
            ended = true;
        });
        ASSERT_TRUE(queues.eventually([&] { return ended.load(); }));
    }

    // Keeps the queue busy until go() is called.
    void occupy()
    {
        std::atomic<bool> begun = false;
        queue->async([this, &begun] {
            begun = true;
            queues.blockUntil([this] { return m_go.load(); });
        });
        ASSERT_TRUE(queues.eventually([&] { return begun.load(); }));
    }
    void go() { m_go = true; }

    Queues queues;
    std::shared_ptr<platform::SerialQueue> queue = queues.background().makeSerialQueue("org.example.queue");

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_told;
    std::atomic<bool> m_go = false;
};

using Makers = testing::Types<RealQueues, FakeQueues>;
TYPED_TEST_SUITE(ASerialQueue, Makers);

TYPED_TEST(ASerialQueue, RunsTasksOneAtATimeInTheOrderOfSubmission)
{
    this->occupy();
    this->queue->async([this] { this->tell("first"); });
    this->queue->async([this] { this->tell("second"); });
    EXPECT_THAT(this->told(), IsEmpty());

    this->go();

    ASSERT_TRUE(this->hasTold(2));
    EXPECT_THAT(this->told(), ElementsAre("first", "second"));
}

TYPED_TEST(ASerialQueue, NeverRunsATaskOnTheMainThread)
{
    const auto tellThread = [this] { this->tell(this->queues.isMainThread() ? "main" : "background"); };

    this->queue->async(tellThread);
    this->queue->dispatch(tellThread);
    this->queue->sync(tellThread);

    EXPECT_THAT(this->told(), ElementsAre("background", "background", "background"));
}

TYPED_TEST(ASerialQueue, DispatchesInsideTheCallOfABackgroundTaskWhenItIsIdle)
{
    this->inBackground([this] {
        const auto caller = std::this_thread::get_id();
        this->queue->dispatch(
            [this, caller] { this->tell(std::this_thread::get_id() == caller ? "in place" : "elsewhere"); });
        this->tell("after");
    });

    EXPECT_THAT(this->told(), ElementsAre("in place", "after"));
}

TYPED_TEST(ASerialQueue, DispatchesLaterWhenItIsBusy)
{
    this->occupy();

    this->inBackground([this] {
        this->queue->dispatch([this] { this->tell("dispatched"); });
        this->tell("after");
    });
    this->go();

    ASSERT_TRUE(this->hasTold(2));
    EXPECT_THAT(this->told(), ElementsAre("after", "dispatched"));
}

TYPED_TEST(ASerialQueue, DispatchesLaterFromInsideOneOfItsOwnTasks)
{
    this->queue->sync([this] {
        this->queue->dispatch([this] { this->tell("inner"); });
        this->tell("outer");
    });

    ASSERT_TRUE(this->hasTold(2));
    EXPECT_THAT(this->told(), ElementsAre("outer", "inner"));
}

TYPED_TEST(ASerialQueue, RunsWhatIsSubmittedDuringADispatchOnAnotherThread)
{
    std::atomic<bool> returned = false;

    this->inBackground([&] {
        this->queue->dispatch([&] {
            this->queue->async([&] {
                this->queues.blockUntil([&] { return returned.load(); });
                this->tell("submitted");
            });
        });
        // The dispatch returns although the submitted task waits for exactly that.
        returned = true;
    });

    EXPECT_TRUE(this->hasTold(1));
}

TYPED_TEST(ASerialQueue, KeepsASyncsPlaceInTheOrder)
{
    this->queue->async([this] { this->tell("before"); });

    this->queue->sync([this] { this->tell("sync"); });
    this->tell("after");

    EXPECT_THAT(this->told(), ElementsAre("before", "sync", "after"));
}

TYPED_TEST(ASerialQueue, LetsABackgroundTaskWaitForATask)
{
    this->inBackground([this] {
        this->queue->sync([this] { this->tell("task"); });
        this->tell("waiter");
    });

    EXPECT_THAT(this->told(), ElementsAre("task", "waiter"));
}

TYPED_TEST(ASerialQueue, GivesASyncAThreadAtOnceWhileOtherTasksBlock)
{
    std::atomic<int> blocked = 0;
    std::atomic<bool> over = false;
    for (int i = 0; i < 64; ++i) {
        this->queues.background().async([&] {
            ++blocked;
            this->queues.blockUntil([&] { return over.load(); });
            --blocked;
        });
    }
    ASSERT_TRUE(this->queues.eventually([&] { return blocked == 64; }));

    this->queue->sync([this] { this->tell("ran"); });

    EXPECT_THAT(this->told(), ElementsAre("ran"));
    EXPECT_EQ(blocked, 64);
    over = true;
    EXPECT_TRUE(this->queues.eventually([&] { return blocked == 0; }));
}

TYPED_TEST(ASerialQueue, DestroysASyncsTaskBeforeItsCallerGoesOn)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;

    this->queue->sync([held = std::move(held)] {});

    EXPECT_TRUE(watched.expired());
}

TYPED_TEST(ASerialQueue, WritesAnExceptionThatLeavesATaskToTheLogAndGoesOn)
{
    this->queue->async([] { throw std::runtime_error("of async"); });
    this->queue->sync([] { throw std::runtime_error("of sync"); });
    this->inBackground([this] { this->queue->dispatch([] { throw std::runtime_error("of dispatch"); }); });

    this->queue->sync([this] { this->tell("next"); });

    EXPECT_THAT(this->told(), ElementsAre("next"));
    EXPECT_THAT(this->queues.log(), ElementsAre(testing::EndsWith(": of async"), testing::EndsWith(": of sync"),
                                                testing::EndsWith(": of dispatch")));
}

TYPED_TEST(ASerialQueue, StillRunsWhatWasSubmittedWhenItIsDropped)
{
    this->occupy();
    this->queue->async([this] { this->tell("submitted"); });

    this->queue.reset();
    this->go();

    EXPECT_TRUE(this->hasTold(1));
}

} // namespace
} // namespace vorrano::contract
