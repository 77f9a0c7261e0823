#include "serial/PortLine.h"
#include "serial/SerialPort.h"

#include <utility>

#include <sys/ioctl.h>

namespace vorrano::serial {

template <class Value>
Value SerialPort::option(Value PortOptions::*option) const
{
    const std::lock_guard lock(m_mutex);
    return m_options.*option;
}

// Whether it is another value than before.
template <class Value>
bool SerialPort::storeOption(Value PortOptions::*option, Value value)
{
    const std::lock_guard lock(m_mutex);
    std::swap(m_options.*option, value);
    return m_options.*option != value;
}

std::shared_ptr<const unsigned long> SerialPort::baudRate() const { return option(&PortOptions::baudRate); }

void SerialPort::setBaudRate(std::shared_ptr<const unsigned long> baudRate)
{
    if (storeOption(&PortOptions::baudRate, std::move(baudRate))) {
        setPortOptions();
    }
}

std::uint64_t SerialPort::numberOfStopBits() const { return option(&PortOptions::numberOfStopBits); }

void SerialPort::setNumberOfStopBits(std::uint64_t numberOfStopBits)
{
    if (storeOption(&PortOptions::numberOfStopBits, numberOfStopBits)) {
        setPortOptions();
    }
}

SerialParity SerialPort::parity() const { return option(&PortOptions::parity); }

void SerialPort::setParity(SerialParity parity)
{
    const auto given = static_cast<std::uint64_t>(parity);
    // A value that is none of the three differs from every stored one: the options are applied in any case.
    const auto known = given <= SerialParityEven;
    if (storeOption(&PortOptions::parity, known ? parity : SerialParityNone) || !known) {
        setPortOptions();
    }
}

bool SerialPort::shouldEchoReceivedData() const { return option(&PortOptions::shouldEchoReceivedData); }

void SerialPort::setShouldEchoReceivedData(bool echo)
{
    if (storeOption(&PortOptions::shouldEchoReceivedData, echo)) {
        setPortOptions();
    }
}

bool SerialPort::usesRTSCTSFlowControl() const { return option(&PortOptions::usesRTSCTSFlowControl); }

void SerialPort::setUsesRTSCTSFlowControl(bool uses) { setFlowControl(&PortOptions::usesRTSCTSFlowControl, uses); }

bool SerialPort::usesDTRDSRFlowControl() const { return option(&PortOptions::usesDTRDSRFlowControl); }

void SerialPort::setUsesDTRDSRFlowControl(bool uses) { setFlowControl(&PortOptions::usesDTRDSRFlowControl, uses); }

bool SerialPort::usesDCDOutputFlowControl() const { return option(&PortOptions::usesDCDOutputFlowControl); }

void SerialPort::setUsesDCDOutputFlowControl(bool uses)
{
    setFlowControl(&PortOptions::usesDCDOutputFlowControl, uses);
}

void SerialPort::setFlowControl(bool PortOptions::*flag, bool uses)
{
    if (option(flag) == uses) {
        return;
    }
    const auto wasOpen = isOpen();
    close();
    storeOption(flag, uses);
    setPortOptions();
    if (wasOpen) {
        open();
    }
}

void SerialPort::setRTS(bool on) { driveLine(m_rts, on, TIOCM_RTS); }

void SerialPort::setDTR(bool on) { driveLine(m_dtr, on, TIOCM_DTR); }

void SerialPort::driveLine(std::atomic<bool>& stored, bool on, int bit)
{
    if (stored.exchange(on) == on) {
        return;
    }
    const auto line = currentLine();
    if (!line) {
        return;
    }
    const auto current = m_terminal.modemLines(line->descriptor());
    const auto others = (current.failed() ? 0 : current.value) & ~bit;
    const auto driven = m_terminal.setModemLines(line->descriptor(), on ? others | bit : others);
    if (driven.failed()) {
        notifyDelegateOfPosixError(driven.error);
    }
}

} // namespace vorrano::serial
