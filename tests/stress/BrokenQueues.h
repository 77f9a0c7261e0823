#pragma once

#include "platform/BackgroundQueue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::stress {

// What is broken on purpose, to see that the account notices: every second first response test is dropped, one in a
// thousand requests that are handed to the queue, one in a hundred deliveries of a timer; or one in a thousand steps
// changes places with the next one.
enum class Break { Nothing, DropEvaluation, DropRequest, DropTimer, SwapSteps };

// "drop-evaluation", "drop-request", "drop-timer", "swap-steps".
[[nodiscard]] std::optional<Break> breakOf(std::string_view name);

// Says when to break.
//
// Threads: any.
class Breaker {
public:
    explicit Breaker(Break what)
        : m_what(what)
    {}

    [[nodiscard]] bool isTurn(Break what);

private:
    const Break m_what;
    std::atomic<std::uint64_t> m_count = 0;
};

// Background and serial queues that pass on to others what they do not break.
class BrokenQueues : public platform::BackgroundQueue {
public:
    BrokenQueues(platform::BackgroundQueue& queues, Breaker& breaker)
        : m_queues(queues)
        , m_breaker(breaker)
    {}

    void async(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

private:
    platform::BackgroundQueue& m_queues;
    Breaker& m_breaker;
};

} // namespace vorrano::stress
