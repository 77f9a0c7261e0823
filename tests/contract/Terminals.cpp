#include "contract/Terminals.h"

#include <stdexcept>

#include <poll.h>

namespace vorrano::contract {

namespace {

constexpr int kPatience = 10'000; // milliseconds

} // namespace

RealLine::RealLine() { m_devices.set(kPath, m_pty.node()); }

void RealLine::reply(const std::string& bytes) const
{
    if (!m_pty.send(bytes)) {
        throw std::runtime_error("the line does not take the reply");
    }
}

std::string RealLine::written(std::size_t expected) const
{
    std::string bytes = m_pty.receive();
    pollfd line{m_pty.master(), POLLIN, 0};
    while (bytes.size() < expected && ::poll(&line, 1, kPatience) > 0) {
        bytes += m_pty.receive();
    }
    return bytes;
}

FakeLineOfWorld::FakeLineOfWorld()
    : m_line(m_world.terminal.addLine(kPath))
{}

std::string FakeLineOfWorld::written(std::size_t /*expected*/)
{
    const auto bytes = m_line.written();
    m_line.forget();
    return bytes;
}

} // namespace vorrano::contract
