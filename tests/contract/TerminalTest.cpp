#include "contract/Terminals.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <gtest/gtest.h>
#include <termios.h>

// What every terminal promises, the program's and the one that tests use in its place.
namespace vorrano::contract {
namespace {

using namespace std::chrono_literals;
using platform::ApplyAttributes;
using platform::SystemResult;
using platform::TerminalAttributes;

constexpr int kUnknownDescriptor = 999;

template <class Line>
class ATerminal : public testing::Test {
protected:
    [[nodiscard]] platform::Terminal& terminal() { return line.terminal(); }

    // Without line discipline, so that the bytes are the device's.
    int openRaw()
    {
        const auto opened = terminal().open(kPath);
        EXPECT_FALSE(opened.failed());
        TerminalAttributes raw;
        EXPECT_FALSE(terminal().attributes(opened.value, raw).failed());
        ::cfmakeraw(&raw.record);
        EXPECT_FALSE(terminal().setAttributes(opened.value, ApplyAttributes::Now, raw).failed());
        return opened.value;
    }

    [[nodiscard]] std::string read(int descriptor, std::size_t atMost = 64)
    {
        std::array<std::byte, 64> buffer{};
        const auto count = terminal().read(descriptor, std::span(buffer).first(atMost));
        EXPECT_FALSE(count.failed()) << count.error;
        return {reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(count.value)};
    }

    [[nodiscard]] SystemResult write(int descriptor, const std::string& bytes)
    {
        return terminal().write(descriptor, std::as_bytes(std::span(bytes)));
    }

    // Reading fails with that errno.
    [[nodiscard]] int errorOfRead(int descriptor)
    {
        std::array<std::byte, 1> buffer{};
        return terminal().read(descriptor, buffer).error;
    }

    // Sets a rate, and gives the settings that the line has then.
    [[nodiscard]] TerminalAttributes withRate(int descriptor, std::uint64_t baud)
    {
        TerminalAttributes attributes;
        EXPECT_FALSE(terminal().attributes(descriptor, attributes).failed());
        EXPECT_FALSE(terminal().setSpeed(attributes, baud).failed());
        EXPECT_FALSE(terminal().setAttributes(descriptor, ApplyAttributes::AfterDrain, attributes).failed());
        TerminalAttributes found;
        EXPECT_FALSE(terminal().attributes(descriptor, found).failed());
        return found;
    }

