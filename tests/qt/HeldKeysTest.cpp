#include "QtProgram.h"

#include "platform/qt/HeldKeys.h"
#include "platform/qt/TabWidget.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcutEvent>
#include <QWindow>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vorrano::qt {
namespace {

using support::kNotice;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

struct Key {
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    std::string text{};
};

// An event of a keyboard that Qt does not mark as a repetition.
class Unmarked : public QKeyEvent {
public:
    Unmarked(QEvent::Type type, const Key& key, ulong time, quint32 scanCode = 36)
        : QKeyEvent(type, key.key, key.modifiers, scanCode, 0, 0, QString::fromStdString(key.text))
    {
        setTimestamp(time);
    }
};

// Counts how often a widget goes from the screen.
class Hides : public QObject {
public:
    explicit Hides(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        times += event->type() == QEvent::Hide ? 1 : 0;
        return false;
    }

    int times = 0;
};

// What the window system sends, to whatever window has the keyboard.
class HeldKey : public support::QtProgram {
protected:
    static constexpr int kRepetitions = 5;

    static void press(const Key& key) { send(QEvent::KeyPress, key, false); }
    static void release(const Key& key) { send(QEvent::KeyRelease, key, false); }
    static void click(const Key& key)
    {
        press(key);
        release(key);
    }
    static void repeat(const Key& key)
    {
        for (int times = 0; times < kRepetitions; ++times) {
            send(QEvent::KeyRelease, key, true);
            send(QEvent::KeyPress, key, true);
        }
    }
    static void hold(const Key& key)
    {
        press(key);
        repeat(key);
    }

    // The same repetitions as they come when Qt did not see that they are some.
    static void repeatUnmarked(const Key& key)
    {
        for (ulong time = 1; time <= kRepetitions; ++time) {
            Unmarked released(QEvent::KeyRelease, key, time);
            Unmarked pressed(QEvent::KeyPress, key, time);
            QCoreApplication::sendEvent(windowWithTheKeyboard(), &released);
            QCoreApplication::sendEvent(windowWithTheKeyboard(), &pressed);
        }
    }

    // The platform without a window manager leaves the keyboard with nobody when a dialog goes.
    static void giveKeyboard(QWidget& window)
    {
        window.activateWindow();
        EXPECT_TRUE(spinUntil([&] { return window.isActiveWindow(); }));
    }

    // Gives the keyboard to a control of the window.
    void focus(platform::Window& window, const char* name)
    {
        widget<QWidget>(*window.view(), name).setFocus();
        EXPECT_TRUE(spinUntil([&] { return widget<QWidget>(*window.view(), name).hasFocus(); }));
    }

    platform::Action count()
    {
        return [this](platform::Control&) { ++presses; };
    }

    int presses = 0;

private:
    static QWindow* windowWithTheKeyboard()
    {
        auto* const window = QGuiApplication::focusWindow();
        return window == nullptr ? throw std::logic_error("no window has the keyboard") : window;
    }

    static void send(QEvent::Type type, const Key& key, bool repeats)
    {
        qt_handleKeyEvent(windowWithTheKeyboard(), type, key.key, key.modifiers, QString::fromStdString(key.text),
                          repeats);
    }
};

const Key kReturn{Qt::Key_Return};
const Key kEnter{Qt::Key_Enter, Qt::KeypadModifier};
const Key kEscape{Qt::Key_Escape};
const Key kSpace{Qt::Key_Space, Qt::NoModifier, " "};
const Key kAltA{Qt::Key_A, Qt::AltModifier, "a"};
const Key kAltS{Qt::Key_S, Qt::AltModifier, "s"};

TEST_F(HeldKey, PressesTheDefaultButtonOnce)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress(count());
    focus(*login, "password");

    for (const auto& key : {kReturn, kEnter}) {
        presses = 0;
        hold(key);
        EXPECT_EQ(presses, 1) << key.key;

        release(key);
        click(key);
        EXPECT_EQ(presses, 2) << key.key;
    }
}

TEST_F(HeldKey, PressesTheButtonWithTheKeyboardOnce)
{
    const auto login = shown("LoginViewController");
    login->view()->button("registerVorranoButton").onPress(count());
    focus(*login, "registerVorranoButton");

    for (const auto& key : {kReturn, kEnter, kSpace}) {
        presses = 0;
        hold(key);
        release(key);

        EXPECT_EQ(presses, 1) << key.key;
    }
}

TEST_F(HeldKey, PressesTheButtonOfItsMnemonicOnce)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress(count());
    // A mnemonic presses the button down for a moment.
    const auto& button = widget<QAbstractButton>(*login->view(), "loginButton");

    press(kAltS);
    EXPECT_TRUE(spinUntil([&] { return presses == 1; }));
    repeat(kAltS);
    EXPECT_FALSE(button.isDown());

    release(kAltS);
    click(kAltS);
    EXPECT_TRUE(spinUntil([&] { return presses == 2; }));
}

