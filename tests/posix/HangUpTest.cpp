#include "PtyTest.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include <pthread.h>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using platform::ApplyAttributes;
using platform::SystemResult;
using support::bytesOf;

class HungUpLine : public support::PtyTest {
protected:
    HungUpLine()
    {
        terminal.attributes(line, attributes);
        pty.hangUp();
    }

    int line = opened();
    platform::TerminalAttributes attributes;
};

TEST_F(HungUpLine, IsReadableAtOnceAndGivesNothing)
{
    std::array<std::byte, 16> bytes{};

    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(terminal.waitReadable(line, 20s).value, 1);
        EXPECT_EQ(terminal.read(line, bytes), SystemResult{});
    }
}

TEST_F(HungUpLine, SaysThatTheDeviceIsGoneWhenItsModemLinesAreRead)
{
    EXPECT_EQ(terminal.modemLines(line), (SystemResult{-1, ENXIO}));
}

TEST_F(HungUpLine, FailsEveryOtherCallWithTheSystemsOwnError)
{
    platform::TerminalAttributes read;

    EXPECT_EQ(terminal.setModemLines(line, 0).error, EIO);
    EXPECT_EQ(terminal.write(line, bytesOf("x")).error, EIO);
    EXPECT_EQ(terminal.attributes(line, read).error, EIO);
    EXPECT_EQ(terminal.setAttributes(line, ApplyAttributes::Now, attributes).error, EIO);
    EXPECT_EQ(terminal.setAttributes(line, ApplyAttributes::AfterDrain, attributes).error, EIO);
}

TEST_F(HungUpLine, CanBeClosed)
{
    EXPECT_EQ(terminal.close(line), SystemResult{});
    terminal.release(line);
    EXPECT_EQ(terminal.close(line).error, EBADF);
}

TEST_F(HungUpLine, CannotBeOpenedAgain) { EXPECT_NE(terminal.open(kPath).error, 0); }

class WaitingCall : public support::PtyTest {
protected:
    // What the call answers when its thread is hit by a signal until it returns.
    SystemResult interrupted(const std::function<SystemResult()>& call)
    {
        struct sigaction old {};
        struct sigaction ignoring {};
        ignoring.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &ignoring, &old);
        std::atomic<bool> returned = false;
        SystemResult result;
        std::thread caller([&] {
            result = call();
            returned = true;
        });
        while (!returned) {
            ::pthread_kill(caller.native_handle(), SIGUSR1);
            std::this_thread::yield();
        }
        caller.join();
        ::sigaction(SIGUSR1, &old, nullptr);
        return result;
    }

    int line = opened();
};

TEST_F(WaitingCall, DoesNotHideAnInterruption)
{
    EXPECT_EQ(interrupted([this] { return terminal.waitReadable(line, 60s); }).error, EINTR);

    terminal.setStatusFlags(line, 0);
    std::array<std::byte, 16> bytes{};
    EXPECT_EQ(interrupted([&] { return terminal.read(line, bytes); }).error, EINTR);
}

TEST_F(WaitingCall, EndsWithTheLine)
{
    std::array<std::byte, 16> bytes{};
    std::atomic<bool> begins = false;
    SystemResult waited;
    std::thread reader([&] {
        begins = true;
        waited = terminal.waitReadable(line, 60s);
    });
    while (!begins) {
        std::this_thread::yield();
    }

    pty.hangUp();
    reader.join();

    EXPECT_EQ(waited.value, 1);
    EXPECT_EQ(terminal.read(line, bytes), SystemResult{});
}

} // namespace
