#include "unit/serial/SerialPortFixture.h"

#include <cstddef>
#include <map>
#include <utility>

#include <malloc.h>

namespace vorrano::serial {

namespace {

constexpr std::size_t kManyBytes = 4UL << 20;

// What is in use. A sanitizer has a heap of its own, of which nothing shows here.
std::size_t bytesOnTheHeap()
{
    const auto heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

class QueueOfRequests : public SerialPortFixture {
protected:
    // Answers a command by its text, so far as it is known, whenever it is written.
    void answer(const std::string& command, const std::string& reply)
    {
        m_replies[command] = reply;
        line.onWrite([this](const std::string& written) {
            const auto known = m_replies.find(written);
            if (known != m_replies.end()) {
                line.reply(known->second);
            }
        });
    }

private:
    std::map<std::string, std::string> m_replies;
};

TEST_F(QueueOfRequests, WritesARequestAndDeliversItsResponse)
{
    openQuietly();
    const auto sent = request("3", 2s, endsWith("\n\r"));

    EXPECT_TRUE(port->sendRequest(sent));
    EXPECT_EQ(line.written(), "3");
    line.reply("00:11:22:33:44:55\n\r");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("data 00:11:22:33:44:55\n\r", "response 00:11:22:33:44:55\n\r"));
    EXPECT_THAT(delegate->answered(), ElementsAre(sent));
    EXPECT_EQ(delegate->port(), port.get());
}

TEST_F(QueueOfRequests, HasWrittenTheRequestWhenTheSendReturns)
{
    openQuietly();
    line.delayNext(TerminalCall::Write, 300ms);

    EXPECT_TRUE(port->sendRequest(request("3", 2s, endsWith("!"))));

    EXPECT_EQ(world.now(), 320ms);
    EXPECT_EQ(line.written(), "3");
}

TEST_F(QueueOfRequests, WritesOnABackgroundThreadAlsoForTheMainThread)
{
    openQuietly();

    port->sendRequest(request("3", 2s, endsWith("!")));

    EXPECT_FALSE(world.terminal.calls({TerminalCall::Write}).front().onMainThread);
}

TEST_F(QueueOfRequests, NeverAsksTheEvaluatorOnTheMainThreadWhenTheReplyIsThereAtOnce)
{
    openQuietly();
    Lines asked;
    port->sendRequest(request("3", 2s, [&](const Bytes& bytes) {
        EXPECT_FALSE(world.mainQueue.isMainThread());
        asked.push_back(bytes);
        return !bytes.empty();
    }));
    line.reply("ab");

    world.run();

    EXPECT_THAT(asked, ElementsAre("", "ab"));
}

TEST_F(QueueOfRequests, RefusesNoRequestAtAll)
{
    openQuietly();

    EXPECT_FALSE(port->sendRequest(nullptr));

    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Write}), IsEmpty());
}

TEST_F(QueueOfRequests, CompletesARequestWithoutAnEvaluatorRightAfterItsWriteWithoutResponse)
{
    openQuietly();
    const auto timed = request("9", 2s, endsWith("!"));

    EXPECT_TRUE(port->sendRequest(request("8", 2s)));
    EXPECT_TRUE(port->sendRequest(timed));

    EXPECT_THAT(written(), ElementsAre("8", "9"));
    world.advance(10s);
    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
    EXPECT_THAT(delegate->timedOut(), ElementsAre(timed));
}

TEST_F(QueueOfRequests, CompletesARequestWhoseEvaluatorAcceptsNoBytesInTheSameWay)
{
    openQuietly();

    EXPECT_TRUE(port->sendRequest(request("6", 2s, [](const Bytes&) { return true; })));
    EXPECT_TRUE(port->sendRequest(request("7", 2s, [](const Bytes&) { return true; })));

    EXPECT_THAT(written(), ElementsAre("6", "7"));
    world.advance(10s);
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(QueueOfRequests, CompletesARequestOfNoBytes)
{
    openQuietly();

    EXPECT_TRUE(port->sendRequest(request("", 2s)));

    world.advance(10s);
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Write}), IsEmpty());
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(QueueOfRequests, WritesThreeRequestsOneAtATimeInTheOrderSent)
{
    openQuietly();
    for (const auto* const text : {"1", "2", "3"}) {
        EXPECT_TRUE(port->sendRequest(request(text, 2s, endsWith("!"))));
    }
    EXPECT_THAT(written(), ElementsAre("1"));

    line.reply("a!");
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2"));

    world.advance(2s);
    EXPECT_THAT(written(), ElementsAre("1", "2", "3"));
    line.reply("c!");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("data a!", "response a!", "timeout", "data c!", "response c!"));
}

