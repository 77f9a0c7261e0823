#include "ctl/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <variant>
#include <vector>

namespace vorrano::ctl {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

Arguments understood(const Words& words) { return std::get<Arguments>(argumentsOf(words, "1.2.3")); }
Answer answered(const Words& words) { return std::get<Answer>(argumentsOf(words, "1.2.3")); }

} // namespace

TEST(CtlArguments, TakeTheirOptionsBeforeAndAfterTheVerb)
{
    const auto arguments = understood({"--json", "get", "-p", "/dev/a", "mac", "--port=/dev/b"});

    EXPECT_EQ(arguments.verb, Verb::Get);
    EXPECT_THAT(arguments.operands, ElementsAre("mac"));
    EXPECT_THAT(arguments.ports, ElementsAre("/dev/a", "/dev/b"));
    EXPECT_TRUE(arguments.json);
    EXPECT_FALSE(arguments.all);
}

TEST(CtlArguments, TakeOptionsAfterTheVerbWhateverTheEnvironmentSays)
{
    ::setenv("POSIXLY_CORRECT", "1", 1);
    const auto arguments = understood({"get", "--json", "mac", "-a"});
    ::unsetenv("POSIXLY_CORRECT");

    EXPECT_THAT(arguments.operands, ElementsAre("mac"));
    EXPECT_TRUE(arguments.json);
    EXPECT_TRUE(arguments.all);
}

TEST(CtlArguments, HaveTheNetworksValues)
{
    const auto arguments =
        understood({"wifi", "--ssid", "Home Net", "--security", "WPA2", "--password-file", "-", "--all"});

    EXPECT_EQ(arguments.verb, Verb::Wifi);
    EXPECT_EQ(arguments.ssid, "Home Net");
    EXPECT_EQ(arguments.security, "WPA2");
    EXPECT_EQ(arguments.passwordFile, "-");
    EXPECT_TRUE(arguments.all);
}

TEST(CtlArguments, HaveAValueThatLooksLikeAnOptionAfterTwoDashes)
{
    EXPECT_THAT(understood({"set", "--", "ssid", "--all"}).operands, ElementsAre("ssid", "--all"));
}

TEST(CtlArguments, AnswerWithTheVersion)
{
    for (const auto& words : {Words{"--version"}, Words{"-v"}, Words{"get", "--version"}}) {
        EXPECT_EQ(answered(words).status, ExitStatus::Done);
        EXPECT_EQ(answered(words).text, "vorranoctl 1.2.3\n");
    }
}

TEST(CtlArguments, AnswerWithTheHelpOfTheProgramOrOfTheVerb)
{
    EXPECT_THAT(answered({"--help"}).text, StartsWith("Usage: vorranoctl VERB"));
    for (const std::string verb : {"list", "get", "set", "wifi", "reset", "update"}) {
        EXPECT_EQ(answered({verb, "-h"}).status, ExitStatus::Done);
        EXPECT_THAT(answered({verb, "--help"}).text, StartsWith("Usage: vorranoctl " + verb));
        EXPECT_THAT(answered({"--help"}).text, HasSubstr("\n  " + verb));
    }
}

struct Misuse {
    Words words;
    std::string reason;
};

class MisusedCtlArguments : public testing::TestWithParam<Misuse> {};

TEST_P(MisusedCtlArguments, AreRefusedWithTheReason)
{
    const auto answer = answered(GetParam().words);

    EXPECT_EQ(answer.status, ExitStatus::Refused);
    EXPECT_EQ(answer.text, GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MisusedCtlArguments,
    testing::Values(Misuse{{}, "A verb is missing."}, Misuse{{"--json"}, "A verb is missing."},
                    Misuse{{"paint"}, "Unknown verb 'paint'."}, Misuse{{"get"}, "'get' needs an argument."},
                    Misuse{{"get", "mac", "ssid"}, "'get' takes no further argument."},
                    Misuse{{"list", "mac"}, "'list' takes no further argument."},
                    Misuse{{"update"}, "'update' needs an argument."},
                    Misuse{{"get", "mac", "--colour"}, "Unknown option '--colour'."},
                    Misuse{{"get", "mac", "--password=secret"}, "Unknown option '--password'."},
                    Misuse{{"get", "mac", "--pass"}, "Unknown option '--pass'."},
                    Misuse{{"get", "mac", "--all=1"}, "'--all' takes no value."},
                    Misuse{{"get", "mac", "-x"}, "Unknown option '-x'."},
                    Misuse{{"get", "--all", "-xj"}, "Unknown option '-x'."},
                    Misuse{{"get", "mac", "-p"}, "'--port' needs a value."},
                    Misuse{{"get", "mac", "--port"}, "'--port' needs a value."},
                    Misuse{{"get", "mac", "--force"}, "'get' takes no --force."},
                    Misuse{{"list", "--all"}, "'list' takes no --all."},
                    Misuse{{"set", "ssid", "a", "--ssid", "b"}, "'set' takes no --ssid."},
                    Misuse{{"get", "mac", "--all", "-p", "/dev/a"}, "--port and --all exclude each other."}));

} // namespace vorrano::ctl
