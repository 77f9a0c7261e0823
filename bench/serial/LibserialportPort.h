#pragma once

#include "BlockingPort.h"

#include <string>

struct sp_port;

namespace vorrano::bench {

// libserialport's blocking calls, with their time-outs. It looks each port up in /sys/class/tty.
class LibserialportPort final : public BlockingPort<Port> {
public:
    explicit LibserialportPort(const std::string& node);
    ~LibserialportPort() override;

    bool open() override;
    void close() override;

private:
    [[nodiscard]] bool exchangeOnce(char request) override;

    sp_port* m_port = nullptr;
};

} // namespace vorrano::bench
