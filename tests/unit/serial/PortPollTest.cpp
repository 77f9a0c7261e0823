#include "unit/serial/SerialPortFixture.h"

#include <cerrno>
#include <cstring>

#include <sys/ioctl.h>

namespace vorrano::serial {

namespace {

class PortPoll : public SerialPortFixture {};

TEST_F(PortPoll, MirrorsTheInputLinesOnTheMainThread)
{
    openQuietly();
    Lines seen;
    const auto note = [&](const std::string& what) {
        EXPECT_TRUE(world.mainQueue.isMainThread());
        seen.push_back(what);
    };
    const auto cts = port->observe("CTS", [&] { note(port->CTS() ? "CTS on" : "CTS off"); });
    const auto dsr = port->observe("DSR", [&] { note(port->DSR() ? "DSR on" : "DSR off"); });
    const auto dcd = port->observe("DCD", [&] { note(port->DCD() ? "DCD on" : "DCD off"); });

    line.setModemLines(TIOCM_CTS | TIOCM_DSR | TIOCM_CAR);
    world.advance(10ms);
    EXPECT_THAT(seen, ElementsAre("CTS on", "DSR on", "DCD on"));

    line.setModemLines(TIOCM_DSR);
    world.advance(10ms);
    EXPECT_THAT(seen, ElementsAre("CTS on", "DSR on", "DCD on", "CTS off", "DCD off"));
    EXPECT_FALSE(port->CTS());
    EXPECT_TRUE(port->DSR());
    EXPECT_FALSE(port->DCD());
}

struct InputLine {
    const char* name;
    int bit;
    bool (SerialPort::*get)() const;
};

class PortInputLine : public SerialPortFixture, public testing::WithParamInterface<InputLine> {};

INSTANTIATE_TEST_SUITE_P(Of, PortInputLine,
                         testing::Values(InputLine{"CTS", TIOCM_CTS, &SerialPort::CTS},
                                         InputLine{"DSR", TIOCM_DSR, &SerialPort::DSR},
                                         InputLine{"DCD", TIOCM_CAR, &SerialPort::DCD}),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(PortInputLine, FollowsItsBitAlone)
{
    const auto value = [this] { return (port.get()->*GetParam().get)(); };
    openQuietly();
    const auto all = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR | TIOCM_RI;

    line.setModemLines(GetParam().bit);
    world.advance(10ms);
    EXPECT_TRUE(value());
    line.setModemLines(all & ~GetParam().bit);
    world.advance(10ms);
    EXPECT_FALSE(value());
}

TEST_P(PortInputLine, TellsItsObserversOnlyOfChanges)
{
    openQuietly();
    int told = 0;
    auto observer = port->observe(GetParam().name, [&] { ++told; });

    line.setModemLines(GetParam().bit);
    world.advance(1s);
    EXPECT_EQ(told, 1);

    observer.reset();
    line.setModemLines(0);
    world.advance(1s);
    EXPECT_EQ(told, 1);
}

TEST_F(PortPoll, TouchesTheMainThreadOnlyWhenALineChanges)
{
    openQuietly();
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());

    world.advance(1s);

    EXPECT_EQ(world.mainQueue.waiting(), 0U);
}

TEST_F(PortPoll, WaitsForTheMainThreadWhenALineChanges)
{
    openQuietly();
    auto hold = world.mainQueue.hold();
    line.setModemLines(TIOCM_CTS);
    world.terminal.forgetCalls();

    world.advance(1s);
    EXPECT_EQ(world.terminal.calls({TerminalCall::ModemLines}).size(), 1U);
    EXPECT_FALSE(port->CTS());

    hold.reset();
    world.run();
    EXPECT_TRUE(port->CTS());
}

TEST_F(PortPoll, KeepsTheInputLinesOverACloseAndMirrorsThemAtTheNextOpen)
{
    openQuietly();
    line.setModemLines(TIOCM_CTS);
    world.advance(10ms);

    port->close();
    line.setModemLines(0);
    world.advance(1s);
    EXPECT_TRUE(port->CTS());

    port->open();
    world.run();
    EXPECT_FALSE(port->CTS());
}

// The main thread closes the port while the poll waits for it; what the poll wanted to say is of an ended open.
TEST_F(PortPoll, SetsNoLineOfAnOpenThatHasEnded)
{
    openQuietly();
    auto hold = world.mainQueue.hold();
    line.setModemLines(TIOCM_CTS);
    world.advance(10ms);

    port->close();
    line.setModemLines(0);
    port->open();
    hold.reset();
    world.run();

    EXPECT_FALSE(port->CTS());
    EXPECT_THAT(delegate->heard(), ElementsAre("closed", "opened"));
}

TEST_F(PortPoll, ReportsAnyOtherFailureAtEachTickAndLeavesThePortOpen)
{
    openQuietly();
    line.failNext(TerminalCall::ModemLines, ENOTTY, 3);

    world.advance(50ms);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("error 25", "error 25", "error 25"));
}

TEST_F(PortPoll, DoesNotWaitUntilAnyOtherFailureHasBeenTold)
{
    openQuietly();
    auto hold = world.mainQueue.hold();
    line.failNext(TerminalCall::ModemLines, EIO, 3);
    world.terminal.forgetCalls();

    world.advance(50ms);

    EXPECT_EQ(world.terminal.calls({TerminalCall::ModemLines}).size(), 5U);
    EXPECT_EQ(world.mainQueue.waiting(), 3U);
    hold.reset();
    world.run();
}

TEST_F(PortPoll, WaitsUntilTheErrorOfAnUnpluggedDeviceHasBeenTold)
{
    openQuietly();
    auto hold = world.mainQueue.hold();
    line.unplug();
    world.terminal.forgetCalls();

    world.advance(1s);
    EXPECT_EQ(world.terminal.calls({TerminalCall::ModemLines}).size(), 1U);
    EXPECT_EQ(world.mainQueue.waiting(), 1U);

    hold.reset();
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("error 6", "removed", "closed"));
}

