#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class PortClose : public SerialPortFixture {
protected:
    tcflag_t controlFlagsBefore() const { return line.attributes().record.c_cflag; }
};

TEST_F(PortClose, OfAClosedPortIsTrueAndDoesNothing)
{
    EXPECT_TRUE(port->close());

    EXPECT_THAT(world.terminal.calls(), IsEmpty());
    world.run();
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortClose, MakesItsCallsInOrder)
{
    openQuietly();

    EXPECT_TRUE(port->close());

    EXPECT_THAT(world.terminal.callTexts(),
                ElementsAre("attributes", "setAttributes now", "setAttributes afterDrain", "close"));
    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(port->fileDescriptor(), 0);
}

TEST_F(PortClose, TellsTheDelegateByTheMainQueue)
{
    openQuietly();

    port->close();
    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

TEST_F(PortClose, TakesFlowControlOutBeforeItDrainsSoThatItCannotHang)
{
    port->setUsesRTSCTSFlowControl(true);
    openQuietly();
    ASSERT_NE(line.attributes().record.c_cflag & CRTSCTS, 0U);
    const auto changes = line.settings().size();

    port->close();

    ASSERT_EQ(line.settings().size(), changes + 2);
    EXPECT_EQ(line.settings()[changes].when, platform::ApplyAttributes::Now);
    EXPECT_EQ(line.settings()[changes].attributes.record.c_cflag & CRTSCTS, 0U);
    EXPECT_EQ(line.settings()[changes + 1].when, platform::ApplyAttributes::AfterDrain);
}

TEST_F(PortClose, GivesTheTerminalBackItsSettingsFromBeforeTheOpen)
{
    auto before = line.attributes();
    before.record.c_cflag = B300 | CS7 | PARENB | CRTSCTS;
    before.customSpeed = 12345;
    line.setAttributes(before);
    openQuietly();
    ASSERT_NE(line.attributes().record.c_cflag, before.record.c_cflag);

    port->close();

    EXPECT_EQ(line.attributes().record.c_cflag, before.record.c_cflag);
    EXPECT_EQ(line.attributes().record.c_lflag, before.record.c_lflag);
    EXPECT_EQ(line.attributes().record.c_iflag, before.record.c_iflag);
    EXPECT_EQ(line.attributes().customSpeed, before.customSpeed);
}

TEST_F(PortClose, ReadsAsClosedBeforeTheDescriptorIsClosed)
{
    openQuietly();
    Lines seen;
    const auto observer = port->observe("isOpen", [&] {
        seen.push_back(port->isOpen() ? "open" : "closed");
        EXPECT_THAT(world.terminal.callTexts({TerminalCall::Close}), IsEmpty());
    });

    port->close();

    EXPECT_THAT(seen, ElementsAre("closed"));
}

TEST_F(PortClose, ThatFailsLeavesThePortOpenWithTheOldDescriptorAndReportsIt)
{
    openQuietly();
    const auto descriptor = port->fileDescriptor();
    line.failNext(TerminalCall::Close, EIO);
    Lines seen;
    const auto observer = port->observe("fileDescriptor", [&] { seen.push_back(port->isOpen() ? "open" : "closed"); });

    EXPECT_FALSE(port->close());

    EXPECT_TRUE(port->isOpen());
    EXPECT_EQ(port->fileDescriptor(), descriptor);
    EXPECT_THAT(seen, ElementsAre("closed", "open"));
    EXPECT_THAT(delegate->heard(), ElementsAre("error 5"));
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("error 5"));
    EXPECT_TRUE(port->close());
}

TEST_F(PortClose, ThatFailedMayBeRepeatedInsideItsError)
{
    openQuietly();
    line.failNext(TerminalCall::Close, EIO);
    delegate->whenHearing("error 5", [this] { EXPECT_TRUE(port->close()); });

    EXPECT_FALSE(port->close());

    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortClose, DoesNotLookAtWhetherTheSettingsCouldBeRestored)
{
    openQuietly();
    line.failNext(TerminalCall::Attributes, EIO);
    line.failNext(TerminalCall::SetAttributes, EIO, 2);

    EXPECT_TRUE(port->close());

    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(PortClose, StopsThePollAtOnceAndTheReaderWithinOneRound)
{
    openQuietly();
    world.advance(15ms);

    port->close();
    world.terminal.forgetCalls();
    world.advance(100ms);

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::ModemLines, TerminalCall::WaitReadable}), IsEmpty());
    EXPECT_THAT(world.terminal.callTexts(), ElementsAre("release"));
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(PortClose, StopsThePollBeforeItRestoresTheSettings)
{
    openQuietly();
    line.delayNext(TerminalCall::Attributes, 35ms);
    line.delayNext(TerminalCall::SetAttributes, 35ms);

    port->close();

    EXPECT_EQ(world.now(), 90ms);
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::ModemLines, TerminalCall::SetAttributes, TerminalCall::Close}),
                ElementsAre("setAttributes now", "setAttributes afterDrain", "close"));
}

