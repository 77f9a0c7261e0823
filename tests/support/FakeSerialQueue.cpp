#include "support/FakeSerialQueue.h"

#include "platform/ScopeExit.h"
#include "support/FakeTimer.h"

#include <deque>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

// What waits for its turn. It lives until the last task has run, also when the queue object has been dropped.
class FakeSerialQueue::Turns : public std::enable_shared_from_this<Turns> {
public:
    explicit Turns(VirtualTime& time)
        : m_time(time)
    {}

    static std::shared_ptr<Turns> make(VirtualTime& time)
    {
        auto turns = std::make_shared<Turns>(time);
        turns->m_worldsEnd = time.whenEnded([weak = std::weak_ptr(turns)] {
            if (const auto alive = weak.lock()) {
                const auto waiting = std::exchange(alive->m_waiting, {});
            }
        });
        return turns;
    }

    void add(Task task)
    {
        m_waiting.push_back(std::move(task));
        if (!m_busy) {
            queueTurn();
        }
    }

    void runInPlace(const Task& task)
    {
        m_busy = true;
        run(task);
        goOn();
    }

    [[nodiscard]] bool isBusy() const { return m_busy; }

    // Whether the calling thread is running a task of this queue.
    [[nodiscard]] bool isOwn() const { return m_owner == std::this_thread::get_id(); }

private:
    void queueTurn()
    {
        m_busy = true;
        m_time.runInBackground([self = shared_from_this()] { self->takeTurn(); });
    }

    void takeTurn()
    {
        const auto task = std::move(m_waiting.front());
        m_waiting.pop_front();
        run(task);
        goOn();
    }

    void run(const Task& task)
    {
        m_owner = std::this_thread::get_id();
        m_time.runGuarded(task);
        m_owner = {};
    }

    void goOn()
    {
        m_busy = false;
        if (!m_waiting.empty()) {
            queueTurn();
        }
    }

    VirtualTime& m_time;
    std::deque<Task> m_waiting;
    platform::Subscription m_worldsEnd;
    std::thread::id m_owner;
    bool m_busy = false;
};

FakeSerialQueue::FakeSerialQueue(VirtualTime& time, std::shared_ptr<HandOverDelays> delays)
    : m_time(time)
    , m_delays(std::move(delays))
    , m_turns(Turns::make(time))
{}

FakeSerialQueue::~FakeSerialQueue() = default;

void FakeSerialQueue::async(Task task) { m_turns->add(std::move(task)); }

void FakeSerialQueue::waitIfHeldUp()
{
    if (m_delays->empty() || m_time.isMainThread()) {
        return;
    }
    const auto end = m_time.now() + m_delays->front();
    m_delays->pop_front();
    m_time.waitUntil([] { return false; }, end);
}

void FakeSerialQueue::dispatch(Task task)
{
    waitIfHeldUp();
    if (m_turns->isBusy() || m_time.isMainThread()) {
        async(std::move(task));
        return;
    }
    // The task may drop this queue.
    const auto turns = m_turns;
    turns->runInPlace(task);
}

void FakeSerialQueue::sync(Task task)
{
    if (m_turns->isOwn()) {
        ADD_FAILURE() << "a task waits for its own queue";
        throw std::logic_error("a task waits for its own queue");
    }
    if (m_time.hasEnded()) {
        return;
    }
    enum class State { Waiting, Running, Done, Dropped };
    const auto state = std::make_shared<State>(State::Waiting);
    async([this, state, given = std::move(task)] {
        if (*state == State::Dropped) {
            return;
        }
        *state = State::Running;
        const platform::ScopeExit done([state] { *state = State::Done; });
        m_time.runGuarded(given);
    });
    // The task may use what is the caller's, who must not leave before it.
    const platform::ScopeExit leaving([this, state] {
        while (*state == State::Running && m_time.hasEnded() && !m_time.isMainThread()) {
            m_time.giveWay();
        }
        *state = State::Dropped;
    });
    m_time.waitUntil([&] { return *state == State::Done; });
}

std::shared_ptr<platform::Timer> FakeSerialQueue::makeTimer(platform::TimerSchedule schedule, Task handler)
{
    const auto submit = [turns = m_turns](Task turn) { turns->add(std::move(turn)); };
    return std::make_shared<FakeTimer>(m_time, schedule, std::move(handler), submit);
}

} // namespace vorrano::support
