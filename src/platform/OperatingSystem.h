#pragma once

#include <optional>

namespace vorrano::platform {

struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;
};

// The version that a program's system requirement is about; none when it is not known. Any thread.
class OperatingSystem {
public:
    OperatingSystem() = default;
    OperatingSystem(const OperatingSystem&) = delete;
    OperatingSystem& operator=(const OperatingSystem&) = delete;
    virtual ~OperatingSystem() = default;

    [[nodiscard]] virtual std::optional<OperatingSystemVersion> version() const = 0;
};

} // namespace vorrano::platform
