#include "unit/shell/ShellTest.h"

using namespace vorrano;
using namespace vorrano::shell;
using platform::OperatingSystemVersion;

namespace {

const platform::Alert kUpgrade = {"Operating System Upgrade Required",
                                  {"OK"},
                                  "Please update to MAC OS 10.9 and above to use Vorrano setup Program",
                                  platform::AlertStyle::Informational};

struct VersionCase {
    OperatingSystemVersion version;
    bool warns;
};

class AVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(AVersion, IsComparedByEachNumberForItself) { EXPECT_EQ(needsUpgrade(GetParam().version), GetParam().warns); }

INSTANTIATE_TEST_SUITE_P(Of, AVersion,
                         testing::Values(VersionCase{{10, 8, 0}, true}, VersionCase{{10, 8, 5}, true},
                                         VersionCase{{10, 9, 0}, false}, VersionCase{{10, 10, 0}, false},
                                         VersionCase{{9, 5, 0}, true}, VersionCase{{9, 9, 0}, false},
                                         VersionCase{{11, 0, 0}, false}, VersionCase{{11, 8, 9}, false},
                                         VersionCase{{2, 36, 0}, false}, VersionCase{{0, 0, 0}, true},
                                         VersionCase{{0, 9, 0}, false}));

struct TheStart : ShellTest {};

TEST_F(TheStart, ShowsTheLoginScreen)
{
    launch();

    EXPECT_TRUE(program().window()->isVisible());
    EXPECT_EQ(world.layouts.keyWindow(), program().window());
    EXPECT_THAT(world.layouts.loaded(), ElementsAre("LoginViewController"));
    EXPECT_THAT(world.alerts.shown(), IsEmpty());
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
}

TEST_F(TheStart, WarnsOfAnOldSystemOnceAndThenGoesOnAsUsual)
{
    world.os.setVersion(OperatingSystemVersion{10, 8, 5});

    launch();

    EXPECT_EQ(world.alerts.only(), kUpgrade);
    openAgreement();
    EXPECT_TRUE(isVisible("EULAWindowViewController"));
    EXPECT_EQ(world.alerts.shown().size(), 1U);
}

TEST_F(TheStart, ShowsTheLoginScreenBehindTheWarning)
{
    world.os.setVersion(OperatingSystemVersion{10, 8, 0});
    world.alerts.whileUp([this] { EXPECT_TRUE(isVisible("LoginViewController")); });

    launch();

    EXPECT_EQ(world.alerts.shown().size(), 1U);
}

TEST_F(TheStart, CountsAVersionThatCannotBeHadAsZeros)
{
    world.os.setVersion(std::nullopt);

    launch();

    EXPECT_EQ(world.alerts.only(), kUpgrade);
}

TEST_F(TheStart, SaysNothingOnANewSystem)
{
    world.os.setVersion(OperatingSystemVersion{10, 9, 0});

    launch();

    EXPECT_THAT(world.alerts.shown(), IsEmpty());
}

TEST_F(TheStart, EndsTheProgramWhenThePersonClosesTheLoginWindow)
{
    launch();

    EXPECT_TRUE(world.layouts.window("LoginViewController").closeAsPerson());

    EXPECT_TRUE(world.layouts.hasProgramEnded());
}

} // namespace
