#include "device/DeviceExchange.h"

#include "text/Text.h"

namespace vorrano::device {

void DeviceExchange::receiveChunk(const serial::Bytes& chunk)
{
    m_receivedString = text::textFromUtf8(chunk);
    m_incomingDataBuffer += chunk;
}

void DeviceExchange::receiveResponse(const serial::Bytes& response)
{
    m_receivedString = text::textFromUtf8(response);
    if (m_receivedString && m_queryNumber == DeviceCommand::ReadSSID) {
        m_receivedString = replaceDollarSignWithSpaces(*m_receivedString);
    }
}

} // namespace vorrano::device
