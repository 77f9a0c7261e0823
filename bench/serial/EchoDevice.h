#pragma once

#include <string>

#include <sys/types.h>

namespace vorrano::bench {

// Asks for the reply at once.
inline constexpr char kRequest = '?';
// Asks for the reply as a line of 9600 baud brings it: byte by byte, 1.04 ms apart.
inline constexpr char kPacedRequest = '~';
inline constexpr int kReplyLength = 19;

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

private:
    pid_t m_process = -1;
    std::string m_node;
};

} // namespace vorrano::bench
