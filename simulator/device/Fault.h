#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::simulator {

// The bootloader's prompt, where a fault names the command whose reply it spoils.
inline constexpr char kPromptCommand = '>';

// An answer of no meaning, and no UTF-8.
inline constexpr std::string_view kNonsense = "\xFF\x81\x02#~\xC3";

// One way in which the simulated Vorrano misbehaves. Several faults that match one reply act on it in their order.
struct Fault {
    enum class Kind {
        Silence, // no reply
        Delay,   // the reply comes `delay` later
        Split,   // the reply comes in pieces, cut at the offsets `at`; without any, byte by byte
        Merge,   // the reply is kept and goes out in front of the next one, as one piece
        Answer,  // `bytes` instead of the reply
        Cut,     // only the first `count` bytes of the reply
        HangUp,  // the line is hung up after the first `count` bytes of the reply
    };

    Kind kind = Kind::Silence;
    std::optional<char> command;   // whose reply; none: every reply
    std::optional<unsigned> times; // how often; none: until the faults are cleared
    std::chrono::milliseconds delay{0};
    std::vector<std::size_t> at;
    std::size_t count = 0;
    std::string bytes;
};

} // namespace vorrano::simulator
