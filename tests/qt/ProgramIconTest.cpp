#include "QtProgram.h"

#include "platform/qt/ProgramIcon.h"

#include <QApplication>
#include <QLabel>

namespace vorrano::qt {
namespace {

using support::QtProgram;

class ProgramIcon : public QtProgram {};

TEST_F(ProgramIcon, IsTheSmallestPictureThatIsLargeEnough)
{
    EXPECT_EQ(programIcon(1).size(), QSize(32, 32));
    EXPECT_EQ(programIcon(32).size(), QSize(32, 32));
    EXPECT_EQ(programIcon(33).size(), QSize(64, 64));
    EXPECT_EQ(programIcon(65).size(), QSize(128, 128));
}

TEST_F(ProgramIcon, IsTheLargestPictureWhereNoneIsLargeEnough) { EXPECT_EQ(programIcon(500).size(), QSize(128, 128)); }

TEST_F(ProgramIcon, IsOnEveryWindowInTwoSizes)
{
    const auto sizes = QApplication::windowIcon().availableSizes();

    EXPECT_TRUE(sizes.contains(QSize(32, 32)));
    EXPECT_TRUE(sizes.contains(QSize(64, 64)));
}

TEST_F(ProgramIcon, IsShownWhereALayoutAsksForIt)
{
    const auto view = layouts.loadView("LoginViewController");

    const auto& logo = widget<QLabel>(*view, "logo");
    EXPECT_EQ(logo.pixmap().size(), QSize(64, 64));
}

} // namespace
} // namespace vorrano::qt
