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
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

    // The next background thread that hands a task to a serial queue with inPlaceOrAsync() is held up so long before
    // the queue gets the task: as a thread is that the system takes off its processor.
    void delayNextHandOver(Nanoseconds duration) { m_delays->push_back(duration); }

    // The schedules of all timers made by this queue itself, in order.
    [[nodiscard]] const std::vector<platform::TimerSchedule>& timers() const { return m_timers; }

    // The labels of all serial queues made, in order.
    [[nodiscard]] const std::vector<std::string>& serialQueues() const { return m_labels; }

private:
    VirtualTime& m_time;
    std::vector<platform::TimerSchedule> m_timers;
    std::vector<std::string> m_labels;
    std::shared_ptr<HandOverDelays> m_delays = std::make_shared<HandOverDelays>();
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
};

} // namespace vorrano::support
