#pragma once

#include <exception>

namespace vorrano::platform {

class SystemLog;

// Writes the exception to the log, whatever happens there.
void logUncaught(SystemLog& log, const char* what) noexcept;

// Runs `work` of somebody else. An exception that leaves it is written to the system log, and the caller goes on.
template <class Work>
void guarded(SystemLog& log, Work&& work) noexcept
{
    try {
        work();
    } catch (const std::exception& exception) {
        logUncaught(log, exception.what());
    } catch (...) {
        logUncaught(log, "not a std::exception");
    }
}

} // namespace vorrano::platform
