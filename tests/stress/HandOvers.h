#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace vorrano::stress {

// The contract of a serial queue: each task runs once, one at a time, in order. In order means: where the call that
// hands over a task has returned before the call that hands over another begins, that task runs first.
//
// Threads: any.
class HandOvers {
public:
    using Ticket = std::uint64_t;

    // Around the call that hands a task over.
    [[nodiscard]] Ticket begin();
    void returned(Ticket ticket);

    // Around a task that runs. The first returns what is wrong, if anything.
    [[nodiscard]] std::optional<std::string> runs(Ticket ticket);
    void ran();

    // The same for what nobody handed over: a timer's handler.
    [[nodiscard]] std::optional<std::string> runs();

    // Tasks that have not run yet.
    [[nodiscard]] std::size_t waiting() const;

private:
    [[nodiscard]] std::optional<std::string> take(Ticket ticket);

    mutable std::mutex m_mutex;
    Ticket m_clock = 0;
    // When the call returned, if it has.
    std::map<Ticket, std::optional<Ticket>> m_waiting;
    bool m_isRunning = false;
};

} // namespace vorrano::stress
