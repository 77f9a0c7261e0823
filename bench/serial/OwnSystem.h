#pragma once

#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qtcore/QtMainQueue.h"
#include "serial_pty/rig/PtyDevices.h"
#include "support/SerialSystem.h"

#include <memory>
#include <string>

namespace vorrano::serial {
class SerialPort;
}

namespace vorrano::bench {

// What this project's serial ports run on in the program: Qt's main loop, asio's queues, Linux's terminals.
//
// Threads: the main thread.
// Lifetime: outlives its ports.
class OwnSystem {
public:
    OwnSystem() = default;
    OwnSystem(const OwnSystem&) = delete;
    OwnSystem& operator=(const OwnSystem&) = delete;
    ~OwnSystem();

    [[nodiscard]] std::shared_ptr<serial::SerialPort> makePort(const std::string& node);

private:
    posix_platform::PosixSystemLog m_log;
    qt::QtMainQueue m_mainQueue{m_log};
    asio_platform::AsioBackgroundQueue m_backgroundQueue{m_log};
    pty_rig::PtyDevices m_devices;
    posix_platform::PosixTerminal m_terminal{m_devices};
    support::SerialSystem m_system{m_log, m_mainQueue, m_backgroundQueue, m_terminal, m_devices};
};

} // namespace vorrano::bench
