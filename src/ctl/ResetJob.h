#pragma once

#include "ctl/DeviceJob.h"
#include "ctl/Task.h"

#include <memory>

namespace vorrano::ctl {

// Sends a reset and waits for nothing but its way out.
class ResetJob final : public DeviceJob {
public:
    [[nodiscard]] static std::shared_ptr<DeviceJob> create(std::shared_ptr<serial::SerialPort> port,
                                                           const platform::PortAccess& portAccess, Reset reset);

private:
    ResetJob(std::shared_ptr<serial::SerialPort> port, const platform::PortAccess& portAccess, Reset reset);
    void begin() override;

    const Reset m_reset;
};

} // namespace vorrano::ctl
