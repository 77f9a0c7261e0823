#pragma once

#include "serial/SerialPortManager.h"

#include <string>

namespace vorrano::platform {
class PortAccess;
}

namespace vorrano::ctl {

// The ports as a table with a heading, or as one JSON object each. Main thread.
[[nodiscard]] std::string tableOf(const serial::SerialPorts& ports, const platform::PortAccess& access);
[[nodiscard]] std::string jsonOf(const serial::SerialPorts& ports, const platform::PortAccess& access);

} // namespace vorrano::ctl
