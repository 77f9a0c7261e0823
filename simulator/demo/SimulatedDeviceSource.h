#pragma once

#include "platform/linux/DeviceSource.h"

#include <deque>
#include <string>

namespace vorrano::demo {

// The simulated computer's ttys: one USB adapter, there while the simulator's cable is plugged in.
//
// Threads: one. start() waits for the simulator's answer; no other call blocks.
class SimulatedDeviceSource final : public linux_platform::DeviceSource {
public:
    // Where the simulator's control socket is.
    explicit SimulatedDeviceSource(std::string controlPath);
    ~SimulatedDeviceSource() override;

    bool start() override;
    [[nodiscard]] int descriptor() const override { return m_socket; }
    [[nodiscard]] std::optional<linux_platform::TtyEvent> receive() override;
    [[nodiscard]] std::optional<std::vector<linux_platform::TtyFacts>> enumerate() override;
    [[nodiscard]] std::uint64_t lastEventNumber() const override { return m_lastNumber; }
    [[nodiscard]] bool exists(const std::string& sysPath) const override;

private:
    [[nodiscard]] bool connect();
    [[nodiscard]] bool readMore(int flags);
    [[nodiscard]] std::optional<std::string> takeLine();
    [[nodiscard]] linux_platform::TtyEvent eventOf(const std::string& line);
    [[nodiscard]] std::optional<linux_platform::TtyEvent> removal();
    void beSilent();

    const std::string m_controlPath;
    int m_socket = -1;
    std::string m_unread;
    std::optional<linux_platform::TtyFacts> m_present;
    std::uint64_t m_lastNumber = 0;
    bool m_simulatorGone = false;
};

} // namespace vorrano::demo
