#include "unit/serial/SerialPortFixture.h"

#include <algorithm>
#include <cerrno>

namespace vorrano::serial {

namespace {

class PortReader : public SerialPortFixture {
protected:
    [[nodiscard]] std::size_t calls(TerminalCall call) const { return world.terminal.calls({call}).size(); }
};

TEST_F(PortReader, HandsOverExactlyTheBytesOfEachRead)
{
    openQuietly();
    line.reply("OK\n\r");
    line.reply(std::string("\0\xff", 2));

    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("data OK\n\r", "data " + std::string("\0\xff", 2)));
}

TEST_F(PortReader, ReadsAtMost1024BytesAtATime)
{
    openQuietly();
    line.reply(std::string(1024, 'a') + std::string(1024, 'b') + "c");

    world.run();

    EXPECT_THAT(delegate->heard(),
                ElementsAre("data " + std::string(1024, 'a'), "data " + std::string(1024, 'b'), "data c"));
}

TEST_F(PortReader, DoesNotLookAtTheDelegateWhenItImplementsNoDataCallback)
{
    delegate->setCallbacks({SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    openQuietly();
    line.reply("abc");

    world.run();

    EXPECT_EQ(world.mainQueue.waiting(), 0U);
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortReader, SkipsADelegateThatIsGoneAtDelivery)
{
    openQuietly();
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());
    line.reply("abc");
    world.run();

    delegate.reset();
    hold->reset();
    world.run();

    EXPECT_EQ(port->delegate(), nullptr);
    delegate = std::make_shared<RecordingDelegate>(world.mainQueue);
}

TEST_F(PortReader, TellsTheDelegateThatTookThePlaceBeforeDelivery)
{
    openQuietly();
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());
    line.reply("abc");
    world.run();
    const auto other = std::make_shared<RecordingDelegate>(world.mainQueue);
    const auto silent = std::make_shared<RecordingDelegate>(world.mainQueue, SerialPortCallbacks());

    port->setDelegate(other);
    hold->reset();
    world.run();

    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_THAT(other->heard(), ElementsAre("data abc"));
    EXPECT_EQ(port->delegate(), other);

    line.reply("def");
    port->setDelegate(silent);
    world.run();
    EXPECT_THAT(silent->heard(), IsEmpty());
}

TEST_F(PortReader, AsksTheDelegateAgainAtDelivery)
{
    openQuietly();
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());
    line.reply("abc");
    world.run();

    delegate->setCallbacks({SerialPortCallback::WasClosed});
    hold->reset();
    world.run();

    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortReader, ReportsAFailedWaitOncePerRoundAndGoesOn)
{
    openQuietly();
    line.failNext(TerminalCall::WaitReadable, EBADF, 3);

    world.advance(100ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 9", "error 9", "error 9"));
    line.reply("abc");
    world.run();
    EXPECT_THAT(delegate->heard("data"), ElementsAre("data abc"));
}

TEST_F(PortReader, GoesRoundAfterAnInterruptedWait)
{
    openQuietly();
    line.failNext(TerminalCall::WaitReadable, EINTR);
    world.advance(100ms);
    line.reply("abc");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("error 4", "data abc"));
}

TEST_F(PortReader, DoesNotReportWhatFailsAfterTheCloseItEndsBy)
{
    openQuietly();
    line.failNext(TerminalCall::WaitReadable, EBADF);

    port->close();
    world.advance(200ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

class PortReaderIgnores : public SerialPortFixture, public testing::WithParamInterface<int> {};

TEST_P(PortReaderIgnores, AReadThatFails)
{
    openQuietly();
    line.failNext(TerminalCall::Read, GetParam());
    line.reply("abc");

    world.run();
    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.advance(100ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("data abc"));
}

INSTANTIATE_TEST_SUITE_P(WithoutReport, PortReaderIgnores,
                         testing::Values(EAGAIN, EBADF, EFAULT, EINTR, EINVAL, EIO, EISDIR, ENXIO));

TEST_F(PortReader, WaitsItsRoundOutWhenAReadableLineGivesNoBytes)
{
    port->setDelegate({});
    openQuietly();
    line.failNext(TerminalCall::ModemLines, EIO, 1000);
    const auto hold = std::make_unique<platform::Subscription>(world.mainQueue.hold());
    line.unplug();
    world.terminal.forgetCalls();

    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_LE(calls(TerminalCall::Read), 11U);
    EXPECT_LE(calls(TerminalCall::WaitReadable), 11U);
    const auto waits = world.terminal.callTexts({TerminalCall::Wait});
    EXPECT_GE(std::count(waits.begin(), waits.end(), "wait 100000us"), 9);
}

TEST_F(PortReader, EndsWithinOneRoundAlsoWhenItWaitsOneOut)
{
    openQuietly();
    line.failNext(TerminalCall::Read, EIO);
    line.reply("abc");
    world.advance(50ms);

    port->close();
    world.advance(100ms);

    EXPECT_EQ(world.time.backgroundTasks(), 0U);
    EXPECT_EQ(world.terminal.descriptorsInUse(), 0U);
    EXPECT_THAT(delegate->heard("data"), IsEmpty());
}

TEST_F(PortReader, KeepsAnOpenPortAlive)
{
    openQuietly();
    const std::weak_ptr<SerialPort> alive = port;

    port.reset();
    world.advance(10s);

    ASSERT_FALSE(alive.expired());
    EXPECT_TRUE(alive.lock()->isOpen());
    alive.lock()->close();
    world.advance(150ms);
    EXPECT_TRUE(alive.expired());
}

TEST_F(PortReader, OfAnEndedOpenLeavesTheNextOpensDescriptorAlone)
{
    openQuietly();
    const auto old = port->fileDescriptor();
    port->close();
    port->open();
    const auto current = port->fileDescriptor();
    world.terminal.forgetCalls();

    world.advance(1s);
    line.reply("abc");
    world.run();

    const auto calls = world.terminal.calls();
    EXPECT_TRUE(std::none_of(calls.begin(), calls.end(), [old](const auto& call) {
        return call.descriptor == old && call.call != TerminalCall::Release;
    }));
    EXPECT_NE(old, current);
    EXPECT_THAT(delegate->heard("data"), ElementsAre("data abc"));
}

TEST_F(PortReader, DeliversWhatCameDuringAnAlertAfterItOneByOneInOrder)
{
    openQuietly();
    world.alerts.whileUp([this] {
        line.reply("1");
        world.advance(1s);
        line.reply("2");
        world.advance(1s);
        EXPECT_THAT(delegate->heard(), IsEmpty());
    });

    world.alerts.runModal({"ERROR", {"OK"}, "text"});
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("data 1", "data 2"));
}

} // namespace

} // namespace vorrano::serial
