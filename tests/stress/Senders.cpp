#include "stress/Senders.h"

#include <chrono>
#include <random>
#include <utility>

namespace vorrano::stress {

Senders::Senders(std::size_t count, std::size_t ports, std::uint64_t seed, Send send)
    : m_send(std::move(send))
{
    for (std::size_t sender = 1; sender <= count; ++sender) {
        m_threads.emplace_back([this, sender, ports, seed] { sendUntilStopped(sender, ports, seed); });
    }
}

void Senders::sendUntilStopped(std::size_t sender, std::size_t ports, std::uint64_t seed)
{
    constexpr std::uint64_t kSeedsApart = 1000;
    constexpr std::uint32_t kLongestPauseMicroseconds = 2000;
    std::mt19937 dice(static_cast<std::uint32_t>(seed * kSeedsApart + sender));
    for (;;) {
        const auto port = dice() % ports;
        const auto draw = static_cast<std::uint32_t>(dice());
        m_send(sender, port, draw);
        std::unique_lock lock(m_mutex);
        const std::chrono::microseconds pause(draw % kLongestPauseMicroseconds);
        if (m_stopChanged.wait_for(lock, pause, [this] { return m_stop; })) {
            return;
        }
    }
}

void Senders::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_stopChanged.notify_all();
    // A sender may wait for its request queue, which waits for nobody; the main loop is not needed for it.
    for (auto& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

} // namespace vorrano::stress
