#include "platform/posix/PosixTerminalSpeeds.h"

#include <algorithm>
#include <iterator>

namespace vorrano::posix_platform {

namespace {

struct Rate {
    std::uint64_t baud;
    speed_t constant;
};

constexpr Rate kStandardRates[] = {
    {0, B0},
    {50, B50},
    {75, B75},
    {110, B110},
    {134, B134},
    {150, B150},
    {200, B200},
    {300, B300},
    {600, B600},
    {1200, B1200},
    {1800, B1800},
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
    {230400, B230400},
    {460800, B460800},
    {500000, B500000},
    {576000, B576000},
    {921600, B921600},
    {1000000, B1000000},
    {1152000, B1152000},
    {1500000, B1500000},
    {2000000, B2000000},
    {2500000, B2500000},
    {3000000, B3000000},
    {3500000, B3500000},
    {4000000, B4000000},
};

// The C library's mark for "input rate 0", which the kernel does not know.
constexpr tcflag_t kInputRateZero = 020000000000;

} // namespace

std::optional<speed_t> standardSpeed(std::uint64_t baud)
{
    const auto found = std::find_if(std::begin(kStandardRates), std::end(kStandardRates),
                                    [baud](const Rate& rate) { return rate.baud == baud; });
    return found == std::end(kStandardRates) ? std::nullopt : std::optional(found->constant);
}

bool saysCustomSpeed(const termios& record) { return (record.c_cflag & CBAUD) == kCustomRate; }

bool saysCustomInputSpeed(const termios& record) { return (record.c_cflag & CIBAUD) == kCustomInputRate; }

void joinInputRate(termios& record) { record.c_cflag &= ~static_cast<tcflag_t>(CIBAUD); }

KernelSettings kernelSettings(const platform::TerminalAttributes& attributes)
{
    const termios& record = attributes.record;
    KernelSettings settings;
    settings.input = record.c_iflag & ~kInputRateZero;
    settings.output = record.c_oflag;
    settings.control = record.c_cflag;
    settings.local = record.c_lflag;
    settings.discipline = record.c_line;
    std::copy_n(std::begin(record.c_cc), settings.characters.size(), settings.characters.begin());
    if (attributes.customSpeed) {
        settings.control = (settings.control & ~static_cast<tcflag_t>(CBAUD)) | kCustomRate;
        settings.outputSpeed = static_cast<std::uint32_t>(*attributes.customSpeed);
    }
    if (attributes.customInputSpeed) {
        settings.control = (settings.control & ~static_cast<tcflag_t>(CIBAUD)) | kCustomInputRate;
        settings.inputSpeed = static_cast<std::uint32_t>(*attributes.customInputSpeed);
    }
    return settings;
}

} // namespace vorrano::posix_platform
