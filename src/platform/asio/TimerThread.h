#pragma once

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include <memory>
#include <thread>

namespace vorrano::asio_platform {

// The one thread on which the timers of a background queue expire. An expiry only hands the handler over to its queue,
// so no handler delays another timer. It is a thread of its own because Asio wakes a second thread of a pool at each
// expiry.
//
// Threads: every method on any thread; the destructor on another than its own.
// Lifetime: timers hold the context, and may outlive the thread; they do not expire then.
class TimerThread {
public:
    TimerThread();
    TimerThread(const TimerThread&) = delete;
    TimerThread& operator=(const TimerThread&) = delete;
    ~TimerThread();

    [[nodiscard]] const std::shared_ptr<asio::io_context>& context() const { return m_context; }

    // No timer expires any more.
    void stop() { m_context->stop(); }

private:
    const std::shared_ptr<asio::io_context> m_context = std::make_shared<asio::io_context>(1);
    const asio::executor_work_guard<asio::io_context::executor_type> m_keepRunning{m_context->get_executor()};
    std::thread m_thread;
};

} // namespace vorrano::asio_platform
