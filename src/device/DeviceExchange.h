#pragma once

#include "device/DeviceCommand.h"
#include "serial/SerialRequest.h"

#include <optional>
#include <string>

namespace vorrano::device {

// What a tab sent last, and what came back. A reply does not say which command it answers: the command sent last
// decides.
//
// Threads: the main thread.
class DeviceExchange {
public:
    // None before the first command.
    [[nodiscard]] const std::optional<DeviceCommand>& queryNumber() const { return m_queryNumber; }
    void setQueryNumber(DeviceCommand command) { m_queryNumber = command; }

    // The reply, or the chunk, received last; none when it is no UTF-8.
    [[nodiscard]] const std::optional<std::string>& receivedString() const { return m_receivedString; }
    void receiveChunk(const serial::Bytes& chunk);
    // Whether the chunk received last may hold a stored password, which must not reach the log.
    [[nodiscard]] bool isChunkSecret() const { return m_isChunkSecret; }
    void setChunkSecret(bool secret) { m_isChunkSecret = secret; }
    // A response to the question for the SSID gets its spaces back.
    void receiveResponse(const serial::Bytes& response);
    void forgetReceivedString() { m_receivedString.reset(); }

    // Every chunk since the connection was made.
    [[nodiscard]] const serial::Bytes& incomingDataBuffer() const { return m_incomingDataBuffer; }
    void emptyIncomingDataBuffer() { m_incomingDataBuffer.clear(); }

    // Set by each raw write; nothing waits for it.
    [[nodiscard]] bool waitingForAck() const { return m_waitingForAck; }
    void setWaitingForAck() { m_waitingForAck = true; }

private:
    std::optional<DeviceCommand> m_queryNumber;
    std::optional<std::string> m_receivedString;
    serial::Bytes m_incomingDataBuffer;
    bool m_isChunkSecret = false;
    bool m_waitingForAck = false;
};

} // namespace vorrano::device
