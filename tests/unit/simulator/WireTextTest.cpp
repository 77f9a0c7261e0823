#include "simulator/window/WireText.h"

#include <gtest/gtest.h>

#include <string>

namespace vorrano::simulator {
namespace {

using namespace std::string_literals;

const std::string kMask = "\u2022\u2022\u2022\u2022";
const std::string kRoot = "/VorranoAPI/RestServiceImpl.svc/";

TEST(WireText, ShowsAnSsidAsItPasses)
{
    WireText wire;

    EXPECT_EQ(wire.received("8My$Home\0"s), "8My$Home\\0");
    EXPECT_EQ(wire.sent("OK\n\r"), "OK\\n\\r");
}

TEST(WireText, MasksPasswordsAndKeysInWhateverChunksTheyCome)
{
    WireText wire;

    EXPECT_EQ(wire.received("9"), "9");
    EXPECT_EQ(wire.received("se"), kMask);
    EXPECT_EQ(wire.received("c\0b12\0c"s), "\\0b" + kMask + "\\0c");
}

TEST(WireText, MasksAPasswordThatIsReadBack)
{
    WireText wire;
    EXPECT_EQ(wire.received("d"), "d");

    EXPECT_EQ(wire.sent("se"), kMask);
    EXPECT_EQ(wire.sent("c\n\n\r"), "\\n\\n\\r");
    EXPECT_EQ(wire.sent("OK"), "OK");
}

TEST(WireText, KnowsArgumentsFromCommands)
{
    WireText wire;

    EXPECT_EQ(wire.received("e9c"), "e9c");
    EXPECT_EQ(wire.received("a\x08"), "a<08>");
}

TEST(WireText, ShowsAnImage)
{
    WireText wire;
    EXPECT_EQ(wire.received("7b"), "7b");
    wire.setInBootloader(true);

    EXPECT_EQ(wire.received("u:99b\r"), "u:99b\\r");
}

TEST(WireText, MasksAKeyThatIsTheFirstThingAfterARestart)
{
    WireText wire;
    EXPECT_EQ(wire.received("7"), "7");
    EXPECT_EQ(wire.sent("Up\n\r"), "Up\\n\\r");
    wire.setRunning();

    EXPECT_EQ(wire.received("bsecret\0"s), "b" + kMask + "\\0");
}

TEST(WireText, ForgetsAHalfPasswordWhenTheCableIsPulled)
{
    WireText wire;
    EXPECT_EQ(wire.received("9s"), "9" + kMask);
    wire.cablePulled();

    EXPECT_EQ(wire.received("0"), "0");
}

TEST(WireText, MasksThePasswordsOfRequests)
{
    EXPECT_EQ(WireText::request(kRoot + "validateLogin/ada/secret/x"), "validateLogin/ada/" + kMask + "/" + kMask);
    EXPECT_EQ(WireText::request(kRoot + "insertAccount/ada//pw/e/n/a/b/c/s/c/z/gp"),
              "insertAccount/ada//" + kMask + "/e/n/a/b/c/s/c/z/" + kMask);
    EXPECT_EQ(WireText::request(kRoot + "getAccounts/12//pw/e/n/a/b/c/s/c/z/g"),
              "getAccounts/12//" + kMask + "/e/n/a/b/c/s/c/z/" + kMask);
}

TEST(WireText, MasksAllThatMayBePartOfAPasswordWithSlashes)
{
    std::string masked = "insertAccount/ada//" + kMask;
    for (int i = 0; i < 10; ++i) {
        masked += "/" + kMask;
    }

    EXPECT_EQ(WireText::request(kRoot + "insertAccount/ada//p/w/e/n/a/b/c/s/c/z/gp"), masked);
}

TEST(WireText, ShowsOtherRequestsWhole)
{
    EXPECT_EQ(WireText::request(kRoot + "getAccounts/1234"), "getAccounts/1234");
    EXPECT_EQ(WireText::request(kRoot + "validateLogin//"), "validateLogin//");
    EXPECT_EQ(WireText::request(kRoot + "insertAccountVorranos/1/00:1E/Kitchen"),
              "insertAccountVorranos/1/00:1E/Kitchen");
    EXPECT_EQ(WireText::request("/favicon.ico"), "/favicon.ico");
}

} // namespace
} // namespace vorrano::simulator
