#include "support/FakeTimer.h"

#include <algorithm>
#include <utility>

namespace vorrano::support {

namespace {

Nanoseconds later(Nanoseconds from, Nanoseconds duration)
{
    return duration > Nanoseconds::max() - from ? Nanoseconds::max() : from + std::max(duration, Nanoseconds(0));
}

} // namespace

struct FakeTimer::State : std::enable_shared_from_this<State> {
    explicit State(VirtualTime& clock)
        : time(clock)
    {}

    void fire()
    {
        submit([weak = weak_from_this()] {
            if (const auto self = weak.lock()) {
                self->runHandler();
            }
        });
    }

    void runHandler()
    {
        if (const auto running = std::exchange(handler, nullptr)) {
            time.runGuarded(running);
        }
    }

    void cancel()
    {
        time.forget(event);
        const auto released = std::exchange(handler, nullptr);
    }

    VirtualTime& time;
    platform::TimerSchedule schedule;
    Task handler;
    std::function<void(Task)> submit;
    std::uint64_t event = 0;
    platform::Subscription worldsEnd;
    bool started = false;
};

FakeTimer::FakeTimer(VirtualTime& time, platform::TimerSchedule schedule, Task handler,
                     std::function<void(Task)> submit)
    : m_state(std::make_shared<State>(time))
{
    m_state->schedule = schedule;
    m_state->handler = std::move(handler);
    m_state->submit = std::move(submit);
    m_state->worldsEnd = time.whenEnded([weak = std::weak_ptr(m_state)] {
        if (const auto state = weak.lock()) {
            state->cancel();
        }
    });
}

FakeTimer::~FakeTimer() { m_state->cancel(); }

void FakeTimer::start()
{
    if (std::exchange(m_state->started, true) || !m_state->handler) {
        return;
    }
    auto& time = m_state->time;
    const auto leeway = std::chrono::duration<double, std::nano>(m_state->schedule.leeway) * time.lateness();
    const auto due = later(later(time.now(), m_state->schedule.delay), std::chrono::duration_cast<Nanoseconds>(leeway));
    m_state->event = time.at(due, [weak = std::weak_ptr(m_state)] {
        if (const auto state = weak.lock()) {
            state->fire();
        }
    });
    // It may fire before the call returns.
    time.crossing();
}

void FakeTimer::cancel() { m_state->cancel(); }

} // namespace vorrano::support
