#pragma once

#include <csignal>

#include <pthread.h>

namespace vorrano::asio_platform {

// Blocks all signals on the calling thread for as long as it lives. A thread that is made meanwhile starts with the
// same mask and keeps it: signals are for the main thread.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

} // namespace vorrano::asio_platform
