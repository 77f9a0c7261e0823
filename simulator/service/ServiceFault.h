#pragma once

#include "simulator/service/SimulatedService.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace vorrano::simulator {

// One way in which the web service misbehaves.
struct ServiceFault {
    enum class Kind {
        NoAnswer, // takes the request and stays silent
        Slow,     // answers `delay` later
        Cut,      // ends the connection after `count` bytes of the body
        Answer,   // `response` instead of its own
        Redirect, // sends the caller to `location`; empty: to the same address again
        Endless,  // a body that does not end
    };

    Kind kind = Kind::NoAnswer;
    std::optional<std::string> method; // "validateLogin" and so on; none: every request
    std::optional<unsigned> times;     // none: until the faults are cleared
    std::chrono::milliseconds delay{0};
    std::size_t count = 0;
    Response response;
    std::string location;
};

} // namespace vorrano::simulator
