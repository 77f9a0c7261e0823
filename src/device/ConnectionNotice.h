#pragma once

#include <optional>
#include <string>

// The notice at the top of a device tab: why the tab's commands reach no Vorrano. All that it says is decided here.
namespace vorrano::device {

// Why a port could not be opened.
struct PortRefusal {
    // The errno of the open.
    int error = 0;
    // The group whose members may use the port, if there is one.
    std::optional<std::string> group;
    // The program that has the port open, as far as the system tells.
    std::optional<std::string> program;
};

// What the notice depends on.
struct TabConnection {
    // Whether a Vorrano's port is among the listed ones.
    bool isVorranoListed = false;
    // Whether the tab has a port that is among the listed ones.
    bool isPortListed = false;
    // Why the tab's port could not be opened; none when it could.
    std::optional<PortRefusal> refusal;
};

// None when nothing is wrong: the notice is hidden then. Any thread.
[[nodiscard]] std::optional<std::string> connectionNotice(const TabConnection& connection);

} // namespace vorrano::device
