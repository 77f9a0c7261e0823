#include "platform/posix/PosixSystemLog.h"

#include <cstddef>
#include <cstdint>

#include <syslog.h>
#include <unistd.h>

namespace vorrano::posix_platform {

namespace {

std::uint8_t byteAt(std::string_view text, std::size_t index) { return static_cast<std::uint8_t>(text[index]); }

// The length of the printable character that begins the text; 0 when its first byte has to be escaped.
std::size_t printableLength(std::string_view text)
{
    const std::uint8_t first = byteAt(text, 0);
    if (first < 0x80) {
        return first >= 0x20 && first != 0x7F ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    const std::uint8_t second = byteAt(text, 1);
    const bool control = first == 0xC2 && second < 0xA0;
    const bool tooLong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool beyond = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
    return control || tooLong || beyond ? 0 : length;
}

std::string escapedByte(std::uint8_t byte)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    switch (byte) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0x0FU]};
    }
}

} // namespace

std::string escapedLine(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        if (const std::size_t length = printableLength(text); length > 0) {
            line += text.substr(0, length);
            text.remove_prefix(length);
        } else {
            line += escapedByte(byteAt(text, 0));
            text.remove_prefix(1);
        }
    }
    return line;
}

PosixSystemLog::PosixSystemLog() { ::openlog(nullptr, LOG_PID, LOG_USER); }

void PosixSystemLog::write(std::string_view text)
{
    std::string line = escapedLine(text);
    ::syslog(LOG_NOTICE, "%s", line.c_str());
    line += '\n';
    // In one call, so that lines of several threads do not mix; there is nobody to tell of a failure.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace vorrano::posix_platform
