#include "text/EscapedLine.h"

#include <gtest/gtest.h>

#include <string>

namespace vorrano::text {

namespace {

struct Escape {
    std::string text;
    std::string line;
};

class EscapedLine : public testing::TestWithParam<Escape> {};

TEST_P(EscapedLine, ShowsControlCharactersAndBrokenText) { EXPECT_EQ(escapedLine(GetParam().text), GetParam().line); }

INSTANTIATE_TEST_SUITE_P(
    Table, EscapedLine,
    testing::Values(Escape{"", ""}, Escape{"plain, with spaces", "plain, with spaces"}, Escape{"a\nb", "a\\nb"},
                    Escape{"a\r\n", "a\\r\\n"}, Escape{"\t", "\\t"}, Escape{"\x1b[31mred", "\\x1b[31mred"},
                    Escape{std::string("\0", 1), "\\x00"}, Escape{"\x7f", "\\x7f"},
                    Escape{"K\xc3\xbc"
                           "che",
                           "Küche"},
                    Escape{"\xe2\x82\xac \xf0\x9f\x98\x80", "€ 😀"},
                    // A control character of two bytes.
                    Escape{"\xc2\x9b"
                           "31m",
                           "\\xc2\\x9b31m"},
                    // Lone, cut, overlong, surrogate and beyond the last character.
                    Escape{"\x80", "\\x80"}, Escape{"\xc3", "\\xc3"}, Escape{"\xe2\x82", "\\xe2\\x82"},
                    Escape{"\xc3"
                           "a",
                           "\\xc3a"},
                    Escape{"\xc0\x8a", "\\xc0\\x8a"}, Escape{"\xe0\x80\x8a", "\\xe0\\x80\\x8a"},
                    Escape{"\xf0\x80\x80\x8a", "\\xf0\\x80\\x80\\x8a"}, Escape{"\xed\xa0\x80", "\\xed\\xa0\\x80"},
                    Escape{"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, Escape{"\xff", "\\xff"}));

} // namespace

} // namespace vorrano::text
