#include "serial_pty/rig/PtyDevices.h"

#include <algorithm>

namespace vorrano::pty_rig {

void PtyDevices::set(const std::string& calloutPath, const std::string& node)
{
    const std::lock_guard lock(m_mutex);
    m_nodes[calloutPath] = node;
    const auto has = [&](const auto& entry) { return entry.second == calloutPath; };
    if (std::none_of(m_paths.begin(), m_paths.end(), has)) {
        m_paths.emplace(static_cast<platform::DeviceHandle>(m_paths.size() + 1), calloutPath);
    }
}

void PtyDevices::remove(const std::string& calloutPath)
{
    const std::lock_guard lock(m_mutex);
    m_nodes.erase(calloutPath);
}

std::optional<platform::DeviceIterator> PtyDevices::serialStreamDevices()
{
    m_cursor = 0;
    return 1;
}

platform::DeviceRegistry::Watch PtyDevices::watch(platform::DeviceEvent /*event*/,
                                                  std::function<void(platform::DeviceIterator)> /*told*/)
{
    return {};
}

platform::DeviceHandle PtyDevices::next(platform::DeviceIterator /*iterator*/)
{
    const std::lock_guard lock(m_mutex);
    return m_cursor < m_paths.size() ? ++m_cursor : 0;
}

std::optional<std::string> PtyDevices::stringProperty(platform::DeviceHandle device, std::string_view key) const
{
    const std::lock_guard lock(m_mutex);
    const auto known = m_paths.find(device);
    if (known == m_paths.end() || key == platform::kDialinDeviceKey) {
        return std::nullopt;
    }
    return known->second;
}

void PtyDevices::retain(std::uint32_t /*handle*/) {}

void PtyDevices::release(std::uint32_t /*handle*/) {}

std::optional<std::string> PtyDevices::nodeOfCalloutPath(const std::string& path) const
{
    const std::lock_guard lock(m_mutex);
    const auto known = m_nodes.find(path);
    return known == m_nodes.end() ? std::nullopt : std::optional(known->second);
}

} // namespace vorrano::pty_rig
