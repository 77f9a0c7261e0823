#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class PortWrite : public SerialPortFixture {};

TEST_F(PortWrite, OfEmptyDataIsTrueWithoutWriting)
{
    openQuietly();

    EXPECT_TRUE(port->sendData(""));

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Write}), IsEmpty());
}

TEST_F(PortWrite, OnAClosedPortIsFalseWithoutAnyCallback)
{
    EXPECT_FALSE(port->sendData("abc"));
    EXPECT_FALSE(port->sendData(""));

    world.advance(1s);
    EXPECT_THAT(world.terminal.calls(), IsEmpty());
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortWrite, WritesAllBytesZeroBytesToo)
{
    openQuietly();
    const std::string data("a\0b\xff\r\n", 6);

    EXPECT_TRUE(port->sendData(data));

    EXPECT_EQ(line.written(), data);
    EXPECT_EQ(line.writes().size(), 1U);
}

TEST_F(PortWrite, RunsOnTheCallersThread)
{
    openQuietly();
    port->sendData("main");
    inBackground([this] { port->sendData("background"); });

    const auto writes = world.terminal.calls({TerminalCall::Write});
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_TRUE(writes[0].onMainThread);
    EXPECT_FALSE(writes[1].onMainThread);
}

class PortWriteInParts : public SerialPortFixture, public testing::WithParamInterface<std::size_t> {};

TEST_P(PortWriteInParts, WritesTheRestAgainUntilAllIsOut)
{
    openQuietly();
    line.writeAtMost(GetParam());

    EXPECT_TRUE(port->sendData("My$Home$Net"));

    EXPECT_EQ(line.written(), "My$Home$Net");
    EXPECT_EQ(line.writes().size(), (11 + GetParam() - 1) / GetParam());
}

INSTANTIATE_TEST_SUITE_P(OfEveryLength, PortWriteInParts, testing::Range<std::size_t>(1, 12));

TEST_F(PortWrite, OffersTheWholeRemainderEachTime)
{
    openQuietly();
    line.limitNextWrites({3, 0, 0, 5});

    EXPECT_TRUE(port->sendData("0123456789"));

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Write}),
                ElementsAre("write 10", "write 7", "write 7", "write 7", "write 2"));
    EXPECT_EQ(line.written(), "0123456789");
}

TEST_F(PortWrite, ThatFailsIsReportedOnceAndEnds)
{
    openQuietly();
    line.limitNextWrites({4});
    line.failNext(TerminalCall::Write, 0, 0);
    line.onWrite([this](const std::string&) { line.failNext(TerminalCall::Write, EIO); });

    EXPECT_FALSE(port->sendData("0123456789"));

    EXPECT_EQ(line.written(), "0123");
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("error 5"));
    EXPECT_TRUE(port->isOpen());
}

TEST_F(PortWrite, IsNotTriedAgainAfterAnInterruption)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EINTR);

    EXPECT_FALSE(port->sendData("abc"));

    EXPECT_EQ(line.written(), "");
    EXPECT_THAT(delegate->heard(), ElementsAre("error 4"));
}

TEST_F(PortWrite, BlocksUntilAllBytesAreOut)
{
    openQuietly();
    line.stall(TerminalCall::Write);
    bool done = false;
    inBackground([&] { done = port->sendData("abc"); });
    world.advance(1s);
    EXPECT_FALSE(done);

    line.goOn(TerminalCall::Write);
    world.run();

    EXPECT_TRUE(done);
    EXPECT_EQ(line.written(), "abc");
}

// What is left of a write when its open ends goes nowhere, least of all to the open that follows.
TEST_F(PortWrite, EndsWithItsOpen)
{
    openQuietly();
    line.limitNextWrites({4});
    bool result = true;
    line.onWrite([&](const std::string&) {
        line.onWrite({});
        line.stall(TerminalCall::Write);
    });
    inBackground([&] { result = port->sendData("01234567"); });
    ASSERT_EQ(line.stalled(TerminalCall::Write), 1);
    line.limitNextWrites({1});

    port->close();
    port->open();
    line.goOn(TerminalCall::Write);
    world.run();

    EXPECT_FALSE(result);
    EXPECT_EQ(line.written(), "01234");
    EXPECT_TRUE(port->sendData("new"));
    EXPECT_EQ(line.written(), "01234new");
    world.advance(150ms);
    EXPECT_EQ(world.terminal.descriptorsInUse(), 1U);
}

} // namespace

} // namespace vorrano::serial
