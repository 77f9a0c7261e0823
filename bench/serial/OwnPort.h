#pragma once

#include "StreamPort.h"

#include <memory>
#include <string>

namespace vorrano::serial {
class SerialPort;
class SerialPortDelegate;
} // namespace vorrano::serial

namespace vorrano::bench {

class OwnSystem;

// This project's serial port.
class OwnPort final : public StreamPort {
public:
    OwnPort(OwnSystem& system, const std::string& node);
    ~OwnPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;
    void receiveStream(std::function<void(bool)> done) override;

private:
    const std::shared_ptr<serial::SerialPort> m_port;
    std::shared_ptr<serial::SerialPortDelegate> m_delegate;
};

} // namespace vorrano::bench
