#include "device/FirmwareImage.h"

#include "device/DeviceCommand.h"
#include "text/Text.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vorrano::device {

namespace {

std::string bytesOfFile(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        throw std::runtime_error("the firmware image is no regular file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream.is_open()) {
        throw std::runtime_error("the firmware image can't be read");
    }
    // A read that fails throws, too.
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

std::optional<std::string> readFirmwareImage(const std::filesystem::path& file)
{
    return text::textFromUtf8(bytesOfFile(file));
}

std::vector<std::string_view> linesOfImage(std::string_view image)
{
    std::vector<std::string_view> lines;
    while (true) {
        const auto end = image.find('\n');
        lines.push_back(image.substr(0, end));
        if (end == std::string_view::npos) {
            return lines;
        }
        image.remove_prefix(end + 1);
    }
}

std::vector<std::string> charactersOfLine(std::string_view line)
{
    std::vector<std::string> characters;
    const auto units = text::utf16FromText(line);
    characters.reserve(units.size());
    for (const auto unit : units) {
        characters.push_back(characterOfLow8Bits(unit));
    }
    return characters;
}

} // namespace vorrano::device
