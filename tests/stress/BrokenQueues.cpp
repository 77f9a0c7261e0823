#include "stress/BrokenQueues.h"

#include <map>
#include <mutex>
#include <utility>

namespace vorrano::stress {

using platform::Task;

std::optional<Break> breakOf(std::string_view name)
{
    static const std::map<std::string_view, Break> breaks = {{"drop-evaluation", Break::DropEvaluation},
                                                             {"drop-request", Break::DropRequest},
                                                             {"drop-timer", Break::DropTimer},
                                                             {"swap-steps", Break::SwapSteps}};
    const auto known = breaks.find(name);
    return known == breaks.end() ? std::nullopt : std::optional(known->second);
}

bool Breaker::isTurn(Break what)
{
    static const std::map<Break, std::uint64_t> oneIn = {
        {Break::DropEvaluation, 2}, {Break::DropRequest, 1000}, {Break::DropTimer, 100}, {Break::SwapSteps, 1000}};
    return what == m_what && ++m_count % oneIn.at(what) == 0;
}

namespace {

class BrokenQueue : public platform::SerialQueue {
public:
    BrokenQueue(std::shared_ptr<platform::SerialQueue> queue, Breaker& breaker)
        : m_queue(std::move(queue))
        , m_breaker(breaker)
    {}

    void async(Task task) override { swap(&SerialQueue::async, std::move(task)); }
    void dispatch(Task task) override { swap(&SerialQueue::dispatch, std::move(task)); }
    void sync(Task task) override { drop(&SerialQueue::sync, std::move(task)); }

    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override
    {
        return m_queue->makeTimer(schedule, [&breaker = m_breaker, handler = std::move(handler)] {
            if (!breaker.isTurn(Break::DropTimer)) {
                handler();
            }
        });
    }

private:
    using HandOver = void (SerialQueue::*)(Task);

    void drop(HandOver how, Task task)
    {
        if (!m_breaker.isTurn(Break::DropRequest)) {
            (m_queue.get()->*how)(std::move(task));
        }
    }

    void swap(HandOver how, Task task)
    {
        Task held;
        {
            const std::lock_guard lock(m_mutex);
            held.swap(m_held);
            if (!held && m_breaker.isTurn(Break::SwapSteps)) {
                m_held = std::move(task);
                return;
            }
        }
        // The task may drop this object.
        const auto queue = m_queue;
        (queue.get()->*how)(std::move(task));
        if (held) {
            queue->async(std::move(held));
        }
    }

    const std::shared_ptr<platform::SerialQueue> m_queue;
    Breaker& m_breaker;
    std::mutex m_mutex;
    Task m_held;
};

} // namespace

void BrokenQueues::async(Task task) { m_queues.async(std::move(task)); }

std::shared_ptr<platform::SerialQueue> BrokenQueues::makeSerialQueue(std::string label)
{
    return std::make_shared<BrokenQueue>(m_queues.makeSerialQueue(std::move(label)), m_breaker);
}

} // namespace vorrano::stress
