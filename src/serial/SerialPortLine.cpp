#include "platform/MainQueue.h"
#include "platform/System.h"
#include "platform/Timer.h"
#include "serial/InAnyCase.h"
#include "serial/PortLine.h"
#include "serial/SerialPort.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

#include <sys/ioctl.h>

namespace vorrano::serial {

using platform::ApplyAttributes;
using platform::TerminalAttributes;

int SerialPort::fileDescriptor() const
{
    const auto line = currentLine();
    return line ? line->descriptor() : 0;
}

SerialPort::LinePointer SerialPort::currentLine() const
{
    const std::lock_guard lock(m_mutex);
    return m_line;
}

void SerialPort::open()
{
    const auto line = openLine();
    if (!line) {
        return;
    }
    const auto setUpLine = [&] {
        m_observers.tell("fileDescriptor");
        setUp(*line);
    };
    inAnyCase(setUpLine, [&] {
        post(SerialPortCallback::WasOpened,
             [this](SerialPortDelegate& delegate) { delegate.serialPortWasOpened(*this); });
        startReading(line);
        startPolling(line);
    });
}

// The line of a new open; null when there is one already, and on failure.
SerialPort::LinePointer SerialPort::openLine()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_line || m_isOpening || m_isClosing) {
            return nullptr;
        }
        m_isOpening = true;
    }
    const auto opened = m_terminal.open(m_path);
    const auto failed = opened.failed() || opened.value <= 0;
    if (!failed) {
        m_terminal.setStatusFlags(opened.value, 0);
    }
    LinePointer line;
    {
        const std::lock_guard lock(m_mutex);
        m_isOpening = false;
        if (!failed) {
            m_line = line = std::make_shared<PortLine>(m_terminal, opened.value, ++m_opens);
        }
    }
    if (failed) {
        notifyDelegateOfPosixError(opened.error);
    }
    return line;
}

void SerialPort::setUp(const PortLine& line)
{
    keepOriginalAttributes(line);
    applyOptions(line);

    const auto lines = m_terminal.modemLines(line.descriptor());
    if (lines.failed()) {
        notifyDelegateOfPosixError(lines.error);
    }
    const auto bits = lines.failed() ? 0 : lines.value;
    // A setter drives its line only when its value changes: the values are first what the hardware has, then what they
    // shall be.
    const bool rts = m_rts;
    const bool dtr = m_dtr;
    setRTS((bits & TIOCM_RTS) != 0);
    setDTR((bits & TIOCM_DTR) != 0);
    setRTS(rts);
    setDTR(dtr);
}

void SerialPort::setPortOptions()
{
    if (const auto line = currentLine()) {
        applyOptions(*line);
    }
}

void SerialPort::applyOptions(const PortLine& line)
{
    const auto options = [this] {
        const std::lock_guard lock(m_mutex);
        return m_options;
    }();
    TerminalAttributes attributes;
    m_terminal.attributes(line.descriptor(), attributes);
    writeOptions(options, attributes.record);
    m_terminal.setSpeed(attributes, options.baudRate ? *options.baudRate : 0);
    if (m_terminal.setAttributes(line.descriptor(), ApplyAttributes::Now, attributes).failed()) {
        // What the call returns on failure, not its errno.
        m_systemLog.write("Unable to set options on " + description() + ": -1");
    }
}

bool SerialPort::close() { return closeOpen(std::nullopt); }

// Closes the open of that number, or whichever there is.
bool SerialPort::closeOpen(std::optional<std::uint64_t> number)
{
    const auto line = beginClose(number);
    return !line || endClose(line);
}

// The line to close, for this caller alone; null when there is none or somebody else is closing it.
SerialPort::LinePointer SerialPort::beginClose(std::optional<std::uint64_t> number)
{
    const std::lock_guard lock(m_mutex);
    if (!m_line || m_isClosing || (number && *number != m_opens)) {
        return nullptr;
    }
    m_isClosing = true;
    return m_line;
}

