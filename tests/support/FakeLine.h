#pragma once

#include "platform/Terminal.h"
#include "support/VirtualTime.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::support {

enum class TerminalCall {
    Open,
    SetStatusFlags,
    Attributes,
    SetAttributes,
    SetSpeed,
    ModemLines,
    SetModemLines,
    WaitReadable,
    Wait,
    Read,
    Write,
    Close,
    Release,
};

struct RecordedWrite {
    std::string bytes;
    Nanoseconds at{};
};

struct RecordedSettings {
    platform::TerminalAttributes attributes;
    platform::ApplyAttributes when = platform::ApplyAttributes::Now;
    Nanoseconds at{};
};

// Failures that a test has ordered, call by call, in the order of ordering.
class Failures {
public:
    void order(TerminalCall call, int error, int times);

    // The errno of this call's ordered failure; 0 when there is none.
    int take(TerminalCall call);

private:
    struct Order {
        int error;
        int times;
    };
    std::map<TerminalCall, std::deque<Order>> m_orders;
};

// The far end of a serial line: what a device would see and do.
class FakeLine {
public:
    FakeLine(VirtualTime& time, std::string path);
    FakeLine(const FakeLine&) = delete;
    FakeLine& operator=(const FakeLine&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

    // Bytes for the program: each reply is one chunk, as long as the program's read buffer holds it. Lost while nobody
    // has the line open.
    void reply(const std::string& bytes);
    void replyAfter(Nanoseconds delay, const std::string& bytes);

    // What the program wrote since the beginning or forget(): all of it; write by write.
    [[nodiscard]] std::string written() const;
    [[nodiscard]] const std::vector<RecordedWrite>& writes() const { return m_writes; }
    void forget() { m_writes.clear(); }

    // Called with the bytes of each write, on the thread that writes; replace it with an empty one to end it.
    void onWrite(std::function<void(const std::string& bytes)> told) { m_onWrite = std::move(told); }

    // The plug is pulled: readable without bytes, EIO from the others, ENXIO from the modem lines. For good.
    void unplug();
    [[nodiscard]] bool isUnplugged() const { return m_hungUp; }

    // The input lines (TIOCM_CTS, TIOCM_DSR, TIOCM_CAR, TIOCM_RI): those given are on, the others off.
    void setModemLines(int bits);

    // The output lines (TIOCM_RTS, TIOCM_DTR) as they are, and the values that the program set, in order.
    [[nodiscard]] int outputLines() const { return m_outputLines; }
    [[nodiscard]] const std::vector<int>& modemLineWrites() const { return m_modemLineWrites; }

    // The output lines that an open raises; at first both.
    void setLinesAtOpen(int bits) { m_linesAtOpen = bits; }

    // The settings as they are, and each change by the program, in order. setAttributes() is another program's change.
    [[nodiscard]] const platform::TerminalAttributes& attributes() const { return m_attributes; }
    [[nodiscard]] const std::vector<RecordedSettings>& settings() const { return m_settings; }
    void setAttributes(const platform::TerminalAttributes& attributes) { m_attributes = attributes; }

    // The next `times` calls of that kind on this line fail with that errno and do nothing.
    void failNext(TerminalCall call, int error, int times = 1) { m_failures.order(call, error, times); }

    // Each write takes at most that many bytes (at least 1).
    void writeAtMost(std::size_t bytes);

    // The next writes take at most so many bytes each, in order; 0 is allowed.
    void limitNextWrites(const std::vector<std::size_t>& limits);

    // Calls of that kind wait (on the virtual clock) from now until goOn(), an unplug, or the end of the world.
    void stall(TerminalCall call);
    void goOn(TerminalCall call);

    // The next call of that kind takes that long.
    void delayNext(TerminalCall call, Nanoseconds duration);

    // Calls that are waiting because of stall() or delayNext().
    [[nodiscard]] int stalled(TerminalCall call) const;

    // Another program has the line open: EBUSY for ours.
    void setHeldByAnother(bool held) { m_heldByAnother = held; }

    // All is well again: what was ordered of the verbs above and has not happened yet is forgotten.
    void recover();

    // Our program has it open.
    [[nodiscard]] bool isOpen() const { return m_descriptor != 0; }

    // Bytes that the program has not read.
    [[nodiscard]] std::size_t unread() const;

private:
    friend class FakeTerminal;
    struct Stall {
        bool on = false;
        std::deque<Nanoseconds> delays;
        int waiting = 0;
    };

    void waitIfStalled(TerminalCall call);
    std::size_t takeWriteLimit(std::size_t wanted);

    VirtualTime& m_time;
    std::string m_path;
    std::deque<std::string> m_input;
    std::vector<RecordedWrite> m_writes;
    std::function<void(const std::string&)> m_onWrite;
    platform::TerminalAttributes m_attributes;
    std::vector<RecordedSettings> m_settings;
    std::vector<int> m_modemLineWrites;
    Failures m_failures;
    std::map<TerminalCall, Stall> m_stalls;
    std::deque<std::size_t> m_nextLimits;
    std::optional<std::size_t> m_limit;
    int m_inputLines = 0;
    int m_outputLines = 0;
    int m_linesAtOpen;
    int m_descriptor = 0;
    bool m_hungUp = false;
    bool m_heldByAnother = false;
};

} // namespace vorrano::support
