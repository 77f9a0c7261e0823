#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/Terminal.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vorrano::posix_platform {

// Terminals by the system's own calls. A failing call's result is -1 beside its errno; EINTR is passed on.
//
// One opener at a time: by flock(2), which stops root too, and by TIOCEXCL, which stops those who take no lock. Both
// end with close(), not with the last reference to the file, as a reader that still waits on it may keep it for a
// while.
// Lifetime: the registry outlives the terminal.
class PosixTerminal final : public platform::Terminal {
public:
    // std::system_error when /dev/null, which takes the place of closed lines, can't be opened.
    explicit PosixTerminal(const platform::DeviceRegistry& registry);
    PosixTerminal(const PosixTerminal&) = delete;
    PosixTerminal& operator=(const PosixTerminal&) = delete;
    ~PosixTerminal() override;

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
    const platform::DeviceRegistry& m_registry;
    const int m_null;
};

} // namespace vorrano::posix_platform
