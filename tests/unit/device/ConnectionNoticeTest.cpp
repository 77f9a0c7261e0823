#include "device/ConnectionNotice.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string_view>

using namespace vorrano::device;

namespace {

using Text = std::optional<std::string_view>;

constexpr Text kNoVorrano = "No Vorrano is connected. Plug it in with its USB cable.";
constexpr Text kOtherVorrano =
    "The Vorrano in use was unplugged. Another one is connected: choose this tab again to use it.";

struct NoticeCase {
    TabConnection connection;
    Text notice;
};

void PrintTo(const NoticeCase& given, std::ostream* out)
{
    *out << (given.connection.isVorranoListed ? "a Vorrano is listed, " : "no Vorrano is listed, ")
         << (given.connection.isPortListed ? "the tab's port too" : "and not the tab's port");
}

class TheConnectionNotice : public testing::TestWithParam<NoticeCase> {};

TEST_P(TheConnectionNotice, SaysWhyCommandsReachNoVorrano)
{
    EXPECT_EQ(connectionNotice(GetParam().connection), GetParam().notice);
}

INSTANTIATE_TEST_SUITE_P(Table, TheConnectionNotice,
                         testing::Values(NoticeCase{{false, false}, kNoVorrano}, NoticeCase{{false, true}, kNoVorrano},
                                         NoticeCase{{true, false}, kOtherVorrano},
                                         NoticeCase{{true, true}, std::nullopt}));

} // namespace
