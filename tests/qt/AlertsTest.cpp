#include "QtProgram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <stdexcept>

namespace vorrano::qt {
namespace {

using namespace std::chrono_literals;
using platform::Alert;
using platform::AlertStyle;
using support::kNotice;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Alert kQuestion{"Go on?", {"Yes", "No"}, std::nullopt, AlertStyle::Warning};

class Alerts : public support::QtProgram {
protected:
    static QAbstractButton& buttonOf(QDialog& box, const char* title)
    {
        for (auto* const button : box.findChildren<QAbstractButton*>()) {
            if (button->text() == QLatin1String(title)) {
                return *button;
            }
        }
        throw std::logic_error("no such button");
    }
    static void press(QDialog& box, const char* title) { buttonOf(box, title).click(); }
    static const QLabel& label(QDialog& box, const char* name) { return *box.findChild<QLabel*>(QLatin1String(name)); }

    std::shared_ptr<platform::Window> window = shown("WifiSetupViewController");
    platform::View& view = *window->view();
};

TEST_F(Alerts, AnswerTheNumberOfTheButtonThatWasPressed)
{
    whileUp([](QDialog& box) { press(box, "OK"); });
    EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);

    whileUp([](QDialog& box) { press(box, "Yes"); });
    EXPECT_EQ(alerts.runModal(kQuestion), platform::kAlertFirstButton);

