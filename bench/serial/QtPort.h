#pragma once

#include <QSerialPort>
#include <QTimer>

#include <functional>
#include <string>

namespace vorrano::bench {

// The same exchanges by Qt's own serial port class, each with a time-out too.
//
// Threads: the main thread.
class QtPort {
public:
    explicit QtPort(const std::string& node);

    bool open();
    void close();
    void exchange(char request, int times, std::function<void(bool)> done);

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
