#pragma once

#include "Port.h"

#include <cstdio>
#include <string>

#include <sys/types.h>

namespace vorrano::bench {

// pyserial, in a Python of its own. It tells of no single reply.
class PyserialPort final : public Port {
public:
    // `script` is pyserial_port.py. std::runtime_error where there is no pyserial.
    PyserialPort(const std::string& script, const std::string& node);
    ~PyserialPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;

    [[nodiscard]] Microseconds cpuTime() const override;

private:
    [[nodiscard]] bool ask(const std::string& line) const;

    pid_t m_process = -1;
    std::FILE* m_toIt = nullptr;
    std::FILE* m_fromIt = nullptr;
};

} // namespace vorrano::bench
