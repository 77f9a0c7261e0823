#include "Port.h"

#include <sys/resource.h>

namespace vorrano::bench {

Microseconds Port::cpuTime() const
{
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    const auto spent = [](const timeval& time) {
        return Microseconds(std::chrono::seconds(time.tv_sec)) + Microseconds(time.tv_usec);
    };
    return spent(used.ru_utime) + spent(used.ru_stime);
}

} // namespace vorrano::bench
