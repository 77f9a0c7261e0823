#pragma once

#include "platform/Terminal.h"
#include "platform/posix/LinuxTerminalKernel.h"

#include <cstdint>
#include <optional>

#include <termios.h>

namespace vorrano::linux_platform {

// The constant that stands for a standard rate; 0 is one of them and hangs up.
[[nodiscard]] std::optional<speed_t> standardSpeed(std::uint64_t baud);

// Whether the record, as the system filled it, says that the rate is none of the standard ones.
[[nodiscard]] bool saysCustomSpeed(const termios& record);

// Attributes with a custom rate as the kernel wants them.
[[nodiscard]] KernelSettings kernelSettings(const platform::TerminalAttributes& attributes);

} // namespace vorrano::linux_platform
