#pragma once

#include "platform/SerialQueue.h"
#include "support/VirtualTime.h"

#include <deque>
#include <memory>

namespace vorrano::support {

// How long the next background threads are held up before a serial queue gets what they hand to it, in order.
using HandOverDelays = std::deque<Nanoseconds>;

// A serial queue on virtual time. Each task is a turn of its own on a background thread, but for those that an idle
// queue runs in place. What the main thread leaves to others is done at the same time of the clock, or later by the
// share of its two milliseconds that the world's lateness asks for.
class FakeSerialQueue : public platform::SerialQueue {
public:
    FakeSerialQueue(VirtualTime& time, std::shared_ptr<HandOverDelays> delays);
    ~FakeSerialQueue() override;

    void async(Task task) override;
    void inPlaceOrAsync(Task task) override;
    void continueOnPool(Task task) override;
    void sync(Task task) override;
    void syncInPlace(Task task) override;
    void offMainThread(Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, Task handler) override;

private:
    class Turns;
    void waitForTurn(Task task);
    void waitIfHeldUp();

    VirtualTime& m_time;
    std::shared_ptr<HandOverDelays> m_delays;
    std::shared_ptr<Turns> m_turns;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
};

} // namespace vorrano::support
