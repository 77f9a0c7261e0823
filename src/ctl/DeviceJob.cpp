#include "ctl/DeviceJob.h"

#include "device/DeviceRequests.h"
#include "platform/BackgroundQueue.h"
#include "platform/PortAccess.h"
#include "platform/System.h"

#include <cerrno>
#include <utility>

namespace vorrano::ctl {

using platform::System;
using serial::SerialPort;

DeviceJob::DeviceJob(std::shared_ptr<SerialPort> port, const platform::PortAccess& portAccess)
    : m_mainQueue(System::current().mainQueue)
    , m_backgroundQueue(System::current().backgroundQueue)
    , m_portAccess(portAccess)
    , m_port(std::move(port))
{}

DeviceJob::~DeviceJob() = default;

void DeviceJob::start(Told told)
{
    m_told = std::move(told);
    m_port->setDelegate(weak_from_this());
    const auto open = [](SerialPort& port) {
        port.open();
        // After the opening, which by itself applies the rate that the port had before.
        port.setBaudRate(std::make_shared<const unsigned long>(device::kBaudRate));
        return port.isOpen();
    };
    inBackground(open, [this](bool isOpen) { didOpen(isOpen); });
}

void DeviceJob::didOpen(bool isOpen)
{
    if (isOpen) {
        begin();
    } else {
        failToOpen();
    }
}

void DeviceJob::failToOpen()
{
    if (m_lastError.code == EACCES || m_lastError.code == EPERM) {
        fail("You are not allowed to open the port. The package's udev rule, or the group that the device node belongs "
             "to, allows it.",
             ExitStatus::NotAllowed);
    } else if (m_lastError.code == EBUSY) {
        const auto user = m_portAccess.programThatUses(m_port->path());
        fail("The port is in use by " + user.value_or("another program") + ".");
    } else {
        fail("The port can't be opened: " + m_lastError.description);
    }
}

void DeviceJob::stop(std::string why) { fail(std::move(why)); }

void DeviceJob::serialPortWasRemovedFromSystem(SerialPort& /*port*/) { fail("The cable was pulled."); }

void DeviceJob::serialPortDidEncounterError(SerialPort& /*port*/, const serial::SerialError& error)
{
    // A line without modem lines says so at each look at them.
    if (error.code != ENOTTY) {
        m_lastError = error;
    }
}

void DeviceJob::inBackground(Call call, std::function<void(bool)> then)
{
    m_backgroundQueue.async(
        [self = shared_from_this(), port = m_port, call = std::move(call), then = std::move(then)]() mutable {
            const bool result = call(*port);
            auto& queue = self->m_mainQueue;
            queue.async([self = std::move(self), result, then = std::move(then)] {
                if (!self->m_hasEnded) {
                    then(result);
                }
            });
        });
}

void DeviceJob::write(Call call, std::function<void()> then)
{
    inBackground(std::move(call), [this, then = std::move(then)](bool isWritten) {
        if (isWritten) {
            then();
        } else {
            fail("Writing to the port failed: " + m_lastError.description);
        }
    });
}

void DeviceJob::after(std::chrono::nanoseconds delay, std::function<void()> task)
{
    m_mainQueue.after(delay, [weak = weak_from_this(), task = std::move(task)] {
        const auto self = weak.lock();
        if (self && !self->m_hasEnded) {
            task();
        }
    });
}

void DeviceJob::addValue(std::string name, Outcome::Value value)
{
    m_outcome.values.emplace_back(std::move(name), std::move(value));
}

void DeviceJob::finish()
{
    if (!m_hasEnded) {
        close();
    }
}

void DeviceJob::fail(std::string why, ExitStatus status)
{
    if (!m_hasEnded) {
        m_outcome.failure = Outcome::Failure{status, std::move(why)};
        close();
    }
}

void DeviceJob::close()
{
    m_hasEnded = true;
    *m_endedFlag = true;
    m_backgroundQueue.async([self = shared_from_this()]() mutable {
        self->m_port->close();
        auto& queue = self->m_mainQueue;
        queue.async([self = std::move(self)] {
            self->m_port->setDelegate({});
            self->m_told(self->m_outcome);
        });
    });
}

} // namespace vorrano::ctl
