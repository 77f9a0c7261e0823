#include "platform/linux/CalloutNodes.h"

#include <algorithm>

namespace vorrano::linux_platform {

std::string CalloutNodes::add(const std::vector<std::string>& paths, const std::string& node)
{
    const platform::MutexLock lock(m_mutex);
    const auto isFree = [&nodes = m_nodes](const std::string& path) { return !nodes.contains(path); };
    const auto free = std::find_if(paths.begin(), paths.end(), isFree);
    const auto& path = free == paths.end() ? paths.back() : *free;
    m_nodes[path] = node;
    return path;
}

void CalloutNodes::remove(const std::string& path)
{
    const platform::MutexLock lock(m_mutex);
    m_nodes.erase(path);
}

std::optional<std::string> CalloutNodes::nodeOf(const std::string& path) const
{
    const platform::MutexLock lock(m_mutex);
    const auto found = m_nodes.find(path);
    return found == m_nodes.end() ? std::nullopt : std::optional(found->second);
}

} // namespace vorrano::linux_platform
