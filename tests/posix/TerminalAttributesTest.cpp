#include "PtyTest.h"

#include "platform/posix/PosixTerminalKernel.h"
#include "platform/posix/PosixTerminalSpeeds.h"

#include <cerrno>
#include <cstring>
#include <limits>
#include <tuple>

namespace {

using namespace vorrano;
using platform::ApplyAttributes;
using platform::TerminalAttributes;
using posix_platform::KernelSettings;
using posix_platform::kernelSettings;
using posix_platform::readKernelSettings;
using posix_platform::standardSpeed;

class StandardSpeed : public testing::TestWithParam<std::pair<std::uint64_t, speed_t>> {};

TEST_P(StandardSpeed, HasAConstantOfItsOwn) { EXPECT_EQ(standardSpeed(GetParam().first), GetParam().second); }

INSTANTIATE_TEST_SUITE_P(
    AllRates, StandardSpeed,
    testing::Values(std::pair(0, B0), std::pair(50, B50), std::pair(75, B75), std::pair(110, B110),
                    std::pair(134, B134), std::pair(150, B150), std::pair(200, B200), std::pair(300, B300),
                    std::pair(600, B600), std::pair(1200, B1200), std::pair(1800, B1800), std::pair(2400, B2400),
                    std::pair(4800, B4800), std::pair(9600, B9600), std::pair(19200, B19200), std::pair(38400, B38400),
                    std::pair(57600, B57600), std::pair(115200, B115200), std::pair(230400, B230400),
                    std::pair(460800, B460800), std::pair(500000, B500000), std::pair(576000, B576000),
                    std::pair(921600, B921600), std::pair(1000000, B1000000), std::pair(1152000, B1152000),
                    std::pair(1500000, B1500000), std::pair(2000000, B2000000), std::pair(2500000, B2500000),
                    std::pair(3000000, B3000000), std::pair(3500000, B3500000), std::pair(4000000, B4000000)));

TEST(StandardSpeedTable, HasNoOtherRate)
{
    EXPECT_EQ(standardSpeed(1), std::nullopt);
    EXPECT_EQ(standardSpeed(9601), std::nullopt);
    EXPECT_EQ(standardSpeed(250000), std::nullopt);
    // The value of a constant is no rate.
    EXPECT_EQ(standardSpeed(B9600), std::nullopt);
    EXPECT_EQ(standardSpeed(std::numeric_limits<std::uint64_t>::max()), std::nullopt);
}

TEST(KernelRecord, HoldsAllFieldsAndTheCustomRate)
{
    TerminalAttributes attributes;
    attributes.customSpeed = 250000;
    attributes.record.c_iflag = IXON | ICRNL;
    attributes.record.c_oflag = OPOST;
    attributes.record.c_cflag = CS8 | CREAD | CLOCAL | HUPCL | B9600;
    attributes.record.c_lflag = ECHO | ISIG;
    attributes.record.c_line = 3;
    attributes.record.c_cc[VMIN] = 1;
    attributes.record.c_cc[VTIME] = 2;
    ::cfsetispeed(&attributes.record, B0);

    const KernelSettings settings = kernelSettings(attributes);

    EXPECT_EQ(settings.input, IXON | ICRNL);
    EXPECT_EQ(settings.output, OPOST);
    EXPECT_EQ(settings.control, CS8 | CREAD | CLOCAL | HUPCL | posix_platform::kCustomRate);
    EXPECT_EQ(settings.local, ECHO | ISIG);
    EXPECT_EQ(settings.discipline, 3);
    EXPECT_EQ(settings.characters[VMIN], 1);
    EXPECT_EQ(settings.characters[VTIME], 2);
    EXPECT_EQ(settings.outputSpeed, 250000U);
}

TEST(KernelRecord, HoldsACustomRateOfTheInputsOwn)
{
    TerminalAttributes attributes;
    attributes.customInputSpeed = 31250;
    attributes.record.c_cflag = CS8 | B9600 | B38400 << posix_platform::kInputRateShift;

    const KernelSettings settings = kernelSettings(attributes);

    EXPECT_EQ(settings.control, CS8 | B9600 | posix_platform::kCustomInputRate);
    EXPECT_EQ(settings.inputSpeed, 31250U);
}

class LineAttributes : public support::PtyTest {
protected:
    TerminalAttributes current()
    {
        TerminalAttributes attributes;
        EXPECT_EQ(terminal.attributes(line, attributes).error, 0);
        return attributes;
    }

