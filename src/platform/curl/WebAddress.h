#pragma once

#include <optional>
#include <string_view>

namespace vorrano::curl_platform {

enum class WebScheme { Http, Https };

// The scheme of a text that is an http or https address to the letter: with a host, of no other characters than may
// stand in an address at their place, each "%" before two hexadecimal digits. None for any other text.
[[nodiscard]] std::optional<WebScheme> webSchemeOf(std::string_view address);

} // namespace vorrano::curl_platform
