#include "BarePoll.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

namespace vorrano::bench {

void pollModemLines(int line, const std::function<bool()>& goesOn)
{
    const timespec interval{0, 10'000'000};
    while (goesOn()) {
        ::nanosleep(&interval, nullptr);
        int lines = 0;
        ::ioctl(line, TIOCMGET, &lines);
    }
}

BarePoll::BarePoll(const std::string& node)
    : m_line(::open(node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (m_line < 0) {
        throw std::system_error(errno, std::generic_category(), node);
    }
}

BarePoll::~BarePoll() { ::close(m_line); }

void BarePoll::poll(std::chrono::milliseconds time) const
{
    const auto end = std::chrono::steady_clock::now() + time;
    pollModemLines(m_line, [end] { return std::chrono::steady_clock::now() < end; });
}

} // namespace vorrano::bench
