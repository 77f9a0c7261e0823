#pragma once

#include "platform/DeviceRegistry.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::pty_rig {

// Callout paths and the nodes behind them, which a test may exchange at any time.
class PtyDevices : public platform::DeviceRegistry {
public:
    // Threads: any.
    void set(const std::string& calloutPath, const std::string& node);
    void remove(const std::string& calloutPath);

    [[nodiscard]] std::optional<platform::DeviceIterator> serialStreamDevices() override;
    Watch watch(platform::DeviceEvent event, std::function<void(platform::DeviceIterator)> told) override;
    platform::DeviceHandle next(platform::DeviceIterator iterator) override;
    [[nodiscard]] std::optional<std::string> stringProperty(platform::DeviceHandle device,
                                                            std::string_view key) const override;
    void retain(std::uint32_t handle) override;
    void release(std::uint32_t handle) override;
    [[nodiscard]] std::optional<std::string> nodeOfCalloutPath(const std::string& path) const override;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_nodes;
    std::map<platform::DeviceHandle, std::string> m_paths;
    platform::DeviceHandle m_cursor = 0;
};

} // namespace vorrano::pty_rig
