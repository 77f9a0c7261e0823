#include "serial/SerialRequest.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string_view>
#include <utility>

namespace vorrano::serial {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

char hexDigit(unsigned value) { return kHexDigits[value % kHexDigits.size()]; }

std::mt19937_64 seededGenerator()
{
    std::random_device entropy;
    std::seed_seq seed{entropy(), entropy(), entropy(), entropy(), entropy(), entropy(), entropy(), entropy()};
    return std::mt19937_64(seed);
}

// A random UUID (version 4, variant 10): "XXXXXXXX-XXXX-4XXX-[89AB]XXX-XXXXXXXXXXXX".
std::string newUuid()
{
    thread_local std::mt19937_64 generator = seededGenerator();
    std::uniform_int_distribution<unsigned> digit(0, 15);
    std::string uuid;
    for (const auto place : std::string_view("########-####-4###-V###-############")) {
        switch (place) {
        case '#':
            uuid += hexDigit(digit(generator));
            break;
        case 'V':
            uuid += hexDigit(8 + digit(generator) % 4);
            break;
        default:
            uuid += place;
        }
    }
    return uuid;
}

std::string hexadecimal(std::uintptr_t value)
{
    std::array<char, 2 * sizeof(value)> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value, 16).ptr};
}

// "<48656c6c 6f>": groups of four bytes.
std::string textOf(const Bytes& bytes)
{
    std::string text = "<";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        text += at > 0 && at % 4 == 0 ? " " : "";
        text += "0123456789abcdef"[byte / 16];
        text += "0123456789abcdef"[byte % 16];
    }
    return text + ">";
}

std::string textOf(const std::any& userInfo)
{
    if (!userInfo.has_value()) {
        return "(null)";
    }
    if (const auto* const text = std::any_cast<std::string>(&userInfo)) {
        return *text;
    }
    if (const auto* const text = std::any_cast<const char*>(&userInfo)) {
        return *text;
    }
    if (const auto* const number = std::any_cast<int>(&userInfo)) {
        return std::to_string(*number);
    }
    return std::string("<") + userInfo.type().name() + ">";
}

std::string withSixDecimals(double value)
{
    std::array<char, std::numeric_limits<double>::max_exponent10 + 16> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6).ptr;
    return {text.data(), end};
}

} // namespace

std::shared_ptr<SerialRequest> SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
    Bytes dataToSend, std::any userInfo, std::chrono::duration<double> timeoutInterval,
    ResponseEvaluator responseEvaluator)
{
    return initWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(std::move(dataToSend), std::move(userInfo),
                                                                      timeoutInterval, std::move(responseEvaluator));
}

std::shared_ptr<SerialRequest>
SerialRequest::initWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(Bytes dataToSend, std::any userInfo,
                                                                          std::chrono::duration<double> timeoutInterval,
                                                                          ResponseEvaluator responseEvaluator)
{
    return std::shared_ptr<SerialRequest>(
        new SerialRequest(std::move(dataToSend), std::move(userInfo), timeoutInterval, std::move(responseEvaluator)));
}

SerialRequest::SerialRequest(Bytes dataToSend, std::any userInfo, std::chrono::duration<double> timeoutInterval,
                             ResponseEvaluator responseEvaluator)
    : m_dataToSend(std::move(dataToSend))
    , m_userInfo(std::move(userInfo))
    , m_timeoutInterval(timeoutInterval)
    , m_responseEvaluator(std::move(responseEvaluator))
    , m_uuidString(newUuid())
{}

bool SerialRequest::dataIsValidResponse(const Bytes& responseData) const
{
    return !m_responseEvaluator || m_responseEvaluator(responseData);
}

std::string SerialRequest::description() const
{
    return "<SerialRequest: 0x" + hexadecimal(reinterpret_cast<std::uintptr_t>(this)) +
           "> data: " + textOf(m_dataToSend) + " userInfo: " + textOf(m_userInfo) +
           " timeout interval: " + withSixDecimals(m_timeoutInterval.count());
}

void SerialRequest::setDataToSend(Bytes dataToSend) { m_dataToSend = std::move(dataToSend); }

void SerialRequest::setUserInfo(std::any userInfo) { m_userInfo = std::move(userInfo); }

void SerialRequest::setTimeoutInterval(std::chrono::duration<double> timeoutInterval)
{
    m_timeoutInterval = timeoutInterval;
}

void SerialRequest::setResponseEvaluator(ResponseEvaluator responseEvaluator)
{
    m_responseEvaluator = std::move(responseEvaluator);
}

} // namespace vorrano::serial
