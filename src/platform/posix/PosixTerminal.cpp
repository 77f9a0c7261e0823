#include "platform/posix/PosixTerminal.h"

#include "platform/posix/PosixTerminalSpeeds.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace vorrano::posix_platform {

using platform::SystemResult;

namespace {

SystemResult resultOf(ssize_t returned)
{
    const int value = static_cast<int>(returned);
    return {value, returned < 0 ? errno : 0};
}

SystemResult failureWith(int error) { return {-1, error}; }

// A length that a result can hold.
std::size_t limited(std::size_t length) { return std::min<std::size_t>(length, INT_MAX); }

// Asks the kernel for the rates that the record itself can't hold; 0, or the errno of the failing call.
int readCustomSpeeds(int descriptor, platform::TerminalAttributes& attributes)
{
    const bool output = saysCustomSpeed(attributes.record);
    const bool input = saysCustomInputSpeed(attributes.record);
    if (!output && !input) {
        return 0;
    }
    KernelSettings settings;
    if (const int error = readKernelSettings(descriptor, settings); error != 0) {
        return error;
    }
    if (output) {
        attributes.customSpeed = settings.outputSpeed;
    }
    if (input) {
        attributes.customInputSpeed = settings.inputSpeed;
    }
    return 0;
}

// Takes the open line for this opener alone; 0 or the errno of the refusal.
int takeForOneself(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? EBUSY : errno;
    }
    // Some drivers, and what stands in for a terminal in a test, know no such request; the lock does then.
    if (::ioctl(descriptor, TIOCEXCL) != 0 && errno != ENOTTY && errno != EINVAL) {
        return errno;
    }
    return 0;
}

// Both fail on a line that is gone, which nobody can open anyway.
void giveToOthers(int descriptor)
{
    ::ioctl(descriptor, TIOCNXCL);
    ::flock(descriptor, LOCK_UN);
}

// How late the kernel may end the calling thread's waits; zero gives the thread its default back.
void setTimerSlack(std::chrono::nanoseconds slack) { ::prctl(PR_SET_TIMERSLACK, slack.count()); }

} // namespace

PosixTerminal::PosixTerminal(const platform::DeviceRegistry& registry)
    : m_registry(registry)
    , m_null(::open("/dev/null", O_RDWR | O_CLOEXEC))
{
    if (m_null < 0) {
        throw std::system_error(errno, std::generic_category(), "/dev/null");
    }
}

PosixTerminal::~PosixTerminal() { ::close(m_null); }

SystemResult PosixTerminal::open(const std::string& path)
{
    const auto node = m_registry.nodeOfCalloutPath(path);
    if (!node) {
        return failureWith(ENOENT);
    }
    const int descriptor = ::open(node->c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return resultOf(descriptor);
    }
    if (const int refusal = takeForOneself(descriptor); refusal != 0) {
        ::close(descriptor);
        return failureWith(refusal);
    }
    return {descriptor, 0};
}

SystemResult PosixTerminal::setStatusFlags(int descriptor, int flags)
{
    return resultOf(::fcntl(descriptor, F_SETFL, flags));
}

SystemResult PosixTerminal::attributes(int descriptor, platform::TerminalAttributes& into)
{
    platform::TerminalAttributes read;
    if (const auto result = resultOf(::tcgetattr(descriptor, &read.record)); result.failed()) {
        return result;
    }
    if (const int error = readCustomSpeeds(descriptor, read); error != 0) {
        return failureWith(error);
    }
    into = read;
    return {};
}

SystemResult PosixTerminal::setAttributes(int descriptor, platform::ApplyAttributes when,
                                          const platform::TerminalAttributes& attributes)
{
    const bool drained = when == platform::ApplyAttributes::AfterDrain;
    if (!attributes.customSpeed && !attributes.customInputSpeed) {
        return resultOf(::tcsetattr(descriptor, drained ? TCSADRAIN : TCSANOW, &attributes.record));
    }
    const auto settings = kernelSettings(attributes);
    const int error = drained ? applyAfterDrain(descriptor, settings) : applyNow(descriptor, settings);
    return error == 0 ? SystemResult{} : failureWith(error);
}

SystemResult PosixTerminal::setSpeed(platform::TerminalAttributes& attributes, std::uint64_t baud)
{
    const auto speed = standardSpeed(baud);
    if (!speed && baud > UINT32_MAX) {
        return failureWith(EINVAL);
    }
    // The C library changes the output's rate only, which is the input's too unless another program has split them.
    joinInputRate(attributes.record);
    attributes.customInputSpeed.reset();
    if (!speed) {
        attributes.customSpeed = baud;
        return {};
    }
    attributes.customSpeed.reset();
    return resultOf(::cfsetspeed(&attributes.record, *speed));
}

SystemResult PosixTerminal::modemLines(int descriptor)
{
    int lines = 0;
    if (::ioctl(descriptor, TIOCMGET, &lines) == 0) {
        return {lines, 0};
    }
    // What the kernel answers once the adapter has been pulled.
    return failureWith(errno == EIO || errno == ENODEV ? ENXIO : errno);
}

SystemResult PosixTerminal::setModemLines(int descriptor, int lines)
{
    return resultOf(::ioctl(descriptor, TIOCMSET, &lines));
}

SystemResult PosixTerminal::waitReadable(int descriptor, std::chrono::microseconds limit)
{
    const auto whole = std::max(limit, std::chrono::microseconds(0));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(whole);
    const std::chrono::nanoseconds rest = whole - seconds;
    const timespec time{seconds.count(), rest.count()};
    pollfd waited{descriptor, POLLIN, 0};
    const auto result = resultOf(::ppoll(&waited, 1, &time, nullptr));
    if (result.value > 0 && (waited.revents & POLLNVAL) != 0) {
        return failureWith(EBADF);
    }
    return result;
}

void PosixTerminal::wait(std::chrono::microseconds duration, std::chrono::microseconds leeway)
{
    setTimerSlack(leeway);
    std::this_thread::sleep_for(duration);
    // The thread belongs to the pool and runs other work next: give it the default back.
    setTimerSlack({});
}

SystemResult PosixTerminal::read(int descriptor, std::span<std::byte> into)
{
    return resultOf(::read(descriptor, into.data(), limited(into.size())));
}

SystemResult PosixTerminal::write(int descriptor, std::span<const std::byte> bytes)
{
    return resultOf(::write(descriptor, bytes.data(), limited(bytes.size())));
}

SystemResult PosixTerminal::close(int descriptor)
{
    // Putting /dev/null over a number that is not open would open it.
    if (::fcntl(descriptor, F_GETFD) < 0) {
        return failureWith(errno);
    }
    giveToOthers(descriptor);
    if (::dup3(m_null, descriptor, O_CLOEXEC) < 0) {
        const int error = errno;
        takeForOneself(descriptor);
        return failureWith(error);
    }
    return {};
}

void PosixTerminal::release(int descriptor) { ::close(descriptor); }

} // namespace vorrano::posix_platform
