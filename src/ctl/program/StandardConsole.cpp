#include "ctl/program/StandardConsole.h"

#include <cstdio>

#include <unistd.h>

namespace vorrano::ctl {

void StandardConsole::output(std::string_view text)
{
    const auto written = std::fwrite(text.data(), 1, text.size(), stdout);
    m_isWhole = std::fflush(stdout) == 0 && written == text.size() && m_isWhole;
}

void StandardConsole::error(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

bool StandardConsole::isErrorTerminal() const { return ::isatty(STDERR_FILENO) == 1; }

} // namespace vorrano::ctl
