#include "device/DeviceValues.h"

#include "device/UtilitiesTexts.h"
#include "text/Text.h"

#include <algorithm>

namespace vorrano::device {

namespace {

constexpr std::uint16_t kWep128 = 1;
constexpr std::uint16_t kWep64 = 8;

// 20 is refused, though the message names it.
constexpr std::int64_t kSmallestThrottle = 21;
constexpr std::int64_t kLargestThrottle = 90;

constexpr std::string_view kZeroLine = "0\n\r";
constexpr std::string_view kOneLine = "1\n\r";
constexpr std::string_view kOkLine = "OK\n\r";

} // namespace

NamedNumbers securityTypes()
{
    return {{"Open", kOpenNetwork}, {"WEP-128", kWep128}, {"WPA1", 2},
            {"WPA mixed", 3},       {"WPA2", 4},          {"WEP-64", kWep64}};
}

NamedNumbers temperatureUnits()
{
    return {{std::string(utilities_text::kFahrenheit), 0}, {std::string(utilities_text::kCelsius), 1}};
}

std::optional<std::uint16_t> numberOf(const NamedNumbers& names, std::string_view name)
{
    const auto found = std::find_if(names.begin(), names.end(), [&](const auto& named) { return named.first == name; });
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

bool hasWepKey(std::optional<std::uint16_t> securityType) { return securityType == kWep128 || securityType == kWep64; }

std::optional<std::int64_t> throttleOf(std::string_view typed)
{
    const auto throttle = text::integerValue(typed);
    const bool isTaken = throttle >= kSmallestThrottle && throttle <= kLargestThrottle;
    return isTaken ? std::optional(throttle) : std::nullopt;
}

std::optional<std::string_view> unitOfReply(std::string_view reply)
{
    if (reply == kZeroLine) {
        return utilities_text::kFahrenheit;
    }
    if (reply == kOneLine) {
        return utilities_text::kCelsius;
    }
    return std::nullopt;
}

bool isUnitAcknowledged(std::string_view reply) { return reply == kOkLine; }

} // namespace vorrano::device
