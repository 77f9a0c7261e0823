#include "unit/serial/SerialPortFixture.h"

#include <cmath>
#include <limits>

namespace vorrano::serial {

namespace {

class RequestTimeout : public SerialPortFixture {};

TEST_F(RequestTimeout, ComesExactlyWhenTheLimitIsOver)
{
    openQuietly();
    const auto sent = request("3", 2s, endsWith("!"));
    port->sendRequest(sent);

    world.advance(1999ms);
    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
    ASSERT_EQ(delegate->timedOut().size(), 1U);
    EXPECT_EQ(delegate->timedOut().front()->UUIDString(), sent->UUIDString());
}

TEST_F(RequestTimeout, IsAtMostATenthOfTheLimitLate)
{
    world.time.setLateness(1.0);
    openQuietly();
    port->sendRequest(request("3", 2s, endsWith("!")));

    world.advance(2199ms);
    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.advance(1ms);
    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
}

TEST_F(RequestTimeout, ComesOnce)
{
    openQuietly();
    port->sendRequest(request("3", 2s, endsWith("!")));

    world.advance(30s);

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
}

TEST_F(RequestTimeout, CountsFromTheStartNotFromTheSending)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));

    world.advance(3999ms);
    EXPECT_EQ(delegate->timedOut().size(), 1U);
    world.advance(1ms);
    EXPECT_EQ(delegate->timedOut().size(), 2U);
}

TEST_F(RequestTimeout, CountsTheTimeOfTheWrite)
{
    openQuietly();
    line.delayNext(TerminalCall::Write, 300ms);
    port->sendRequest(request("1", 2s, endsWith("!")));
    EXPECT_EQ(world.now(), 320ms);

    world.advance(1699ms);
    EXPECT_THAT(delegate->heard(), IsEmpty());
    world.advance(1ms);

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
}

TEST_F(RequestTimeout, IsNotPutOffByBytes)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    for (int i = 0; i < 19; ++i) {
        world.advance(100ms);
        line.reply("x");
    }

    world.advance(100ms);

    EXPECT_EQ(delegate->heard("timeout").size(), 1U);
}

class RequestWithoutLimit : public RequestTimeout, public testing::WithParamInterface<double> {};

TEST_P(RequestWithoutLimit, NeverTimesOut)
{
    openQuietly();
    port->sendRequest(request("1", std::chrono::duration<double>(GetParam()), endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));

    world.advance(30s);

    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_THAT(written(), ElementsAre("1"));
    line.reply("!");
    world.run();
    EXPECT_THAT(written(), ElementsAre("1", "2"));
}

INSTANTIATE_TEST_SUITE_P(Of, RequestWithoutLimit,
                         testing::Values(0.0, -0.0, -1.0, -std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()));

class RequestWithALongLimit : public RequestTimeout, public testing::WithParamInterface<double> {};

TEST_P(RequestWithALongLimit, StillWaits)
{
    openQuietly();
    port->sendRequest(request("1", std::chrono::duration<double>(GetParam()), endsWith("!")));

    world.advance(30s);

    EXPECT_THAT(delegate->heard(), IsEmpty());
    line.reply("!");
    world.run();
    EXPECT_THAT(delegate->heard("response"), ElementsAre("response !"));
}

INSTANTIATE_TEST_SUITE_P(Of, RequestWithALongLimit,
                         testing::Values(1e9, 1e10, 1e18, 1e300, std::numeric_limits<double>::infinity()));

TEST_F(RequestTimeout, OfLessThanAnyTimeComesAtOnce)
{
    openQuietly();
    port->sendRequest(request("1", std::chrono::duration<double>(1e-12), endsWith("!")));

    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("timeout"));
}

// The first response test comes before the time-out, however short the limit and however late the background is.
TEST_F(RequestTimeout, NeverComesForARequestWithoutEvaluator)
{
    openQuietly();
    world.time.setLateness(1.0);
    for (int i = 0; i < 100; ++i) {
        port->sendRequest(SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
            "1", {}, std::chrono::duration<double>(1e-12), {}));
        world.advance(5ms);
    }

    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_EQ(written().size(), 100U);
}

TEST_F(RequestTimeout, IsCancelledByTheResponse)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    line.reply("!");

    world.advance(10s);

    EXPECT_THAT(delegate->heard(), ElementsAre("data !", "response !"));
}

