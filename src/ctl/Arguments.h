#pragma once

#include "ctl/ExitStatus.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorrano::ctl {

inline constexpr std::string_view kProgramName = "vorranoctl";

enum class Verb { List, Get, Set, Wifi, Reset, Update };

// A command line that was understood. What a verb does not take is absent.
struct Arguments {
    Verb verb = Verb::List;
    // What follows the verb: for get, set and reset the item, for set its value too; for update the file.
    std::vector<std::string> operands{};
    std::vector<std::string> ports{};
    bool all = false;
    bool json = false;
    bool force = false;
    std::optional<std::string> ssid{};
    std::optional<std::string> security{};
    std::optional<std::string> passwordFile{};
};

// What ends the program before it has done anything: a text for standard output, or a reason for standard error.
struct Answer {
    ExitStatus status = ExitStatus::Done;
    std::string text;
};

[[nodiscard]] Answer refusal(std::string_view reason);

// Reads the arguments, without the program's name. Main thread, as getopt(3) keeps its state in the process.
[[nodiscard]] std::variant<Arguments, Answer> argumentsOf(const std::vector<std::string>& words,
                                                          std::string_view version);

} // namespace vorrano::ctl
