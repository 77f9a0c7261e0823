#pragma once

#include "ctl/DeviceJob.h"
#include "ctl/Task.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace vorrano::ctl {

// Exchanges commands for answers, one after the other.
//
// An answer is at its end with its line end, or when nothing has come for a while: the request that it answers may be
// complete with the first of several chunks.
class ExchangeJob final : public DeviceJob {
public:
    [[nodiscard]] static std::shared_ptr<DeviceJob> create(std::shared_ptr<serial::SerialPort> port,
                                                           const platform::PortAccess& portAccess,
                                                           std::vector<Exchange> exchanges);

    void serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data) override;
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortRequestDidTimeout(serial::SerialPort& port,
                                     const std::shared_ptr<serial::SerialRequest>& request) override;

private:
    ExchangeJob(std::shared_ptr<serial::SerialPort> port, const platform::PortAccess& portAccess,
                std::vector<Exchange> exchanges);
    void begin() override;
    void waitForTheEnd();
    void conclude();

    const std::vector<Exchange> m_exchanges;
    std::size_t m_current = 0;
    std::string m_answer;
    bool m_isRequestComplete = false;
};

} // namespace vorrano::ctl
