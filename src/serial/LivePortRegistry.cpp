#include "serial/LivePortRegistry.h"

#include "serial/SerialPort.h"

namespace vorrano::serial {

void LivePortRegistry::add(const std::shared_ptr<SerialPort>& port)
{
    const platform::MutexLock lock(m_mutex);
    m_entries.push_back({port.get(), port});
}

void LivePortRegistry::remove(const SerialPort& port)
{
    const platform::MutexLock lock(m_mutex);
    std::erase_if(m_entries, [&port](const Entry& entry) { return entry.identity == &port; });
}

std::shared_ptr<SerialPort> LivePortRegistry::existingPortWithPath(std::string_view path) const
{
    // Let go of after the lock: the last reference to a port may be among them, and its end removes an entry.
    std::vector<std::shared_ptr<SerialPort>> looked;
    const platform::MutexLock lock(m_mutex);
    for (const auto& entry : m_entries) {
        looked.push_back(entry.port.lock());
        if (looked.back() && !path.empty() && looked.back()->path() == path) {
            return looked.back();
        }
    }
    return nullptr;
}

LivePortRegistry& livePortRegistry()
{
    // Never destroyed, so that the last port may go at any time.
    static auto& registry = *new LivePortRegistry;
    return registry;
}

} // namespace vorrano::serial