    Line line;
};

using Lines = testing::Types<RealLine, FakeLineOfWorld>;
TYPED_TEST_SUITE(ATerminal, Lines);

TYPED_TEST(ATerminal, GivesAnOpenLineANumberAboveZero) { EXPECT_GT(this->terminal().open(kPath).value, 0); }

TYPED_TEST(ATerminal, FindsNothingAtThePathOfNoDevice)
{
    EXPECT_EQ(this->terminal().open("/dev/cu.usbserial-NONE").error, ENOENT);
}

TYPED_TEST(ATerminal, OpensALineForOneAlone)
{
    const auto first = this->terminal().open(kPath);
    EXPECT_EQ(this->terminal().open(kPath).error, EBUSY);

    ASSERT_FALSE(this->terminal().close(first.value).failed());
    EXPECT_FALSE(this->terminal().open(kPath).failed());
}

TYPED_TEST(ATerminal, ReadsNothingFromAQuietLineThatDoesNotBlock)
{
    const auto descriptor = this->openRaw();
    EXPECT_EQ(this->errorOfRead(descriptor), EAGAIN);
    EXPECT_EQ(this->terminal().waitReadable(descriptor, 1ms).value, 0);
}

TYPED_TEST(ATerminal, ReadsWhatTheDeviceSaysPieceByPiece)
{
    const auto descriptor = this->openRaw();
    this->line.reply("abcde");
    EXPECT_EQ(this->terminal().waitReadable(descriptor, 5s).value, 1);

    EXPECT_EQ(this->read(descriptor, 2), "ab");
    EXPECT_EQ(this->read(descriptor), "cde");
}

TYPED_TEST(ATerminal, BringsTheDeviceWhatIsWritten)
{
    const auto descriptor = this->openRaw();
    EXPECT_EQ(this->write(descriptor, "7b").value, 2);
    EXPECT_EQ(this->line.written(2), "7b");
}

TYPED_TEST(ATerminal, KeepsAStandardRateInTheRecord)
{
    const auto found = this->withRate(this->openRaw(), 115200);
    EXPECT_EQ(::cfgetospeed(&found.record), static_cast<speed_t>(B115200));
    EXPECT_FALSE(found.customSpeed);
}

TYPED_TEST(ATerminal, KeepsAnyOtherRateBesideIt)
{
    const auto descriptor = this->openRaw();
    EXPECT_EQ(this->withRate(descriptor, 12345).customSpeed, 12345U);
    EXPECT_FALSE(this->withRate(descriptor, 9600).customSpeed);
}

TYPED_TEST(ATerminal, KnowsNoRateBeyond32Bits)
{
    TerminalAttributes attributes;
    EXPECT_EQ(this->terminal().setSpeed(attributes, std::uint64_t{1} << 32).error, EINVAL);
}

TYPED_TEST(ATerminal, IsReadableWithoutBytesOnceItsCableIsPulled)
{
    const auto descriptor = this->openRaw();
    this->line.unplug();
    EXPECT_EQ(this->terminal().waitReadable(descriptor, 5s).value, 1);
    EXPECT_EQ(this->read(descriptor), "");
}

TYPED_TEST(ATerminal, RefusesTheRestOnceItsCableIsPulled)
{
    const auto descriptor = this->openRaw();
    this->line.unplug();
    TerminalAttributes attributes;
    EXPECT_EQ(this->write(descriptor, "3").error, EIO);
    EXPECT_EQ(this->terminal().attributes(descriptor, attributes).error, EIO);
    EXPECT_EQ(this->terminal().setAttributes(descriptor, ApplyAttributes::Now, attributes).error, EIO);
    EXPECT_EQ(this->terminal().setModemLines(descriptor, 0).error, EIO);
    EXPECT_EQ(this->terminal().modemLines(descriptor).error, ENXIO);
}

TYPED_TEST(ATerminal, ClosesALineWhoseCableWasPulled)
{
    const auto descriptor = this->openRaw();
    this->line.unplug();
    EXPECT_FALSE(this->terminal().close(descriptor).failed());
}

TYPED_TEST(ATerminal, IsALineWithoutDataBetweenItsCloseAndItsRelease)
{
    const auto descriptor = this->openRaw();
    this->line.reply("late");
    ASSERT_FALSE(this->terminal().close(descriptor).failed());

    EXPECT_EQ(this->terminal().waitReadable(descriptor, 5s).value, 1);
    EXPECT_EQ(this->read(descriptor), "");
    EXPECT_EQ(this->write(descriptor, "3").value, 1);
    TerminalAttributes attributes;
    EXPECT_EQ(this->terminal().attributes(descriptor, attributes).error, ENOTTY);
    EXPECT_EQ(this->terminal().modemLines(descriptor).error, ENOTTY);
    EXPECT_EQ(this->line.written(0), "");
}

TYPED_TEST(ATerminal, KeepsANumberUntilItsRelease)
{
    const auto first = this->terminal().open(kPath).value;
    ASSERT_FALSE(this->terminal().close(first).failed());
    const auto second = this->terminal().open(kPath).value;
    EXPECT_NE(second, first);

    this->terminal().release(first);
    ASSERT_FALSE(this->terminal().close(second).failed());
    EXPECT_EQ(this->terminal().open(kPath).value, first);
}

TYPED_TEST(ATerminal, KnowsNoNumberThatItDidNotGive)
{
    TerminalAttributes attributes;
    EXPECT_EQ(this->errorOfRead(kUnknownDescriptor), EBADF);
    EXPECT_EQ(this->write(kUnknownDescriptor, "3").error, EBADF);
    EXPECT_EQ(this->terminal().attributes(kUnknownDescriptor, attributes).error, EBADF);
    EXPECT_EQ(this->terminal().modemLines(kUnknownDescriptor).error, EBADF);
    EXPECT_EQ(this->terminal().waitReadable(kUnknownDescriptor, 0s).error, EBADF);
    EXPECT_EQ(this->terminal().setStatusFlags(kUnknownDescriptor, 0).error, EBADF);
    EXPECT_EQ(this->terminal().close(kUnknownDescriptor).error, EBADF);
}

} // namespace
} // namespace vorrano::contract
