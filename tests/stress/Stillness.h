#pragma once

#include <chrono>
#include <cstdint>

namespace vorrano::stress {

// Tells when nothing has happened for so long that nothing will. It ends a run that is broken already: the longest
// limit of a request is a tenth of a second.
class Stillness {
public:
    // The number grows with everything that happens.
    [[nodiscard]] bool lastsAt(std::uint64_t events);

private:
    using Clock = std::chrono::steady_clock;

    std::uint64_t m_events = 0;
    int m_looks = 0;
    Clock::time_point m_since = Clock::now();
};

} // namespace vorrano::stress
