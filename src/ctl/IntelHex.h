#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorrano::ctl {

// What is wrong with a text as an Intel HEX file, as the end of a sentence; none when nothing is. It is one when each
// line that is not empty is a record with a checksum that agrees, and the last record is the one end record.
[[nodiscard]] std::optional<std::string> faultOfIntelHex(std::string_view text);

} // namespace vorrano::ctl
