#pragma once

#include <chrono>
#include <functional>

namespace vorrano::support {

// Runs Qt's event loop until the condition holds; false when it does not in time.
[[nodiscard]] bool spinUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds limit = std::chrono::seconds(10));

} // namespace vorrano::support
