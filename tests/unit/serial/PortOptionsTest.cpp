#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

#include <sys/ioctl.h>

namespace vorrano::serial {

namespace {

class PortOptionSetters : public SerialPortFixture {
protected:
    [[nodiscard]] static std::shared_ptr<const unsigned long> rate(unsigned long baud)
    {
        return std::make_shared<const unsigned long>(baud);
    }
    [[nodiscard]] std::size_t timesApplied() const
    {
        return world.terminal.calls({TerminalCall::SetAttributes}).size();
    }
};

TEST_F(PortOptionSetters, TouchNoHardwareOnAClosedPort)
{
    port->setBaudRate(rate(9600));
    port->setNumberOfStopBits(2);
    port->setParity(SerialParityOdd);
    port->setShouldEchoReceivedData(true);
    port->setUsesRTSCTSFlowControl(true);
    port->setUsesDTRDSRFlowControl(true);
    port->setUsesDCDOutputFlowControl(true);
    port->setRTS(true);
    port->setDTR(true);
    port->setPortOptions();
    world.advance(1s);

    EXPECT_THAT(world.terminal.calls(), IsEmpty());
    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_EQ(*port->baudRate(), 9600U);
    EXPECT_EQ(port->numberOfStopBits(), 2U);
    EXPECT_EQ(port->parity(), SerialParityOdd);
    EXPECT_TRUE(port->shouldEchoReceivedData());
    EXPECT_TRUE(port->usesRTSCTSFlowControl());
    EXPECT_TRUE(port->usesDTRDSRFlowControl());
    EXPECT_TRUE(port->usesDCDOutputFlowControl());
    EXPECT_TRUE(port->RTS());
    EXPECT_TRUE(port->DTR());
}

TEST_F(PortOptionSetters, ApplyTheOptionsInOneGo)
{
    openQuietly();

    port->setBaudRate(rate(9600));

    EXPECT_THAT(world.terminal.callTexts(), ElementsAre("attributes", "setSpeed 9600", "setAttributes now"));
    EXPECT_EQ(::cfgetospeed(&line.attributes().record), static_cast<speed_t>(B9600));
    EXPECT_EQ(::cfgetispeed(&line.attributes().record), static_cast<speed_t>(B9600));
}

TEST_F(PortOptionSetters, ReapplyTheOptionsForAnEqualButDistinctBaudRate)
{
    const auto given = rate(9600);
    openQuietly();
    port->setBaudRate(given);
    port->setBaudRate(given);
    EXPECT_EQ(timesApplied(), 1U);

    port->setBaudRate(rate(9600));

    EXPECT_EQ(timesApplied(), 2U);
}

TEST_F(PortOptionSetters, PassAnyRateAsItIs)
{
    openQuietly();

    port->setBaudRate(rate(12345));
    EXPECT_EQ(line.attributes().customSpeed, 12345U);
    port->setBaudRate(nullptr);

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::SetSpeed}), ElementsAre("setSpeed 12345", "setSpeed 0"));
    EXPECT_EQ(line.attributes().customSpeed, std::nullopt);
}

TEST_F(PortOptionSetters, ApplyTheOthersWhenTheRateIsNone)
{
    openQuietly();

    port->setBaudRate(rate(~0UL));

    EXPECT_EQ(timesApplied(), 1U);
    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(PortOptionSetters, ApplyStopBitsParityAndEchoWhenTheyChange)
{
    openQuietly();

    port->setNumberOfStopBits(2);
    EXPECT_NE(line.attributes().record.c_cflag & CSTOPB, 0U);
    port->setParity(SerialParityEven);
    EXPECT_NE(line.attributes().record.c_cflag & PARENB, 0U);
    port->setShouldEchoReceivedData(true);
    EXPECT_NE(line.attributes().record.c_lflag & ECHO, 0U);

    EXPECT_EQ(timesApplied(), 3U);
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open, TerminalCall::Close}), IsEmpty());
}

