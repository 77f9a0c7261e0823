#pragma once

#include "platform/SystemLog.h"
#include "platform/asio/AsioBackgroundQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vorrano::support {

// How long a test waits for what has to come.
inline constexpr std::chrono::seconds kDeadline{20};

// Looks at the condition until it holds; false when it does not within the deadline.
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

// The threads that the process has now.
[[nodiscard]] int threadCount();

// Opens once, for everybody. Those who wait may outstay it.
class Gate {
public:
    void open();
    // False when it was not opened within the deadline.
    bool wait();
    [[nodiscard]] bool isOpen();

private:
    struct State {
        std::mutex mutex;
        std::condition_variable opened;
        bool open = false;
    };
    const std::shared_ptr<State> m_state = std::make_shared<State>();
};

class KeptLog final : public platform::SystemLog {
public:
    void write(std::string_view line) override;
    [[nodiscard]] std::vector<std::string> lines() const;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

// A real queue; the test's thread is the main thread.
class QueueTest : public testing::Test {
protected:
    KeptLog log;
    std::unique_ptr<asio_platform::AsioBackgroundQueue> queue =
        std::make_unique<asio_platform::AsioBackgroundQueue>(log);

    // Runs the task on a background thread and waits for its end.
    void onBackground(const std::function<void()>& task);
};

} // namespace vorrano::support
