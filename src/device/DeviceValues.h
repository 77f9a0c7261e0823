#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The values that the device knows by numbers of its own. Any thread.
namespace vorrano::device {

// Names and the device's numbers for them, in the order in which they are offered.
using NamedNumbers = std::vector<std::pair<std::string, std::uint16_t>>;

[[nodiscard]] NamedNumbers securityTypes();
[[nodiscard]] NamedNumbers temperatureUnits();

// The number of that name; none for a name that is not among them.
[[nodiscard]] std::optional<std::uint16_t> numberOf(const NamedNumbers& names, std::string_view name);

inline constexpr std::uint16_t kOpenNetwork = 0;
// Whether a network of that security type has a WEP key instead of a password.
[[nodiscard]] bool hasWepKey(std::optional<std::uint16_t> securityType);

// The throttle that was typed; none when the device does not take it.
[[nodiscard]] std::optional<std::int64_t> throttleOf(std::string_view typed);

// The unit that the device names in this reply; none when the reply is neither.
[[nodiscard]] std::optional<std::string_view> unitOfReply(std::string_view reply);

// Whether the reply says that the unit was set.
[[nodiscard]] bool isUnitAcknowledged(std::string_view reply);

} // namespace vorrano::device
