#pragma once

#include "platform/Pause.h"

namespace vorrano::qt {

class QtGate;
class QtMainQueue;

// Pauses that let Qt paint and answer the window system and the accessibility bus in slices of a few milliseconds.
// What the person does with pointer and keys waits for the end; what comes over the accessibility bus is dropped.
class QtPause final : public platform::Pause {
public:
    QtPause(QtMainQueue& queue, QtGate& gate);

    void pause(std::chrono::nanoseconds duration) override;

private:
    QtMainQueue& m_queue;
    QtGate& m_gate;
};

} // namespace vorrano::qt