TEST_F(RequestTimeout, LetsTheNextRequestStartAfterTheDelegateWasTold)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    delegate->whenHearing("timeout", [this] { EXPECT_THAT(written(), ElementsAre("1")); });

    world.advance(2s);

    EXPECT_THAT(written(), ElementsAre("1", "2"));
    delegate->whenHearing("timeout", [] {});
}

TEST_F(RequestTimeout, LetsTheNextRequestStartAtOnceWhenTheDelegateDoesNotImplementIt)
{
    delegate->setCallbacks({SerialPortCallback::DidReceiveData});
    port->setDelegate(delegate);
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    auto hold = world.mainQueue.hold();

    world.advance(2s);

    EXPECT_THAT(written(), ElementsAre("1", "2"));
    EXPECT_THAT(delegate->heard(), IsEmpty());
}

TEST_F(RequestTimeout, LetsTheNextRequestStartAlsoWhenTheDelegateIsGoneByThen)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    auto hold = world.mainQueue.hold();
    world.advance(2s);

    delegate.reset();
    hold.reset();
    world.run();

    EXPECT_THAT(written(), ElementsAre("1", "2"));
}

TEST_F(RequestTimeout, LetsTheNextRequestStartAlsoWhenTheDelegateThrows)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 0s, endsWith("!")));
    delegate->whenHearing("timeout", [] { throw std::runtime_error("no"); });

    world.advance(2s);

    EXPECT_THAT(written(), ElementsAre("1", "2"));
}

TEST_F(RequestTimeout, InAModalAlertHoldsThatPortsQueueUntilItIsDismissed)
{
    openQuietly();
    auto& otherLine = world.plugVorrano("C3D4");
    const auto other = SerialPort::serialPortWithPath(otherLine.path());
    other->open();
    delegate->whenHearing("timeout", [&, this] {
        world.alerts.whileUp([&, this] {
            other->sendRequest(request("x", 1s, endsWith("!")));
            other->sendRequest(request("y", 1s, endsWith("!")));
            world.advance(30s);
            EXPECT_THAT(written(), ElementsAre("1"));
            EXPECT_EQ(otherLine.written(), "xy");
        });
        world.alerts.runModal({"ERROR", {"OK"}, "Please try again"});
        EXPECT_THAT(written(), ElementsAre("1"));
    });
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 0s, endsWith("!")));

    world.advance(2s);

    EXPECT_THAT(written(), ElementsAre("1", "2"));
    other->close();
}

TEST_F(RequestTimeout, DrainsTheQueueOfAClosedPortEachRequestAfterItsOwnLimit)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 3s, endsWith("!")));
    port->sendRequest(request("3", 4s, endsWith("!")));
    world.advance(1s);

    port->close();
    world.advance(1s);
    EXPECT_EQ(delegate->timedOut().size(), 1U);
    world.advance(2999ms);
    EXPECT_EQ(delegate->timedOut().size(), 1U);
    world.advance(1ms);
    EXPECT_EQ(delegate->timedOut().size(), 2U);
    world.advance(4s);

    EXPECT_EQ(delegate->timedOut().size(), 3U);
    EXPECT_THAT(delegate->heard("error"), IsEmpty());
    EXPECT_THAT(written(), ElementsAre("1"));
}

TEST_F(RequestTimeout, NeverDrainsTheQueueOfAClosedPortPastARequestWithoutLimit)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 0s, endsWith("!")));
    port->sendRequest(request("3", 2s, endsWith("!")));
    port->close();

    world.advance(30s);

    EXPECT_EQ(delegate->timedOut().size(), 1U);
}

TEST_F(RequestTimeout, IsNotEndedByReopeningWhichResendsNothing)
{
    openQuietly();
    const auto sent = request("1", 2s, endsWith("!"));
    port->sendRequest(sent);
    port->sendRequest(request("2", 2s, endsWith("!")));
    port->close();
    world.advance(1s);

    port->open();
    world.advance(999ms);
    EXPECT_THAT(written(), ElementsAre("1"));
    world.advance(1ms);

    EXPECT_THAT(delegate->timedOut(), ElementsAre(sent));
    EXPECT_THAT(written(), ElementsAre("1", "2"));
}

} // namespace

} // namespace vorrano::serial
