// What every main queue promises, the program's and the two that tests use in its place.
#include "platform/qtcore/QtMainQueue.h"
#include "serial_pty/rig/MainLoop.h"
#include "support/FakeSystem.h"
#include "support/World.h"

#include <QtTest/QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vorrano {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kPatience = 10'000; // milliseconds

// Queues whose other threads are real ones.
template <class Queue>
class WithThreads {
public:
    ~WithThreads()
    {
        for (auto& thread : m_threads) {
            thread.join();
        }
    }

    void onAnotherThread(const platform::Task& work) { m_threads.emplace_back(work); }
    [[nodiscard]] std::vector<std::string> log() const { return systemLog.lines(); }

    support::FakeSystemLog systemLog;
    Queue queue{systemLog};

private:
    std::vector<std::thread> m_threads;
};

class QtQueue : public WithThreads<qt::QtMainQueue> {
public:
    // Runs what is submitted until the condition holds; whether it does in time.
    static bool runUntil(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, kPatience); }
    void end() { queue.endAndDrain(); }
};

class RigQueue : public WithThreads<pty_rig::MainLoop> {
public:
    bool runUntil(const std::function<bool()>& condition) { return queue.runUntil(condition); }
    void end() { queue.end(); }
};

class VirtualQueue {
public:
    void onAnotherThread(platform::Task work) { m_world.backgroundQueue.async(std::move(work)); }
    [[nodiscard]] std::vector<std::string> log() const { return m_world.log.lines(); }

    bool runUntil(const std::function<bool()>& condition)
    {
        m_world.run();
        for (int i = 0; i < 1000 && !condition(); ++i) {
            m_world.advance(1ms);
        }
        return condition();
    }
    void end() { queue.end(); }

private:
    support::World m_world;

public:
    support::FakeMainQueue& queue = m_world.mainQueue;
};

} // namespace

template <class Maker>
class AMainQueue : public testing::Test {
protected:
    platform::Task note(std::string word)
    {
        return [this, word = std::move(word)] { words.push_back(word); };
    }
    bool runUntilNoted(std::size_t count)
    {
        return maker.runUntil([&] { return words.size() >= count; });
    }

    Maker maker;
    platform::MainQueue& queue = maker.queue;
    std::vector<std::string> words;
};

using Makers = testing::Types<QtQueue, RigQueue, VirtualQueue>;
TYPED_TEST_SUITE(AMainQueue, Makers);

TYPED_TEST(AMainQueue, RunsTasksInTheOrderOfSubmissionAndNeverInsideTheCall)
{
    this->queue.async(this->note("first"));
    this->queue.async(this->note("second"));
    EXPECT_THAT(this->words, IsEmpty());

    EXPECT_TRUE(this->runUntilNoted(2));
    EXPECT_THAT(this->words, ElementsAre("first", "second"));
}

TYPED_TEST(AMainQueue, RunsATaskOfATaskAfterIt)
{
    this->queue.async([this] {
        this->queue.async(this->note("inner"));
        this->words.emplace_back("outer");
    });

    EXPECT_TRUE(this->runUntilNoted(2));
    EXPECT_THAT(this->words, ElementsAre("outer", "inner"));
}

TYPED_TEST(AMainQueue, RunsTasksOfOtherThreadsOnTheMainThread)
{
    std::atomic<bool> here = true;
    bool there = false;
    this->maker.onAnotherThread([&] {
        here = this->queue.isMainThread();
        this->queue.async([&] {
            there = this->queue.isMainThread();
            this->words.emplace_back("ran");
        });
    });

    EXPECT_TRUE(this->runUntilNoted(1));
    EXPECT_TRUE(there);
    EXPECT_FALSE(here);
}

TYPED_TEST(AMainQueue, HasAnotherThreadWaitUntilItsTaskHasRun)
{
    std::atomic<bool> ran = false;
    std::atomic<bool> wentOn = false;
    std::atomic<bool> knewOfIt = false;
    this->maker.onAnotherThread([&] {
        const bool answered = this->queue.sync([&] { ran = true; });
        knewOfIt = answered && ran;
        wentOn = true;
    });

    EXPECT_TRUE(this->maker.runUntil([&] { return wentOn.load(); }));
    EXPECT_TRUE(knewOfIt);
}

TYPED_TEST(AMainQueue, RunsASyncTaskOfTheMainThreadAtOnce)
{
    this->queue.async(this->note("later"));
    EXPECT_TRUE(this->queue.sync(this->note("at once")));
    EXPECT_THAT(this->words, ElementsAre("at once"));
}

TYPED_TEST(AMainQueue, RunsADelayedTaskInTheOrderOfTheTimes)
{
    this->queue.after(60ms, this->note("later"));
    this->queue.after(20ms, this->note("sooner"));
    this->queue.async(this->note("at once"));

    EXPECT_TRUE(this->runUntilNoted(3));
    EXPECT_THAT(this->words, ElementsAre("at once", "sooner", "later"));
}

TYPED_TEST(AMainQueue, LogsAnExceptionAndGoesOn)
{
    this->queue.async([] { throw std::runtime_error("broken"); });
    this->queue.async(this->note("next"));

    EXPECT_TRUE(this->runUntilNoted(1));
    EXPECT_THAT(this->maker.log(), ElementsAre("Uncaught exception: broken"));
}

TYPED_TEST(AMainQueue, LogsTheExceptionOfASyncTaskWhichHasRun)
{
    EXPECT_TRUE(this->queue.sync([] { throw std::runtime_error("broken"); }));
    EXPECT_THAT(this->maker.log(), ElementsAre("Uncaught exception: broken"));
}

TYPED_TEST(AMainQueue, TakesNothingOnceItHasEnded)
{
    this->maker.end();

    this->queue.async(this->note("never"));
    this->queue.after(nanoseconds(0), this->note("never"));
    EXPECT_FALSE(this->queue.sync(this->note("never")));
    std::atomic<int> answer = -1;
    this->maker.onAnotherThread([&] { answer = this->queue.sync(this->note("never")) ? 1 : 0; });

    EXPECT_TRUE(this->maker.runUntil([&] { return answer >= 0; }));
    EXPECT_EQ(answer, 0);
    EXPECT_THAT(this->words, IsEmpty());
}

} // namespace vorrano
