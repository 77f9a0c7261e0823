#include "cloud/AccountForm.h"

#include "cloud/AccountTexts.h"
#include "text/Text.h"

#include <array>
#include <cstddef>

namespace vorrano::cloud {

namespace {

constexpr std::size_t kShortestPassword = 6;

bool tooShort(const std::string& password) { return text::utf16Length(password) < kShortestPassword; }

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

} // namespace vorrano::cloud
