#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vorrano::bench {

// This project's serial port over its real adapters: Qt's main loop, asio's queues, Linux's terminals.
//
// Threads: the main thread.
class OwnPort {
public:
    explicit OwnPort(const std::string& node);
    OwnPort(const OwnPort&) = delete;
    OwnPort& operator=(const OwnPort&) = delete;
    ~OwnPort();

    // Whether the port is open now.
    bool open();
    void close();

    // Makes that many exchanges, each sent from the main loop once the one before was answered there; then tells
    // whether all were answered, from the main loop too.
    void exchange(char request, int times, std::function<void(bool)> done);

private:
    class Parts;
    const std::unique_ptr<Parts> m_parts;
};

} // namespace vorrano::bench