TEST_F(HeldKey, ActsOnceWhereItsRepetitionsAreNotMarkedAsSuch)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress(count());
    for (const auto& [key, control] : {std::pair(kReturn, "password"), {kSpace, "loginButton"}}) {
        focus(*login, control);
        presses = 0;

        press(key);
        repeatUnmarked(key);
        release(key);

        EXPECT_EQ(presses, 1) << key.key;
    }
}

TEST_F(HeldKey, TriggersNoShortcutWhereItsRepetitionsAreNotMarkedAsSuch)
{
    HeldKeys keys;
    const QShortcutEvent shortcut(QKeySequence(QStringLiteral("Alt+S")), 1);
    const auto holdsBackAt = [&](ulong time) {
        const bool press = keys.holdsBack(*qApp, Unmarked(QEvent::ShortcutOverride, kAltS, time));
        return std::pair(press, keys.holdsBack(*qApp, shortcut));
    };
    EXPECT_THAT(holdsBackAt(1), Pair(false, false));

    EXPECT_FALSE(keys.holdsBack(*qApp, Unmarked(QEvent::KeyRelease, kAltS, 2)));
    EXPECT_THAT(holdsBackAt(2), Pair(true, true));

    EXPECT_FALSE(keys.holdsBack(*qApp, Unmarked(QEvent::KeyRelease, kAltS, 3)));
    EXPECT_THAT(holdsBackAt(4), Pair(false, false));
}

TEST_F(HeldKey, IsNotTheOneThatIsPressedAtTheTimeOfItsRelease)
{
    HeldKeys keys;

    EXPECT_FALSE(keys.holdsBack(*qApp, Unmarked(QEvent::KeyRelease, kSpace, 1, 65)));
    EXPECT_FALSE(keys.holdsBack(*qApp, Unmarked(QEvent::KeyPress, kReturn, 1, 36)));
}

// Qt's accessibility takes each event of a key, asks the screen reader, and sends a copy without the time.
TEST_F(HeldKey, IsKnownAlsoWhileAScreenReaderIsAskedAboutEachKey)
{
    constexpr ulong kOfACopy = 0;
    HeldKeys keys;
    const auto pressIsHeldBack = [&](ulong time) {
        return keys.holdsBack(*qApp, Unmarked(QEvent::KeyPress, kReturn, time));
    };
    const auto release = [&](ulong time) {
        EXPECT_FALSE(keys.holdsBack(*qApp, Unmarked(QEvent::KeyRelease, kReturn, time)));
    };
    for (const ulong time : {10, 20}) {
        EXPECT_FALSE(pressIsHeldBack(time));
        EXPECT_FALSE(pressIsHeldBack(kOfACopy)) << time;
        release(time + 5);
        release(kOfACopy);
    }

    EXPECT_TRUE(pressIsHeldBack(25));
}

// The window hears of the key with its time, the control only of a copy without.
TEST_F(HeldKey, IsHeldBackAtTheWindowForTheControlWithTheKeyboard)
{
    const auto login = shown("LoginViewController");
    focus(*login, "loginButton");
    HeldKeys keys;
    QWindow& window = *frame(*login).windowHandle();
    EXPECT_FALSE(keys.holdsBack(window, Unmarked(QEvent::KeyPress, kSpace, 10)));
    EXPECT_FALSE(keys.holdsBack(window, Unmarked(QEvent::KeyRelease, kSpace, 20)));
    EXPECT_TRUE(keys.holdsBack(window, Unmarked(QEvent::KeyPress, kSpace, 20)));

    focus(*login, "password");
    EXPECT_FALSE(keys.holdsBack(window, Unmarked(QEvent::KeyRelease, kSpace, 30)));
    EXPECT_FALSE(keys.holdsBack(window, Unmarked(QEvent::KeyPress, kSpace, 30)));
}

TEST_F(HeldKey, TogglesACheckBoxOnce)
{
    const auto login = shown("LoginViewController");
    auto& box = *frame(*login).findChild<QCheckBox*>();
    box.setFocus();

    hold(kSpace);
    release(kSpace);

    EXPECT_TRUE(box.isChecked());
}

TEST_F(HeldKey, LeavesAnAlertUpUntilItIsPressedAnew)
{
    const auto window = shown("WifiSetupViewController");
    for (const auto& key : {kReturn, kEnter, kEscape, kSpace}) {
        bool stayed = false;
        giveKeyboard(frame(*window));
        whileUp([&](QDialog& box) {
            giveKeyboard(box);
            repeat(key);
            repeatUnmarked(key);
            stayed = box.isVisible();
            release(key);
            click(key);
        });

        press(key);
        EXPECT_EQ(alerts.runModal(kNotice), platform::kAlertFirstButton);

        EXPECT_TRUE(stayed) << key.key;
    }
}

