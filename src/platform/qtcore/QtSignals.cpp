#include "platform/qtcore/QtSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace vorrano::qt {

namespace {

constexpr std::array kEndingSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> s_writing{-1};

void noteSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<std::uint8_t>(number);
    [[maybe_unused]] const auto written = write(s_writing.load(), &byte, sizeof byte);
    errno = error;
}

} // namespace

QtSignals::Pipe::Pipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    reading = ends[0];
    writing = ends[1];
}

QtSignals::QtSignals(std::function<void(int)> told)
    : m_told(std::move(told))
    , m_notifier(m_pipe.reading, QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { receive(); });
    s_writing = m_pipe.writing;
    for (const int number : kEndingSignals) {
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        m_before.emplace_back(number, before);
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        if (before.sa_handler != SIG_IGN) {
            sigaction(number, &action, nullptr);
        }
    }
}

QtSignals::~QtSignals()
{
    for (const auto& [number, before] : m_before) {
        sigaction(number, &before, nullptr);
    }
    s_writing = -1;
    m_notifier.setEnabled(false);
    close(m_pipe.reading);
    close(m_pipe.writing);
}

void QtSignals::receive()
{
    std::uint8_t number = 0;
    while (read(m_pipe.reading, &number, sizeof number) == sizeof number) {
        m_told(number);
    }
}

} // namespace vorrano::qt
