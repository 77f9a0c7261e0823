#include "EchoDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <new>
#include <string_view>
#include <system_error>

#include <pty.h>
#include <sys/mman.h>
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

std::int64_t nanosecondsNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

bool replyPaced(int line, std::atomic<std::int64_t>& lastByte)
{
    timespec due{};
    ::clock_gettime(CLOCK_MONOTONIC, &due);
    for (const char& byte : kReply) {
        due.tv_nsec += kByteTime;
        if (due.tv_nsec >= 1'000'000'000) {
            due.tv_nsec -= 1'000'000'000;
            ++due.tv_sec;
        }
        ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr);
        if (&byte == &kReply.back()) {
            lastByte = nanosecondsNow();
        }
        if (::write(line, &byte, 1) < 0) {
            return false;
        }
    }
    return true;
}

bool stream(int line)
{
    std::array<char, 4096> part{};
    for (std::size_t sent = 0; sent < kStreamLength;) {
        for (std::size_t i = 0; i < part.size(); ++i) {
            part[i] = streamByte(sent + i);
        }
        const auto count = ::write(line, part.data(), std::min(part.size(), kStreamLength - sent));
        if (count < 0) {
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool answer(int line, char request, std::atomic<std::int64_t>& lastByte)
{
    switch (request) {
    case kRequest:
        return replyAtOnce(line);
    case kPacedRequest:
        return replyPaced(line, lastByte);
    case kStreamRequest:
        return stream(line);
    default:
        return true;
    }
}

[[noreturn]] void answerForEver(int line, std::atomic<std::int64_t>& lastByte)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A line is no later than its bits.
    ::prctl(PR_SET_TIMERSLACK, 1);
    while (true) {
        char bytes[64];
        const ssize_t count = ::read(line, bytes, sizeof(bytes));
        for (ssize_t i = 0; i < count; ++i) {
            if (!answer(line, bytes[i], lastByte)) {
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
    void* const shared = ::mmap(nullptr, sizeof(Stamp), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "mmap");
    }
    m_lastByte = new (shared) Stamp(0);
    m_process = ::fork();
    if (m_process == 0) {
        // It keeps the other side open too, so that the line is not hung up between two users.
        answerForEver(master, *m_lastByte);
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
    ::munmap(m_lastByte, sizeof(Stamp));
}

std::chrono::steady_clock::time_point EchoDevice::lastByteTime() const
{
    return std::chrono::steady_clock::time_point(std::chrono::nanoseconds(m_lastByte->load()));
}

} // namespace vorrano::bench
