#include "support/FakeSystem.h"

#include "platform/ScopeExit.h"

#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

void FakeSystemLog::write(std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    m_lines.emplace_back(line);
}

std::vector<std::string> FakeSystemLog::lines() const
{
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

void FakeSystemLog::forget()
{
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
}

FakePause::FakePause(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

void FakePause::pause(std::chrono::nanoseconds duration)
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "a pause holds the main thread";
    auto& time = m_mainQueue.time();
    const auto end = time.now() + duration;
    m_begins.push_back(time.now());
    m_pauses.push_back(duration);
    {
        const auto hold = m_mainQueue.hold();
        ++m_on;
        const platform::ScopeExit over([this] { --m_on; });
        if (!m_meanwhile.empty()) {
            const auto first = std::move(m_meanwhile.front());
            m_meanwhile.pop_front();
            first();
        }
        time.waitUntil([] { return false; }, end);
    }
    for (auto& task : std::exchange(m_afterwards, {})) {
        time.runOnMainAtOnce(std::move(task));
    }
}

void FakePause::whilePaused(std::function<void()> meanwhile) { m_meanwhile.push_back(std::move(meanwhile)); }

void FakePause::afterwards(Task task) { m_afterwards.push_back(std::move(task)); }

FakePowerEvents::FakePowerEvents(VirtualTime& time, FakePause& pause)
    : m_time(time)
    , m_pause(pause)
{}

platform::Subscription FakePowerEvents::onWillSleep(std::function<void()> told)
{
    return add(m_willSleep, std::move(told));
}

platform::Subscription FakePowerEvents::onDidWake(std::function<void()> told)
{
    return add(m_didWake, std::move(told));
}

platform::Subscription FakePowerEvents::add(const std::shared_ptr<Handlers>& handlers, std::function<void()> told)
{
    const auto id = ++m_lastId;
    handlers->emplace(id, std::move(told));
    return platform::Subscription([weak = std::weak_ptr(handlers), id] {
        if (const auto alive = weak.lock()) {
            alive->erase(id);
        }
    });
}

void FakePowerEvents::sleep() { tell(m_willSleep); }

void FakePowerEvents::wake() { tell(m_didWake); }

void FakePowerEvents::tell(const std::shared_ptr<Handlers>& handlers)
{
    if (m_pause.isOn()) {
        m_pause.afterwards([this, handlers] { tell(handlers); });
        return;
    }
    const auto told = *handlers;
    for (const auto& [id, handler] : told) {
        if (handlers->contains(id)) {
            m_time.runGuarded(handler);
        }
    }
}

std::size_t FakePowerEvents::watchers() const { return m_willSleep->size() + m_didWake->size(); }

std::optional<std::vector<std::string>> FakeWifi::scanForNetworks()
{
    ++m_scans;
    if (const auto meanwhile = std::exchange(m_meanwhile, nullptr)) {
        meanwhile();
    }
    return m_networks;
}

} // namespace vorrano::support
