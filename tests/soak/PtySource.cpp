#include "soak/PtySource.h"

#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace vorrano::soak {

using linux_platform::TtyAdded;
using linux_platform::TtyEvent;
using linux_platform::TtyFacts;
using linux_platform::TtyRemoved;

PtySource::PtySource()
    : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{}

PtySource::~PtySource() { ::close(m_wake); }

void PtySource::plug(const std::string& node)
{
    TtyFacts facts;
    facts.sysPath = "/devices/soak/ttyUSB0";
    facts.name = "ttyUSB0";
    facts.node = node;
    facts.hasParent = true;
    facts.parentSubsystem = "usb-serial";
    facts.serialNumber = "A1B2";
    facts.path = "soak-usb-0:1:1.0";
    facts.bus = "usb";
    m_present = facts;
    add(TtyAdded{++m_lastNumber, facts});
}

void PtySource::unplug()
{
    if (const auto gone = std::exchange(m_present, std::nullopt)) {
        add(TtyRemoved{++m_lastNumber, gone->sysPath});
    }
}

void PtySource::add(TtyEvent event)
{
    m_events.push_back(std::move(event));
    eventfd_write(m_wake, 1);
}

std::optional<TtyEvent> PtySource::receive()
{
    if (m_events.empty()) {
        eventfd_t ignored = 0;
        eventfd_read(m_wake, &ignored);
        return std::nullopt;
    }
    auto event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

std::optional<std::vector<TtyFacts>> PtySource::enumerate()
{
    return m_present ? std::vector{*m_present} : std::vector<TtyFacts>();
}

bool PtySource::exists(const std::string& sysPath) const { return m_present && m_present->sysPath == sysPath; }

} // namespace vorrano::soak
