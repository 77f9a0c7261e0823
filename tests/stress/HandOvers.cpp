#include "stress/HandOvers.h"

#include <algorithm>
#include <utility>

namespace vorrano::stress {

HandOvers::Ticket HandOvers::begin()
{
    const std::lock_guard lock(m_mutex);
    const auto ticket = ++m_clock;
    m_waiting.emplace(ticket, std::nullopt);
    return ticket;
}

void HandOvers::returned(Ticket ticket)
{
    const std::lock_guard lock(m_mutex);
    const auto known = m_waiting.find(ticket);
    if (known != m_waiting.end()) {
        known->second = ++m_clock;
    }
}

std::optional<std::string> HandOvers::runs(Ticket ticket)
{
    auto wrong = runs();
    const std::lock_guard lock(m_mutex);
    return wrong ? wrong : take(ticket);
}

std::optional<std::string> HandOvers::runs()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_isRunning, true) ? std::optional("two steps run at the same time") : std::nullopt;
}

void HandOvers::ran()
{
    const std::lock_guard lock(m_mutex);
    m_isRunning = false;
}

std::optional<std::string> HandOvers::take(Ticket ticket)
{
    if (m_waiting.erase(ticket) == 0) {
        return "a step runs twice";
    }
    const auto wasBefore = [&](const auto& other) { return other.second && *other.second < ticket; };
    if (std::any_of(m_waiting.begin(), m_waiting.end(), wasBefore)) {
        return "a step runs before one that was handed over earlier";
    }
    return std::nullopt;
}

std::size_t HandOvers::waiting() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiting.size();
}

} // namespace vorrano::stress