TEST_F(PortClose, LetsNoDataCallbackComeLaterThanOneReaderRoundAndWhatWasQueued)
{
    openQuietly();
    line.reply("early");
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());
    world.run();
    port->close();
    hold->reset();
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("data early", "closed"));

    world.advance(1s);

    EXPECT_THAT(delegate->heard("data"), ElementsAre("data early"));
}

TEST_F(PortClose, LeavesBytesUnreadThatCameWhileTheReaderWasHeldUp)
{
    openQuietly();
    line.delayNext(TerminalCall::WaitReadable, 50ms);
    world.advance(110ms);
    line.reply("late");
    world.terminal.forgetCalls();
    port->close();

    world.advance(1s);

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Read}), IsEmpty());
    EXPECT_THAT(delegate->heard("data"), IsEmpty());
    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(PortClose, IsDoneByOneOfTwoAtTheSameTimeTheOtherAnswersYes)
{
    openQuietly();
    line.delayNext(TerminalCall::Attributes, 50ms);
    bool first = false;
    inBackground([&] { first = port->close(); });

    EXPECT_TRUE(port->close());

    EXPECT_TRUE(port->isOpen());
    world.advance(60ms);
    EXPECT_TRUE(first);
    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Close}), ElementsAre("close"));
    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

TEST_F(PortClose, UnderWayLetsNoOpenIn)
{
    openQuietly();
    const auto observer = port->observe("isOpen", [this] { port->open(); });

    EXPECT_TRUE(port->close());

    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open}), IsEmpty());
}

TEST_F(PortClose, IsCompletedAlsoWhenAnObserverThrows)
{
    openQuietly();
    auto observer = port->observe("isOpen", [] { throw std::runtime_error("no"); });

    EXPECT_THROW(port->close(), std::runtime_error);
    observer.reset();

    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(world.terminal.openDescriptors(), 0U);
    port->open();
    EXPECT_TRUE(port->isOpen());
}

TEST_F(PortClose, KeepsTheDescriptorsNumberUntilTheReaderHasLeft)
{
    openQuietly();
    const auto old = port->fileDescriptor();

    port->close();
    port->open();

    EXPECT_NE(port->fileDescriptor(), old);
    EXPECT_EQ(world.terminal.descriptorsInUse(), 2U);
    world.advance(100ms);
    EXPECT_EQ(world.terminal.descriptorsInUse(), 1U);
}

TEST_F(PortClose, AndAnOpenRightAfterItLeaveOneReaderAndOnePoll)
{
    openQuietly();
    for (int i = 0; i < 5; ++i) {
        port->close();
        port->open();
    }
    world.advance(150ms);
    world.terminal.forgetCalls();

    world.advance(100ms);

    EXPECT_EQ(world.terminal.calls({TerminalCall::WaitReadable}).size(), 1U);
    EXPECT_EQ(world.terminal.calls({TerminalCall::ModemLines}).size(), 10U);
    for (const auto& call : world.terminal.calls({TerminalCall::WaitReadable, TerminalCall::ModemLines})) {
        EXPECT_EQ(call.descriptor, port->fileDescriptor());
    }
}

// The poll is inside the terminal's call when the port is closed: the call's failure is not reported.
TEST_F(PortClose, SilencesAPollThatIsUnderWay)
{
    openQuietly();
    line.failNext(TerminalCall::ModemLines, ENOTTY);
    line.stall(TerminalCall::ModemLines);
    world.advance(10ms);
    ASSERT_EQ(line.stalled(TerminalCall::ModemLines), 1);

    port->close();
    line.goOn(TerminalCall::ModemLines);
    world.advance(100ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

// A tick that had begun before the close finds the port closed: it leaves the cancelling to a task of its own.
TEST_F(PortClose, EndsAPollWhoseTurnHadComeAlready)
{
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        world.time.explore(seed);
        port->open();
        world.advance(10ms);
        EXPECT_TRUE(port->close());
        world.advance(120ms);
        EXPECT_EQ(world.time.backgroundTasks(), 0U) << seed;
        EXPECT_EQ(world.terminal.descriptorsInUse(), 0U) << seed;
    }
}

} // namespace

} // namespace vorrano::serial
