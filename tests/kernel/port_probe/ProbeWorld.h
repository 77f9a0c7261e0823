#pragma once

#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qtcore/QtMainQueue.h"
#include "support/SerialSystem.h"

#include <thread>

namespace vorrano::kernel_test {

// All that the serial layer runs on in the program: its main queue, threads, terminals and device list.
//
// Lifetime: the application object outlives it; ports and the port manager are gone before it ends.
struct ProbeWorld {
    posix_platform::PosixSystemLog log;
    qt::QtMainQueue mainQueue{log};
    asio_platform::AsioBackgroundQueue background{log};

private:
    linux_platform::UdevDeviceRegistry m_registry{mainQueue};
    posix_platform::PosixTerminal m_terminal{m_registry};

public:
    support::SerialSystem serialSystem{log, mainQueue, background, m_terminal, m_registry};
};

} // namespace vorrano::kernel_test
