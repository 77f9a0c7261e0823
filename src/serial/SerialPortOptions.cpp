#include "serial/SerialPort.h"

#include <utility>

namespace vorrano::serial {

using Options = PortOptions::Values;

std::shared_ptr<const unsigned long> SerialPort::baudRate() const { return m_options.get(&Options::baudRate); }

void SerialPort::setBaudRate(std::shared_ptr<const unsigned long> baudRate)
{
    if (m_options.set(&Options::baudRate, std::move(baudRate))) {
        setPortOptions();
    }
}

std::uint64_t SerialPort::numberOfStopBits() const { return m_options.get(&Options::numberOfStopBits); }

void SerialPort::setNumberOfStopBits(std::uint64_t numberOfStopBits)
{
    if (m_options.set(&Options::numberOfStopBits, numberOfStopBits)) {
        setPortOptions();
    }
}

SerialParity SerialPort::parity() const { return m_options.get(&Options::parity); }

void SerialPort::setParity(SerialParity parity)
{
    const auto given = static_cast<std::uint64_t>(parity);
    // A value that is none of the three differs from every stored one: the options are applied in any case.
    const auto known = given <= SerialParityEven;
    if (m_options.set(&Options::parity, known ? parity : SerialParityNone) || !known) {
        setPortOptions();
    }
}

bool SerialPort::shouldEchoReceivedData() const { return m_options.get(&Options::shouldEchoReceivedData); }

void SerialPort::setShouldEchoReceivedData(bool echo)
{
    if (m_options.set(&Options::shouldEchoReceivedData, echo)) {
        setPortOptions();
    }
}

bool SerialPort::usesRTSCTSFlowControl() const { return m_options.get(&Options::usesRTSCTSFlowControl); }

void SerialPort::setUsesRTSCTSFlowControl(bool uses) { setFlowControl(&Options::usesRTSCTSFlowControl, uses); }

bool SerialPort::usesDTRDSRFlowControl() const { return m_options.get(&Options::usesDTRDSRFlowControl); }

void SerialPort::setUsesDTRDSRFlowControl(bool uses) { setFlowControl(&Options::usesDTRDSRFlowControl, uses); }

bool SerialPort::usesDCDOutputFlowControl() const { return m_options.get(&Options::usesDCDOutputFlowControl); }

void SerialPort::setUsesDCDOutputFlowControl(bool uses) { setFlowControl(&Options::usesDCDOutputFlowControl, uses); }

void SerialPort::setFlowControl(bool Options::*flag, bool uses)
{
    if (m_options.get(flag) == uses) {
        return;
    }
    const auto wasOpen = isOpen();
    close();
    m_options.set(flag, uses);
    setPortOptions();
    if (wasOpen) {
        open();
    }
}

} // namespace vorrano::serial
