#pragma once

#include "platform/SystemLog.h"

#include <string>
#include <string_view>

namespace vorrano::posix_platform {

// One line each to syslog(3), under the program's name, and to standard error. Any thread; lines stay whole.
class PosixSystemLog final : public platform::SystemLog {
public:
    PosixSystemLog();

    void write(std::string_view line) override;
};

// The text on one line: control characters and bytes that are no UTF-8 as "\n", "\r", "\t" or "\x1b".
[[nodiscard]] std::string escapedLine(std::string_view text);

} // namespace vorrano::posix_platform
