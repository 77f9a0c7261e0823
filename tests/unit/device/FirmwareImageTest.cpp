#include "device/FirmwareImage.h"
#include "unit/device/TemporaryFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vorrano::device;
using namespace std::string_literals;

namespace {

using Lines = std::vector<std::string_view>;
using Characters = std::vector<std::string>;

TEST(LinesOfAnImage, EndAtEachLineFeedAndKeepTheirCarriageReturns)
{
    EXPECT_EQ(linesOfImage(":00\r\n:01\r\n"), (Lines{":00\r", ":01\r", ""}));
    EXPECT_EQ(linesOfImage("a\n\nb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOfImage("\n"), (Lines{"", ""}));
    EXPECT_EQ(linesOfImage("a\rb"), (Lines{"a\rb"}));
}

TEST(LinesOfAnImage, AreOneEmptyLineForAnEmptyText) { EXPECT_EQ(linesOfImage(""), (Lines{""})); }

TEST(CharactersOfALine, AreWrittenOneByOne)
{
    EXPECT_EQ(charactersOfLine(":0\r"), (Characters{":", "0", "\r"}));
    EXPECT_EQ(charactersOfLine("\0"s), (Characters{"\0"s}));
    EXPECT_EQ(charactersOfLine(""), Characters{});
}

TEST(CharactersOfALine, BeyondAsciiKeepTheirLow8Bits)
{
    // U+00E9 stays; of U+20AC 0xAC stays; U+1F321 is the units 0xD83C and 0xDF21.
    EXPECT_EQ(charactersOfLine("\u00E9"), (Characters{"\u00E9"}));
    EXPECT_EQ(charactersOfLine("\u20AC"), (Characters{"\u00AC"}));
    EXPECT_EQ(charactersOfLine("\U0001F321"), (Characters{"<", "!"}));
}

TEST(AFirmwareImage, IsReadAsItStands)
{
    const TemporaryFile file(":00\r\n\0\u00E9\n"s);

    EXPECT_EQ(readFirmwareImage(file.path()), ":00\r\n\0\u00E9\n"s);
}

TEST(AFirmwareImage, KeepsItsByteOrderMark)
{
    const TemporaryFile file("\uFEFF:0");

    EXPECT_EQ(readFirmwareImage(file.path()), "\uFEFF:0");
    EXPECT_EQ(charactersOfLine("\uFEFF:0"), (Characters{"\u00FF", ":", "0"}));
}

TEST(AFirmwareImage, ThatIsEmptyIsAnEmptyText)
{
    const TemporaryFile file("");

    EXPECT_EQ(readFirmwareImage(file.path()), "");
}

TEST(AFirmwareImage, ThatIsNoUtf8IsNothing)
{
    const TemporaryFile file(":00\r\n\xFF\xFE\n");

    EXPECT_EQ(readFirmwareImage(file.path()), std::nullopt);
}

TEST(AFirmwareImage, ThatIsGoneThrowsWithoutNamingIt)
{
    try {
        static_cast<void>(readFirmwareImage("/nowhere/secret.hex"));
        FAIL() << "read a file that is not there";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).find("secret"), std::string::npos);
    }
}

TEST(AFirmwareImage, ThatMayNotBeReadThrows)
{
    const TemporaryFile file(":00\n");
    const AccessDenied denied(file.path());

    EXPECT_THROW(static_cast<void>(readFirmwareImage(file.path())), std::runtime_error);
}

// A process' own memory opens like a file, and has nothing at its beginning.
TEST(AFirmwareImage, ThatFailsWhileItIsReadThrows)
{
    EXPECT_THROW(static_cast<void>(readFirmwareImage("/proc/self/mem")), std::runtime_error);
}

TEST(AFirmwareImage, ThatIsAFolderThrows)
{
    EXPECT_THROW(static_cast<void>(readFirmwareImage("/")), std::runtime_error);
}

TEST(AFirmwareImage, ThatNeverEndsThrows)
{
    EXPECT_THROW(static_cast<void>(readFirmwareImage("/dev/zero")), std::runtime_error);
}

} // namespace
