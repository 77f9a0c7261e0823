#pragma once

#include "platform/linux/DeviceSource.h"

#include <memory>

struct udev;
struct udev_device;
struct udev_monitor;

namespace vorrano::linux_platform {

// Ttys and their events from udev.
class UdevSource final : public DeviceSource {
public:
    bool start() override;
    [[nodiscard]] int descriptor() const override;
    [[nodiscard]] std::optional<TtyEvent> receive() override;
    [[nodiscard]] std::optional<std::vector<TtyFacts>> enumerate() override;
    [[nodiscard]] std::uint64_t lastEventNumber() const override;
    [[nodiscard]] bool exists(const std::string& sysPath) const override;

private:
    struct Release {
        void operator()(udev* object) const;
        void operator()(udev_device* object) const;
        void operator()(udev_monitor* object) const;
    };

    [[nodiscard]] TtyFacts factsOf(udev_device& device) const;

    std::unique_ptr<udev, Release> m_udev;
    std::unique_ptr<udev_monitor, Release> m_monitor;
    // Without udev's daemon no device ever becomes initialized.
    bool m_daemonRuns = false;
};

} // namespace vorrano::linux_platform