TEST_F(QueueOfRequests, SendsACommandItsTextAndItsTerminatorAtOnceAndDeliversTheOneResponse)
{
    openQuietly();
    answer(std::string(1, '\0'), "OK\n\r");

    port->sendRequest(request("8", 2s));
    port->sendRequest(request("My$Home$Net", 2s));
    port->sendRequest(request(std::string(1, '\0'), 2s, [](const Bytes& bytes) { return bytes.size() > 3; }));
    world.run();

    EXPECT_EQ(line.written(), std::string("8My$Home$Net\0", 13));
    EXPECT_THAT(delegate->heard("response"), ElementsAre("response OK\n\r"));
}

TEST_F(QueueOfRequests, StartsEachOfManyWithoutEvaluatorsThatWaitedForAnAnswer)
{
    openQuietly();
    port->sendRequest(request("first", 0s, endsWith("!")));
    for (int i = 0; i < 20'000; ++i) {
        port->sendRequest(request("x", 0s));
    }

    line.reply("!");
    world.run();

    EXPECT_EQ(line.writes().size(), 20'001U);
}

TEST_F(QueueOfRequests, TellsDataBeforeTheResponseThatItCompletesForEveryChunk)
{
    openQuietly();
    port->sendRequest(request("c", 2s, endsWith("\n\n\r")));

    line.reply("My$");
    line.reply("Home");
    line.reply("\n\n");
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("data My$", "data Home", "data \n\n"));
    line.reply("\r");
    world.run();

    EXPECT_THAT(delegate->heard(),
                ElementsAre("data My$", "data Home", "data \n\n", "data \r", "response My$Home\n\n\r"));
}

TEST_F(QueueOfRequests, DeliversAllBytesSinceTheStartTheOnesBehindTheEndInTheSameChunkToo)
{
    openQuietly();
    port->sendRequest(request("0", 2s, [](const Bytes& bytes) { return bytes.find("OK") != Bytes::npos; }));

    line.reply("junk");
    line.reply("OK and more");
    line.reply("late");
    world.run();

    EXPECT_THAT(delegate->heard("response"), ElementsAre("response junkOK and more"));
}

// The reader of the ended open is taken off its processor between telling the delegate and handing the bytes over.
TEST_F(QueueOfRequests, TakesTheBytesOfTwoOpensInTheOrderInWhichTheDelegateHearsThem)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    world.run();
    world.backgroundQueue.delayNextHandOver(20ms);
    line.reply("old ");
    world.run();
    port->close();
    port->open();
    line.reply("new");
    world.run();
    world.advance(20ms);

    line.reply("!");
    world.run();

    EXPECT_THAT(delegate->heard("data"), ElementsAre("data old ", "data new", "data !"));
    EXPECT_THAT(delegate->heard("response"), ElementsAre("response old new!"));
}

class QueueOfRequestsSplit : public QueueOfRequests, public testing::WithParamInterface<unsigned> {};

