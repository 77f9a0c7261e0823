#include "PortProbe.h"

#include "ProbeWorld.h"

#include <any>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace vorrano::kernel_test {

using serial::Bytes;
using serial::SerialPort;
using serial::SerialPorts;

namespace {

void say(const std::string& line) { std::cout << line << std::endl; }

void say(const char* what, bool outcome) { say(std::string(what) + (outcome ? " 1" : " 0")); }

std::string hex(const Bytes& bytes)
{
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<std::uint8_t>(byte);
        text += {kDigits[value >> 4U], kDigits[value & 0x0FU]};
    }
    return text;
}

template <class Value>
Value read(std::istream& words)
{
    Value value{};
    if (!(words >> value)) {
        throw std::invalid_argument("a word is missing, or is no number");
    }
    return value;
}

Bytes readBytes(std::istream& words)
{
    const auto text = read<std::string>(words);
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        std::uint8_t value = 0;
        std::from_chars(text.data() + i, text.data() + i + 2, value, 16);
        bytes += static_cast<char>(value);
    }
    return bytes;
}

serial::SerialParity readParity(std::istream& words)
{
    static const std::map<std::string, serial::SerialParity> kNames{
        {"none", serial::SerialParityNone}, {"odd", serial::SerialParityOdd}, {"even", serial::SerialParityEven}};
    return kNames.at(read<std::string>(words));
}

} // namespace

PortProbe::PortProbe(ProbeWorld& world)
    : m_world(world)
{
    addVerbs();
    addSettings();
}

void PortProbe::addVerbs()
{
    m_verbs = {
        {"port", [this](std::istream& words) { takePort(read<std::string>(words)); }},
        {"watch", [this](std::istream&) { watch(); }},
        {"open", [this](std::istream&) { m_port->open(); }},
        {"close", [this](std::istream&) { say("close", m_port->close()); }},
        {"send", [this](std::istream& words) { say("sent", m_port->sendData(readBytes(words))); }},
        {"fill", [this](std::istream& words) { say("sent", m_port->sendData(Bytes(read<std::size_t>(words), 'x'))); }},
        {"fillAside", [this](std::istream& words) { fillAside(read<std::size_t>(words)); }},
        {"request",
         [this](std::istream& words) {
             const auto bytes = readBytes(words);
             const auto seconds = read<double>(words);
             request(bytes, seconds, read<std::size_t>(words));
         }},
    };
}

void PortProbe::addSettings()
{
    const auto addFlag = [this](const char* name, void (SerialPort::*set)(bool)) {
        m_verbs.emplace(name, [this, set](std::istream& words) { (m_port.get()->*set)(read<bool>(words)); });
    };
    addFlag("rtscts", &SerialPort::setUsesRTSCTSFlowControl);
    addFlag("dtrdsr", &SerialPort::setUsesDTRDSRFlowControl);
    addFlag("dcdout", &SerialPort::setUsesDCDOutputFlowControl);
    addFlag("rts", &SerialPort::setRTS);
    addFlag("dtr", &SerialPort::setDTR);
    m_verbs.emplace("baud", [this](std::istream& words) {
        m_port->setBaudRate(std::make_shared<const unsigned long>(read<unsigned long>(words)));
    });
    m_verbs.emplace("stopbits",
                    [this](std::istream& words) { m_port->setNumberOfStopBits(read<std::uint64_t>(words)); });
    m_verbs.emplace("parity", [this](std::istream& words) { m_port->setParity(readParity(words)); });
}

void PortProbe::obey(const std::string& line)
{
    std::istringstream words(line);
    const auto verb = m_verbs.find(read<std::string>(words));
    if (verb == m_verbs.end()) {
        throw std::invalid_argument("no such verb: " + line);
    }
    verb->second(words);
}

void PortProbe::end()
{
    m_subscriptions.clear();
    if (m_port) {
        m_port->close();
        m_port.reset();
    }
    m_manager.reset();
    serial::SerialPortManager::releaseShared();
}

void PortProbe::takePort(const std::string& path)
{
    m_port = SerialPort::serialPortWithPath(path);
    if (m_port) {
        m_port->setDelegate(weak_from_this());
        mirror("CTS", &SerialPort::CTS);
        mirror("DSR", &SerialPort::DSR);
        mirror("DCD", &SerialPort::DCD);
    }
    say("port", m_port != nullptr);
}

void PortProbe::mirror(const char* key, bool (SerialPort::*line)() const)
{
    m_subscriptions.push_back(m_port->observe(key, [this, key, line] { say(key, (m_port.get()->*line)()); }));
}

void PortProbe::watch()
{
    const auto sayOfEach = [this](std::string_view name, std::string_view key, auto sayOf) {
        const auto told = [key = std::string(key), sayOf](const platform::Notification& notification) {
            for (const auto& port : std::any_cast<const SerialPorts&>(notification.userInfo.at(key))) {
                sayOf(port);
            }
        };
        m_subscriptions.push_back(m_world.serialSystem.notifications.observe(name, weak_from_this(), told));
    };
    m_manager = serial::SerialPortManager::sharedSerialPortManager();
    sayOfEach(serial::kSerialPortWasConnectedNotification, serial::kConnectedSerialPortsKey,
              [this](const auto& port) { say("connected " + port->path() + (port == m_port ? " same" : " other")); });
    sayOfEach(serial::kSerialPortWasDisconnectedNotification, serial::kDisconnectedSerialPortsKey,
              [](const auto& port) { say("disconnected " + port->path()); });
    say("watching");
}

void PortProbe::fillAside(std::size_t count)
{
    m_world.background.async([this, port = m_port, count] {
        const auto sent = port->sendData(Bytes(count, 'x'));
        m_world.mainQueue.async([sent] { say("sent", sent); });
    });
}

void PortProbe::request(const Bytes& bytes, double seconds, std::size_t count)
{
    m_port->sendRequest(serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        bytes, {}, std::chrono::duration<double>(seconds),
        [count](const Bytes& received) { return received.size() >= count; }));
}

void PortProbe::serialPortWasRemovedFromSystem(SerialPort& /*port*/) { say("removed"); }

void PortProbe::serialPortDidReceiveData(SerialPort& /*port*/, const Bytes& data) { say("data " + hex(data)); }

void PortProbe::serialPortDidReceiveResponseToRequest(SerialPort& /*port*/, const Bytes& response,
                                                      const std::shared_ptr<serial::SerialRequest>& /*request*/)
{
    say("response " + hex(response));
}

void PortProbe::serialPortRequestDidTimeout(SerialPort& /*port*/,
                                            const std::shared_ptr<serial::SerialRequest>& /*request*/)
{
    say("timeout");
}

void PortProbe::serialPortDidEncounterError(SerialPort& /*port*/, const serial::SerialError& error)
{
    say("error " + std::to_string(error.code));
}

void PortProbe::serialPortWasOpened(SerialPort& /*port*/) { say("opened"); }

void PortProbe::serialPortWasClosed(SerialPort& /*port*/) { say("closed"); }

} // namespace vorrano::kernel_test
