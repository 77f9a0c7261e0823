#pragma once

#include "platform/qt/HeldKeys.h"

#include <QApplication>

#include <functional>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::qt {

// Qt's application object, with the program's name and icon. An exception that leaves an event handler is written to
// the system log, in nested loops too. A key that is held down acts once.
//
// Threads: made on the main thread, before any window. Lifetime: outlives them; `argc` and `log` outlive it.
class QtApplication final : public QApplication {
public:
    QtApplication(int& argc, char** argv, platform::SystemLog& log);

    // What to do when the session asks the program to end.
    void onQuitRequest(std::function<void()> asked);

    bool notify(QObject* receiver, QEvent* event) override;

protected:
    bool event(QEvent* event) override;

private:
    platform::SystemLog& m_log;
    HeldKeys m_heldKeys;
    std::function<void()> m_quitRequest;
};

} // namespace vorrano::qt
