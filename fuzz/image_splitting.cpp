// From the text of a firmware image to the single writes that carry it.
#include "device/FirmwareImage.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "fuzz/Utf8.h"

#include <algorithm>
#include <cstddef>

using namespace vorrano;
using fuzz::check;

namespace {

// The low 8 bits of a UTF-16 unit as a character in UTF-8.
std::string characterOf(unsigned unit)
{
    const auto low = unit & 0xFFU;
    if (low < 0x80) {
        return {static_cast<char>(low)};
    }
    return {static_cast<char>(0xC0U | (low >> 6U)), static_cast<char>(0x80U | (low & 0x3FU))};
}

// What a text is sent as, character by character from its UTF-8 form.
std::string sentFor(std::string_view text)
{
    std::string sent;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead == '\n') {
            continue;
        }
        const std::size_t more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        unsigned character = more == 0 ? lead : lead & (0x3FU >> more);
        for (std::size_t i = 0; i < more; ++i) {
            character = character << 6U | (static_cast<unsigned char>(text[++at]) & 0x3FU);
        }
        if (character >= 0x10000) {
            sent += characterOf(0xD800 + ((character - 0x10000) >> 10U));
            character = 0xDC00 + ((character - 0x10000) & 0x3FFU);
        }
        sent += characterOf(character);
    }
    return sent;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::Input(data, size).rest();
    const auto lines = device::linesOfImage(text);
    const auto feeds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    check(lines.size() == feeds + 1, "each line feed ends a line, and what follows the last is one too");
    std::string sent;
    for (const auto line : lines) {
        check(line.find('\n') == std::string_view::npos, "no line feed is sent");
        for (const auto& character : device::charactersOfLine(line)) {
            check(fuzz::isUtf8(character) && fuzz::unitsOf(character) == 1, "each write is one character");
            sent += character;
        }
    }
    // Only a text is ever sent.
    if (fuzz::isUtf8(text)) {
        check(sent == sentFor(text), "the text is sent whole and in order, without its line feeds");
    }
    return 0;
}