    // What the kernel holds, looked at from the other side.
    KernelSettings held()
    {
        KernelSettings settings;
        EXPECT_EQ(readKernelSettings(pty.master(), settings), 0);
        return settings;
    }

    void set(std::uint64_t baud, ApplyAttributes when = ApplyAttributes::Now)
    {
        TerminalAttributes attributes = current();
        ASSERT_EQ(terminal.setSpeed(attributes, baud).error, 0);
        ASSERT_EQ(terminal.setAttributes(line, when, attributes).error, 0);
    }

    int line = opened();
};

TEST_F(LineAttributes, AreReadAsTheyAre)
{
    const TerminalAttributes attributes = current();

    EXPECT_EQ(::cfgetospeed(&attributes.record), B19200);
    EXPECT_EQ(attributes.customSpeed, std::nullopt);
    EXPECT_EQ(attributes.record.c_lflag & ICANON, 0U);
}

TEST_F(LineAttributes, AreRestoredByWhatWasReadBefore)
{
    const KernelSettings before = held();
    const TerminalAttributes original = current();
    TerminalAttributes changed = original;
    changed.record.c_cc[VMIN] = 7;
    changed.record.c_lflag |= ECHO;
    changed.record.c_iflag |= IXON;
    ASSERT_EQ(terminal.setSpeed(changed, 9600).error, 0);
    ASSERT_EQ(terminal.setAttributes(line, ApplyAttributes::Now, changed).error, 0);
    ASSERT_EQ(held().characters[VMIN], 7);
    ASSERT_EQ(held().outputSpeed, 9600U);

    EXPECT_EQ(terminal.setAttributes(line, ApplyAttributes::AfterDrain, original).error, 0);

    const KernelSettings after = held();
    EXPECT_EQ(
        std::tie(after.input, after.output, after.control, after.local, after.characters, after.outputSpeed),
        std::tie(before.input, before.output, before.control, before.local, before.characters, before.outputSpeed));
}

TEST_F(LineAttributes, TakeAStandardRate)
{
    set(9600);

    const TerminalAttributes attributes = current();
    EXPECT_EQ(held().outputSpeed, 9600U);
    EXPECT_EQ(::cfgetospeed(&attributes.record), B9600);
    EXPECT_EQ(attributes.customSpeed, std::nullopt);
}

TEST_F(LineAttributes, TakeAnyOtherRateAndReadItBack)
{
    for (const ApplyAttributes when : {ApplyAttributes::Now, ApplyAttributes::AfterDrain}) {
        for (const std::uint64_t baud : {std::uint64_t(250000), std::uint64_t(14400), std::uint64_t(31250)}) {
            set(baud, when);

            EXPECT_EQ(held().outputSpeed, baud);
            EXPECT_EQ(current().customSpeed, baud);
        }
    }
}

TEST_F(LineAttributes, RestoreACustomRateThatWasThereBefore)
{
    set(250000);
    const TerminalAttributes original = current();
    set(9600);
    ASSERT_EQ(held().outputSpeed, 9600U);

    EXPECT_EQ(terminal.setAttributes(line, ApplyAttributes::AfterDrain, original).error, 0);

    EXPECT_EQ(held().outputSpeed, 250000U);
}

TEST_F(LineAttributes, ReturnFromACustomRateToAStandardOne)
{
    set(250000);

    set(115200);

    EXPECT_EQ(held().outputSpeed, 115200U);
    EXPECT_EQ(current().customSpeed, std::nullopt);
}

TEST_F(LineAttributes, KeepTheirOtherSettingsAtACustomRate)
{
    TerminalAttributes attributes = current();
    attributes.record.c_cc[VTIME] = 2;
    attributes.record.c_cflag |= HUPCL;
    ASSERT_EQ(terminal.setSpeed(attributes, 250000).error, 0);

    ASSERT_EQ(terminal.setAttributes(line, ApplyAttributes::Now, attributes).error, 0);

    EXPECT_EQ(held().characters[VTIME], 2);
    EXPECT_NE(held().control & HUPCL, 0U);
}

// Rates of a line that another program has split: the output's and the input's.
struct SplitRates {
    const char* name;
    std::uint32_t control;
    std::uint32_t output;
    std::uint32_t input;
};

class LineWithSplitRates : public LineAttributes, public testing::WithParamInterface<SplitRates> {
protected:
    // Pairs of the output's rate and the input's.
    [[nodiscard]] std::pair<std::uint32_t, std::uint32_t> heldRates()
    {
        const auto settings = held();
        return {settings.outputSpeed, settings.inputSpeed};
    }

