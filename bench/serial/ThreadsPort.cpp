#include "ThreadsPort.h"

#include "BarePoll.h"
#include "EchoDevice.h"
#include "PosixPort.h"

#include <array>
#include <chrono>
#include <utility>

#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace vorrano::bench {

namespace {

constexpr int kRound = 100; // milliseconds
// As long as that of our port's poll.
constexpr std::chrono::nanoseconds kPollLeeway = std::chrono::milliseconds(5);

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
    m_poller = std::thread([this] { pollLines(); });
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
    m_poller.join();
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
    m_timeout.start(std::chrono::seconds(2));
    m_requested.release();
    m_written.acquire();
}

void ThreadsPort::take()
{
    m_timeout.stop();
    --m_left;
    replied();
    next();
}

void ThreadsPort::readLine()
{
    std::array<char, 1024> chunk;
    std::size_t received = 0;
    while (m_isOpen) {
        pollfd wait{m_line, POLLIN, 0};
        if (::poll(&wait, 1, kRound) <= 0) {
            continue;
        }
        const auto count = ::read(m_line, chunk.data(), chunk.size());
        received += count > 0 ? static_cast<std::size_t>(count) : 0;
        if (received >= kReplyLength) {
            received = 0;
            QMetaObject::invokeMethod(
                &m_mainThread, [this] { take(); }, Qt::QueuedConnection);
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

void ThreadsPort::pollLines() const
{
    ::prctl(PR_SET_TIMERSLACK, kPollLeeway.count(), 0, 0, 0);
    pollModemLines(m_line, [this] { return m_isOpen.load(); });
}

} // namespace vorrano::bench
