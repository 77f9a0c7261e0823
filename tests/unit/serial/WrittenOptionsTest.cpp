#include "serial/PortOptions.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

namespace vorrano::serial {

namespace {

termios filledWith(int byte)
{
    termios settings;
    std::memset(&settings, byte, sizeof settings);
    return settings;
}

termios withOptions(const PortOptions::Values& options, termios settings)
{
    writeOptions(options, settings);
    return settings;
}

// From settings with every flag off, and from settings with every flag on.
class WrittenOptions : public testing::TestWithParam<int> {
protected:
    [[nodiscard]] termios written(const PortOptions::Values& options) const
    {
        return withOptions(options, filledWith(GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P(OverAnything, WrittenOptions, testing::Values(0x00, 0xff));

TEST_P(WrittenOptions, AreRawBytesOfEight)
{
    const auto settings = written({});

    EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(settings.c_lflag & (ICANON | ISIG | ECHONL | IEXTEN), 0U);
    EXPECT_EQ(settings.c_oflag & OPOST, 0U);
    EXPECT_EQ(settings.c_iflag & (IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON), 0U);
}

TEST_P(WrittenOptions, LetAReadReturnAfterOneByteWithAFifthOfASecondBetweenBytes)
{
    EXPECT_EQ(written({}).c_cc[VMIN], 1);
    EXPECT_EQ(written({}).c_cc[VTIME], 2);
}

TEST_P(WrittenOptions, AlwaysReadIgnoreTheCarrierAndHangUpOnClose)
{
    EXPECT_EQ(written({}).c_cflag & (CREAD | CLOCAL | HUPCL), static_cast<tcflag_t>(CREAD | CLOCAL | HUPCL));
}

TEST_P(WrittenOptions, SetEvenParity)
{
    EXPECT_EQ(written({.parity = SerialParityEven}).c_cflag & (PARENB | PARODD), static_cast<tcflag_t>(PARENB));
}

TEST_P(WrittenOptions, SetOddParity)
{
    EXPECT_EQ(written({.parity = SerialParityOdd}).c_cflag & (PARENB | PARODD), static_cast<tcflag_t>(PARENB | PARODD));
}

TEST(WrittenOptionsWithoutParity, LeaveItsKindAsItIs)
{
    EXPECT_EQ(withOptions({}, filledWith(0x00)).c_cflag & (PARENB | PARODD), 0U);
    EXPECT_EQ(withOptions({}, filledWith(0xff)).c_cflag & (PARENB | PARODD), static_cast<tcflag_t>(PARODD));
}

TEST_P(WrittenOptions, TakeFewerThanTwoStopBitsAsOneAndMoreAsTwo)
{
    EXPECT_EQ(written({.numberOfStopBits = 0}).c_cflag & CSTOPB, 0U);
    EXPECT_EQ(written({.numberOfStopBits = 1}).c_cflag & CSTOPB, 0U);
    EXPECT_NE(written({.numberOfStopBits = 2}).c_cflag & CSTOPB, 0U);
    EXPECT_NE(written({.numberOfStopBits = UINT64_MAX}).c_cflag & CSTOPB, 0U);
}

TEST_P(WrittenOptions, EchoOnlyWhenAskedTo)
{
    EXPECT_EQ(written({}).c_lflag & ECHO, 0U);
    EXPECT_NE(written({.shouldEchoReceivedData = true}).c_lflag & ECHO, 0U);
}

TEST_P(WrittenOptions, HaveFlowControlByRtsAndCtsOnlyWhenAskedTo)
{
    EXPECT_EQ(written({}).c_cflag & CRTSCTS, 0U);
    EXPECT_NE(written({.usesRTSCTSFlowControl = true}).c_cflag & CRTSCTS, 0U);
}

// Linux has no flags for it.
TEST_P(WrittenOptions, AreNoOthersWithFlowControlByDtrAndDsrOrByDcd)
{
    const auto plain = written({});
    const auto dtrDsr = written({.usesDTRDSRFlowControl = true});
    const auto dcd = written({.usesDCDOutputFlowControl = true});

    EXPECT_EQ(plain.c_cflag, dtrDsr.c_cflag);
    EXPECT_EQ(plain.c_cflag, dcd.c_cflag);
    EXPECT_EQ(plain.c_lflag, dtrDsr.c_lflag);
    EXPECT_EQ(plain.c_iflag, dcd.c_iflag);
}

TEST(ClearedFlowControl, TakesOutNothingElse)
{
    auto settings = filledWith(0xff);
    clearFlowControl(settings);

    EXPECT_EQ(settings.c_cflag, filledWith(0xff).c_cflag & ~static_cast<tcflag_t>(CRTSCTS));
    EXPECT_EQ(settings.c_lflag, filledWith(0xff).c_lflag);
}

} // namespace

} // namespace vorrano::serial
