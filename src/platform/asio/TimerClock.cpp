#include "platform/asio/TimerClock.h"

#include <algorithm>
#include <utility>

namespace vorrano::asio_platform {

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using TimePoint = TimerClock::TimePoint;

// Threads that wait for the expiry: one, and one that stands by.
constexpr int kWatchers = 2;

// `time` plus `span`, or the end of time.
TimePoint later(TimePoint time, nanoseconds span)
{
    return span > TimePoint::max() - time ? TimePoint::max() : time + span;
}

} // namespace

TimePoint firingTime(TimePoint due, nanoseconds leeway)
{
    if (leeway <= 0ns) {
        return due;
    }
    const nanoseconds past = due.time_since_epoch() % leeway;
    return past <= 0ns ? due : later(due, leeway - past);
}

TimePoint nextDueTime(TimePoint due, nanoseconds interval, TimePoint now)
{
    if (now < due) {
        return due;
    }
    return later(due, ((now - due) / interval + 1) * interval);
}

class TimerClock::Entry {
public:
    enum class State { Idle, Due, Running };

    Entry(platform::TimerSchedule given, platform::Task runs, Deliver delivers)
        : schedule(given)
        , deliver(std::move(delivers))
        , handler(std::move(runs))
    {}

    const platform::TimerSchedule schedule;
    const Deliver deliver;

    // Guarded by the clock's mutex; the handler itself is called without it, by who set Running.
    platform::Task handler;
    State state = State::Idle;
    bool started = false;
    bool cancelled = false;
    // Fell due again before its handler had ended.
    bool missed = false;
    TimePoint due;
    TimePoint firesAt;
};

namespace {

class ClockTimer final : public platform::Timer {
public:
    ClockTimer(std::shared_ptr<TimerClock> clock, std::shared_ptr<TimerClock::Entry> entry)
        : m_clock(std::move(clock))
        , m_entry(std::move(entry))
    {}
    ClockTimer(const ClockTimer&) = delete;
    ClockTimer& operator=(const ClockTimer&) = delete;
    ~ClockTimer() override { m_clock->cancel(m_entry); }

    void start() override { m_clock->start(m_entry); }
    void cancel() override { m_clock->cancel(m_entry); }

private:
    const std::shared_ptr<TimerClock> m_clock;
    const std::shared_ptr<TimerClock::Entry> m_entry;
};

} // namespace

bool TimerClock::Earlier::operator()(const std::shared_ptr<Entry>& left, const std::shared_ptr<Entry>& right) const
{
    return left->firesAt != right->firesAt ? left->firesAt < right->firesAt : left < right;
}

TimerClock::TimerClock(std::shared_ptr<AsioPool> pool)
    : m_pool(std::move(pool))
{}

std::shared_ptr<platform::Timer> TimerClock::makeTimer(platform::TimerSchedule schedule, platform::Task handler,
                                                       Deliver deliver)
{
    return std::make_shared<ClockTimer>(shared_from_this(),
                                        std::make_shared<Entry>(schedule, std::move(handler), std::move(deliver)));
}

void TimerClock::start(const std::shared_ptr<Entry>& entry)
{
    const std::lock_guard lock(m_mutex);
    if (m_stopped || entry->started || entry->cancelled) {
        return;
    }
    entry->started = true;
    entry->due = later(std::chrono::steady_clock::now(), std::max(entry->schedule.first, 0ns));
    enqueue(entry);
    arm();
    if (m_watchers == 0) {
        callWatcher();
    }
}

void TimerClock::cancel(const std::shared_ptr<Entry>& entry)
{
    platform::Task released;
    const std::lock_guard lock(m_mutex);
    if (std::exchange(entry->cancelled, true)) {
        return;
    }
    m_waiting.erase(entry);
    if (entry->state != Entry::State::Running) {
        released.swap(entry->handler);
    }
    // The expiry stays set: to wake once for nothing is cheaper than to set it anew with each cancelled time-out.
}

void TimerClock::stop()
{
    std::set<std::shared_ptr<Entry>, Earlier> waiting;
    std::deque<std::shared_ptr<Entry>> due;
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
        m_expiry.stop();
        waiting.swap(m_waiting);
        due.swap(m_due);
    }
    for (const auto& entry : waiting) {
        cancel(entry);
    }
    for (const auto& entry : due) {
        cancel(entry);
    }
}

