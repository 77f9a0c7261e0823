#pragma once

#include "platform/MainQueue.h"
#include "platform/Subscription.h"
#include "support/VirtualTime.h"

#include <cstddef>

namespace vorrano::support {

// The main queue on virtual time: its tasks run inside World::run() and advance().
class FakeMainQueue : public platform::MainQueue {
public:
    explicit FakeMainQueue(VirtualTime& time);

    void async(Task task) override;
    bool sync(Task task) override;
    void after(std::chrono::nanoseconds delay, Task task) override;
    [[nodiscard]] bool isMainThread() const override;

    // While it is had the queue holds back, as under an alert; controls deliver nothing.
    [[nodiscard]] platform::Subscription hold();
    [[nodiscard]] bool isHeld() const;

    // Tasks that wait.
    [[nodiscard]] std::size_t waiting() const;

    // The main loop has ended: nothing runs any more.
    void end();

    [[nodiscard]] VirtualTime& time() { return m_time; }

private:
    VirtualTime& m_time;
};

} // namespace vorrano::support
