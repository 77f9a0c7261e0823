#include "session/TextScreening.h"

#include <gtest/gtest.h>

using namespace vorrano::session;

namespace {

TEST(TextScreening, AnEmptyTextAnswersNoToBothTests)
{
    EXPECT_FALSE(hasDollarSign(""));
    EXPECT_FALSE(hasDisallowedRegistrationCharacters(""));
}

TEST(TextScreening, ADollarSignAloneIsNoDisallowedRegistrationCharacter)
{
    EXPECT_TRUE(hasDollarSign("$"));
    EXPECT_FALSE(hasDisallowedRegistrationCharacters("$"));
}

TEST(TextScreening, FindsADollarSignAnywhere)
{
    for (const auto* text : {"$Net", "My$Net", "Net$", "My Net $$"}) {
        EXPECT_TRUE(hasDollarSign(text)) << text;
    }
}

TEST(TextScreening, FindsEachDisallowedRegistrationCharacterAnywhere)
{
    for (const auto* text : {"#", "?", "/", "%", "a#b", "a?", "/a", "100% sure"}) {
        EXPECT_TRUE(hasDisallowedRegistrationCharacters(text)) << text;
    }
}

TEST(TextScreening, APercentSignAloneIsADisallowedRegistrationCharacter)
{
    EXPECT_TRUE(hasDisallowedRegistrationCharacters("%"));
    EXPECT_FALSE(hasDollarSign("%"));
}

TEST(TextScreening, LookAlikesAnswerNo)
{
    // The full-width forms, the fraction slash, the small dollar sign.
    for (const auto* text : {"\uFF03", "\uFF1F", "\uFF0F", "\u2044", "\u2215", "\uFF05", "\uFF04", "\uFE69"}) {
        EXPECT_FALSE(hasDisallowedRegistrationCharacters(text)) << text;
        EXPECT_FALSE(hasDollarSign(text)) << text;
    }
}

} // namespace
