#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <termios.h>

namespace vorrano::platform {

// What a system call gave: its result, or the errno of its failure.
struct SystemResult {
    int value = 0;
    int error = 0;
    [[nodiscard]] bool failed() const { return error != 0; }
};

// A terminal's settings: the POSIX record, and beside it each rate in baud that is none of the standard ones.
struct TerminalAttributes {
    termios record{};
    // The output's, which is the input's too unless the record gives the input a rate of its own.
    std::optional<std::uint64_t> customSpeed;
    // The input's own rate.
    std::optional<std::uint64_t> customInputSpeed;
};

enum class ApplyAttributes { Now, AfterDrain };

// The system calls of the serial layer, one method each, so that a test can make every one of them fail.
//
// Threads: every method on any thread, at the same time; none takes a lock that another one holds while it blocks.
// Descriptors: a number above 0. close() ends the line, but keeps the number from being given out again until
// release().
class Terminal {
public:
    Terminal() = default;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    virtual ~Terminal() = default;

    // Opens the device behind a callout path for reading and writing, without waiting for a carrier, not as a
    // controlling terminal, and for this opener alone: EBUSY when somebody else has it open, ENOENT when no present
    // device has the path. The descriptor does not block.
    virtual SystemResult open(const std::string& path) = 0;

    // Sets the file status flags; 0 makes reads and writes block.
    virtual SystemResult setStatusFlags(int descriptor, int flags) = 0;

    virtual SystemResult attributes(int descriptor, TerminalAttributes& into) = 0;
    virtual SystemResult setAttributes(int descriptor, ApplyAttributes when, const TerminalAttributes& attributes) = 0;

    // Writes the rate into the record, for both directions: the standard rates as such, any other as a custom one.
    // EINVAL: no such rate.
    virtual SystemResult setSpeed(TerminalAttributes& attributes, std::uint64_t baud) = 0;

    // The modem lines as TIOCM bits, in `value`. ENXIO when the device behind the open descriptor is gone.
    virtual SystemResult modemLines(int descriptor) = 0;
    virtual SystemResult setModemLines(int descriptor, int lines) = 0;

    // Waits until the descriptor is readable: 1, or 0 when the time is over.
    virtual SystemResult waitReadable(int descriptor, std::chrono::microseconds limit) = 0;

    // Sleeps for `duration`, up to `leeway` longer, so that the system may combine this wake-up with others.
    virtual void wait(std::chrono::microseconds duration, std::chrono::microseconds leeway) = 0;

    // At most into.size() bytes; 0 when the line has been hung up.
    virtual SystemResult read(int descriptor, std::span<std::byte> into) = 0;
    virtual SystemResult write(int descriptor, std::span<const std::byte> bytes) = 0;

    // Releases the line, so that others can open it. On failure the line stays open. Calls under way on the descriptor,
    // and later ones, meet a line without data instead of somebody else's file.
    virtual SystemResult close(int descriptor) = 0;

    // After a close that succeeded, when nothing uses the number any more: the system may give it out again.
    virtual void release(int descriptor) = 0;
};

} // namespace vorrano::platform
