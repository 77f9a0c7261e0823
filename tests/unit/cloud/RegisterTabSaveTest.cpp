#include "unit/cloud/RegisterTab.h"

#include <stdexcept>

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(RegisterTab, RefusesToSaveWithoutANetworkPathBeforeItLooksAtTheName)
{
    chooseTab();
    world.reachability.setFlags(0);

    save("");

    EXPECT_EQ(world.alerts.only(), kWifiNotConnected);
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(RegisterTab, RefusesAnEmptyNameBeforeItLooksAtTheMacAddress)
{
    chooseTab();

    save("");

    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", "Please name your Vorrano"));
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(RegisterTab, EndsWithTheAlertAndNoCallWhenNoMacAddressWasRead)
{
    GlobalVariables::setGlobalAccountID("57");
    chooseTab();

    save("Kitchen");
    world.advance(10s);

    EXPECT_EQ(world.alerts.only(), kNoMac);
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(RegisterTab, SendsOnlyThe17CharactersOfAReplyThatEndsInLineEnds)
{
    openWithMac();

    save("Kitchen");

    EXPECT_EQ(world.urlFetch.requests(),
              std::vector<std::string>{kRoot + "insertAccountVorranos/57/" + kMac + "/Kitchen"});
    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_EQ(view().alpha(), 1.0);
    EXPECT_TRUE(view().isEnabled("saveButton"));
}

TEST_F(RegisterTab, SendsAnAbsentAccountIdAsAnEmptySegment)
{
    openWithMac();
    GlobalVariables::setGlobalAccountID(std::nullopt);

    save("Kitchen");

    EXPECT_EQ(world.urlFetch.requests(),
              std::vector<std::string>{kRoot + "insertAccountVorranos//" + kMac + "/Kitchen"});
}

namespace {

struct NameCase {
    const char* name;
    std::string typed;
    std::string sent;
};

struct NameOfTheVorrano : RegisterTab, testing::WithParamInterface<NameCase> {};

} // namespace

TEST_P(NameOfTheVorrano, IsSentAsTypedWithOnlyWhatMayNotStandInAnAddressEscaped)
{
    openWithMac();

    save(GetParam().typed);

    EXPECT_EQ(world.urlFetch.requests(),
              std::vector<std::string>{kRoot + "insertAccountVorranos/57/" + kMac + "/" + GetParam().sent});
}

INSTANTIATE_TEST_SUITE_P(Table, NameOfTheVorrano,
                         testing::Values(NameCase{"SpacesArePercent20", "My Home", "My%20Home"},
                                         NameCase{"BlanksAtTheEndsToo", " Home ", "%20Home%20"},
                                         NameCase{"ASlashAddsASegment", "a/b", "a/b"},
                                         NameCase{"ANumberSignCutsTheAddressThere", "a#b", "a#b"},
                                         NameCase{"OtherMarksStay", "a?b%c&d", "a?b%c&d"},
                                         NameCase{"ADollarSignStays", "$", "$"},
                                         NameCase{"LettersBeyondAscii",
                                                  "K\xc3\xbc"
                                                  "che",
                                                  "K%C3%BCche"},
                                         NameCase{"AVeryLongName", std::string(500, 'x'), std::string(500, 'x')}),
                         [](const auto& given) { return given.param.name; });

namespace {

struct OutcomeOfTheRegistration : RegisterTab, testing::WithParamInterface<ShapeCase> {};

} // namespace

TEST_P(OutcomeOfTheRegistration, IsReportedAsSuccess)
{
    openWithMac();
    world.urlFetch.answer(GetParam().body);

    save("Kitchen");

    EXPECT_EQ(world.alerts.only(), kRegistered);
}

INSTANTIATE_TEST_SUITE_P(WhateverTheReply, OutcomeOfTheRegistration,
                         testing::Values(ShapeCase{"Good", R"({"data":[{"Id":"1"}]})"},
                                         ShapeCase{"AnError", R"({"data":[{"Id":"-1"}]})"}, ShapeCase{"NoBytes", ""},
                                         ShapeCase{"NotJson", "<html>500</html>"}, ShapeCase{"ABareArray", "[]"},
                                         ShapeCase{"DataNull", R"({"data":null})"}),
                         [](const auto& given) { return given.param.name; });

TEST_F(RegisterTab, ReportsSuccessWhenTheServiceIsDown)
{
    openWithMac();
    world.urlFetch.answerNothing();

    save("Kitchen");

    EXPECT_EQ(world.alerts.only(), kRegistered);
}

TEST_F(RegisterTab, ReportsNothingBeforeTheServiceHasAnswered)
{
    openWithMac();
    world.urlFetch.answerAfter(5s, "{}");

    save("Kitchen");
    world.advance(4s);
    EXPECT_TRUE(world.alerts.shown().empty());
    world.advance(1s);

    EXPECT_EQ(world.alerts.only(), kRegistered);
}

TEST_F(RegisterTab, SendsASecondSaveBeforeTheFirstReply)
{
    openWithMac();
    world.urlFetch.answerAfter(5s, "{}");
    world.urlFetch.answerAfter(1s, "{}");

    save("Kitchen");
    save("Cellar");
    world.advance(6s);

    EXPECT_EQ(world.urlFetch.requests(),
              (std::vector<std::string>{kRoot + "insertAccountVorranos/57/" + kMac + "/Kitchen",
                                        kRoot + "insertAccountVorranos/57/" + kMac + "/Cellar"}));
    EXPECT_EQ(world.alerts.shown(), (std::vector{kRegistered, kRegistered}));
}

TEST_F(RegisterTab, ReportsAReplyThatComesAfterTheTabWasLeft)
{
    openWithMac();
    save("Kitchen");
    const std::weak_ptr<RegisterVorranoViewController> left = controller;

    controller.reset();
    EXPECT_FALSE(left.expired());
    world.urlFetch.answer("{}");
    world.run();

    EXPECT_EQ(world.alerts.only(), kRegistered);
    EXPECT_TRUE(left.expired());
}

TEST_F(RegisterTab, HoldsTheMacReplyBackWhileAnAlertIsUp)
{
    GlobalVariables::setGlobalAccountID("57");
    auto& line = world.plugVorrano();
    chooseTab();
    world.alerts.whileUp([this, &line] {
        line.reply(kMacReply);
        world.advance(1s);
        EXPECT_EQ(controller->macAddressString(), std::nullopt);
    });

    save("Kitchen");

    EXPECT_EQ(world.alerts.only(), kNoMac);
    EXPECT_EQ(controller->macAddressString(), kMacReply);
}

TEST_F(RegisterTab, LogsNeitherMacNorNameNorAddress)
{
    openWithMac();
    world.urlFetch.answer(R"(["hunter2"])");

    save("Kitchen");
    world.advance(3s);

    for (const auto& secret : {kMac, std::string("Kitchen"), std::string("hunter2"), std::string("service.example")}) {
        expectNotLogged(secret);
    }
}

TEST_F(RegisterTab, ShowsNoAlertForAnAbsentText)
{
    const auto tab = std::make_shared<OpenRegisterTab>();

    tab->displaySuccessAlertWithString(std::nullopt);
    tab->displayErrorAlertWithString(std::nullopt);

    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(RegisterTab, ShowsAPercentSignInItsAlertsAsItIs)
{
    const auto tab = std::make_shared<OpenRegisterTab>();

    tab->displaySuccessAlertWithString("100%@ %d");
    tab->displayErrorAlertWithString("100%");

    EXPECT_EQ(world.alerts.shown(), (std::vector{alertOf("Success", "100%@ %d"), alertOf("ERROR", "100%")}));
}

TEST_F(RegisterTab, SaysThatItFailedOnlyWhenTheSuccessCantBeShown)
{
    openWithMac();
    world.urlFetch.answer("{}");
    world.alerts.whileUp([] { throw std::runtime_error("no screen"); });

    save("Kitchen");

    EXPECT_EQ(world.alerts.shown(),
              (std::vector{kRegistered, alertOf("ERROR", "Failed to Register your device. Please try again")}));
}
