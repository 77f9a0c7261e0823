#pragma once

#include "platform/MainQueue.h"
#include "platform/Timer.h"
#include "platform/asio/AsioPool.h"
#include "platform/asio/Expiry.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

namespace vorrano::asio_platform {

// All timers of a pool on one timerfd, so that starting or cancelling one is a step in memory: a request's time-out
// wakes nobody unless it is due before everything else.
//
// Two threads of the pool wait for it, in one epoll set: the system wakes one of them, which runs what is due itself,
// while the other stands by in case a handler blocks. asio's own timers wake a second thread each time; that would be
// half of what an open port costs while nothing happens.
// A timer with leeway is due at the next multiple of its leeway, counted on the steady clock; so timers of one kind
// fall due together and wake the computer once. Never early, and late by less than the leeway, but for the scheduler.
// Firings that were missed while the handler ran are made up for by one.
// Threads: every method on any thread; none waits for a handler.
class TimerClock : public std::enable_shared_from_this<TimerClock> {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    // One timer's record.
    class Entry;
    // Takes a due timer to where its handler shall run, which is then done with runTurn(). False: there is no such
    // place any more.
    using Deliver = std::function<bool(const std::shared_ptr<Entry>&)>;

    // std::system_error when the system gives no timer.
    explicit TimerClock(std::shared_ptr<AsioPool> pool);
    TimerClock(const TimerClock&) = delete;
    TimerClock& operator=(const TimerClock&) = delete;
    ~TimerClock() = default;

    // Without `deliver` the handler runs on a thread of the pool.
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, platform::Task handler,
                                                             Deliver deliver);

    // Runs the handler, unless the timer was cancelled meanwhile.
    void runTurn(const std::shared_ptr<Entry>& entry);

    void start(const std::shared_ptr<Entry>& entry);
    void cancel(const std::shared_ptr<Entry>& entry);

    // Cancels all timers; later ones do not start.
    void stop();

private:
    struct Earlier {
        bool operator()(const std::shared_ptr<Entry>& left, const std::shared_ptr<Entry>& right) const;
    };

    void callWatcher();
    void watch();
    bool beginWork();
    bool endWork();
    void enqueue(const std::shared_ptr<Entry>& entry);
    void arm();
    void collect(TimePoint now);
    void work();
    [[nodiscard]] std::shared_ptr<Entry> nextDue();
    void callHelper();
    void finish(const std::shared_ptr<Entry>& entry);

    const std::shared_ptr<AsioPool> m_pool;
    const Expiry m_expiry;
    std::mutex m_mutex;
    TimePoint m_armedFor = TimePoint::max();
    std::set<std::shared_ptr<Entry>, Earlier> m_waiting;
    std::deque<std::shared_ptr<Entry>> m_due;
    // Threads that wait for the expiry, or are on their way there.
    int m_watchers = 0;
    // Whether a thread is on its way to look at m_due.
    bool m_helperComes = false;
    bool m_stopped = false;
};

// When a timer that falls due at `due` fires: the next multiple of its leeway.
[[nodiscard]] TimerClock::TimePoint firingTime(TimerClock::TimePoint due, std::chrono::nanoseconds leeway);

// The first time after `now` that lies a whole number of intervals after `due`.
[[nodiscard]] TimerClock::TimePoint nextDueTime(TimerClock::TimePoint due, std::chrono::nanoseconds interval,
                                                TimerClock::TimePoint now);

} // namespace vorrano::asio_platform
