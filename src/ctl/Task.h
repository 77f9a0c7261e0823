#pragma once

#include "ctl/Arguments.h"
#include "device/DeviceCommand.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What the program does at each device, made from the arguments. Everything that can be refused is refused here, before
// a port is touched.
namespace vorrano::ctl {

// A command, under the name that its answer is shown by.
struct Exchange {
    std::string name;
    device::DeviceCommand command = device::DeviceCommand::PowerStatus;
    std::string argument;
};

// One after the other; the first that fails ends them.
struct Exchanges {
    std::vector<Exchange> exchanges;
};

// The command is sent, and nothing is awaited.
struct Reset {
    std::string name;
    device::DeviceCommand command = device::DeviceCommand::ResetDevice;
    std::string_view finished;
};

// The text of a firmware image.
struct Upload {
    std::string image;
};

struct ListPorts {};

using Task = std::variant<ListPorts, Exchanges, Reset, Upload>;

// Where a secret comes from: a file, "-" for standard input, or without a name the person at the terminal.
struct SecretSource {
    std::optional<std::string> file;
    // What the person is asked for.
    std::string_view prompt;
};

// The secret's bytes, or why there is none.
using Secret = std::variant<std::string, Answer>;
using ReadSecret = std::function<Secret(const SecretSource& source)>;

[[nodiscard]] std::variant<Task, Answer> taskOf(const Arguments& arguments, const ReadSecret& readSecret);

// The one line of a secret's bytes, without its line end: refused when there are several, or when it is no text.
[[nodiscard]] Secret secretOfLine(std::string_view bytes);

} // namespace vorrano::ctl
