#include "serial/OpenPort.h"

#include "support/World.h"

#include <cerrno>
#include <string>
#include <vector>

#include <sys/ioctl.h>

// One open by itself, without a port around it.
namespace vorrano::serial {

namespace {

using namespace std::chrono_literals;
using support::TerminalCall;
using testing::ElementsAre;
using testing::IsEmpty;

class AnOpen : public testing::Test {
protected:
    ~AnOpen() override { end(); }

    void startReading()
    {
        world.backgroundQueue.async([this, held = open] { held->readUntilEnded(events); });
        world.run();
    }

    void startPolling()
    {
        world.backgroundQueue.async([this, held = open] { held->pollUntilStopped(events); });
        world.run();
    }

    // Ends the open, and waits until its reader and its poll have left.
    void end()
    {
        if (open && !open->isEnded()) {
            open->end();
            static_cast<void>(open->closeDescriptor());
        }
        open.reset();
        world.advance(200ms);
    }

    support::World world;
    support::FakeLine& line = world.plugVorrano();
    std::vector<std::string> told;
    OpenPort::Events events{
        .didReceive = [this](const Bytes& chunk) { told.push_back("chunk " + chunk); },
        .didFailToWait = [this](int error) { told.push_back("wait failed " + std::to_string(error)); },
        .didReadLines = [this](int lines) { told.push_back("lines " + std::to_string(lines)); },
        .didFailToReadLines = [this](int error) { told.push_back("lines failed " + std::to_string(error)); },
    };
    std::shared_ptr<OpenPort> open =
        std::make_shared<OpenPort>(world.terminal, world.terminal.open(line.path()).value, 7);
};

TEST_F(AnOpen, ReadsChunksUntilItHasEnded)
{
    startReading();
    line.reply("one");
    world.run();
    line.reply("two");
    world.run();

    open->end();
    line.reply("late");
    world.advance(200ms);

    EXPECT_THAT(told, ElementsAre("chunk one", "chunk two"));
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(AnOpen, ReportsEachRoundThatFails)
{
    line.failNext(TerminalCall::WaitReadable, EINTR, 2);

    startReading();
    line.reply("next");
    world.run();

    EXPECT_THAT(told, ElementsAre("wait failed 4", "wait failed 4", "chunk next"));
}

TEST_F(AnOpen, ReadsTheLinesAtOnceAndThenEvery10Milliseconds)
{
    line.setModemLines(TIOCM_CTS);
    startPolling();
    const auto first = told.size();

    world.advance(30ms);

    EXPECT_EQ(first, 1U);
    EXPECT_EQ(told.size(), 4U);
}

TEST_F(AnOpen, PollsNoMoreOnceItIsToldToStop)
{
    startPolling();
    told.clear();

    open->stopPolling();
    world.advance(50ms);

    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
    EXPECT_FALSE(open->isEnded());
}

TEST_F(AnOpen, ReportsOnceThatTheDeviceIsGoneAndStopsPolling)
{
    line.failNext(TerminalCall::ModemLines, ENXIO, 5);

    startPolling();
    world.advance(50ms);

    EXPECT_THAT(told, ElementsAre("lines failed 6"));
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(AnOpen, GoesOnPollingAfterAnyOtherFailure)
{
    line.setModemLines(0);
    line.failNext(TerminalCall::ModemLines, EIO);

    startPolling();
    world.advance(10ms);

    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told.front(), "lines failed 5");
}

TEST_F(AnOpen, ReportsNothingThatACallSaysWhichWasUnderWayAtItsEnd)
{
    line.delayNext(TerminalCall::ModemLines, 5ms);
    startPolling();

    open->end();
    world.advance(50ms);

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(AnOpen, WritesAllBytesHoweverTheyAreSplit)
{
    line.writeAtMost(3);

    const auto outcome = open->write("12345678");

    EXPECT_TRUE(outcome.complete);
    EXPECT_EQ(line.written(), "12345678");
}

TEST_F(AnOpen, ReportsTheErrorOfAWriteThatFails)
{
    line.writeAtMost(3);
    line.failNext(TerminalCall::Write, EIO);

    const auto outcome = open->write("12345678");

    EXPECT_FALSE(outcome.complete);
    EXPECT_EQ(outcome.error, EIO);
}

TEST_F(AnOpen, WritesNoMoreOnceItHasEnded)
{
    line.limitNextWrites({3});
    line.onWrite([this](const std::string&) { open->end(); });

    const auto outcome = open->write("12345678");

    EXPECT_FALSE(outcome.complete);
    EXPECT_EQ(outcome.error, 0);
    EXPECT_EQ(line.written(), "123");
}

TEST_F(AnOpen, SetsOneLineAndLeavesTheOthers)
{
    line.setLinesAtOpen(TIOCM_DTR);
    world.terminal.setModemLines(open->descriptor(), TIOCM_DTR);

    EXPECT_FALSE(open->drive(TIOCM_RTS, true).failed());

    EXPECT_EQ(line.outputLines(), TIOCM_DTR | TIOCM_RTS);
}

TEST_F(AnOpen, GivesTheTerminalItsSettingsBack)
{
    const auto before = line.attributes().record;
    open->keepOriginalAttributes();
    static_cast<void>(open->apply({.numberOfStopBits = 2, .parity = SerialParityOdd}));
    ASSERT_NE(line.attributes().record.c_cflag, before.c_cflag);

    open->restoreAttributes();

    EXPECT_EQ(line.attributes().record.c_cflag, before.c_cflag);
    EXPECT_EQ(line.attributes().record.c_lflag, before.c_lflag);
}

TEST_F(AnOpen, GivesItsNumberBackWithItsLastHolder)
{
    startReading();
    open->end();
    static_cast<void>(open->closeDescriptor());

    open.reset();
    EXPECT_EQ(world.terminal.descriptorsInUse(), 1U);
    world.advance(100ms);

    EXPECT_EQ(world.terminal.descriptorsInUse(), 0U);
}

TEST_F(AnOpen, GoesOnAfterACloseThatFailed)
{
    open->end();
    line.failNext(TerminalCall::Close, EIO);
    EXPECT_TRUE(open->closeDescriptor().failed());

    open->resume();

    EXPECT_FALSE(open->isEnded());
    EXPECT_TRUE(open->write("still").complete);
}

} // namespace

} // namespace vorrano::serial
