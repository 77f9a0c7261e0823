#include "QtProgram.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QtTest/QTest>

#include <gmock/gmock.h>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PopUpButton : public support::QtProgram {
protected:
    PopUpButton()
    {
        list.addItems({"", "Open", "WPA2"});
        list.onChoose([this](platform::Control& sender) {
            EXPECT_EQ(&sender, &list);
            chosen.push_back(list.titleOfSelectedItem().value_or("none"));
        });
    }

    std::shared_ptr<platform::Window> window = shown("WifiSetupViewController");
    platform::PopUpButton& list = window->view()->popUpButton("securityTypeButton");
    QComboBox& box = widget<QComboBox>(*window->view(), "securityTypeButton");
    std::vector<std::string> chosen;
};

TEST_F(PopUpButton, SelectsTheFirstEntryOfAnEmptyList)
{
    list.removeAllItems();
    EXPECT_EQ(list.titleOfSelectedItem(), std::nullopt);

    list.addItems({"Home", "Guests"});
    list.addItems({"Cellar"});

    EXPECT_EQ(list.titleOfSelectedItem(), "Home");
    EXPECT_EQ(box.count(), 3);
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(PopUpButton, HasNoTitleTwiceButTellsCapitalsApart)
{
    list.removeAllItems();

    list.addItems({"Home", "home", "Home"});
    list.addItems({"home", "Ho*e"});

    EXPECT_EQ(box.count(), 3);
}

TEST_F(PopUpButton, KeepsItsSelectionWhenATitleIsNotThere)
{
    list.selectItem("WPA2");
    list.selectItem("wpa2");

    EXPECT_EQ(list.titleOfSelectedItem(), "WPA2");
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(PopUpButton, TellsOnceOfAChoiceByKey)
{
    QTest::keyClick(&box, Qt::Key_Down);
    runQueue();

    EXPECT_THAT(chosen, ElementsAre("Open"));
}

TEST_F(PopUpButton, TellsOfAChoiceFromTheOpenedListAlsoOfTheSelectedEntry)
{
    for (int times = 0; times < 2; ++times) {
        box.showPopup();
        box.view()->setCurrentIndex(box.model()->index(2, 0));
        QTest::keyClick(box.view(), Qt::Key_Return);
        runQueue();
    }

    EXPECT_THAT(chosen, ElementsAre("WPA2", "WPA2"));
}

TEST_F(PopUpButton, TellsOnceOfAChoiceThatIsAChangeOfTheIndexAlone)
{
    box.setCurrentIndex(1);
    runQueue();

    EXPECT_THAT(chosen, ElementsAre("Open"));
}

TEST_F(PopUpButton, PutsAChoiceBackWhileTheGateIsShut)
{
    auto shut = gate.shut();

    QTest::keyClick(&box, Qt::Key_Down);
    box.setCurrentIndex(2);
    runQueue();

    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(list.titleOfSelectedItem(), "");
    EXPECT_EQ(box.currentIndex(), 0);
    shut.reset();
    box.setCurrentIndex(2);
    runQueue();
    EXPECT_THAT(chosen, ElementsAre("WPA2"));
}

TEST_F(PopUpButton, TellsNobodyOnceItsWindowIsDropped)
{
    box.setCurrentIndex(1);

    window.reset();
    runQueue();

    EXPECT_THAT(chosen, IsEmpty());
}

} // namespace
} // namespace vorrano::qt
