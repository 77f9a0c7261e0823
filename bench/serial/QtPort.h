#pragma once

#include "Port.h"

#include <QSerialPort>
#include <QTimer>

#include <functional>
#include <string>

namespace vorrano::bench {

// The same exchanges by Qt's own serial port class, each with a time-out too.
//
// Threads: the main thread.
class QtPort final : public Port {
public:
    explicit QtPort(const std::string& node);

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;

private:
    void next();
    void readyRead();

    QSerialPort m_port;
    QTimer m_timeout;
    std::string m_received;
    char m_request = 0;
    int m_left = 0;
    std::function<void(bool)> m_done;
};

} // namespace vorrano::bench
