#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The two versions that the firmware update compares.
namespace vorrano::device {

// The part of the device's version before the point, as the service is asked about it.
[[nodiscard]] std::int32_t wholeVersion(double deviceVersion);

// What is kept of the service's answer: the body as text, but no more of it than a version can stand in, as the body
// may be very long. Empty when no body came; none when it is no UTF-8.
[[nodiscard]] std::optional<std::string> firmwareAnswerOf(const std::optional<std::string>& body);

// What the service's answer says: the number in the 4 characters (5 from version 11 on) after its first 27. No text is
// version 0; std::out_of_range when the text ends before those characters do.
[[nodiscard]] double latestVersion(const std::optional<std::string>& answer, std::int32_t whole);

} // namespace vorrano::device
