#pragma once

#include "Port.h"

#include <string>

struct sp_port;

namespace vorrano::bench {

// libserialport's blocking calls, with their time-outs. It looks each port up in /sys/class/tty.
class LibserialportPort final : public Port {
public:
    explicit LibserialportPort(const std::string& node);
    ~LibserialportPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;

private:
    sp_port* m_port = nullptr;
};

} // namespace vorrano::bench
