#pragma once

#include "platform/Timer.h"
#include "support/VirtualTime.h"

#include <functional>
#include <memory>

namespace vorrano::support {

// A timer on virtual time. It fires exactly when it is due, or late by the share of its leeway that the world asks for.
// What falls due while its handler runs, or waits for its turn, makes one more call.
class FakeTimer : public platform::Timer {
public:
    // `submit` brings a turn of the handler onto the timer's queue; the timer ends with `queue`.
    FakeTimer(VirtualTime& time, platform::TimerSchedule schedule, Task handler, std::function<void(Task)> submit,
              std::weak_ptr<void> queue);
    ~FakeTimer() override;

    void start() override;
    void cancel() override;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace vorrano::support
