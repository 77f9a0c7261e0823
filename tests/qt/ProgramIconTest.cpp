#include "QtProgram.h"

#include "platform/qt/ProgramIcon.h"

#include <QApplication>
#include <QLabel>

namespace vorrano::qt {
namespace {

using support::QtProgram;

class ProgramIcon : public QtProgram {};

TEST_F(ProgramIcon, IsThereInThreeSizes)
{
    for (const int side : {32, 64, 128}) {
        EXPECT_EQ(programIcon(side).size(), QSize(side, side));
    }
}

TEST_F(ProgramIcon, IsOnEveryWindowInTwoSizes)
{
    const auto sizes = QApplication::windowIcon().availableSizes();

    EXPECT_TRUE(sizes.contains(QSize(32, 32)));
    EXPECT_TRUE(sizes.contains(QSize(64, 64)));
}

TEST_F(ProgramIcon, IsSharpInALayoutOnADisplayTwiceAsDense)
{
    const auto view = layouts.loadView("LoginViewController");

    const auto& logo = widget<QLabel>(*view, "logo");
    EXPECT_GE(logo.pixmap().width(), 2 * logo.maximumWidth());
}

} // namespace
} // namespace vorrano::qt
