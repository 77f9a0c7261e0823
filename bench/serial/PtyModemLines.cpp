// libserialport opens no port without modem lines, and a pty has none. So here each terminal has them, all off: this
// stands in the program in place of the C library's call, for every library alike.
#include <cerrno>
#include <cstdarg>

#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    const auto result = ::syscall(SYS_ioctl, descriptor, request, argument);
    if (result < 0 && errno == ENOTTY) {
        switch (request) {
        case TIOCMGET:
            *static_cast<int*>(argument) = 0;
            return 0;
        case TIOCMSET:
        case TIOCMBIS:
        case TIOCMBIC:
            return 0;
        default:
            break;
        }
    }
    return static_cast<int>(result);
}
