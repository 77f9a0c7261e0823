#pragma once

#include <any>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vorrano::serial {

using Bytes = std::string;

// Says whether the bytes received since its request was written are a complete, valid response.
//
// It is asked once right after the write, with no bytes, and once after every chunk that arrives while the request is
// pending, each time with all bytes since the request started; chunks are split anywhere. It runs on the port's request
// queue, never on the main thread: it has to be quick, free of side effects, decide from the bytes alone, and must not
// call sendRequest(). An empty function accepts anything, also no bytes.
using ResponseEvaluator = std::function<bool(const Bytes&)>;

// Bytes to send and the test of what comes back.
//
// Threads: none of its own. A request that was given to a port is read by the port's queue; change it before.
class SerialRequest {
public:
    // A limit of 0 or below, or one that is no number, means no time limit; limits beyond 73 years count as 73 years.
    [[nodiscard]] static std::shared_ptr<SerialRequest>
    requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(Bytes dataToSend, std::any userInfo,
                                                                  std::chrono::duration<double> timeoutInterval,
                                                                  ResponseEvaluator responseEvaluator);
    [[nodiscard]] static std::shared_ptr<SerialRequest>
    initWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(Bytes dataToSend, std::any userInfo,
                                                               std::chrono::duration<double> timeoutInterval,
                                                               ResponseEvaluator responseEvaluator);

    SerialRequest(const SerialRequest&) = delete;
    SerialRequest& operator=(const SerialRequest&) = delete;

    // The evaluator's answer for these bytes; true without an evaluator.
    [[nodiscard]] bool dataIsValidResponse(const Bytes& responseData) const;

    // "<SerialRequest: ADDRESS> data: <HEX> userInfo: TEXT timeout interval: 2.000000". Shows the data: not for a log.
    [[nodiscard]] std::string description() const;

    [[nodiscard]] const Bytes& dataToSend() const { return m_dataToSend; }
    void setDataToSend(Bytes dataToSend);
    // The caller's own, to recognise the answer by.
    [[nodiscard]] const std::any& userInfo() const { return m_userInfo; }
    void setUserInfo(std::any userInfo);
    [[nodiscard]] std::chrono::duration<double> timeoutInterval() const { return m_timeoutInterval; }
    void setTimeoutInterval(std::chrono::duration<double> timeoutInterval);
    [[nodiscard]] const ResponseEvaluator& responseEvaluator() const { return m_responseEvaluator; }
    void setResponseEvaluator(ResponseEvaluator responseEvaluator);
    // Whether the response is a secret, a stored password for instance, that must reach no log. False at first.
    [[nodiscard]] bool isResponseSecret() const { return m_isResponseSecret; }
    void setResponseSecret(bool secret) { m_isResponseSecret = secret; }
    // 36 characters, another one for each request.
    [[nodiscard]] const std::string& UUIDString() const { return m_uuidString; }

private:
    SerialRequest(Bytes dataToSend, std::any userInfo, std::chrono::duration<double> timeoutInterval,
                  ResponseEvaluator responseEvaluator);

    Bytes m_dataToSend;
    std::any m_userInfo;
    std::chrono::duration<double> m_timeoutInterval;
    ResponseEvaluator m_responseEvaluator;
    std::string m_uuidString;
    bool m_isResponseSecret = false;
};

} // namespace vorrano::serial
