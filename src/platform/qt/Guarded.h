#pragma once

#include "platform/SystemLog.h"

#include <exception>
#include <string>

namespace vorrano::qt {

// Runs `work`; an exception that leaves it is written to the system log, and life goes on.
template <class Work>
void guarded(platform::SystemLog& log, Work&& work)
{
    try {
        work();
    } catch (const std::exception& exception) {
        log.write(std::string("Uncaught exception: ") + exception.what());
    } catch (...) {
        log.write("Uncaught exception of an unknown kind");
    }
}

} // namespace vorrano::qt