TEST_F(PortOptionSetters, DoNothingForTheStoredValue)
{
    openQuietly();

    port->setBaudRate(port->baudRate());
    port->setNumberOfStopBits(1);
    port->setParity(SerialParityNone);
    port->setShouldEchoReceivedData(false);
    port->setUsesRTSCTSFlowControl(false);
    port->setUsesDTRDSRFlowControl(false);
    port->setUsesDCDOutputFlowControl(false);
    port->setRTS(false);
    port->setDTR(false);

    EXPECT_THAT(world.terminal.calls(), IsEmpty());
}

TEST_F(PortOptionSetters, StoreAParityOf5AsNone)
{
    port->setParity(SerialParityOdd);
    openQuietly();

    port->setParity(static_cast<SerialParity>(5));

    EXPECT_EQ(port->parity(), SerialParityNone);
    EXPECT_EQ(line.attributes().record.c_cflag & PARENB, 0U);
    EXPECT_EQ(timesApplied(), 1U);
}

// A parity of 3 is stored as 0. It counts as a change all the same, also where 0 is stored already.
TEST_F(PortOptionSetters, ReapplyTheOptionsForAParityOf3EvenWhenNoneIsStored)
{
    openQuietly();

    port->setParity(static_cast<SerialParity>(3));

    EXPECT_EQ(port->parity(), SerialParityNone);
    EXPECT_EQ(timesApplied(), 1U);
}

TEST_F(PortOptionSetters, LogAFailureToApplyWithTheNameAndMinusOneAndTellNobody)
{
    openQuietly();
    line.failNext(TerminalCall::SetAttributes, EINVAL);

    port->setNumberOfStopBits(2);

    EXPECT_THAT(world.log.lines(), ElementsAre("Unable to set options on ttyUSB0: -1"));
    world.run();
    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_TRUE(port->isOpen());
    EXPECT_EQ(port->numberOfStopBits(), 2U);
}

TEST_F(PortOptionSetters, ApplyWhatTheyCanWhenTheSettingsCannotBeReadOrTheRateNotSet)
{
    openQuietly();
    line.failNext(TerminalCall::Attributes, EIO);
    world.terminal.failNext(TerminalCall::SetSpeed, EINVAL);

    port->setNumberOfStopBits(2);

    EXPECT_NE(line.attributes().record.c_cflag & CSTOPB, 0U);
    EXPECT_THAT(world.log.lines(), IsEmpty());
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortOptionSetters, DriveOneOutputLineAndLeaveTheOthers)
{
    openQuietly();

    port->setRTS(true);
    EXPECT_EQ(line.outputLines(), TIOCM_RTS);
    port->setDTR(true);
    EXPECT_EQ(line.outputLines(), TIOCM_RTS | TIOCM_DTR);
    port->setRTS(false);
    EXPECT_EQ(line.outputLines(), TIOCM_DTR);
    port->setDTR(false);
    EXPECT_EQ(line.outputLines(), 0);

    EXPECT_THAT(world.terminal.callTexts(),
                ElementsAre("modemLines", "setModemLines 4", "modemLines", "setModemLines 6", "modemLines",
                            "setModemLines 2", "modemLines", "setModemLines 0"));
}

TEST_F(PortOptionSetters, PassTheInputLinesOnAsTheyRead)
{
    openQuietly();
    line.setModemLines(TIOCM_CTS);

    port->setRTS(true);

    EXPECT_THAT(line.modemLineWrites(), testing::Contains(TIOCM_RTS | TIOCM_CTS));
}

TEST_F(PortOptionSetters, DriveALineAlsoWhenTheLinesCannotBeRead)
{
    openQuietly();
    line.failNext(TerminalCall::ModemLines, EIO);

    port->setDTR(true);

    EXPECT_EQ(line.outputLines(), TIOCM_DTR);
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(PortOptionSetters, ReportALineThatCannotBeDrivenAndKeepTheValue)
{
    openQuietly();
    line.failNext(TerminalCall::SetModemLines, EIO, 2);

    port->setRTS(true);
    port->setDTR(true);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 5", "error 5"));
    EXPECT_TRUE(port->RTS());
    EXPECT_TRUE(port->DTR());
    EXPECT_EQ(line.outputLines(), 0);
}

} // namespace

} // namespace vorrano::serial
