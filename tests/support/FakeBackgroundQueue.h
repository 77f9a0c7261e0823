#pragma once

#include "platform/BackgroundQueue.h"
#include "support/FakeSerialQueue.h"
#include "support/VirtualTime.h"

#include <memory>
#include <string>
#include <vector>

namespace vorrano::support {

// The background pool on virtual time.
class FakeBackgroundQueue : public platform::BackgroundQueue {
public:
    explicit FakeBackgroundQueue(VirtualTime& time);

    void async(Task task) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

    // The next background task that dispatches to a serial queue is held up so long before the queue gets the task, as
    // a thread is that the system takes off its processor.
    void delayNextHandOver(Nanoseconds duration) { m_delays->push_back(duration); }

    // The labels of all serial queues made, in order.
    [[nodiscard]] const std::vector<std::string>& serialQueues() const { return m_labels; }

private:
    VirtualTime& m_time;
    std::vector<std::string> m_labels;
    std::shared_ptr<HandOverDelays> m_delays = std::make_shared<HandOverDelays>();
};

} // namespace vorrano::support
