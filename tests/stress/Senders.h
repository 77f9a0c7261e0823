#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vorrano::stress {

// Threads that send, each to a port that it draws, until they are stopped.
class Senders {
public:
    // `send` is called on their threads, with the sender (from 1 on), the port, and a number to draw the rest from.
    using Send = std::function<void(std::size_t sender, std::size_t port, std::uint32_t draw)>;

    Senders(std::size_t count, std::size_t ports, std::uint64_t seed, Send send);
    Senders(const Senders&) = delete;
    Senders& operator=(const Senders&) = delete;
    ~Senders() { stop(); }

    // Waits until each has sent its last request.
    void stop();

private:
    void sendUntilStopped(std::size_t sender, std::size_t ports, std::uint64_t seed);

    const Send m_send;
    std::mutex m_mutex;
    std::condition_variable m_stopChanged;
    bool m_stop = false;
    std::vector<std::thread> m_threads;
};

} // namespace vorrano::stress
