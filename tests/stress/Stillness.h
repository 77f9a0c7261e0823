#pragma once

#include "platform/MainQueue.h"

#include <chrono>
#include <cstdint>

namespace vorrano::stress {

// Counts the rounds of the main queue: after two more of them everything has run that waits there now.
//
// Threads: the main thread. Lifetime: outlives the queue's tasks.
class Rounds {
public:
    explicit Rounds(platform::MainQueue& queue)
        : m_queue(queue)
    {}

    // Begins the next round when the last one has ended, some time after it began.
    void goOn();
    [[nodiscard]] std::uint64_t count() const { return m_count; }

private:
    using Clock = std::chrono::steady_clock;

    platform::MainQueue& m_queue;
    std::uint64_t m_count = 0;
    bool m_isUnderWay = false;
    Clock::time_point m_begin;
};

// Tells when nothing has happened for so long that nothing will. It ends a run that is broken already: the longest
// limit of a request is a tenth of a second.
class Stillness {
public:
    // The number of events grows with everything that happens.
    [[nodiscard]] bool lastsAt(std::uint64_t events, const Rounds& rounds);

private:
    using Clock = std::chrono::steady_clock;

    std::uint64_t m_events = 0;
    std::uint64_t m_sinceRound = 0;
    Clock::time_point m_since = Clock::now();
};

} // namespace vorrano::stress
