#include "serial_pty/SerialPtyFixture.h"

#include <atomic>
#include <cerrno>
#include <memory>
#include <random>

#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

namespace vorrano::serial {

namespace {

struct Flag {
    const char* name;
    void (SerialPort::*set)(bool);
};

class FlagOnAPty : public SerialPtyFixture, public testing::WithParamInterface<Flag> {};

INSTANTIATE_TEST_SUITE_P(Of, FlagOnAPty,
                         testing::Values(Flag{"RtsCts", &SerialPort::setUsesRTSCTSFlowControl},
                                         Flag{"DtrDsr", &SerialPort::setUsesDTRDSRFlowControl},
                                         Flag{"Dcd", &SerialPort::setUsesDCDOutputFlowControl}),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(FlagOnAPty, FlippedAThousandTimesClosesAndOpensWithoutError)
{
    giveModemLines();
    port->open();

    for (int i = 0; i < 1000; ++i) {
        const auto waits = world->terminal.waits.load();
        (port.get()->*GetParam().set)(i % 2 == 0);
        // Every other time the new reader is at the terminal when the next flip comes.
        ASSERT_TRUE(i % 2 == 0 || world->loop.runUntil([&] { return world->terminal.waits > waits; }));
        ASSERT_TRUE(port->isOpen()) << i;
    }
    world->loop.drain();

    EXPECT_EQ(delegate->heard("closed").size(), 1000U);
    EXPECT_EQ(delegate->heard("opened").size(), 1001U);
    EXPECT_THAT(delegate->heard("error"), testing::IsEmpty());
    pty->send("alive");
    EXPECT_TRUE(hears("data alive"));
}

class OpenOfAPty : public SerialPtyFixture {
protected:
    // What another process hears that opens the same device: 0, or its errno.
    [[nodiscard]] int errnoOfAnotherProcess() const
    {
        const auto node = pty->node();
        const char* const arguments[] = {"test_serial_pty", "--try-to-open", node.c_str(), nullptr};
        pid_t child = 0;
        if (::posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, const_cast<char* const*>(arguments), environ) !=
            0) {
            return -1;
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(OpenOfAPty, RefusesASecondOpenerInAnotherProcessAndLeavesTheHolderUnharmed)
{
    giveModemLines();
    EXPECT_EQ(errnoOfAnotherProcess(), 0);
    port->open();

    EXPECT_EQ(errnoOfAnotherProcess(), EBUSY);

    pty->send("abc");
    EXPECT_TRUE(hears("data abc"));
    EXPECT_TRUE(port->sendData("def"));
    EXPECT_EQ(received(3), "def");
    EXPECT_THAT(delegate->heard("error"), testing::IsEmpty());
}

TEST_F(OpenOfAPty, LetsAnotherProcessInRightAfterTheCloseThoughTheReaderHasNotEnded)
{
    giveModemLines();
    port->open();
    ASSERT_TRUE(world->loop.runUntil([&] { return world->terminal.waits >= 1; }));

    port->close();

    EXPECT_EQ(errnoOfAnotherProcess(), 0);
}

TEST_F(OpenOfAPty, LeavesNothingBehindHoweverOftenItIsRepeated)
{
    giveModemLines();
    const auto files = pty_rig::openFiles();
    for (int i = 0; i < 200; ++i) {
        port->open();
        ASSERT_TRUE(port->isOpen());
        ASSERT_TRUE(port->close());
    }
    world->loop.drain();

    // The readers leave within their rounds, and the threads that they had some time later.
    EXPECT_TRUE(world->loop.runUntil([&] { return pty_rig::openFiles() == files; }));
    EXPECT_TRUE(world->loop.runUntil([] { return pty_rig::threads() < 20; }));
    EXPECT_EQ(delegate->heard().size(), 400U);
}

// Each poll finds the lines changed and waits for the main thread, which opens and closes that very port all the time.
TEST_F(OpenOfAPty, NeverDeadlocksWithAPollThatWaitsForTheMainThread)
{
    // The poll of the last open may still ask when this body has ended.
    world->terminal.linesOfALineWithout = [lines = std::make_shared<std::atomic<int>>(0)] {
        return (*lines ^= TIOCM_CTS | TIOCM_DSR | TIOCM_CAR);
    };
    std::minstd_rand dice(4711);
    for (int i = 0; i < 300; ++i) {
        port->open();
        const auto polls = world->terminal.polls.load();
        const auto more = dice() % 3;
        ASSERT_TRUE(world->loop.runUntil([&] { return world->terminal.polls >= polls + more; })) << i;
        ASSERT_TRUE(port->close()) << i;
        ASSERT_FALSE(port->isOpen()) << i;
    }
}

TEST_F(OpenOfAPty, NeverDeadlocksWithAPollThatTellsOfAnUnpluggedDevice)
{
    giveModemLines();
    for (int i = 0; i < 30; ++i) {
        port->open();
        ASSERT_TRUE(port->isOpen()) << i;
        const auto refused = world->terminal.refusedPolls.load();
        hangUp();
        // A poll that was refused waits for the main thread by now, or is about to; no other poll follows it.
        ASSERT_TRUE(world->loop.holdUntil([&] { return world->terminal.refusedPolls > refused; })) << i;
        EXPECT_TRUE(port->close()) << i;
        plugAgain();
        port->open();
        world->loop.drain();
        ASSERT_TRUE(port->isOpen()) << i;
        port->close();
    }
}

TEST_F(OpenOfAPty, OfTwoClosesAndOpensAtTheSameTimeLetsOneOfEachDoTheWork)
{
    giveModemLines();
    for (int i = 0; i < 100; ++i) {
        std::atomic<int> done = 0;
        const auto atOnce = [&](const std::function<void()>& step) {
            done = 0;
            world->background.async([&] {
                step();
                ++done;
            });
            step();
            EXPECT_TRUE(world->loop.runUntil([&] { return done == 1; }));
        };
        atOnce([this] { port->open(); });
        ASSERT_TRUE(port->isOpen()) << i;
        atOnce([this] { EXPECT_TRUE(port->close()); });
        ASSERT_FALSE(port->isOpen()) << i;
    }
    world->loop.drain();

    EXPECT_EQ(world->terminal.opens, 100U);
    EXPECT_EQ(world->terminal.closes, 100U);
    EXPECT_THAT(delegate->heard("error"), testing::IsEmpty());
}

} // namespace

} // namespace vorrano::serial
