#include "support/BackgroundThread.h"

#include <utility>

namespace vorrano::support {

namespace {
thread_local BackgroundThread* t_current = nullptr;
}

void BackgroundThread::Baton::pass()
{
    const std::lock_guard lock(m_mutex);
    m_here = true;
    m_passed.notify_one();
}

void BackgroundThread::Baton::await()
{
    std::unique_lock lock(m_mutex);
    m_passed.wait(lock, [this] { return m_here; });
    m_here = false;
}

BackgroundThread::BackgroundThread(std::function<void(platform::Task)> run)
    : m_run(std::move(run))
    , m_thread([this] { loop(); })
{}

BackgroundThread::~BackgroundThread()
{
    m_quit = true;
    m_here.pass();
    m_thread.join();
}

void BackgroundThread::assign(platform::Task task)
{
    m_task = std::move(task);
    m_busy = true;
    m_fresh = true;
}

void BackgroundThread::resume()
{
    m_here.pass();
    m_back.await();
}

platform::Task BackgroundThread::withdraw()
{
    m_busy = false;
    m_fresh = false;
    return std::exchange(m_task, nullptr);
}

void BackgroundThread::park()
{
    m_back.pass();
    m_here.await();
}

BackgroundThread* BackgroundThread::current() { return t_current; }

void BackgroundThread::loop()
{
    t_current = this;
    for (m_here.await(); !m_quit; m_here.await()) {
        m_fresh = false;
        m_run(std::exchange(m_task, nullptr));
        m_busy = false;
        m_back.pass();
    }
}

} // namespace vorrano::support
