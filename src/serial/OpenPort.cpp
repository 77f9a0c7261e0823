#include "serial/OpenPort.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <span>

namespace vorrano::serial {

using namespace std::chrono_literals;
using platform::ApplyAttributes;
using platform::SystemResult;
using platform::TerminalAttributes;

namespace {

constexpr std::chrono::milliseconds kReaderRound = 100ms;
constexpr std::chrono::milliseconds kPollInterval = 10ms;
constexpr std::chrono::milliseconds kPollLeeway = 5ms;
constexpr std::size_t kLargestChunk = 1024;

} // namespace

OpenPort::OpenPort(platform::Terminal& terminal, int descriptor, std::uint64_t number)
    : m_terminal(terminal)
    , m_descriptor(descriptor)
    , m_number(number)
{}

OpenPort::~OpenPort()
{
    if (m_isClosed) {
        m_terminal.release(m_descriptor);
    }
}

void OpenPort::keepOriginalAttributes() { m_terminal.attributes(m_descriptor, m_originalAttributes); }

SystemResult OpenPort::apply(const PortOptions::Values& options) const
{
    TerminalAttributes attributes;
    m_terminal.attributes(m_descriptor, attributes);
    writeOptions(options, attributes.record);
    m_terminal.setSpeed(attributes, options.baudRate ? *options.baudRate : 0);
    return m_terminal.setAttributes(m_descriptor, ApplyAttributes::Now, attributes);
}

SystemResult OpenPort::drive(int bit, bool on) const
{
    const auto current = modemLines();
    const auto others = (current.failed() ? 0 : current.value) & ~bit;
    return m_terminal.setModemLines(m_descriptor, on ? others | bit : others);
}

WriteOutcome OpenPort::write(const Bytes& data) const
{
    auto rest = std::as_bytes(std::span(data));
    while (!rest.empty()) {
        const auto written = m_terminal.write(m_descriptor, rest);
        if (written.failed()) {
            return {.complete = false, .error = written.error};
        }
        rest = rest.subspan(std::min(static_cast<std::size_t>(written.value), rest.size()));
        if (!rest.empty() && m_isEnded) {
            return {.complete = false};
        }
    }
    return {.complete = true};
}

void OpenPort::readUntilEnded(const Events& events) const
{
    while (!m_isEnded) {
        const auto ready = m_terminal.waitReadable(m_descriptor, kReaderRound);
        if (m_isEnded) {
            return;
        }
        if (ready.failed()) {
            // There is no back-off: a failure that lasts is reported once per round.
            events.didFailToWait(ready.error);
        } else if (ready.value > 0) {
            readChunk(events);
        }
    }
}

void OpenPort::readChunk(const Events& events) const
{
    std::array<std::byte, kLargestChunk> buffer;
    const auto count = m_terminal.read(m_descriptor, buffer);
    if (count.failed() || count.value <= 0) {
        // A hung-up line is always readable and gives no bytes. Without this wait the reader would spin.
        m_terminal.wait(kReaderRound, 0ms);
        return;
    }
    events.didReceive(Bytes(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(count.value)));
}

void OpenPort::pollUntilStopped(const Events& events)
{
    while (isPolled()) {
        pollOnce(events);
        m_terminal.wait(kPollInterval, kPollLeeway);
    }
}

void OpenPort::pollOnce(const Events& events)
{
    const auto lines = modemLines();
    if (!isPolled()) {
        // The port was closed during the call: the call's result is the end of this open, not a fault.
        return;
    }
    if (!lines.failed()) {
        events.didReadLines(lines.value);
        return;
    }
    if (lines.error == ENXIO) {
        // One report of the removal is enough, however long it takes until the port is closed.
        stopPolling();
    }
    events.didFailToReadLines(lines.error);
}

void OpenPort::restoreAttributes() const
{
    TerminalAttributes attributes;
    m_terminal.attributes(m_descriptor, attributes);
    // A line that the other side holds off would never drain.
    clearFlowControl(attributes.record);
    m_terminal.setAttributes(m_descriptor, ApplyAttributes::Now, attributes);
    m_terminal.setAttributes(m_descriptor, ApplyAttributes::AfterDrain, m_originalAttributes);
}

SystemResult OpenPort::closeDescriptor()
{
    const auto closed = m_terminal.close(m_descriptor);
    m_isClosed = !closed.failed();
    return closed;
}

} // namespace vorrano::serial
