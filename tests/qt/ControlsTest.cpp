#include "QtProgram.h"

#include "platform/qt/Dimmer.h"
#include "platform/qt/Spinner.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;

// The grey value of the image's darkest pixel.
int darkest(const QImage& image)
{
    int value = 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            value = std::min(value, qGray(image.pixel(x, y)));
        }
    }
    return value;
}

class Controls : public support::QtProgram {
protected:
    std::shared_ptr<platform::Window> window = shown("WifiSetupViewController");
    platform::View& view = *window->view();
    platform::Button& button = view.button("saveSSIDButton");
    QWidget& pushed = widget<QWidget>(view, "saveSSIDButton");
    int presses = 0;
};

TEST_F(Controls, ButtonTellsOfAClickAKeyAndAPressOverTheBus)
{
    const platform::Control* sender = nullptr;
    button.onPress([&](platform::Control& pressed) {
        sender = &pressed;
        ++presses;
    });

    QTest::mouseClick(&pushed, Qt::LeftButton);
    QTest::keyClick(&pushed, Qt::Key_Space);
    pressOverTheBus(pushed);

    EXPECT_TRUE(spinUntil([&] { return presses == 3; }));
    EXPECT_EQ(sender, &button);
}

TEST_F(Controls, ButtonIsNotPressedWhileItIsDisabled)
{
    button.onPress([&](platform::Control&) { ++presses; });
    button.setEnabled(false);

    QTest::mouseClick(&pushed, Qt::LeftButton);
    pressOverTheBus(pushed);

    EXPECT_EQ(presses, 0);
    EXPECT_FALSE(button.isEnabled());
}

TEST_F(Controls, ButtonKeepsOneActionTheLastOneGiven)
{
    button.onPress([&](platform::Control&) { presses += 100; });
    button.onPress([&](platform::Control&) { ++presses; });

    QTest::mouseClick(&pushed, Qt::LeftButton);

    EXPECT_EQ(presses, 1);
}

TEST_F(Controls, ActionThatThrowsIsWrittenToTheLogAndLifeGoesOn)
{
    button.onPress([&](platform::Control&) {
        ++presses;
        throw std::runtime_error("broken");
    });

    QTest::mouseClick(&pushed, Qt::LeftButton);
    QTest::mouseClick(&pushed, Qt::LeftButton);

    EXPECT_EQ(presses, 2);
    EXPECT_THAT(log.lines(), ElementsAre("Uncaught exception: broken", "Uncaught exception: broken"));
}

TEST_F(Controls, ActionMayDropTheWindowThatItWasPressedIn)
{
    button.onPress([&](platform::Control&) {
        ++presses;
        window.reset();
    });

    QTest::mouseClick(&pushed, Qt::LeftButton);

    EXPECT_EQ(presses, 1);
    runQueue();
}

TEST_F(Controls, ReturnPressesTheDefaultButtonOfTheWindow)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress([&](platform::Control&) { ++presses; });
    auto& field = widget<QWidget>(*login->view(), "password");
    field.setFocus();

    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClick(&field, Qt::Key_Enter);

    EXPECT_EQ(presses, 2);
}

TEST_F(Controls, ReturnPressesTheButtonWithTheFocusRatherThanTheDefaultOne)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress([&](platform::Control&) { presses += 100; });
    login->view()->button("registerVorranoButton").onPress([&](platform::Control&) { ++presses; });
    auto& other = widget<QWidget>(*login->view(), "registerVorranoButton");
    other.setFocus();

    QTest::keyClick(&other, Qt::Key_Return);

    EXPECT_EQ(presses, 1);
}

TEST_F(Controls, HiddenAndEnabledAreTheControlsOwn)
{
    auto& label = view.label("connectionNoticeLabel");
    EXPECT_FALSE(label.isHidden());

    label.setHidden(true);
    EXPECT_TRUE(label.isHidden());
    EXPECT_FALSE(widget<QWidget>(view, "connectionNoticeLabel").isVisible());

    frame(*window).setEnabled(false);
    EXPECT_TRUE(button.isEnabled());
}

TEST_F(Controls, LabelShowsAnotherTextAsItIs)
{
    view.label("connectionNoticeLabel").setText("<b>No</b> Vorrano & no cable");

    const auto& shown = widget<QLabel>(view, "connectionNoticeLabel");
    EXPECT_EQ(shown.text(), "<b>No</b> Vorrano & no cable");
    EXPECT_EQ(shown.textFormat(), Qt::PlainText);
}

TEST_F(Controls, ProgressBarShowsHowMuchIsDone)
{
    const auto utilities = shown("UtilitiesViewController");
    auto& bar = utilities->view()->progressBar("uploadProgressBar");
    auto& widgetOfBar = widget<QProgressBar>(*utilities->view(), "uploadProgressBar");

    bar.setProgress(512, 2000);
    EXPECT_EQ(widgetOfBar.value(), 512);
    EXPECT_EQ(widgetOfBar.maximum(), 2000);

    bar.setProgress(1, 2);
    EXPECT_EQ(widgetOfBar.value(), 1);
    EXPECT_EQ(widgetOfBar.maximum(), 2);
}

