#pragma once

#include "platform/linux/SerialDevice.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorrano::linux_platform {

// A tty came or went. Numbers grow with each event of the system's.
struct TtyAdded {
    std::uint64_t number = 0;
    TtyFacts facts;
};
struct TtyRemoved {
    std::uint64_t number = 0;
    std::string sysPath;
};
// An event of another kind, or of no meaning here.
struct OtherEvent {};
// Events were lost.
struct EventsLost {};

using TtyEvent = std::variant<TtyAdded, TtyRemoved, OtherEvent, EventsLost>;

// Where the registry has its devices and events from.
//
// Threads: one. No call blocks.
class DeviceSource {
public:
    DeviceSource() = default;
    DeviceSource(const DeviceSource&) = delete;
    DeviceSource& operator=(const DeviceSource&) = delete;
    virtual ~DeviceSource() = default;

    // Begins to listen; false on failure.
    virtual bool start() = 0;

    // Readable when an event waits.
    [[nodiscard]] virtual int descriptor() const = 0;

    // The next event that waits; none when none does.
    [[nodiscard]] virtual std::optional<TtyEvent> receive() = 0;

    // All ttys of the system by their sysfs paths; none on failure.
    [[nodiscard]] virtual std::optional<std::vector<TtyFacts>> enumerate() = 0;

    // The number of the system's last event so far; 0 when it is not known.
    [[nodiscard]] virtual std::uint64_t lastEventNumber() const = 0;

    [[nodiscard]] virtual bool exists(const std::string& sysPath) const = 0;
};

} // namespace vorrano::linux_platform
