#pragma once

#include "platform/SystemLog.h"

#include <string_view>

namespace vorrano::posix_platform {

// One line each to syslog(3), under the program's name, and to standard error. Any thread; lines stay whole.
class PosixSystemLog final : public platform::SystemLog {
public:
    PosixSystemLog();

    void write(std::string_view line) override;
};

} // namespace vorrano::posix_platform
