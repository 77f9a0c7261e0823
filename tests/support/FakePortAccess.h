#pragma once

#include "platform/PortAccess.h"

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace vorrano::support {

// Every port is permitted, of no group and unused until the test says otherwise. Any thread.
class FakePortAccess : public platform::PortAccess {
public:
    [[nodiscard]] bool isPermitted(const std::string& path) const override
    {
        const std::lock_guard lock(m_mutex);
        return !m_forbidden.contains(path);
    }
    [[nodiscard]] std::optional<std::string> groupThatMayUse(const std::string& path) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto group = m_groups.find(path);
        return group == m_groups.end() ? std::nullopt : std::optional(group->second);
    }
    [[nodiscard]] std::optional<std::string> programThatUses(const std::string& path) const override
    {
        const std::lock_guard lock(m_mutex);
        ++m_questions;
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
    void setGroup(const std::string& path, const std::string& group)
    {
        const std::lock_guard lock(m_mutex);
        m_groups[path] = group;
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

    // How often it was asked for the program that uses a port.
    [[nodiscard]] int questionsForPrograms() const
    {
        const std::lock_guard lock(m_mutex);
        return m_questions;
    }

private:
    mutable std::mutex m_mutex;
    mutable int m_questions = 0;
    std::map<std::string, std::string> m_groups;
    std::set<std::string> m_forbidden;
    std::map<std::string, std::string> m_users;
};

} // namespace vorrano::support
