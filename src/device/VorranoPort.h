#pragma once

#include <string_view>

namespace vorrano::device {

// What stands in the path of a Vorrano's port, anywhere.
inline constexpr std::string_view kVorranoPath = "/dev/cu.usbserial-";

[[nodiscard]] inline bool isVorranoPath(std::string_view path)
{
    return path.find(kVorranoPath) != std::string_view::npos;
}

} // namespace vorrano::device
