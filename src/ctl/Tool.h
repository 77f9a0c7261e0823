#pragma once

#include "ctl/Arguments.h"
#include "ctl/DeviceJob.h"
#include "ctl/Progress.h"
#include "ctl/Report.h"
#include "ctl/Task.h"
#include "serial/SerialPortManager.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vorrano::platform {
class PortAccess;
class StayAwake;
} // namespace vorrano::platform

namespace vorrano::ctl {

class Console;

// What the tool reaches beside the interfaces of the System.
struct ToolInterfaces {
    Console& console;
    platform::PortAccess& portAccess;
    platform::StayAwake& stayAwake;
};

// The tool at work: finds the ports and does the task at all of them at the same time.
//
// Threads: the main thread. Lifetime: ends after it has called back.
class Tool {
public:
    using Ended = std::function<void(ExitStatus status)>;

    Tool(Arguments arguments, Task task, const ToolInterfaces& interfaces);

    // Calls back once, when every device has been reported.
    void start(Ended ended);

    // Ctrl-C: ends the work at all devices. While an upload is under way the first one only asks to be sure.
    void interrupt();
    // Ends the work without a question.
    void terminate();

private:
    void list();
    void work(const serial::SerialPorts& ports);
    [[nodiscard]] std::shared_ptr<DeviceJob> makeJob(const std::shared_ptr<serial::SerialPort>& port);
    void didEnd(const std::shared_ptr<DeviceJob>& job, const Outcome& outcome);

    const Arguments m_arguments;
    const Task m_task;
    const ToolInterfaces m_interfaces;
    const std::shared_ptr<serial::SerialPortManager> m_manager;
    std::optional<Report> m_report;
    std::optional<Progress> m_progress;
    std::shared_ptr<const std::string> m_image;
    std::vector<std::shared_ptr<DeviceJob>> m_jobs;
    Ended m_ended;
    bool m_hasAsked = false;
};

} // namespace vorrano::ctl
