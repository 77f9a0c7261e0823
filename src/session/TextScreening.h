#pragma once

#include <string_view>

// Tests on what was typed into a field that is sent to a place where certain characters have a meaning of their own.
// Exact characters only, not their look-alikes. Any thread.
namespace vorrano::session {

// Whether there is a "$", which the device takes for a space inside an SSID.
[[nodiscard]] bool hasDollarSign(std::string_view text);

// Whether there is any of "#", "?", "/" and "%", which mean something in an address.
[[nodiscard]] bool hasDisallowedRegistrationCharacters(std::string_view text);

} // namespace vorrano::session
