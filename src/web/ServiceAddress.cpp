#include "web/ServiceAddress.h"

#include "platform/Platform.h"
#include "text/Text.h"

#include <algorithm>
#include <cstddef>

namespace vorrano::web {

namespace {

constexpr std::string_view kServicePath = "/VorranoAPI/RestServiceImpl.svc/";
constexpr std::string_view kValidateLogin = "validateLogin/";
constexpr std::string_view kGetAccounts = "getAccounts/";
constexpr std::string_view kInsertAccount = "insertAccount/";
constexpr std::string_view kInsertAccountVorranos = "insertAccountVorranos/";
constexpr std::string_view kGetLatestFirmware = "GetLatestFirmware/";
constexpr std::string_view kMarksOfAnAddress = "-._~:/?#@!$&'()*+,;=%";
constexpr std::string_view kMarksOfAHost = "[]";

// Where the host ends, or 0 for a text without one.
std::size_t endOfHost(std::string_view address)
{
    constexpr std::string_view kBeforeHost = "://";
    const auto separator = address.find(kBeforeHost);
    if (separator == std::string_view::npos) {
        return 0;
    }
    return std::min(address.size(), address.find_first_of("/?#", separator + kBeforeHost.size()));
}

bool mayStandInAnAddress(char character)
{
    const bool letter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    const bool digit = character >= '0' && character <= '9';
    return letter || digit || kMarksOfAnAddress.find(character) != std::string_view::npos;
}

std::string orNil(const std::string& field) { return field.empty() ? "nil" : field; }

// Appends a field and drops the blanks at the ends of the whole address: those at the field's start stay.
void appendTrimmed(std::string& address, const std::string& field) { address = text::trimmingBlanks(address + field); }

// `begin` ends with the account id. Two slashes follow it: the service expects them.
std::string saveAddress(const std::string& begin, const Account& account)
{
    std::string address = begin;
    appendTrimmed(address, "/");
    address += "/";
    for (const auto& field :
         {account.password, account.email, orNil(account.name), orNil(account.address), orNil(account.address2),
          orNil(account.cityName), orNil(account.stateName), orNil(account.countryName)}) {
        appendTrimmed(address, field);
        address += "/";
    }
    // Alone among the fields the zip code keeps the blanks at its end.
    address += orNil(account.zipCode) + "/";
    appendTrimmed(address, account.guestPassword);
    return percentEscaped(address);
}

} // namespace

std::string serviceRoot() { return platform::Platform::current().serviceBaseUrl + std::string(kServicePath); }

std::string loginAddress(std::string_view root, std::string_view trimmedAccountID, std::string_view password)
{
    return std::string(root).append(kValidateLogin).append(trimmedAccountID).append("/").append(password);
}

std::string accountAddress(std::string_view root, const std::optional<std::string>& accountID)
{
    return std::string(root).append(kGetAccounts).append(accountID.value_or(""));
}

std::string newAccountAddress(std::string_view root, const Account& account)
{
    return saveAddress(std::string(root).append(kInsertAccount).append(account.accountID), account);
}

std::string accountUpdateAddress(std::string_view root, const std::optional<std::string>& accountID,
                                 const Account& account)
{
    return saveAddress(accountAddress(root, accountID), account);
}

std::string registrationAddress(std::string_view root, const std::optional<std::string>& accountID,
                                std::string_view macAddress, std::string_view name)
{
    std::string address(root);
    address.append(kInsertAccountVorranos).append(accountID.value_or("")).append("/");
    address.append(text::trimmingBlanksAndLineEnds(macAddress)).append("/").append(name);
    return percentEscaped(address);
}

std::string latestFirmwareAddress(std::string_view root, std::int32_t wholeVersion)
{
    return std::string(root).append(kGetLatestFirmware).append(std::to_string(wholeVersion));
}

std::string percentEscaped(std::string_view address)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string escaped;
    escaped.reserve(address.size());
    const auto hostEnd = endOfHost(address);
    for (std::size_t i = 0; i < address.size(); ++i) {
        const char character = address[i];
        const bool ofTheHost = i < hostEnd && kMarksOfAHost.find(character) != std::string_view::npos;
        if (ofTheHost || mayStandInAnAddress(character)) {
            escaped += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        escaped += '%';
        escaped += kDigits[byte >> 4U];
        escaped += kDigits[byte & 0xFU];
    }
    return escaped;
}

} // namespace vorrano::web
