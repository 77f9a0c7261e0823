#pragma once

#include "device/DeviceCommand.h"
#include "serial/SerialRequest.h"

#include <memory>
#include <string>
#include <vector>

// Commands as requests of a serial port. Any thread.
namespace vorrano::device {

inline constexpr unsigned long kBaudRate = 9600;

// Bytes with the time limit of every request to the device, 2.0 s. Without an evaluator it is complete once it is
// written.
[[nodiscard]] std::shared_ptr<serial::SerialRequest> makeRequest(serial::Bytes data,
                                                                 serial::ResponseEvaluator evaluator = {});

using Requests = std::vector<std::shared_ptr<serial::SerialRequest>>;

// What is queued for a command, all at once: its character; its argument, if it takes one; the end mark after a free
// text. The last of them carries the reply test; that which brings a stored password is marked as a secret.
[[nodiscard]] Requests requestsOf(DeviceCommand command, std::string argument = {});

} // namespace vorrano::device
