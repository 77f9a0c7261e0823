#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/SystemLog.h"
#include "serial/InAnyCase.h"
#include "serial/RequestQueue.h"
#include "serial/SerialPort.h"

#include <cerrno>
#include <functional>

// Opening and closing, and what happens in between.
namespace vorrano::serial {

int SerialPort::fileDescriptor() const
{
    const auto open = m_open.get();
    return open ? open->descriptor() : 0;
}

void SerialPort::open()
{
    if (!m_open.beginOpen()) {
        return;
    }
    const auto opened = m_terminal.open(m_path);
    if (opened.failed() || opened.value <= 0) {
        m_open.setOpenFailed();
        m_delegate.notifyDelegateOfPosixError(opened.error);
        return;
    }
    m_terminal.setStatusFlags(opened.value, 0);
    const auto open = m_open.setOpened(m_terminal, opened.value);
    const auto announceAndSetUp = [&] {
        m_observers.tell("fileDescriptor");
        setUp(*open);
    };
    inAnyCase(announceAndSetUp, [&] {
        m_delegate.post(SerialPortCallback::WasOpened,
                        [](SerialPortDelegate& delegate, SerialPort& self) { delegate.serialPortWasOpened(self); });
        startReadingAndPolling(open);
    });
}

void SerialPort::setUp(OpenPort& open)
{
    open.keepOriginalAttributes();
    applyOptions(open);

    const auto lines = open.modemLines();
    if (lines.failed()) {
        m_delegate.notifyDelegateOfPosixError(lines.error);
    }
    const auto bits = lines.failed() ? 0 : lines.value;
    // A setter drives its line only when its value changes. So the values are first set to those of the hardware, then
    // to those that are wanted.
    const bool rts = RTS();
    const bool dtr = DTR();
    setRTS((bits & TIOCM_RTS) != 0);
    setDTR((bits & TIOCM_DTR) != 0);
    setRTS(rts);
    setDTR(dtr);
}

void SerialPort::startReadingAndPolling(const CurrentOpen::Pointer& open)
{
    // The reader's tasks hold the port, so an open port is not destroyed.
    const OpenPort::Events events{
        .didReceive = [requests = m_requests](const Bytes& chunk) { requests->receiveData(chunk); },
        .didFailToWait = [self = shared_from_this()](int error) { self->m_delegate.notifyDelegateOfPosixError(error); },
        .didReadLines =
            [self = shared_from_this(), &open = *open](int lines) {
                self->mirrorLine(open, self->m_lines.cts, lines);
                self->mirrorLine(open, self->m_lines.dsr, lines);
                self->mirrorLine(open, self->m_lines.dcd, lines);
            },
        .didFailToReadLines = [self = shared_from_this(),
                               &open = *open](int error) { self->didFailToReadLines(open, error); },
    };
    m_backgroundQueue.async([open, events] { open->readUntilEnded(events); });
    m_backgroundQueue.async([open, events] { open->pollUntilStopped(events); });
}

void SerialPort::mirrorLine(const OpenPort& open, InputLine& line, int lines)
{
    const auto isOn = (lines & line.bit) != 0;
    if (line.isOn == isOn) {
        return;
    }
    m_mainQueue.sync([&] {
        if (!open.isEnded()) {
            line.isOn = isOn;
            m_observers.tell(line.key);
        }
    });
}

void SerialPort::didFailToReadLines(const OpenPort& open, int error)
{
    const auto isGone = error == ENXIO;
    m_delegate.notifyDelegateOfPosixErrorWaitingUntilDone(error, isGone);
    if (isGone) {
        cleanupAfterRemovalOfOpen(open.number());
    }
}

bool SerialPort::close() { return closeOpen(std::nullopt); }

// Closes the open of that number; without a number the current one.
bool SerialPort::closeOpen(std::optional<std::uint64_t> number)
{
    const auto open = m_open.beginClose(number);
    return !open || endClose(open);
}

bool SerialPort::endClose(const CurrentOpen::Pointer& open)
{
    open->stopPolling();
    open->restoreAttributes();
    m_open.setEnded();
    bool closed = false;
    inAnyCase([&] { m_observers.tell("fileDescriptor"); }, [&] { closed = closeDescriptor(open); });
    return closed;
}

bool SerialPort::closeDescriptor(const CurrentOpen::Pointer& open)
{
    const auto closed = open->closeDescriptor();
    if (closed.failed()) {
        m_open.setCloseFailed(open);
        m_observers.tell("fileDescriptor");
        m_delegate.notifyDelegateOfPosixError(closed.error);
        return false;
    }
    m_open.setClosed();
    m_requests->portWasClosed();
    m_delegate.post(SerialPortCallback::WasClosed,
                    [](SerialPortDelegate& delegate, SerialPort& self) { delegate.serialPortWasClosed(self); });
    return true;
}

void SerialPort::setPortOptions()
{
    if (const auto open = m_open.get()) {
        applyOptions(*open);
    }
}

void SerialPort::applyOptions(const OpenPort& open)
{
    if (open.apply(m_options.values()).failed()) {
        // What the call returns on failure, not its errno.
        m_systemLog.write("Unable to set options on " + description() + ": -1");
    }
}

void SerialPort::setRTS(bool on) { drive(m_lines.rts, on); }

void SerialPort::setDTR(bool on) { drive(m_lines.dtr, on); }

void SerialPort::drive(OutputLine& line, bool on)
{
    if (line.isOn.exchange(on) == on) {
        return;
    }
    if (const auto open = m_open.get()) {
        const auto driven = open->drive(line.bit, on);
        if (driven.failed()) {
            m_delegate.notifyDelegateOfPosixError(driven.error);
        }
    }
}

} // namespace vorrano::serial
