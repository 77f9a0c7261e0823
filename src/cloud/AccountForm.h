#pragma once

#include <optional>
#include <string>
#include <string_view>

// The account form as values: its checks, and the address that saves it.
namespace vorrano::cloud {

struct AccountForm {
    std::string accountID;
    std::string password;
    std::string confirmPassword;
    std::string guestPassword;
    std::string confirmGuestPassword;
    std::string email;
    std::string name;
    std::string address;
    std::string address2;
    std::string cityName;
    std::string stateName;
    std::string countryName;
    std::string zipCode;
};

// Whether there are blanks inside the text; those at its ends do not count.
[[nodiscard]] bool textFieldContainsWhiteSpaces(std::string_view text);

// The message of the first check that the form fails; none when it may be saved.
[[nodiscard]] std::optional<std::string_view> refusalOf(const AccountForm& form);

// The text with every "/", "?" and "#" removed.
[[nodiscard]] std::string removingAddressMarks(std::string_view text);

// The address, escaped, that saves the form as a new account, or over the one of that id (an absent id is an empty
// one). `root` is the service's.
[[nodiscard]] std::string newAccountAddress(std::string_view root, const AccountForm& form);
[[nodiscard]] std::string accountUpdateAddress(std::string_view root, const std::optional<std::string>& accountID,
                                               const AccountForm& form);

} // namespace vorrano::cloud
