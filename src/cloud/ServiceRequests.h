#pragma once

#include <optional>
#include <string>
#include <string_view>

// The addresses of the cloud screens' calls, but for the account's saving. `root` is the service's. An absent account
// id is an empty one.
namespace vorrano::cloud {

// Not escaped, the password not trimmed: a text that makes no address gets no reply.
[[nodiscard]] std::string loginAddress(std::string_view root, std::string_view trimmedAccountID,
                                       std::string_view password);

// Not escaped.
[[nodiscard]] std::string accountAddress(std::string_view root, const std::optional<std::string>& accountID);

// Escaped; blanks and line ends around the MAC are dropped, the name is sent as typed.
[[nodiscard]] std::string registrationAddress(std::string_view root, const std::optional<std::string>& accountID,
                                              std::string_view macAddress, std::string_view name);

} // namespace vorrano::cloud
