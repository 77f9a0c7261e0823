#include "cloud/web/ServiceAddress.h"

#include "platform/Platform.h"

#include <algorithm>
#include <cstddef>

namespace vorrano::web {

namespace {

constexpr std::string_view kServicePath = "/VorranoAPI/RestServiceImpl.svc/";
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

} // namespace

std::string serviceRoot() { return platform::Platform::current().serviceBaseUrl + std::string(kServicePath); }

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
