#include "unit/serial/SerialPortFixture.h"

namespace vorrano::serial {

namespace {

class RequestLateReply : public SerialPortFixture {
protected:
    // A time-out of `first` that is on its way to the held main thread while the reply to it comes in.
    platform::Subscription timeOutThatMeetsItsReply(const std::shared_ptr<SerialRequest>& first)
    {
        port->sendRequest(first);
        auto hold = world.mainQueue.hold();
        world.advance(2s);
        EXPECT_EQ(world.mainQueue.waiting(), 1U);
        return hold;
    }
};

TEST_F(RequestLateReply, KeepsItsRequestPendingUntilTheDelegateWasTold)
{
    openQuietly();
    const auto hold = timeOutThatMeetsItsReply(request("1", 2s, endsWith("!")));

    EXPECT_TRUE(port->sendRequest(request("2", 2s, endsWith("!"))));

    EXPECT_THAT(written(), ElementsAre("1"));
}

TEST_F(RequestLateReply, AndALateReplyAreBothDelivered)
{
    openQuietly();
    const auto sent = request("1", 2s, endsWith("!"));
    auto hold = timeOutThatMeetsItsReply(sent);

    line.reply("late!");
    world.run();
    hold.reset();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout", "data late!", "response late!"));
    EXPECT_THAT(delegate->timedOut(), ElementsAre(sent));
    EXPECT_THAT(delegate->answered(), ElementsAre(sent));
}

// The step that was put off clears whatever is pending when it comes, and starts what is next.
TEST_F(RequestLateReply, AndALateReplyClearTheRequestThatTheReplyStarted)
{
    openQuietly();
    const auto first = request("1", 2s, endsWith("!"));
    const auto second = request("2", 2s, endsWith("!"));
    const auto third = request("3", 2s, endsWith("!"));
    auto hold = timeOutThatMeetsItsReply(first);
    port->sendRequest(second);
    port->sendRequest(third);

    line.reply("late!");
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2"));
    hold.reset();
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2", "3"));
    line.reply("!");
    world.advance(30s);

    EXPECT_THAT(delegate->answered(), ElementsAre(first, third));
    EXPECT_THAT(delegate->timedOut(), ElementsAre(first));
}

TEST_F(RequestLateReply, LeavesTheTimerOfTheRequestItClearsSoThatATimeOutComesWithoutARequest)
{
    openQuietly();
    const auto first = request("1", 2s, endsWith("!"));
    auto hold = timeOutThatMeetsItsReply(first);
    port->sendRequest(request("2", 5s, endsWith("!")));
    line.reply("late!");
    world.run();

    hold.reset();
    world.advance(4999ms);
    EXPECT_THAT(delegate->timedOut(), ElementsAre(first));
    world.advance(1ms);

    EXPECT_THAT(delegate->timedOut(), ElementsAre(first, nullptr));
    EXPECT_TRUE(port->sendRequest(request("3", 0s, endsWith("!"))));
    EXPECT_THAT(written(), ElementsAre("1", "2", "3"));
}

TEST_F(RequestLateReply, OfARequestThatWasClearedHitsTheNextOneIfThatHasNoLimit)
{
    openQuietly();
    const auto first = request("1", 2s, endsWith("!"));
    const auto third = request("3", 0s, endsWith("!"));
    auto hold = timeOutThatMeetsItsReply(first);
    port->sendRequest(request("2", 5s, endsWith("!")));
    port->sendRequest(third);
    line.reply("late!");
    world.run();
    hold.reset();
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2", "3"));

    world.advance(5s);

    EXPECT_THAT(delegate->timedOut(), ElementsAre(first, third));
}

TEST_F(RequestLateReply, OfARequestThatWasClearedIsReplacedByTheNextOnesOwn)
{
    openQuietly();
    const auto first = request("1", 2s, endsWith("!"));
    const auto third = request("3", 9s, endsWith("!"));
    auto hold = timeOutThatMeetsItsReply(first);
    port->sendRequest(request("2", 5s, endsWith("!")));
    port->sendRequest(third);
    line.reply("late!");
    world.run();
    hold.reset();
    world.advance(8999ms);
    EXPECT_THAT(delegate->timedOut(), ElementsAre(first));

    world.advance(1ms);

    EXPECT_THAT(delegate->timedOut(), ElementsAre(first, third));
}

TEST_F(RequestLateReply, LeavesALateReplyToTheBufferOfTheNextRequest)
{
    openQuietly();
    const auto second = request("2", 2s, endsWith("!"));
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(second);
    world.advance(2s);

    line.reply("late!");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout", "data late!", "response late!"));
    EXPECT_THAT(delegate->answered(), ElementsAre(second));
}

TEST_F(RequestLateReply, LeavesALateReplyInTheBufferUntilTheNextRequestStarts)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    world.advance(2s);
    line.reply("late!");
    world.run();

    port->sendRequest(request("2", 2s, endsWith("!")));
    world.run();
    EXPECT_THAT(delegate->heard("response"), IsEmpty());
    line.reply("new!");
    world.run();

    EXPECT_THAT(delegate->heard("response"), ElementsAre("response new!"));
}

// Whichever comes first on the request queue wins, in every order that sixty seeds give.
TEST_F(RequestLateReply, RacingWithTheReplyEndsTheRequestOnceAndTheNextOneStarts)
{
    int timeouts = 0;
    int responses = 0;
    openQuietly();
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        world.time.explore(seed);
        forget();
        const auto first = request("1", 2s, endsWith("!"));
        const auto second = request("2", 2s, endsWith("?"));
        port->sendRequest(first);
        port->sendRequest(second);
        line.replyAfter(2s, "!");
        world.advance(2s);
        // A reply that met the time-out on its way may have cost the second request its turn.
        line.reply("?");
        world.advance(4s);

        timeouts += delegate->timedOut().empty() ? 0 : 1;
        responses += delegate->answered().empty() || delegate->answered().front() != first ? 0 : 1;
        EXPECT_GE(delegate->timedOut().size() + delegate->answered().size(), 1U) << seed;
        EXPECT_THAT(written(), ElementsAre("1", "2")) << seed;
    }
    EXPECT_GT(timeouts, 0);
    EXPECT_GT(responses, 0);
}

} // namespace

} // namespace vorrano::serial
