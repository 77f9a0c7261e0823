#include "contract/Terminals.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace vorrano::contract {

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kLook{1};

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
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (bytes.size() < expected && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kLook);
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
