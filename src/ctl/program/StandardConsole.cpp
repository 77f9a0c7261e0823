#include "ctl/program/StandardConsole.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace vorrano::ctl {

void StandardConsole::output(std::string_view text)
{
    const auto written = std::fwrite(text.data(), 1, text.size(), stdout);
    const bool isOut = std::fflush(stdout) == 0 && written == text.size();
    if (!isOut && !m_failure) {
        m_failure.assign(errno, std::generic_category());
    }
}

void StandardConsole::error(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

bool StandardConsole::isErrorTerminal() const { return ::isatty(STDERR_FILENO) == 1; }

} // namespace vorrano::ctl
