#include "QtProgram.h"

#include <QAccessible>
#include <QLineEdit>

namespace vorrano::qt {
namespace {

class FieldOnTheBus : public support::QtProgram {
protected:
    FieldOnTheBus() { edit.setText(QStringLiteral("kettle")); }

    QAccessibleTextInterface& text() { return *field.textInterface(); }

    std::pair<int, int> selection()
    {
        std::pair<int, int> places;
        text().selection(0, &places.first, &places.second);
        return places;
    }

    std::shared_ptr<platform::Window> window = shown("RegisterVorranoViewController");
    QLineEdit& edit = widget<QLineEdit>(*window->view(), "vorranoName");
    QAccessibleInterface& field = *QAccessible::queryAccessibleInterface(&edit);
};

TEST_F(FieldOnTheBus, HasItsTextInOneRun)
{
    for (const int offset : {0, 3, 6}) {
        int start = -1;
        int end = -1;
        EXPECT_TRUE(text().attributes(offset, &start, &end).isEmpty());
        EXPECT_EQ(std::pair(start, end), std::pair(0, 6)) << offset;
    }
}

TEST_F(FieldOnTheBus, SaysWhatItHoldsAndWhatItIs)
{
    EXPECT_EQ(field.role(), QAccessible::EditableText);
    EXPECT_EQ(field.text(QAccessible::Name), "Name of your Vorrano");
    EXPECT_EQ(field.text(QAccessible::Description), "For example: Kitchen");
    EXPECT_EQ(field.text(QAccessible::Value), "kettle");
    EXPECT_TRUE(field.state().editable);
    EXPECT_TRUE(field.state().selectableText);
    EXPECT_FALSE(field.state().readOnly);
    EXPECT_FALSE(field.state().passwordEdit);
    EXPECT_EQ(text().characterCount(), 6);
    EXPECT_EQ(text().text(1, 4), "ett");
    EXPECT_EQ(text().text(4, 1), "");

    edit.setReadOnly(true);
    EXPECT_TRUE(field.state().readOnly);
    EXPECT_FALSE(field.state().editable);
}

TEST_F(FieldOnTheBus, KeepsAPasswordToItself)
{
    edit.setEchoMode(QLineEdit::Password);

    EXPECT_TRUE(field.state().passwordEdit);
    EXPECT_EQ(text().characterCount(), 6);
    EXPECT_EQ(text().text(0, 6), "");
    EXPECT_EQ(field.text(QAccessible::Value).size(), 6);
    EXPECT_FALSE(field.text(QAccessible::Value).contains(u'k'));
    int start = 0;
    int end = 0;
    EXPECT_EQ(text().textAtOffset(1, QAccessible::LineBoundary, &start, &end), "");
    EXPECT_EQ(text().textAtOffset(1, QAccessible::CharBoundary, &start, &end), "");
}

TEST_F(FieldOnTheBus, GivesItsLineWordsAndCharacters)
{
    edit.setText(QStringLiteral("copper kettle"));
    int start = 0;
    int end = 0;

    EXPECT_EQ(text().textAtOffset(3, QAccessible::LineBoundary, &start, &end), "copper kettle");
    EXPECT_EQ(text().textAtOffset(8, QAccessible::WordBoundary, &start, &end), "kettle");
    EXPECT_EQ(std::pair(start, end), std::pair(7, 13));
    EXPECT_EQ(text().textAtOffset(1, QAccessible::CharBoundary, &start, &end), "o");
}

TEST_F(FieldOnTheBus, MovesItsCursorAndItsSelection)
{
    text().setCursorPosition(2);
    EXPECT_EQ(edit.cursorPosition(), 2);
    EXPECT_EQ(text().cursorPosition(), 2);
    EXPECT_EQ(text().selectionCount(), 0);
    EXPECT_EQ(selection(), std::pair(0, 0));

    text().addSelection(1, 4);
    EXPECT_EQ(edit.selectedText(), "ett");
    EXPECT_EQ(text().selectionCount(), 1);
    EXPECT_EQ(selection(), std::pair(1, 4));

    text().setSelection(0, 3, 5);
    EXPECT_EQ(edit.selectedText(), "tl");
    text().removeSelection(0);
    EXPECT_FALSE(edit.hasSelectedText());

    text().scrollToSubstring(1, 3);
    EXPECT_EQ(edit.cursorPosition(), 1);
}

TEST_F(FieldOnTheBus, TakesText)
{
    auto& editable = *field.editableTextInterface();

    editable.insertText(6, QStringLiteral("s"));
    EXPECT_EQ(edit.text(), "kettles");
    editable.deleteText(0, 3);
    EXPECT_EQ(edit.text(), "tles");
    editable.replaceText(1, 4, QStringLiteral("ea"));
    EXPECT_EQ(edit.text(), "tea");
    field.setText(QAccessible::Value, QStringLiteral("pot"));
    EXPECT_EQ(edit.text(), "pot");
}

// A negative end means the end of the text to many who ask.
TEST_F(FieldOnTheBus, TakesPlacesOutsideOfItsTextForItsEnds)
{
    auto& editable = *field.editableTextInterface();

    text().setSelection(0, 2, -1);
    EXPECT_EQ(edit.selectedText(), "ttle");
    text().addSelection(-3, 99);
    EXPECT_EQ(edit.selectedText(), "kettle");
    EXPECT_EQ(text().text(2, -1), "ttle");
    EXPECT_EQ(text().text(-2, 3), "ket");

    editable.deleteText(5, 2);
    EXPECT_EQ(edit.text(), "kettle");
    editable.deleteText(4, -1);
    EXPECT_EQ(edit.text(), "kett");
    editable.insertText(99, QStringLiteral("y"));
    EXPECT_EQ(edit.text(), "ketty");
    editable.replaceText(-5, 99, QStringLiteral("pot"));
    EXPECT_EQ(edit.text(), "pot");
    editable.deleteText(0, -1);
    EXPECT_EQ(edit.text(), "");
}

TEST_F(FieldOnTheBus, KnowsWhereItsCharactersAre)
{
    const QRect place(edit.mapToGlobal(QPoint()), edit.size());
    int after = place.left();
    for (int offset = 0; offset < 6; ++offset) {
        const QRect character = text().characterRect(offset);
        EXPECT_TRUE(place.contains(character.center())) << offset;
        EXPECT_GE(character.left(), after) << offset;
        EXPECT_EQ(text().offsetAtPoint(character.topLeft() + QPoint(1, character.height() / 2)), offset);
        after = character.left() + 1;
    }
}

} // namespace
} // namespace vorrano::qt
