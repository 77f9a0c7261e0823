#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Every address of the vendor's web service: root, method, then the arguments as path segments.
//
// `root` is serviceRoot(). An absent account id counts as an empty text. Threads: any, but for serviceRoot().
namespace vorrano::web {

// The name of the web site where the vendor offers downloads.
inline constexpr std::string_view kDownloadSite = "downloads.vorrano.example";

// What the service stores of an account.
struct Account {
    std::string accountID;
    std::string password;
    std::string guestPassword;
    std::string email;
    std::string name;
    std::string address;
    std::string address2;
    std::string cityName;
    std::string stateName;
    std::string countryName;
    std::string zipCode;
};

// ServiceBaseURL and the service's own path; ends in "/". Main thread.
[[nodiscard]] std::string serviceRoot();

// Signs in. Not escaped, the password not trimmed: a text that makes no address gets no reply.
[[nodiscard]] std::string loginAddress(std::string_view root, std::string_view trimmedAccountID,
                                       std::string_view password);

// Loads an account. Not escaped.
[[nodiscard]] std::string accountAddress(std::string_view root, const std::optional<std::string>& accountID);

// Saves an account as a new one, or over the one of that id. Escaped.
[[nodiscard]] std::string newAccountAddress(std::string_view root, const Account& account);
[[nodiscard]] std::string accountUpdateAddress(std::string_view root, const std::optional<std::string>& accountID,
                                               const Account& account);

// Registers a device. Escaped; blanks and line ends around the MAC are dropped, the name is sent as typed.
[[nodiscard]] std::string registrationAddress(std::string_view root, const std::optional<std::string>& accountID,
                                              std::string_view macAddress, std::string_view name);

// Asks for the latest firmware of devices whose version begins with that whole number.
[[nodiscard]] std::string latestFirmwareAddress(std::string_view root, std::int32_t wholeVersion);

// The whole address with the UTF-8 bytes escaped that may not stand where they are in an address: blanks, controls,
// bytes beyond ASCII, the double quote, "<>\^`{|}", and "[]" but in the host. Everything that means something stays,
// the "%", "/", "?", "#" and "&" among it; so a text is to be escaped once only.
[[nodiscard]] std::string percentEscaped(std::string_view address);

} // namespace vorrano::web
