#pragma once

#include "platform/linux/Routes.h"

#include <optional>
#include <span>

struct nlmsghdr;

// What the kernel says of links and routes, read from the messages of its answers.
namespace vorrano::linux_platform {

// Whether the bytes are messages one after the other, each with all that its length says, padding included. The library
// relies on it: where a length has its highest bit set, or the last message is not padded, it reads behind the bytes.
[[nodiscard]] bool areWholeMessages(std::span<const char> bytes);

// None when the message is too short for a link's record.
[[nodiscard]] std::optional<Link> linkFrom(const nlmsghdr& message);

// None when the message is too short for a route's record. An attribute that is too short for its value is skipped.
[[nodiscard]] std::optional<Route> routeFrom(const nlmsghdr& message);

} // namespace vorrano::linux_platform
