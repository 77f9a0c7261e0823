#include "platform/asio/TimerThread.h"

#include "platform/asio/SignalsBlocked.h"

#include <pthread.h>

namespace vorrano::asio_platform {

TimerThread::TimerThread()
{
    const SignalsBlocked forTheThread;
    m_thread = std::thread([context = m_context] {
        pthread_setname_np(pthread_self(), "timers");
        context->run();
    });
}

TimerThread::~TimerThread()
{
    stop();
    m_thread.join();
}

} // namespace vorrano::asio_platform
