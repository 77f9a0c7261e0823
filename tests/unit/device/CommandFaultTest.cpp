#include "unit/device/ExpectedAlerts.h"

using namespace vorrano;
using namespace vorrano::device;
using support::LanguageButton;
using support::Way;

namespace {

// What a device says when it says something else, nothing that is text, and what it says next.
const std::string kGarbage = "\x01?garbage#";
const std::string kNoText = "\xFF\xFE\xFD\n\n\r";
const std::string kNext = "OK\n\r";

class ACommand : public DeviceTabTest<DeviceTabController>, public testing::WithParamInterface<LanguageButton> {
protected:
    ACommand() { world.plugVorrano(); }

    // On a fresh tab, so that one case can follow another.
    void begin()
    {
        tab = createTabOf(GetParam());
        tab->awakeFromNib();
        world.run();
        for (const auto& [field, value, isList] : GetParam().fields) {
            EXPECT_TRUE(isList ? view().choose(field, value) : view().type(field, value));
        }
        line().forget();
        world.alerts.forget();
        press(GetParam().button);
        EXPECT_EQ(line().written(), GetParam().sent);
    }

    // Until nothing more can come of it.
    const Alerts& outcome()
    {
        world.advance(3s);
        EXPECT_FALSE(isBusy());
        return alerts();
    }
};

TEST_P(ACommand, IsSentAndRemembered)
{
    begin();

    EXPECT_EQ(isBusy(), GetParam().way == Way::Request);
    EXPECT_EQ(tab->exchange().waitingForAck(), GetParam().waitingForAck);
    if (GetParam().way == Way::Reset) {
        EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
    } else {
        EXPECT_EQ(bytesOf(tab->exchange().queryNumber().value()), std::string(1, GetParam().command.code));
    }
}

TEST_P(ACommand, ThatIsAnswered)
{
    begin();

    reply(GetParam().answer);

    EXPECT_EQ(outcome(), alertsOfTheTable(GetParam()));
}

TEST_P(ACommand, ThatIsMetWithSilence)
{
    begin();

    EXPECT_EQ(outcome(), expectedAlerts(GetParam(), {}));
}

TEST_P(ACommand, WhoseReplyIsCutOffAtEachByte)
{
    for (std::size_t length = 1; length < GetParam().answer.size(); ++length) {
        const auto beginning = GetParam().answer.substr(0, length);
        begin();

        reply(beginning);

        EXPECT_EQ(outcome(), expectedAlerts(GetParam(), {beginning})) << length;
    }
}

TEST_P(ACommand, WhoseReplyIsSplitAtEachByte)
{
    for (std::size_t length = 1; length < GetParam().answer.size(); ++length) {
        const Chunks chunks{GetParam().answer.substr(0, length), GetParam().answer.substr(length)};
        begin();

        reply(chunks[0]);
        world.advance(100ms);
        reply(chunks[1]);

        EXPECT_EQ(outcome(), expectedAlerts(GetParam(), chunks)) << length;
    }
}

TEST_P(ACommand, WhoseReplyIsLateByALittle)
{
    begin();

    line().replyAfter(1990ms, GetParam().answer);

    EXPECT_EQ(outcome(), alertsOfTheTable(GetParam()));
}

TEST_P(ACommand, WhoseReplyIsTooLate)
{
    begin();

    line().replyAfter(2010ms, GetParam().answer);

    // A request has timed out by then; nothing else has a time-out.
    EXPECT_EQ(outcome(), GetParam().way == Way::Request ? Alerts{kTryAgain} : alertsOfTheTable(GetParam()));
}

TEST_P(ACommand, WhoseReplyIsGarbage)
{
    begin();

    reply(kGarbage);

    EXPECT_EQ(outcome(), expectedAlerts(GetParam(), {kGarbage}));
}

TEST_P(ACommand, WhoseReplyIsNoUtf8)
{
    begin();

    reply(kNoText);

    EXPECT_EQ(outcome(), expectedAlerts(GetParam(), {kNoText}));
}

TEST_P(ACommand, WhoseReplyIsMergedWithTheNext)
{
    begin();

    reply(GetParam().answer + kNext);

    EXPECT_EQ(outcome(), expectedAlerts(GetParam(), {GetParam().answer + kNext}));
}

TEST_P(ACommand, WhoseCableIsPulledBeforeTheReply)
{
    begin();

    world.unplug(line());
    world.advance(3s);

    // A request's time-out has no tab to tell any more, so its progress display stays on.
    EXPECT_EQ(alerts(), GetParam().way == Way::Reset ? alertsOfTheTable(GetParam()) : Alerts{});
    EXPECT_EQ(isBusy(), GetParam().way == Way::Request);
    EXPECT_EQ(tab->serialPort(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(OfEachButton, ACommand, testing::ValuesIn(support::languageButtons()),
                         [](const auto& button) { return button.param.testName(); });

} // namespace
