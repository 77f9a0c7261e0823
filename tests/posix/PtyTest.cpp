#include "PtyTest.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace vorrano::support {

namespace {

constexpr int kDeadlineMs = 20000;

} // namespace

std::optional<std::string> Nodes::nodeOfCalloutPath(const std::string& path) const
{
    const auto found = byPath.find(path);
    return found == byPath.end() ? std::nullopt : std::optional(found->second);
}

Pty::Pty()
{
    int slave = -1;
    termios raw{};
    ::cfmakeraw(&raw);
    ::cfsetspeed(&raw, B19200);
    if (::openpty(&m_master, &slave, nullptr, &raw, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    m_node = ::ttyname(slave);
    ::close(slave);
}

void Pty::hangUp()
{
    if (m_master >= 0) {
        ::close(std::exchange(m_master, -1));
    }
}

void Pty::send(std::string_view bytes) const
{
    EXPECT_EQ(::write(m_master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string Pty::received(std::size_t count) const
{
    std::string bytes;
    while (bytes.size() < count) {
        char part[256];
        pollfd waited{m_master, POLLIN, 0};
        if (::poll(&waited, 1, kDeadlineMs) != 1) {
            break;
        }
        const ssize_t length = ::read(m_master, part, std::min(sizeof(part), count - bytes.size()));
        if (length <= 0) {
            break;
        }
        bytes.append(part, static_cast<std::size_t>(length));
    }
    return bytes;
}

int PtyTest::opened()
{
    const auto result = terminal.open(kPath);
    if (result.failed()) {
        throw std::system_error(result.error, std::generic_category(), "open");
    }
    return result.value;
}

int PtyTest::inAnotherProcess(const std::function<int()>& act)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(act());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        throw std::runtime_error("the other process did not end by itself");
    }
    return WEXITSTATUS(status);
}

} // namespace vorrano::support
