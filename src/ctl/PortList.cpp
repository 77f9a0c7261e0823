#include "ctl/PortList.h"

#include "ctl/Json.h"
#include "ctl/PortChoice.h"
#include "device/VorranoPort.h"
#include "platform/DeviceRegistry.h"
#include "platform/PortAccess.h"
#include "text/EscapedLine.h"
#include "text/Text.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <vector>

namespace vorrano::ctl {

using serial::SerialPort;

namespace {

constexpr std::size_t kColumns = 7;
using Row = std::array<std::string, kColumns>;

std::optional<std::string> propertyOf(const SerialPort& port, std::string_view key)
{
    return SerialPort::stringPropertyOfForIOSerialKey(port.IOKitDevice(), key);
}

std::string cell(const std::optional<std::string>& text) { return text ? text::escapedLine(*text) : "-"; }

Row rowOf(const SerialPort& port, const platform::PortAccess& access)
{
    return {port.path(),
            nodeOf(port),
            device::isVorranoPath(port.path()) ? "yes" : "no",
            cell(propertyOf(port, platform::kAdapterNameKey)),
            cell(propertyOf(port, platform::kAdapterSerialNumberKey)),
            access.isPermitted(port.path()) ? "yes" : "no",
            cell(access.programThatUses(port.path()))};
}

std::string lineOf(const Row& row, const std::array<std::size_t, kColumns>& widths)
{
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
        line += row[i];
        if (i + 1 < kColumns) {
            line += std::string(widths[i] - text::utf16Length(row[i]) + 2, ' ');
        }
    }
    return line + "\n";
}

} // namespace

std::string tableOf(const serial::SerialPorts& ports, const platform::PortAccess& access)
{
    std::vector<Row> rows{{"PORT", "NODE", "VORRANO", "ADAPTER", "SERIAL", "ALLOWED", "USED BY"}};
    for (const auto& port : ports) {
        rows.push_back(rowOf(*port, access));
    }
    std::array<std::size_t, kColumns> widths{};
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < kColumns; ++i) {
            widths[i] = std::max(widths[i], text::utf16Length(row[i]));
        }
    }
    return std::accumulate(rows.begin(), rows.end(), std::string(),
                           [&](std::string table, const Row& row) { return std::move(table) + lineOf(row, widths); });
}

std::string jsonOf(const serial::SerialPorts& ports, const platform::PortAccess& access)
{
    std::string lines;
    for (const auto& port : ports) {
        const auto orNull = [](const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); };
        lines += ctl::lineOf(Json{{"port", port->path()},
                                  {"node", nodeOf(*port)},
                                  {"vorrano", device::isVorranoPath(port->path())},
                                  {"adapter", orNull(propertyOf(*port, platform::kAdapterNameKey))},
                                  {"serial", orNull(propertyOf(*port, platform::kAdapterSerialNumberKey))},
                                  {"allowed", access.isPermitted(port->path())},
                                  {"usedBy", orNull(access.programThatUses(port->path()))}});
    }
    return lines;
}

} // namespace vorrano::ctl
