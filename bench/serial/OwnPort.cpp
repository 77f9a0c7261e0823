#include "OwnPort.h"

#include "EchoDevice.h"

#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qtcore/QtMainQueue.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialRequest.h"
#include "serial_pty/rig/PtyDevices.h"
#include "support/SerialSystem.h"

#include <chrono>
#include <thread>
#include <utility>

namespace vorrano::bench {

namespace {

using namespace std::chrono_literals;

constexpr const char* kPath = "/dev/cu.usbserial-BENCH";
constexpr unsigned long kBaudRate = 9600;

class Exchanges final : public serial::SerialPortDelegate {
public:
    Exchanges(char request, int times, std::function<void(bool)> done)
        : m_request(request)
        , m_left(times)
        , m_done(std::move(done))
    {}

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override
    {
        return {serial::SerialPortCallback::DidReceiveResponseToRequest, serial::SerialPortCallback::RequestDidTimeout};
    }

    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& /*response*/,
                                               const std::shared_ptr<serial::SerialRequest>& /*request*/) override
    {
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
    const std::function<void(bool)> m_done;
};

} // namespace

class OwnPort::Parts {
public:
    explicit Parts(const std::string& node)
    {
        m_devices.set(kPath, node);
        port = serial::SerialPort::serialPortWithPath(kPath);
        port->setBaudRate(std::make_shared<const unsigned long>(kBaudRate));
    }

    ~Parts()
    {
        port->close();
        m_backgroundQueue.stop();
        m_backgroundQueue.joinWithin(5s);
        port.reset();
    }

    std::shared_ptr<serial::SerialPort> port;
    std::shared_ptr<Exchanges> delegate;

private:
    posix_platform::PosixSystemLog m_log;
    qt::QtMainQueue m_mainQueue{m_log};
    asio_platform::AsioBackgroundQueue m_backgroundQueue{m_log};
    pty_rig::PtyDevices m_devices;
    posix_platform::PosixTerminal m_terminal{m_devices};
    support::SerialSystem m_system{m_log, m_mainQueue, m_backgroundQueue, m_terminal, m_devices};
};

OwnPort::OwnPort(const std::string& node)
    : m_parts(std::make_unique<Parts>(node))
{}

OwnPort::~OwnPort() = default;

bool OwnPort::open()
{
    m_parts->port->open();
    return m_parts->port->isOpen();
}

void OwnPort::close() { m_parts->port->close(); }

void OwnPort::exchange(char request, int times, std::function<void(bool)> done)
{
    m_parts->delegate = std::make_shared<Exchanges>(request, times, std::move(done));
    m_parts->port->setDelegate(m_parts->delegate);
    m_parts->delegate->next(*m_parts->port);
}

} // namespace vorrano::bench
