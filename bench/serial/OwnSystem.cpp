#include "OwnSystem.h"

#include "serial/SerialPort.h"

#include <chrono>

namespace vorrano::bench {

namespace {

using namespace std::chrono_literals;

constexpr unsigned long kBaudRate = 9600;

} // namespace

OwnSystem::~OwnSystem()
{
    m_backgroundQueue.stop();
    m_backgroundQueue.joinWithin(5s);
}

std::shared_ptr<serial::SerialPort> OwnSystem::makePort(const std::string& node)
{
    const auto path = "/dev/cu.usbserial-BENCH" + node.substr(node.rfind('/') + 1);
    m_devices.set(path, node);
    auto port = serial::SerialPort::serialPortWithPath(path);
    port->setBaudRate(std::make_shared<const unsigned long>(kBaudRate));
    return port;
}

} // namespace vorrano::bench
