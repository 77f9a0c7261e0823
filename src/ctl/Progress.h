#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace vorrano::ctl {

class Console;

// The progress of uploads, on standard error: on a terminal one line with a bar, of the device that has the most lines
// to go; elsewhere a line for each tenth of each device's image. Main thread.
class Progress {
public:
    Progress(Console& console, std::size_t linesOfImage);

    void lineSent(const std::string& port, std::size_t lines);
    // The device needs no more lines.
    void end(const std::string& port);
    // Takes the bar away, before another line is written; the next lineSent() brings it back.
    void hide();

private:
    void drawBar();

    Console& m_console;
    const std::size_t m_total;
    std::map<std::string, std::size_t> m_lines;
    bool m_isShown = false;
};

} // namespace vorrano::ctl
