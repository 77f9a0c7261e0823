#include "text/Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace vorrano;
using namespace std::string_literals;

namespace {

struct LengthCase {
    std::string text;
    std::size_t length;
};

class Utf16Length : public testing::TestWithParam<LengthCase> {};

TEST_P(Utf16Length, CountsCodeUnits) { EXPECT_EQ(text::utf16Length(GetParam().text), GetParam().length); }

INSTANTIATE_TEST_SUITE_P(OfText, Utf16Length,
                         testing::Values(LengthCase{"", 0}, LengthCase{"abc", 3}, LengthCase{"a\0b"s, 3},
                                         LengthCase{"\u00E9", 1}, LengthCase{"e\u0301", 2}, LengthCase{"\u20AC", 1},
                                         LengthCase{"\U0001F321", 2}, LengthCase{"\U0001F321\u20AC-", 4}));

INSTANTIATE_TEST_SUITE_P(OfBytesThatAreNoUtf8, Utf16Length,
                         testing::Values(LengthCase{"\xFF", 1}, LengthCase{"\xC3", 1}, LengthCase{"\xC3\xC3\xA9", 2},
                                         LengthCase{"\xE2\x82", 2}, LengthCase{"\xC0\x80", 2},
                                         LengthCase{"\xED\xA0\x80", 3}, LengthCase{"\xF4\x90\x80\x80", 4}));

struct TrimmingCase {
    std::string text;
    std::string withoutBlanks;
    std::string withoutBlanksAndLineEnds;
};

class Trimming : public testing::TestWithParam<TrimmingCase> {};

TEST_P(Trimming, TakesBlanksOffBothEnds) { EXPECT_EQ(text::trimmingBlanks(GetParam().text), GetParam().withoutBlanks); }

TEST_P(Trimming, TakesBlanksAndLineEndsOffBothEnds)
{
    EXPECT_EQ(text::trimmingBlanksAndLineEnds(GetParam().text), GetParam().withoutBlanksAndLineEnds);
}

INSTANTIATE_TEST_SUITE_P(OfText, Trimming,
                         testing::Values(TrimmingCase{"", "", ""}, TrimmingCase{"a", "a", "a"},
                                         TrimmingCase{" \t ", "", ""}, TrimmingCase{" a b ", "a b", "a b"},
                                         TrimmingCase{"\ta\t", "a", "a"}, TrimmingCase{"\u00A0a\u3000", "a", "a"},
                                         TrimmingCase{"\u2000\u200Aa\u1680", "a", "a"},
                                         TrimmingCase{"\u200Ba", "\u200Ba", "\u200Ba"}, TrimmingCase{"a\n", "a\n", "a"},
                                         TrimmingCase{"\r\n a \n", "\r\n a \n", "a"},
                                         TrimmingCase{" \na\x0B\x0C", "\na\x0B\x0C", "a"},
                                         TrimmingCase{"a\u0085\u2028\u2029", "a\u0085\u2028\u2029", "a"},
                                         TrimmingCase{"\xFF ", "\xFF", "\xFF"}));

struct BlanksCase {
    std::string text;
    bool contained;
};

class ContainsBlanks : public testing::TestWithParam<BlanksCase> {};

TEST_P(ContainsBlanks, FindsThemAnywhere) { EXPECT_EQ(text::containsBlanks(GetParam().text), GetParam().contained); }

INSTANTIATE_TEST_SUITE_P(OfText, ContainsBlanks,
                         testing::Values(BlanksCase{"", false}, BlanksCase{"ab", false}, BlanksCase{"a b", true},
                                         BlanksCase{"a\tb", true}, BlanksCase{"ab\u202F", true},
                                         BlanksCase{"a\nb", false}, BlanksCase{"a\u2028b", false}));

struct IntegerCase {
    std::string text;
    std::int64_t value;
};

class IntegerValue : public testing::TestWithParam<IntegerCase> {};

TEST_P(IntegerValue, TakesTheLeadingDigits) { EXPECT_EQ(text::integerValue(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(
    OfText, IntegerValue,
    testing::Values(IntegerCase{"", 0}, IntegerCase{"21", 21}, IntegerCase{" \t\n21 ", 21}, IntegerCase{"21abc", 21},
                    IntegerCase{"abc", 0}, IntegerCase{"a21", 0}, IntegerCase{"021", 21}, IntegerCase{"0x21", 0},
                    IntegerCase{"21.9", 21}, IntegerCase{"-21", 0}, IntegerCase{"+21", 0}, IntegerCase{"1e2", 1},
                    IntegerCase{"99999999999999999999", std::numeric_limits<std::int64_t>::max()}));

struct DoubleCase {
    std::string text;
    double value;
};

class DoubleValue : public testing::TestWithParam<DoubleCase> {};

TEST_P(DoubleValue, TakesTheLeadingNumber) { EXPECT_EQ(text::doubleValue(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(OfText, DoubleValue,
                         testing::Values(DoubleCase{"", 0}, DoubleCase{"9.5", 9.5}, DoubleCase{" \r\n9.5\n\r", 9.5},
                                         DoubleCase{"9.6}", 9.6}, DoubleCase{"-9.5", -9.5}, DoubleCase{"+9.5", 9.5},
                                         DoubleCase{".5", 0.5}, DoubleCase{"5.", 5}, DoubleCase{"1e2", 100},
                                         DoubleCase{"1E-2x", 0.01}, DoubleCase{"1e", 1}, DoubleCase{"9,5", 9},
                                         DoubleCase{"..5", 0}, DoubleCase{"--1", 0}, DoubleCase{"-", 0},
                                         DoubleCase{"+-1", 0}, DoubleCase{".", 0}, DoubleCase{"v9", 0}));

INSTANTIATE_TEST_SUITE_P(WithAnExponent, DoubleValue,
                         testing::Values(DoubleCase{"1e+2", 100}, DoubleCase{"1E+02", 100}, DoubleCase{"-1e-2", -0.01},
                                         DoubleCase{".5e1", 5}, DoubleCase{"5.e1", 50}, DoubleCase{"0e999", 0},
                                         DoubleCase{"e2", 0}));

INSTANTIATE_TEST_SUITE_P(WithAnExponentMarkAlone, DoubleValue,
                         testing::Values(DoubleCase{"1E", 1}, DoubleCase{"1e+", 1}, DoubleCase{"1e-", 1},
                                         DoubleCase{"1e x", 1}, DoubleCase{"1ee2", 1}, DoubleCase{"1e+-2", 1}));

INSTANTIATE_TEST_SUITE_P(KnowsNoHexadecimalInfinityOrNaN, DoubleValue,
                         testing::Values(DoubleCase{"0x10", 0}, DoubleCase{"inf", 0}, DoubleCase{"-infinity", 0},
                                         DoubleCase{"nan", 0}));

INSTANTIATE_TEST_SUITE_P(
    Saturates, DoubleValue,
    testing::Values(DoubleCase{"1e999", std::numeric_limits<double>::max()},
                    DoubleCase{"-1e999", -std::numeric_limits<double>::max()},
                    DoubleCase{"1" + std::string(400, '0'), std::numeric_limits<double>::max()},
                    DoubleCase{"1e99999999999999999999", std::numeric_limits<double>::max()},
                    DoubleCase{"1e+400", std::numeric_limits<double>::max()},
                    DoubleCase{"-1E+400", -std::numeric_limits<double>::max()},
                    DoubleCase{"0.001e+400", std::numeric_limits<double>::max()}, DoubleCase{"1000e-400", 0},
                    DoubleCase{"1E-400", 0},
                    DoubleCase{"1" + std::string(400, '0') + "x e-999", std::numeric_limits<double>::max()},
                    DoubleCase{"1" + std::string(400, '0') + "e", std::numeric_limits<double>::max()},
                    DoubleCase{"1" + std::string(400, '0') + "e-800", 0},
                    DoubleCase{"0." + std::string(400, '0') + "1e+900", std::numeric_limits<double>::max()},
                    DoubleCase{"0." + std::string(400, '0') + "1e", 0}, DoubleCase{"1e-999", 0},
                    DoubleCase{"1e-99999999999999999999", 0}, DoubleCase{"0." + std::string(400, '0') + "1", 0}));

TEST(SaturatingInt32, GoesTowardZero)
{
    EXPECT_EQ(text::saturatingInt32(14.99), 14);
    EXPECT_EQ(text::saturatingInt32(-14.99), -14);
}

TEST(SaturatingInt32, MakesTheNearestOfWhatDoesNotFit)
{
    EXPECT_EQ(text::saturatingInt32(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(text::saturatingInt32(-1e300), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(text::saturatingInt32(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(TextFromUtf8, KeepsWellFormedTextAsItIs)
{
    EXPECT_EQ(text::textFromUtf8("1\n\r"), "1\n\r");
    EXPECT_EQ(text::textFromUtf8("a\0\u20AC\U0001F321"s), "a\0\u20AC\U0001F321"s);
    EXPECT_EQ(text::textFromUtf8(""), "");
}

TEST(TextFromUtf8, IsNothingForBytesThatAreNoUtf8)
{
    for (const auto* bytes : {"\xFF", "a\x80", "\xC3", "\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                              "\xF8\x88\x80\x80\x80"}) {
        EXPECT_EQ(text::textFromUtf8(bytes), std::nullopt) << testing::PrintToString(bytes);
    }
}

TEST(Utf16FromText, WritesCharactersBeyondTheFirstPlaneAsPairs)
{
    EXPECT_EQ(text::utf16FromText("a\u20AC\U0001F321"), u"a\u20AC\xD83C\xDF21");
}

TEST(TextFromUtf16, IsTheWayBack)
{
    for (const auto* written : {"", "abc", "\u00E9\u20AC", "\U0001F321\U0010FFFF-\U00010000"}) {
        EXPECT_EQ(text::textFromUtf16(text::utf16FromText(written)), written);
    }
}

TEST(TextFromUtf16, ReplacesALoneSurrogate)
{
    EXPECT_EQ(text::textFromUtf16(u"\xD83C"), "\uFFFD");
    EXPECT_EQ(text::textFromUtf16(u"\xD83Cx"), "\uFFFDx");
    EXPECT_EQ(text::textFromUtf16(u"\xDF21x"), "\uFFFDx");
    EXPECT_EQ(text::textFromUtf16(u"\xD83C\xD83C\xDF21"), "\uFFFD\U0001F321");
}

TEST(ReplacingAll, ReplacesEachAndNothingElse)
{
    EXPECT_EQ(text::replacingAll("My Home Net", ' ', '$'), "My$Home$Net");
    EXPECT_EQ(text::replacingAll("MyNet", ' ', '$'), "MyNet");
}

} // namespace
