#pragma once

#include "campaign/VirtualService.h"

#include <string>
#include <variant>
#include <vector>

// Everything that can go wrong on the line and with the service.
namespace vorrano::campaign {

enum class LineFault {
    Silence,         // the device does not answer
    ShortDelay,      // it answers after 1 s: within a request's time limit
    LongDelay,       // after 3 s: beyond it
    Split,           // its reply comes byte by byte
    Merge,           // its reply stays away, and comes in front of the next one
    Garbage,         // nonsense that is no UTF-8 comes instead
    Cut,             // two bytes of its reply come
    HangUp,          // two bytes come, then the cable is out
    PulledCable,     // the cable is out
    LinesGone,       // the modem lines answer that the device is gone
    LinesUnreadable, // the modem lines can't be read
    WriteFails,      // the next write fails
    WritesInParts,   // a write takes one byte at a time
    SlowWrite,       // the next write takes half a second
    ReadFails,       // the next read fails
    WaitFails,       // the next waits for bytes fail
    HeldByAnother,   // another program has the line when the port is opened
};

// The computer has no network.
struct NoNetwork {};

struct Fault {
    std::string name;
    std::variant<LineFault, ServiceMood, NoNetwork> what;
};

[[nodiscard]] std::vector<Fault> allFaults();

// When a fault strikes: before the action; once its first bytes are at the device or its request at the service; or
// once all has come of it that comes.
enum class Moment { Before, During, After };

inline constexpr std::chrono::milliseconds kShortDelay{1000};
inline constexpr std::chrono::milliseconds kLongDelay{3000};
inline constexpr std::chrono::milliseconds kSlowWrite{500};
inline constexpr std::size_t kCutAfter = 2;

} // namespace vorrano::campaign
