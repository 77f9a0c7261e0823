#pragma once

#include "platform/PortAccess.h"

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace vorrano::support {

// Every port is permitted and unused until the test says otherwise. Any thread.
class FakePortAccess : public platform::PortAccess {
public:
    [[nodiscard]] bool isPermitted(const std::string& path) const override
    {
        const std::lock_guard lock(m_mutex);
        return !m_forbidden.contains(path);
    }
    [[nodiscard]] std::optional<std::string> programThatUses(const std::string& path) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto user = m_users.find(path);
        return user == m_users.end() ? std::nullopt : std::optional(user->second);
    }

    void forbid(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        m_forbidden.insert(path);
    }
    void permit(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        m_forbidden.erase(path);
    }
    void setUser(const std::string& path, const std::string& program)
    {
        const std::lock_guard lock(m_mutex);
        m_users[path] = program;
    }
    void setUnused(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        m_users.erase(path);
    }

private:
    mutable std::mutex m_mutex;
    std::set<std::string> m_forbidden;
    std::map<std::string, std::string> m_users;
};

} // namespace vorrano::support
