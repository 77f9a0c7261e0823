#include "web/Reply.h"

#include <optional>
#include <utility>

using namespace vorrano;
using web::Reply;
using web::ReplyError;

namespace {

// What reading the first record's Id of a body gives: a text, nothing, or an exception.
enum class Reading { Text, Null, Throws };

struct ReplyCase {
    const char* name;
    std::optional<std::string> body;
    Reading reading;
    std::string text = {};
};

std::optional<std::string> idOfFirstRecord(const Reply& reply) { return reply.key("data").at(0).key("Id").text(); }

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

class ReadingTheFirstRecordsId : public testing::TestWithParam<ReplyCase> {};

} // namespace

TEST_P(ReadingTheFirstRecordsId, FollowsTheShape)
{
    const auto reply = Reply::parsed(GetParam().body);

    switch (GetParam().reading) {
    case Reading::Text:
        EXPECT_EQ(idOfFirstRecord(reply), GetParam().text);
        break;
    case Reading::Null:
        EXPECT_EQ(idOfFirstRecord(reply), std::nullopt);
        break;
    case Reading::Throws:
        EXPECT_THROW((void)idOfFirstRecord(reply), ReplyError);
        break;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReadingTheFirstRecordsId,
    testing::Values(
        ReplyCase{"AText", R"({"data":[{"Id":"1234"}]})", Reading::Text, "1234"},
        ReplyCase{"AnEmptyText", R"({"data":[{"Id":""}]})", Reading::Text, ""},
        ReplyCase{"ATextWithEscapes", R"({"data":[{"Id":"\u00fc\n\"\ud83c\udf21"}]})", Reading::Text,
                  "\xc3\xbc\n\"\xf0\x9f\x8c\xa1"},
        ReplyCase{"OnlyTheFirstRecordCounts", R"({"data":[{"Id":"1"},{"Id":"2"},5]})", Reading::Text, "1"},
        ReplyCase{"OtherKeysDoNotMatter", R"({"x":null,"data":[{"a":1,"Id":"1"}],"y":[]})", Reading::Text, "1"},
        ReplyCase{"BlanksAround", "\r\n {\"data\" : [ {\"Id\" : \"1\"} ] } \n", Reading::Text, "1"},

        ReplyCase{"NoBytesCame", std::nullopt, Reading::Null}, ReplyCase{"AnEmptyBody", "", Reading::Null},
        ReplyCase{"OnlyBlanks", " \r\n", Reading::Null},
        ReplyCase{"APageThatIsNotJson", "<html><body>500</body></html>", Reading::Null},
        ReplyCase{"CutInTheMiddle", R"({"data":[{"Id":"12)", Reading::Null},
        ReplyCase{"MoreBehindTheEnd", R"({"data":[{"Id":"1"}]} x)", Reading::Null},
        ReplyCase{"BytesThatAreNoText", "{\"data\":[{\"Id\":\"\xff\"}]}", Reading::Null},
        ReplyCase{"ATopLevelNumber", "0", Reading::Null}, ReplyCase{"ATopLevelText", R"("0")", Reading::Null},
        ReplyCase{"ATopLevelNull", "null", Reading::Null}, ReplyCase{"ATopLevelTrue", "true", Reading::Null},
        ReplyCase{"DataIsMissing", "{}", Reading::Null}, ReplyCase{"DataInOtherCase", R"({"Data":[]})", Reading::Null},
        ReplyCase{"IdIsMissing", R"({"data":[{}]})", Reading::Null},
        ReplyCase{"IdInOtherCase", R"({"data":[{"id":"1"}]})", Reading::Null},

        ReplyCase{"ABareArray", R"([{"Id":"1"}])", Reading::Throws},
        ReplyCase{"AnEmptyBareArray", "[]", Reading::Throws},
        ReplyCase{"DataIsNull", R"({"data":null})", Reading::Throws},
        ReplyCase{"DataIsAText", R"({"data":"1"})", Reading::Throws},
        ReplyCase{"DataIsAnObject", R"({"data":{"0":{"Id":"1"}}})", Reading::Throws},
        ReplyCase{"DataIsANumber", R"({"data":1})", Reading::Throws},
        ReplyCase{"DataIsEmpty", R"({"data":[]})", Reading::Throws},
        ReplyCase{"TheFirstRecordIsNull", R"({"data":[null]})", Reading::Throws},
        ReplyCase{"TheFirstRecordIsAText", R"({"data":["Id"]})", Reading::Throws},
        ReplyCase{"TheFirstRecordIsAnArray", R"({"data":[[]]})", Reading::Throws},
        ReplyCase{"TheIdIsNull", R"({"data":[{"Id":null}]})", Reading::Throws},
        ReplyCase{"TheIdIsANumber", R"({"data":[{"Id":1234}]})", Reading::Throws},
        ReplyCase{"TheIdIsABoolean", R"({"data":[{"Id":false}]})", Reading::Throws},
        ReplyCase{"TheIdIsAnObject", R"({"data":[{"Id":{}}]})", Reading::Throws},
        ReplyCase{"TheIdIsAnArray", R"({"data":[{"Id":["1"]}]})", Reading::Throws}),
    [](const auto& given) { return given.param.name; });

