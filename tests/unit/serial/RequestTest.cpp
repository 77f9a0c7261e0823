#include "serial/SerialRequest.h"

#include <cmath>
#include <regex>
#include <set>

#include <gtest/gtest.h>

namespace vorrano::serial {

namespace {

using std::chrono_literals::operator""s;

std::shared_ptr<SerialRequest> make(Bytes data, std::any userInfo, std::chrono::duration<double> limit,
                                    ResponseEvaluator evaluator)
{
    return SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        std::move(data), std::move(userInfo), limit, std::move(evaluator));
}

// The description without the object's own part, which holds its address.
std::string rest(const SerialRequest& request)
{
    const auto text = request.description();
    EXPECT_TRUE(std::regex_search(text, std::regex("^<SerialRequest: 0x[0-9a-f]+> data: "))) << text;
    return text.substr(text.find("> ") + 2);
}

TEST(Request, StoresWhatItIsGiven)
{
    const auto request = make("3", std::string("MAC"), 2.5s, [](const Bytes& bytes) { return bytes == "ok"; });

    EXPECT_EQ(request->dataToSend(), "3");
    EXPECT_EQ(std::any_cast<std::string>(request->userInfo()), "MAC");
    EXPECT_EQ(request->timeoutInterval(), 2.5s);
    ASSERT_TRUE(request->responseEvaluator());
    EXPECT_TRUE(request->responseEvaluator()("ok"));
}

TEST(Request, IsMadeTheSameWayByItsInitialiser)
{
    const auto request = SerialRequest::initWithDataToSendUserInfoTimeoutIntervalResponseEvaluator("7", 5, 0s, {});

    EXPECT_EQ(request->dataToSend(), "7");
    EXPECT_EQ(std::any_cast<int>(request->userInfo()), 5);
    EXPECT_EQ(request->timeoutInterval(), 0s);
    EXPECT_FALSE(request->responseEvaluator());
}

TEST(Request, CanBeChanged)
{
    const auto request = make("", {}, 0s, {});

    request->setDataToSend("c");
    request->setUserInfo(7);
    request->setTimeoutInterval(3s);
    request->setResponseEvaluator([](const Bytes&) { return false; });

    EXPECT_EQ(request->dataToSend(), "c");
    EXPECT_EQ(std::any_cast<int>(request->userInfo()), 7);
    EXPECT_EQ(request->timeoutInterval(), 3s);
    EXPECT_FALSE(request->dataIsValidResponse("x"));
}

TEST(Request, AcceptsAnythingWithoutAnEvaluator)
{
    const auto request = make("7", {}, 2s, {});

    EXPECT_TRUE(request->dataIsValidResponse(""));
    EXPECT_TRUE(request->dataIsValidResponse("abc"));
}

TEST(Request, AcceptsWhatItsEvaluatorAccepts)
{
    const auto request = make("0", {}, 2s, [](const Bytes& bytes) { return bytes.size() > 3; });

    EXPECT_FALSE(request->dataIsValidResponse(""));
    EXPECT_FALSE(request->dataIsValidResponse("abc"));
    EXPECT_TRUE(request->dataIsValidResponse("abcd"));
}

TEST(Request, HasAUuidOf36CharactersOfItsOwn)
{
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const auto request = make("", {}, 0s, {});
        EXPECT_TRUE(std::regex_match(request->UUIDString(), form)) << request->UUIDString();
        EXPECT_EQ(request->UUIDString(), request->UUIDString());
        seen.insert(request->UUIDString());
    }
    EXPECT_EQ(seen.size(), 1000U);
}

TEST(Request, DescribesItselfWithSixDecimalsOfItsTimeLimit)
{
    EXPECT_EQ(rest(*make("", {}, 5s, {})), "data: <> userInfo: (null) timeout interval: 5.000000");
    EXPECT_EQ(rest(*make("", {}, -0.25s, {})), "data: <> userInfo: (null) timeout interval: -0.250000");
}

TEST(Request, DescribesAnyTimeLimit)
{
    constexpr auto kLargest = std::numeric_limits<double>::max();
    const auto largest = rest(*make("", {}, std::chrono::duration<double>(kLargest), {}));

    EXPECT_TRUE(largest.starts_with("data: <> userInfo: (null) timeout interval: 17976931348623157")) << largest;
    EXPECT_TRUE(largest.ends_with(".000000")) << largest;
    EXPECT_TRUE(rest(*make("", {}, std::chrono::duration<double>(INFINITY), {})).ends_with("inf"));
    EXPECT_TRUE(rest(*make("", {}, std::chrono::duration<double>(NAN), {})).ends_with("nan"));
}

TEST(Request, DescribesItsDataInGroupsOfFourBytes)
{
    EXPECT_EQ(rest(*make("Hello\xff", {}, 2s, {})),
              "data: <48656c6c 6fff> userInfo: (null) timeout interval: 2.000000");
    EXPECT_EQ(rest(*make(std::string(1, '\0'), {}, 2s, {})), "data: <00> userInfo: (null) timeout interval: 2.000000");
}

TEST(Request, DescribesItsUserInfo)
{
    const auto userInfo = [](const std::any& info) {
        const auto text = rest(*make("", info, 2s, {}));
        const auto begin = text.find("userInfo: ") + 10;
        return text.substr(begin, text.find(" timeout") - begin);
    };

    EXPECT_EQ(userInfo({}), "(null)");
    EXPECT_EQ(userInfo(std::string("SSID")), "SSID");
    EXPECT_EQ(userInfo("SSID"), "SSID");
    EXPECT_EQ(userInfo(42), "42");
    EXPECT_EQ(userInfo(1.5), std::string("<") + typeid(double).name() + ">");
}

} // namespace

} // namespace vorrano::serial
