#pragma once

#include <functional>
#include <memory>

namespace vorrano::platform {
class NotificationCentre;
class SystemLog;
} // namespace vorrano::platform

namespace vorrano::qt {

class QtGate;
class QtMainQueue;
class QtSignals;

// The program's main loop, from the launch to an orderly end.
//
// The end, by quit(), by the session, or by SIGTERM, SIGINT or SIGHUP: alerts on screen end without an answer, and ones
// asked for later answer at once; when the action under way has returned, the will-terminate notification is posted,
// the main queue runs until it is empty and is closed, and run() returns.
// Threads: the main thread. Lifetime: one at a time; its parts and the application object outlive it.
class QtMainLoop {
public:
    QtMainLoop(QtMainQueue& queue, QtGate& gate, platform::NotificationCentre& centre, platform::SystemLog& log);
    QtMainLoop(const QtMainLoop&) = delete;
    QtMainLoop& operator=(const QtMainLoop&) = delete;
    ~QtMainLoop();

    // Runs `onLaunched` as the first task, then whatever comes. Returns the exit status. Closing the last window ends
    // nothing by itself.
    int run(std::function<void()> onLaunched);

    // Asks for the end; a second call changes nothing.
    void quit();

private:
    void finish();

    QtMainQueue& m_queue;
    QtGate& m_gate;
    platform::NotificationCentre& m_centre;
    platform::SystemLog& m_log;
    std::unique_ptr<QtSignals> m_signals;
    bool m_quitting = false;
};

} // namespace vorrano::qt
