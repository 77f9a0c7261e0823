#include "platform/posix/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace vorrano::posix_platform {

void occupyStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    ::close(descriptor);
}

} // namespace vorrano::posix_platform
