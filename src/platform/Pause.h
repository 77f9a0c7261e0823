#pragma once

#include <chrono>

namespace vorrano::platform {

// Holds the calling thread (the main one). The windows go on being painted and answer the window system, but no input
// is delivered, no queued work and no timer of the logic runs.
class Pause {
public:
    Pause() = default;
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    virtual ~Pause() = default;

    // Not shorter than `duration`.
    virtual void pause(std::chrono::nanoseconds duration) = 0;
};

} // namespace vorrano::platform
