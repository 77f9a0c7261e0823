#include "platform/asio/Expiry.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace vorrano::asio_platform {

namespace {

int checked(int result)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), "timer");
    }
    return result;
}

void add(int set, int descriptor, std::uint32_t events)
{
    epoll_event event{};
    event.events = events;
    checked(::epoll_ctl(set, EPOLL_CTL_ADD, descriptor, &event));
}

} // namespace

Expiry::Expiry()
    : m_timer(checked(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)))
    , m_stop(checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)))
    , m_set(checked(::epoll_create1(EPOLL_CLOEXEC)))
{
    // An expiry is told to one waiter and needs no reading; the stop is told to all, for ever.
    add(m_set, m_timer, EPOLLIN | EPOLLET);
    add(m_set, m_stop, EPOLLIN);
}

Expiry::~Expiry()
{
    ::close(m_set);
    ::close(m_stop);
    ::close(m_timer);
}

void Expiry::set(std::chrono::steady_clock::time_point when) const
{
    const std::chrono::nanoseconds time = when.time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    itimerspec setting{};
    setting.it_value = {seconds.count(), (time - seconds).count()};
    ::timerfd_settime(m_timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

void Expiry::wait() const
{
    epoll_event event{};
    ::epoll_wait(m_set, &event, 1, -1);
}

void Expiry::stop() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_stop, &one, sizeof(one));
}

} // namespace vorrano::asio_platform
