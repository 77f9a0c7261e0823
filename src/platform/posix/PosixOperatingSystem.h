#pragma once

#include "platform/OperatingSystem.h"

#include <optional>
#include <string_view>

namespace vorrano::posix_platform {

// The operating system's version is the C library's: "2.36" is 2, 36, 0.
class PosixOperatingSystem final : public platform::OperatingSystem {
public:
    [[nodiscard]] std::optional<platform::OperatingSystemVersion> version() const override;
};

// Up to three numbers with dots between them, whatever follows; none when the text does not begin with a number.
[[nodiscard]] std::optional<platform::OperatingSystemVersion> versionFromText(std::string_view text);

} // namespace vorrano::posix_platform
