#include "platform/posix/PosixOperatingSystem.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include <gnu/libc-version.h>

namespace {

using vorrano::platform::OperatingSystemVersion;
using vorrano::posix_platform::PosixOperatingSystem;
using vorrano::posix_platform::versionFromText;

std::string spelled(const std::optional<OperatingSystemVersion>& version)
{
    if (!version) {
        return "none";
    }
    return std::to_string(version->major) + "," + std::to_string(version->minor) + "," + std::to_string(version->patch);
}

struct Case {
    std::string text;
    std::string version;
};

class VersionText : public testing::TestWithParam<Case> {};

TEST_P(VersionText, IsReadAsUpToThreeNumbers)
{
    EXPECT_EQ(spelled(versionFromText(GetParam().text)), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Table, VersionText,
                         testing::Values(Case{"2.36", "2,36,0"}, Case{"2.36.1", "2,36,1"}, Case{"3", "3,0,0"},
                                         Case{"2.36-9+deb12u7", "2,36,0"}, Case{"2.36.9000.4", "2,36,9000"},
                                         Case{"2.", "2,0,0"}, Case{"2.x", "2,0,0"}, Case{"2.-1", "2,0,0"},
                                         Case{"", "none"}, Case{"glibc 2.36", "none"}, Case{"-2.36", "none"},
                                         Case{"99999999999.1", "none"}, Case{"2.99999999999", "2,0,0"}));

TEST(OperatingSystem, HasTheCLibrarysVersion)
{
    const auto version = PosixOperatingSystem().version();

    ASSERT_TRUE(version);
    EXPECT_EQ(spelled(version), spelled(versionFromText(::gnu_get_libc_version())));
    EXPECT_GE(version->major, 2);
}

} // namespace
