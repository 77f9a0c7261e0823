#include "stress/Stillness.h"

#include <utility>

namespace vorrano::stress {

bool Stillness::lastsAt(std::uint64_t events)
{
    // Of looks as well as of time: where the whole computer stood still, nobody had the time to do anything.
    constexpr int kLooks = 1000;
    constexpr std::chrono::seconds kTime(5);
    if (std::exchange(m_events, events) != events) {
        m_looks = 0;
        m_since = Clock::now();
    }
    return ++m_looks > kLooks && Clock::now() - m_since > kTime;
}

} // namespace vorrano::stress
