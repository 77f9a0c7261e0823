#pragma once

#include "platform/SerialQueue.h"
#include "support/VirtualTime.h"

#include <deque>
#include <memory>

namespace vorrano::support {

// How long the next background tasks are held up before a serial queue gets what they dispatch, in order.
using HandOverDelays = std::deque<Nanoseconds>;

// A serial queue on virtual time. Each task is a turn of its own on a background thread, but for one that an idle queue
// runs in place.
class FakeSerialQueue : public platform::SerialQueue {
public:
    FakeSerialQueue(VirtualTime& time, std::shared_ptr<HandOverDelays> delays);
    ~FakeSerialQueue() override;

    void async(Task task) override;
    void dispatch(Task task) override;
    void sync(Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override;

private:
    class Turns;
    void waitIfHeldUp();

    VirtualTime& m_time;
    std::shared_ptr<HandOverDelays> m_delays;
    std::shared_ptr<Turns> m_turns;
};

} // namespace vorrano::support
