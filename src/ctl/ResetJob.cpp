#include "ctl/ResetJob.h"

#include "device/DeviceRequests.h"

#include <utility>

namespace vorrano::ctl {

std::shared_ptr<DeviceJob> ResetJob::create(std::shared_ptr<serial::SerialPort> port,
                                            const platform::PortAccess& portAccess, Reset reset)
{
    return std::shared_ptr<DeviceJob>(new ResetJob(std::move(port), portAccess, std::move(reset)));
}

ResetJob::ResetJob(std::shared_ptr<serial::SerialPort> port, const platform::PortAccess& portAccess, Reset reset)
    : DeviceJob(std::move(port), portAccess)
    , m_reset(std::move(reset))
{}

void ResetJob::begin()
{
    write([request = device::requestsOf(m_reset.command).front()](
              serial::SerialPort& port) { return port.sendRequest(request); },
          [this] {
              addValue(m_reset.name, std::string(m_reset.finished));
              finish();
          });
}

} // namespace vorrano::ctl
