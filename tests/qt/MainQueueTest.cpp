#include "QtProgram.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace vorrano::qt {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class MainQueue : public support::QtProgram {
protected:
    platform::Task note(std::string word)
    {
        return [this, word = std::move(word)] { words.push_back(word); };
    }

    std::vector<std::string> words;
};

TEST_F(MainQueue, RunsTasksInTheOrderOfSubmissionAndNeverInsideTheCall)
{
    queue.async(note("first"));
    queue.async(note("second"));
    EXPECT_TRUE(words.empty());

    runQueue();

    EXPECT_THAT(words, ElementsAre("first", "second"));
}

TEST_F(MainQueue, RunsTasksOfOtherThreadsOnTheMainThread)
{
    bool onMain = false;
    std::thread other([&] { queue.async([&] { onMain = queue.isMainThread(); }); });
    other.join();

    runQueue();

    EXPECT_TRUE(onMain);
}

TEST_F(MainQueue, TakesOneTaskPerEventSoThatOtherEventsGetTheirTurn)
{
    QObject listener;
    queue.async([&] {
        words.emplace_back("first");
        QMetaObject::invokeMethod(
            &listener, [this] { words.emplace_back("event"); }, Qt::QueuedConnection);
    });
    queue.async(note("second"));
    queue.async(note("third"));

    runQueue();

    ASSERT_EQ(words.size(), 4U);
    EXPECT_EQ(words.front(), "first");
    EXPECT_EQ(words.back(), "third");
}

TEST_F(MainQueue, SyncFromAnotherThreadWaitsUntilTheTaskHasRun)
{
    std::atomic<bool> returned = false;
    bool answered = false;
    std::thread other([&] {
        answered = queue.sync(note("task"));
        returned = true;
    });

    EXPECT_TRUE(spinUntil([&] { return returned.load(); }));
    other.join();

    EXPECT_TRUE(answered);
    EXPECT_THAT(words, ElementsAre("task"));
}

TEST_F(MainQueue, SyncOnTheMainThreadRunsAtOnceEvenWhileHeld)
{
    const auto hold = queue.hold();

    EXPECT_TRUE(queue.sync(note("task")));

    EXPECT_THAT(words, ElementsAre("task"));
}

TEST_F(MainQueue, DelayedTaskComesNotBeforeItsTime)
{
    const auto begin = std::chrono::steady_clock::now();
    bool ran = false;
    queue.after(30ms, [&] { ran = true; });

    EXPECT_TRUE(spinUntil([&] { return ran; }));

    EXPECT_GE(std::chrono::steady_clock::now() - begin, 30ms);
}

TEST_F(MainQueue, HoldKeepsTasksAndDelayedOnesBackAndItsEndRunsNoneInside)
{
    auto hold = queue.hold();
    queue.async(note("task"));
    queue.after(1ms, note("delayed"));
    bool later = false;
    QObject timer;
    QMetaObject::invokeMethod(
        &timer, [&] { later = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(spinUntil([&] { return later; }));
    EXPECT_TRUE(words.empty());

    hold.reset();

    EXPECT_TRUE(words.empty());
    EXPECT_TRUE(spinUntil([&] { return words.size() == 2; }));
    EXPECT_THAT(words, ElementsAre("task", "delayed"));
}

TEST_F(MainQueue, HoldsAreCounted)
{
    auto outer = queue.hold();
    auto inner = queue.hold();
    queue.async(note("task"));

    outer.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(words.empty());
    EXPECT_TRUE(queue.isHeld());

    inner.reset();
    runQueue();
    EXPECT_THAT(words, ElementsAre("task"));
}

TEST_F(MainQueue, WordOfPowerPassesAnAlertButNotAPause)
{
    auto pausing = queue.holdEverything();
    const auto alerting = queue.hold();
    queue.async(note("task"));
    queue.asyncPastAlerts(note("power"));
    QCoreApplication::processEvents();
    EXPECT_TRUE(words.empty());

    pausing.reset();

    EXPECT_TRUE(spinUntil([&] { return !words.empty(); }));
    EXPECT_THAT(words, ElementsAre("power"));
}

TEST_F(MainQueue, WritesAnExceptionToTheLogAndGoesOn)
{
    queue.async([] { throw std::runtime_error("broken"); });
    queue.async([] { throw 7; });
    queue.async(note("next"));

    runQueue();

    EXPECT_THAT(log.lines(), ElementsAre("Uncaught exception: broken", "Uncaught exception: not a std::exception"));
    EXPECT_THAT(words, ElementsAre("next"));
}

TEST_F(MainQueue, SyncReturnsTrueWhenItsTaskThrew)
{
    EXPECT_TRUE(queue.sync([] { throw std::runtime_error("broken"); }));

    EXPECT_THAT(log.lines(), ElementsAre("Uncaught exception: broken"));
}

TEST_F(MainQueue, DrainsUntilNothingIsLeftAndThenTakesNothing)
{
    const auto hold = queue.hold();
    queue.async([this] {
        words.emplace_back("first");
        queue.async(note("of the first"));
    });
    queue.async(note("second"));
    queue.after(1ms, note("delayed"));

    queue.endAndDrain();

    EXPECT_THAT(words, ElementsAre("first", "second", "of the first"));
    queue.async(note("late"));
    queue.after(0ms, note("late"));
    EXPECT_FALSE(queue.sync(note("late")));
    bool answered = true;
    std::thread other([&] { answered = queue.sync(note("late")); });
    other.join();
    EXPECT_FALSE(answered);
    EXPECT_EQ(words.size(), 3U);
}

TEST_F(MainQueue, DrainingLetsWaitersGo)
{
    std::atomic<bool> submitted = false;
    bool answered = false;
    const auto hold = queue.hold();
    std::thread other([&] {
        submitted = true;
        answered = queue.sync(note("task"));
    });
    EXPECT_TRUE(spinUntil([&] { return submitted.load(); }));

    queue.endAndDrain();
    other.join();

    // It was either run or refused, and let go in both cases.
    EXPECT_EQ(answered, words.size() == 1);
}

TEST(MainQueueAlone, DropsItsTasksWhenItIsDestroyed)
{
    support::FakeSystemLog log;
    auto queue = std::make_unique<QtMainQueue>(log);
    const auto hold = std::make_shared<platform::Subscription>(queue->hold());
    const auto held = std::make_shared<int>(1);
    queue->async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    hold->reset();

    queue.reset();

    EXPECT_EQ(held.use_count(), 1);
}

} // namespace
} // namespace vorrano::qt
