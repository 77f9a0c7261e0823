#pragma once

#include "platform/MainQueue.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace vorrano::support {

// A thread that runs only while it has the baton: the main thread hands it over with resume() and waits until it comes
// back, by park() or by the task's end. So one thread of the program runs at a time, and what one wrote the next one
// sees.
//
// Threads: everything on the main thread, but park() and current().
class BackgroundThread {
public:
    // `run` gets each task on the thread itself.
    explicit BackgroundThread(std::function<void(platform::Task)> run);
    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;

    // Not while a task is under way.
    ~BackgroundThread();

    // Gives it a task, to be begun by the next resume().
    void assign(platform::Task task);

    // Returns when the thread has parked or its task has ended.
    void resume();

    // Whether a task was assigned that has not ended.
    [[nodiscard]] bool isBusy() const { return m_busy; }

    // Whether the task was assigned, but not begun.
    [[nodiscard]] bool isFresh() const { return m_fresh; }

    // Takes back a task that has not begun.
    platform::Task withdraw();

    // On this very thread: gives the baton back and returns with the next resume().
    void park();

    // The one of the calling thread; null on any other thread.
    [[nodiscard]] static BackgroundThread* current();

private:
    class Baton {
    public:
        void pass();
        void await();

    private:
        std::mutex m_mutex;
        std::condition_variable m_passed;
        bool m_here = false;
    };

    void loop();

    std::function<void(platform::Task)> m_run;
    Baton m_here;
    Baton m_back;
    platform::Task m_task;
    bool m_busy = false;
    bool m_fresh = false;
    bool m_quit = false;
    std::thread m_thread;
};

} // namespace vorrano::support
