#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace vorrano::bench {

using Microseconds = std::chrono::duration<double, std::micro>;

// A serial port as one of the libraries has it, that asks an EchoDevice.
//
// Threads: the main thread, whose Qt loop runs while something is asked.
class Port {
public:
    Port() = default;
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;
    virtual ~Port() = default;

    // Whether the port is open now.
    virtual bool open() = 0;
    virtual void close() = 0;

    // Makes that many exchanges, each sent once the one before was answered; then tells whether all were answered.
    virtual void exchange(char request, int times, std::function<void(bool)> done) = 0;

    // What whoever does the work has taken of the processor: this process, unless another one does it.
    [[nodiscard]] virtual Microseconds cpuTime() const;

    // Called with each reply that is whole.
    void onReply(std::function<void()> told) { m_told = std::move(told); }

protected:
    void replied() const
    {
        if (m_told) {
            m_told();
        }
    }

private:
    std::function<void()> m_told;
};

} // namespace vorrano::bench
