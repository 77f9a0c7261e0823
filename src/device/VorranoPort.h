#pragma once

#include <string_view>

namespace vorrano::device {

// A port is a Vorrano's when its path contains this text, at any place.
inline constexpr std::string_view kVorranoPath = "/dev/cu.usbserial-";

[[nodiscard]] inline bool isVorranoPath(std::string_view path)
{
    return path.find(kVorranoPath) != std::string_view::npos;
}

} // namespace vorrano::device