TEST_F(Controls, ProgressBarTellsTheBusHowMuchIsDone)
{
    const auto utilities = shown("UtilitiesViewController");
    auto& widgetOfBar = widget<QProgressBar>(*utilities->view(), "uploadProgressBar");

    utilities->view()->progressBar("uploadProgressBar").setProgress(512, 2000);

    auto* const accessible = QAccessible::queryAccessibleInterface(&widgetOfBar);
    EXPECT_EQ(accessible->role(), QAccessible::ProgressBar);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Firmware upload");
    EXPECT_EQ(accessible->valueInterface()->currentValue().toInt(), 512);
    EXPECT_EQ(accessible->valueInterface()->maximumValue().toInt(), 2000);
}

TEST_F(Controls, LinesThatAreReadOutAreNotificationsToTheBus)
{
    const auto expectNotification = [this](const char* layout, const char* name) {
        const auto screen = layouts.loadView(layout);
        auto& label = widget<QLabel>(*screen, name);

        screen->label(name).setText("The kettle is in use.");

        auto* const accessible = QAccessible::queryAccessibleInterface(&label);
        EXPECT_EQ(accessible->role(), QAccessible::Notification) << layout << " " << name;
        EXPECT_EQ(accessible->text(QAccessible::Name), "The kettle is in use.") << layout << " " << name;
    };

    expectNotification("RegisterVorranoViewController", "connectionNoticeLabel");
    expectNotification("WifiSetupViewController", "connectionNoticeLabel");
    expectNotification("UtilitiesViewController", "connectionNoticeLabel");
    expectNotification("UtilitiesViewController", "uploadProgressLabel");
}

TEST_F(Controls, ConnectionNoticeStaysLegibleOnADimmedScreen)
{
    for (const auto* const layout :
         {"RegisterVorranoViewController", "WifiSetupViewController", "UtilitiesViewController"}) {
        const auto screen = layouts.loadView(layout);
        screen->label("connectionNoticeLabel").setText("No Vorrano");
        auto& root = dynamic_cast<QtView&>(*screen).root();
        root.resize(root.sizeHint());
        root.show();
        const QRect place = widget<QLabel>(*screen, "connectionNoticeLabel").geometry();
        const int before = darkest(root.grab(place).toImage());

        screen->setAlpha(0.3);

        EXPECT_EQ(darkest(root.grab(place).toImage()), before) << layout;
    }
}

TEST_F(Controls, ProgressOfAnUploadStaysLegibleInsideADimmedBox)
{
    const auto screen = layouts.loadView("UtilitiesViewController");
    screen->progressBar("uploadProgressBar").setProgress(1, 2);
    screen->label("uploadProgressLabel").setText("Line 1 of 2");
    auto& root = dynamic_cast<QtView&>(*screen).root();
    root.resize(root.sizeHint());
    root.show();
    const auto picture = [&](const char* name) {
        const auto& control = widget<QWidget>(*screen, name);
        // Without the rounded corners, through which the dimmed box is seen.
        return root.grab(QRect(control.mapTo(&root, QPoint()), control.size()).adjusted(2, 2, -2, -2)).toImage();
    };
    const QImage bar = picture("uploadProgressBar");
    const int text = darkest(picture("uploadProgressLabel"));

    screen->setAlpha(0.3);

    EXPECT_EQ(picture("uploadProgressBar"), bar);
    EXPECT_EQ(darkest(picture("uploadProgressLabel")), text);
}

// While the screen is busy the sign that turns is painted many times a second.
TEST_F(Controls, ALineThatIsNotDimmedIsPaintedOnlyWithItsOwnPlace)
{
    class Line : public QWidget {
    public:
        using QWidget::QWidget;
        int paintings = 0;

    protected:
        void paintEvent(QPaintEvent*) override { ++paintings; }
    };
    QWidget screen;
    screen.resize(200, 200);
    auto& line = *new Line(&screen);
    line.setGeometry(0, 0, 200, 20);
    Dimmer dimmer(screen, {&line});
    dimmer.setStrength(0.7);
    screen.show();
    ASSERT_TRUE(spinUntil([&] { return line.paintings > 0; }));
    runQueue();
    const int before = line.paintings;

    dimmer.repaint(0, 100, 50, 50);
    EXPECT_EQ(line.paintings, before);

    dimmer.repaint(0, 10, 50, 50);
    EXPECT_GT(line.paintings, before);
}

