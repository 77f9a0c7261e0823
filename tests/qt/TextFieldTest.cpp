#include "QtProgram.h"

#include "platform/qt/QtTextField.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QtTest/QTest>

#include <gmock/gmock.h>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TextField : public support::QtProgram {
protected:
    TextField()
    {
        edit.setFocus();
        field.onChange([this](platform::Control& sender) {
            EXPECT_EQ(&sender, &field);
            heard.push_back(field.text());
        });
    }

    std::shared_ptr<platform::Window> window = shown("RegisterVorranoViewController");
    platform::TextField& field = window->view()->textField("vorranoName");
    QLineEdit& edit = widget<QLineEdit>(*window->view(), "vorranoName");
    std::vector<std::string> heard;
};

TEST_F(TextField, HearsEachKey)
{
    QTest::keyClicks(&edit, QStringLiteral("ab"));

    EXPECT_THAT(heard, ElementsAre("a", "ab"));
    EXPECT_EQ(field.text(), "ab");
}

TEST_F(TextField, HearsCutAndUndo)
{
    QTest::keyClicks(&edit, QStringLiteral("ab"));
    heard.clear();

    edit.selectAll();
    edit.cut();
    edit.undo();

    EXPECT_THAT(heard, ElementsAre("", "ab"));
}

TEST_F(TextField, HearsWhatIsPastedAtOnce)
{
    QApplication::clipboard()->setText(QStringLiteral("Kitchen"));

    edit.paste();

    EXPECT_THAT(heard, ElementsAre("Kitchen"));
}

TEST_F(TextField, HearsTheInputMethod)
{
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("温度"));

    QApplication::sendEvent(&edit, &event);

    EXPECT_THAT(heard, ElementsAre("温度"));
}

TEST_F(TextField, HearsATextThatIsWrittenOverTheBus)
{
    writeOverTheBus(edit, QStringLiteral("Kitchen"));
    auto* const accessible = QAccessible::queryAccessibleInterface(&edit);
    accessible->editableTextInterface()->insertText(0, QStringLiteral("My "));

    EXPECT_THAT(heard, ElementsAre("Kitchen", "My Kitchen"));
}

TEST_F(TextField, DoesNotHearTheProgramsOwnChange)
{
    field.setText("Grüße");

    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(field.text(), "Grüße");
    EXPECT_EQ(edit.text(), QStringLiteral("Grüße"));
}

TEST_F(TextField, HandlerMayTakeCharactersOutAndIsNotHeardAgain)
{
    int calls = 0;
    field.onChange([&](platform::Control&) {
        ++calls;
        std::string text = field.text();
        std::erase(text, '/');
        field.setText(text);
    });

    QTest::keyClicks(&edit, QStringLiteral("a/b"));

    EXPECT_EQ(field.text(), "ab");
    EXPECT_EQ(calls, 3);
}

TEST_F(TextField, CursorStaysWhereThePersonExpectsItWhenCharactersAreTakenOut)
{
    field.setText("left right");
    field.onChange([&](platform::Control&) {
        std::string text = field.text();
        std::erase_if(text, [](char c) { return c == '/' || c == '#'; });
        field.setText(text);
    });
    edit.setCursorPosition(4);

    QTest::keyClicks(&edit, QStringLiteral("/"));
    EXPECT_EQ(edit.cursorPosition(), 4);

    edit.insert(QStringLiteral("#a/b#"));
    EXPECT_EQ(field.text(), "leftab right");
    EXPECT_EQ(edit.cursorPosition(), 6);
}

TEST_F(TextField, UndoesWhatChangesWhileTheGateIsShut)
{
    field.setText("Kitchen");
    edit.setCursorPosition(3);
    auto shut = gate.shut();

    writeOverTheBus(edit, QStringLiteral("Cellar"));
    QTest::keyClicks(&edit, QStringLiteral("x"));

    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(field.text(), "Kitchen");
    EXPECT_EQ(edit.text(), QStringLiteral("Kitchen"));
    EXPECT_EQ(edit.cursorPosition(), 3);
    shut.reset();
    writeOverTheBus(edit, QStringLiteral("Cellar"));
    EXPECT_THAT(heard, ElementsAre("Cellar"));
}

TEST_F(TextField, HandlerMayDropTheWindow)
{
    bool heardOnce = false;
    field.onChange([&](platform::Control&) {
        heardOnce = true;
        window.reset();
    });

    QTest::keyClicks(&edit, QStringLiteral("a"));

    EXPECT_TRUE(heardOnce);
    runQueue();
}

struct Move {
    const char* what;
    const char* before;
    const char* after;
    int cursor;
    int expected;
};

class CursorAfterChange : public ::testing::TestWithParam<Move> {};

TEST_P(CursorAfterChange, IsBehindTheSameCharacter)
{
    const auto& move = GetParam();

    EXPECT_EQ(cursorAfterChange(QString::fromLatin1(move.before), QString::fromLatin1(move.after), move.cursor),
              move.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, CursorAfterChange,
    ::testing::Values(Move{"TakenOutBehind", "ab/", "ab", 2, 2}, Move{"TakenOutBefore", "/ab", "ab", 2, 1},
                      Move{"TakenOutAtTheCursor", "a/b", "ab", 2, 1}, Move{"AtTheEnd", "a/b/", "ab", 4, 2},
                      Move{"Trimmed", "  ab ", "ab", 3, 1}, Move{"Cleared", "ab", "", 1, 0},
                      Move{"Replaced", "abc", "xyz", 1, 1}, Move{"ReplacedByAShorterOne", "abcdef", "xy", 4, 2},
                      Move{"ReplacedAtTheEnd", "abc", "longer", 3, 6}, Move{"AtTheBeginning", "abc", "bc", 0, 0}),
    [](const auto& test) { return std::string(test.param.what); });

} // namespace
} // namespace vorrano::qt
