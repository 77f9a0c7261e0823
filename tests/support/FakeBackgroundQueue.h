#pragma once

#include "platform/BackgroundQueue.h"
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

    // The labels of all serial queues made, in order.
    [[nodiscard]] const std::vector<std::string>& serialQueues() const { return m_labels; }

private:
    VirtualTime& m_time;
    std::vector<std::string> m_labels;
};

} // namespace vorrano::support
