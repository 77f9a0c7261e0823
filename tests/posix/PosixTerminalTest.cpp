#include "PtyTest.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace vorrano;
using namespace std::chrono_literals;
using platform::SystemResult;
using support::bytesOf;

class PosixTerminal : public support::PtyTest {
protected:
    std::string readSome(int descriptor, std::size_t most = 1024)
    {
        std::string bytes(most, '\0');
        const auto result = terminal.read(descriptor, std::as_writable_bytes(std::span(bytes.data(), bytes.size())));
        EXPECT_EQ(result.error, 0);
        bytes.resize(static_cast<std::size_t>(std::max(result.value, 0)));
        return bytes;
    }

    // What an opener without locks gets, 0 or an errno. For a process of its own, which it leaves without root's
    // rights: root passes every exclusive terminal.
    [[nodiscard]] int plainOpenOfAnotherUser() const
    {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setuid(kNobody) != 0) {
            return 255;
        }
        return ::open(pty.node().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK) >= 0 ? 0 : errno;
    }
};

TEST_F(PosixTerminal, OpensTheNodeBehindACalloutPath)
{
    const int line = opened();

    EXPECT_EQ(terminal.write(line, bytesOf("hello")).value, 5);

    EXPECT_EQ(pty.received(5), "hello");
    pty.send("world");
    EXPECT_EQ(terminal.waitReadable(line, 20s).value, 1);
    EXPECT_EQ(readSome(line), "world");
}

TEST_F(PosixTerminal, OpensNoPathThatTheRegistryDoesNotKnow)
{
    EXPECT_EQ(terminal.open("/dev/cu.usbserial-OTHER").error, ENOENT);
    EXPECT_EQ(terminal.open(pty.node()).error, ENOENT);
    EXPECT_EQ(terminal.open("").error, ENOENT);
}

TEST_F(PosixTerminal, AnswersWithTheErrnoOfAnOpenThatFails)
{
    nodes.byPath["/dev/cu.gone"] = "/dev/no-such-node";
    nodes.byPath["/dev/cu.folder"] = "/tmp";

    EXPECT_EQ(terminal.open("/dev/cu.gone").error, ENOENT);
    EXPECT_EQ(terminal.open("/dev/cu.folder").error, EISDIR);
}

TEST_F(PosixTerminal, OpensWithoutBlockingAndForThisProgramOnly)
{
    const int line = opened();

    const int flags = ::fcntl(line, F_GETFL);
    EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
    EXPECT_NE(flags & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(line, F_GETFD), FD_CLOEXEC);
}

TEST_F(PosixTerminal, BecomesNoControllingTerminal)
{
    const int answer = inAnotherProcess([this] {
        ::setsid();
        const auto line = terminal.open(kPath);
        return line.failed() ? 1 : ::open("/dev/tty", O_RDWR | O_NOCTTY) >= 0 ? 2 : 0;
    });

    EXPECT_EQ(answer, 0);
}

