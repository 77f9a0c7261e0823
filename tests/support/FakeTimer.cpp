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
    enum class Turn { None, Queued, Running, RunningAndDue };

    State(VirtualTime& clock, platform::TimerSchedule when)
        : time(clock)
        , schedule(when)
    {}

    void arm();
    void fire();
    void queueTurn();
    void runTurn();
    void cancel();

    VirtualTime& time;
    platform::TimerSchedule schedule;
    std::shared_ptr<Task> handler;
    std::function<void(Task)> submit;
    std::weak_ptr<void> queue;
    Nanoseconds due{};
    std::uint64_t event = 0;
    platform::Subscription worldsEnd;
    Turn turn = Turn::None;
    bool started = false;
};

void FakeTimer::State::arm()
{
    const auto leeway = std::chrono::duration<double, std::nano>(schedule.leeway) * time.lateness();
    event = time.at(later(due, std::chrono::duration_cast<Nanoseconds>(leeway)), [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->fire();
        }
    });
}

void FakeTimer::State::fire()
{
    if (queue.expired()) {
        cancel();
        return;
    }
    if (schedule.interval > Nanoseconds(0)) {
        due = later(due, schedule.interval);
        arm();
    }
    if (turn == Turn::None) {
        queueTurn();
    } else if (turn == Turn::Running) {
        turn = Turn::RunningAndDue;
    }
}

void FakeTimer::State::queueTurn()
{
    turn = Turn::Queued;
    submit([self = shared_from_this()] { self->runTurn(); });
}

void FakeTimer::State::runTurn()
{
    const auto running = handler;
    if (!running || queue.expired()) {
        turn = Turn::None;
        return;
    }
    turn = Turn::Running;
    time.runGuarded(*running);
    if (turn == Turn::RunningAndDue && handler) {
        queueTurn();
    } else {
        turn = Turn::None;
    }
}

void FakeTimer::State::cancel()
{
    time.forget(event);
    const auto released = std::exchange(handler, nullptr);
}

FakeTimer::FakeTimer(VirtualTime& time, platform::TimerSchedule schedule, Task handler,
                     std::function<void(Task)> submit, std::weak_ptr<void> queue)
    : m_state(std::make_shared<State>(time, schedule))
{
    m_state->handler = std::make_shared<Task>(std::move(handler));
    m_state->submit = std::move(submit);
    m_state->queue = std::move(queue);
    m_state->worldsEnd = time.whenEnded([weak = std::weak_ptr(m_state)] {
        if (const auto state = weak.lock()) {
            state->cancel();
        }
    });
}

FakeTimer::~FakeTimer() { m_state->cancel(); }

void FakeTimer::start()
{
    if (!m_state->started && m_state->handler) {
        m_state->started = true;
        m_state->due = later(m_state->time.now(), m_state->schedule.first);
        m_state->arm();
        // It may fire before the call returns.
        m_state->time.crossing();
    }
}

void FakeTimer::cancel() { m_state->cancel(); }

} // namespace vorrano::support
