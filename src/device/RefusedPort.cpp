#include "device/RefusedPort.h"

#include "platform/MainQueue.h"
#include "platform/Platform.h"
#include "platform/PortAccess.h"
#include "serial/SerialPort.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace vorrano::device {

using platform::Platform;

namespace {

constexpr std::chrono::seconds kLookInterval{1};

} // namespace

std::shared_ptr<RefusedPort> RefusedPort::create(const serial::SerialPortDelegate& tab, std::function<void()> changed)
{
    return std::shared_ptr<RefusedPort>(new RefusedPort(tab, std::move(changed)));
}

RefusedPort::RefusedPort(const serial::SerialPortDelegate& tab, std::function<void()> changed)
    : m_tab(tab)
    , m_changed(std::move(changed))
    , m_mainQueue(Platform::current().mainQueue)
    , m_portAccess(Platform::current().portAccess)
{}

void RefusedPort::follow(std::shared_ptr<serial::SerialPort> port)
{
    m_port = std::move(port);
    m_failures.reset();
    m_opens.reset();
    if (m_port) {
        m_failures = m_port->observe(serial::kOpenErrorKey, [this] { update(); });
        m_opens = m_port->observe("isOpen", [this] { update(); });
    }
    m_refusal.reset();
}

void RefusedPort::update()
{
    const auto error = m_port->openError();
    const auto before = m_refusal ? std::optional(m_refusal->error) : std::nullopt;
    if (error != before) {
        m_refusal = refusalWith(error);
        m_changed();
    }
    lookLater();
}

// Who uses the port takes a while to find out, so it is asked once for a refusal and not again at each look.
std::optional<PortRefusal> RefusedPort::refusalWith(std::optional<int> error) const
{
    if (!error) {
        return std::nullopt;
    }
    return PortRefusal{*error, *error == EACCES ? m_portAccess.groupThatMayUse(m_port->path()) : std::nullopt,
                       *error == EBUSY ? m_portAccess.programThatUses(m_port->path()) : std::nullopt};
}

void RefusedPort::lookLater()
{
    if (!m_refusal || std::exchange(m_isLookDue, true)) {
        return;
    }
    m_mainQueue.after(kLookInterval, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->look();
        }
    });
}

void RefusedPort::look()
{
    m_isLookDue = false;
    const bool isOurs = m_port && m_port->delegate().get() == &m_tab;
    if (!m_refusal || !isOurs) {
        return;
    }
    if (m_portAccess.isPermitted(m_port->path())) {
        m_port->open();
    }
    lookLater();
}

} // namespace vorrano::device
