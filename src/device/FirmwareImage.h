#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The firmware image: a text file that is sent as it stands, but for its "\n". It is not parsed; a byte-order mark at
// its beginning is a character like any other.
namespace vorrano::device {

// The whole text; none when the file is not UTF-8. std::runtime_error when it can't be read, or is no regular file.
// The error names no path.
[[nodiscard]] std::optional<std::string> readFirmwareImage(const std::filesystem::path& file);

// What stands between the "\n"s; a "\r" stays at its line's end, and what follows the last "\n" is a line too, often
// an empty one. An empty text is one empty line.
[[nodiscard]] std::vector<std::string_view> linesOfImage(std::string_view image);

// What is written for each character (UTF-16 unit) of a line: its low 8 bits as one character, in UTF-8.
[[nodiscard]] std::vector<std::string> charactersOfLine(std::string_view line);

} // namespace vorrano::device
