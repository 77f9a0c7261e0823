#include "support/DeviceLanguage.h"
#include "unit/device/UtilitiesTabTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

const std::string kAdc = "ADC version number";
const std::string kConnected = "Vorrano is Connected to your WIFI Network";

struct UtilitiesRouting : UtilitiesTab {};

TEST_F(UtilitiesRouting, ShowsNothingOfWhatIsSentUnasked)
{
    reply("Vorrano ready\n\r");

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(tab->exchange().receivedString(), "Vorrano ready\n\r");
}

TEST_F(UtilitiesRouting, KeepsEachChunkAloneAndAllBytesTogether)
{
    reply("one");
    reply("two\xFF");

    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
    EXPECT_EQ(tab->exchange().incomingDataBuffer(), "onetwo\xFF");
}

TEST_F(UtilitiesRouting, ShowsTheTemperatureUnit)
{
    press("buttonGetTemperatureUnit");
    reply("0\n\r");
    reply("1\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("Fahrenheit", ""), alertOf("Celsius", "")));
}

TEST_F(UtilitiesRouting, ShowsATemperatureUnitInTwoChunksAsTwoAlertsWithoutText)
{
    press("buttonGetTemperatureUnit");

    reply("0");
    reply("\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf(std::nullopt, ""), alertOf(std::nullopt, "")));
}

TEST_F(UtilitiesRouting, ShowsAnythingElseThanATemperatureUnitWithoutText)
{
    press("buttonGetTemperatureUnit");

    for (const auto* chunk : {"2\n\r", "0\n\r1\n\r", "0", "\xFF"}) {
        reply(chunk);
    }

    EXPECT_EQ(alerts(), std::vector<Alert>(4, alertOf(std::nullopt, "")));
}

TEST_F(UtilitiesRouting, ShowsThatTheTemperatureUnitWasSet)
{
    press("buttonSetTemperatureUnit");

    reply("OK\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", ""));
}

TEST_F(UtilitiesRouting, ShowsNothingElseAfterSettingTheTemperatureUnit)
{
    press("buttonSetTemperatureUnit");

    for (const auto* chunk : {"OK", "\n\r", "ERROR\n\r", "OK\n\rOK\n\r", "\xFF"}) {
        reply(chunk);
    }

    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(UtilitiesRouting, ShowsAFirmwareVersionOfSixCharactersAndNotOfFive)
{
    press("buttonFirmwareVersion");

    reply("9.5\n\r");
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(tab->exchange().receivedString(), "9.5\n\r");
    reply("9.50\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("9.50\n\r", "Device Firmware Version"));
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(UtilitiesRouting, ShowsAWifiFirmwareVersionOfThirteenCharactersAndNotOfTwelve)
{
    press("wifiFirmwareQuery");

    reply("WF200 2.1.\n\r");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("WF200 2.1.7\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("WF200 2.1.7\n\r", "Wifi Firmware Version"));
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(UtilitiesRouting, CountsAVersionsCharactersInUtf16)
{
    press("buttonFirmwareVersion");

    reply("\u20AC\u20AC\u20AC");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("\U0001F321\U0001F321\U0001F321");

    EXPECT_EQ(alerts().size(), 1U);
}

struct GatheringCase {
    std::string button;
    std::string informativeText;
};

class Gathering : public UtilitiesRouting, public testing::WithParamInterface<GatheringCase> {
protected:
    [[nodiscard]] const std::optional<std::string>& gathered() const
    {
        return GetParam().informativeText == kAdc ? tab->replies().adcNumber() : tab->replies().connectivityStatus();
    }
    [[nodiscard]] Alert shown(const std::string& text) const { return alertOf(text, GetParam().informativeText); }
};

TEST_P(Gathering, ShowsNoAlertForAReplyInOneChunk)
{
    press(GetParam().button);

    reply("Connected\n\r");

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_THAT(world.log.lines(), ElementsAre("The string is Connected\n\r"));
    EXPECT_EQ(gathered(), "Connected\n\r");
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_P(Gathering, ShowsBothChunksJoinedWithTheSecond)
{
    press(GetParam().button);

    reply("Conn");
    reply("ected\n\r");

    EXPECT_EQ(world.alerts.only(), shown("Connected\n\r"));
    EXPECT_EQ(gathered(), std::nullopt);
    EXPECT_THAT(world.log.lines(), ElementsAre("The string is Conn"));
}

TEST_P(Gathering, GoesOnPastAChunkWithAZeroLine)
{
    press(GetParam().button);

    reply("a");
    reply("0\n\r");
    reply("b0\n\rc");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("d");

    EXPECT_EQ(world.alerts.only(), shown("a0\n\rb0\n\rcd"));
    EXPECT_THAT(world.log.lines(),
                ElementsAre("The string is a", "The string is a0\n\r", "The string is a0\n\rb0\n\rc"));
}

TEST_P(Gathering, SeesAZeroLineOfOneChunkOnly)
{
    press(GetParam().button);

    reply("a");
    reply("0");

    EXPECT_EQ(world.alerts.only(), shown("a0"));
}

TEST_P(Gathering, GoesOnWithTheNextPress)
{
    press(GetParam().button);
    reply("first ");

    press(GetParam().button);
    reply("second");

    EXPECT_EQ(world.alerts.only(), shown("first second"));
}

TEST_P(Gathering, BeginsAnewAfterItsAlert)
{
    press(GetParam().button);
    reply("a");
    reply("b");
    world.alerts.forget();

    reply("c");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("d");

    EXPECT_EQ(world.alerts.only(), shown("cd"));
}

TEST_P(Gathering, GathersNothingOfAChunkThatIsNoText)
{
    press(GetParam().button);

    reply("\xFF");
    EXPECT_EQ(gathered(), std::nullopt);
    reply("a");
    reply("\xFF");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("b");

    EXPECT_EQ(world.alerts.only(), shown("ab"));
    EXPECT_THAT(world.log.lines(), ElementsAre("The string is (null)", "The string is a", "The string is a"));
}

INSTANTIATE_TEST_SUITE_P(Of, Gathering,
                         testing::Values(GatheringCase{"buttonADC", kAdc},
                                         GatheringCase{"buttonNetworkConnectivityStatus", kConnected}));

TEST_F(UtilitiesRouting, GathersEachAnswerForItself)
{
    press("buttonADC");
    reply("adc ");
    press("buttonNetworkConnectivityStatus");
    reply("net ");
    reply("up");
    press("buttonADC");
    reply("7");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("net up", kConnected), alertOf("adc 7", kAdc)));
}

TEST_F(UtilitiesRouting, TakesWhatTheDeviceSaysAfterAResetForTheAnswerToTheLastQuery)
{
    press("buttonADC");
    reply("AD");
    press("resetDevice");
    world.alerts.forget();

    reply("Vorrano ready\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("ADVorrano ready\n\r", kAdc));
}

TEST_F(UtilitiesRouting, TakesWhatTheDeviceSaysAfterAResetForAFirmwareVersion)
{
    press("buttonFirmwareVersion");
    reply("9.50\n\r");
    press("resetModem");
    world.alerts.forget();

    reply("Modem ready\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("Modem ready\n\r", "Device Firmware Version"));
}

// A response passes through the data callback too, under its own command.
class AResponseAsData : public UtilitiesRouting, public testing::WithParamInterface<support::LanguageButton> {
public:
    static std::vector<support::LanguageButton> buttons()
    {
        std::vector<support::LanguageButton> requests;
        for (const auto& button : support::languageButtons()) {
            if (button.screen == "UtilitiesViewController" && button.way == support::Way::Request) {
                requests.push_back(button);
            }
        }
        return requests;
    }
};

TEST_P(AResponseAsData, ShowsNothingBesidesTheResponse)
{
    for (const auto& [field, value, isList] : GetParam().fields) {
        type(field, value);
    }
    press(GetParam().button);

    reply(GetParam().answer);

    EXPECT_EQ(alerts().size(), 1U);
    EXPECT_EQ(tab->exchange().incomingDataBuffer(), GetParam().answer);
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfEachRequest, AResponseAsData, testing::ValuesIn(AResponseAsData::buttons()),
                         [](const auto& button) { return button.param.testName(); });

TEST_F(UtilitiesRouting, ReadsAnOlderReplyByTheLaterCommand)
{
    press("buttonPowerStatus");
    press("buttonGetTemperatureUnit");

    reply("Power OK\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf(std::nullopt, ""), alertOf("Power OK\n\r", "Success")));
}

TEST_F(UtilitiesRouting, KeepsAPasswordThatALaterQueryGathersOutOfTheLog)
{
    press("buttonGetNetworkPassword");
    press("buttonADC");

    reply("sesame\n\n\r");
    reply("0\n\r");
    EXPECT_THAT(world.log.lines(), ElementsAre("The string is (withheld)", "The string is (withheld)"));
    reply("7\n\r");
    reply("5\n\r");

    EXPECT_THAT(world.log.lines(),
                ElementsAre("The string is (withheld)", "The string is (withheld)", "The string is 5\n\r"));
}

TEST_F(UtilitiesRouting, KeepsThePasswordThatWasAskedForTwiceOutOfTheLog)
{
    press("buttonGetNetworkPassword");
    press("buttonGetNetworkPassword");
    reply("sesame\n\n\r");
    press("buttonADC");

    reply("sesame\n\n\r");

    EXPECT_THAT(world.log.lines(), ElementsAre("The string is (withheld)"));
}

TEST_F(UtilitiesRouting, LogsAnAnswerWholeWhenAPasswordWasAskedForWithoutAPort)
{
    world.unplug(line());
    world.run();
    press("buttonGetNetworkPassword");
    world.advance(10s);

    world.plugVorrano();
    world.run();
    press("buttonADC");
    reply("V1.4");

    EXPECT_THAT(world.log.lines(), ElementsAre("The string is V1.4"));
}

TEST_F(UtilitiesRouting, HandlesChunksThatArriveUnderAnAlertAfterItOneByOne)
{
    press("buttonGetTemperatureUnit");
    world.alerts.whileUp([this] {
        line().reply("1\n\r");
        world.run();
        line().reply("0\n\r");
        world.advance(1s);
        EXPECT_EQ(alerts().size(), 1U);
    });

    reply("0\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("Fahrenheit", ""), alertOf("Celsius", ""), alertOf("Fahrenheit", "")));
}

TEST_F(UtilitiesRouting, ShowsAnUnreadableThrottleAsZero)
{
    press("buttonGetThrottle");

    reply("\xFF\xFE\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("0", "Throttle is displayed"));
}

TEST_F(UtilitiesRouting, ShowsAReplyThatIsNoTextWithoutATitle)
{
    press("buttonGetSSID");

    reply("\xFF\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf(std::nullopt, "Success"));
}

TEST_F(UtilitiesRouting, SendsNowhereWithoutAPort)
{
    world.unplug(line());
    world.advance(200ms);

    for (const auto* button : {"buttonADC", "buttonSetTemperatureUnit", "buttonGetSSID"}) {
        press(button);
    }
    world.advance(10s);

    EXPECT_EQ(line().written(), "");
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_TRUE(isBusy());
}

} // namespace