// Every way of cutting a reply of ten bytes: bit n set means a cut behind byte n.
TEST_P(QueueOfRequestsSplit, DeliversTheConcatenationOnceAfterTheChunkThatCompletesIt)
{
    const std::string reply = "123456\n\n\r7";
    openQuietly();
    port->sendRequest(request("c", 2s, [](const Bytes& bytes) { return bytes.find("\n\n\r7") != Bytes::npos; }));

    std::string chunk;
    std::size_t chunks = 0;
    for (std::size_t at = 0; at < reply.size(); ++at) {
        chunk += reply[at];
        if ((GetParam() >> at & 1U) != 0 || at + 1 == reply.size()) {
            line.reply(std::exchange(chunk, {}));
            ++chunks;
        }
    }
    world.run();

    EXPECT_EQ(delegate->heard("data").size(), chunks);
    EXPECT_EQ(delegate->heard().back(), "response " + reply);
    EXPECT_EQ(delegate->heard("response").size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(AtEveryPlace, QueueOfRequestsSplit, testing::Range(0U, 512U));

TEST_F(QueueOfRequests, AsksTheEvaluatorOnceAfterTheWriteAndOnceAfterEachChunkOffTheMainThread)
{
    openQuietly();
    Lines asked;
    port->sendRequest(request("3", 2s, [&](const Bytes& bytes) {
        EXPECT_FALSE(world.mainQueue.isMainThread());
        asked.push_back(bytes);
        return bytes == "abcd";
    }));
    world.run();
    EXPECT_THAT(asked, ElementsAre(""));
    EXPECT_EQ(line.written(), "3");

    line.reply("ab");
    world.run();
    line.reply("cd");
    world.run();
    line.reply("ef");
    world.run();

    EXPECT_THAT(asked, ElementsAre("", "ab", "abcd"));
}

TEST_F(QueueOfRequests, ReportsBytesReceivedWhileIdleAndDiscardsThemWhenTheNextRequestStarts)
{
    openQuietly();
    line.reply("idle");
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("data idle"));

    port->sendRequest(request("3", 2s, endsWith("!")));
    line.reply("new!");
    world.run();

    EXPECT_THAT(delegate->heard("response"), ElementsAre("response new!"));
}

// A device may write whatever and as long as it likes while no request is pending.
TEST_F(QueueOfRequests, KeepsNoBytesThatNoRequestWaitsFor)
{
    openQuietly();
    port->setDelegate({});
    const auto heldBefore = bytesOnTheHeap();

    line.reply(std::string(kManyBytes, 'x'));
    world.run();
    world.terminal.forgetCalls();

    EXPECT_LT(bytesOnTheHeap(), heldBefore + kManyBytes / 2);
}

TEST_F(QueueOfRequests, EmptiesTheBufferOnlyWhenARequestStarts)
{
    openQuietly();
    port->sendRequest(request("1", 0s, endsWith("!")));
    line.reply("one");
    world.run();
    port->sendRequest(request("2", 0s, endsWith("?")));

    line.reply("!");
    world.run();
    line.reply("two?");
    world.run();

    EXPECT_THAT(delegate->heard("response"), ElementsAre("response one!", "response two?"));
}

TEST_F(QueueOfRequests, DeliversTheSameRequestObjectThatWasSent)
{
    openQuietly();
    const auto sent = request("1", 2s, endsWith("!"));
    port->sendRequest(sent);

    line.reply("!");
    world.run();

    ASSERT_EQ(delegate->answered().size(), 1U);
    EXPECT_EQ(delegate->answered().front()->UUIDString(), sent->UUIDString());
}

TEST_F(QueueOfRequests, StartsTheNextRequestWithoutWaitingForTheDeliveryOfAResponse)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    auto hold = world.mainQueue.hold();

    line.reply("!");
    world.run();

    EXPECT_THAT(written(), ElementsAre("1", "2"));
    EXPECT_THAT(delegate->heard(), IsEmpty());
    hold.reset();
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("data !", "response !"));
}

TEST_F(QueueOfRequests, GoesOnReadingWhileTheNextRequestIsBeingWritten)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("?")));
    line.stall(TerminalCall::Write);

    line.reply("!");
    world.run();
    ASSERT_EQ(line.stalled(TerminalCall::Write), 1);
    line.reply("during");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("data !", "response !", "data during"));
    line.goOn(TerminalCall::Write);
    line.reply("?");
    world.run();
    EXPECT_THAT(delegate->heard("response"), ElementsAre("response !", "response during?"));
}

TEST_F(QueueOfRequests, TakesRequestsFromAnyThread)
{
    openQuietly();
    bool first = false;
    bool second = false;
    inBackground([&] { first = port->sendRequest(request("1", 2s, endsWith("!"))); });
    inBackground([&] { second = port->sendRequest(request("2", 2s, endsWith("!"))); });

    line.reply("!");
    world.run();

    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
    EXPECT_THAT(written(), ElementsAre("1", "2"));
}

} // namespace

} // namespace vorrano::serial
