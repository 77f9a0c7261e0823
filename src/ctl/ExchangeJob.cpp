#include "ctl/ExchangeJob.h"

#include "ctl/Answers.h"
#include "device/DeviceTexts.h"

#include <algorithm>
#include <utility>

namespace vorrano::ctl {

using serial::SerialPort;

namespace {

constexpr std::string_view kLineEnd = device::kDoubleTerminator.end;
// Some ten times what an adapter gathers bytes for.
constexpr std::chrono::milliseconds kQuiet{200};

} // namespace

std::shared_ptr<DeviceJob> ExchangeJob::create(std::shared_ptr<SerialPort> port, const platform::PortAccess& portAccess,
                                               std::vector<Exchange> exchanges)
{
    return std::shared_ptr<DeviceJob>(new ExchangeJob(std::move(port), portAccess, std::move(exchanges)));
}

ExchangeJob::ExchangeJob(std::shared_ptr<SerialPort> port, const platform::PortAccess& portAccess,
                         std::vector<Exchange> exchanges)
    : DeviceJob(std::move(port), portAccess)
    , m_exchanges(std::move(exchanges))
{}

void ExchangeJob::begin()
{
    if (m_current == m_exchanges.size()) {
        finish();
        return;
    }
    m_answer.clear();
    m_isRequestComplete = false;
    const auto& exchange = m_exchanges[m_current];
    write(
        [requests = answeredRequestsOf(exchange.command, exchange.argument)](SerialPort& port) {
            return std::all_of(requests.begin(), requests.end(),
                               [&](const auto& request) { return port.sendRequest(request); });
        },
        [] {});
}

void ExchangeJob::serialPortDidReceiveData(SerialPort& /*port*/, const serial::Bytes& data)
{
    m_answer += data;
    if (m_isRequestComplete && !hasEnded()) {
        waitForTheEnd();
    }
}

void ExchangeJob::serialPortDidReceiveResponseToRequest(SerialPort& /*port*/, const serial::Bytes& /*response*/,
                                                        const std::shared_ptr<serial::SerialRequest>& /*request*/)
{
    m_isRequestComplete = true;
    if (!hasEnded()) {
        waitForTheEnd();
    }
}

void ExchangeJob::waitForTheEnd()
{
    if (m_answer.ends_with(kLineEnd)) {
        conclude();
        return;
    }
    after(kQuiet, [this, exchange = m_current, size = m_answer.size()] {
        if (exchange == m_current && size == m_answer.size()) {
            conclude();
        }
    });
}

void ExchangeJob::conclude()
{
    const auto& exchange = m_exchanges[m_current];
    auto value = valueOf(exchange.command, m_answer);
    if (!value) {
        fail("The device gave an answer that is none.");
        return;
    }
    addValue(exchange.name, *std::move(value));
    ++m_current;
    begin();
}

void ExchangeJob::serialPortRequestDidTimeout(SerialPort& /*port*/,
                                              const std::shared_ptr<serial::SerialRequest>& /*request*/)
{
    const std::string what = m_answer.empty() ? "The device did not answer. " : "The device's answer broke off. ";
    fail(what + std::string(device::device_text::kTryAgain));
}

} // namespace vorrano::ctl
