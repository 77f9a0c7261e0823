#pragma once

#include "platform/Alerts.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Everything that a person can do in the program's screens, and what comes of it when all is well.
namespace vorrano::campaign {

using platform::Alert;
using Alerts = std::vector<Alert>;
using Chunks = std::vector<std::string>;

enum class Screen { Login, Account, Register, Wifi, Utilities };

enum class Kind {
    Local,   // touches neither the line nor the service
    Request, // a request, or several in a row, of which the last waits for its reply for 2 s
    Reset,   // a request that waits for nothing
    Raw,     // bytes past the request queue; whatever comes back is shown, whenever it comes
    Upload,  // the dialogue with the bootloader, and an image
    Check,   // a raw query for the version, then the service's answer about the latest one
    SignIn,
    LoadAccount, // the choice of the tab
    SaveAccount,
    Register, // the choice of the tab, which asks for the MAC address; then the button
};

struct Action {
    std::string name;
    Screen screen = Screen::Utilities;
    Kind kind = Kind::Local;
    std::string button{};
    // What the person types or chooses before, by the names of the controls.
    std::vector<std::pair<std::string, std::string>> fields{};
    // What goes over the line, write by write, and what the device answers, chunk by chunk.
    Chunks writes{};
    Chunks reply{};
    // Whether bytes are the whole reply of a request.
    std::function<bool(const std::string& bytes)> isWhole{};
    // The alerts for what was received: for a whole reply as one chunk, of raw bytes chunk by chunk.
    std::function<Alerts(const Chunks& chunks)> shown{};
};

[[nodiscard]] std::vector<Action> allActions();

[[nodiscard]] Alert alertOf(std::optional<std::string> title, std::string text);
[[nodiscard]] Alert question(std::string text);

[[nodiscard]] bool usesLine(const Action& action);
[[nodiscard]] bool usesService(const Action& action);

} // namespace vorrano::campaign
