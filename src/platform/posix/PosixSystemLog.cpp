#include "platform/posix/PosixSystemLog.h"

#include "text/EscapedLine.h"

#include <string>

#include <syslog.h>
#include <unistd.h>

namespace vorrano::posix_platform {

PosixSystemLog::PosixSystemLog() { ::openlog(nullptr, LOG_PID, LOG_USER); }

void PosixSystemLog::write(std::string_view what)
{
    std::string line = text::escapedLine(what);
    ::syslog(LOG_NOTICE, "%s", line.c_str());
    line += '\n';
    // In one call, so that lines of several threads do not mix; there is nobody to tell of a failure.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace vorrano::posix_platform
