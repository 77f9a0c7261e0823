#pragma once

#include <string_view>

// What the account tab says; odd spellings and missing blanks are meant.
namespace vorrano::cloud::account_text {

inline constexpr std::string_view kNoAccountID = "Please enter Account ID";
inline constexpr std::string_view kAccountIDHasSpaces = "Account ID cannot have spaces";
inline constexpr std::string_view kNoPassword = "Please Enter a Password";
inline constexpr std::string_view kNoGuestPassword = "Please Enter Guest Password";
inline constexpr std::string_view kNoEmail = "Please Enter an Email";
inline constexpr std::string_view kPasswordsDiffer = "Passwords do not match. Please re-enter the Passwords";
inline constexpr std::string_view kGuestPasswordsDiffer = "Guest Passwords do not match.Please re-enter the passwords";
inline constexpr std::string_view kPasswordTooShort = "Password must be at least 6 characters long";
inline constexpr std::string_view kGuestPasswordTooShort = "GuestPassword must be at least 6 characters long";
inline constexpr std::string_view kGuestPasswordIsPassword =
    "Guest Passwords cannot be the same as password.Please re-enter the passwords";
inline constexpr std::string_view kNoAddress = "Please Enter Your Address";
inline constexpr std::string_view kNoCity = "Please Enter Your City Name";
inline constexpr std::string_view kNoState = "Please Enter your State Name";
inline constexpr std::string_view kNoCountry = "Please Enter your Country";
inline constexpr std::string_view kNoZipCode = "Please Enter your ZipCode";

inline constexpr std::string_view kAccountIDTaken = "This Account ID already exists. Please enter another Account ID";
inline constexpr std::string_view kSavedTitle = "Success!";
inline constexpr std::string_view kSaved = "Account Information Saved Successfully. Proceed to Register Vorrano";
inline constexpr std::string_view kNotSaved = "Failed to Save. Please Try Again";

inline constexpr std::string_view kHelpTitle = "Help";
inline constexpr std::string_view kAccountIDHelp =
    "The account ID is created by the user. It must be letters and/or numbers with no spaces.";
inline constexpr std::string_view kPasswordHelp = "Password must be greater than 5 characters.";
inline constexpr std::string_view kGuestPasswordHelp = "Guest password must be greater than 5 characters.";

} // namespace vorrano::cloud::account_text
