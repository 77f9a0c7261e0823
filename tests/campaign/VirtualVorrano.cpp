#include "campaign/VirtualVorrano.h"

#include <algorithm>
#include <utility>

namespace vorrano::campaign {

using namespace std::chrono_literals;

void VirtualVorrano::plug()
{
    m_pluggedIn = std::make_shared<int>(0);
    m_line = &m_world.plugVorrano();
    m_line->onWrite([this](const std::string& bytes) { received(bytes); });
}

void VirtualVorrano::unplug()
{
    if (!isPlugged()) {
        return;
    }
    m_pluggedIn.reset();
    m_onTheirWay = 0;
    m_device.cablePulled();
    m_world.unplug(*m_line);
}

void VirtualVorrano::received(const std::string& bytes)
{
    if (const auto told = std::exchange(m_beforeNextBytes, nullptr)) {
        told();
    }
    m_device.receive(bytes, m_world.now());
    act();
}

void VirtualVorrano::act()
{
    for (const auto& piece : m_device.takeOutput()) {
        ++m_onTheirWay;
        atTime(std::max(piece.due, m_world.now()) + kLatency, [this, piece] {
            --m_onTheirWay;
            say(piece);
        });
    }
    if (const auto next = m_device.nextEvent()) {
        atTime(*next, [this] {
            m_device.advance(m_world.now());
            act();
        });
    }
}

void VirtualVorrano::say(const simulator::Piece& piece)
{
    m_line->reply(piece.bytes);
    if (piece.hangUpAfter) {
        // By then the program has read what came before.
        atTime(m_world.now() + 1ms, [this] { unplug(); });
    }
}

void VirtualVorrano::atTime(support::Nanoseconds time, std::function<void()> task)
{
    m_world.time.at(time, [pluggedIn = std::weak_ptr(m_pluggedIn), task = std::move(task)] {
        if (!pluggedIn.expired()) {
            task();
        }
    });
}

} // namespace vorrano::campaign
