#include "ctl/Tool.h"

#include "ctl/Console.h"
#include "ctl/ExchangeJob.h"
#include "ctl/PortChoice.h"
#include "ctl/PortList.h"
#include "ctl/ResetJob.h"
#include "ctl/UploadJob.h"
#include "device/FirmwareImage.h"

#include <algorithm>
#include <utility>

namespace vorrano::ctl {

using serial::SerialPort;

namespace {

constexpr std::string_view kAreYouSure = "An upload is under way. A Vorrano whose upload is cut off has no firmware. "
                                         "Press Ctrl-C again to cut it off.\n";

Report::Form formOf(const Arguments& arguments)
{
    if (arguments.json) {
        return Report::Form::Json;
    }
    return arguments.all || arguments.ports.size() > 1 ? Report::Form::LabelledValue : Report::Form::Value;
}

} // namespace

Tool::Tool(Arguments arguments, Task task, const ToolInterfaces& interfaces)
    : m_arguments(std::move(arguments))
    , m_task(std::move(task))
    , m_interfaces(interfaces)
    , m_manager(serial::SerialPortManager::sharedSerialPortManager())
{}

void Tool::start(Ended ended)
{
    m_ended = std::move(ended);
    if (std::holds_alternative<ListPorts>(m_task)) {
        list();
        return;
    }
    const auto chosen = chosenPorts(m_arguments, m_manager->availablePorts());
    if (const auto* answer = std::get_if<Answer>(&chosen)) {
        m_interfaces.console.error(std::string(kProgramName) + ": " + answer->text + "\n");
        m_ended(answer->status);
        return;
    }
    work(std::get<serial::SerialPorts>(chosen));
}

void Tool::list()
{
    const auto& ports = m_manager->availablePorts();
    const auto& access = m_interfaces.portAccess;
    m_interfaces.console.output(m_arguments.json ? jsonOf(ports, access) : tableOf(ports, access));
    m_ended(ExitStatus::Done);
}

void Tool::work(const serial::SerialPorts& ports)
{
    m_report.emplace(m_interfaces.console, formOf(m_arguments));
    if (const auto* upload = std::get_if<Upload>(&m_task)) {
        m_image = std::make_shared<const std::string>(upload->image);
        m_progress.emplace(m_interfaces.console, device::linesOfImage(upload->image).size());
    }
    std::transform(ports.begin(), ports.end(), std::back_inserter(m_jobs),
                   [this](const auto& port) { return makeJob(port); });
    for (const auto& job : std::vector(m_jobs)) {
        job->start([this, weak = std::weak_ptr(job)](const Outcome& outcome) { didEnd(weak.lock(), outcome); });
    }
}

std::shared_ptr<DeviceJob> Tool::makeJob(const std::shared_ptr<SerialPort>& port)
{
    const auto& access = m_interfaces.portAccess;
    if (const auto* reset = std::get_if<Reset>(&m_task)) {
        return ResetJob::create(port, access, *reset);
    }
    if (std::holds_alternative<Upload>(m_task)) {
        const auto lineSent = [this](const SerialPort& sender, std::size_t lines) {
            m_progress->lineSent(sender.path(), lines);
        };
        return UploadJob::create(port, access, m_image, {m_interfaces.stayAwake, lineSent});
    }
    return ExchangeJob::create(port, access, std::get<Exchanges>(m_task).exchanges);
}

void Tool::didEnd(const std::shared_ptr<DeviceJob>& job, const Outcome& outcome)
{
    if (m_progress) {
        m_progress->end(job->port().path());
    }
    m_report->add(job->port(), outcome);
    std::erase(m_jobs, job);
    if (m_jobs.empty()) {
        m_ended(m_report->status());
    }
}

void Tool::interrupt()
{
    const bool isUploading =
        std::any_of(m_jobs.begin(), m_jobs.end(), [](const auto& job) { return job->isUploading(); });
    if (isUploading && !std::exchange(m_hasAsked, true)) {
        m_progress->hide();
        m_interfaces.console.error(kAreYouSure);
        return;
    }
    terminate();
}

void Tool::terminate()
{
    for (const auto& job : std::vector(m_jobs)) {
        job->stop("Interrupted.");
    }
}

} // namespace vorrano::ctl
