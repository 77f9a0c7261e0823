#pragma once

#include <optional>

class QCommandLineParser;

// The command line of the project's programs: `--help`, `--version`, the program's own options and those of Qt.
namespace vorrano::command_line {

// The program as its answers name it.
struct Program {
    const char* name;
    const char* description;
};

// The exit status of a program whose arguments can't be understood.
inline constexpr int kMisuse = 2;

// Reads the arguments and answers the person who typed them: help and version on standard output, an argument that
// nobody understands on standard error. Returns the status with which the program has to end now, nullopt when it goes
// on. The parser brings the program's own options and holds their values afterwards; Qt's options are left to Qt.
//
// Call it on the main thread, before the application object exists: it needs no display.
[[nodiscard]] std::optional<int> answer(int argc, char** argv, const Program& program, QCommandLineParser& parser);

// The same for a program without options of its own.
[[nodiscard]] std::optional<int> answer(int argc, char** argv, const Program& program);

// Says on standard error what is wrong with the arguments, and where to find help. Returns kMisuse.
[[nodiscard]] int refuse(const Program& program, const char* reason);

} // namespace vorrano::command_line
