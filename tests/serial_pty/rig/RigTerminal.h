#pragma once

#include "platform/Terminal.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace vorrano::pty_rig {

// A terminal that passes everything on to another one and counts. A pty has no modem lines: a test may give it some.
class RigTerminal : public platform::Terminal {
public:
    explicit RigTerminal(platform::Terminal& terminal)
        : m_terminal(terminal)
    {}

    // What the modem lines read where the line itself has none; before the first test that wants some, before any open.
    std::function<int()> linesOfALineWithout;

    std::atomic<std::uint64_t> waits = 0;
    std::atomic<std::uint64_t> roundsWaitedOut = 0;
    std::atomic<std::uint64_t> reads = 0;
    std::atomic<std::uint64_t> polls = 0;
    std::atomic<std::uint64_t> refusedPolls = 0;
    std::atomic<std::uint64_t> opens = 0;
    std::atomic<std::uint64_t> closes = 0;

    platform::SystemResult open(const std::string& path) override;
    platform::SystemResult setStatusFlags(int descriptor, int flags) override;
    platform::SystemResult attributes(int descriptor, platform::TerminalAttributes& into) override;
    platform::SystemResult setAttributes(int descriptor, platform::ApplyAttributes when,
                                         const platform::TerminalAttributes& attributes) override;
    platform::SystemResult setSpeed(platform::TerminalAttributes& attributes, std::uint64_t baud) override;
    platform::SystemResult modemLines(int descriptor) override;
    platform::SystemResult setModemLines(int descriptor, int lines) override;
    platform::SystemResult waitReadable(int descriptor, std::chrono::microseconds limit) override;
    void wait(std::chrono::microseconds duration, std::chrono::microseconds leeway) override;
    platform::SystemResult read(int descriptor, std::span<std::byte> into) override;
    platform::SystemResult write(int descriptor, std::span<const std::byte> bytes) override;
    platform::SystemResult close(int descriptor) override;
    void release(int descriptor) override;

private:
    platform::Terminal& m_terminal;
};

} // namespace vorrano::pty_rig
