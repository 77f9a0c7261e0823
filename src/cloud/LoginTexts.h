#pragma once

#include <string_view>

// What the login screen says.
namespace vorrano::cloud::login_text {

inline constexpr std::string_view kNoAccountID = "Please enter Account ID or email";
inline constexpr std::string_view kNoPassword = "Please enter Password";
inline constexpr std::string_view kInvalidTitle = "Invalid AccountID/Password";
inline constexpr std::string_view kCouldNotConnectTitle = "Could not connect";
inline constexpr std::string_view kTryAgain = "Please try again";

} // namespace vorrano::cloud::login_text
