#include "QtProgram.h"

#include <QAccessible>
#include <QPushButton>
#include <QWindow>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <stdexcept>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Windows : public support::QtProgram {
protected:
    std::shared_ptr<platform::Window> loaded(const char* layout) { return layouts.loadWindow(layout); }

    void beginSheet(platform::Window& parent, const std::shared_ptr<platform::Window>& sheet)
    {
        parent.beginSheet(sheet, [this](int code) { codes.push_back(code); });
    }

    // Checks what Qt passes to the window system about a dialog: a dialog without minimise and maximise, modal, over
    // its window. The same on X11 and on Wayland.
    static void expectDialogOver(const QWidget& dialog, const QWidget& window)
    {
        const QWindow& native = *dialog.windowHandle();
        EXPECT_EQ(native.type(), Qt::Dialog);
        EXPECT_EQ(native.flags() & (Qt::WindowMinMaxButtonsHint | Qt::WindowFullscreenButtonHint), Qt::WindowFlags());
        EXPECT_NE(native.modality(), Qt::NonModal);
        EXPECT_EQ(native.transientParent(), window.windowHandle());
    }

    std::vector<int> codes;
};

TEST_F(Windows, AreNotOnScreenUntilTheyAreShown)
{
    const auto window = loaded("LoginViewController");
    EXPECT_FALSE(window->isVisible());

    window->show();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(frame(*window).windowTitle(), QStringLiteral("Vorrano Setup"));

    window->close();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Windows, AreFramesOnTheBusAndSheetsDialogs)
{
    const auto role = [](platform::Window& window) {
        return QAccessible::queryAccessibleInterface(&frame(window))->role();
    };
    const auto parent = shown("LoginViewController");
    EXPECT_EQ(role(*parent), QAccessible::Window);

    const auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);

    EXPECT_EQ(role(*sheet), QAccessible::Dialog);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&dynamic_cast<QtView&>(*sheet->view()).root())->role(),
              QAccessible::Client);
}

TEST_F(Windows, SheetIsADialogOverItsParentWithoutMinimiseAndMaximise)
{
    const auto parent = shown("LoginViewController");
    const auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);

    expectDialogOver(frame(*sheet), frame(*parent));
}

TEST_F(Windows, AlertIsADialogOverItsWindowWithoutMinimiseAndMaximise)
{
    const auto window = shown("LoginViewController");
    for (const std::vector<std::string>& buttons : {std::vector<std::string>{"OK"}, {"Yes", "No"}}) {
        whileUp([&](QDialog& box) {
            expectDialogOver(box, frame(*window));
            box.findChild<QPushButton*>()->click();
        });

        alerts.runModal({"Note", buttons, "text"});
    }
}

TEST_F(Windows, KeyWindowIsNoneAtFirst)
{
    const auto window = loaded("LoginViewController");

    EXPECT_EQ(layouts.keyWindow(), nullptr);
}

TEST_F(Windows, KeyWindowIsTheActiveOne)
{
    const auto first = shown("LoginViewController");
    const auto second = shown("SetupMenuViewController");
    EXPECT_EQ(layouts.keyWindow(), second);

    frame(*first).activateWindow();
    EXPECT_TRUE(spinUntil([&] { return frame(*first).isActiveWindow(); }));

    EXPECT_EQ(layouts.keyWindow(), first);
}

TEST_F(Windows, KeyWindowIsTheOneShownLastWhereNoneIsActive)
{
    const auto first = shown("LoginViewController");
    const auto second = shown("SetupMenuViewController");
    const auto third = shown("RegisterVorranoViewController");
    first->show();
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(spinUntil([&] { return other.isActiveWindow(); }));
    EXPECT_EQ(layouts.keyWindow(), first);

    first->close();
    EXPECT_EQ(layouts.keyWindow(), third);
    third->close();
    EXPECT_EQ(layouts.keyWindow(), second);
}

TEST_F(Windows, KeyWindowIsNotAnAlert)
{
    const auto window = shown("LoginViewController");
    whileUp([&](QDialog& box) {
        EXPECT_EQ(layouts.keyWindow(), window);
        box.close();
    });

    alerts.runModal({"Note", {"OK"}, "text"});
}

TEST_F(Windows, KeyWindowIsTheSheetUntilItHasEndedThenItsParent)
{
    const auto parent = shown("LoginViewController");
    const auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);
    EXPECT_TRUE(spinUntil([&] { return frame(*sheet).isActiveWindow(); }));
    EXPECT_EQ(layouts.keyWindow(), sheet);

    parent->endSheet(*sheet, 1);

    EXPECT_EQ(layouts.keyWindow(), parent);
}

TEST_F(Windows, CompletionOfASheetComesAfterTheActionThatEndedIt)
{
    const auto parent = shown("LoginViewController");
    auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);
    EXPECT_EQ(sheet->sheetParent(), parent.get());
    bool returned = false;
    sheet->view()->button("buttonAccept").onPress([&](platform::Control&) {
        sheet->sheetParent()->endSheet(*sheet, 1);
        EXPECT_THAT(codes, IsEmpty());
        EXPECT_FALSE(sheet->isVisible());
        layouts.keyWindow()->close();
        returned = true;
    });

    QTest::mouseClick(&widget<QWidget>(*sheet->view(), "buttonAccept"), Qt::LeftButton);
    EXPECT_TRUE(returned);
    EXPECT_FALSE(parent->isVisible());
    EXPECT_TRUE(spinUntil([&] { return !codes.empty(); }));

    EXPECT_THAT(codes, ElementsAre(1));
    EXPECT_EQ(sheet->sheetParent(), nullptr);
    EXPECT_EQ(timesLastClosed, 0);
}

