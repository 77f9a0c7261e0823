#include "platform/posix/PosixOperatingSystem.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

#include <gnu/libc-version.h>

namespace vorrano::posix_platform {

using platform::OperatingSystemVersion;

std::optional<OperatingSystemVersion> PosixOperatingSystem::version() const
{
    return versionFromText(::gnu_get_libc_version());
}

std::optional<OperatingSystemVersion> versionFromText(std::string_view text)
{
    std::array<int, 3> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const char* const end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, numbers[i]);
        if (error != std::errc() || numbers[i] < 0) {
            if (i == 0) {
                return std::nullopt;
            }
            numbers[i] = 0;
            break;
        }
        if (rest == end || *rest != '.') {
            break;
        }
        text.remove_prefix(static_cast<std::size_t>(rest - text.data()) + 1);
    }
    return OperatingSystemVersion{numbers[0], numbers[1], numbers[2]};
}

} // namespace vorrano::posix_platform