TEST(Reply, IsNullByItselfAndStaysSoHoweverDeepItIsRead)
{
    const Reply reply;

    EXPECT_TRUE(reply.isNull());
    EXPECT_TRUE(reply.key("data").at(7).key("a").key("b").isNull());
    EXPECT_EQ(reply.text(), std::nullopt);
}

TEST(Reply, DoesNotTakeJsonsOwnNullForNone)
{
    const auto data = Reply::parsed(R"({"data":null})").key("data");

    EXPECT_FALSE(data.isNull());
    EXPECT_THROW((void)data.key("Id"), ReplyError);
    EXPECT_THROW((void)data.at(0), ReplyError);
    EXPECT_THROW((void)data.text(), ReplyError);
}

TEST(Reply, ThrowsForAnIndexPastTheEnd)
{
    const auto data = Reply::parsed(R"(["a","b"])");

    EXPECT_EQ(data.at(1).text(), "b");
    EXPECT_THROW((void)data.at(2), ReplyError);
    EXPECT_THROW((void)data.at(static_cast<std::size_t>(-1)), ReplyError);
}

TEST(Reply, OutlivesTheReplyItWasReadOf)
{
    auto reply = std::make_optional(Reply::parsed(R"({"data":[{"Id":"57"}]})"));
    const auto record = reply->key("data").at(0);

    reply.reset();

    EXPECT_EQ(record.key("Id").text(), "57");
}

TEST(Reply, IsNullWhenItIsNestedTooDeeply)
{
    EXPECT_FALSE(Reply::parsed(nested(512)).isNull());
    EXPECT_TRUE(Reply::parsed(nested(513)).isNull());
    EXPECT_TRUE(Reply::parsed(std::string(10'000'000, '[')).isNull());
}

TEST(Reply, IsNullWhenItIsLongerThan16MiB)
{
    constexpr std::size_t kLongest = std::size_t{16} * 1024 * 1024;
    const auto ofLength = [](std::size_t length) { return "[\"" + std::string(length - 4, 'x') + "\"]"; };

    EXPECT_EQ(Reply::parsed(ofLength(kLongest)).at(0).text(), std::string(kLongest - 4, 'x'));
    EXPECT_TRUE(Reply::parsed(ofLength(kLongest + 1)).isNull());
}

namespace {

struct Value {
    const char* kind;
    std::string text;
    std::size_t fit; // about how many the limit of memory allows
};

class RepliesOfManyValues : public testing::TestWithParam<Value> {};

} // namespace

TEST_P(RepliesOfManyValues, AreNullWhenTheyWouldTakeTooMuchMemory)
{
    const auto& one = GetParam().text;
    const auto fit = GetParam().fit;
    const auto many = [&](std::size_t count) {
        std::string body = "[" + one;
        for (std::size_t i = 1; i < count; ++i) {
            body += "," + one;
        }
        return body + "]";
    };

    EXPECT_FALSE(Reply::parsed(many(200'000)).isNull());
    EXPECT_TRUE(Reply::parsed(many(fit + fit / 20)).isNull());
}

INSTANTIATE_TEST_SUITE_P(Kinds, RepliesOfManyValues,
                         testing::Values(Value{"Numbers", "0", 2'100'000}, Value{"Arrays", "[]", 700'000},
                                         Value{"Objects", "{}", 700'000}, Value{"Keys", R"({"":0})", 300'000},
                                         Value{"Texts", R"("")", 840'000}),
                         [](const auto& given) { return given.param.kind; });

TEST(Reply, IsNullAtEachPlaceWhereItsBytesCanBeCut)
{
    const std::string body = R"({"data":[{"Id":"\u00fc1","n":-1.5e3,"t":true}]})";

    for (std::size_t length = 0; length < body.size(); ++length) {
        EXPECT_TRUE(Reply::parsed(body.substr(0, length)).isNull()) << length;
    }
    EXPECT_EQ(idOfFirstRecord(Reply::parsed(body)), "\xc3\xbc"
                                                    "1");
}

TEST(Reply, NamesNothingThatTheServiceSentInItsErrors)
{
    for (const std::string body :
         {R"(["hunter2"])", R"({"data":"hunter2"})", R"({"data":["hunter2"]})", R"({"data":[{"Id":["hunter2"]}]})"}) {
        try {
            (void)idOfFirstRecord(Reply::parsed(body));
            ADD_FAILURE() << "read " << body;
        } catch (const ReplyError& error) {
            EXPECT_EQ(std::string(error.what()).find("hunter2"), std::string::npos) << error.what();
        }
    }
}
