#include "PyserialPort.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vorrano::bench {

PyserialPort::PyserialPort(const std::string& script, const std::string& node)
{
    std::array<int, 2> toIt{};
    std::array<int, 2> fromIt{};
    if (::pipe2(toIt.data(), O_CLOEXEC) != 0 || ::pipe2(fromIt.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    m_process = ::fork();
    if (m_process == 0) {
        ::dup2(toIt[0], STDIN_FILENO);
        ::dup2(fromIt[1], STDOUT_FILENO);
        ::execl("/usr/bin/python3", "python3", script.c_str(), node.c_str(), static_cast<char*>(nullptr));
        ::_exit(1);
    }
    ::close(toIt[0]);
    ::close(fromIt[1]);
    m_toIt = ::fdopen(toIt[1], "w");
    m_fromIt = ::fdopen(fromIt[0], "r");
    if (m_process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

PyserialPort::~PyserialPort()
{
    std::fclose(m_toIt);
    std::fclose(m_fromIt);
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

bool PyserialPort::open() { return ask("open"); }

void PyserialPort::close() { static_cast<void>(ask("close")); }

void PyserialPort::exchange(char request, int times, std::function<void(bool)> done)
{
    done(ask(std::string(1, request) + " " + std::to_string(times)));
}

Microseconds PyserialPort::cpuTime() const
{
    clockid_t clock{};
    timespec spent{};
    if (::clock_getcpuclockid(m_process, &clock) != 0 || ::clock_gettime(clock, &spent) != 0) {
        throw std::runtime_error("pyserial's Python has ended");
    }
    return std::chrono::seconds(spent.tv_sec) + std::chrono::nanoseconds(spent.tv_nsec);
}

bool PyserialPort::ask(const std::string& line) const
{
    std::array<char, 16> answer{};
    return std::fprintf(m_toIt, "%s\n", line.c_str()) > 0 && std::fflush(m_toIt) == 0 &&
           std::fgets(answer.data(), answer.size(), m_fromIt) != nullptr && std::strcmp(answer.data(), "done\n") == 0;
}

} // namespace vorrano::bench
