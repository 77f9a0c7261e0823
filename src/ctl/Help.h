#pragma once

#include <string>

namespace vorrano::ctl {

enum class Verb;

// What --help shows: of the program, and of one verb.
[[nodiscard]] std::string help();
[[nodiscard]] std::string helpOf(Verb verb);

} // namespace vorrano::ctl
