#include "stress/Stillness.h"

#include <utility>

namespace vorrano::stress {

void Rounds::goOn()
{
    constexpr std::chrono::milliseconds kApart(20);
    if (m_isUnderWay || Clock::now() - m_begin < kApart) {
        return;
    }
    m_isUnderWay = true;
    m_begin = Clock::now();
    m_queue.async([this] {
        m_isUnderWay = false;
        ++m_count;
    });
}

bool Stillness::lastsAt(std::uint64_t events, const Rounds& rounds)
{
    // Of rounds as well as of time: where the main thread is behind, or the whole computer stood still, nobody had the
    // time to do anything.
    constexpr std::uint64_t kRounds = 20;
    constexpr std::chrono::seconds kTime(10);
    if (std::exchange(m_events, events) != events) {
        m_sinceRound = rounds.count();
        m_since = Clock::now();
    }
    return rounds.count() > m_sinceRound + kRounds && Clock::now() - m_since > kTime;
}

} // namespace vorrano::stress
