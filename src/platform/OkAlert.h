#pragma once

#include "platform/Alerts.h"

#include <optional>
#include <string_view>

// The alerts that most screens show.
namespace vorrano::platform {

// An alert of two texts and an "OK".
[[nodiscard]] Alert okAlert(std::optional<std::string_view> messageText, std::string_view informativeText);

// Shows an alert titled "ERROR" with that text; nothing for an absent text. Main thread.
void showError(Alerts& alerts, std::optional<std::string_view> text);

} // namespace vorrano::platform
