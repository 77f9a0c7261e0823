#include "platform/Guarded.h"

#include "platform/SystemLog.h"

#include <string>

namespace vorrano::platform {

void logUncaught(SystemLog& log, const char* what) noexcept
{
    try {
        log.write(std::string("Uncaught exception: ") + what);
    } catch (...) {
        // There is nobody left to tell.
    }
}

} // namespace vorrano::platform
