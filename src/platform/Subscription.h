#pragma once

#include <functional>
#include <utility>

namespace vorrano::platform {

// Stands for one registration (an observer, a watcher); dropping it ends the registration.
//
// Threads: dropped on the thread it was made on. It may be dropped from inside the callback it stands for.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end)
        : m_end(std::move(end))
    {}
    Subscription(Subscription&& other) noexcept
        : m_end(std::exchange(other.m_end, nullptr))
    {}
    Subscription& operator=(Subscription&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_end = std::exchange(other.m_end, nullptr);
        }
        return *this;
    }
    ~Subscription() { reset(); }

    // Ends the registration now; a second call does nothing.
    void reset()
    {
        if (const auto end = std::exchange(m_end, nullptr)) {
            end();
        }
    }

    // Lets the registration stand for as long as its observer lives.
    void keep() { m_end = nullptr; }

private:
    std::function<void()> m_end;
};

} // namespace vorrano::platform
