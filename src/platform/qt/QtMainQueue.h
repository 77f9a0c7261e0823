#pragma once

#include "platform/MainQueue.h"
#include "platform/Mutex.h"
#include "platform/Subscription.h"

#include <deque>
#include <memory>
#include <thread>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::qt {

// The main queue on Qt's event loop: a queue of its own that takes one task per event, so that it can hold back while
// the nested loop of an alert runs.
//
// Threads: made, held and destroyed on the main thread, which runs the tasks; the rest as MainQueue says.
// Lifetime: outlives everybody who submits. Tasks that never ran are dropped with it.
class QtMainQueue final : public platform::MainQueue {
public:
    explicit QtMainQueue(platform::SystemLog& log);
    ~QtMainQueue() override;

    void async(platform::Task task) override;
    bool sync(platform::Task task) override;
    void after(std::chrono::nanoseconds delay, platform::Task task) override;
    [[nodiscard]] bool isMainThread() const override;

    // Any thread: before all tasks that wait, but held back like them.
    void asyncFirst(platform::Task task);

    // Any thread: for what cannot wait for a person. It runs while an alert is up; a pause delays it.
    void asyncPastAlerts(platform::Task task);

    // Holds the tasks back until the result is dropped; holds are counted. The end of the last one lets the event loop
    // go on with the tasks, it runs none itself.
    [[nodiscard]] platform::Subscription hold();
    // The same, and those past alerts too.
    [[nodiscard]] platform::Subscription holdEverything();
    [[nodiscard]] bool isHeld() const;

    // Runs all tasks, held back or not, until none is left. Later tasks are refused.
    void endAndDrain();

private:
    class Waker;
    class Waiter;
    struct Entry {
        platform::Task task;
        std::shared_ptr<Waiter> waiter;
    };
    using Lane = std::deque<Entry>;

    bool submit(Lane QtMainQueue::*lane, Entry entry);
    Lane* readyLane() VORRANO_REQUIRES(m_mutex);
    void wakeIfReady() VORRANO_REQUIRES(m_mutex);
    void runNext();
    void run(Entry entry);
    platform::Subscription count(int QtMainQueue::*holds);

    platform::SystemLog& m_log;
    const std::thread::id m_mainThread;
    mutable platform::Mutex m_mutex;
    Lane m_tasks VORRANO_GUARDED_BY(m_mutex);
    Lane m_pastAlerts VORRANO_GUARDED_BY(m_mutex);
    int m_holds VORRANO_GUARDED_BY(m_mutex) = 0;
    int m_holdsOfEverything VORRANO_GUARDED_BY(m_mutex) = 0;
    bool m_woken VORRANO_GUARDED_BY(m_mutex) = false;
    bool m_ended VORRANO_GUARDED_BY(m_mutex) = false;
    std::unique_ptr<Waker> m_waker;
};

} // namespace vorrano::qt
