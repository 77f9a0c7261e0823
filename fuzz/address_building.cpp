// What a person types and the device answers, made into addresses of the web service.
#include "cloud/AccountForm.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "platform/curl/WebAddress.h"
#include "text/Text.h"
#include "web/ServiceAddress.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

using namespace vorrano;
using fuzz::check;

namespace {

const std::string kRoot = "https://service.example/VorranoAPI/RestServiceImpl.svc/";

bool isHexadecimal(char character) { return std::isxdigit(static_cast<unsigned char>(character)) != 0; }

bool hasOnlyWholeEscapes(std::string_view address)
{
    for (auto at = address.find('%'); at != std::string_view::npos; at = address.find('%', at + 1)) {
        if (at + 2 >= address.size() || !isHexadecimal(address[at + 1]) || !isHexadecimal(address[at + 2])) {
            return false;
        }
    }
    return true;
}

std::string unescaped(std::string_view address)
{
    std::string plain;
    for (std::size_t at = 0; at < address.size(); ++at) {
        if (address[at] == '%') {
            plain += static_cast<char>(std::stoi(std::string(address.substr(at + 1, 2)), nullptr, 16));
            at += 2;
        } else {
            plain += address[at];
        }
    }
    return plain;
}

void checkEscaping(const std::string& text)
{
    const auto escaped = web::percentEscaped(text);
    constexpr std::string_view kForbidden = " \"<>\\^`{|}";
    const auto mayStand = [&](char character) {
        return character > ' ' && character < 0x7F && kForbidden.find(character) == std::string_view::npos;
    };
    check(std::all_of(escaped.begin(), escaped.end(), mayStand), "no forbidden character is left");
    check(web::percentEscaped(escaped) == escaped, "what is escaped stays as it is");
    check(text.find('%') != std::string::npos || unescaped(escaped) == text, "escapes stand for what was there");
}

// An escaped address is one for the test of addresses, but for a "%" of the person's own that escapes nothing.
void checkAddress(const std::string& address, std::string_view method)
{
    check(address.starts_with(kRoot + std::string(method)), "the address begins with root and method");
    const auto scheme = curl_platform::webSchemeOf(address);
    check((scheme == curl_platform::WebScheme::Https) == hasOnlyWholeEscapes(address),
          "an address that can be fetched");
}

cloud::AccountForm formFrom(fuzz::Input& input)
{
    cloud::AccountForm form;
    for (auto* field : {&form.accountID, &form.password, &form.confirmPassword, &form.guestPassword,
                        &form.confirmGuestPassword, &form.email, &form.name, &form.address, &form.address2,
                        &form.cityName, &form.stateName, &form.countryName, &form.zipCode}) {
        *field = input.text();
    }
    // Else hardly a form would pass the checks.
    if (input.below(2) == 0) {
        form.confirmPassword = form.password;
        form.confirmGuestPassword = form.guestPassword;
    }
    return form;
}

void checkForm(const cloud::AccountForm& form, const std::string& accountID)
{
    const auto created = web::newAccountAddress(kRoot, form);
    const auto updated = web::accountUpdateAddress(kRoot, accountID, form);
    checkAddress(created, "insertAccount/");
    checkAddress(updated, "getAccounts/");
    if (cloud::refusalOf(form)) {
        return;
    }
    check(form.password == form.confirmPassword && form.guestPassword == form.confirmGuestPassword, "repeated alike");
    check(form.password.size() >= 6 && form.guestPassword.size() >= 6, "passwords are long enough");
    check(form.password != form.guestPassword, "the guest has a password of his own");
    check(!form.accountID.empty() && !form.email.empty() && !form.zipCode.empty(), "what is needed is there");
    const auto plain = text::trimmingBlanks(form.accountID);
    check(!text::containsBlanks(plain), "an account id has no blanks inside");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto accountID = input.text();
    const auto macAddress = input.text();
    const auto form = formFrom(input);
    const auto name = input.rest();

    checkEscaping(name);
    checkEscaping(accountID + "://" + name);
    checkForm(form, accountID);
    checkAddress(web::registrationAddress(kRoot, accountID, macAddress, name), "insertAccountVorranos/");
    check(web::loginAddress(kRoot, accountID, name) == kRoot + "validateLogin/" + accountID + "/" + name, "as typed");
    check(web::accountAddress(kRoot, accountID) == kRoot + "getAccounts/" + accountID, "as it is");
    const auto kept = cloud::removingAddressMarks(name);
    check(kept.find_first_of("/?#") == std::string::npos && cloud::removingAddressMarks(kept) == kept,
          "no marks are left");
    return 0;
}
