#include "platform/curl/WebAddress.h"

#include <algorithm>

namespace vorrano::curl_platform {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isLetter(char c) { return lowered(c) >= 'a' && lowered(c) <= 'z'; }
bool isHexadecimal(char c) { return isDigit(c) || (lowered(c) >= 'a' && lowered(c) <= 'f'); }

bool consistsOf(std::string_view text, std::string_view punctuation)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isHexadecimal(text[i + 1]) || !isHexadecimal(text[i + 2])) {
                return false;
            }
        } else if (!isDigit(text[i]) && !isLetter(text[i]) && punctuation.find(text[i]) == std::string_view::npos) {
            return false;
        }
    }
    return true;
}

// Cuts off what stands before the separator, or all when there is none.
std::string_view takeUpTo(std::string_view& text, std::string_view separators)
{
    const auto taken = text.substr(0, text.find_first_of(separators));
    text.remove_prefix(taken.size());
    return taken;
}

bool isScheme(std::string_view text, std::string_view scheme)
{
    return std::equal(text.begin(), text.end(), scheme.begin(), scheme.end(),
                      [](char a, char b) { return lowered(a) == b; });
}

bool hasHost(std::string_view authority)
{
    const auto host = authority.substr(authority.rfind('@') + 1);
    return !host.empty() && host.front() != ':';
}

} // namespace

std::optional<WebScheme> webSchemeOf(std::string_view address)
{
    constexpr std::string_view kSeparator = "://";
    const auto scheme = takeUpTo(address, ":");
    const bool isHttps = isScheme(scheme, "https");
    if ((!isHttps && !isScheme(scheme, "http")) || !address.starts_with(kSeparator)) {
        return std::nullopt;
    }
    address.remove_prefix(kSeparator.size());
    const auto authority = takeUpTo(address, "/?#");
    const auto pathAndQuery = takeUpTo(address, "#");
    const auto fragment = address.substr(std::min<std::size_t>(1, address.size()));
    // The fragment is not sent, so a second "#" in it does no harm: a name that holds two is cut at the first.
    const bool isWellFormed = hasHost(authority) && consistsOf(authority, "-._~!$&'()*+,;=:@[]") &&
                              consistsOf(pathAndQuery, "-._~!$&'()*+,;=:@/?") &&
                              consistsOf(fragment, "-._~!$&'()*+,;=:@/?#");
    if (!isWellFormed) {
        return std::nullopt;
    }
    return isHttps ? WebScheme::Https : WebScheme::Http;
}

} // namespace vorrano::curl_platform
