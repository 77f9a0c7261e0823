#pragma once

#include "ctl/ExitStatus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vorrano::ctl {

// What became of one device.
struct Outcome {
    struct Failure {
        ExitStatus status = ExitStatus::DeviceFailed;
        std::string why;
    };
    using Value = std::variant<std::string, std::int64_t>;

    // What the device answered, by the names of the exchanges; also those before a failure.
    std::vector<std::pair<std::string, Value>> values{};
    std::optional<Failure> failure{};
};

} // namespace vorrano::ctl
