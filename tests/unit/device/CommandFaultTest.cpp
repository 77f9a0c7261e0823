#include "unit/device/CommandTable.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

class ACommand : public DeviceTabTest<DeviceTabController>, public testing::WithParamInterface<Command> {
protected:
    ACommand() { world.plugVorrano(); }

    // On a fresh tab, so that one case can follow another.
    void begin()
    {
        tab = GetParam().create();
        tab->awakeFromNib();
        world.run();
        for (const auto& [field, value] : GetParam().fields) {
            EXPECT_TRUE(field == kSecurityType ? view().choose(field, value) : view().type(field, value));
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

    [[nodiscard]] static Alerts outcomeOfSilence()
    {
        switch (GetParam().kind) {
        case Kind::Request:
            return {kTryAgain};
        case Kind::Reset:
            return GetParam().answered;
        case Kind::Raw:
            break;
        }
        return {};
    }

    // Of the reply's first `length` bytes in one chunk and, where there is one, the rest in another.
    [[nodiscard]] static Alerts outcomeOf(std::size_t length, bool restFollows)
    {
        const auto& command = GetParam();
        const auto beginning = command.reply.substr(0, length);
        const auto rest = command.reply.substr(length);
        if (command.kind == Kind::Reset) {
            return command.answered;
        }
        if (command.kind == Kind::Raw) {
            return command.shownOfChunks(restFollows ? Chunks{beginning, rest} : Chunks{beginning});
        }
        if (length < command.enough) {
            return restFollows ? command.answered : Alerts{kTryAgain};
        }
        return {command.shown(beginning)};
    }
};

TEST_P(ACommand, ThatIsAnswered)
{
    begin();

    reply(GetParam().reply);

    EXPECT_EQ(outcome(), GetParam().answered);
}

TEST_P(ACommand, ThatIsMetWithSilence)
{
    begin();

    EXPECT_EQ(outcome(), outcomeOfSilence());
}

TEST_P(ACommand, WhoseReplyIsCutOffAtEachByte)
{
    for (std::size_t length = 1; length < GetParam().reply.size(); ++length) {
        begin();

        reply(GetParam().reply.substr(0, length));

        EXPECT_EQ(outcome(), outcomeOf(length, false)) << length;
    }
}

TEST_P(ACommand, WhoseReplyIsSplitAtEachByte)
{
    for (std::size_t length = 1; length < GetParam().reply.size(); ++length) {
        begin();

        reply(GetParam().reply.substr(0, length));
        world.advance(100ms);
        reply(GetParam().reply.substr(length));

        EXPECT_EQ(outcome(), outcomeOf(length, true)) << length;
    }
}

TEST_P(ACommand, WhoseReplyIsLateByALittle)
{
    begin();

    line().replyAfter(1990ms, GetParam().reply);

    EXPECT_EQ(outcome(), GetParam().answered);
}

TEST_P(ACommand, WhoseReplyIsTooLate)
{
    begin();

    line().replyAfter(2010ms, GetParam().reply);

    // What comes after the time-out is nobody's; a raw command has none.
    EXPECT_EQ(outcome(), GetParam().kind == Kind::Request ? Alerts{kTryAgain} : GetParam().answered);
}

TEST_P(ACommand, WhoseReplyIsGarbage)
{
    begin();

    reply(kGarbage);

    EXPECT_EQ(outcome(), GetParam().garbage);
}

TEST_P(ACommand, WhoseReplyIsNoUtf8)
{
    begin();

    reply(kNoText);

    EXPECT_EQ(outcome(), GetParam().noText);
}

TEST_P(ACommand, WhoseReplyIsMergedWithTheNext)
{
    begin();

    reply(GetParam().reply + kNext);

    EXPECT_EQ(outcome(), GetParam().merged);
}

TEST_P(ACommand, WhoseCableIsPulledBeforeTheReply)
{
    begin();

    world.unplug(line());
    world.advance(3s);

    // A request's time-out has no tab to tell any more, so its progress display stays on.
    EXPECT_EQ(alerts(), GetParam().kind == Kind::Reset ? GetParam().answered : Alerts{});
    EXPECT_EQ(isBusy(), GetParam().kind == Kind::Request);
    EXPECT_EQ(tab->serialPort(), nullptr);
}

std::string nameOf(const testing::TestParamInfo<Command>& command) { return command.param.name; }

INSTANTIATE_TEST_SUITE_P(OfTheWifiTab, ACommand, testing::ValuesIn(wifiTabCommands()), nameOf);
INSTANTIATE_TEST_SUITE_P(OfTheUtilitiesTab, ACommand, testing::ValuesIn(utilitiesTabCommands()), nameOf);

} // namespace