// One more thread for watch().
void TimerClock::callWatcher()
{
    ++m_watchers;
    m_pool->post([self = shared_from_this()] { self->watch(); });
}

void TimerClock::watch()
{
    do {
        m_expiry.wait();
        if (!beginWork()) {
            return;
        }
        work();
    } while (endWork());
}

// This thread may be held up in a handler from here on: there has to be another one that watches. False at the end.
bool TimerClock::beginWork()
{
    const std::lock_guard lock(m_mutex);
    if (m_stopped) {
        return false;
    }
    collect(std::chrono::steady_clock::now());
    if (--m_watchers == 0 && !m_due.empty()) {
        callWatcher();
    }
    return true;
}

// Whether this thread is to watch again.
bool TimerClock::endWork()
{
    const std::lock_guard lock(m_mutex);
    if (m_stopped || m_watchers >= kWatchers) {
        return false;
    }
    ++m_watchers;
    return true;
}

void TimerClock::enqueue(const std::shared_ptr<Entry>& entry)
{
    entry->firesAt = firingTime(entry->due, entry->schedule.leeway);
    m_waiting.insert(entry);
}

// Sets the expiry for the first timer that waits, unless it is set for that time or an earlier one.
void TimerClock::arm()
{
    if (!m_waiting.empty() && (*m_waiting.begin())->firesAt < m_armedFor) {
        m_armedFor = (*m_waiting.begin())->firesAt;
        m_expiry.set(m_armedFor);
    }
}

// Moves what is due to m_due.
void TimerClock::collect(TimePoint now)
{
    while (!m_waiting.empty() && (*m_waiting.begin())->firesAt <= now) {
        const auto entry = m_waiting.extract(m_waiting.begin()).value();
        if (entry->state != Entry::State::Idle) {
            entry->missed = true;
            continue;
        }
        entry->state = Entry::State::Due;
        m_due.push_back(entry);
        if (entry->schedule.interval > 0ns) {
            entry->due = nextDueTime(entry->due, entry->schedule.interval, now);
            enqueue(entry);
        }
    }
    m_armedFor = TimePoint::max();
    arm();
}

void TimerClock::work()
{
    while (const auto entry = nextDue()) {
        if (!entry->deliver) {
            runTurn(entry);
        } else if (!entry->deliver(entry)) {
            cancel(entry);
        }
    }
}

std::shared_ptr<TimerClock::Entry> TimerClock::nextDue()
{
    const std::lock_guard lock(m_mutex);
    if (m_due.empty()) {
        return nullptr;
    }
    auto entry = std::move(m_due.front());
    m_due.pop_front();
    if (!m_due.empty()) {
        callHelper();
    }
    return entry;
}

// This thread may be held up in a handler; another one then sees to what else is due. One at a time is called, so that
// many quick handlers do not wake as many threads.
void TimerClock::callHelper()
{
    if (std::exchange(m_helperComes, true)) {
        return;
    }
    m_pool->post([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            {
                const std::lock_guard lock(self->m_mutex);
                self->m_helperComes = false;
            }
            self->work();
        }
    });
}

void TimerClock::runTurn(const std::shared_ptr<Entry>& entry)
{
    {
        const std::lock_guard lock(m_mutex);
        if (entry->cancelled) {
            return;
        }
        entry->state = Entry::State::Running;
    }
    m_pool->guarded(entry->handler);
    finish(entry);
}

void TimerClock::finish(const std::shared_ptr<Entry>& entry)
{
    platform::Task released;
    const std::lock_guard lock(m_mutex);
    entry->state = Entry::State::Idle;
    if (entry->cancelled) {
        released.swap(entry->handler);
        return;
    }
    if (m_stopped || !std::exchange(entry->missed, false)) {
        return;
    }
    entry->state = Entry::State::Due;
    m_due.push_back(entry);
    entry->due = nextDueTime(entry->due, entry->schedule.interval, std::chrono::steady_clock::now());
    enqueue(entry);
    arm();
    callHelper();
}

} // namespace vorrano::asio_platform
