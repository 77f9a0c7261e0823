#include "ctl/PortChoice.h"

#include "device/DeviceTexts.h"
#include "device/VorranoPort.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include <sys/stat.h>

namespace vorrano::ctl {

using serial::SerialPort;
using serial::SerialPorts;

namespace {

bool leadToTheSameFile(const std::string& first, const std::string& second)
{
    struct stat one {};
    struct stat other {};
    return ::stat(first.c_str(), &one) == 0 && ::stat(second.c_str(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

// A node may be named by a link to it, as below /dev/serial.
bool isMeantBy(const SerialPort& port, const std::string& name)
{
    const auto node = nodeOf(port);
    return name == port.path() || name == node || leadToTheSameFile(name, node);
}

std::variant<SerialPorts, Answer> namedPorts(const std::vector<std::string>& names, const SerialPorts& listed)
{
    for (const auto& name : names) {
        const auto isMeant = [&](const auto& port) { return isMeantBy(*port, name); };
        if (std::none_of(listed.begin(), listed.end(), isMeant)) {
            return Answer{ExitStatus::NoVorrano, "There is no serial port '" + name + "'."};
        }
    }
    SerialPorts ports;
    std::copy_if(listed.begin(), listed.end(), std::back_inserter(ports), [&](const auto& port) {
        return std::any_of(names.begin(), names.end(), [&](const auto& name) { return isMeantBy(*port, name); });
    });
    return ports;
}

} // namespace

std::string nodeOf(const SerialPort& port)
{
    return SerialPort::bsdDialinPathFromDevice(port.IOKitDevice()).value_or("");
}

std::variant<SerialPorts, Answer> chosenPorts(const Arguments& arguments, const SerialPorts& listed)
{
    if (!arguments.ports.empty()) {
        return namedPorts(arguments.ports, listed);
    }
    SerialPorts vorranos;
    std::copy_if(listed.begin(), listed.end(), std::back_inserter(vorranos),
                 [](const auto& port) { return device::isVorranoPath(port->path()); });
    if (vorranos.empty()) {
        return Answer{ExitStatus::NoVorrano, std::string(device::device_text::kNoVorranoConnected)};
    }
    if (vorranos.size() > 1 && !arguments.all) {
        return refusal("Several Vorranos are connected. Choose with --port, or take --all.");
    }
    return vorranos;
}

} // namespace vorrano::ctl
