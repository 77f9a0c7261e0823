#include "ThreadsPort.h"

#include "EchoDevice.h"
#include "PosixPort.h"

#include <array>
#include <chrono>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace vorrano::bench {

namespace {

constexpr int kRound = 100; // milliseconds

} // namespace

ThreadsPort::ThreadsPort(std::string node)
    : m_node(std::move(node))
{
    m_timeout.setSingleShot(true);
    QObject::connect(&m_timeout, &QTimer::timeout, &m_mainThread, [this] { m_done(false); });
}

ThreadsPort::~ThreadsPort() { close(); }

bool ThreadsPort::open()
{
    m_line = openLine(m_node);
    if (m_line < 0) {
        return false;
    }
    m_isOpen = true;
    m_reader = std::thread([this] { readLine(); });
    m_writer = std::thread([this] { writeRequests(); });
    return true;
}

void ThreadsPort::close()
{
    if (!m_isOpen.exchange(false)) {
        return;
    }
    m_requested.release();
    m_reader.join();
    m_writer.join();
    ::close(std::exchange(m_line, -1));
}

void ThreadsPort::exchange(char request, int times, std::function<void(bool)> done)
{
    m_request = request;
    m_left = times;
    m_done = std::move(done);
    next();
}

void ThreadsPort::next()
{
    if (m_left == 0) {
        m_done(true);
        return;
    }
    m_received = 0;
    m_timeout.start(std::chrono::seconds(2));
    m_requested.release();
    m_written.acquire();
}

void ThreadsPort::take(std::size_t count)
{
    m_received += count;
    if (m_received >= kReplyLength) {
        m_timeout.stop();
        --m_left;
        replied();
        next();
    }
}

void ThreadsPort::readLine()
{
    std::array<char, 1024> chunk;
    while (m_isOpen) {
        pollfd wait{m_line, POLLIN, 0};
        if (::poll(&wait, 1, kRound) <= 0) {
            continue;
        }
        const auto count = ::read(m_line, chunk.data(), chunk.size());
        if (count > 0) {
            QMetaObject::invokeMethod(
                &m_mainThread,
                [this, bytes = std::string(chunk.data(), static_cast<std::size_t>(count))] { take(bytes.size()); },
                Qt::QueuedConnection);
        }
    }
}

void ThreadsPort::writeRequests()
{
    while (true) {
        m_requested.acquire();
        if (!m_isOpen) {
            return;
        }
        const char request = m_request;
        // What was not written is not answered.
        [[maybe_unused]] const auto count = ::write(m_line, &request, 1);
        m_written.release();
    }
}

} // namespace vorrano::bench
