#include "PosixPort.h"

#include "EchoDevice.h"

#include <array>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace vorrano::bench {

namespace {

constexpr int kTimeout = 2000; // milliseconds
constexpr std::size_t kLargestChunk = 1024;

using Chunk = std::array<char, kLargestChunk>;

// The bytes that came; none after an error or the time-out.
std::size_t receive(int line, Chunk& chunk)
{
    pollfd wait{line, POLLIN, 0};
    if (::poll(&wait, 1, kTimeout) <= 0) {
        return 0;
    }
    const auto count = ::read(line, chunk.data(), chunk.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

} // namespace

int openLine(const std::string& node)
{
    const int line = ::open(node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    ::cfmakeraw(&raw);
    ::cfsetspeed(&raw, B9600);
    raw.c_cflag |= CREAD | CLOCAL;
    if (line >= 0 && ::tcsetattr(line, TCSANOW, &raw) != 0) {
        ::close(line);
        return -1;
    }
    return line;
}

PosixPort::PosixPort(std::string node)
    : m_node(std::move(node))
{}

PosixPort::~PosixPort() { close(); }

bool PosixPort::open()
{
    m_line = openLine(m_node);
    return m_line >= 0;
}

void PosixPort::close()
{
    if (m_line >= 0) {
        ::close(std::exchange(m_line, -1));
    }
}

bool PosixPort::exchangeOnce(char request)
{
    if (::write(m_line, &request, 1) != 1) {
        return false;
    }
    Chunk chunk;
    for (std::size_t received = 0; received < kReplyLength;) {
        const auto count = receive(m_line, chunk);
        if (count == 0) {
            return false;
        }
        received += count;
    }
    return true;
}

void PosixPort::receiveStream(std::function<void(bool)> done)
{
    StreamCheck check;
    const bool isWhole = readStream([&](std::span<const char> chunk) { check.take(chunk); });
    done(isWhole && check.wentWell());
}

bool PosixPort::readStream(const std::function<void(std::span<const char> chunk)>& take) const
{
    if (::write(m_line, &kStreamRequest, 1) != 1) {
        return false;
    }
    Chunk chunk;
    for (std::size_t received = 0; received < kStreamLength;) {
        const auto count = receive(m_line, chunk);
        if (count == 0) {
            return false;
        }
        take({chunk.data(), count});
        received += count;
    }
    return true;
}

} // namespace vorrano::bench
