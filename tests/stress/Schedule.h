#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vorrano::stress {

using Milliseconds = std::chrono::milliseconds;

// Draws a number from two.
[[nodiscard]] std::uint64_t mixed(std::uint64_t hash, std::uint64_t value);

// What happens to a port, and when.
enum class Fault { CloseAndReopen, CloseForLong, FlipFlowControl, ChangeBaudRate, ChangeParity, HangUp, SendFromMain };

struct Step {
    Milliseconds at{};
    std::size_t port = 0;
    Fault fault = Fault::CloseAndReopen;
    // How long it lasts, where it lasts; and a number to draw the rest from.
    Milliseconds lasts{};
    std::uint32_t draw = 0;
};

// All steps of a run in the order of their times: of the same seed, always the same.
[[nodiscard]] std::vector<Step> scheduleOf(std::uint64_t seed, std::size_t ports, Milliseconds duration);

// A number to know a schedule by.
[[nodiscard]] std::uint64_t fingerprint(const std::vector<Step>& schedule);

// What the device does with one request: of the same seed and request, always the same.
struct Answer {
    bool silent = false;
    bool garbageBefore = false;
    // Until the first piece, and between one piece and the next.
    Milliseconds delay{};
    std::vector<std::size_t> cuts; // where the reply is cut, ascending
    std::vector<Milliseconds> gaps;
};
[[nodiscard]] Answer answerTo(std::uint64_t seed, std::size_t port, const std::string& request, std::size_t length,
                              Milliseconds limit);

} // namespace vorrano::stress
