#pragma once

#include "platform/posix/PosixTerminal.h"
#include "serial_pty/rig/Pty.h"
#include "serial_pty/rig/PtyDevices.h"
#include "support/World.h"

#include <string>

namespace vorrano::contract {

inline constexpr const char* kPath = "/dev/cu.usbserial-CONTRACT";

// The program's terminals, and a pty with a device at its far end.
class RealLine {
public:
    RealLine();

    [[nodiscard]] platform::Terminal& terminal() { return m_terminal; }

    void reply(const std::string& bytes) const;
    // What the device has got since the last call, once there are as many bytes as expected or some seconds are over.
    [[nodiscard]] std::string written(std::size_t expected) const;
    void unplug() { m_pty.hangUp(); }

private:
    pty_rig::Pty m_pty;
    pty_rig::PtyDevices m_devices;
    posix_platform::PosixTerminal m_terminal{m_devices};
};

// The terminals of the tests.
class FakeLineOfWorld {
public:
    FakeLineOfWorld();

    [[nodiscard]] platform::Terminal& terminal() { return m_world.terminal; }

    void reply(const std::string& bytes) { m_line.reply(bytes); }
    [[nodiscard]] std::string written(std::size_t expected);
    void unplug() { m_line.unplug(); }

private:
    support::World m_world;
    support::FakeLine& m_line;
};

} // namespace vorrano::contract
