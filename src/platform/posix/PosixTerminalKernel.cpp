#include "platform/posix/PosixTerminalKernel.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

// The kernel's header names its records as the C library's <termios.h> does: one file can't have both.
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace vorrano::posix_platform {

namespace {

static_assert(kCustomRate == BOTHER);
static_assert(kInputRateShift == IBSHIFT);

int apply(int descriptor, unsigned long request, const KernelSettings& settings)
{
    termios2 record{};
    record.c_iflag = settings.input;
    record.c_oflag = settings.output;
    record.c_cflag = settings.control;
    record.c_lflag = settings.local;
    record.c_line = settings.discipline;
    static_assert(sizeof(record.c_cc) == sizeof(settings.characters));
    std::copy(settings.characters.begin(), settings.characters.end(), std::begin(record.c_cc));
    record.c_ispeed = settings.inputSpeed;
    record.c_ospeed = settings.outputSpeed;
    return ::ioctl(descriptor, request, &record) == 0 ? 0 : errno;
}

} // namespace

int readKernelSettings(int descriptor, KernelSettings& into)
{
    termios2 record{};
    if (::ioctl(descriptor, TCGETS2, &record) != 0) {
        return errno;
    }
    into.input = record.c_iflag;
    into.output = record.c_oflag;
    into.control = record.c_cflag;
    into.local = record.c_lflag;
    into.discipline = record.c_line;
    std::copy(std::begin(record.c_cc), std::end(record.c_cc), into.characters.begin());
    into.outputSpeed = record.c_ospeed;
    into.inputSpeed = record.c_ispeed;
    return 0;
}

int applyNow(int descriptor, const KernelSettings& settings) { return apply(descriptor, TCSETS2, settings); }

int applyAfterDrain(int descriptor, const KernelSettings& settings) { return apply(descriptor, TCSETSW2, settings); }

} // namespace vorrano::posix_platform
