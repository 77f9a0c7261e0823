#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace vorrano::ctl {

// Members stay in the order in which they were added.
using Json = nlohmann::ordered_json;

// One line; what is no UTF-8 becomes U+FFFD.
[[nodiscard]] inline std::string lineOf(const Json& record)
{
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace vorrano::ctl
