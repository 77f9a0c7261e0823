#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "serial/PortLine.h"
#include "serial/SerialPort.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <span>
#include <utility>

#include <sys/ioctl.h>

namespace vorrano::serial {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds kReaderRound = 100ms;
constexpr std::size_t kLargestChunk = 1024;
constexpr platform::TimerSchedule kPinPoll{.first = 0ms, .interval = 10ms, .leeway = 5ms};

void cancel(const std::weak_ptr<platform::Timer>& timer)
{
    if (const auto alive = timer.lock()) {
        alive->cancel();
    }
}

} // namespace

void SerialPort::startReading(const LinePointer& line)
{
    m_backgroundQueue.async([self = shared_from_this(), line] { self->readUntilClosed(line); });
}

void SerialPort::readUntilClosed(const LinePointer& line)
{
    while (isCurrent(line)) {
        const auto ready = m_terminal.waitReadable(line->descriptor(), kReaderRound);
        if (!isCurrent(line)) {
            return;
        }
        if (ready.failed()) {
            // No back-off: a failure that lasts is reported once per round.
            notifyDelegateOfPosixError(ready.error);
        } else if (ready.value > 0) {
            readChunk(*line);
        }
    }
}

void SerialPort::readChunk(const PortLine& line)
{
    std::array<std::byte, kLargestChunk> buffer;
    const auto count = m_terminal.read(line.descriptor(), buffer);
    if (count.failed() || count.value <= 0) {
        // A line that was hung up is readable at once and gives nothing: the round is waited out instead of spun
        // through.
        m_terminal.wait(kReaderRound);
        return;
    }
    receiveData(Bytes(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(count.value)));
}

void SerialPort::startPolling(const LinePointer& line)
{
    const auto own = std::make_shared<std::weak_ptr<platform::Timer>>();
    auto timer = m_backgroundQueue.makeTimer(kPinPoll, [port = weak_from_this(), line, own] {
        if (const auto self = port.lock()) {
            self->pollPins(line, *own);
        }
    });
    *own = timer;
    std::shared_ptr<platform::Timer> old;
    {
        // Where the port was closed again meanwhile (by a delegate that was told of an error), the timer of the open
        // that may have followed stays.
        const std::lock_guard lock(m_mutex);
        if (m_line != line || m_isClosing) {
            return;
        }
        old = std::exchange(m_pinPollTimer, timer);
    }
    if (old) {
        old->cancel();
    }
    timer->start();
}

void SerialPort::pollPins(const LinePointer& line, const std::weak_ptr<platform::Timer>& timer)
{
    if (!isCurrent(line)) {
        m_backgroundQueue.async([timer] { cancel(timer); });
        return;
    }
    const auto lines = m_terminal.modemLines(line->descriptor());
    // What the line of an ended open says is nobody's matter any more.
    if (!isCurrent(line)) {
        return;
    }
    if (lines.failed()) {
        const auto isGone = lines.error == ENXIO;
        notifyDelegateOfPosixErrorWaitingUntilDone(lines.error, isGone);
        if (isGone) {
            cleanupAfterRemovalOfOpen(line->number());
            // One word of the removal is enough, however long it takes until the port is closed.
            cancel(timer);
        }
        return;
    }
    mirrorLine(line, m_cts, (lines.value & TIOCM_CTS) != 0, "CTS");
    mirrorLine(line, m_dsr, (lines.value & TIOCM_DSR) != 0, "DSR");
    mirrorLine(line, m_dcd, (lines.value & TIOCM_CAR) != 0, "DCD");
}

void SerialPort::mirrorLine(const LinePointer& line, std::atomic<bool>& stored, bool on, std::string_view key)
{
    if (stored == on) {
        return;
    }
    m_mainQueue.sync([&] {
        if (isCurrent(line)) {
            stored = on;
            m_observers.tell(key);
        }
    });
}

} // namespace vorrano::serial
