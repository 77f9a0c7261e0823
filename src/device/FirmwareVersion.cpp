#include "device/FirmwareVersion.h"

#include "text/Text.h"

#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace vorrano::device {

namespace {
constexpr std::size_t kBeginOfVersion = 27;
constexpr std::int32_t kFirstLongVersion = 11;
// In bytes; much more than the characters that are read.
constexpr std::size_t kMostOfAnAnswer = 4096;
} // namespace

std::int32_t wholeVersion(double deviceVersion) { return text::saturatingInt32(std::floor(deviceVersion)); }

std::optional<std::string> firmwareAnswerOf(const std::optional<std::string>& body)
{
    if (body && !text::isUtf8(*body)) {
        return std::nullopt;
    }
    std::string_view kept = body ? std::string_view(*body) : std::string_view();
    kept = kept.substr(0, kMostOfAnAnswer);
    // Without the beginning of a character that was cut.
    while (!text::isUtf8(kept)) {
        kept.remove_suffix(1);
    }
    return std::string(kept);
}

double latestVersion(const std::optional<std::string>& answer, std::int32_t whole)
{
    if (!answer) {
        return 0;
    }
    const std::size_t length = whole >= kFirstLongVersion ? 5 : 4;
    const auto units = text::utf16FromText(*answer);
    if (units.size() < kBeginOfVersion + length) {
        throw std::out_of_range("the answer about the latest firmware is too short");
    }
    return text::doubleValue(text::textFromUtf16(units.substr(kBeginOfVersion, length)));
}

} // namespace vorrano::device