TEST_F(PortPoll, TellsOfAnUnpluggedDeviceTheErrorThenTheRemovalThenTheClose)
{
    openQuietly();

    line.unplug();
    world.advance(1s);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 6", "removed", "closed"));
    EXPECT_EQ(delegate->errors().front(), (SerialError{ENXIO, std::strerror(ENXIO), line.path()}));
    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortPoll, TellsOfAnUnpluggedDeviceWhoseCloseFailsNoClose)
{
    openQuietly();
    line.unplug();
    line.failNext(TerminalCall::Close, EIO);

    world.advance(1s);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 6", "removed", "error 5"));
    EXPECT_TRUE(port->isOpen());
    EXPECT_TRUE(port->close());
}

TEST_F(PortPoll, TellsOfAnUnpluggedDeviceOnlyOnceHoweverLongTheMainThreadIsHeld)
{
    delegate->setCallbacks({SerialPortCallback::WasRemovedFromSystem, SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    openQuietly();
    auto hold = world.mainQueue.hold();

    line.unplug();
    world.advance(10s);
    hold.reset();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "closed"));
}

TEST_F(PortPoll, ClosesAnUnpluggedPortOnItsOwnThreadWhenTheDelegateImplementsNoRemoval)
{
    delegate->setCallbacks({SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    openQuietly();
    auto hold = world.mainQueue.hold();

    line.unplug();
    world.advance(20ms);

    EXPECT_FALSE(port->isOpen());
    const auto closes = world.terminal.calls({TerminalCall::Close});
    ASSERT_EQ(closes.size(), 1U);
    EXPECT_FALSE(closes.front().onMainThread);
    hold.reset();
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

// The error is told while the poll waits; whoever hears it may close and open the port.
TEST_F(PortPoll, LeavesAnOpenAloneThatBeganInsideItsError)
{
    openQuietly();
    delegate->whenHearing("error 6", [this] {
        port->close();
        port->open();
    });
    line.failNext(TerminalCall::ModemLines, ENXIO);

    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("error 6", "closed", "opened"));
}

TEST_F(PortPoll, IsAtMost5MillisecondsLate)
{
    world.time.setLateness(1.0);
    port->open();
    const auto opened = world.now();
    world.terminal.forgetCalls();

    world.advance(100ms);

    auto due = opened;
    for (const auto& poll : world.terminal.calls({TerminalCall::ModemLines})) {
        EXPECT_EQ(poll.at, due);
        due += 15ms;
    }
    EXPECT_EQ(due, opened + 105ms);
}

// The main thread may be closing the very port whose poll waits for it: tried in every order that a hundred seeds give.
TEST_F(PortPoll, NeverDeadlocksWithACloseOfTheSamePort)
{
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        world.time.explore(seed);
        port->open();
        line.setModemLines(seed % 2 == 0 ? TIOCM_CTS | TIOCM_CAR : TIOCM_DSR);
        world.advance(std::chrono::milliseconds(seed % 12));
        EXPECT_TRUE(port->close()) << seed;
        world.advance(150ms);
        EXPECT_FALSE(port->isOpen());
        EXPECT_EQ(world.time.backgroundTasks(), 0U) << seed;
    }
}

} // namespace

} // namespace vorrano::serial
