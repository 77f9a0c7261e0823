#include "ctl/Progress.h"

#include "ctl/Console.h"
#include "device/FirmwareImage.h"

#include <algorithm>
#include <chrono>

namespace vorrano::ctl {

namespace {

constexpr std::size_t kBarWidth = 30;
constexpr std::string_view kClearLine = "\r\x1b[K";

std::string timeFor(std::size_t lines)
{
    const auto left = std::chrono::ceil<std::chrono::seconds>(device::kPauseAfterLine * lines).count();
    const auto seconds = std::to_string(left % 60) + " s";
    return left < 60 ? seconds : std::to_string(left / 60) + " min " + seconds;
}

std::string count(std::size_t lines, std::size_t total)
{
    return "line " + std::to_string(lines) + " of " + std::to_string(total);
}

} // namespace

Progress::Progress(Console& console, std::size_t linesOfImage)
    : m_console(console)
    , m_total(linesOfImage)
{}

void Progress::lineSent(const std::string& port, std::size_t lines)
{
    m_lines[port] = lines;
    if (m_console.isErrorTerminal()) {
        drawBar();
    } else if (lines * 10 / m_total != (lines - 1) * 10 / m_total) {
        m_console.error(port + ": " + count(lines, m_total) + "\n");
    }
}

void Progress::drawBar()
{
    const auto slowest = std::min_element(m_lines.begin(), m_lines.end(),
                                          [](const auto& a, const auto& b) { return a.second < b.second; });
    const auto lines = slowest->second;
    const auto filled = kBarWidth * lines / m_total;
    m_isShown = true;
    m_console.error(std::string(kClearLine) + "[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') +
                    "] " + std::to_string(100 * lines / m_total) + " %, " + count(lines, m_total) + ", about " +
                    timeFor(m_total - lines) + " left");
}

void Progress::end(const std::string& port)
{
    hide();
    m_lines.erase(port);
}

void Progress::hide()
{
    if (m_isShown) {
        m_isShown = false;
        m_console.error(kClearLine);
    }
}

} // namespace vorrano::ctl
