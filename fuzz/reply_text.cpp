// How the device's bytes and the service's texts are read: as UTF-8, as numbers, without the blanks at their ends.
#include "device/DeviceCommand.h"
#include "device/FirmwareVersion.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "fuzz/Utf8.h"
#include "text/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <stdexcept>

using namespace vorrano;
using fuzz::check;

namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

void checkDecoding(const std::string& bytes)
{
    const auto text = text::textFromUtf8(bytes);
    check(text.has_value() == fuzz::isUtf8(bytes), "exactly what is UTF-8 is a text");
    check(!text || *text == bytes, "a text is its bytes");

    const auto units = text::utf16FromText(bytes);
    check(text::utf16Length(bytes) == units.size(), "the length is that of the UTF-16 form");
    const auto back = text::textFromUtf16(units);
    check(fuzz::isUtf8(back), "UTF-16 of any bytes makes UTF-8");
    check(!text || (back == *text && units.size() == fuzz::unitsOf(*text)), "a text survives UTF-16");
}

void checkTrimming(const std::string& bytes)
{
    for (const auto trimming : {text::trimmingBlanks, text::trimmingBlanksAndLineEnds}) {
        const auto trimmed = trimming(bytes);
        check(bytes.find(trimmed) != std::string::npos, "trimming takes from the ends only");
        check(trimming(trimmed) == trimmed, "what is trimmed has nothing left to trim");
        check(trimming(" \t" + trimmed + "\xC2\xA0 ") == trimmed, "blanks around make no difference");
    }
    check(text::containsBlanks(bytes) || text::trimmingBlanks(bytes) == bytes,
          "what has no blanks has none at its end");
    const auto replaced = text::replacingAll(bytes, '$', ' ');
    check(replaced.size() == bytes.size() && replaced.find('$') == std::string::npos, "each sign is replaced by one");
}

std::int64_t digitsOf(const std::string& text)
{
    constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    for (auto digit = text.begin(); digit != text.end() && isDigit(*digit); ++digit) {
        const std::int64_t added = *digit - '0';
        value = value > (kLargest - added) / 10 ? kLargest : value * 10 + added;
    }
    return value;
}

// The C library reads hexadecimal, infinity and NaN as well.
bool mayDiffer(const std::string& text)
{
    const auto number = text.substr(std::min(text.find_first_not_of("+-"), text.size()));
    const auto digits = number.substr(number.starts_with("."));
    return digits.empty() || !isDigit(digits.front()) || text.size() - number.size() > 1 ||
           (number.size() > 1 && number[0] == '0' && (number[1] == 'x' || number[1] == 'X'));
}

void checkNumbers(const std::string& bytes)
{
    const double value = text::doubleValue(bytes);
    check(std::isfinite(value), "a number is finite");
    const bool beginsLikeOne =
        !bytes.empty() && (isDigit(bytes[0]) || bytes[0] == '.' || bytes[0] == '+' || bytes[0] == '-');
    if (beginsLikeOne && !mayDiffer(bytes)) {
        const double read = std::strtod(bytes.c_str(), nullptr);
        const bool isTiny = std::abs(read) < std::numeric_limits<double>::min();
        const bool isHuge = std::isinf(read) && std::abs(value) == std::numeric_limits<double>::max() &&
                            std::signbit(read) == std::signbit(value);
        check(value == read || isHuge || (isTiny && value == 0), "a number is what the C library reads");
    }
    if (!bytes.empty() && isDigit(bytes[0])) {
        check(text::integerValue(bytes) == digitsOf(bytes), "an integer is its digits, or the largest");
    }
    const auto throttle = device::throttleFromReply(bytes);
    check(throttle == text::saturatingInt32(std::round(value * 1.5)), "a throttle is the number times 1.5");
    const auto whole = device::wholeVersion(value);
    check(whole == std::numeric_limits<std::int32_t>::min() || whole <= value,
          "a whole version is not above the version");
}

void checkLatestVersion(const std::string& bytes, std::int32_t whole)
{
    const auto needed = static_cast<std::size_t>(whole >= 11 ? 32 : 31);
    try {
        check(std::isfinite(device::latestVersion(bytes, whole)), "a version is finite");
        check(text::utf16Length(bytes) >= needed, "a version is read of a text that is long enough");
    } catch (const std::out_of_range&) {
        check(text::utf16Length(bytes) < needed, "only a text that is too short has no version");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = fuzz::Input(data, size).rest();
    checkDecoding(bytes);
    checkTrimming(bytes);
    checkNumbers(bytes);
    checkLatestVersion(bytes, 9);
    checkLatestVersion(bytes, 11);
    return 0;
}
