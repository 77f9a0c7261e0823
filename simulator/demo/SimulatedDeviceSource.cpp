#include "simulator/demo/SimulatedDeviceSource.h"

#include <nlohmann/json.hpp>

#include <array>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorrano::demo {

using linux_platform::OtherEvent;
using linux_platform::TtyAdded;
using linux_platform::TtyEvent;
using linux_platform::TtyFacts;
using linux_platform::TtyRemoved;
using nlohmann::json;

namespace {

constexpr std::string_view kSubscribe = "{\"do\": \"subscribe\"}\n";

// `line` is the simulator's description of its cable.
TtyFacts factsOf(const json& line)
{
    TtyFacts facts;
    facts.sysPath = "/devices/simulated/ttyUSB0";
    facts.name = "ttyUSB0";
    facts.node = line.at("node").get<std::string>();
    facts.hasParent = true;
    facts.parentSubsystem = "usb-serial";
    facts.parentDriver = "simulated";
    facts.serialNumber = line.at("serial").get<std::string>();
    facts.path = "simulated-usb-0:1:1.0";
    facts.bus = "usb";
    return facts;
}

} // namespace

SimulatedDeviceSource::SimulatedDeviceSource(std::string controlPath)
    : m_controlPath(std::move(controlPath))
{}

SimulatedDeviceSource::~SimulatedDeviceSource() { ::close(m_socket); }

bool SimulatedDeviceSource::connect()
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (m_controlPath.size() >= sizeof address.sun_path) {
        return false;
    }
    m_controlPath.copy(address.sun_path, m_controlPath.size());
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return m_socket >= 0 && ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
           ::send(m_socket, kSubscribe.data(), kSubscribe.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(kSubscribe.size());
}

bool SimulatedDeviceSource::start()
{
    if (!connect()) {
        return false;
    }
    // The answer to the subscription comes before any event.
    for (;;) {
        if (const auto line = takeLine()) {
            const auto cable = json::parse(*line).at("line");
            if (cable.at("plugged").get<bool>()) {
                m_present = factsOf(cable);
            }
            return true;
        }
        if (!readMore(0)) {
            return false;
        }
    }
}

bool SimulatedDeviceSource::readMore(int flags)
{
    std::array<char, 4096> buffer{};
    const auto count = ::recv(m_socket, buffer.data(), buffer.size(), flags);
    if (count == 0) {
        beSilent();
    }
    if (count <= 0) {
        return false;
    }
    m_unread.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

std::optional<std::string> SimulatedDeviceSource::takeLine()
{
    const auto end = m_unread.find('\n');
    if (end == std::string::npos) {
        return std::nullopt;
    }
    auto line = m_unread.substr(0, end);
    m_unread.erase(0, end + 1);
    return line;
}

std::optional<TtyEvent> SimulatedDeviceSource::receive()
{
    for (;;) {
        if (const auto line = takeLine()) {
            return eventOf(*line);
        }
        if (!readMore(MSG_DONTWAIT)) {
            return m_simulatorGone ? removal() : std::nullopt;
        }
    }
}

// An ended connection stays readable, which would keep its watcher busy.
void SimulatedDeviceSource::beSilent()
{
    m_simulatorGone = true;
    const int silent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    dup3(silent, m_socket, O_CLOEXEC);
    ::close(silent);
}

std::optional<TtyEvent> SimulatedDeviceSource::removal()
{
    if (!m_present) {
        return std::nullopt;
    }
    return TtyRemoved{++m_lastNumber, std::exchange(m_present, std::nullopt)->sysPath};
}

TtyEvent SimulatedDeviceSource::eventOf(const std::string& line)
{
    const auto event = json::parse(line);
    const auto kind = event.value("event", "");
    if (kind == "plugged") {
        m_present = factsOf(event);
        return TtyAdded{++m_lastNumber, *m_present};
    }
    if (kind == "unplugged") {
        return removal().value_or(OtherEvent{});
    }
    return OtherEvent{};
}

std::optional<std::vector<TtyFacts>> SimulatedDeviceSource::enumerate()
{
    return m_present ? std::vector{*m_present} : std::vector<TtyFacts>();
}

bool SimulatedDeviceSource::exists(const std::string& sysPath) const
{
    return m_present && m_present->sysPath == sysPath;
}

} // namespace vorrano::demo
