#pragma once

#include "platform/Terminal.h"
#include "serial/PortOptions.h"
#include "serial/SerialRequest.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace vorrano::serial {

struct WriteOutcome {
    bool complete = false;
    int error = 0; // the errno of the call that failed
};

// One open of a port: its descriptor, the terminal's settings from before it, its reader and its modem-line poll.
//
// Whoever uses the descriptor holds this object, and the last holder gives the descriptor's number back to the system.
// So nobody ever reads, writes or polls a file of somebody else that got the same number.
// Threads: every method on any. The reader and the poll are tasks for a background thread each; each ends with this
// open, also when the port is open again by then.
class OpenPort {
public:
    // What the reader and the poll report, on their own threads. Nothing is reported of an open that has ended.
    struct Events {
        std::function<void(Bytes chunk)> didReceive;
        std::function<void(int error)> didFailToWait;
        // The modem lines as TIOCM bits; at each tick.
        std::function<void(int lines)> didReadLines;
        // ENXIO: the device is gone, and the poll has ended.
        std::function<void(int error)> didFailToReadLines;
    };

    // `number` counts the opens of the port.
    OpenPort(platform::Terminal& terminal, int descriptor, std::uint64_t number);
    OpenPort(const OpenPort&) = delete;
    OpenPort& operator=(const OpenPort&) = delete;
    ~OpenPort();

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] std::uint64_t number() const { return m_number; }

    // Notes the terminal's settings, for restoreAttributes(). Once, before anything else.
    void keepOriginalAttributes();
    [[nodiscard]] platform::SystemResult apply(const PortOptions::Values& options) const;

    [[nodiscard]] platform::SystemResult modemLines() const { return m_terminal.modemLines(m_descriptor); }
    // Sets or clears one output line and leaves the others as they are.
    [[nodiscard]] platform::SystemResult drive(int bit, bool on) const;

    // Writes all bytes; blocks until they are out, this open has ended or a call has failed.
    [[nodiscard]] WriteOutcome write(const Bytes& data) const;

    // Reads chunks until this open has ended, at most 100 ms later.
    void readUntilEnded(const Events& events) const;
    // Reads the modem lines every 10 ms, up to 5 ms late, until this open has ended or stopPolling().
    void pollUntilStopped(const Events& events);
    void stopPolling() { m_isPolled = false; }

    // The close, in this order. restoreAttributes() waits until pending output is out. From end() on isEnded() is true;
    // a close that failed is taken back by resume().
    void restoreAttributes() const;
    void end() { m_isEnded = true; }
    [[nodiscard]] platform::SystemResult closeDescriptor();
    void resume() { m_isEnded = false; }
    [[nodiscard]] bool isEnded() const { return m_isEnded; }

private:
    void readChunk(const Events& events) const;
    void pollOnce(const Events& events);
    [[nodiscard]] bool isPolled() const { return m_isPolled && !m_isEnded; }

    platform::Terminal& m_terminal;
    const int m_descriptor;
    const std::uint64_t m_number;
    platform::TerminalAttributes m_originalAttributes;
    std::atomic<bool> m_isPolled = true;
    std::atomic<bool> m_isEnded = false;
    std::atomic<bool> m_isClosed = false;
};

} // namespace vorrano::serial
