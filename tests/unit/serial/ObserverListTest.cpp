#include "serial/ObserverList.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano::serial {

namespace {

using testing::ElementsAre;

TEST(ObserverListOfText, TellsItsObserversInTheOrderInWhichTheyBegan)
{
    ObserverList<std::string> list;
    std::vector<std::string> heard;
    const auto first = list.add([&](const std::string& text) { heard.push_back("1 " + text); });
    const auto second = list.add([&](const std::string& text) { heard.push_back("2 " + text); });

    list.tell("a");

    EXPECT_THAT(heard, ElementsAre("1 a", "2 a"));
}

TEST(ObserverListOfText, TellsNobodyWhoseSubscriptionHasEnded)
{
    ObserverList<std::string> list;
    int heard = 0;
    auto subscription = list.add([&](const std::string&) { ++heard; });

    subscription.reset();
    list.tell("a");

    EXPECT_EQ(heard, 0);
}

TEST(ObserverListOfText, LetsAnObserverEndItselfAndOthersInsideItsCall)
{
    ObserverList<std::string> list;
    int heard = 0;
    platform::Subscription second;
    platform::Subscription first = list.add([&](const std::string&) {
        ++heard;
        second.reset();
        first.reset();
    });
    second = list.add([&](const std::string&) { ++heard; });

    list.tell("a");
    list.tell("b");

    EXPECT_EQ(heard, 1);
}

TEST(ObserverListOfText, TellsAnObserverThatBeganInsideACallOfTheNextChange)
{
    ObserverList<std::string> list;
    std::vector<std::string> heard;
    platform::Subscription second;
    const auto first = list.add([&](const std::string& text) {
        if (text == "a") {
            second = list.add([&](const std::string& later) { heard.push_back(later); });
        }
    });

    list.tell("a");
    list.tell("b");

    EXPECT_THAT(heard, ElementsAre("b"));
}

TEST(ObserverListOfText, MayEndBeforeItsSubscriptionsAndInsideACall)
{
    auto list = std::make_unique<ObserverList<std::string>>();
    int heard = 0;
    const auto first = list->add([&](const std::string&) {
        ++heard;
        list.reset();
    });
    const auto second = list->add([&](const std::string&) { ++heard; });

    list->tell("a");

    EXPECT_EQ(heard, 2);
}

} // namespace

} // namespace vorrano::serial
