#include "QueueTest.h"

#include <atomic>
#include <csignal>
#include <future>
#include <latch>
#include <stdexcept>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using support::eventually;
using support::Gate;
using support::threadCount;

// Free threads that stay.
constexpr int kBase = 4;

class BackgroundQueue : public support::QueueTest {};

TEST_F(BackgroundQueue, RunsATaskOnAThreadOfItsOwn)
{
    std::thread::id ranOn;

    onBackground([&] { ranOn = std::this_thread::get_id(); });

    EXPECT_NE(ranOn, std::thread::id());
    EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST_F(BackgroundQueue, GivesEachOf100BlockedTasksAThread)
{
    constexpr int kTasks = 100;
    std::latch allThere(kTasks);
    std::atomic<int> done = 0;

    for (int i = 0; i < kTasks; ++i) {
        queue->async([&] {
            allThere.arrive_and_wait();
            ++done;
        });
    }

    EXPECT_TRUE(eventually([&] { return done == kTasks; }));
}

TEST_F(BackgroundQueue, GivesATaskThatATaskHandsInAThreadToo)
{
    std::atomic<int> depth = 0;
    std::function<void()> nest = [&] {
        if (++depth == 20) {
            return;
        }
        std::promise<void> inner;
        queue->async([&] {
            nest();
            inner.set_value();
        });
        inner.get_future().wait();
    };

    onBackground(nest);

    EXPECT_EQ(depth, 20);
}

TEST_F(BackgroundQueue, LetsItsSurplusThreadsGo)
{
    const int before = threadCount();
    Gate gate;
    std::atomic<int> blocked = 0;
    for (int i = 0; i < 40; ++i) {
        queue->async([&] {
            ++blocked;
            gate.wait();
        });
    }
    ASSERT_TRUE(eventually([&] { return blocked == 40; }));
    ASSERT_GE(threadCount(), before + 40);

    gate.open();

    EXPECT_TRUE(eventually([&] { return threadCount() <= before + kBase; }));
}

TEST_F(BackgroundQueue, StillRunsTasksAfterItsSurplusThreadsHaveLeft)
{
    const int before = threadCount();
    std::latch allThere(20);
    for (int i = 0; i < 20; ++i) {
        queue->async([&] { allThere.arrive_and_wait(); });
    }
    allThere.wait();
    ASSERT_TRUE(eventually([&] { return threadCount() <= before + kBase; }));

    std::latch again(20);
    std::atomic<int> done = 0;
    for (int i = 0; i < 20; ++i) {
        queue->async([&] {
            again.arrive_and_wait();
            ++done;
        });
    }

    EXPECT_TRUE(eventually([&] { return done == 20; }));
}

TEST_F(BackgroundQueue, BlocksAllSignalsOnItsThreads)
{
    sigset_t mask;
    sigemptyset(&mask);

    onBackground([&] { pthread_sigmask(SIG_SETMASK, nullptr, &mask); });

    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD, SIGUSR1, SIGALRM, SIGWINCH}) {
        EXPECT_EQ(sigismember(&mask, signal), 1) << signal;
    }
}

TEST_F(BackgroundQueue, LeavesTheCallersSignalMaskAsItWas)
{
    sigset_t before;
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);

    const asio_platform::AsioBackgroundQueue another(log);

    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < SIGRTMAX; ++signal) {
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
    }
}

TEST_F(BackgroundQueue, WritesAnExceptionThatLeavesATaskToTheLogAndGoesOn)
{
    queue->async([] { throw std::runtime_error("no milk"); });
    queue->async([] { throw 7; });
    queue->async(nullptr);
    ASSERT_TRUE(eventually([&] { return log.lines().size() == 3; }));
    bool ran = false;

    onBackground([&] { ran = true; });

    EXPECT_TRUE(ran);
    const auto lines = log.lines();
    EXPECT_THAT(lines, testing::Contains("Uncaught exception: no milk"));
    EXPECT_THAT(lines, testing::Contains("Uncaught exception: not a std::exception"));
}

TEST_F(BackgroundQueue, ReleasesATaskAfterItHasRun)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;

    queue->async([held = std::move(held)] {});

    EXPECT_TRUE(eventually([&] { return watched.expired(); }));
}

TEST_F(BackgroundQueue, WaitsAtItsEndForTheTasksThatRun)
{
    Gate begun;
    Gate gate;
    std::atomic<bool> ended = false;
    queue->async([&] {
        begun.open();
        gate.wait();
        ended = true;
    });
    ASSERT_TRUE(begun.wait());
    queue->stop();
    std::thread opener([&] { gate.open(); });

    queue.reset();

    EXPECT_TRUE(ended);
    opener.join();
}

TEST_F(BackgroundQueue, LeavesNoThreadBehind)
{
    queue.reset();
    const int before = threadCount();
    std::latch allThere(10);
    {
        asio_platform::AsioBackgroundQueue another(log);
        for (int i = 0; i < 10; ++i) {
            another.async([&] { allThere.arrive_and_wait(); });
        }
        allThere.wait();
    }

    // The kernel lists a thread for a moment after it has been joined.
    EXPECT_TRUE(eventually([&] { return threadCount() == before; }));
}

TEST_F(BackgroundQueue, DropsWhatIsHandedInAfterItsEnd)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    bool ran = false;
    queue->stop();

    queue->async([&ran, held = std::move(held)] { ran = true; });

    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(queue->joinWithin(support::kDeadline));
    EXPECT_FALSE(ran);
}

TEST_F(BackgroundQueue, LeavesAStuckTaskBehindWhenItsTimeIsOver)
{
    queue.reset();
    const int before = threadCount();
    auto another = std::make_unique<asio_platform::AsioBackgroundQueue>(log);
    Gate begun;
    Gate gate;
    another->async([begun, gate]() mutable {
        begun.open();
        gate.wait();
    });
    ASSERT_TRUE(begun.wait());
    another->stop();

    EXPECT_FALSE(another->joinWithin(1ms));
    another.reset();

    EXPECT_FALSE(gate.isOpen());
    EXPECT_GT(threadCount(), before);
    gate.open();
    EXPECT_TRUE(eventually([&] { return threadCount() == before; }));
}

TEST_F(BackgroundQueue, LetsGoOfATaskThatHoldsItsOwnSerialQueueAtTheEnd)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    Gate gate;
    Gate begun;
    {
        const std::shared_ptr<platform::SerialQueue> serial = queue->makeSerialQueue("test");
        serial->async([&] {
            begun.open();
            gate.wait();
        });
        serial->async([serial, held = std::move(held)] {});
    }
    ASSERT_TRUE(begun.wait());
    queue->stop();
    gate.open();

    queue.reset();

    EXPECT_TRUE(watched.expired());
}

TEST_F(BackgroundQueue, TakesTasksFromManyThreadsAtOnce)
{
    constexpr int kThreads = 8;
    constexpr int kTasks = 500;
    std::atomic<int> ran = 0;
    std::vector<std::thread> threads;

    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int task = 0; task < kTasks; ++task) {
                queue->async([&] { ++ran; });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_TRUE(eventually([&] { return ran == kThreads * kTasks; }));
}

} // namespace
