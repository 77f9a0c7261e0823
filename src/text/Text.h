#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// How text is measured, trimmed and read, everywhere in the program. Text is UTF-8; nothing here depends on the
// locale, and everything may be called on any thread.
namespace vorrano::text {

// The number of UTF-16 code units; what the program calls a text's length. Each byte that is no UTF-8 counts as one.
[[nodiscard]] std::size_t utf16Length(std::string_view text);

// Blanks are the Unicode space separators and the tab; line ends are none.
[[nodiscard]] std::string trimmingBlanks(std::string_view text);
[[nodiscard]] bool containsBlanks(std::string_view text);

// Blanks, and the line ends U+000A to U+000D, U+0085, U+2028 and U+2029.
[[nodiscard]] std::string trimmingBlanksAndLineEnds(std::string_view text);

// White space at the start is skipped, then decimal digits are taken; 0 when there are none. Saturates.
[[nodiscard]] std::int64_t integerValue(std::string_view text);

// White space at the start is skipped, then a decimal number (sign, digits, fraction, exponent) is taken; 0 when there
// is none. No hexadecimal, infinity or NaN.
[[nodiscard]] double doubleValue(std::string_view text);

// Toward zero; what does not fit becomes the nearest that does, NaN becomes 0.
[[nodiscard]] std::int32_t saturatingInt32(double value);

// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes);

// The bytes as text; none when they are not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> textFromUtf8(std::string_view bytes);

[[nodiscard]] std::u16string utf16FromText(std::string_view text);
// A lone surrogate becomes U+FFFD.
[[nodiscard]] std::string textFromUtf16(std::u16string_view units);

[[nodiscard]] std::string replacingAll(std::string_view text, char from, char to);

} // namespace vorrano::text
