#pragma once

#include "platform/Terminal.h"
#include "platform/posix/PosixTerminalKernel.h"

#include <cstdint>
#include <optional>

#include <termios.h>

namespace vorrano::posix_platform {

// The constant that stands for a standard rate; 0 is one of them and hangs up.
[[nodiscard]] std::optional<speed_t> standardSpeed(std::uint64_t baud);

// Whether the record, as the system filled it, says that the output's rate is none of the standard ones; and whether it
// says so of a rate that is the input's own.
[[nodiscard]] bool saysCustomSpeed(const termios& record);
[[nodiscard]] bool saysCustomInputSpeed(const termios& record);

// Takes the input's own rate out of the record: the input then has the output's.
void joinInputRate(termios& record);

// The attributes as the kernel wants them.
[[nodiscard]] KernelSettings kernelSettings(const platform::TerminalAttributes& attributes);

} // namespace vorrano::posix_platform
