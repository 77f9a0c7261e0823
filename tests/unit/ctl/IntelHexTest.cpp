#include "ctl/IntelHex.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vorrano::ctl {

namespace {

const std::string kData = ":0300300002337A1E\r\n";
const std::string kEnd = ":00000001FF\r\n";

} // namespace

TEST(IntelHex, IsMadeOfRecordsAndAnEndRecord)
{
    EXPECT_EQ(faultOfIntelHex(kData + kData + kEnd), std::nullopt);
    EXPECT_EQ(faultOfIntelHex(":0300300002337a1e\n:020000021000EC\n\n:00000001FF"), std::nullopt);
}

struct BrokenImage {
    std::string text;
    std::string fault;
};

class BrokenIntelHex : public testing::TestWithParam<BrokenImage> {};

TEST_P(BrokenIntelHex, IsFoundWithItsLine) { EXPECT_EQ(faultOfIntelHex(GetParam().text), GetParam().fault); }

INSTANTIATE_TEST_SUITE_P(
    Table, BrokenIntelHex,
    testing::Values(BrokenImage{"", "its end record is missing"}, BrokenImage{kData, "its end record is missing"},
                    BrokenImage{kData + ":0300300002337A1F\n" + kEnd, "line 2 has a wrong checksum"},
                    BrokenImage{"0300300002337A1E\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":0300300002337A1\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":0300300002337AXE\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":03003000+2337A1E\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":00\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":0400300002337A1D\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":0200300002337A1F\n" + kEnd, "line 1 is no record"},
                    BrokenImage{":00000006FA\n" + kEnd, "line 1 is no record"},
                    BrokenImage{kEnd + kData, "line 2 comes after the end record"},
                    BrokenImage{kEnd + "\n" + kEnd, "line 3 comes after the end record"}));

} // namespace vorrano::ctl
