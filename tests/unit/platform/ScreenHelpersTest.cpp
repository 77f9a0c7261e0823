#include "platform/ActionOf.h"
#include "platform/BusyDisplay.h"
#include "platform/Layouts.h"
#include "platform/OkAlert.h"
#include "support/World.h"

#include <thread>

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

struct AnAction : testing::Test {
    struct Screen {
        void save(platform::Control& by) { sender = &by; }
        platform::Control* sender = nullptr;
    };

    support::World world;
    std::shared_ptr<platform::View> view = world.layouts.loadView("Screen");
    platform::Control& button = view->button("saveButton");
    std::shared_ptr<Screen> object = std::make_shared<Screen>();
};

TEST_F(AnAction, CallsTheMethodOrTheCallableWithTheObjectAndTheSender)
{
    platform::actionOf(std::weak_ptr(object), &Screen::save)(button);
    EXPECT_EQ(object->sender, &button);

    object->sender = nullptr;
    platform::actionOf(std::weak_ptr(object),
                       [](Screen& self, platform::Control& sender) { self.save(sender); })(button);
    EXPECT_EQ(object->sender, &button);
}

TEST_F(AnAction, DoesNothingOnceTheObjectIsGone)
{
    bool called = false;
    const auto action = platform::actionOf(std::weak_ptr(object), [&](Screen&, platform::Control&) { called = true; });
    object.reset();

    action(button);

    EXPECT_FALSE(called);
}

using AnActionDeathTest = AnAction;

TEST_F(AnActionDeathTest, IsForTheMainThread)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto action = platform::actionOf(std::weak_ptr(object), &Screen::save);

    EXPECT_DEATH(std::thread([&] { action(button); }).join(), "assertMainThread");
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
