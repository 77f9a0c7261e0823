// The test that decides whether a text is an address to fetch.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "platform/curl/WebAddress.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

using namespace vorrano;
using curl_platform::WebScheme;
using fuzz::check;

namespace {

bool isHexadecimal(char character) { return std::isxdigit(static_cast<unsigned char>(character)) != 0; }

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), text.begin(),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

// Reads the address character by character: first the host and what belongs to it, then the path and query, then the
// fragment.
bool isRestOfAddress(std::string_view rest)
{
    enum class Where { Authority, PathAndQuery, Fragment } where = Where::Authority;
    std::string authority;
    for (std::size_t at = 0; at < rest.size(); ++at) {
        const char character = rest[at];
        if (where == Where::Authority && std::string_view("/?#").find(character) != std::string_view::npos) {
            where = Where::PathAndQuery;
        }
        if (where == Where::PathAndQuery && character == '#') {
            where = Where::Fragment;
        }
        if (where == Where::Authority) {
            authority += character;
        }
        const bool isLetter = std::isalnum(static_cast<unsigned char>(character)) != 0;
        const bool isMark = std::string_view("-._~!$&'()*+,;=:@").find(character) != std::string_view::npos;
        const bool isBracket = (character == '[' || character == ']') && where == Where::Authority;
        const bool isSeparator = ((character == '/' || character == '?') && where != Where::Authority) ||
                                 (character == '#' && where == Where::Fragment);
        const bool isEscape =
            character == '%' && at + 2 < rest.size() && isHexadecimal(rest[at + 1]) && isHexadecimal(rest[at + 2]);
        if (!isLetter && !isMark && !isBracket && !isSeparator && !isEscape) {
            return false;
        }
    }
    const auto host = authority.substr(authority.rfind('@') + 1);
    return !host.empty() && host[0] != ':';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::Input(data, size).rest();
    const auto scheme = curl_platform::webSchemeOf(text);
    const bool isHttps = beginsWith(text, "https://") && isRestOfAddress(std::string_view(text).substr(8));
    const bool isHttp = beginsWith(text, "http://") && isRestOfAddress(std::string_view(text).substr(7));
    check((scheme == WebScheme::Https) == isHttps, "an https address is one to the letter");
    check((scheme == WebScheme::Http) == isHttp, "an http address is one to the letter");
    return 0;
}