TEST_F(Windows, SheetIsOverTheMiddleOfItsParentAndBlocksItAlone)
{
    const auto parent = shown("LoginViewController");
    const auto other = shown("SetupMenuViewController");
    const auto sheet = loaded("EULAWindowViewController");
    int parentPressed = 0;
    int sheetPressed = 0;
    parent->view()->button("loginButton").onPress([&](platform::Control&) { ++parentPressed; });
    sheet->view()->button("buttonCancel").onPress([&](platform::Control&) { ++sheetPressed; });
    beginSheet(*parent, sheet);

    pressOverTheBus(widget<QWidget>(*parent->view(), "loginButton"));
    writeOverTheBus(widget<QWidget>(*parent->view(), "accountId"), QStringLiteral("me"));
    pressOverTheBus(widget<QWidget>(*sheet->view(), "buttonCancel"));
    EXPECT_TRUE(spinUntil([&] { return sheetPressed == 1; }));

    EXPECT_EQ(parentPressed, 0);
    EXPECT_EQ(parent->view()->textField("accountId").text(), "");
    EXPECT_TRUE(gate.takesInput(frame(*other)));
    EXPECT_FALSE(gate.takesInput(frame(*parent)));
    // The window system's frame may shift it a little.
    const QPoint apart = frame(*sheet).geometry().center() - frame(*parent).geometry().center();
    EXPECT_LE(apart.manhattanLength(), 8);
    parent->endSheet(*sheet, 0);
    pressOverTheBus(widget<QWidget>(*parent->view(), "loginButton"));
    EXPECT_TRUE(spinUntil([&] { return parentPressed == 1; }));
}

TEST_F(Windows, PersonWhoClosesTheSheetEndsItWith0)
{
    const auto parent = shown("LoginViewController");
    const auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);

    frame(*sheet).close();
    EXPECT_TRUE(spinUntil([&] { return !codes.empty(); }));

    EXPECT_THAT(codes, ElementsAre(0));
    EXPECT_TRUE(parent->isVisible());
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_EQ(timesLastClosed, 0);
}

TEST_F(Windows, EscPressesCancelInTheAgreement)
{
    const auto parent = shown("LoginViewController");
    const auto sheet = loaded("EULAWindowViewController");
    sheet->view()->button("buttonCancel").onPress([&](platform::Control&) { parent->endSheet(*sheet, 0); });
    beginSheet(*parent, sheet);
    EXPECT_TRUE(spinUntil([&] { return frame(*sheet).isActiveWindow(); }));

    QTest::keyClick(&frame(*sheet), Qt::Key_Escape);
    EXPECT_TRUE(spinUntil([&] { return !codes.empty(); }));

    EXPECT_THAT(codes, ElementsAre(0));
}

TEST_F(Windows, ClosingTheParentOrTheSheetByTheProgramEndsTheSheetWith0)
{
    const auto parent = shown("LoginViewController");
    beginSheet(*parent, loaded("EULAWindowViewController"));
    parent->close();
    runQueue();
    EXPECT_THAT(codes, ElementsAre(0));

    const auto sheet = loaded("EULAWindowViewController");
    parent->show();
    beginSheet(*parent, sheet);
    sheet->close();
    runQueue();
    EXPECT_THAT(codes, ElementsAre(0, 0));
    EXPECT_TRUE(parent->isVisible());
    EXPECT_TRUE(gate.takesInput(frame(*parent)));
}

TEST_F(Windows, HoldASheetThatNobodyElseHolds)
{
    const auto parent = shown("LoginViewController");
    auto sheet = loaded("EULAWindowViewController");
    const std::weak_ptr<platform::Window> held = sheet;
    beginSheet(*parent, sheet);
    sheet.reset();
    EXPECT_FALSE(held.expired());

    parent->endSheet(*held.lock(), 1);
    runQueue();

    EXPECT_TRUE(held.expired());
}

TEST_F(Windows, TakeNoSecondSheetAndEndNoForeignOne)
{
    const auto parent = shown("LoginViewController");
    const auto sheet = loaded("EULAWindowViewController");
    beginSheet(*parent, sheet);

    EXPECT_THROW(beginSheet(*parent, loaded("EULAWindowViewController")), std::logic_error);
    EXPECT_THROW(beginSheet(*sheet, sheet), std::logic_error);
    EXPECT_THROW(parent->endSheet(*parent, 1), std::logic_error);
    EXPECT_THAT(codes, IsEmpty());
}

TEST_F(Windows, LastOneThatThePersonClosesIsTold)
{
    const auto first = shown("LoginViewController");
    const auto second = shown("SetupMenuViewController");

    frame(*first).close();
    EXPECT_EQ(timesLastClosed, 0);
    EXPECT_FALSE(first->isVisible());

    frame(*second).close();
    EXPECT_EQ(timesLastClosed, 1);
}

TEST_F(Windows, NoneIsToldThatTheProgramClosesOrDrops)
{
    auto first = shown("LoginViewController");
    const auto second = shown("SetupMenuViewController");

    first->close();
    first.reset();
    second->close();
    runQueue();

    EXPECT_EQ(timesLastClosed, 0);
}

TEST_F(Windows, UnderAnAlertAreNotClosed)
{
    const auto window = shown("LoginViewController");
    whileUp([&](QDialog& box) {
        frame(*window).close();
        EXPECT_TRUE(window->isVisible());
        box.close();
    });

    alerts.runModal({"Note", {"OK"}, "text"});

    EXPECT_EQ(timesLastClosed, 0);
}

} // namespace
} // namespace vorrano::qt
