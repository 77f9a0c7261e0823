#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "support/FakeSystem.h"
#include "support/World.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vorrano::contract {

using Condition = std::function<bool()>;

// The queues of the program. The test's thread is the main thread.
class RealQueues {
public:
    [[nodiscard]] platform::BackgroundQueue& background() { return m_background; }
    [[nodiscard]] std::vector<std::string> log() const { return m_log.lines(); }
    [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == m_mainThread; }

    // Lets time pass until the condition holds; false when it does not within the deadline.
    [[nodiscard]] static bool eventually(const Condition& condition);

    // Waits on a background thread until the condition holds.
    void blockUntil(const Condition& condition) { static_cast<void>(eventually(condition)); }

private:
    const std::thread::id m_mainThread = std::this_thread::get_id();
    support::FakeSystemLog m_log;
    asio_platform::AsioBackgroundQueue m_background{m_log};
};

// The queues of the tests, on virtual time.
class FakeQueues {
public:
    [[nodiscard]] platform::BackgroundQueue& background() { return m_world.backgroundQueue; }
    [[nodiscard]] std::vector<std::string> log() const { return m_world.log.lines(); }
    [[nodiscard]] bool isMainThread() const { return m_world.mainQueue.isMainThread(); }
    [[nodiscard]] bool eventually(const Condition& condition);
    void blockUntil(const Condition& condition) { m_world.time.waitUntil(condition); }

private:
    support::World m_world;
};

} // namespace vorrano::contract
