#pragma once

#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/posix/PosixTerminal.h"
#include "serial_pty/rig/MainLoop.h"
#include "serial_pty/rig/PtyDevices.h"
#include "serial_pty/rig/RigTerminal.h"
#include "support/FakeSystem.h"
#include "support/SerialSystem.h"

#include <cstddef>
#include <thread>

namespace vorrano::pty_rig {

// What the serial layer runs on in the program: the real queues, threads and terminals, without a window.
//
// Lifetime: ports are closed and gone before it ends.
class PtyParts {
public:
    PtyParts() = default;
    PtyParts(const PtyParts&) = delete;
    PtyParts& operator=(const PtyParts&) = delete;
    ~PtyParts() { loop.end(); }

    support::FakeSystemLog log;
    PtyDevices devices;

private:
    posix_platform::PosixTerminal m_linux{devices};

public:
    RigTerminal terminal{m_linux};
    MainLoop loop{log};
    asio_platform::AsioBackgroundQueue background{log};
};

// The serial layer on them.
class PtyWorld : public PtyParts {
private:
    support::SerialSystem m_system{log, loop, background, terminal, devices};
};

// What this process has: open files, and threads.
[[nodiscard]] std::size_t openFiles();
[[nodiscard]] std::size_t threads();

// The threads once there are as many as expected, and at the latest after some seconds: the kernel lists a thread that
// was joined a moment longer.
[[nodiscard]] std::size_t threadsInTheEnd(std::size_t expected);

} // namespace vorrano::pty_rig
