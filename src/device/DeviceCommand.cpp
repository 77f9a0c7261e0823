#include "device/DeviceCommand.h"

#include "text/Text.h"

#include <cmath>

namespace vorrano::device {

namespace {

constexpr double kThrottleFactor = 1.5;

std::string characterOf(std::uint16_t unit)
{
    return text::textFromUtf16(std::u16string(1, static_cast<char16_t>(unit)));
}

} // namespace

std::string bytesOf(DeviceCommand command) { return {descriptionOf(command).code}; }

serial::ResponseEvaluator evaluatorOf(DeviceCommand command)
{
    const auto& test = descriptionOf(command).replyTest;
    if (!test) {
        return {};
    }
    return [test = *test](const serial::Bytes& received) { return test.isWhole(received); };
}

std::string endMark() { return std::string(1, '\0'); }

std::string replaceSSIDSpacesWithDollarSign(std::string_view ssid) { return text::replacingAll(ssid, ' ', '$'); }

std::string replaceDollarSignWithSpaces(std::string_view reply) { return text::replacingAll(reply, '$', ' '); }

std::string characterOfLow16Bits(std::int64_t number) { return characterOf(static_cast<std::uint16_t>(number)); }

std::string characterOfLow8Bits(std::int64_t number) { return characterOf(static_cast<std::uint8_t>(number)); }

std::int64_t storedThrottle(std::int64_t throttle)
{
    return static_cast<std::int64_t>(static_cast<double>(throttle) / kThrottleFactor);
}

std::int32_t throttleFromReply(std::string_view reply)
{
    return text::saturatingInt32(std::round(text::doubleValue(reply) * kThrottleFactor));
}

} // namespace vorrano::device
