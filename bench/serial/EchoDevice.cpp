#include "EchoDevice.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <string_view>
#include <system_error>

#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace vorrano::bench {

namespace {

constexpr std::string_view kReply = "My$Home$Net is on\r\n";
static_assert(kReply.size() == kReplyLength);

constexpr long kByteTime = 1'041'667; // in nanoseconds; ten bits at 9600 baud

bool replyAtOnce(int line) { return ::write(line, kReply.data(), kReply.size()) >= 0; }

bool replyPaced(int line)
{
    timespec due{};
    ::clock_gettime(CLOCK_MONOTONIC, &due);
    for (const char byte : kReply) {
        due.tv_nsec += kByteTime;
        if (due.tv_nsec >= 1'000'000'000) {
            due.tv_nsec -= 1'000'000'000;
            ++due.tv_sec;
        }
        ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr);
        if (::write(line, &byte, 1) < 0) {
            return false;
        }
    }
    return true;
}

[[noreturn]] void answerForEver(int line)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A line is no later than its bits.
    ::prctl(PR_SET_TIMERSLACK, 1);
    while (true) {
        char bytes[64];
        const ssize_t count = ::read(line, bytes, sizeof(bytes));
        for (ssize_t i = 0; i < count; ++i) {
            if ((bytes[i] == kRequest && !replyAtOnce(line)) || (bytes[i] == kPacedRequest && !replyPaced(line))) {
                ::_exit(1);
            }
        }
        if (count < 0 && errno != EINTR) {
            ::_exit(1);
        }
    }
}

} // namespace

EchoDevice::EchoDevice()
{
    int master = -1;
    int slave = -1;
    termios raw{};
    ::cfmakeraw(&raw);
    ::cfsetspeed(&raw, B9600);
    if (::openpty(&master, &slave, nullptr, &raw, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    m_node = ::ttyname(slave);
    m_process = ::fork();
    if (m_process == 0) {
        // It keeps the other side open too, so that the line is not hung up between two users.
        answerForEver(master);
    }
    ::close(master);
    ::close(slave);
    if (m_process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

EchoDevice::~EchoDevice()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

} // namespace vorrano::bench
