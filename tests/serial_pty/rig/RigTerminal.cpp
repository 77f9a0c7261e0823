#include "serial_pty/rig/RigTerminal.h"

#include <cerrno>

namespace vorrano::pty_rig {

using platform::SystemResult;

SystemResult RigTerminal::open(const std::string& path)
{
    ++opens;
    return m_terminal.open(path);
}

SystemResult RigTerminal::setStatusFlags(int descriptor, int flags)
{
    return m_terminal.setStatusFlags(descriptor, flags);
}

SystemResult RigTerminal::attributes(int descriptor, platform::TerminalAttributes& into)
{
    return m_terminal.attributes(descriptor, into);
}

SystemResult RigTerminal::setAttributes(int descriptor, platform::ApplyAttributes when,
                                        const platform::TerminalAttributes& attributes)
{
    return m_terminal.setAttributes(descriptor, when, attributes);
}

SystemResult RigTerminal::setSpeed(platform::TerminalAttributes& attributes, std::uint64_t baud)
{
    return m_terminal.setSpeed(attributes, baud);
}

SystemResult RigTerminal::modemLines(int descriptor)
{
    ++polls;
    auto result = m_terminal.modemLines(descriptor);
    if (result.error == ENOTTY && linesOfALineWithout) {
        result = SystemResult{linesOfALineWithout()};
    }
    if (result.error != 0) {
        ++refusedPolls;
    }
    return result;
}

SystemResult RigTerminal::setModemLines(int descriptor, int lines)
{
    const auto result = m_terminal.setModemLines(descriptor, lines);
    return result.error == ENOTTY && linesOfALineWithout ? SystemResult{} : result;
}

SystemResult RigTerminal::waitReadable(int descriptor, std::chrono::microseconds limit)
{
    ++waits;
    return m_terminal.waitReadable(descriptor, limit);
}

void RigTerminal::wait(std::chrono::microseconds duration, std::chrono::microseconds leeway)
{
    m_terminal.wait(duration, leeway);
    // The poll's waits have a leeway, the reader's rounds have none.
    if (leeway.count() == 0) {
        ++roundsWaitedOut;
    }
}

SystemResult RigTerminal::read(int descriptor, std::span<std::byte> into)
{
    ++reads;
    return m_terminal.read(descriptor, into);
}

SystemResult RigTerminal::write(int descriptor, std::span<const std::byte> bytes)
{
    return m_terminal.write(descriptor, bytes);
}

SystemResult RigTerminal::close(int descriptor)
{
    ++closes;
    return m_terminal.close(descriptor);
}

void RigTerminal::release(int descriptor) { m_terminal.release(descriptor); }

} // namespace vorrano::pty_rig
