#pragma once

#include "serial_pty/rig/Pty.h"
#include "serial_pty/rig/PtyDevices.h"
#include "stress/Schedule.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vorrano::stress {

// The far ends of all lines, on a thread of their own.
//
// A request is "QID:LIMIT;" (LIMIT in milliseconds: how long the program waits); the reply is "AID!", late, cut, led in
// by garbage or missing as answerTo() says. A request "NID;" wants no reply.
class Device {
public:
    using Heard = std::function<void(std::size_t port, const std::string& id)>;

    // `heard` is called on the device's thread for every request that arrives.
    Device(pty_rig::PtyDevices& devices, std::size_t ports, std::uint64_t seed, Heard heard);
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device();

    [[nodiscard]] static std::string pathOf(std::size_t port);

    // Pulls the plug, and plugs in again: another pty under the same name. Any thread.
    void hangUp(std::size_t port);
    void plugAgain(std::size_t port);

private:
    using Clock = std::chrono::steady_clock;
    struct Line {
        std::unique_ptr<pty_rig::Pty> pty;
        std::string received;
    };
    struct Piece {
        std::size_t port;
        std::string bytes;
    };

    void run();
    void plug(std::size_t port);
    [[nodiscard]] std::vector<std::size_t> readyLines() const;
    void read(std::size_t port);
    void take(std::size_t port, const std::string& request);
    void answer(std::size_t port, const std::string& id, Milliseconds limit);
    void sendDue();

    pty_rig::PtyDevices& m_devices;
    const std::uint64_t m_seed;
    const Heard m_heard;
    const int m_epoll;
    std::mutex m_mutex;
    std::vector<Line> m_lines;
    std::multimap<Clock::time_point, Piece> m_pieces;
    std::atomic<bool> m_ended = false;
    std::thread m_thread;
};

} // namespace vorrano::stress
