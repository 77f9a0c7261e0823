#include "device/WifiSetupViewController.h"
#include "unit/device/UtilitiesTabTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

const std::string kSecret = "sesame\n\n\r";
const std::string kWithheld = "The string is (withheld)";

// A query for the ADC version gathers whatever comes next, a stored password too, and logs it.
struct PasswordInLog : UtilitiesTab {
    [[nodiscard]] std::vector<std::string> log() const { return world.log.lines(); }

    // The password was asked for, and nothing came within the time limit.
    void letThePasswordTimeOut()
    {
        press("buttonGetNetworkPassword");
        world.advance(3s);
        EXPECT_EQ(alerts().size(), 1U);
    }
};

TEST_F(PasswordInLog, IsWithheldWhenTheWifiTabAskedForIt)
{
    const auto wifi = WifiSetupViewController::create();
    wifi->awakeFromNib();
    chooseTab();
    static_cast<FakeView&>(*wifi->view()).press("buttonCheckPassword");

    press("buttonADC");
    reply(kSecret);

    EXPECT_THAT(log(), ElementsAre(kWithheld));
}

TEST_F(PasswordInLog, IsWithheldWhenTheTabWasChosenAnewMeanwhile)
{
    press("buttonGetNetworkPassword");
    chooseTab();

    press("buttonADC");
    reply(kSecret);

    EXPECT_THAT(log(), ElementsAre(kWithheld));
}

TEST_F(PasswordInLog, IsWithheldAfterThePasswordOfAnotherTabHasCome)
{
    const auto wifi = WifiSetupViewController::create();
    wifi->awakeFromNib();
    chooseTab();
    static_cast<FakeView&>(*wifi->view()).press("buttonCheckPassword");
    reply(kSecret);

    press("buttonGetNetworkPassword");
    press("buttonADC");
    reply(kSecret);

    EXPECT_THAT(log(), ElementsAre(kWithheld));
}

TEST_F(PasswordInLog, IsWithheldWhenItComesAfterItsTimeOut)
{
    letThePasswordTimeOut();

    press("buttonADC");
    reply(kSecret);

    EXPECT_THAT(log(), ElementsAre(kWithheld));
}

TEST_F(PasswordInLog, IsNotExpectedAnyMoreOnceAnotherRequestWasAnsweredAfterItsTimeOut)
{
    letThePasswordTimeOut();
    press("buttonGetSSID");
    reply("My$Net\n\n\r");

    press("buttonADC");
    reply("V1.4");

    EXPECT_THAT(log(), ElementsAre("The string is V1.4"));
}

TEST_F(PasswordInLog, IsNotExpectedAnyMoreOnceThePortWasClosedAfterItsTimeOut)
{
    letThePasswordTimeOut();
    world.unplug(line());
    world.run();
    world.plugVorrano();
    world.run();

    press("buttonADC");
    reply("V1.4");

    EXPECT_THAT(log(), ElementsAre("The string is V1.4"));
}

TEST_F(PasswordInLog, IsStillExpectedAfterARequestThatNeedsNoAnswer)
{
    letThePasswordTimeOut();
    press("resetModem");

    press("buttonADC");
    reply(kSecret);

    EXPECT_THAT(log(), ElementsAre(kWithheld));
}

TEST_F(PasswordInLog, WithholdsOnlyTheAccumulatorThatHoldsIt)
{
    press("buttonNetworkConnectivityStatus");
    reply("wait 0\n\r");
    press("buttonGetNetworkPassword");
    press("buttonADC");
    reply(kSecret);

    press("buttonNetworkConnectivityStatus");
    reply("still 0\n\r");

    EXPECT_THAT(log(), ElementsAre("The string is wait 0\n\r", kWithheld, "The string is wait 0\n\rstill 0\n\r"));
}

TEST_F(PasswordInLog, WithholdsAnAccumulatorUntilItWasShown)
{
    press("buttonGetNetworkPassword");
    press("buttonADC");
    reply(kSecret);
    reply("0\n\r");
    reply("shown");

    reply("next 0\n\r");

    EXPECT_THAT(log(), ElementsAre(kWithheld, kWithheld, "The string is next 0\n\r"));
}

} // namespace
