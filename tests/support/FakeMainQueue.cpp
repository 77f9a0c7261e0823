#include "support/FakeMainQueue.h"

#include <memory>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

FakeMainQueue::FakeMainQueue(VirtualTime& time)
    : m_time(time)
{}

void FakeMainQueue::async(Task task) { m_time.runOnMain(std::move(task)); }

bool FakeMainQueue::sync(Task task)
{
    if (m_time.hasMainEnded()) {
        return false;
    }
    if (isMainThread()) {
        m_time.runGuarded(task);
        return true;
    }
    const auto ran = std::make_shared<bool>(false);
    m_time.runOnMain([this, ran, given = std::move(task)] {
        m_time.runGuarded(given);
        *ran = true;
    });
    m_time.waitUntil([&] { return *ran || m_time.hasMainEnded(); });
    return *ran;
}

void FakeMainQueue::after(std::chrono::nanoseconds delay, Task task)
{
    EXPECT_TRUE(isMainThread()) << "delayed calls are ordered on the main thread";
    m_time.at(m_time.now() + delay, [this, given = std::move(task)] { async(given); });
}

bool FakeMainQueue::isMainThread() const { return m_time.isMainThread(); }

platform::Subscription FakeMainQueue::hold() { return m_time.holdMain(); }

bool FakeMainQueue::isHeld() const { return m_time.isMainHeld(); }

std::size_t FakeMainQueue::waiting() const { return m_time.mainTasks(); }

void FakeMainQueue::end() { m_time.endMain(); }

} // namespace vorrano::support
