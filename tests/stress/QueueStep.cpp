#include "stress/QueueStep.h"

#include <utility>

namespace vorrano::stress {

namespace {

thread_local std::optional<QueueStep> t_announced;

} // namespace

void announce(const QueueStep& step) { t_announced = step; }

std::optional<QueueStep> takeAnnounced() { return std::exchange(t_announced, std::nullopt); }

} // namespace vorrano::stress
