#pragma once

#include "ctl/Outcome.h"
#include "device/DeviceCommand.h"
#include "device/DeviceRequests.h"

#include <optional>
#include <string>
#include <string_view>

// How the device's answers are read. Any thread.
namespace vorrano::ctl {

// The requests of a command. Those commands that the table sends past the request queue are requests here too, as a
// script has to hear of a silent device: they are answered by as many bytes as their shortest answer has.
[[nodiscard]] device::Requests answeredRequestsOf(device::DeviceCommand command, const std::string& argument);

// The value in a whole answer; none when it is no text, or not an answer to this command.
[[nodiscard]] std::optional<Outcome::Value> valueOf(device::DeviceCommand command, std::string_view answer);

} // namespace vorrano::ctl
