#include "serial/RequestQueue.h"

#include "support/World.h"

#include <string>
#include <vector>

// The request queue by itself, without a port around it.
namespace vorrano::serial {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class RequestsAlone : public testing::Test {
protected:
    [[nodiscard]] static RequestQueue::Request request(Bytes data, ResponseEvaluator evaluator = {})
    {
        return SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(std::move(data), {}, 2s,
                                                                                            std::move(evaluator));
    }
    [[nodiscard]] static RequestQueue::Request secretRequest(Bytes data)
    {
        auto secret = request(std::move(data), endsWithMark);
        secret->setResponseSecret(true);
        return secret;
    }
    static bool endsWithMark(const Bytes& bytes) { return bytes.ends_with("!"); }

    // As the reader's thread does.
    void receive(const Bytes& chunk)
    {
        world.backgroundQueue.async([this, chunk] { requests->receiveData(chunk); });
        world.run();
    }

    support::World world;
    std::vector<std::string> told;
    std::function<void()> toldOfTimeout;
    bool writes = true;
    bool someoneListens = true;
    std::shared_ptr<RequestQueue> requests = std::make_shared<RequestQueue>(
        world.backgroundQueue.makeSerialQueue("org.example.requests"),
        RequestQueue::Events{
            .didReceiveData =
                [this](const Bytes& chunk, bool mayHoldSecret) {
                    told.push_back((mayHoldSecret ? "secret " : "chunk ") + chunk);
                },
            .write =
                [this](const Bytes& data) {
                    told.push_back("write " + data);
                    return writes;
                },
            .didReceiveResponse =
                [this](const Bytes& response, const RequestQueue::Request& answered) {
                    told.push_back("response " + response + " to " + answered->dataToSend());
                },
            .didTimeout =
                [this](const RequestQueue::Request& late, std::function<void()> next) {
                    told.push_back("timeout of " + (late ? late->dataToSend() : "none"));
                    toldOfTimeout = std::move(next);
                    return someoneListens;
                },
        });
};

TEST_F(RequestsAlone, WriteTheNextWhenTheOneBeforeHasItsResponse)
{
    requests->sendRequest(request("1", endsWithMark));
    requests->sendRequest(request("2", endsWithMark));

    receive("a");
    receive("b!");

    EXPECT_THAT(told, ElementsAre("write 1", "chunk a", "chunk b!", "response ab! to 1", "write 2"));
}

TEST_F(RequestsAlone, WriteThoseThatNeedNoResponseOneAfterTheOther)
{
    requests->sendRequest(request("1", endsWithMark));
    requests->sendRequest(request("2"));
    requests->sendRequest(request("3"));
    requests->sendRequest(request("4", endsWithMark));

    receive("!");

    EXPECT_THAT(told, ElementsAre("write 1", "chunk !", "response ! to 1", "write 2", "write 3", "write 4"));
}

TEST_F(RequestsAlone, AreNotWrittenOnTheThreadThatBringsTheChunk)
{
    std::thread::id writer;
    std::thread::id reader;
    requests->sendRequest(request("1", endsWithMark));
    requests->sendRequest(request("2", [&](const Bytes&) {
        writer = std::this_thread::get_id();
        return true;
    }));

    world.backgroundQueue.async([&] {
        reader = std::this_thread::get_id();
        requests->receiveData("!");
        told.emplace_back("reader goes on");
    });
    world.run();

    EXPECT_THAT(told, ElementsAre("write 1", "chunk !", "response ! to 1", "reader goes on", "write 2"));
    EXPECT_NE(writer, reader);
}

// What another reader brings before the next request was written is for that request, not for the answered one.
TEST_F(RequestsAlone, StartTheNextRequestBeforeTheyLookAtAChunkThatCameDuringTheResponseTest)
{
    requests->sendRequest(request("1", [this](const Bytes& bytes) {
        if (bytes == "a!") {
            requests->receiveData("b!");
        }
        return endsWithMark(bytes);
    }));
    requests->sendRequest(request("2", endsWithMark));

    receive("a!");

    EXPECT_THAT(told,
                ElementsAre("write 1", "chunk a!", "chunk b!", "response a! to 1", "write 2", "response b! to 2"));
}

// The step after a time-out clears what is pending when its turn comes: a request that the late response has started.
TEST_F(RequestsAlone, StartWhatALateResponseMakesDueBeforeTheStepAfterTheTimeOut)
{
    bool isLate = false;
    requests->sendRequest(request("1", [&](const Bytes&) {
        if (isLate) {
            toldOfTimeout();
        }
        return isLate;
    }));
    requests->sendRequest(request("2"));
    requests->sendRequest(request("3", endsWithMark));
    requests->sendRequest(request("4", endsWithMark));
    world.advance(2s);
    told.clear();
    isLate = true;

    receive("late");

    EXPECT_THAT(told, ElementsAre("chunk late", "response late to 1", "write 2", "write 3", "write 4"));
}

TEST_F(RequestsAlone, GoOnAfterATimeOutOnlyWhenTheDelegateWasTold)
{
    requests->sendRequest(request("1", endsWithMark));
    requests->sendRequest(request("2", endsWithMark));
    world.advance(2s);
    EXPECT_THAT(told, ElementsAre("write 1", "timeout of 1"));

    toldOfTimeout();
    world.run();

    EXPECT_THAT(told, ElementsAre("write 1", "timeout of 1", "write 2"));
}

TEST_F(RequestsAlone, GoOnAtOnceAfterATimeOutThatNobodyListensTo)
{
    someoneListens = false;
    requests->sendRequest(request("1", endsWithMark));
    requests->sendRequest(request("2", endsWithMark));

    world.advance(2s);

    EXPECT_THAT(told, ElementsAre("write 1", "timeout of 1", "write 2"));
}

TEST_F(RequestsAlone, KeepOnePendingWhoseWriteFailed)
{
    writes = false;
    EXPECT_FALSE(requests->sendRequest(request("1", endsWithMark)));
    EXPECT_TRUE(requests->sendRequest(request("2", endsWithMark)));

    EXPECT_THAT(told, ElementsAre("write 1"));
}

TEST_F(RequestsAlone, DoNothingOnceTheyAreGone)
{
    requests->sendRequest(request("1", endsWithMark));
    told.clear();

    requests.reset();
    world.advance(10s);

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RequestsAlone, CallAChunkSecretWhileTheSecretIsPending)
{
    receive("a");
    requests->sendRequest(secretRequest("d"));
    receive("b");
    receive("c!");
    receive("e");

    EXPECT_THAT(told, ElementsAre("chunk a", "write d", "secret b", "secret c!", "response bc! to d", "chunk e"));
}

TEST_F(RequestsAlone, CallAChunkSecretAfterATimeOutUntilAnotherRequestWasAnswered)
{
    someoneListens = false;
    requests->sendRequest(secretRequest("d"));
    world.advance(2s);
    requests->sendRequest(request("1", endsWithMark));
    told.clear();

    receive("late");
    receive("!");
    receive("next");

    EXPECT_THAT(told, ElementsAre("secret late", "secret !", "response late! to 1", "chunk next"));
}

TEST_F(RequestsAlone, CallAChunkSecretAfterATimeOutUntilThePortIsClosed)
{
    someoneListens = false;
    requests->sendRequest(secretRequest("d"));
    world.advance(2s);
    told.clear();

    requests->portWasClosed();
    world.run();
    receive("next");

    EXPECT_THAT(told, ElementsAre("chunk next"));
}

TEST_F(RequestsAlone, CallAChunkSecretAfterACloseWhileTheSecretIsStillPending)
{
    requests->sendRequest(secretRequest("d"));
    told.clear();

    requests->portWasClosed();
    world.run();
    receive("next");

    EXPECT_THAT(told, ElementsAre("secret next"));
}

} // namespace

} // namespace vorrano::serial
