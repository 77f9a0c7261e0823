#include "QueueTest.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace {

using namespace vorrano;
using support::eventually;
using support::Gate;

// What a serial queue does with a main thread that lends itself.
class LentMainThread : public support::QueueTest {
protected:
    // A step that notes its name and its thread.
    platform::Task step(std::string name)
    {
        return [this, name = std::move(name)] {
            const std::lock_guard lock(m_mutex);
            order.push_back(name);
            onMain.push_back(std::this_thread::get_id() == m_main);
        };
    }

    [[nodiscard]] std::size_t steps()
    {
        const std::lock_guard lock(m_mutex);
        return order.size();
    }

    std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("org.example.test");
    std::vector<std::string> order;
    std::vector<bool> onMain;

private:
    const std::thread::id m_main = std::this_thread::get_id();
    std::mutex m_mutex;
};

TEST_F(LentMainThread, RunsAStepInPlaceWhenTheQueueIsIdle)
{
    serial->syncInPlace(step("write"));

    EXPECT_THAT(order, testing::ElementsAre("write"));
    EXPECT_THAT(onMain, testing::ElementsAre(true));
}

TEST_F(LentMainThread, WaitsForItsTurnWhenTheQueueIsBusy)
{
    Gate gate;
    Gate begun;
    serial->async([&] {
        begun.open();
        gate.wait();
    });
    ASSERT_TRUE(begun.wait());
    serial->async(step("before"));
    std::thread opener([&] { gate.open(); });

    serial->syncInPlace(step("write"));

    EXPECT_THAT(order, testing::ElementsAre("before", "write"));
    opener.join();
}

TEST_F(LentMainThread, LeavesAStepOffItToABackgroundThreadThatComesSoon)
{
    serial->syncInPlace([&] {
        serial->offMainThread(step("test"));
        step("write")();
    });

    EXPECT_TRUE(eventually([&] { return steps() == 2; }));
    EXPECT_THAT(order, testing::ElementsAre("write", "test"));
    EXPECT_THAT(onMain, testing::ElementsAre(true, false));
}

TEST_F(LentMainThread, LeavesStepsInTheirOrderBeforeAnythingElse)
{
    serial->syncInPlace([&] {
        serial->async(step("third"));
        serial->continueOnPool(step("second"));
        serial->offMainThread(step("first"));
        serial->offMainThread(step("first again"));
    });
    serial->sync([] {});

    EXPECT_THAT(order, testing::ElementsAre("first", "first again", "second", "third"));
    EXPECT_THAT(onMain, testing::Each(false));
}

TEST_F(LentMainThread, LetsAReaderThatComesByRunWhatWasLeftFirst)
{
    for (int round = 0; round < 100; ++round) {
        order.clear();
        onMain.clear();
        serial->syncInPlace([&] { serial->offMainThread(step("test")); });

        std::thread reader([&] { serial->inPlaceOrAsync(step("reply")); });
        reader.join();
        serial->sync([] {});

        ASSERT_THAT(order, testing::ElementsAre("test", "reply"));
        ASSERT_THAT(onMain, testing::Each(false));
    }
}

TEST_F(LentMainThread, DoesNotOvertakeWhatItLeft)
{
    serial->syncInPlace([&] { serial->offMainThread(step("test")); });
    serial->syncInPlace(step("write"));
    serial->syncInPlace([&] { serial->offMainThread(step("test again")); });
    serial->sync(step("sync"));
    serial->sync([] {});

    EXPECT_THAT(order, testing::ElementsAre("test", "write", "test again", "sync"));
    EXPECT_FALSE(onMain[0]);
    EXPECT_FALSE(onMain[2]);
    EXPECT_FALSE(onMain[3]);
}

TEST_F(LentMainThread, RunsAStepOffItInsideTheCallOnABackgroundThread)
{
    onBackground([&] {
        serial->syncInPlace([&] {
            serial->offMainThread(step("test"));
            step("write")();
        });
    });

    EXPECT_THAT(order, testing::ElementsAre("test", "write"));
    EXPECT_THAT(onMain, testing::Each(false));
}

TEST_F(LentMainThread, RefusesToWaitForItsOwnQueue)
{
    serial->syncInPlace([&] { serial->syncInPlace(step("inner")); });

    EXPECT_THAT(order, testing::IsEmpty());
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(LentMainThread, LeavesNothingToAPoolThatHasEnded)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    serial->syncInPlace([&] {
        serial->offMainThread([held] {});
        queue->stop();
        serial->offMainThread([held = std::move(held)] {});
    });

    serial->syncInPlace(step("late"));

    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(order, testing::IsEmpty());
}

} // namespace
