#pragma once

#include "stress/QueueStep.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace vorrano::stress {

// What ends a request: its reply; anything, says its response test; anything, as it has no response test.
enum class RequestKind { WantsReply, AcceptsAll, Untested };

// One request of a port, and what became of it.
struct Request {
    std::size_t sender = 0;
    RequestKind kind = RequestKind::WantsReply;
    std::chrono::microseconds limit{};

    bool isHandedOver = false;
    bool isStarted = false;
    bool isWritten = false; // whole
    // The same, inside the step that handed it over.
    bool isStartedBySend = false;
    bool isWrittenBySend = false;
    bool isAsked = false;
    bool isAccepted = false;
    bool isCleared = false;
    bool isAnswered = false;
    bool isTimedOut = false;
    bool hasArrived = false;
};

// By their numbers.
using Requests = std::deque<Request>;

// Takes what does not hold, and of which request, if of one.
using Complain = std::function<void(std::optional<Number> request, const std::string& what)>;

} // namespace vorrano::stress
