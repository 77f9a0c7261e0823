#pragma once

#include "campaign/Action.h"
#include "campaign/Fault.h"

#include <optional>

namespace vorrano::campaign {

// What comes of an action.
struct Outcome {
    Alerts alerts{};
    // Whether the screen is still dimmed then.
    bool isBusy = false;
    // What the action is for, where no alert tells: signed in, the account shown, the image in the device.
    std::optional<bool> isDone{};
    // Until when all of it has happened; time-outs and pauses of the action, nothing for the program itself.
    std::chrono::milliseconds limit{0};
};

// What must come of it. It follows from a few rules: what reaches the program of a reply under a fault, what each kind
// of action does with that, and what a body of the service is to the screen that asked for it.
[[nodiscard]] Outcome expectedOutcome(const Action& action, const Fault& fault, Moment moment);

// What comes of it when all is well.
[[nodiscard]] Outcome healthyOutcome(const Action& action);

} // namespace vorrano::campaign
