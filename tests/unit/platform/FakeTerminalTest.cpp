#include "unit/platform/FakeTerminalTest.h"

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>

namespace vorrano::support {
namespace {

using ::testing::ElementsAre;

TEST_F(FakeTerminalTest, OpensForOneOpenerAtATime)
{
    const auto first = terminal.open(kPath);
    const auto second = terminal.open(kPath);

    EXPECT_EQ(first.value, 3);
    EXPECT_EQ(second.error, EBUSY);
    EXPECT_TRUE(line.isOpen());
}

TEST_F(FakeTerminalTest, RefusesAPathThatNoDeviceHasAndALineThatAnotherHolds)
{
    EXPECT_EQ(terminal.open("/dev/cu.usbserial-C3D4").error, ENOENT);

    line.setHeldByAnother(true);
    EXPECT_EQ(terminal.open(kPath).error, EBUSY);
    line.setHeldByAnother(false);
    EXPECT_FALSE(terminal.open(kPath).failed());
}

TEST_F(FakeTerminalTest, GivesANumberOutAgainOnlyAfterItsRelease)
{
    const auto first = open();
    terminal.close(first);
    const auto second = open();
    EXPECT_NE(second, first);

    terminal.release(first);
    terminal.close(second);
    terminal.release(second);

    EXPECT_EQ(open(), first);
    EXPECT_EQ(terminal.descriptorsInUse(), 1U);
}

TEST_F(FakeTerminalTest, LeavesADeadLineUnderAClosedNumber)
{
    const auto old = open();
    terminal.close(old);
    const auto current = open();
    line.reply("for the new one");
    TerminalAttributes attributes;
    Nanoseconds end{};

    EXPECT_EQ(waitInBackground(old, end), 1);
    EXPECT_EQ(read(old), "");
    EXPECT_EQ(write(old, "to nobody").value, 9);
    EXPECT_EQ(terminal.attributes(old, attributes).error, ENOTTY);
    EXPECT_EQ(terminal.modemLines(old).error, ENOTTY);
    EXPECT_EQ(terminal.setModemLines(old, 0).error, ENOTTY);
    EXPECT_EQ(terminal.close(old).error, EBADF);
    EXPECT_EQ(line.written(), "");
    EXPECT_EQ(read(current), "for the new one");
    EXPECT_EQ(terminal.openDescriptors(), 1U);
}

TEST_F(FakeTerminalTest, KnowsNoNumberThatWasNotGivenOut)
{
    TerminalAttributes attributes;

    EXPECT_EQ(terminal.setStatusFlags(7, 0).error, EBADF);
    EXPECT_EQ(terminal.attributes(7, attributes).error, EBADF);
    EXPECT_EQ(terminal.setAttributes(7, ApplyAttributes::Now, attributes).error, EBADF);
    EXPECT_EQ(terminal.modemLines(7).error, EBADF);
    EXPECT_EQ(write(7, "x").error, EBADF);
    EXPECT_EQ(terminal.close(7).error, EBADF);
}

TEST_F(FakeTerminalTest, GivesEachReplyAsOneReadUnlessItIsLongerThanTheBuffer)
{
    const auto descriptor = open();
    line.reply("OK\n\r");
    line.reply("more");

    EXPECT_EQ(read(descriptor), "OK\n\r");
    EXPECT_EQ(read(descriptor, 3), "mor");
    EXPECT_EQ(line.unread(), 1U);
    EXPECT_EQ(read(descriptor, 3), "e");
}

TEST_F(FakeTerminalTest, LosesWhatComesWhileNobodyHasTheLineOpen)
{
    line.reply("before");
    const auto first = open();
    line.reply("unread");
    terminal.close(first);
    line.reply("between");

    const auto second = open();

    EXPECT_EQ(line.unread(), 0U);
    terminal.setStatusFlags(second, O_NONBLOCK);
    EXPECT_EQ(read(second), "");
}

TEST_F(FakeTerminalTest, AWaitEndsWithTheBytesOrWithItsLimit)
{
    const auto descriptor = open();
    Nanoseconds end{};
    line.replyAfter(30ms, "x");

    EXPECT_EQ(waitInBackground(descriptor, end), 1);
    EXPECT_EQ(end, 30ms);

    read(descriptor);
    EXPECT_EQ(waitInBackground(descriptor, end), 0);
    EXPECT_EQ(end, 200ms);
}

TEST_F(FakeTerminalTest, AReadBlocksOnlyOnceTheStatusFlagsAreCleared)
{
    const auto descriptor = open();
    std::array<std::byte, 4> buffer{};
    EXPECT_EQ(terminal.read(descriptor, buffer).error, EAGAIN);
    terminal.setStatusFlags(descriptor, 0);
    line.replyAfter(50ms, "x");
    std::string got;

    world.backgroundQueue.async([&] { got = read(descriptor); });
    world.advance(49ms);
    EXPECT_EQ(got, "");
    world.advance(1ms);

    EXPECT_EQ(got, "x");
}

TEST_F(FakeTerminalTest, RemembersEachWriteAndItsTimeAndLetsTheDeviceAnswer)
{
    const auto descriptor = open();
    line.onWrite([&](const std::string& bytes) { line.reply("got " + bytes); });

    write(descriptor, "8");
    world.advance(10ms);
    write(descriptor, "home");

    EXPECT_EQ(line.written(), "8home");
    ASSERT_EQ(line.writes().size(), 2U);
    EXPECT_EQ(line.writes()[1].bytes, "home");
    EXPECT_EQ(line.writes()[1].at, 10ms);
    EXPECT_EQ(read(descriptor), "got 8");
    EXPECT_EQ(read(descriptor), "got home");
}

TEST_F(FakeTerminalTest, TakesWritesInPiecesAndInNone)
{
    const auto descriptor = open();
    line.limitNextWrites({0, 1});
    line.writeAtMost(2);

    EXPECT_EQ(write(descriptor, "abcdef").value, 0);
    EXPECT_EQ(write(descriptor, "abcdef").value, 1);
    EXPECT_EQ(write(descriptor, "bcdef").value, 2);
    EXPECT_EQ(write(descriptor, "f").value, 1);
    EXPECT_EQ(line.written(), "abcf");
}

TEST_F(FakeTerminalTest, StallsAWriteUntilItMayGoOn)
{
    const auto descriptor = open();
    line.stall(TerminalCall::Write);
    world.backgroundQueue.async([&] { write(descriptor, "8"); });
    world.advance(1s);
    EXPECT_EQ(line.stalled(TerminalCall::Write), 1);
    EXPECT_EQ(line.written(), "");

    line.goOn(TerminalCall::Write);
    world.run();

    EXPECT_EQ(line.stalled(TerminalCall::Write), 0);
    EXPECT_EQ(line.written(), "8");
}

TEST_F(FakeTerminalTest, EndsAStalledWriteWhenThePlugIsPulled)
{
    const auto descriptor = open();
    line.stall(TerminalCall::Write);
    SystemResult result;
    world.backgroundQueue.async([&] { result = write(descriptor, "8"); });
    world.run();

    line.unplug();
    world.run();

    EXPECT_EQ(result.error, EIO);
}

TEST_F(FakeTerminalTest, LetsACallOfTheMainThreadTakeItsTimeWhileTheOthersGoOn)
{
    const auto descriptor = open();
    line.delayNext(TerminalCall::SetAttributes, 40ms);
    std::vector<Nanoseconds> ticks;
    for (const auto due : {15ms, 30ms}) {
        world.later(due, [&] { ticks.push_back(world.now()); });
    }

    terminal.setAttributes(descriptor, ApplyAttributes::AfterDrain, line.attributes());

    EXPECT_EQ(world.now(), 40ms);
    EXPECT_THAT(ticks, ElementsAre(15ms, 30ms));
}

TEST_F(FakeTerminalTest, LetsTheMainThreadWaitForAStallUntilTheTestEndsIt)
{
    const auto descriptor = open();
    line.stall(TerminalCall::Write);
    world.later(300ms, [&] { line.goOn(TerminalCall::Write); });

    write(descriptor, "8");

    EXPECT_EQ(world.now(), 300ms);
    EXPECT_EQ(line.written(), "8");
}

TEST_F(FakeTerminalTest, AWaitTakesItsTimeWhateverComes)
{
    open();
    line.reply("x");
    Nanoseconds end{};
    world.backgroundQueue.async([&] {
        terminal.wait(100ms, 0ms);
        end = world.now();
    });

    world.advance(1s);

    EXPECT_EQ(end, 100ms);
}

TEST_F(FakeTerminalTest, AReaderThatAsksADeadLineForEverLetsTheOthersRun)
{
    const auto descriptor = open();
    line.unplug();
    bool told = false;
    world.backgroundQueue.async([&] {
        while (!told) {
            terminal.waitReadable(descriptor, 100ms);
        }
    });
    world.mainQueue.async([&] { told = true; });

    world.run();

    EXPECT_EQ(world.time.backgroundTasks(), 0U);
}

TEST_F(FakeTerminalTest, KeepsTheSettingsOfTheLineAndEachChange)
{
    const auto descriptor = open();
    TerminalAttributes attributes;
    ASSERT_FALSE(terminal.attributes(descriptor, attributes).failed());
    EXPECT_NE(attributes.record.c_lflag & ICANON, 0U);

    ::cfmakeraw(&attributes.record);
    terminal.setAttributes(descriptor, ApplyAttributes::Now, attributes);

    EXPECT_EQ(line.attributes().record.c_lflag & ICANON, 0U);
    ASSERT_EQ(line.settings().size(), 1U);
    EXPECT_EQ(line.settings()[0].when, ApplyAttributes::Now);
}

TEST_F(FakeTerminalTest, WritesStandardRatesAsSuchAndOthersAsCustomOnes)
{
    TerminalAttributes attributes;

    terminal.setSpeed(attributes, 9600);
    EXPECT_EQ(::cfgetospeed(&attributes.record), speed_t{B9600});
    EXPECT_EQ(attributes.customSpeed, std::nullopt);
    terminal.setSpeed(attributes, 12345);
    EXPECT_EQ(attributes.customSpeed, 12345U);
    terminal.setSpeed(attributes, 19200);
    EXPECT_EQ(attributes.customSpeed, std::nullopt);

    EXPECT_EQ(terminal.setSpeed(attributes, std::uint64_t{1} << 32U).error, EINVAL);
}

TEST_F(FakeTerminalTest, ShowsInputLinesAndRemembersOutputLines)
{
    const auto descriptor = open();
    EXPECT_EQ(terminal.modemLines(descriptor).value, TIOCM_DTR | TIOCM_RTS);

    line.setModemLines(TIOCM_CTS | TIOCM_CAR);
    terminal.setModemLines(descriptor, TIOCM_RTS | TIOCM_CTS);

    EXPECT_EQ(terminal.modemLines(descriptor).value, TIOCM_CTS | TIOCM_CAR | TIOCM_RTS);
    EXPECT_EQ(line.outputLines(), TIOCM_RTS);
    EXPECT_THAT(line.modemLineWrites(), ElementsAre(TIOCM_RTS | TIOCM_CTS));

    terminal.close(descriptor);

    EXPECT_EQ(line.outputLines(), 0);
}

TEST_F(FakeTerminalTest, AnswersAfterAnUnplugAsLinuxDoes)
{
    const auto descriptor = open();
    line.reply("lost");
    TerminalAttributes attributes;
    Nanoseconds end{};

    world.unplug(line);

    EXPECT_EQ(waitInBackground(descriptor, end), 1);
    EXPECT_EQ(read(descriptor), "");
    EXPECT_EQ(write(descriptor, "8").error, EIO);
    EXPECT_EQ(terminal.attributes(descriptor, attributes).error, EIO);
    EXPECT_EQ(terminal.setAttributes(descriptor, ApplyAttributes::Now, attributes).error, EIO);
    EXPECT_EQ(terminal.modemLines(descriptor).error, ENXIO);
    EXPECT_EQ(terminal.setModemLines(descriptor, 0).error, EIO);
    EXPECT_FALSE(terminal.close(descriptor).failed());
    EXPECT_EQ(terminal.open(kPath).error, ENOENT);
}

TEST_F(FakeTerminalTest, OpensTheLineThatCameBackAndNotTheOneThatWent)
{
    const auto old = open();
    world.unplug(line);

    auto& again = world.plugVorrano();
    const auto descriptor = open();
    write(descriptor, "8");

    EXPECT_NE(descriptor, old);
    EXPECT_EQ(again.written(), "8");
    EXPECT_EQ(line.written(), "");
    EXPECT_EQ(&terminal.line(kPath), &again);
}

TEST_F(FakeTerminalTest, RecordsEveryCallInOrder)
{
    const auto descriptor = open();
    terminal.setStatusFlags(descriptor, 0);
    terminal.setAttributes(descriptor, ApplyAttributes::AfterDrain, line.attributes());
    world.backgroundQueue.async([&] { write(descriptor, "home"); });
    world.run();
    terminal.close(descriptor);
    terminal.release(descriptor);

    EXPECT_THAT(terminal.callTexts(),
                ElementsAre("open", "setStatusFlags 0", "setAttributes afterDrain", "write 4", "close", "release"));
    EXPECT_THAT(terminal.callTexts({TerminalCall::Open, TerminalCall::Close}), ElementsAre("open", "close"));
    EXPECT_EQ(terminal.calls()[0].descriptor, descriptor);
    EXPECT_EQ(terminal.calls()[3].path, kPath);
    EXPECT_FALSE(terminal.calls()[3].onMainThread);
}

} // namespace
} // namespace vorrano::support
