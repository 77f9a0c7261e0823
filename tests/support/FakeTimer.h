#pragma once

#include "platform/Timer.h"
#include "support/VirtualTime.h"

#include <functional>
#include <memory>

namespace vorrano::support {

// A timer on virtual time. It fires exactly when it is due, or late by the share of its leeway that the world asks for.
class FakeTimer : public platform::Timer {
public:
    // `submit` hands the handler over to the timer's queue.
    FakeTimer(VirtualTime& time, platform::TimerSchedule schedule, Task handler, std::function<void(Task)> submit);
    ~FakeTimer() override;

    void start() override;
    void cancel() override;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace vorrano::support
