#include "cloud/AccountForm.h"

#include "app/session/Text.h"
#include "cloud/AccountTexts.h"
#include "cloud/web/ServiceAddress.h"

#include <array>
#include <cstddef>

namespace vorrano::cloud {

namespace {

constexpr std::size_t kShortestPassword = 6;

bool tooShort(const std::string& password) { return text::utf16Length(password) < kShortestPassword; }

std::string orNil(const std::string& field) { return field.empty() ? "nil" : field; }

// Appends a field and drops the blanks at the ends of the whole address: those at the field's start stay.
void appendTrimmed(std::string& address, const std::string& field) { address = text::trimmingBlanks(address + field); }

// `begin` ends with the account id. Two slashes follow it: the service expects them.
std::string saveAddress(const std::string& begin, const AccountForm& form)
{
    std::string address = begin;
    appendTrimmed(address, "/");
    address += "/";
    for (const auto& field : {form.password, form.email, orNil(form.name), orNil(form.address), orNil(form.address2),
                              orNil(form.cityName), orNil(form.stateName), orNil(form.countryName)}) {
        appendTrimmed(address, field);
        address += "/";
    }
    // Alone among the fields the zip code keeps the blanks at its end.
    address += orNil(form.zipCode) + "/";
    appendTrimmed(address, form.guestPassword);
    return web::percentEscaped(address);
}

} // namespace

bool textFieldContainsWhiteSpaces(std::string_view field) { return text::containsBlanks(text::trimmingBlanks(field)); }

std::optional<std::string_view> refusalOf(const AccountForm& form)
{
    struct Check {
        bool failed;
        std::string_view message;
    };
    using namespace account_text;
    const std::array checks{
        Check{form.accountID.empty(), kNoAccountID},
        Check{textFieldContainsWhiteSpaces(form.accountID), kAccountIDHasSpaces},
        Check{form.password.empty(), kNoPassword},
        Check{form.guestPassword.empty(), kNoGuestPassword},
        Check{form.email.empty(), kNoEmail},
        Check{form.password != form.confirmPassword, kPasswordsDiffer},
        Check{form.guestPassword != form.confirmGuestPassword, kGuestPasswordsDiffer},
        Check{tooShort(form.password), kPasswordTooShort},
        Check{tooShort(form.guestPassword), kGuestPasswordTooShort},
        Check{form.guestPassword == form.password, kGuestPasswordIsPassword},
        Check{form.address.empty(), kNoAddress},
        Check{form.cityName.empty(), kNoCity},
        Check{form.stateName.empty(), kNoState},
        Check{form.countryName.empty(), kNoCountry},
        Check{form.zipCode.empty(), kNoZipCode},
    };
    for (const auto& check : checks) {
        if (check.failed) {
            return check.message;
        }
    }
    return std::nullopt;
}

std::string removingAddressMarks(std::string_view field)
{
    std::string kept(field);
    std::erase_if(kept, [](char character) { return character == '/' || character == '?' || character == '#'; });
    return kept;
}

std::string newAccountAddress(std::string_view root, const AccountForm& form)
{
    std::string begin(root);
    begin.append(web::kInsertAccount).append(form.accountID);
    return saveAddress(begin, form);
}

std::string accountUpdateAddress(std::string_view root, const std::optional<std::string>& accountID,
                                 const AccountForm& form)
{
    std::string begin(root);
    begin.append(web::kGetAccounts).append(accountID.value_or(""));
    return saveAddress(begin, form);
}

} // namespace vorrano::cloud