TEST_F(PosixTerminal, BlocksOnceTheStatusFlagsAreCleared)
{
    const int line = opened();

    EXPECT_EQ(terminal.setStatusFlags(line, 0).error, 0);

    EXPECT_EQ(::fcntl(line, F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(terminal.setStatusFlags(999999, 0).error, EBADF);
}

TEST_F(PosixTerminal, RefusesASecondOpenerOfAnotherProcessWithoutHarmToTheHolder)
{
    const int line = opened();

    EXPECT_EQ(inAnotherProcess([this] { return terminal.open(kPath).error; }), EBUSY);

    EXPECT_EQ(terminal.write(line, bytesOf("still here")).value, 10);
    EXPECT_EQ(pty.received(10), "still here");
    pty.send("so am I");
    EXPECT_EQ(readSome(line), "so am I");
}

TEST_F(PosixTerminal, RefusesASecondOpenerOfTheSameProcess)
{
    opened();

    EXPECT_EQ(terminal.open(kPath).error, EBUSY);
    EXPECT_EQ(terminal.open(kPath).error, EBUSY);
}

TEST_F(PosixTerminal, KeepsOutThoseWhoTakeNoLock)
{
    ASSERT_EQ(::chmod(pty.node().c_str(), 0666), 0);
    const int line = opened();
    EXPECT_EQ(inAnotherProcess([this] { return plainOpenOfAnotherUser(); }), EBUSY);

    ASSERT_EQ(terminal.close(line).error, 0);

    EXPECT_EQ(inAnotherProcess([this] { return plainOpenOfAnotherUser(); }), 0);
}

TEST_F(PosixTerminal, LeavesTheLineAsItWasWhenAnotherHolderOfItsLockRefusesIt)
{
    // A holder that keeps nobody out but those who ask for the lock.
    ASSERT_EQ(::chmod(pty.node().c_str(), 0666), 0);
    const int holder = ::open(pty.node().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(::flock(holder, LOCK_EX | LOCK_NB), 0);

    EXPECT_EQ(terminal.open(kPath).error, EBUSY);

    EXPECT_EQ(inAnotherProcess([this] { return plainOpenOfAnotherUser(); }), 0);
    ::close(holder);
}

TEST_F(PosixTerminal, GivesTheLineFreeForAnotherProcessBeforeTheNumberIsReleased)
{
    const int line = opened();

    ASSERT_EQ(terminal.close(line).error, 0);

    EXPECT_EQ(inAnotherProcess([this] { return terminal.open(kPath).error; }), 0);
}

TEST_F(PosixTerminal, CanBeOpenedAgainWhileAReaderStillWaitsOnTheClosedLine)
{
    const int line = opened();
    std::atomic<bool> begins = false;
    SystemResult waited;
    std::thread reader([&] {
        begins = true;
        waited = terminal.waitReadable(line, 20s);
    });
    while (!begins) {
        std::this_thread::yield();
    }

    ASSERT_EQ(terminal.close(line).error, 0);
    const auto again = terminal.open(kPath);

    EXPECT_EQ(again.error, 0);
    EXPECT_NE(again.value, line);
    pty.send("x");
    reader.join();
    EXPECT_EQ(waited.value, 1);
}

TEST_F(PosixTerminal, KeepsAClosedNumberFromBeingGivenOutUntilItIsReleased)
{
    const int line = opened();
    ASSERT_EQ(terminal.close(line).error, 0);

    const int other = ::open("/dev/zero", O_RDONLY | O_CLOEXEC);
    EXPECT_NE(other, line);
    EXPECT_EQ(::fcntl(line, F_GETFD), FD_CLOEXEC);
    ::close(other);

    terminal.release(line);
    const int next = ::open("/dev/zero", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(next, line);
    ::close(next);
}

TEST_F(PosixTerminal, LetsLateCallsOnAClosedNumberMeetALineWithoutData)
{
    const int line = opened();
    pty.send("for nobody");
    ASSERT_EQ(terminal.close(line).error, 0);

    EXPECT_EQ(terminal.waitReadable(line, 20s).value, 1);
    EXPECT_EQ(readSome(line), "");
    EXPECT_EQ(terminal.modemLines(line).error, ENOTTY);
}

TEST_F(PosixTerminal, RefusesToCloseWhatIsNotOpen)
{
    const int line = opened();
    terminal.close(line);
    terminal.release(line);

    EXPECT_EQ(terminal.close(line).error, EBADF);

    EXPECT_EQ(::fcntl(line, F_GETFD), -1);
    EXPECT_EQ(terminal.close(-1).error, EBADF);
}

TEST_F(PosixTerminal, WritesWhatFitsAndSaysHowMuch)
{
    const int line = opened();
    const std::string much(1 << 20, 'x');

    const auto written = terminal.write(line, bytesOf(much));

    ASSERT_EQ(written.error, 0);
    EXPECT_GT(written.value, 0);
    EXPECT_LT(written.value, 1 << 20);
    auto last = written;
    while (!last.failed()) {
        last = terminal.write(line, bytesOf(much));
    }
    EXPECT_EQ(last.error, EAGAIN);
    EXPECT_EQ(last.value, -1);
}

TEST_F(PosixTerminal, ReadsAtMostWhatItIsAskedFor)
{
    const int line = opened();
    pty.send("abcdef");
    ASSERT_EQ(terminal.waitReadable(line, 20s).value, 1);

    EXPECT_EQ(readSome(line, 4), "abcd");
    EXPECT_EQ(readSome(line, 4), "ef");
}

TEST_F(PosixTerminal, WaitsForDataNoLongerThanItMay)
{
    const int line = opened();
    const auto begun = std::chrono::steady_clock::now();

    EXPECT_EQ(terminal.waitReadable(line, 20ms), SystemResult{});
    EXPECT_GE(std::chrono::steady_clock::now() - begun, 20ms);
    EXPECT_EQ(terminal.waitReadable(line, -1us), SystemResult{});
}

TEST_F(PosixTerminal, WaitsOnNumbersBeyondThoseThatSelectKnows)
{
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    ASSERT_GT(limit.rlim_max, 2000U);
    const rlimit raised{std::max<rlim_t>(limit.rlim_cur, 2001), limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &raised), 0);
    const int line = ::fcntl(opened(), F_DUPFD_CLOEXEC, 1999);
    ASSERT_GE(line, 1999);
    pty.send("high");

    EXPECT_EQ(terminal.waitReadable(line, 20s).value, 1);

    EXPECT_EQ(readSome(line), "high");
    EXPECT_EQ(terminal.close(line).error, 0);
    terminal.release(line);
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

TEST_F(PosixTerminal, AnswersEbadfForANumberThatIsNotOpen)
{
    constexpr int kNotOpen = 999999;
    platform::TerminalAttributes attributes;

    EXPECT_EQ(terminal.waitReadable(kNotOpen, 1ms).error, EBADF);
    EXPECT_EQ(terminal.read(kNotOpen, {}).error, EBADF);
    EXPECT_EQ(terminal.write(kNotOpen, bytesOf("x")).error, EBADF);
    EXPECT_EQ(terminal.modemLines(kNotOpen).error, EBADF);
    EXPECT_EQ(terminal.setModemLines(kNotOpen, 0).error, EBADF);
    EXPECT_EQ(terminal.attributes(kNotOpen, attributes).error, EBADF);
    EXPECT_EQ(terminal.setAttributes(kNotOpen, platform::ApplyAttributes::Now, attributes).error, EBADF);
    attributes.customSpeed = 250000;
    EXPECT_EQ(terminal.setAttributes(kNotOpen, platform::ApplyAttributes::Now, attributes).error, EBADF);
}

TEST_F(PosixTerminal, LetsTimePass)
{
    const auto begun = std::chrono::steady_clock::now();

    terminal.wait(10ms, 0ms);

    EXPECT_GE(std::chrono::steady_clock::now() - begun, 10ms);
}

TEST_F(PosixTerminal, HasNoModemLinesOnAPty)
{
    const int line = opened();

    EXPECT_EQ(terminal.modemLines(line).error, ENOTTY);
    EXPECT_EQ(terminal.setModemLines(line, TIOCM_DTR).error, ENOTTY);
}

} // namespace