TEST_F(HeldKey, LeavesASheetUpUntilItIsPressedAnew)
{
    const auto login = shown("LoginViewController");
    for (const auto& [key, button] :
         {std::pair(kReturn, "buttonAccept"), {kAltA, "buttonAccept"}, {kEscape, "buttonCancel"}}) {
        presses = 0;
        giveKeyboard(frame(*login));
        const auto sheet = layouts.loadWindow("EULAWindowViewController");
        sheet->view()->button(button).onPress(count());

        press(key);
        login->beginSheet(sheet, {});
        giveKeyboard(frame(*sheet));
        repeat(key);
        repeatUnmarked(key);
        EXPECT_FALSE(widget<QAbstractButton>(*sheet->view(), button).isDown());
        EXPECT_EQ(presses, 0) << button;
        release(key);
        click(key);

        EXPECT_TRUE(spinUntil([&] { return presses == 1; })) << button;
        login->endSheet(*sheet, 0);
    }
}

TEST_F(HeldKey, LeavesTheOpenPanelsOwnMessageUp)
{
    bool stayed = false;
    whileUp([&](QDialog& panel) {
        giveKeyboard(panel);
        auto& name = *panel.findChild<QLineEdit*>();
        name.setFocus();
        name.setText(QStringLiteral("there is no such file"));
        whileUp([&](QDialog& message) {
            EXPECT_NE(&message, &panel);
            giveKeyboard(message);
            repeat(kReturn);
            stayed = message.isVisible();
            release(kReturn);
            click(kReturn);
        });
        press(kReturn);
        panel.reject();
    });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());

    EXPECT_TRUE(stayed);
}

TEST_F(HeldKey, AnswersNoMessageByTheLetterOfAButton)
{
    QMessageBox message(QMessageBox::Question, "Delete", "Delete it?", QMessageBox::Yes | QMessageBox::No);
    auto& yes = *message.button(QMessageBox::Yes);
    yes.setText("&Yes");
    const Key letter{Qt::Key_Y, Qt::NoModifier, "y"};
    message.show();
    giveKeyboard(message);

    repeat(letter);
    EXPECT_FALSE(yes.isDown());
    press(letter);
    EXPECT_TRUE(yes.isDown());
}

TEST_F(HeldKey, ChoosesOneTabWithCtrlTab)
{
    const auto setup = shown("SetupMenuViewController");
    auto& tabs = setup->view()->tabView("setupTabView");
    std::vector<int> chosen;
    tabs.onSelect([&] { chosen.push_back(tabs.selectedIndex()); });
    widget<TabWidget>(*setup->view(), "setupTabView").bar().setFocus();

    hold({Qt::Key_Tab, Qt::ControlModifier});

    EXPECT_THAT(chosen, ElementsAre(1));
}

TEST_F(HeldKey, LeavesThePickListOpenThatItOpened)
{
    const auto window = shown("WifiSetupViewController");
    window->view()->popUpButton("securityTypeButton").addItems({"Open", "WPA2"});
    for (const auto& key : {kSpace, Key{Qt::Key_F4}, Key{Qt::Key_Down, Qt::AltModifier}}) {
        focus(*window, "securityTypeButton");

        press(key);
        QWidget* const list = QApplication::activePopupWidget();
        ASSERT_NE(list, nullptr) << key.key;
        const Hides hides(*list);

        repeat(key);
        EXPECT_EQ(hides.times, 0) << key.key;

        list->close();
        release(key);
    }
}

TEST_F(HeldKey, GoesOnTyping)
{
    const auto login = shown("LoginViewController");
    for (const auto* const name : {"accountId", "password"}) {
        focus(*login, name);

        hold({Qt::Key_X, Qt::NoModifier, "x"});
        hold(kSpace);
        repeatUnmarked(kSpace);
        hold({Qt::Key_Backspace});

        EXPECT_EQ(login->view()->textField(name).text(), "xxxxxx     ") << name;
    }
}

TEST_F(HeldKey, GoesOnMoving)
{
    const auto login = shown("LoginViewController");
    focus(*login, "accountId");
    auto& field = widget<QLineEdit>(*login->view(), "accountId");
    login->view()->textField("accountId").setText("account");
    field.setCursorPosition(7);

    int moves = 0;
    QObject::connect(qApp, &QApplication::focusChanged, &field, [&] { ++moves; });

    hold({Qt::Key_Left});
    EXPECT_EQ(field.cursorPosition(), 7 - 1 - kRepetitions);

    hold({Qt::Key_Tab});
    EXPECT_EQ(moves, 1 + kRepetitions);
}

TEST_F(HeldKey, ActsAgainAfterAReleaseThatAnotherApplicationGot)
{
    const auto login = shown("LoginViewController");
    login->view()->button("loginButton").onPress(count());
    focus(*login, "password");
    hold(kReturn);

    press(kReturn);

    EXPECT_EQ(presses, 2);
}

TEST_F(HeldKey, HindersNoPressOverTheBus)
{
    const auto login = shown("LoginViewController");
    login->view()->button("registerVorranoButton").onPress(count());
    focus(*login, "password");
    hold(kReturn);

    pressOverTheBus(widget<QWidget>(*login->view(), "registerVorranoButton"));

    EXPECT_TRUE(spinUntil([&] { return presses == 1; }));
}

} // namespace
} // namespace vorrano::qt
