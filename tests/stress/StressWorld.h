#pragma once

#include "serial_pty/rig/PtyWorld.h"
#include "stress/BrokenQueues.h"
#include "stress/WatchedQueues.h"
#include "stress/WatchedTerminal.h"
#include "support/SerialSystem.h"

#include <cstdint>

namespace vorrano::stress {

// The serial layer on ptys. What stands between it and its ports follows all that it does, and breaks what is to be
// broken.
class StressWorld : public pty_rig::PtyParts {
public:
    StressWorld(Break breaks, std::uint64_t seed)
        : breaker(breaks)
        , queues(m_broken, loop, seed)
    {}

    Breaker breaker;

private:
    BrokenQueues m_broken{background, breaker};

public:
    WatchedQueues queues;
    WatchedTerminal watchedTerminal{terminal, loop};

private:
    support::SerialSystem m_system{log, loop, queues, watchedTerminal, devices};
};

} // namespace vorrano::stress
