#pragma once

#include "platform/linux/DeviceSource.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::soak {

// One USB adapter, in place of udev: there while its node is.
//
// Threads: the main thread.
class PtySource final : public linux_platform::DeviceSource {
public:
    PtySource();
    ~PtySource() override;

    void plug(const std::string& node);
    void unplug();

    bool start() override { return true; }
    [[nodiscard]] int descriptor() const override { return m_wake; }
    [[nodiscard]] std::optional<linux_platform::TtyEvent> receive() override;
    [[nodiscard]] std::optional<std::vector<linux_platform::TtyFacts>> enumerate() override;
    [[nodiscard]] std::uint64_t lastEventNumber() const override { return m_lastNumber; }
    [[nodiscard]] bool exists(const std::string& sysPath) const override;

private:
    void add(linux_platform::TtyEvent event);

    int m_wake;
    std::deque<linux_platform::TtyEvent> m_events;
    std::optional<linux_platform::TtyFacts> m_present;
    std::uint64_t m_lastNumber = 0;
};

} // namespace vorrano::soak
