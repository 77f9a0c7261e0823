#include "support/FakeSerialQueue.h"

#include "support/FakeTimer.h"

#include <chrono>
#include <deque>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

namespace {

// How long what the main thread left waits for a background thread to come by, at the most.
constexpr std::chrono::milliseconds kPatience{2};

} // namespace

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
                const auto left = std::exchange(alive->m_left, {});
                const auto next = std::exchange(alive->m_next, {});
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

    void addNext(Task task) { m_next.push_back(std::move(task)); }

    // Of the main thread: for the background thread that works on the queue next, or for one of its own.
    void leave(Task task)
    {
        m_left.push_back(std::move(task));
        const auto latest = m_time.now() + std::chrono::duration_cast<Nanoseconds>(kPatience * m_time.lateness());
        m_time.at(latest, [weak = weak_from_this()] {
            const auto self = weak.lock();
            if (self && !self->m_busy && !self->m_left.empty()) {
                self->queueTurn();
            }
        });
    }

    void runInPlace(const Task& task)
    {
        m_busy = true;
        for (const auto& left : std::exchange(m_left, {})) {
            run(left);
        }
        run(task);
        goOn(!m_next.empty() || !m_waiting.empty());
    }

    // The main thread may not do what it has left, nor overtake it.
    [[nodiscard]] bool mayRunInPlace() const { return !m_busy && !(m_time.isMainThread() && !m_left.empty()); }

    // Whether the calling thread is running a task of this queue.
    [[nodiscard]] bool isOwn() const { return m_owner == std::this_thread::get_id(); }

private:
    using Tasks = std::deque<Task>;

    void queueTurn()
    {
        m_busy = true;
        m_time.runInBackground([self = shared_from_this()] { self->takeTurn(); });
    }

    void takeTurn()
    {
        auto& tasks = !m_left.empty() ? m_left : !m_next.empty() ? m_next : m_waiting;
        const auto task = std::move(tasks.front());
        tasks.pop_front();
        run(task);
        goOn(!m_left.empty() || !m_next.empty() || !m_waiting.empty());
    }

    void run(const Task& task)
    {
        m_owner = std::this_thread::get_id();
        m_time.runGuarded(task);
        m_owner = {};
    }

    void goOn(bool hasMore)
    {
        m_busy = false;
        if (hasMore) {
            queueTurn();
        }
    }

    VirtualTime& m_time;
    Tasks m_left;
    Tasks m_next;
    Tasks m_waiting;
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

void FakeSerialQueue::inPlaceOrAsync(Task task)
{
    waitIfHeldUp();
    if (m_turns->mayRunInPlace() && !m_time.isMainThread()) {
        const auto turns = m_turns;
        turns->runInPlace(task);
    } else {
        async(std::move(task));
    }
}

void FakeSerialQueue::continueOnPool(Task task)
{
    EXPECT_TRUE(m_turns->isOwn()) << "only a task of the queue may continue it";
    m_turns->addNext(std::move(task));
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
    if (m_time.isMainThread() || !m_turns->mayRunInPlace()) {
        waitForTurn(std::move(task));
    } else {
        inPlaceOrAsync(std::move(task));
    }
}

void FakeSerialQueue::syncInPlace(Task task)
{
    if (m_turns->mayRunInPlace() && !m_time.hasEnded()) {
        const auto turns = m_turns;
        turns->runInPlace(task);
    } else {
        sync(std::move(task));
    }
}

void FakeSerialQueue::offMainThread(Task task)
{
    EXPECT_TRUE(m_turns->isOwn()) << "only a task of the queue may leave something";
    if (m_time.isMainThread()) {
        m_turns->leave(std::move(task));
    } else {
        task();
    }
}

void FakeSerialQueue::waitForTurn(Task task)
{
    enum class State { Waiting, Running, Done, Dropped };
    const auto state = std::make_shared<State>(State::Waiting);
    async([this, state, given = std::move(task)] {
        if (*state == State::Dropped) {
            return;
        }
        *state = State::Running;
        const platform::Subscription done([state] { *state = State::Done; });
        m_time.runGuarded(given);
    });
    // The task may use what is the caller's, who must not leave before it.
    const platform::Subscription leaving([this, state] {
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
    return std::make_shared<FakeTimer>(m_time, schedule, std::move(handler), submit, m_alive);
}

} // namespace vorrano::support
