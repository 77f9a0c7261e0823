#pragma once

#include "StreamPort.h"

#include <functional>

namespace vorrano::bench {

// What something takes of the clock and of the processor.
struct Cost {
    Microseconds time{};
    Microseconds cpu{};

    Cost& operator+=(const Cost& other);
};

// What the port costs while `wait` lasts.
[[nodiscard]] Cost costOf(const Port& port, const std::function<void()>& wait);

// Of these the main loop runs until the port is done. std::runtime_error when something is not answered, or wrongly.
//
// The port is open for its exchanges alone, and makes one more before them: what this process does for an open port,
// such as our look at the modem lines, would count for every other port that is measured meanwhile.
[[nodiscard]] Cost costOfExchanges(Port& port, char request, int times);
[[nodiscard]] Cost costOfStream(StreamPort& port);

// std::runtime_error when it does not open.
void open(Port& port);

} // namespace vorrano::bench
