#include "platform/BusyDisplay.h"
#include "platform/Layouts.h"
#include "platform/OkAlert.h"
#include "support/World.h"

using namespace vorrano;
using platform::Alert;

namespace {

struct ABusyScreen : testing::Test {
    support::World world;
    std::shared_ptr<platform::View> view = world.layouts.loadView("Screen");
    support::FakeView& screen = world.layouts.view("Screen");
    platform::BusyDisplay busy{*view};
};

TEST_F(ABusyScreen, IsDimmedWithItsSpinnerTurning)
{
    busy.start();

    EXPECT_EQ(screen.alpha(), 0.3);
    EXPECT_FALSE(screen.isHidden("loginProgressIndicator"));
    EXPECT_TRUE(screen.isAnimating("loginProgressIndicator"));
}

TEST_F(ABusyScreen, ComesBackAsItWas)
{
    busy.start();

    busy.stop();

    EXPECT_EQ(screen.alpha(), 1.0);
    EXPECT_TRUE(screen.isHidden("loginProgressIndicator"));
    EXPECT_FALSE(screen.isAnimating("loginProgressIndicator"));
}

TEST(AnOkAlert, HasBothTextsAndOneButton)
{
    EXPECT_EQ(platform::okAlert("Title", "Text"),
              (Alert{"Title", {"OK"}, "Text", platform::AlertStyle::Informational}));
    EXPECT_EQ(platform::okAlert(std::nullopt, "").messageText, std::nullopt);
}

TEST(AnError, IsShownWithItsTextAndNotWithoutOne)
{
    support::World world;

    platform::showError(world.alerts, std::nullopt);
    EXPECT_TRUE(world.alerts.shown().empty());
    platform::showError(world.alerts, "100 %");

    EXPECT_EQ(world.alerts.only(), platform::okAlert("ERROR", "100 %"));
}

} // namespace
