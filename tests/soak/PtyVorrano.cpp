#include "soak/PtyVorrano.h"

#include "serial_pty/rig/Pty.h"

#include <array>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace vorrano::soak {

PtyVorrano::PtyVorrano()
    : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_thread([this] { serve(); })
{}

PtyVorrano::~PtyVorrano()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    wakeUp();
    m_thread.join();
    ::close(m_wake);
}

std::string PtyVorrano::plug()
{
    auto pty = std::make_unique<pty_rig::Pty>();
    auto settings = pty->settings();
    cfmakeraw(&settings);
    tcsetattr(pty->master(), TCSANOW, &settings);
    auto node = pty->node();
    {
        const std::lock_guard lock(m_mutex);
        m_pty = std::move(pty);
    }
    wakeUp();
    return node;
}

void PtyVorrano::unplug()
{
    std::unique_ptr<pty_rig::Pty> pulled;
    {
        const std::lock_guard lock(m_mutex);
        m_device.cablePulled();
        pulled = std::move(m_pty);
    }
    wakeUp();
}

std::size_t PtyVorrano::imageSize()
{
    const std::lock_guard lock(m_mutex);
    return m_device.image().bytes.size();
}

std::string PtyVorrano::takeImage()
{
    const std::lock_guard lock(m_mutex);
    while (m_device.nextEvent()) {
        skipToNextEvent();
    }
    // Its greeting is no answer to anything.
    static_cast<void>(m_device.takeOutput());
    return m_device.image().bytes;
}

void PtyVorrano::skipToNextEvent()
{
    m_clock = *m_device.nextEvent();
    m_device.advance(m_clock);
}

void PtyVorrano::wakeUp() const { eventfd_write(m_wake, 1); }

void PtyVorrano::serve()
{
    while (true) {
        std::array<pollfd, 2> waits{pollfd{m_wake, POLLIN, 0}, pollfd{-1, POLLIN, 0}};
        {
            const std::lock_guard lock(m_mutex);
            waits[1].fd = m_pty ? m_pty->master() : -1;
        }
        ::poll(waits.data(), waits.size(), -1);
        eventfd_t ignored = 0;
        eventfd_read(m_wake, &ignored);
        const std::lock_guard lock(m_mutex);
        if (m_ending) {
            return;
        }
        if (m_pty) {
            work();
        }
    }
}

void PtyVorrano::work()
{
    const auto bytes = m_pty->receive();
    m_device.receive(bytes, m_clock);
    // Else what has come would be kept for ever.
    m_device.clearReceived();
    if (m_device.mode() == simulator::SimulatedVorrano::Mode::Restarting && bytes.find('b') != std::string::npos) {
        skipToNextEvent();
    }
    for (const auto& piece : m_device.takeOutput()) {
        m_pty->send(piece.bytes);
    }
}

} // namespace vorrano::soak
