#include "support/World.h"

#include <memory>
#include <string>
#include <vector>

namespace vorrano::support {
namespace {

using namespace std::chrono_literals;
using platform::Alert;
using platform::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FakeScreens : public ::testing::Test {
protected:
    World world;
    std::vector<std::string> told;

    platform::Action tell(std::string text)
    {
        return [this, text](Control&) { told.push_back(text); };
    }
};

TEST_F(FakeScreens, MakeControlsOnDemandEachOfOneKind)
{
    const auto view = world.layouts.loadView("Screen");

    view->textField("ssid").setText("Home");

    EXPECT_EQ(world.layouts.view("Screen").text("ssid"), "Home");
    EXPECT_THROW(static_cast<void>(view->button("ssid")), platform::LayoutError);
}

TEST_F(FakeScreens, HandThePersonsDoingToTheProgramButNotItsOwn)
{
    const auto view = world.layouts.loadView("Screen");
    auto& screen = world.layouts.view("Screen");
    view->textField("ssid").onChange(tell("typed"));
    view->popUpButton("security").onChoose(tell("chosen"));
    view->button("save").onPress(tell("pressed"));
    screen.setItems("security", {"Open", "WPA2"});

    view->textField("ssid").setText("quiet");
    view->popUpButton("security").selectItem("WPA2");
    screen.setTextQuietly("ssid", "quiet too");
    EXPECT_THAT(told, IsEmpty());
    screen.type("ssid", "Home");
    screen.choose("security", "Open");
    screen.press("save");

    EXPECT_THAT(told, ElementsAre("typed", "chosen", "pressed"));
    EXPECT_EQ(view->textField("ssid").text(), "Home");
    EXPECT_EQ(view->popUpButton("security").titleOfSelectedItem(), "Open");
}

TEST_F(FakeScreens, DeliverNothingWhileAnAlertIsUpOrAPauseRuns)
{
    const auto view = world.layouts.loadView("Screen");
    auto& screen = world.layouts.view("Screen");
    view->button("save").onPress(tell("pressed"));
    view->textField("ssid").onChange(tell("typed"));
    const auto tryIt = [&] {
        EXPECT_FALSE(screen.press("save"));
        EXPECT_FALSE(screen.type("ssid", "Home"));
    };
    world.alerts.whileUp(tryIt);
    world.pause.whilePaused(tryIt);
    world.openPanel.whileUp(tryIt);

    world.alerts.runModal({});
    world.pause.pause(1s);
    static_cast<void>(world.openPanel.runModal());

    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(screen.text("ssid"), "");
    EXPECT_TRUE(screen.press("save"));
}

TEST_F(FakeScreens, DeliverNothingOfADisabledOrHiddenControl)
{
    const auto view = world.layouts.loadView("Screen");
    auto& screen = world.layouts.view("Screen");
    view->button("save").onPress(tell("pressed"));
    view->button("save").setEnabled(false);
    EXPECT_FALSE(screen.press("save"));

    view->button("save").setEnabled(true);
    view->button("save").setHidden(true);
    EXPECT_FALSE(screen.press("save"));

    EXPECT_THAT(told, IsEmpty());
}

TEST_F(FakeScreens, LogWhatLeavesAHandler)
{
    const auto view = world.layouts.loadView("Screen");
    view->button("save").onPress([](Control&) { throw std::runtime_error("of the handler"); });

    world.layouts.view("Screen").press("save");

    EXPECT_THAT(world.log.lines(), ElementsAre("Uncaught exception: of the handler"));
}

TEST_F(FakeScreens, KeepAViewUntilItsHandlerHasReturned)
{
    auto view = world.layouts.loadView("Screen");
    view->button("save").onPress([&](Control& sender) {
        view.reset();
        sender.setEnabled(false);
        told.emplace_back(world.layouts.hasView("Screen") ? "alive" : "gone");
    });

    world.layouts.view("Screen").press("save");

    EXPECT_THAT(told, ElementsAre("alive"));
    EXPECT_FALSE(world.layouts.hasView("Screen"));
}

TEST_F(FakeScreens, ReportOneChoiceOfATabEachTimeAndNoneForItsContent)
{
    world.layouts.prepare("Setup", [](FakeView& view) { view.setTabs("tabs", {"Account", "Wi-Fi"}); });
    const auto view = world.layouts.loadView("Setup");
    auto& tabs = view->tabView("tabs");
    auto& screen = world.layouts.view("Setup");
    tabs.onSelect([&] { told.push_back(tabs.selectedLabel()); });

    tabs.setView(0, world.layouts.loadView("Account"));
    EXPECT_THAT(told, IsEmpty());
    screen.selectTab("tabs", 1);
    screen.selectTab("tabs", 1);

    EXPECT_THAT(told, ElementsAre("Wi-Fi", "Wi-Fi"));
    EXPECT_EQ(screen.pageOf("tabs", 0).get(), &world.layouts.view("Account"));
    EXPECT_EQ(screen.pageOf("tabs", 1), nullptr);
}

TEST_F(FakeScreens, LetGoOfAPagesOldContent)
{
    world.layouts.prepare("Setup", [](FakeView& view) { view.setTabs("tabs", {"Account"}); });
    const auto view = world.layouts.loadView("Setup");
    view->tabView("tabs").setView(0, world.layouts.loadView("First"));

    view->tabView("tabs").setView(0, world.layouts.loadView("Second"));

    EXPECT_FALSE(world.layouts.hasView("First"));
    EXPECT_TRUE(world.layouts.hasView("Second"));
}

TEST_F(FakeScreens, FillAPickListAsTheRealOneDoes)
{
    const auto view = world.layouts.loadView("Screen");
    auto& list = view->popUpButton("security");
    EXPECT_EQ(list.titleOfSelectedItem(), std::nullopt);

    list.addItems({"Open", "WPA2", "Open"});
    list.addItems({"WEP"});
    list.selectItem("WEP");
    list.selectItem("nothing");

    EXPECT_THAT(world.layouts.view("Screen").items("security"), ElementsAre("Open", "WPA2", "WEP"));
    EXPECT_EQ(list.titleOfSelectedItem(), "WEP");
    list.removeAllItems();
    EXPECT_EQ(list.titleOfSelectedItem(), std::nullopt);
}

TEST_F(FakeScreens, HideASpinnerAtFirst)
{
    const auto view = world.layouts.loadView("Screen");
    auto& spinner = view->progressIndicator("progress");
    EXPECT_TRUE(spinner.isHidden());

    spinner.setHidden(false);
    spinner.startAnimation();

    EXPECT_FALSE(world.layouts.view("Screen").isHidden("progress"));
    EXPECT_TRUE(world.layouts.view("Screen").isAnimating("progress"));
}

TEST_F(FakeScreens, ThrowForALayoutThatDoesNotExist)
{
    world.layouts.remove("Screen");

    EXPECT_THROW(static_cast<void>(world.layouts.loadView("Screen")), platform::LayoutError);
    EXPECT_THROW(static_cast<void>(world.layouts.loadWindow("Screen")), platform::LayoutError);
}

TEST_F(FakeScreens, CompleteASheetThroughTheMainQueueAfterTheActionThatEndedIt)
{
    const auto login = world.layouts.loadWindow("Login");
    const auto agreement = world.layouts.loadWindow("Agreement");
    login->show();
    login->beginSheet(agreement, [&](int code) { told.push_back("completed with " + std::to_string(code)); });
    agreement->view()->button("accept").onPress([&](Control&) {
        agreement->sheetParent()->endSheet(*agreement, 1);
        world.layouts.keyWindow()->close();
        told.emplace_back("action returned");
    });
    EXPECT_EQ(agreement->sheetParent(), login.get());
    EXPECT_EQ(world.layouts.keyWindow(), agreement);

    world.layouts.view("Agreement").press("accept");
    world.run();

    EXPECT_THAT(told, ElementsAre("action returned", "completed with 1"));
    EXPECT_FALSE(login->isVisible());
    EXPECT_FALSE(agreement->isVisible());
    EXPECT_EQ(agreement->sheetParent(), nullptr);
    EXPECT_EQ(world.layouts.keyWindow(), nullptr);
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(FakeScreens, BlockTheWindowUnderASheetButNotTheSheet)
{
    const auto login = world.layouts.loadWindow("Login");
    const auto agreement = world.layouts.loadWindow("Agreement");
    login->view()->button("signIn").onPress(tell("login"));
    agreement->view()->button("accept").onPress(tell("agreement"));
    login->show();
    login->beginSheet(agreement, [](int) {});

    EXPECT_FALSE(world.layouts.view("Login").press("signIn"));
    EXPECT_FALSE(world.layouts.window("Login").closeAsPerson());
    EXPECT_TRUE(world.layouts.view("Agreement").press("accept"));

    EXPECT_THAT(told, ElementsAre("agreement"));
}

TEST_F(FakeScreens, EndASheetWithZeroWhenThePersonClosesIt)
{
    const auto login = world.layouts.loadWindow("Login");
    login->show();
    int code = -1;
    login->beginSheet(world.layouts.loadWindow("Agreement"), [&](int given) { code = given; });

    world.layouts.window("Agreement").closeAsPerson();
    world.run();

    EXPECT_EQ(code, 0);
    EXPECT_FALSE(world.layouts.hasWindow("Agreement"));
    EXPECT_EQ(world.layouts.keyWindow(), login);
}

TEST_F(FakeScreens, EndASheetWithZeroWhenTheProgramClosesItOrItsParent)
{
    const auto login = world.layouts.loadWindow("Login");
    login->show();
    std::vector<int> codes;
    const auto beginSheet = [&] {
        login->beginSheet(world.layouts.loadWindow("Agreement"), [&](int code) { codes.push_back(code); });
    };

    beginSheet();
    world.layouts.window("Agreement").close();
    EXPECT_THAT(codes, IsEmpty());
    world.run();
    EXPECT_THAT(codes, ElementsAre(0));
    EXPECT_TRUE(login->isVisible());
    EXPECT_FALSE(world.layouts.hasWindow("Agreement"));

    beginSheet();
    login->close();
    world.run();

    EXPECT_THAT(codes, ElementsAre(0, 0));
    EXPECT_EQ(world.layouts.keyWindow(), nullptr);
    EXPECT_FALSE(world.layouts.hasWindow("Agreement"));
}

TEST_F(FakeScreens, TakeTheActiveWindowAsTheKeyWindowElseTheOneShownLast)
{
    EXPECT_EQ(world.layouts.keyWindow(), nullptr);
    auto first = world.layouts.loadWindow("First");
    const auto second = world.layouts.loadWindow("Second");
    first->show();
    second->show();
    EXPECT_EQ(world.layouts.keyWindow(), second);

    world.layouts.window("First").activate();
    EXPECT_EQ(world.layouts.keyWindow(), first);
    first.reset();

    EXPECT_EQ(world.layouts.keyWindow(), second);
}

TEST_F(FakeScreens, EndTheProgramWhenThePersonClosesTheLastWindow)
{
    const auto first = world.layouts.loadWindow("First");
    const auto second = world.layouts.loadWindow("Second");
    first->show();
    second->show();

    world.layouts.window("First").closeAsPerson();
    EXPECT_FALSE(world.layouts.hasProgramEnded());
    world.layouts.window("Second").closeAsPerson();

    EXPECT_TRUE(world.layouts.hasProgramEnded());
}

TEST_F(FakeScreens, RememberAlertsAndGiveTheirAnswersInOrder)
{
    const Alert question{"Update?", {"Yes", "No"}, "It takes a minute", platform::AlertStyle::Informational};
    world.alerts.queueAnswer(platform::kAlertSecondButton);

    EXPECT_EQ(world.alerts.runModal(question), platform::kAlertSecondButton);
    EXPECT_EQ(world.alerts.only(), question);
    EXPECT_EQ(world.alerts.runModal(question), platform::kAlertFirstButton);
    EXPECT_EQ(world.alerts.shown().size(), 2U);

    world.alerts.end();
    EXPECT_EQ(world.alerts.runModal(question), platform::kNoAnswer);
}

TEST_F(FakeScreens, ChooseTheFileThatTheTestChose)
{
    world.openPanel.queueFile("/tmp/vorrano.hex");

    EXPECT_THAT(world.openPanel.runModal(), ElementsAre("/tmp/vorrano.hex"));
    EXPECT_THAT(world.openPanel.runModal(), IsEmpty());
    EXPECT_EQ(world.openPanel.timesShown(), 2);
}

} // namespace
} // namespace vorrano::support
