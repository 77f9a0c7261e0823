#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The head of an HTTP request as it comes over the wire.
namespace vorrano::simulator {

// What the targets of the service's methods begin with.
inline constexpr std::string_view kServiceRoot = "/VorranoAPI/RestServiceImpl.svc/";

// The length of the head at the start of these bytes, its empty line included; none while that has not come.
[[nodiscard]] std::optional<std::size_t> lengthOfHead(std::string_view bytes);

// What stands between the first two blanks of the first line; all of it where there is none.
[[nodiscard]] std::string targetOfHead(std::string_view head);

// The service's method that a target names; empty for a target outside the service.
[[nodiscard]] std::string methodOfTarget(std::string_view target);

} // namespace vorrano::simulator
