#include "platform/qt/QtPause.h"

#include "platform/qt/QtGate.h"
#include "platform/qtcore/QtMainQueue.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <ctime>

namespace vorrano::qt {

namespace {

using Clock = std::chrono::steady_clock;

// How long the windows wait for being painted at most.
constexpr std::chrono::milliseconds kSlice{8};
// The last stretch belongs to the clock alone, so that no painting makes a pause longer.
constexpr std::chrono::milliseconds kQuietEnd{6};

void sleepUntil(Clock::time_point end)
{
    const auto sinceStart = end.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceStart);
    timespec at{};
    at.tv_sec = seconds.count();
    at.tv_nsec = std::chrono::nanoseconds(sinceStart - seconds).count();
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &at, nullptr) == EINTR) {
    }
}

} // namespace

QtPause::QtPause(QtMainQueue& queue, QtGate& gate)
    : m_queue(queue)
    , m_gate(gate)
{}

void QtPause::pause(std::chrono::nanoseconds duration)
{
    const auto end = Clock::now() + duration;
    const auto hold = m_queue.holdEverything();
    const auto shut = m_gate.shut();
    const auto quiet = end - kQuietEnd;
    while (Clock::now() < quiet) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        sleepUntil(std::min(Clock::now() + kSlice, quiet));
    }
    sleepUntil(end);
}

std::chrono::nanoseconds QtPause::now() const { return Clock::now().time_since_epoch(); }

} // namespace vorrano::qt
