#include "OwnPort.h"

#include "EchoDevice.h"
#include "OwnSystem.h"

#include "serial/SerialPort.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialRequest.h"

#include <chrono>
#include <utility>

namespace vorrano::bench {

namespace {

using namespace std::chrono_literals;
using serial::SerialPortCallback;

class Exchanges final : public serial::SerialPortDelegate {
public:
    Exchanges(char request, int times, std::function<void()> replied, std::function<void(bool)> done)
        : m_request(request)
        , m_left(times)
        , m_replied(std::move(replied))
        , m_done(std::move(done))
    {}

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override
    {
        return {SerialPortCallback::DidReceiveResponseToRequest, SerialPortCallback::RequestDidTimeout};
    }

    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& /*response*/,
                                               const std::shared_ptr<serial::SerialRequest>& /*request*/) override
    {
        m_replied();
        --m_left;
        next(port);
    }

    void serialPortRequestDidTimeout(serial::SerialPort& /*port*/,
                                     const std::shared_ptr<serial::SerialRequest>& /*request*/) override
    {
        m_done(false);
    }

    void next(serial::SerialPort& port)
    {
        if (m_left == 0) {
            m_done(true);
            return;
        }
        port.sendRequest(serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
            serial::Bytes(1, m_request), {}, 2s,
            [](const serial::Bytes& bytes) { return bytes.size() >= kReplyLength; }));
    }

private:
    const char m_request;
    int m_left;
    const std::function<void()> m_replied;
    const std::function<void(bool)> m_done;
};

class Stream final : public serial::SerialPortDelegate {
public:
    explicit Stream(std::function<void(bool)> done)
        : m_done(std::move(done))
    {}

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override
    {
        return {SerialPortCallback::DidReceiveData};
    }

    void serialPortDidReceiveData(serial::SerialPort& /*port*/, const serial::Bytes& data) override
    {
        m_check.take(data);
        if (m_check.isAtItsEnd()) {
            m_done(m_check.wentWell());
        }
    }

private:
    StreamCheck m_check;
    const std::function<void(bool)> m_done;
};

} // namespace

OwnPort::OwnPort(OwnSystem& system, const std::string& node)
    : m_port(system.makePort(node))
{}

OwnPort::~OwnPort() { m_port->close(); }

bool OwnPort::open()
{
    m_port->open();
    return m_port->isOpen();
}

void OwnPort::close() { m_port->close(); }

void OwnPort::exchange(char request, int times, std::function<void(bool)> done)
{
    const auto exchanges = std::make_shared<Exchanges>(
        request, times, [this] { replied(); }, std::move(done));
    m_delegate = exchanges;
    m_port->setDelegate(m_delegate);
    exchanges->next(*m_port);
}

void OwnPort::receiveStream(std::function<void(bool)> done)
{
    m_delegate = std::make_shared<Stream>(std::move(done));
    m_port->setDelegate(m_delegate);
    m_port->sendData(serial::Bytes(1, kStreamRequest));
}

} // namespace vorrano::bench
