#include "web/WebCall.h"

#include "platform/MainThreadDeleter.h"
#include "support/World.h"

#include <chrono>
#include <memory>
#include <optional>
#include <thread>

using namespace vorrano;
using namespace std::chrono_literals;
using web::Reply;

namespace {

constexpr auto kAddress = "https://service.example/a";

struct WebCallTest : testing::Test {
    support::World world;
    web::WebCall webCall;
    std::vector<std::string> replies;

    void fetch(const std::string& address = kAddress)
    {
        webCall.fetch(address, [this](const Reply& reply) {
            EXPECT_TRUE(world.mainQueue.isMainThread());
            replies.push_back(reply.isNull() ? "null" : reply.key("a").text().value_or("missing"));
        });
    }
};

// What a call holds; notes the thread it is destroyed on.
struct Holder {
    std::optional<std::thread::id>& destroyedOn;
    ~Holder() { destroyedOn = std::this_thread::get_id(); }
};

std::shared_ptr<Holder> makeHolder(support::World& world, std::optional<std::thread::id>& destroyedOn)
{
    return platform::destroyedOnMainThread(new Holder{destroyedOn}, world.mainQueue);
}

} // namespace

TEST_F(WebCallTest, FetchesTheAddressAsItStandsAndHandsTheParsedReplyToItsHandler)
{
    world.urlFetch.answer(R"({"a":"b"})");

    fetch("https://service.example//x/../y z?#");
    world.run();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{"https://service.example//x/../y z?#"});
    EXPECT_EQ(replies, std::vector<std::string>{"b"});
}

TEST_F(WebCallTest, FetchesNothingInsideTheCallThatStartsIt)
{
    world.urlFetch.answer(R"({"a":"b"})");

    fetch();

    EXPECT_TRUE(world.urlFetch.requests().empty());
    EXPECT_TRUE(replies.empty());
}

TEST_F(WebCallTest, LeavesTheMainThreadFreeWhileItFetches)
{
    fetch();
    world.run();
    ASSERT_EQ(world.urlFetch.waiting(), 1);

    bool ran = false;
    world.mainQueue.async([&ran] { ran = true; });
    world.run();

    EXPECT_TRUE(ran);
    EXPECT_TRUE(replies.empty());
}

TEST_F(WebCallTest, GivesNullWhenNothingCame)
{
    world.urlFetch.answerNothing();

    fetch();
    world.run();

    EXPECT_EQ(replies, std::vector<std::string>{"null"});
}

TEST_F(WebCallTest, GivesNullWhenThePageIsNoJson)
{
    world.urlFetch.answer("<html>500</html>");

    fetch();
    world.run();

    EXPECT_EQ(replies, std::vector<std::string>{"null"});
}

TEST_F(WebCallTest, HandlesRepliesInTheOrderTheyArrive)
{
    world.urlFetch.answerAfter(5s, R"({"a":"slow"})");
    world.urlFetch.answerAfter(1s, R"({"a":"fast"})");

    fetch();
    fetch();
    world.advance(6s);

    EXPECT_EQ(replies, (std::vector<std::string>{"fast", "slow"}));
}

TEST_F(WebCallTest, HandsOverNoReplyWhileAnAlertIsUp)
{
    world.urlFetch.answerAfter(1s, R"({"a":"1"})");
    world.urlFetch.answerAfter(2s, R"({"a":"2"})");
    fetch();
    fetch();

    world.alerts.whileUp([this] {
        world.advance(3s);
        EXPECT_TRUE(replies.empty());
    });
    world.alerts.runModal({});
    EXPECT_TRUE(replies.empty());
    world.run();

    EXPECT_EQ(replies, (std::vector<std::string>{"1", "2"}));
}

TEST_F(WebCallTest, KeepsWhatItsHandlerHoldsUntilTheReplyWasHandled)
{
    std::optional<std::thread::id> destroyedOn;
    auto holder = makeHolder(world, destroyedOn);
    bool aliveInHandler = false;
    webCall.fetch(kAddress,
                  [holder, &destroyedOn, &aliveInHandler](const Reply&) { aliveInHandler = !destroyedOn.has_value(); });

    holder.reset();
    world.run();
    EXPECT_FALSE(destroyedOn.has_value());
    world.urlFetch.answerNothing();
    world.run();

    EXPECT_TRUE(aliveInHandler);
    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST_F(WebCallTest, KeepsNothingOfItsHandlerOnceTheReplyWasHandled)
{
    std::optional<std::thread::id> destroyedOn;
    webCall.fetch(kAddress, [holder = makeHolder(world, destroyedOn)](const Reply&) {});
    world.urlFetch.answer("{}");

    world.run();

    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST_F(WebCallTest, SaysNothingOfTheAddressInTheLog)
{
    world.urlFetch.answer("[]");
    webCall.fetch("https://service.example/validateLogin/ada/hunter2",
                  [](const Reply& reply) { (void)reply.key("data"); });

    world.run();

    ASSERT_EQ(world.log.lines().size(), 1U);
    for (const auto& line : world.log.lines()) {
        EXPECT_EQ(line.find("hunter2"), std::string::npos) << line;
        EXPECT_EQ(line.find("service.example"), std::string::npos) << line;
    }
}

TEST(WebCallAtTheEnd, DestroysWhatItHoldsOnTheMainThreadAfterTheMainLoopHasEnded)
{
    std::optional<std::thread::id> destroyedOn;
    {
        support::World world;
        const web::WebCall webCall;
        webCall.fetch(kAddress, [holder = makeHolder(world, destroyedOn)](const Reply&) {});
        world.run();
        world.mainQueue.end();
        world.urlFetch.answerNothing();

        world.run();
        EXPECT_FALSE(destroyedOn.has_value());
    }

    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}
