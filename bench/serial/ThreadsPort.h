#pragma once

#include "Port.h"

#include <QObject>
#include <QSemaphore>
#include <QTimer>

#include <atomic>
#include <string>
#include <thread>

namespace vorrano::bench {

// The floor of a port with our threads: one that writes while the sender waits, one that reads until the reply is whole
// and wakes the main loop once for it, one that looks at the modem lines every 10 ms, a time-out, and nothing else.
class ThreadsPort final : public Port {
public:
    explicit ThreadsPort(std::string node);
    ~ThreadsPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;

private:
    void next();
    void take();
    void readLine();
    void writeRequests();
    void pollLines() const;

    const std::string m_node;
    int m_line = -1;
    QObject m_mainThread;
    QTimer m_timeout;
    int m_left = 0;
    std::function<void(bool)> m_done;
    std::atomic<bool> m_isOpen = false;
    std::atomic<char> m_request = 0;
    // Their waiters sleep at once; those of the standard library's semaphores look again and again first.
    QSemaphore m_requested;
    QSemaphore m_written;
    std::thread m_reader;
    std::thread m_writer;
    std::thread m_poller;
};

} // namespace vorrano::bench
