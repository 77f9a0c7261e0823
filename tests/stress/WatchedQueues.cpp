#include "stress/WatchedQueues.h"

#include "stress/HandOvers.h"
#include "stress/Schedule.h"

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

namespace vorrano::stress {

namespace {

using platform::Task;

// How often a thread is held up, and how long at the most. A reader with a chunk in hand so long that its port may be
// closed and opened again meanwhile, and the next reader be quicker.
constexpr std::uint64_t kHeldUpOneIn = 32;
constexpr std::uint64_t kLongestHoldUpMicroseconds = 3'000;
constexpr std::uint64_t kLongestHoldUpOfAReaderMicroseconds = 20'000;

// What all steps of one queue share. They may outlive the queue object.
struct Watch {
    Watch(Ledger& book, const platform::MainQueue& main, std::uint64_t number)
        : ledger(book)
        , mainQueue(main)
        , seed(number)
    {}

    Ledger& ledger;
    const platform::MainQueue& mainQueue;
    const std::uint64_t seed;
    HandOvers handOvers;
    std::atomic<std::uint64_t> draws = 0;
};

// A step that runs, from here to its end.
class Running {
public:
    Running(Watch& watch, const QueueStep& step, const std::optional<std::string>& wrong)
        : m_watch(watch)
    {
        if (wrong) {
            watch.ledger.complain(*wrong);
        }
        watch.ledger.stepBegins(step);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running()
    {
        m_watch.ledger.stepEnds();
        m_watch.handOvers.ran();
    }

private:
    Watch& m_watch;
};

// A request's timer. Dropping it stops it.
class WatchedTimer : public platform::Timer {
public:
    WatchedTimer(std::shared_ptr<platform::Timer> timer, std::shared_ptr<Watch> watch, Number request)
        : m_timer(std::move(timer))
        , m_watch(std::move(watch))
        , m_request(request)
    {}
    WatchedTimer(const WatchedTimer&) = delete;
    WatchedTimer& operator=(const WatchedTimer&) = delete;
    ~WatchedTimer() override { m_watch->ledger.stopsTimer(m_request); }

    void start() override { m_timer->start(); }
    void cancel() override
    {
        m_watch->ledger.stopsTimer(m_request);
        m_timer->cancel();
    }

private:
    const std::shared_ptr<platform::Timer> m_timer;
    const std::shared_ptr<Watch> m_watch;
    const Number m_request;
};

class WatchedQueue : public platform::SerialQueue {
public:
    WatchedQueue(std::shared_ptr<platform::SerialQueue> queue, std::shared_ptr<Watch> watch)
        : m_queue(std::move(queue))
        , m_watch(std::move(watch))
    {}

    void async(Task task) override { handOver(&SerialQueue::async, std::move(task)); }
    void dispatch(Task task) override { handOver(&SerialQueue::dispatch, std::move(task)); }
    void sync(Task task) override { handOver(&SerialQueue::sync, std::move(task)); }

    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override
    {
        const auto request = m_watch->ledger.starts(schedule.delay);
        auto timer = m_queue->makeTimer(schedule, [watch = m_watch, request, handler = std::move(handler)] {
            const Running running(*watch, {StepKind::Timeout, request}, watch->handOvers.runs());
            handler();
        });
        return std::make_shared<WatchedTimer>(std::move(timer), m_watch, request);
    }

private:
    using HandOver = void (SerialQueue::*)(Task);

    void handOver(HandOver how, Task task)
    {
        // The task may drop this object.
        const auto queue = m_queue;
        const auto watch = m_watch;
        const auto step = takeAnnounced().value_or(QueueStep{});
        holdUp(*watch, step.kind);
        const auto ticket = watch->handOvers.begin();
        (queue.get()->*how)([watch, step, ticket, task = std::move(task)] {
            const Running running(*watch, step, watch->handOvers.runs(ticket));
            task();
        });
        watch->handOvers.returned(ticket);
    }

    static void holdUp(Watch& watch, StepKind kind)
    {
        const auto draw = mixed(watch.seed, ++watch.draws);
        if (draw % kHeldUpOneIn == 0 && !watch.mainQueue.isMainThread()) {
            const auto longest =
                kind == StepKind::Chunk ? kLongestHoldUpOfAReaderMicroseconds : kLongestHoldUpMicroseconds;
            std::this_thread::sleep_for(std::chrono::microseconds(draw / kHeldUpOneIn % longest));
        }
    }

    const std::shared_ptr<platform::SerialQueue> m_queue;
    const std::shared_ptr<Watch> m_watch;
};

} // namespace

WatchedQueues::WatchedQueues(platform::BackgroundQueue& queues, const platform::MainQueue& mainQueue,
                             std::uint64_t seed)
    : m_queues(queues)
    , m_mainQueue(mainQueue)
    , m_seed(seed)
{}

void WatchedQueues::async(Task task) { m_queues.async(std::move(task)); }

std::shared_ptr<platform::SerialQueue> WatchedQueues::makeSerialQueue(std::string label)
{
    auto* const ledger = std::exchange(m_next, nullptr);
    if (ledger == nullptr) {
        throw std::logic_error("a serial queue is made that is none of a port's");
    }
    return std::make_shared<WatchedQueue>(m_queues.makeSerialQueue(std::move(label)),
                                          std::make_shared<Watch>(*ledger, m_mainQueue, ++m_seed));
}

} // namespace vorrano::stress
