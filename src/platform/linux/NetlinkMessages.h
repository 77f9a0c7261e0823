#pragma once

#include "platform/linux/Routes.h"

#include <optional>

struct nlmsghdr;

// What the kernel says of links and routes, read from the messages of its answers.
namespace vorrano::linux_platform {

// None when the message is too short for a link's record.
[[nodiscard]] std::optional<Link> linkFrom(const nlmsghdr& message);

// None when the message is too short for a route's record. An attribute that is too short for its value is skipped.
[[nodiscard]] std::optional<Route> routeFrom(const nlmsghdr& message);

} // namespace vorrano::linux_platform
