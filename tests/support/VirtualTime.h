#pragma once

#include "platform/MainQueue.h"
#include "platform/Subscription.h"
#include "platform/SystemLog.h"
#include "support/BackgroundThread.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace vorrano::support {

using Nanoseconds = std::chrono::nanoseconds;
using platform::Task;

// Leaves a blocking call of a background task when the world ends, and thereby ends the task. No std::exception, so
// that nobody takes it for an error.
struct Unwound {};

// The threads and the clock of a test's world.
//
// The thread that makes it is the main thread. Background tasks have real threads of their own, of which one runs at a
// time and only while the main thread is inside run(), advance() or a wait; the order is that in which they became
// ready, so a test runs the same way each time. The clock moves only by advance(), or when the main thread itself has
// to wait.
// Real locks of the program work, as long as none is held across a blocking call of a port.
class VirtualTime {
public:
    using Condition = std::function<bool()>;
    enum class Wait { Met, TimedOut, Ended };

    // Exceptions that leave a task go to the log.
    explicit VirtualTime(platform::SystemLog& log);
    VirtualTime(const VirtualTime&) = delete;
    VirtualTime& operator=(const VirtualTime&) = delete;
    ~VirtualTime();

    // For tests; main thread.

    // Everything that is ready, until nothing is. Main tasks run only if the caller is no main task itself and no hold
    // is on. A program that finds no rest fails the test.
    void run();

    // The same while the clock goes on by `duration`, stopping at each time at which something falls due.
    void advance(Nanoseconds duration);

    [[nodiscard]] Nanoseconds now() const { return m_now; }

    // From now on the order of what is ready is drawn, and threads change places at terminal calls and where a
    // background task or a timer is started too. The same seed gives the same run.
    void explore(std::uint32_t seed);

    // How much of its leeway a timer uses: 0.0 (as at first) to 1.0.
    void setLateness(double share) { m_lateness = share; }
    [[nodiscard]] double lateness() const { return m_lateness; }

    // Background tasks that have been submitted and have not ended.
    [[nodiscard]] std::size_t backgroundTasks() const;

    // Ends all background tasks and drops what waits; the same as destruction.
    void end();
    [[nodiscard]] bool hasEnded() const { return m_ended; }

    // Called once all background tasks have ended: the place to let go of tasks that will not run any more.
    platform::Subscription whenEnded(Task task);

    // For the fakes; main thread and background tasks.

    [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == m_mainThread; }

    // Submits a task to a background thread of its own.
    void runInBackground(Task task);

    // Submits a task to the main thread.
    void runOnMain(Task task);

    // The same, past holds and ahead of all others, but not into a wait of the main thread.
    void runOnMainAtOnce(Task task);

    // While one of these is had, no main task runs.
    [[nodiscard]] platform::Subscription holdMain();
    [[nodiscard]] bool isMainHeld() const { return *m_holds > 0; }
    [[nodiscard]] std::size_t mainTasks() const { return m_mainTasks.size(); }

    // Drops main tasks, those to come too.
    void endMain();
    [[nodiscard]] bool hasMainEnded() const { return m_mainEnded || m_ended; }

    // Calls `task` (which must not wait) when the clock has reached `due`; the number is for forget().
    std::uint64_t at(Nanoseconds due, Task task);
    void forget(std::uint64_t event);

    // Waits until the condition holds, or the clock has reached the deadline. A background task gives way; on the main
    // thread the others run, but no main task, and the clock moves if nothing else helps. A wait of the main thread
    // that can't end fails the test and throws.
    Wait waitUntil(const Condition& met, std::optional<Nanoseconds> deadline = std::nullopt);

    // Background task: lets the others that are ready go first; when the world has ended, the others that unwind.
    void giveWay();

    // A place where threads may change in a run that explores.
    void crossing();

    // Runs the task; an exception that leaves it is logged.
    void runGuarded(const Task& task) const;

    // The main thread inside a wait (not inside a hold).
    [[nodiscard]] bool isMainWaiting() const { return m_mainWaits > 0; }

private:
    struct Parked {
        BackgroundThread* thread;
        const Condition* met;
        std::optional<Nanoseconds> deadline;
    };
    struct Ready {
        std::uint64_t order;
        BackgroundThread* thread;
    };
    struct MainTask {
        std::uint64_t order;
        Task task;
    };
    using EndTasks = std::map<std::uint64_t, Task>;
    using Events = std::map<std::pair<Nanoseconds, std::uint64_t>, Task>;

    bool step();
    bool fireEvent();
    bool runMainTask();
    bool runReadyThread(std::size_t which);
    void wakeParked();
    void unwindThreads();
    [[nodiscard]] bool mayRunMain() const;
    [[nodiscard]] std::optional<Nanoseconds> nextDue() const;
    void moveTo(Nanoseconds time);
    Wait waitOnMain(const Condition& met, std::optional<Nanoseconds> deadline);

    platform::SystemLog& m_log;
    std::thread::id m_mainThread = std::this_thread::get_id();
    Nanoseconds m_now{};
    std::uint64_t m_order = 0;
    std::vector<std::unique_ptr<BackgroundThread>> m_threads;
    std::deque<Ready> m_ready;
    std::vector<Parked> m_parked;
    std::deque<MainTask> m_mainTasks;
    std::deque<Task> m_urgent;
    Events m_events;
    std::map<std::uint64_t, Nanoseconds> m_dueOfEvent;
    std::shared_ptr<EndTasks> m_endTasks = std::make_shared<EndTasks>();
    std::optional<std::minstd_rand> m_dice;
    double m_lateness = 0.0;
    std::size_t m_stepsAtThisTime = 0;
    // Shared with the holds, which may outlive the world.
    std::shared_ptr<int> m_holds = std::make_shared<int>(0);
    int m_mainWaits = 0;
    int m_mainTaskDepth = 0;
    bool m_mainEnded = false;
    bool m_ended = false;
};

} // namespace vorrano::support
