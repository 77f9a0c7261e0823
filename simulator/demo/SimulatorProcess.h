#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>

namespace vorrano::demo {

// The simulator beside this program, started as a process of its own. It ends with this object, and with this process
// however that ends.
// Threads: one.
class SimulatorProcess {
public:
    // Waits until all of it is up; throws std::exception when it can't be.
    SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;
    ~SimulatorProcess();

    [[nodiscard]] const std::string& controlPath() const { return m_controlPath; }
    [[nodiscard]] std::uint16_t servicePort() const { return m_servicePort; }

private:
    void start();
    void end() noexcept;
    [[nodiscard]] std::string firstLine() const;

    std::string m_folder;
    std::string m_controlPath;
    std::uint16_t m_servicePort = 0;
    pid_t m_process = -1;
    int m_toSimulator = -1;
    int m_fromSimulator = -1;
};

} // namespace vorrano::demo
