#include "contract/Queues.h"

#include <condition_variable>
#include <mutex>

namespace vorrano::contract {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::seconds kDeadline{20};
constexpr std::chrono::milliseconds kBetweenLooks{1};

} // namespace

bool RealQueues::eventually(const Condition& condition)
{
    std::mutex mutex;
    std::condition_variable never;
    std::unique_lock lock(mutex);
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        never.wait_for(lock, kBetweenLooks);
    }
    return true;
}

bool FakeQueues::eventually(const Condition& condition)
{
    const auto end = m_world.now() + kDeadline;
    m_world.run();
    while (!condition()) {
        if (m_world.now() > end) {
            return false;
        }
        m_world.advance(kBetweenLooks);
    }
    return true;
}

} // namespace vorrano::contract
