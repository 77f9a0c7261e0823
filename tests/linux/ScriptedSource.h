#pragma once

#include "platform/linux/DeviceSource.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

namespace vorrano::support {

// A source whose events and devices the test writes down.
class ScriptedSource final : public linux_platform::DeviceSource {
public:
    struct Script {
        bool canStart = true;
        std::optional<std::vector<linux_platform::TtyFacts>> devices{std::in_place};
        std::deque<linux_platform::TtyEvent> events;
        std::uint64_t lastNumber = 0;
        std::vector<std::string> calls;
    };

    explicit ScriptedSource(Script& script)
        : m_script(script)
    {}
    ~ScriptedSource() override { close(m_descriptor); }

    bool start() override
    {
        m_script.calls.emplace_back("start");
        return m_script.canStart;
    }
    [[nodiscard]] int descriptor() const override { return m_descriptor; }
    [[nodiscard]] std::optional<linux_platform::TtyEvent> receive() override
    {
        if (m_script.events.empty()) {
            return std::nullopt;
        }
        const auto event = m_script.events.front();
        m_script.events.pop_front();
        return event;
    }
    [[nodiscard]] std::optional<std::vector<linux_platform::TtyFacts>> enumerate() override
    {
        m_script.calls.emplace_back("enumerate");
        return m_script.devices;
    }
    [[nodiscard]] std::uint64_t lastEventNumber() const override { return m_script.lastNumber; }
    [[nodiscard]] bool exists(const std::string& sysPath) const override
    {
        const auto& devices = m_script.devices.value();
        return std::any_of(devices.begin(), devices.end(), [&](const auto& tty) { return tty.sysPath == sysPath; });
    }

private:
    Script& m_script;
    const int m_descriptor = eventfd(0, EFD_CLOEXEC);
};

// A USB adapter that is a tty of that name.
inline linux_platform::TtyFacts adapter(const std::string& name, const std::string& serialNumber)
{
    linux_platform::TtyFacts facts;
    facts.sysPath = "/sys/" + name;
    facts.name = name;
    facts.node = "/dev/" + name;
    facts.hasParent = true;
    facts.parentSubsystem = "usb-serial";
    facts.serialNumber = serialNumber;
    facts.path = "pci-usb-0:" + name;
    return facts;
}

inline linux_platform::TtyFacts adapterOf(const std::string& name, const std::string& serialNumber,
                                          std::uint64_t initializedAt)
{
    auto facts = adapter(name, serialNumber);
    facts.initializedAt = initializedAt;
    return facts;
}

} // namespace vorrano::support
