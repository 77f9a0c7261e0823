#pragma once

#include "platform/MainQueue.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortDelegate.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vorrano::serial {

// Writes down what it hears, one line each: "opened", "closed", "removed", "data abc", "response abc", "timeout",
// "error 6". Every callback has to come on the main thread.
class RecordingDelegate : public SerialPortDelegate {
public:
    explicit RecordingDelegate(platform::MainQueue& mainQueue,
                               SerialPortCallbacks callbacks = SerialPortCallbacks::all())
        : m_mainQueue(mainQueue)
        , m_callbacks(callbacks)
    {}

    [[nodiscard]] const std::vector<std::string>& heard() const { return m_heard; }
    // Only the lines that begin like that.
    [[nodiscard]] std::vector<std::string> heard(const std::string& begin) const
    {
        std::vector<std::string> lines;
        std::copy_if(m_heard.begin(), m_heard.end(), std::back_inserter(lines),
                     [&](const std::string& line) { return line.starts_with(begin); });
        return lines;
    }
    void forget()
    {
        m_heard.clear();
        m_errors.clear();
        m_timedOut.clear();
        m_answered.clear();
    }
    [[nodiscard]] const std::vector<SerialError>& errors() const { return m_errors; }
    [[nodiscard]] const std::vector<std::shared_ptr<SerialRequest>>& timedOut() const { return m_timedOut; }
    [[nodiscard]] const std::vector<std::shared_ptr<SerialRequest>>& answered() const { return m_answered; }
    [[nodiscard]] const SerialPort* port() const { return m_port; }

    // Does something inside the callback that writes that line down, each time.
    void whenHearing(const std::string& line, std::function<void()> does) { m_reactions[line] = std::move(does); }

    void setCallbacks(SerialPortCallbacks callbacks) { m_callbacks = callbacks; }
    [[nodiscard]] SerialPortCallbacks callbacks() const override
    {
        EXPECT_TRUE(m_mainQueue.isMainThread());
        return m_callbacks;
    }
    void serialPortWasRemovedFromSystem(SerialPort& port) override { hear(port, "removed"); }
    void serialPortDidReceiveData(SerialPort& port, const Bytes& data) override { hear(port, "data " + data); }
    void serialPortDidReceiveResponseToRequest(SerialPort& port, const Bytes& response,
                                               const std::shared_ptr<SerialRequest>& request) override
    {
        m_answered.push_back(request);
        hear(port, "response " + response);
    }
    void serialPortRequestDidTimeout(SerialPort& port, const std::shared_ptr<SerialRequest>& request) override
    {
        m_timedOut.push_back(request);
        hear(port, "timeout");
    }
    void serialPortDidEncounterError(SerialPort& port, const SerialError& error) override
    {
        m_errors.push_back(error);
        hear(port, "error " + std::to_string(error.code));
    }
    void serialPortWasOpened(SerialPort& port) override { hear(port, "opened"); }
    void serialPortWasClosed(SerialPort& port) override { hear(port, "closed"); }

private:
    void hear(SerialPort& port, const std::string& line)
    {
        EXPECT_TRUE(m_mainQueue.isMainThread()) << line;
        m_port = &port;
        m_heard.push_back(line);
        const auto reaction = m_reactions.find(line);
        if (reaction != m_reactions.end()) {
            const auto does = reaction->second;
            does();
        }
    }

    platform::MainQueue& m_mainQueue;
    SerialPortCallbacks m_callbacks;
    std::vector<std::string> m_heard;
    std::vector<SerialError> m_errors;
    std::vector<std::shared_ptr<SerialRequest>> m_timedOut;
    std::vector<std::shared_ptr<SerialRequest>> m_answered;
    std::map<std::string, std::function<void()>> m_reactions;
    const SerialPort* m_port = nullptr;
};

} // namespace vorrano::serial
