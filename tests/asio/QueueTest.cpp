#include "QueueTest.h"

#include <filesystem>
#include <iterator>
#include <string>

#include <unistd.h>

namespace vorrano::support {

bool eventually(const std::function<bool()>& condition)
{
    std::mutex mutex;
    std::condition_variable nobody;
    std::unique_lock lock(mutex);
    const auto end = std::chrono::steady_clock::now() + kDeadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        nobody.wait_for(lock, std::chrono::milliseconds(2));
    }
    return true;
}

namespace {

// A sanitizer starts a thread of its own along with the process's first, which must not count as somebody's.
bool startFirstThread()
{
    pid_t first = 0;
    std::thread([&] { first = ::gettid(); }).join();
    // The kernel lists it for a moment longer.
    return eventually([&] { return !std::filesystem::exists("/proc/self/task/" + std::to_string(first)); });
}

} // namespace

int threadCount()
{
    [[maybe_unused]] static const bool started = startFirstThread();
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<int>(std::distance(begin(threads), end(threads)));
}

void Gate::open()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->open = true;
    m_state->opened.notify_all();
}

bool Gate::wait()
{
    const auto state = m_state;
    std::unique_lock lock(state->mutex);
    return state->opened.wait_for(lock, kDeadline, [&] { return state->open; });
}

bool Gate::isOpen()
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->open;
}

void KeptLog::write(std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    m_lines.emplace_back(line);
}

std::vector<std::string> KeptLog::lines() const
{
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

void QueueTest::onBackground(const std::function<void()>& task)
{
    const auto ended = std::make_shared<Gate>();
    queue->async([task, ended] {
        task();
        ended->open();
    });
    EXPECT_TRUE(ended->wait());
}

} // namespace vorrano::support
