#pragma once

#include "web/ServiceAddress.h"

#include <optional>
#include <string>
#include <string_view>

// The account form as values, and its checks.
namespace vorrano::cloud {

struct AccountForm : web::Account {
    std::string confirmPassword;
    std::string confirmGuestPassword;
};

// Whether there are blanks inside the text; those at its ends do not count.
[[nodiscard]] bool textFieldContainsWhiteSpaces(std::string_view text);

// The message of the first check that the form fails; none when it may be saved.
[[nodiscard]] std::optional<std::string_view> refusalOf(const AccountForm& form);

// The text with every "/", "?" and "#" removed.
[[nodiscard]] std::string removingAddressMarks(std::string_view text);

} // namespace vorrano::cloud
