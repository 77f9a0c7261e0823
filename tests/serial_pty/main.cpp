#include "platform/posix/PosixTerminal.h"
#include "serial_pty/rig/PtyDevices.h"

#include <string_view>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// The other process of the tests: opens the node, and answers 0 or the errno.
int tryToOpen(const char* node)
{
    vorrano::pty_rig::PtyDevices devices;
    devices.set("device", node);
    vorrano::posix_platform::PosixTerminal terminal(devices);
    const auto line = terminal.open("device");
    if (!line.failed()) {
        // TIOCEXCL would outlive this process: the terminal keeps it for as long as anybody has the pty open.
        terminal.close(line.value);
    }
    return line.error;
}

} // namespace

int main(int count, char** arguments)
{
    if (count == 3 && std::string_view(arguments[1]) == "--try-to-open") {
        return tryToOpen(arguments[2]);
    }
    // A sanitizer starts a thread of its own with the program's first: it is counted with those that were there before.
    std::thread([] {}).join();
    testing::InitGoogleMock(&count, arguments);
    return RUN_ALL_TESTS();
}
