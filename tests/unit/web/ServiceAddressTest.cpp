#include "web/ServiceAddress.h"

#include "support/World.h"

using namespace vorrano;

namespace {

struct EscapingCase {
    const char* name;
    std::string address;
    std::string escaped;
};

class Escaping : public testing::TestWithParam<EscapingCase> {};

} // namespace

TEST_P(Escaping, LeavesWhatMayStandInAnAddressAndEscapesTheRest)
{
    EXPECT_EQ(web::percentEscaped(GetParam().address), GetParam().escaped);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Escaping,
    testing::Values(EscapingCase{"Nothing", "", ""},
                    EscapingCase{"LettersAndDigits", "abcxyzABCXYZ0189", "abcxyzABCXYZ0189"},
                    EscapingCase{"AWholeAddressOnce", "https://host.example:8443/a//b c?d=e&f=%20#g h",
                                 "https://host.example:8443/a//b%20c?d=e&f=%20#g%20h"},
                    EscapingCase{"UnreservedMarks", "-._~", "-._~"},
                    EscapingCase{"ReservedMarks", ":/?#@!$&'()*+,;=", ":/?#@!$&'()*+,;="},
                    EscapingCase{"BracketsBehindTheHost", "https://host.example/[a]?[b]#[c]",
                                 "https://host.example/%5Ba%5D?%5Bb%5D#%5Bc%5D"},
                    EscapingCase{"ButNotTheHostsOwn", "http://[::1]:8080/[a]", "http://[::1]:8080/%5Ba%5D"},
                    EscapingCase{"AHostAtTheEnd", "http://[::1]", "http://[::1]"},
                    EscapingCase{"BracketsWithoutAHost", "[a]", "%5Ba%5D"},
                    EscapingCase{"ThePercentSign", "50%", "50%"},
                    EscapingCase{"WhatIsEscapedAlready", "a%20b%2F", "a%20b%2F"},
                    EscapingCase{"Blanks", " a  b\t", "%20a%20%20b%09"},
                    EscapingCase{"MarksThatMayNotStandThere", "\"<>\\^`{|}", "%22%3C%3E%5C%5E%60%7B%7C%7D"},
                    EscapingCase{"Controls", std::string("\0\x01\n\r\x1f\x7f", 6), "%00%01%0A%0D%1F%7F"},
                    EscapingCase{"TwoByteLetters", "Gr\xc3\xbc\xc3\x9f", "Gr%C3%BC%C3%9F"},
                    EscapingCase{"FourByteLetters", "\xf0\x9f\x8c\xa1", "%F0%9F%8C%A1"},
                    EscapingCase{"BytesThatAreNoText", "\xff\x80", "%FF%80"},
                    EscapingCase{"DotSegments", "a/../b/./c", "a/../b/./c"}),
    [](const auto& given) { return given.param.name; });

TEST(Escaping, OfWhatIsEscapedChangesNothing)
{
    const auto once = web::percentEscaped("https://host.example/a b/\xc3\xbc/{x}");

    EXPECT_EQ(web::percentEscaped(once), once);
}

TEST(ServiceAddress, HasTheServicesPathBehindTheConfiguredBaseAddress)
{
    const support::World world;

    EXPECT_EQ(web::serviceRoot(), platform::Platform::current().serviceBaseUrl + "/VorranoAPI/RestServiceImpl.svc/");
}
