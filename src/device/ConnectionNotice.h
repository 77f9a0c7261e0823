#pragma once

#include <optional>
#include <string_view>

// The notice at the top of a device tab: why the tab's commands reach no Vorrano. All that it says is decided here.
namespace vorrano::device {

// What the notice depends on.
struct TabConnection {
    // Whether a Vorrano's port is among the listed ones.
    bool isVorranoListed = false;
    // Whether the tab has a port that is among the listed ones.
    bool isPortListed = false;
};

// None when nothing is wrong: the notice is hidden then. Any thread.
[[nodiscard]] std::optional<std::string_view> connectionNotice(const TabConnection& connection);

} // namespace vorrano::device
