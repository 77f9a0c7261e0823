#pragma once

#include "platform/MainQueue.h"
#include "platform/SystemLog.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace vorrano::pty_rig {

// A real main queue for a test program: its tasks run while the thread that made it is inside runUntil().
class MainLoop : public platform::MainQueue {
public:
    using Condition = std::function<bool()>;
    static constexpr std::chrono::seconds kPatience{60};
    // A condition may come true without a task: it is looked at that often.
    static constexpr std::chrono::milliseconds kLook{1};

    explicit MainLoop(platform::SystemLog& log);
    ~MainLoop() override;

    void async(platform::Task task) override;
    bool sync(platform::Task task) override;
    void after(std::chrono::nanoseconds delay, platform::Task task) override;
    [[nodiscard]] bool isMainThread() const override;

    // Main thread. Runs tasks until the condition holds; false when it does not within `patience`.
    bool runUntil(const Condition& met, std::chrono::nanoseconds patience = kPatience);

    // The same, but runs no task: as under an alert. Looks at the condition every `look`.
    bool holdUntil(const Condition& met, std::chrono::nanoseconds patience = kPatience,
                   std::chrono::nanoseconds look = kLook);

    // Runs what waits, and what comes of it.
    void drain();

    // Nothing runs any more; who waits in sync() goes on.
    void end();

private:
    using Clock = std::chrono::steady_clock;
    // Ends somebody's wait once the task has run or has been dropped.
    struct Waiter;
    struct Item {
        platform::Task task;
        std::shared_ptr<Waiter> waiter;
    };

    bool runOne();
    [[nodiscard]] bool hasEnded();

    platform::SystemLog& m_log;
    const std::thread::id m_mainThread = std::this_thread::get_id();
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Item> m_items;
    std::multimap<Clock::time_point, platform::Task> m_delayed;
    bool m_ended = false;
};

} // namespace vorrano::pty_rig
