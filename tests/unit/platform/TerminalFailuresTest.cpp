#include "unit/platform/FakeTerminalTest.h"

#include <array>
#include <cerrno>
#include <string>

namespace vorrano::support {
namespace {

struct OrderedFailure {
    const char* name;
    TerminalCall call;
    int error;
};

class OrderedFailures : public FakeTerminalTest, public ::testing::WithParamInterface<OrderedFailure> {
protected:
    SystemResult make(TerminalCall call, int descriptor)
    {
        TerminalAttributes attributes = line.attributes();
        std::array<std::byte, 1> byte{};
        switch (call) {
        case TerminalCall::Open:
            return terminal.open(kPath);
        case TerminalCall::SetStatusFlags:
            return terminal.setStatusFlags(descriptor, 0);
        case TerminalCall::Attributes:
            return terminal.attributes(descriptor, attributes);
        case TerminalCall::SetAttributes:
            return terminal.setAttributes(descriptor, ApplyAttributes::Now, attributes);
        case TerminalCall::SetSpeed:
            return terminal.setSpeed(attributes, 9600);
        case TerminalCall::ModemLines:
            return terminal.modemLines(descriptor);
        case TerminalCall::SetModemLines:
            return terminal.setModemLines(descriptor, 0);
        case TerminalCall::WaitReadable:
            return terminal.waitReadable(descriptor, 0us);
        case TerminalCall::Read:
            return terminal.read(descriptor, byte);
        case TerminalCall::Write:
            return terminal.write(descriptor, byte);
        default:
            return terminal.close(descriptor);
        }
    }
};

TEST_P(OrderedFailures, HitTheCallsThatTheyAreOrderedForAndNoOthers)
{
    const auto [name, call, error] = GetParam();
    const auto descriptor = call == TerminalCall::Open ? 0 : open();
    if (call == TerminalCall::Read) {
        line.reply("x");
    }
    terminal.failNext(call, error, 2);

    EXPECT_EQ(make(call, descriptor).error, error);
    EXPECT_EQ(make(call, descriptor).error, error);
    EXPECT_EQ(make(call, descriptor).error, 0);
}

INSTANTIATE_TEST_SUITE_P(OfEachCall, OrderedFailures,
                         ::testing::Values(OrderedFailure{"Open", TerminalCall::Open, EACCES},
                                           OrderedFailure{"SetStatusFlags", TerminalCall::SetStatusFlags, EINVAL},
                                           OrderedFailure{"Attributes", TerminalCall::Attributes, ENOTTY},
                                           OrderedFailure{"SetAttributes", TerminalCall::SetAttributes, EINTR},
                                           OrderedFailure{"SetSpeed", TerminalCall::SetSpeed, EINVAL},
                                           OrderedFailure{"ModemLines", TerminalCall::ModemLines, EIO},
                                           OrderedFailure{"SetModemLines", TerminalCall::SetModemLines, EIO},
                                           OrderedFailure{"WaitReadable", TerminalCall::WaitReadable, EINTR},
                                           OrderedFailure{"Read", TerminalCall::Read, EINTR},
                                           OrderedFailure{"Write", TerminalCall::Write, EINTR},
                                           OrderedFailure{"Close", TerminalCall::Close, EINTR}),
                         [](const auto& given) { return std::string(given.param.name); });

TEST_F(FakeTerminalTest, KeepsALineOpenWhoseCloseFails)
{
    const auto descriptor = open();
    line.failNext(TerminalCall::Close, EIO);

    EXPECT_EQ(terminal.close(descriptor).error, EIO);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(write(descriptor, "8").value, 1);
    EXPECT_FALSE(terminal.close(descriptor).failed());
}

TEST_F(FakeTerminalTest, FailsInTheOrderInWhichFailuresWereOrdered)
{
    const auto descriptor = open();
    line.failNext(TerminalCall::Write, EINTR);
    line.failNext(TerminalCall::Write, EIO);

    EXPECT_EQ(write(descriptor, "8").error, EINTR);
    EXPECT_EQ(write(descriptor, "8").error, EIO);
    EXPECT_EQ(write(descriptor, "8").error, 0);
    EXPECT_EQ(line.written(), "8");
}

} // namespace
} // namespace vorrano::support
