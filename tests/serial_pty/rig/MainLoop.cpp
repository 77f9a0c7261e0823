#include "serial_pty/rig/MainLoop.h"

#include "platform/Guarded.h"

#include <utility>

namespace vorrano::pty_rig {

struct MainLoop::Waiter {
    std::mutex mutex;
    std::condition_variable changed;
    bool done = false;
    bool ran = false;

    void finish(bool hasRun)
    {
        const std::lock_guard lock(mutex);
        done = true;
        ran = hasRun;
        changed.notify_all();
    }
};

MainLoop::MainLoop(platform::SystemLog& log)
    : m_log(log)
{}

MainLoop::~MainLoop() { end(); }

void MainLoop::async(platform::Task task)
{
    const std::lock_guard lock(m_mutex);
    if (!m_ended) {
        m_items.push_back({std::move(task), nullptr});
        m_changed.notify_one();
    }
}

bool MainLoop::sync(platform::Task task)
{
    if (isMainThread()) {
        const auto runs = !hasEnded();
        if (runs) {
            platform::guarded(m_log, task);
        }
        return runs;
    }
    const auto waiter = std::make_shared<Waiter>();
    {
        const std::lock_guard lock(m_mutex);
        if (m_ended) {
            return false;
        }
        m_items.push_back({std::move(task), waiter});
        m_changed.notify_one();
    }
    std::unique_lock lock(waiter->mutex);
    waiter->changed.wait(lock, [&] { return waiter->done; });
    return waiter->ran;
}

void MainLoop::after(std::chrono::nanoseconds delay, platform::Task task)
{
    const std::lock_guard lock(m_mutex);
    if (!m_ended) {
        m_delayed.emplace(Clock::now() + delay, std::move(task));
    }
}

bool MainLoop::hasEnded()
{
    const std::lock_guard lock(m_mutex);
    return m_ended;
}

bool MainLoop::isMainThread() const { return std::this_thread::get_id() == m_mainThread; }

bool MainLoop::runUntil(const Condition& met, std::chrono::nanoseconds patience)
{
    const auto deadline = Clock::now() + patience;
    while (!met()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        if (!runOne()) {
            std::unique_lock lock(m_mutex);
            m_changed.wait_for(lock, kLook, [&] { return !m_items.empty(); });
        }
    }
    return true;
}

bool MainLoop::holdUntil(const Condition& met, std::chrono::nanoseconds patience, std::chrono::nanoseconds look)
{
    const auto deadline = Clock::now() + patience;
    while (!met()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, look, [] { return false; });
    }
    return true;
}

void MainLoop::drain()
{
    while (runOne()) {
    }
}

bool MainLoop::runOne()
{
    Item item;
    {
        const std::lock_guard lock(m_mutex);
        while (!m_delayed.empty() && m_delayed.begin()->first <= Clock::now()) {
            m_items.push_back({std::move(m_delayed.begin()->second), nullptr});
            m_delayed.erase(m_delayed.begin());
        }
        if (m_items.empty()) {
            return false;
        }
        item = std::move(m_items.front());
        m_items.pop_front();
    }
    platform::guarded(m_log, item.task);
    if (item.waiter) {
        item.waiter->finish(true);
    }
    return true;
}

void MainLoop::end()
{
    std::deque<Item> dropped;
    std::multimap<Clock::time_point, platform::Task> delayed;
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
        dropped.swap(m_items);
        delayed.swap(m_delayed);
    }
    for (const auto& item : dropped) {
        if (item.waiter) {
            item.waiter->finish(false);
        }
    }
}

} // namespace vorrano::pty_rig
