#pragma once

#include <string_view>

// What the program says at its start.
namespace vorrano::shell::shell_text {

inline constexpr std::string_view kUpgradeTitle = "Operating System Upgrade Required";
inline constexpr std::string_view kUpgrade = "Please update to MAC OS 10.9 and above to use Vorrano setup Program";

} // namespace vorrano::shell::shell_text
