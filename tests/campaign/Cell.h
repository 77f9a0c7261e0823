#pragma once

#include "campaign/Action.h"
#include "campaign/Fault.h"
#include "campaign/Rules.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vorrano::campaign {

// One action under one fault at one moment: what had to come of it, and what did.
struct Cell {
    Action action;
    Fault fault;
    Moment moment = Moment::Before;
    Outcome expected{};
    Outcome observed{};
    // What was not as it had to be; of the action itself, or of the next one on a healthy line.
    std::vector<std::string> complaints{};
};

// A cell is late when its outcome comes more than this after the time-outs and pauses that belong to it.
inline constexpr std::chrono::milliseconds kGrace{250};

// Runs it in a demo of its own.
[[nodiscard]] Cell runCell(const Action& action, const Fault& fault, Moment moment, const std::filesystem::path& image);

// What came of it in one letter: "=" as if all were well, "t" told as a time-out, "-" nothing shown, "o" something
// else,
// "!" not what had to come.
[[nodiscard]] char letterOf(const Cell& cell);

[[nodiscard]] std::string nameOf(Moment moment);

} // namespace vorrano::campaign
