#pragma once

#include "EchoDevice.h"
#include "Port.h"

#include <cstddef>
#include <span>

namespace vorrano::bench {

// Looks at each byte of a stream.
class StreamCheck {
public:
    void take(std::span<const char> chunk)
    {
        for (const char byte : chunk) {
            m_isInOrder = byte == streamByte(m_received) && m_isInOrder;
            ++m_received;
        }
    }

    [[nodiscard]] bool isAtItsEnd() const { return m_received >= kStreamLength; }
    [[nodiscard]] bool wentWell() const { return m_isInOrder && m_received == kStreamLength; }

private:
    std::size_t m_received = 0;
    bool m_isInOrder = true;
};

// One that also takes what comes without a pause.
class StreamPort : public Port {
public:
    // Asks for the stream and takes all of it; then tells whether each byte came in its place.
    virtual void receiveStream(std::function<void(bool)> done) = 0;
};

} // namespace vorrano::bench
