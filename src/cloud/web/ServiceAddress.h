#pragma once

#include <string>
#include <string_view>

// The addresses of the vendor's web service: root, method, then the arguments as path segments.
namespace vorrano::web {

inline constexpr std::string_view kValidateLogin = "validateLogin/";
inline constexpr std::string_view kGetAccounts = "getAccounts/";
inline constexpr std::string_view kInsertAccount = "insertAccount/";
inline constexpr std::string_view kInsertAccountVorranos = "insertAccountVorranos/";
inline constexpr std::string_view kGetLatestFirmware = "GetLatestFirmware/";

// The name of the web site where the vendor offers downloads.
inline constexpr std::string_view kDownloadSite = "downloads.vorrano.example";

// ServiceBaseURL and the service's own path; ends in "/". Main thread.
[[nodiscard]] std::string serviceRoot();

// The whole address with the UTF-8 bytes escaped that may not stand where they are in an address: blanks, controls,
// bytes beyond ASCII, the double quote, "<>\^`{|}", and "[]" but in the host. Everything that means something stays,
// the "%", "/", "?", "#" and "&" among it; so a text is to be escaped once only. Any thread.
[[nodiscard]] std::string percentEscaped(std::string_view address);

} // namespace vorrano::web
