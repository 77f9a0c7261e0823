#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <QSocketNotifier>

#include <csignal>

namespace vorrano::qt {

// Turns the signals that ask a program to end (SIGTERM, SIGINT and SIGHUP) into events of the main loop, for as long as
// it lives. A signal that was ignored from the start (nohup) stays so.
//
// Threads: the main thread. Lifetime: one at a time.
class QtSignals {
public:
    // Calls back with the signal's number, once for each signal, in their order.
    explicit QtSignals(std::function<void(int number)> told);
    QtSignals(const QtSignals&) = delete;
    QtSignals& operator=(const QtSignals&) = delete;
    ~QtSignals();

private:
    struct Pipe {
        Pipe();
        int reading = -1;
        int writing = -1;
    };
    void receive();

    const std::function<void(int)> m_told;
    const Pipe m_pipe;
    QSocketNotifier m_notifier;
    std::vector<std::pair<int, struct sigaction>> m_before;
};

} // namespace vorrano::qt
