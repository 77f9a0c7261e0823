#include "text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace vorrano::text {

namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;

// The character at the start of a text, and how many bytes it takes. A byte that is no UTF-8 is a character of its own.
struct Decoded {
    char32_t character = kReplacementCharacter;
    std::size_t length = 1;
    bool wellFormed = false;
};

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

bool isSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

// What a lead byte announces: the length of its sequence, its own bits, and the smallest character that needs as many.
struct Lead {
    std::size_t length;
    char32_t bits;
    char32_t smallest;
};

std::optional<Lead> leadOf(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0x80) {
        return Lead{1, byte, 0};
    }
    if ((byte & 0xE0U) == 0xC0) {
        return Lead{2, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0U) == 0xE0) {
        return Lead{3, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8U) == 0xF0) {
        return Lead{4, byte & 0x07U, 0x10000};
    }
    return std::nullopt;
}

Decoded firstCharacter(std::string_view text)
{
    const auto lead = leadOf(text.front());
    if (!lead || text.size() < lead->length) {
        return {};
    }
    auto character = lead->bits;
    for (const char byte : text.substr(1, lead->length - 1)) {
        if (!isContinuation(byte)) {
            return {};
        }
        character = (character << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    if (character < lead->smallest || character > 0x10FFFF || isSurrogate(character)) {
        return {};
    }
    return {character, lead->length, true};
}

void appendUtf8(std::string& text, char32_t character)
{
    const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80) {
        append(character);
        return;
    }
    if (character < 0x800) {
        append(0xC0U | (character >> 6U));
    } else if (character < 0x10000) {
        append(0xE0U | (character >> 12U));
        append(0x80U | ((character >> 6U) & 0x3FU));
    } else {
        append(0xF0U | (character >> 18U));
        append(0x80U | ((character >> 12U) & 0x3FU));
        append(0x80U | ((character >> 6U) & 0x3FU));
    }
    append(0x80U | (character & 0x3FU));
}

bool isBlank(char32_t character)
{
    constexpr std::array<char32_t, 7> kSingle = {0x09, 0x20, 0xA0, 0x1680, 0x202F, 0x205F, 0x3000};
    return std::find(kSingle.begin(), kSingle.end(), character) != kSingle.end() ||
           (character >= 0x2000 && character <= 0x200A);
}

bool isBlankOrLineEnd(char32_t character)
{
    return isBlank(character) || (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

using CharacterTest = bool (*)(char32_t);

std::string_view droppingAtStart(std::string_view text, CharacterTest isDropped)
{
    while (!text.empty()) {
        const auto first = firstCharacter(text);
        if (!isDropped(first.character)) {
            break;
        }
        text.remove_prefix(first.length);
    }
    return text;
}

std::string_view trimming(std::string_view text, CharacterTest isDropped)
{
    const auto rest = droppingAtStart(text, isDropped);
    std::size_t end = 0;
    for (std::size_t at = 0; at < rest.size();) {
        const auto next = firstCharacter(rest.substr(at));
        at += next.length;
        if (!isDropped(next.character)) {
            end = at;
        }
    }
    return rest.substr(0, end);
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Of a number that fits no double: whether it is too large rather than too small.
bool isTooLarge(std::string_view number)
{
    const auto exponentMark = number.find_first_of("eE");
    const auto digits = number.substr(0, exponentMark);
    std::int64_t exponent = 0;
    if (exponentMark != std::string_view::npos) {
        auto written = number.substr(exponentMark + 1);
        const bool negative = written.front() == '-';
        if (negative || written.front() == '+') {
            written.remove_prefix(1);
        }
        // Halved, so that the digits before and after the point can be counted in.
        exponent = integerValue(written) / 2;
        exponent = negative ? -exponent : exponent;
    }
    const auto point = std::min(digits.find('.'), digits.size());
    const auto firstNonZero = std::min(digits.find_first_of("123456789"), digits.size());
    return (static_cast<std::int64_t>(point) - static_cast<std::int64_t>(firstNonZero)) / 2 + exponent > 0;
}

} // namespace

std::size_t utf16Length(std::string_view text) { return utf16FromText(text).size(); }

std::string trimmingBlanks(std::string_view text) { return std::string(trimming(text, isBlank)); }

std::string trimmingBlanksAndLineEnds(std::string_view text) { return std::string(trimming(text, isBlankOrLineEnd)); }

bool containsBlanks(std::string_view text)
{
    while (!text.empty()) {
        const auto first = firstCharacter(text);
        if (isBlank(first.character)) {
            return true;
        }
        text.remove_prefix(first.length);
    }
    return false;
}

std::int64_t integerValue(std::string_view text)
{
    const auto number = droppingAtStart(text, isBlankOrLineEnd);
    if (number.empty() || !isDigit(number.front())) {
        return 0;
    }
    std::int64_t value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<std::int64_t>::max() : value;
}

double doubleValue(std::string_view text)
{
    auto number = droppingAtStart(text, isBlankOrLineEnd);
    const bool negative = !number.empty() && number.front() == '-';
    if (negative || (!number.empty() && number.front() == '+')) {
        number.remove_prefix(1);
    }
    const auto firstDigit = number.substr(0, 1) == "." ? number.substr(1) : number;
    if (firstDigit.empty() || !isDigit(firstDigit.front())) {
        return 0;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        const auto written = number.substr(0, static_cast<std::size_t>(end - number.data()));
        value = isTooLarge(written) ? std::numeric_limits<double>::max() : 0;
    }
    return negative ? -value : value;
}

std::int32_t saturatingInt32(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    const double smallest = std::numeric_limits<std::int32_t>::min();
    const double largest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(value, smallest, largest));
}

bool isUtf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto first = firstCharacter(bytes);
        if (!first.wellFormed) {
            return false;
        }
        bytes.remove_prefix(first.length);
    }
    return true;
}

std::optional<std::string> textFromUtf8(std::string_view bytes)
{
    return isUtf8(bytes) ? std::optional<std::string>(bytes) : std::nullopt;
}

std::u16string utf16FromText(std::string_view text)
{
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const auto [character, length, wellFormed] = firstCharacter(text);
        text.remove_prefix(length);
        if (character < 0x10000) {
            units += static_cast<char16_t>(character);
            continue;
        }
        units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10U));
        units += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FFU));
    }
    return units;
}

std::string textFromUtf16(std::u16string_view units)
{
    std::string text;
    text.reserve(units.size());
    for (std::size_t at = 0; at < units.size(); ++at) {
        const char32_t unit = units[at];
        if (!isSurrogate(unit)) {
            appendUtf8(text, unit);
            continue;
        }
        const char32_t next = at + 1 < units.size() ? units[at + 1] : 0;
        if (unit >= 0xDC00 || next < 0xDC00 || next > 0xDFFF) {
            appendUtf8(text, kReplacementCharacter);
            continue;
        }
        appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00));
        ++at;
    }
    return text;
}

std::string replacingAll(std::string_view text, char from, char to)
{
    std::string replaced(text);
    std::replace(replaced.begin(), replaced.end(), from, to);
    return replaced;
}

} // namespace vorrano::text