    whileUp([](QDialog& box) { press(box, "No"); });
    EXPECT_EQ(alerts.runModal(kQuestion), platform::kAlertSecondButton);
}

TEST_F(Alerts, ShowBothTextsPlainWithTheirLineEnds)
{
    whileUp([](QDialog& box) {
        EXPECT_EQ(label(box, "qt_msgbox_label").text(), QStringLiteral("<b>Net</b> &amp;\n\n\r"));
        EXPECT_EQ(label(box, "qt_msgbox_label").textFormat(), Qt::PlainText);
        EXPECT_EQ(label(box, "qt_msgbox_informativelabel").text(), QStringLiteral("<i>Success</i>\n"));
        EXPECT_EQ(label(box, "qt_msgbox_informativelabel").textFormat(), Qt::PlainText);
        EXPECT_EQ(box.accessibleName(), QStringLiteral("<b>Net</b> &amp;\n\n\r"));
        press(box, "OK");
    });

    alerts.runModal({"<b>Net</b> &amp;\n\n\r", {"OK"}, "<i>Success</i>\n"});
}

TEST_F(Alerts, ShowAnAbsentTextAsAnEmptyOne)
{
    whileUp([](QDialog& box) {
        EXPECT_EQ(label(box, "qt_msgbox_label").text(), QString());
        press(box, "OK");
    });

    EXPECT_EQ(alerts.runModal({std::nullopt, {"OK"}, std::nullopt}), platform::kAlertFirstButton);
}

TEST_F(Alerts, ShowTheWholeOfLongTexts)
{
    std::string text;
    for (int words = 0; words < 40; ++words) {
        text += "word ";
    }
    for (const auto& informative : {std::optional<std::string>(), std::optional(text)}) {
        whileUp([&](QDialog& box) {
            for (auto* const shown : box.findChildren<QLabel*>()) {
                EXPECT_GE(shown->height(), shown->heightForWidth(shown->width()));
                EXPECT_TRUE(shown->text().isEmpty() || shown->wordWrap());
            }
            EXPECT_LE(box.width(), 800);
            press(box, "OK");
        });

        EXPECT_EQ(alerts.runModal({text, {"OK"}, informative}), platform::kAlertFirstButton);
    }
}

TEST_F(Alerts, LetBothTextsBeSelected)
{
    whileUp([](QDialog& box) {
        for (const auto* const name : {"qt_msgbox_label", "qt_msgbox_informativelabel"}) {
            EXPECT_TRUE(label(box, name).textInteractionFlags() & Qt::TextSelectableByMouse) << name;
            EXPECT_TRUE(label(box, name).textInteractionFlags() & Qt::TextSelectableByKeyboard) << name;
        }
        press(box, "OK");
    });

    alerts.runModal(kNotice);
}

TEST_F(Alerts, ShowTheirButtonsInTheirOrderWithTheirTextsAndTheFirstAsTheDefault)
{
    whileUp([](QDialog& box) {
        EXPECT_LT(buttonOf(box, "Yes").x(), buttonOf(box, "No").x());
        EXPECT_TRUE(dynamic_cast<QPushButton&>(buttonOf(box, "Yes")).isDefault());
        QTest::keyClick(&box, Qt::Key_Return);
    });

    EXPECT_EQ(alerts.runModal(kQuestion), platform::kAlertFirstButton);
}

TEST_F(Alerts, OfOneButtonTakeEscAndTheWindowsCloseForIt)
{
    whileUp([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);

    whileUp([](QDialog& box) { box.close(); });
    EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);
}

TEST_F(Alerts, OfTwoButtonsStayUpOnEscAndOnTheWindowsClose)
{
    whileUp([](QDialog& box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        box.close();
        box.reject();
        EXPECT_TRUE(box.isVisible());
        press(box, "No");
    });

    EXPECT_EQ(alerts.runModal(kQuestion), platform::kAlertSecondButton);
}

TEST_F(Alerts, HoldTheMainQueueBackAndItGoesOnInOrderAfterTheActionHasReturned)
{
    std::vector<std::string> order;
    queue.async([&] {
        whileUp([&](QDialog& box) {
            queue.async([&] { order.emplace_back("chunk"); });
            queue.after(1ms, [&] { order.emplace_back("delayed"); });
            bool later = false;
            QTimer::singleShot(5, &box, [&] { later = true; });
            EXPECT_TRUE(spinUntil([&] { return later; }));
            order.emplace_back("pressed");
            press(box, "OK");
        });
        alerts.runModal(kNotice);
        order.emplace_back("returned");
    });
    queue.async([&] { order.emplace_back("next"); });

    EXPECT_TRUE(spinUntil([&] { return order.size() == 5; }));

    EXPECT_THAT(order, ElementsAre("pressed", "returned", "next", "chunk", "delayed"));
}

TEST_F(Alerts, LetWordOfPowerThrough)
{
    bool slept = false;
    whileUp([&](QDialog& box) {
        queue.asyncPastAlerts([&] { slept = true; });
        EXPECT_TRUE(spinUntil([&] { return slept; }));
        press(box, "OK");
    });

    alerts.runModal(kNotice);

    EXPECT_TRUE(slept);
}

TEST_F(Alerts, LetNothingElseBePressedTypedOrChosenOverTheBus)
{
    int heard = 0;
    const platform::Action count = [&](platform::Control&) { ++heard; };
    view.button("saveSSIDButton").onPress(count);
    view.textField("SSID").onChange(count);
    view.popUpButton("securityTypeButton").addItems({"Open", "WPA2"});
    view.popUpButton("securityTypeButton").onChoose(count);
    whileUp([&](QDialog& box) {
        pressOverTheBus(widget<QWidget>(view, "saveSSIDButton"));
        writeOverTheBus(widget<QWidget>(view, "SSID"), QStringLiteral("Net"));
        auto& list = widget<QComboBox>(view, "securityTypeButton");
        pressOverTheBus(list);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        list.setCurrentIndex(1);
        press(box, "OK");
    });

    alerts.runModal(kNotice);
    runQueue();

    EXPECT_EQ(heard, 0);
    EXPECT_EQ(view.textField("SSID").text(), "");
    EXPECT_EQ(view.popUpButton("securityTypeButton").titleOfSelectedItem(), "Open");
}

TEST_F(Alerts, AreAnsweredOverTheBus)
{
    whileUp([](QDialog& box) { pressOverTheBus(buttonOf(box, "No")); });

    EXPECT_EQ(alerts.runModal(kQuestion), platform::kAlertSecondButton);
}

TEST_F(Alerts, TakeNoAnswerBelowAnotherOne)
{
    std::vector<int> answers;
    whileUp([&](QDialog& lower) {
        whileUp([&](QDialog& upper) {
            ASSERT_NE(&upper, &lower);
            pressOverTheBus(buttonOf(lower, "No"));
            press(upper, "OK");
        });
        answers.push_back(alerts.runModal(kNotice));
        EXPECT_TRUE(lower.isVisible());
        press(lower, "Yes");
    });

    answers.push_back(alerts.runModal(kQuestion));

    EXPECT_THAT(answers, ElementsAre(platform::kAlertFirstButton, platform::kAlertFirstButton));
}

TEST_F(Alerts, AnswerAtOnceWhenTheProgramIsEnding)
{
    gate.end();

    EXPECT_EQ(alerts.runModal(kNotice), platform::kNoAnswer);
    EXPECT_EQ(alerts.runModal(kQuestion), platform::kNoAnswer);
    EXPECT_THAT(openPanel.runModal(), IsEmpty());
}

TEST_F(Alerts, OnScreenEndWithoutAnAnswerWhenTheProgramEnds)
{
    whileUp([&](QDialog&) { gate.end(); });

    EXPECT_EQ(alerts.runModal(kQuestion), platform::kNoAnswer);
}

TEST_F(Alerts, CloseAListThatIsOpened)
{
    auto& box = widget<QComboBox>(view, "securityTypeButton");
    view.popUpButton("securityTypeButton").addItems({"Open", "WPA2"});
    box.showPopup();
    whileUp([&](QDialog& alert) {
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        press(alert, "OK");
    });

    EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);
}

TEST_F(Alerts, SurviveTheirWindow)
{
    bool dropped = false;
    whileUp([&](QDialog&) {
        queue.asyncPastAlerts([&] {
            window.reset();
            dropped = true;
        });
    });

    EXPECT_EQ(alerts.runModal(kNotice), platform::kNoAnswer);

    EXPECT_TRUE(dropped);
}

TEST_F(Alerts, ShowWithoutAnyWindow)
{
    window.reset();
    whileUp([](QDialog& box) { press(box, "OK"); });

    EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);
}

} // namespace
} // namespace vorrano::qt
