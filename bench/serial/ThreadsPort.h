#pragma once

#include "Port.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <semaphore>
#include <string>
#include <thread>

namespace vorrano::bench {

// The floor of a port that neither reads nor writes on the main thread: a thread that writes while the sender waits, a
// thread that reads and posts each chunk to the main loop, a time-out, and nothing else.
class ThreadsPort final : public Port {
public:
    explicit ThreadsPort(std::string node);
    ~ThreadsPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;

private:
    void next();
    void take(std::size_t count);
    void readLine();
    void writeRequests();

    const std::string m_node;
    int m_line = -1;
    QObject m_mainThread;
    QTimer m_timeout;
    std::size_t m_received = 0;
    int m_left = 0;
    std::function<void(bool)> m_done;
    std::atomic<bool> m_isOpen = false;
    std::atomic<char> m_request = 0;
    std::binary_semaphore m_requested{0};
    std::binary_semaphore m_written{0};
    std::thread m_reader;
    std::thread m_writer;
};

} // namespace vorrano::bench