    // As the other program does it.
    void split()
    {
        auto settings = held();
        settings.control = (settings.control & ~static_cast<tcflag_t>(CBAUD | CIBAUD)) | GetParam().control;
        settings.outputSpeed = GetParam().output;
        settings.inputSpeed = GetParam().input;
        ASSERT_EQ(posix_platform::applyNow(pty.master(), settings), 0);
        ASSERT_EQ(heldRates(), std::pair(GetParam().output, GetParam().input));
    }
};

constexpr tcflag_t inputRate(tcflag_t rate) { return rate << posix_platform::kInputRateShift; }

INSTANTIATE_TEST_SUITE_P(
    Of, LineWithSplitRates,
    testing::Values(SplitRates{"StandardBoth", B9600 | inputRate(B38400), 9600, 38400},
                    SplitRates{"CustomInput", B9600 | inputRate(posix_platform::kCustomRate), 9600, 31250},
                    SplitRates{"CustomOutput", posix_platform::kCustomRate | inputRate(B38400), 250000, 38400},
                    SplitRates{"CustomBoth", posix_platform::kCustomRate | posix_platform::kCustomInputRate, 250000,
                               31250}),
    [](const auto& parameter) { return parameter.param.name; });

TEST_P(LineWithSplitRates, TakeAStandardRateInBothDirections)
{
    split();

    set(19200);

    EXPECT_EQ(heldRates(), std::pair(19200U, 19200U));
    EXPECT_EQ(current().customSpeed, std::nullopt);
    EXPECT_EQ(current().customInputSpeed, std::nullopt);
}

TEST_P(LineWithSplitRates, TakeAnyOtherRateInBothDirections)
{
    split();

    set(14400);

    EXPECT_EQ(heldRates(), std::pair(14400U, 14400U));
    EXPECT_EQ(current().customSpeed, 14400U);
    EXPECT_EQ(current().customInputSpeed, std::nullopt);
}

TEST_P(LineWithSplitRates, AreRestoredByWhatWasReadBefore)
{
    split();
    const auto control = held().control;
    const TerminalAttributes original = current();

    for (const ApplyAttributes when : {ApplyAttributes::Now, ApplyAttributes::AfterDrain}) {
        set(19200);
        ASSERT_EQ(terminal.setAttributes(line, when, original).error, 0);

        EXPECT_EQ(heldRates(), std::pair(GetParam().output, GetParam().input));
        EXPECT_EQ(held().control, control);
    }
}

TEST_F(LineAttributes, KnowNoRateBeyond32Bits)
{
    TerminalAttributes attributes = current();

    EXPECT_EQ(terminal.setSpeed(attributes, std::uint64_t(1) << 32U).error, EINVAL);

    EXPECT_EQ(attributes.customSpeed, std::nullopt);
    EXPECT_EQ(::cfgetospeed(&attributes.record), B19200);
}

} // namespace