bool SerialPort::endClose(const LinePointer& line)
{
    setPinPollTimer(nullptr);
    restoreAttributes(*line);
    {
        const std::lock_guard lock(m_mutex);
        m_line = nullptr;
    }
    bool closed = false;
    inAnyCase([&] { m_observers.tell("fileDescriptor"); }, [&] { closed = closeDescriptor(line); });
    return closed;
}

bool SerialPort::closeDescriptor(const LinePointer& line)
{
    const auto closed = m_terminal.close(line->descriptor());
    {
        const std::lock_guard lock(m_mutex);
        m_isClosing = false;
        m_line = closed.failed() ? line : nullptr;
    }
    if (closed.failed()) {
        m_observers.tell("fileDescriptor");
        notifyDelegateOfPosixError(closed.error);
        return false;
    }
    line->setClosed();
    post(SerialPortCallback::WasClosed, [this](SerialPortDelegate& delegate) { delegate.serialPortWasClosed(*this); });
    return true;
}

void SerialPort::keepOriginalAttributes(const PortLine& line)
{
    auto attributes = originalAttributes();
    m_terminal.attributes(line.descriptor(), attributes);
    const std::lock_guard lock(m_mutex);
    m_originalPortAttributes = attributes;
}

TerminalAttributes SerialPort::originalAttributes() const
{
    const std::lock_guard lock(m_mutex);
    return m_originalPortAttributes;
}

void SerialPort::restoreAttributes(const PortLine& line) const
{
    TerminalAttributes attributes;
    m_terminal.attributes(line.descriptor(), attributes);
    // A line that is held off would never drain.
    clearFlowControl(attributes.record);
    m_terminal.setAttributes(line.descriptor(), ApplyAttributes::Now, attributes);
    m_terminal.setAttributes(line.descriptor(), ApplyAttributes::AfterDrain, originalAttributes());
}

bool SerialPort::sendData(const Bytes& data) { return write(data, &SerialPort::notifyDelegateOfPosixError); }

bool SerialPort::write(const Bytes& data, void (SerialPort::*tellOfError)(int))
{
    const auto line = currentLine();
    auto rest = std::as_bytes(std::span(data));
    while (line && !rest.empty()) {
        const auto written = m_terminal.write(line->descriptor(), rest);
        if (written.failed()) {
            (this->*tellOfError)(written.error);
            return false;
        }
        rest = rest.subspan(std::min(static_cast<std::size_t>(written.value), rest.size()));
        if (!rest.empty() && !isCurrent(line)) {
            return false;
        }
    }
    return line != nullptr;
}

void SerialPort::cleanup()
{
    m_systemLog.write("Cleanup is deprecated and was never intended to be called publicly. You should update your code "
                      "to avoid calling this method.");
    cleanupAfterSystemRemoval();
}

void SerialPort::cleanupAfterSystemRemoval() { cleanupAfterRemovalOfOpen(openNumber()); }

std::uint64_t SerialPort::openNumber() const
{
    const std::lock_guard lock(m_mutex);
    return m_opens;
}

// Poll and hot-plug may both tell of one removal. By the second time the delegate may have got the device back and
// opened it anew, which is none of that removal's.
void SerialPort::cleanupAfterRemovalOfOpen(std::uint64_t number)
{
    if (!implements(SerialPortCallback::WasRemovedFromSystem)) {
        closeOpen(number);
        return;
    }
    m_mainQueue.async([self = shared_from_this(), number] {
        const auto tellOfRemoval = [&] {
            if (self->openNumber() == number) {
                self->tell(SerialPortCallback::WasRemovedFromSystem,
                           [&](SerialPortDelegate& delegate) { delegate.serialPortWasRemovedFromSystem(*self); });
            }
        };
        inAnyCase(tellOfRemoval, [&] { self->closeOpen(number); });
    });
}

void SerialPort::setPinPollTimer(std::shared_ptr<platform::Timer> timer)
{
    // Whatever goes with the old timer goes after the lock.
    std::shared_ptr<platform::Timer> old;
    {
        const std::lock_guard lock(m_mutex);
        if (timer == m_pinPollTimer) {
            return;
        }
        old = std::exchange(m_pinPollTimer, std::move(timer));
    }
    if (old) {
        old->cancel();
    }
}

} // namespace vorrano::serial
