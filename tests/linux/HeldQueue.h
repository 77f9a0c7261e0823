#pragma once

#include "platform/MainQueue.h"

#include <cstddef>
#include <deque>
#include <thread>
#include <utility>

namespace vorrano::support {

// A main queue that runs its tasks when the test says so, as if an alert were up until then.
class HeldQueue final : public platform::MainQueue {
public:
    void async(platform::Task task) override { m_tasks.push_back(std::move(task)); }
    bool sync(platform::Task task) override
    {
        task();
        return true;
    }
    void after(std::chrono::nanoseconds, platform::Task task) override { async(std::move(task)); }
    [[nodiscard]] bool isMainThread() const override { return std::this_thread::get_id() == m_thread; }

    [[nodiscard]] std::size_t size() const { return m_tasks.size(); }
    [[nodiscard]] std::size_t ran() const { return m_ran; }

    void runNext()
    {
        const auto task = std::move(m_tasks.front());
        m_tasks.pop_front();
        ++m_ran;
        task();
    }

    void run()
    {
        while (!m_tasks.empty()) {
            runNext();
        }
    }

private:
    const std::thread::id m_thread = std::this_thread::get_id();
    std::deque<platform::Task> m_tasks;
    std::size_t m_ran = 0;
};

} // namespace vorrano::support
