#pragma once

#include "platform/BackgroundQueue.h"
#include "stress/Ledger.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vorrano::stress {

// Background and serial queues that pass everything on to others. They report each step of a port's request queue to
// the port's ledger, and check that the serial queue keeps its contract. Now and then they hold up a thread for a
// moment before it hands over a step, as the system may do at any time; never the main thread.
class WatchedQueues : public platform::BackgroundQueue {
public:
    WatchedQueues(platform::BackgroundQueue& queues, const platform::MainQueue& mainQueue, std::uint64_t seed);

    // The serial queue that is made next belongs to the port of that ledger.
    void watchNext(Ledger& ledger) { m_next = &ledger; }

    void async(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

private:
    platform::BackgroundQueue& m_queues;
    const platform::MainQueue& m_mainQueue;
    std::uint64_t m_seed;
    Ledger* m_next = nullptr;
};

} // namespace vorrano::stress
