#include "platform/curl/WebAddress.h"

#include <gtest/gtest.h>

namespace vorrano {

using curl_platform::WebScheme;
using curl_platform::webSchemeOf;

struct AddressCase {
    const char* address;
    std::optional<WebScheme> scheme;

    friend void PrintTo(const AddressCase& tested, std::ostream* out)
    {
        *out << testing::PrintToString(std::string(tested.address));
    }
};

class WebAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(WebAddress, IsKnownByItsCharacters) { EXPECT_EQ(webSchemeOf(GetParam().address), GetParam().scheme); }

INSTANTIATE_TEST_SUITE_P(Addresses, WebAddress,
                         testing::Values(AddressCase{"https://service.example", WebScheme::Https},
                                         AddressCase{"http://127.0.0.1:8080/a/b/", WebScheme::Http},
                                         AddressCase{"HTTPS://Service.Example/A", WebScheme::Https},
                                         AddressCase{"https://service.example/a//b/../c/./d", WebScheme::Https},
                                         AddressCase{"https://service.example/a%20b%2F%c3%A4", WebScheme::Https},
                                         AddressCase{"https://service.example/-._~!$&'()*+,;=:@", WebScheme::Https},
                                         AddressCase{"https://service.example/a?b=c/d?e#f?g/h", WebScheme::Https},
                                         AddressCase{"https://service.example?a", WebScheme::Https},
                                         AddressCase{"https://service.example#a", WebScheme::Https},
                                         AddressCase{"https://service.example/a#", WebScheme::Https},
                                         AddressCase{"https://service.example/a#b#c", WebScheme::Https},
                                         AddressCase{"http://[::1]:80/a", WebScheme::Http},
                                         AddressCase{"http://user@service.example/", WebScheme::Http}));

INSTANTIATE_TEST_SUITE_P(
    OtherTexts, WebAddress,
    testing::Values(AddressCase{"", std::nullopt}, AddressCase{"service.example/a", std::nullopt},
                    AddressCase{"ftp://service.example/a", std::nullopt},
                    AddressCase{"file:///etc/hostname", std::nullopt}, AddressCase{"httpss://a", std::nullopt},
                    AddressCase{"https:/service.example/a", std::nullopt}, AddressCase{"https://", std::nullopt},
                    AddressCase{"https:///a", std::nullopt}, AddressCase{"https://:80/a", std::nullopt},
                    AddressCase{"https://user@/a", std::nullopt}, AddressCase{" https://a/", std::nullopt},
                    AddressCase{"https://service.example/a b", std::nullopt},
                    AddressCase{"https://service.example/a ", std::nullopt},
                    AddressCase{"https://service.example/a\tb", std::nullopt},
                    AddressCase{"https://service.example/a\nb", std::nullopt},
                    AddressCase{"https://service.example/a\x7f", std::nullopt},
                    AddressCase{"https://service.example/\xc3\xa4", std::nullopt},
                    AddressCase{"https://service.example/a\"b", std::nullopt},
                    AddressCase{"https://service.example/a<b>", std::nullopt},
                    AddressCase{"https://service.example/a\\b", std::nullopt},
                    AddressCase{"https://service.example/a^b", std::nullopt},
                    AddressCase{"https://service.example/a`b", std::nullopt},
                    AddressCase{"https://service.example/{a}", std::nullopt},
                    AddressCase{"https://service.example/a|b", std::nullopt},
                    AddressCase{"https://service.example/[a]", std::nullopt},
                    AddressCase{"https://service.example/%", std::nullopt},
                    AddressCase{"https://service.example/%2", std::nullopt},
                    AddressCase{"https://service.example/%2G", std::nullopt},
                    AddressCase{"https://service.example/100%/a", std::nullopt},
                    AddressCase{"https://service.example/a?%zz", std::nullopt},
                    AddressCase{"https://ser vice.example/", std::nullopt}));

TEST(WebAddressWithAZero, IsNone)
{
    using namespace std::string_view_literals;

    EXPECT_EQ(webSchemeOf("https://service.example/a\0b"sv), std::nullopt);
}

} // namespace vorrano
