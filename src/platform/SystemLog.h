#pragma once

#include <string_view>

namespace vorrano::platform {

// One line each to the system log and to standard error, control characters escaped. Any thread. Never give it an
// address, a password or a key.
class SystemLog {
public:
    SystemLog() = default;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;
    virtual ~SystemLog() = default;

    virtual void write(std::string_view line) = 0;
};

} // namespace vorrano::platform
