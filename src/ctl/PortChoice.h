#pragma once

#include "ctl/Arguments.h"
#include "serial/SerialPortManager.h"

#include <string>
#include <variant>

namespace vorrano::ctl {

// The device node of a listed port. Main thread.
[[nodiscard]] std::string nodeOf(const serial::SerialPort& port);

// The ports that the arguments mean, each once, in the order of the list: those named, all Vorranos, or the one Vorrano
// that there is. An answer when there are none, or when it is not clear which one is meant. Main thread.
[[nodiscard]] std::variant<serial::SerialPorts, Answer> chosenPorts(const Arguments& arguments,
                                                                    const serial::SerialPorts& listed);

} // namespace vorrano::ctl
