#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

struct FlowControl {
    const char* name;
    void (SerialPort::*set)(bool);
    bool (SerialPort::*get)() const;
    bool hasFlag;
};

class PortFlowControl : public SerialPortFixture, public testing::WithParamInterface<FlowControl> {
protected:
    void set(bool uses) { (port.get()->*GetParam().set)(uses); }
    [[nodiscard]] bool get() const { return (port.get()->*GetParam().get)(); }
};

INSTANTIATE_TEST_SUITE_P(Of, PortFlowControl,
                         testing::Values(FlowControl{"RtsCts", &SerialPort::setUsesRTSCTSFlowControl,
                                                     &SerialPort::usesRTSCTSFlowControl, true},
                                         FlowControl{"DtrDsr", &SerialPort::setUsesDTRDSRFlowControl,
                                                     &SerialPort::usesDTRDSRFlowControl, false},
                                         FlowControl{"Dcd", &SerialPort::setUsesDCDOutputFlowControl,
                                                     &SerialPort::usesDCDOutputFlowControl, false}),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(PortFlowControl, ChangedOnAnOpenPortClosesAndReopensIt)
{
    openQuietly();

    set(true);

    EXPECT_TRUE(get());
    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open, TerminalCall::Close}), ElementsAre("close", "open"));
    EXPECT_EQ((line.attributes().record.c_cflag & CRTSCTS) != 0, GetParam().hasFlag);
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("closed", "opened"));

    set(false);
    world.run();
    EXPECT_FALSE(get());
    EXPECT_EQ(line.attributes().record.c_cflag & CRTSCTS, 0U);
    EXPECT_THAT(delegate->heard(), ElementsAre("closed", "opened", "closed", "opened"));
}

TEST_P(PortFlowControl, ChangedOnAnOpenPortIsStoredBetweenTheCloseAndTheOpen)
{
    openQuietly();
    Lines seen;
    const auto observer = port->observe(
        "isOpen", [&] { seen.push_back(std::string(port->isOpen() ? "open" : "closed") + (get() ? " on" : " off")); });

    set(true);

    EXPECT_THAT(seen, ElementsAre("closed off", "open on"));
}

TEST_P(PortFlowControl, ChangedOnAClosedPortIsOnlyStored)
{
    set(true);
    world.run();

    EXPECT_TRUE(get());
    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(world.terminal.calls(), IsEmpty());
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_P(PortFlowControl, WhoseCloseFailsLeavesThePortOpenStoresTheFlagAndAppliesTheOptions)
{
    openQuietly();
    line.failNext(TerminalCall::Close, EIO);

    set(true);
    world.run();

    EXPECT_TRUE(get());
    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open, TerminalCall::Close, TerminalCall::SetSpeed}),
                ElementsAre("close", "setSpeed 19200"));
    EXPECT_EQ((line.attributes().record.c_cflag & CRTSCTS) != 0, GetParam().hasFlag);
    EXPECT_THAT(delegate->heard(), ElementsAre("error 5"));
}

TEST_P(PortFlowControl, WhoseReopenFailsLeavesThePortClosedWithTheFlagStored)
{
    openQuietly();
    line.failNext(TerminalCall::Open, EBUSY);

    set(true);
    world.run();

    EXPECT_TRUE(get());
    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("error 16", "closed"));
}

TEST_P(PortFlowControl, FlippedManyTimesOnAnOpenPortGivesNoError)
{
    openQuietly();

    for (int i = 0; i < 100; ++i) {
        set(i % 2 == 0);
        world.run();
        ASSERT_TRUE(port->isOpen());
    }

    EXPECT_THAT(delegate->heard("error"), IsEmpty());
    EXPECT_EQ(delegate->heard().size(), 200U);
}

} // namespace

} // namespace vorrano::serial
