#include "platform/asio/AsioPool.h"

#include <csignal>
#include <string>
#include <system_error>

#include <pthread.h>

namespace vorrano::asio_platform {

namespace {

// Free threads that stay.
constexpr int kBase = 2;
// How long a surplus one waits for work.
constexpr std::chrono::seconds kPatience{1};

// A new thread inherits the mask: signals are the main thread's.
class AllSignalsBlocked {
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

} // namespace

AsioPool::AsioPool(platform::SystemLog& log)
    : m_log(log)
    , m_keepRunning(m_context.get_executor())
{}

void AsioPool::take()
{
    if (m_spare.fetch_sub(1) <= 0) {
        grow();
    }
}

void AsioPool::grow()
{
    const std::lock_guard lock(m_mutex);
    if (stopped()) {
        return;
    }
    const auto place = m_threads.emplace(m_threads.end());
    try {
        const AllSignalsBlocked blocked;
        *place = std::thread([self = shared_from_this(), place] { self->work(place); });
        ++m_alive;
        m_spare.fetch_add(1);
    } catch (const std::system_error& refused) {
        // The work waits for a thread that comes free.
        m_threads.erase(place);
        report(refused.what());
    }
}

void AsioPool::work(Threads::iterator self)
{
    pthread_setname_np(pthread_self(), "background");
    serve();
    leave(self);
}

// Until the pool has ended, or this thread is one too many.
void AsioPool::serve()
{
    while (true) {
        if (m_spare.load() <= kBase) {
            if (m_context.run_one() == 0) {
                return;
            }
        } else if (m_context.run_one_for(kPatience) == 0 && (m_context.stopped() || leaveIfSurplus())) {
            return;
        }
    }
}

bool AsioPool::leaveIfSurplus()
{
    int spare = m_spare.load();
    while (spare > kBase) {
        if (m_spare.compare_exchange_weak(spare, spare - 1)) {
            return true;
        }
    }
    return false;
}

void AsioPool::leave(Threads::iterator self)
{
    std::thread before;
    {
        const std::lock_guard lock(m_mutex);
        if (!stopped()) {
            before = std::exchange(m_left, std::move(*self));
            m_threads.erase(self);
        }
        --m_alive;
        m_someoneLeft.notify_all();
    }
    if (before.joinable()) {
        before.join();
    }
}

void AsioPool::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopped.store(true, std::memory_order_release);
    // The threads leave when the last handler has run.
    m_keepRunning.reset();
}

bool AsioPool::join(std::optional<std::chrono::nanoseconds> limit)
{
    std::unique_lock lock(m_mutex);
    const auto allLeft = [this] { return m_alive == 0; };
    if (m_leftSomeBehind) {
        return false;
    }
    if (!limit) {
        m_someoneLeft.wait(lock, allLeft);
    } else if (!m_someoneLeft.wait_for(lock, *limit, allLeft)) {
        m_leftSomeBehind = true;
    }
    Threads threads = std::exchange(m_threads, {});
    threads.push_back(std::exchange(m_left, {}));
    const bool complete = !m_leftSomeBehind;
    lock.unlock();
    for (std::thread& thread : threads) {
        if (complete && thread.joinable()) {
            thread.join();
        } else if (thread.joinable()) {
            thread.detach();
        }
    }
    if (complete) {
        // Drops what was handed in too late for any thread to meet it.
        m_context.restart();
        m_context.poll();
    }
    return complete;
}

void AsioPool::report(const char* what) noexcept
{
    try {
        m_log.write(std::string("Uncaught exception of a background task: ") + what);
    } catch (...) {
        // Nothing is left to tell it to.
    }
}

} // namespace vorrano::asio_platform
