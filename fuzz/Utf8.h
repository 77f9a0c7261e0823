#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vorrano::fuzz {

// Whether the bytes are well-formed UTF-8, by Unicode's own table of byte ranges: another way than the program's, which
// computes the characters.
inline bool isUtf8(std::string_view bytes)
{
    struct Range {
        unsigned char first;
        unsigned char last;
    };
    struct Sequence {
        std::size_t length;
        std::array<Range, 4> bytes;
    };
    constexpr Range kTail{0x80, 0xBF};
    constexpr std::array kSequences{
        Sequence{1, {Range{0x00, 0x7F}}},
        Sequence{2, {Range{0xC2, 0xDF}, kTail}},
        Sequence{3, {Range{0xE0, 0xE0}, Range{0xA0, 0xBF}, kTail}},
        Sequence{3, {Range{0xE1, 0xEC}, kTail, kTail}},
        Sequence{3, {Range{0xED, 0xED}, Range{0x80, 0x9F}, kTail}},
        Sequence{3, {Range{0xEE, 0xEF}, kTail, kTail}},
        Sequence{4, {Range{0xF0, 0xF0}, Range{0x90, 0xBF}, kTail, kTail}},
        Sequence{4, {Range{0xF1, 0xF3}, kTail, kTail, kTail}},
        Sequence{4, {Range{0xF4, 0xF4}, Range{0x80, 0x8F}, kTail, kTail}},
    };
    const auto begins = [&bytes](const Sequence& sequence) {
        return sequence.length <= bytes.size() &&
               std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(sequence.length),
                          sequence.bytes.begin(), [](char byte, const Range& range) {
                              const auto value = static_cast<unsigned char>(byte);
                              return value >= range.first && value <= range.last;
                          });
    };
    while (!bytes.empty()) {
        const auto* const found = std::find_if(kSequences.begin(), kSequences.end(), begins);
        if (found == kSequences.end()) {
            return false;
        }
        bytes.remove_prefix(found->length);
    }
    return true;
}

// The number of UTF-16 units of a well-formed text, by its lead bytes.
inline std::size_t unitsOf(std::string_view text)
{
    std::size_t units = 0;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        units += value >= 0xF0 ? 2 : (value & 0xC0U) != 0x80U ? 1 : 0;
    }
    return units;
}

} // namespace vorrano::fuzz
