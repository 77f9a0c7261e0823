#include "serial_pty/rig/Pty.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

namespace vorrano::pty_rig {

namespace {

void require(int result, const char* what)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

} // namespace

Pty::Pty()
{
    int slave = -1;
    require(::openpty(&m_master, &slave, nullptr, nullptr, nullptr), "openpty");
    std::array<char, 128> name{};
    const auto named = ::ttyname_r(slave, name.data(), name.size()) == 0;
    ::close(slave);
    if (!named) {
        throw std::system_error(errno, std::generic_category(), "ttyname");
    }
    m_node = name.data();
    require(::fcntl(m_master, F_SETFL, O_NONBLOCK), "fcntl");
    require(::fcntl(m_master, F_SETFD, FD_CLOEXEC), "fcntl");
}

Pty::~Pty() { hangUp(); }

termios Pty::settings() const
{
    termios settings{};
    require(::tcgetattr(m_master, &settings), "tcgetattr");
    return settings;
}

bool Pty::send(std::string_view bytes) const
{
    return ::write(m_master, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

std::string Pty::receive() const
{
    std::string all;
    std::array<char, 4096> buffer{};
    for (auto count = ::read(m_master, buffer.data(), buffer.size()); count > 0;
         count = ::read(m_master, buffer.data(), buffer.size())) {
        all.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return all;
}

void Pty::hangUp()
{
    if (m_master >= 0) {
        ::close(std::exchange(m_master, -1));
    }
}

} // namespace vorrano::pty_rig
