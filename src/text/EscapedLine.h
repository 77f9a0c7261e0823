#pragma once

#include <string>
#include <string_view>

namespace vorrano::text {

// The text on one line: control characters and bytes that are no UTF-8 as "\n", "\r", "\t" or "\x1b". Any thread.
[[nodiscard]] std::string escapedLine(std::string_view text);

} // namespace vorrano::text
