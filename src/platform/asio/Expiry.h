#pragma once

#include <chrono>

namespace vorrano::asio_platform {

// A point in time that threads wait for.
//
// Threads: every method on any thread, at the same time.
class Expiry {
public:
    // std::system_error when the system has no more descriptors.
    Expiry();
    Expiry(const Expiry&) = delete;
    Expiry& operator=(const Expiry&) = delete;
    ~Expiry();

    // In place of the time set before; one that is past expires at once.
    void set(std::chrono::steady_clock::time_point when) const;

    // Waits until the time has come; of those who wait, one goes on. It may go on for nothing: look at the clock.
    void wait() const;

    // From now on nobody waits.
    void stop() const;

private:
    const int m_timer;
    const int m_stop;
    const int m_set;
};

} // namespace vorrano::asio_platform
