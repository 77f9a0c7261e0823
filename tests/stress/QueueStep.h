#pragma once

#include <cstddef>
#include <optional>

namespace vorrano::stress {

// The number of a request among those of its port, in the order in which they were made.
using Number = std::size_t;

// A step of a port's request queue: a request that is sent, a chunk that was read, a time-out, the step that follows
// when the delegate has been told of a time-out, anything else.
enum class StepKind { Send, Chunk, Timeout, FollowUp, Other };

struct QueueStep {
    StepKind kind = StepKind::Other;
    // Of Send and Timeout.
    Number request = 0;
};

// Says what the next step is that the calling thread hands to a request queue. An announcement replaces an earlier one
// that was not taken.
void announce(const QueueStep& step);

// The step that was announced; once.
[[nodiscard]] std::optional<QueueStep> takeAnnounced();

} // namespace vorrano::stress
