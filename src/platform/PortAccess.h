#pragma once

#include <optional>
#include <string>

namespace vorrano::platform {

// Why a serial port could not be opened, as far as the system tells, and whether another try may go better.
//
// Paths are callout paths; one that no present device has is neither permitted nor in use. Every answer is about the
// moment of the question.
// Threads: any. Neither call opens the device.
class PortAccess {
public:
    PortAccess() = default;
    PortAccess(const PortAccess&) = delete;
    PortAccess& operator=(const PortAccess&) = delete;
    virtual ~PortAccess() = default;

    // Whether the permissions of the device let this program read and write it. Takes some microseconds; a look every
    // second finds a change.
    [[nodiscard]] virtual bool isPermitted(const std::string& path) const = 0;

    // The name of a program, other than this one, that has the device open: without control characters, and 15 bytes at
    // most, which may cut a UTF-8 character in two. None where nobody has it open, and where the system does not show
    // who has: it shows nobody the programs of another person. Looks at every open file of every program, which takes
    // some ten milliseconds: a question for after a failure, not for every second.
    [[nodiscard]] virtual std::optional<std::string> programThatUses(const std::string& path) const = 0;
};

} // namespace vorrano::platform
