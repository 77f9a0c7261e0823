#include "platform/OkAlert.h"

#include <string>

namespace vorrano::platform {

Alert okAlert(std::optional<std::string_view> messageText, std::string_view informativeText)
{
    return {std::optional<std::string>(messageText), {"OK"}, std::string(informativeText), AlertStyle::Informational};
}

void showError(Alerts& alerts, std::optional<std::string_view> text)
{
    if (text) {
        alerts.runModal(okAlert("ERROR", *text));
    }
}

} // namespace vorrano::platform
