#pragma once

#include "platform/SerialQueue.h"
#include "support/VirtualTime.h"

#include <memory>

namespace vorrano::support {

// A serial queue on virtual time. Each task is a turn of its own on a background thread, but for one that an idle queue
// runs in place.
class FakeSerialQueue : public platform::SerialQueue {
public:
    explicit FakeSerialQueue(VirtualTime& time);
    ~FakeSerialQueue() override;

    void async(Task task) override;
    void dispatch(Task task) override;
    void sync(Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override;

private:
    class Turns;

    VirtualTime& m_time;
    std::shared_ptr<Turns> m_turns;
};

} // namespace vorrano::support
