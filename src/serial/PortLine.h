#pragma once

#include "platform/Terminal.h"

#include <atomic>
#include <cstdint>

namespace vorrano::serial {

// One open of a port. Its reader, its poll and its writers hold it: the last of them gives the descriptor's number
// back, so that none of them ever meets somebody else's file under that number.
//
// Threads: any.
class PortLine {
public:
    PortLine(platform::Terminal& terminal, int descriptor, std::uint64_t number)
        : m_terminal(terminal)
        , m_descriptor(descriptor)
        , m_number(number)
    {}
    PortLine(const PortLine&) = delete;
    PortLine& operator=(const PortLine&) = delete;
    ~PortLine()
    {
        if (m_isClosed) {
            m_terminal.release(m_descriptor);
        }
    }

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    // Which of its port's opens it is.
    [[nodiscard]] std::uint64_t number() const { return m_number; }

    void setClosed() { m_isClosed = true; }

private:
    platform::Terminal& m_terminal;
    const int m_descriptor;
    const std::uint64_t m_number;
    std::atomic<bool> m_isClosed = false;
};

} // namespace vorrano::serial
