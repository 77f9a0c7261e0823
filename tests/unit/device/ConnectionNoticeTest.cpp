#include "device/ConnectionNotice.h"
#include "unit/device/Texts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>

using namespace vorrano::device;

namespace {

using Text = std::optional<std::string>;

const Text kNotAllowedWithoutAGroup =
    "You are not allowed to use the Vorrano's port. Install the package of Vorrano Setup.";

struct NoticeCase {
    TabConnection connection;
    Text notice;
};

void PrintTo(const NoticeCase& given, std::ostream* out)
{
    *out << (given.connection.isVorranoListed ? "a Vorrano is listed, " : "no Vorrano is listed, ")
         << (given.connection.isPortListed ? "the tab's port too" : "and not the tab's port");
    if (const auto& refusal = given.connection.refusal) {
        *out << ", which fails to open with errno " << refusal->error;
    }
}

class TheConnectionNotice : public testing::TestWithParam<NoticeCase> {};

TEST_P(TheConnectionNotice, SaysWhyCommandsReachNoVorrano)
{
    EXPECT_EQ(connectionNotice(GetParam().connection), GetParam().notice);
}

INSTANTIATE_TEST_SUITE_P(OfTheList, TheConnectionNotice,
                         testing::Values(NoticeCase{{false, false, {}}, kNoVorrano},
                                         NoticeCase{{false, true, {}}, kNoVorrano},
                                         NoticeCase{{true, false, {}}, kOtherVorrano},
                                         NoticeCase{{true, true, {}}, std::nullopt}));

NoticeCase refused(PortRefusal refusal, Text notice) { return {{true, true, std::move(refusal)}, std::move(notice)}; }

INSTANTIATE_TEST_SUITE_P(OfARefusedPort, TheConnectionNotice,
                         testing::Values(refused({EACCES, {}, {}}, kNotAllowedWithoutAGroup),
                                         refused({EACCES, "dialout", {}}, kNotAllowed),
                                         refused({EBUSY, {}, {}}, kInUse),
                                         refused({EBUSY, {}, "kettle"}, kInUseByKettle)));

// The system's words are those of the person's language.
TEST(TheConnectionNoticeOfAnyOtherError, IsInTheWordsOfTheSystem)
{
    for (const int error : {ENOENT, EPERM}) {
        const auto notice = connectionNotice({true, true, PortRefusal{error, {}, {}}});

        EXPECT_EQ(notice, std::string("The Vorrano's port could not be opened: ") + std::strerror(error) + ".");
    }
}

const PortRefusal kBusy{EBUSY, {}, {}};

INSTANTIATE_TEST_SUITE_P(OfARefusedPortThatIsNotListed, TheConnectionNotice,
                         testing::Values(NoticeCase{{false, true, kBusy}, kNoVorrano},
                                         NoticeCase{{true, false, kBusy}, kOtherVorrano}));

} // namespace