TEST_F(Controls, ALineThatIsNotDimmedStandsOnTheDimmedBackground)
{
    const auto setup = shown(support::kSetup);
    const auto screen = layouts.loadView("UtilitiesViewController");
    setup->view()->tabView("setupTabView").setView(0, screen);
    auto& label = widget<QLabel>(*screen, "uploadProgressLabel");
    label.setText(QStringLiteral("Line 1"));
    runQueue();

    screen->setAlpha(0.3);

    const QRect place(label.mapTo(&frame(*setup), QPoint()), label.size());
    const QImage picture = frame(*setup).grab().toImage();
    EXPECT_EQ(picture.pixel(place.right() - 1, place.center().y()),
              picture.pixel(place.right() + 2, place.center().y()));
}

TEST_F(Controls, SpinnerIsHiddenAtFirstAndTurnsInTheMiddleOfItsScreen)
{
    auto& spinner = view.progressIndicator("loginProgressIndicator");
    auto& turning = widget<Spinner>(view, "loginProgressIndicator");
    EXPECT_TRUE(spinner.isHidden());
    EXPECT_FALSE(spinner.isAnimating());

    spinner.setHidden(false);
    spinner.startAnimation();

    EXPECT_TRUE(spinner.isAnimating());
    EXPECT_EQ(turning.geometry().center(), turning.parentWidget()->rect().center());
    const QImage first = turning.grab().toImage();
    EXPECT_TRUE(spinUntil([&] { return turning.grab().toImage() != first; }));
}

TEST_F(Controls, SpinnerStandsStillWhenItWasStopped)
{
    auto& spinner = view.progressIndicator("loginProgressIndicator");
    spinner.setHidden(false);
    spinner.startAnimation();

    spinner.stopAnimation();
    spinner.setHidden(true);

    EXPECT_FALSE(spinner.isAnimating());
    EXPECT_TRUE(spinner.isHidden());
}

TEST_F(Controls, SpinnerIsAboveTheDimmedScreenAndFollowsItsSize)
{
    auto& spinner = view.progressIndicator("loginProgressIndicator");
    auto& turning = widget<Spinner>(view, "loginProgressIndicator");
    view.setAlpha(0.3);
    spinner.setHidden(false);

    frame(*window).resize(frame(*window).size() + QSize(60, 40));
    EXPECT_TRUE(spinUntil([&] { return turning.geometry().center() == turning.parentWidget()->rect().center(); }));

    view.setAlpha(0.3);
    EXPECT_EQ(turning.parentWidget()->children().last(), &turning);
}

TEST_F(Controls, AlphaFadesTheScreenTowardsTheWindowsColourAndBack)
{
    auto& root = dynamic_cast<QtView&>(view).root();
    view.label("connectionNoticeLabel").setHidden(true);
    const int before = darkest(root.grab().toImage());
    EXPECT_EQ(view.alpha(), 1.0);

    view.setAlpha(0.3);
    EXPECT_EQ(view.alpha(), 0.3);
    EXPECT_GT(darkest(root.grab().toImage()), before + 100);

    view.setAlpha(1.0);
    EXPECT_EQ(darkest(root.grab().toImage()), before);
}

TEST_F(Controls, DimmedScreenTakesInputLikeAnyOther)
{
    button.onPress([&](platform::Control&) { ++presses; });
    view.setAlpha(0.3);

    auto& root = dynamic_cast<QtView&>(view).root();
    const QPoint place = pushed.mapTo(&root, pushed.rect().center());
    EXPECT_EQ(root.childAt(place), &pushed);
    QTest::mouseClick(&pushed, Qt::LeftButton);

    EXPECT_EQ(presses, 1);
}

TEST_F(Controls, ShowBoxUnmasksItsFieldAndMasksItAgain)
{
    auto& field = widget<QLineEdit>(view, "password");
    auto& box = widget<QCheckBox>(view, "show6");

    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(field.echoMode(), QLineEdit::Normal);

    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_EQ(field.echoMode(), QLineEdit::Password);
    EXPECT_EQ(widget<QLineEdit>(view, "wepKeyField").echoMode(), QLineEdit::Password);
}

TEST_F(Controls, NothingIsPressedNorUnmaskedWhileTheGateIsShut)
{
    button.onPress([&](platform::Control&) { ++presses; });
    auto& box = widget<QCheckBox>(view, "show6");
    int clicks = 0;
    QObject::connect(qobject_cast<QAbstractButton*>(&pushed), &QAbstractButton::clicked, [&] { ++clicks; });
    auto shut = gate.shut();

    pressOverTheBus(pushed);
    QTest::mouseClick(&pushed, Qt::LeftButton);
    pressOverTheBus(box);

    EXPECT_EQ(presses, 0);
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(widget<QLineEdit>(view, "password").echoMode(), QLineEdit::Password);
    shut.reset();
    // By the mouse and, a moment later, over the bus.
    EXPECT_TRUE(spinUntil([&] { return clicks == 2; }));
    EXPECT_EQ(presses, 0);
    pressOverTheBus(pushed);
    EXPECT_TRUE(spinUntil([&] { return presses == 1; }));
}

} // namespace
} // namespace vorrano::qt
