#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

namespace vorrano::bench {

// Asks for the reply at once.
inline constexpr char kRequest = '?';
// Asks for the reply as a line of 9600 baud brings it: byte by byte, 1.04 ms apart.
inline constexpr char kPacedRequest = '~';
inline constexpr int kReplyLength = 19;
// Asks for a stream as fast as the line takes it.
inline constexpr char kStreamRequest = '#';
inline constexpr std::size_t kStreamLength = std::size_t{1} << 20;
// The byte at that place of the stream.
constexpr char streamByte(std::size_t place) { return static_cast<char>(place % 251); }

// A device on a pty, in a process of its own, that answers each request with 19 bytes.
//
// Make it before there are threads.
class EchoDevice {
public:
    EchoDevice();
    EchoDevice(const EchoDevice&) = delete;
    EchoDevice& operator=(const EchoDevice&) = delete;
    ~EchoDevice();

    [[nodiscard]] const std::string& node() const { return m_node; }
    // When it began to send the last byte of its latest paced reply.
    [[nodiscard]] std::chrono::steady_clock::time_point lastByteTime() const;

private:
    using Stamp = std::atomic<std::int64_t>;

    Stamp* m_lastByte = nullptr; // nanoseconds of the monotonic clock; shared with the process
    pid_t m_process = -1;
    std::string m_node;
};

} // namespace vorrano::bench
