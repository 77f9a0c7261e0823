#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class RequestFailure : public SerialPortFixture {};

TEST_F(RequestFailure, OnAClosedPortAnswersNoWithoutErrorAndHasTheRequestPendingJustTheSame)
{
    const auto sent = request("1", 2s, endsWith("!"));

    EXPECT_FALSE(port->sendRequest(sent));
    EXPECT_TRUE(port->sendRequest(request("2", 2s, endsWith("!"))));

    world.advance(2s);
    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
    EXPECT_THAT(delegate->timedOut(), ElementsAre(sent));
    world.advance(2s);
    EXPECT_THAT(delegate->heard(), ElementsAre("timeout", "timeout"));
}

TEST_F(RequestFailure, WithoutADelegateGoesOnAllTheSame)
{
    port->setDelegate({});
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    port->sendRequest(request("3", 2s, endsWith("!")));

    line.reply("!");
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2"));
    world.advance(2s);

    EXPECT_THAT(written(), ElementsAre("1", "2", "3"));
    world.advance(10s);
}

TEST_F(RequestFailure, OfAWriteIsToldAfterTheSendHasReturned)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EIO);

    EXPECT_FALSE(port->sendRequest(request("1", 2s, endsWith("!"))));

    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("error 5"));
}

TEST_F(RequestFailure, OfAWriteLetsTheDelegateSendAgainCloseAndOpenWhenToldOfIt)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EIO);
    delegate->whenHearing("error 5", [this] {
        EXPECT_TRUE(port->sendRequest(request("2", 1s, endsWith("!"))));
        EXPECT_TRUE(port->close());
        port->open();
    });

    EXPECT_FALSE(port->sendRequest(request("1", 1s, endsWith("!"))));
    world.advance(1s);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 5", "closed", "opened", "timeout"));
    EXPECT_THAT(written(), ElementsAre("2"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(RequestFailure, SurvivesAnEvaluatorThatThrows)
{
    openQuietly();
    port->sendRequest(request("1", 2s, [](const Bytes& bytes) -> bool {
        if (bytes == "a") {
            throw std::runtime_error("no");
        }
        return bytes.ends_with("!");
    }));

    line.reply("a");
    world.run();
    line.reply("!");
    world.run();

    EXPECT_THAT(delegate->heard("response"), ElementsAre("response a!"));
    EXPECT_EQ(world.log.lines().size(), 1U);
}

TEST_F(RequestFailure, CompletesARequestWithoutEvaluatorWhoseWriteFailedWithTheNextChunk)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EIO);
    const auto sent = request("1", 2s);
    EXPECT_FALSE(port->sendRequest(sent));
    EXPECT_TRUE(port->sendRequest(request("2", 0s, endsWith("!"))));
    world.advance(1s);
    EXPECT_THAT(written(), IsEmpty());

    line.reply("abc");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("error 5", "data abc", "response abc"));
    EXPECT_THAT(delegate->answered(), ElementsAre(sent));
    EXPECT_THAT(written(), ElementsAre("2"));
}

TEST_F(RequestFailure, WhoseWriteFailedWithoutALimitIsHeldUpUntilSomeBytesSatisfyTheEvaluator)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EIO);
    EXPECT_FALSE(port->sendRequest(request("1", 0s, endsWith("!"))));
    port->sendRequest(request("2", 0s, endsWith("!")));
    world.advance(30s);
    EXPECT_THAT(written(), IsEmpty());

    line.reply("!");
    world.run();

    EXPECT_THAT(written(), ElementsAre("2"));
}

TEST_F(RequestFailure, LeavesARequestThatWasQueuedBehindAFailedWriteWithoutAResult)
{
    openQuietly();
    line.failNext(TerminalCall::Write, EIO, 2);
    port->sendRequest(request("1", 2s, endsWith("!")));
    EXPECT_TRUE(port->sendRequest(request("2", 2s, endsWith("!"))));

    world.advance(4s);

    EXPECT_THAT(delegate->heard(), ElementsAre("error 5", "timeout", "error 5", "timeout"));
}

} // namespace

} // namespace vorrano::serial
