#include "device/UploadProgress.h"

#include "unit/device/FirmwareUpdateTest.h"

#include <ostream>
#include <utility>

using namespace vorrano;
using namespace vorrano::device;
using support::TerminalCall;

namespace {

constexpr const char* kBar = "uploadProgressBar";
constexpr const char* kLine = "uploadProgressLabel";

struct TextCase {
    std::size_t line;
    std::size_t lines;
    std::chrono::nanoseconds left;
    const char* text;
};

void PrintTo(const TextCase& given, std::ostream* out) { *out << given.text; }

class UploadProgressText : public testing::TestWithParam<TextCase> {};

TEST_P(UploadProgressText, TellsTheLineAndTheTimeThatIsLeft)
{
    const auto& [line, lines, left, text] = GetParam();

    EXPECT_EQ(uploadProgressText(line, lines, left), text);
}

INSTANTIATE_TEST_SUITE_P(Table, UploadProgressText,
                         testing::Values(TextCase{512, 2000, 148900ms, "Line 512 of 2,000, about 2 min 30 s left"},
                                         TextCase{1, 1, 0s, "Line 1 of 1, about 5 s left"},
                                         TextCase{1, 50, 5s, "Line 1 of 50, about 5 s left"},
                                         TextCase{1, 51, 7499ms, "Line 1 of 51, about 5 s left"},
                                         TextCase{1, 51, 7500ms, "Line 1 of 51, about 10 s left"},
                                         TextCase{400, 999, 57500ms, "Line 400 of 999, about 1 min left"},
                                         TextCase{1, 1000, 60s, "Line 1 of 1,000, about 1 min left"},
                                         TextCase{1234, 3456, 222300ms, "Line 1,234 of 3,456, about 3 min 40 s left"},
                                         TextCase{1, 36000, 3600s, "Line 1 of 36,000, about 1 h left"},
                                         TextCase{1, 36600, 3660s, "Line 1 of 36,600, about 1 h 1 min left"},
                                         TextCase{1, 36890, 3689s, "Line 1 of 36,890, about 1 h 1 min left"},
                                         TextCase{1, 36900, 3690s, "Line 1 of 36,900, about 1 h 2 min left"},
                                         TextCase{1, 2000000, 200000s, "Line 1 of 2,000,000, about 55 h 33 min left"}));

// What is on the screen at a moment; no line while it is hidden.
struct Seen {
    std::pair<std::size_t, std::size_t> progress;
    std::string line;

    friend bool operator==(const Seen&, const Seen&) = default;
};

void PrintTo(const Seen& seen, std::ostream* out)
{
    *out << seen.progress.first << " of " << seen.progress.second << ": " << seen.line;
}

struct UploadProgressOnTheScreen : FirmwareUpdateTest {
    [[nodiscard]] bool isShown()
    {
        EXPECT_EQ(view().isHidden(kBar), view().isHidden(kLine));
        return !view().isHidden(kBar);
    }

    // What the person sees in each of the next pauses.
    std::vector<Seen>& watch(int pauses)
    {
        for (int pause = 0; pause < pauses; ++pause) {
            world.pause.whilePaused([this] {
                m_seen.push_back(isShown() ? Seen{view().progress(kBar), view().labelText(kLine)} : Seen{});
            });
        }
        return m_seen;
    }

    [[nodiscard]] static std::string imageOf(int lines)
    {
        std::string image;
        for (int line = 1; line < lines; ++line) {
            image += ":\n";
        }
        return image;
    }

private:
    std::vector<Seen> m_seen;
};

TEST_F(UploadProgressOnTheScreen, IsHiddenBeforeTheImageGoesOut)
{
    EXPECT_FALSE(isShown());

    const TemporaryFile image("a");
    beginUpdate(image.path());
    reply(">");

    EXPECT_FALSE(isShown());
}

TEST_F(UploadProgressOnTheScreen, TellsEachLineInItsPause)
{
    const TemporaryFile image(":0\n:1\n");
    const auto& seen = watch(3);

    upload(image.path());

    EXPECT_THAT(seen,
                ElementsAre(Seen{{1, 3}, "Line 1 of 3, about 5 s left"}, Seen{{2, 3}, "Line 2 of 3, about 5 s left"},
                            Seen{{3, 3}, "Line 3 of 3, about 5 s left"}));
}

TEST_F(UploadProgressOnTheScreen, TakesTheTimeThatIsLeftFromThePauses)
{
    const TemporaryFile image(imageOf(2000));
    const auto& seen = watch(2000);

    upload(image.path());

    EXPECT_EQ(seen[0].line, "Line 1 of 2,000, about 3 min 20 s left");
    EXPECT_EQ(seen[511].line, "Line 512 of 2,000, about 2 min 30 s left");
    EXPECT_EQ(seen[1999].line, "Line 2,000 of 2,000, about 5 s left");
}

TEST_F(UploadProgressOnTheScreen, TakesTheTimeThatIsLeftFromWhatTheLinesTookWhenThatIsMore)
{
    const TemporaryFile image(imageOf(101));
    beginUpdate(image.path());
    reply(">");
    line().delayNext(TerminalCall::Write, 400ms);
    const auto& seen = watch(2);

    reply("U");

    EXPECT_EQ(seen[0].line, "Line 1 of 101, about 10 s left");
    // 100 lines of 0.5 s.
    EXPECT_EQ(seen[1].line, "Line 2 of 101, about 50 s left");
}

TEST_F(UploadProgressOnTheScreen, TakesItsTimeOutOfThePause)
{
    const TemporaryFile image("a\nb");
    beginUpdate(image.path());
    reply(">");
    view().setDrawing(kBar, [this] { world.pass(30ms); });
    const auto begin = world.now();

    reply("U");

    EXPECT_EQ(world.now() - begin, 2 * kLinePause);
    EXPECT_EQ(line().writes().back().at - begin, kLinePause);
}

TEST_F(UploadProgressOnTheScreen, LeavesHalfOfThePauseToTheWindowsHoweverLongItTakes)
{
    const TemporaryFile image("a\nb");
    beginUpdate(image.path());
    reply(">");
    view().setDrawing(kBar, [this] { world.pass(150ms); });
    const auto begin = world.now();

    reply("U");

    EXPECT_EQ(world.now() - begin, 2 * (150ms + kLinePause / 2));
}

TEST_F(UploadProgressOnTheScreen, IsGoneWhenTheUploadIsFinished)
{
    const TemporaryFile image("a\nb");
    beginUpdate(image.path());
    reply(">");
    world.alerts.whileUp([this] { EXPECT_FALSE(isShown()) << "while the end is told"; });

    reply("U");

    EXPECT_EQ(world.alerts.only(), kFinished);
    EXPECT_FALSE(isShown());
}

TEST_F(UploadProgressOnTheScreen, IsGoneWhenTheImageThrows)
{
    const TemporaryFile image("ab\ncd\n");
    beginUpdate(image.path());
    reply(">");
    throwOnWrite("c");
    const auto& seen = watch(1);
    world.alerts.whileUp([this] { EXPECT_FALSE(isShown()) << "while the problem is told"; });

    reply("U");

    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
    EXPECT_EQ(seen.size(), 1U);
    EXPECT_FALSE(isShown());
}

TEST_F(UploadProgressOnTheScreen, IsNotShownForAnImageThatIsNoUtf8OrCannotBeRead)
{
    const TemporaryFile image("\xFF");
    world.alerts.whileUp([this] { EXPECT_FALSE(isShown()); });

    upload(image.path());
    EXPECT_THAT(view().announcements(kLine), IsEmpty());
    world.alerts.forget();
    upload("/nowhere/vorrano.hex");

    EXPECT_THAT(view().announcements(kLine), IsEmpty());
}

TEST_F(UploadProgressOnTheScreen, IsReadOutAtEachTenthOfALongImage)
{
    const TemporaryFile image(imageOf(2000));

    upload(image.path());

    const auto& heard = view().announcements(kLine);
    EXPECT_EQ(heard.size(), 11U);
    EXPECT_EQ(heard[0], "Line 1 of 2,000, about 3 min 20 s left");
    EXPECT_EQ(heard[1], "Line 200 of 2,000, about 3 min left");
    EXPECT_EQ(heard[10], "Line 2,000 of 2,000, about 5 s left");
}

TEST_F(UploadProgressOnTheScreen, IsReadOutOnceForAnImageThatIsSoonThrough)
{
    const TemporaryFile image(imageOf(100));

    upload(image.path());

    EXPECT_THAT(view().announcements(kLine), ElementsAre("Line 1 of 100, about 10 s left"));
}

TEST_F(UploadProgressOnTheScreen, IsNotReadOutAgainWithinTenSeconds)
{
    // A tenth takes 5 s.
    const TemporaryFile image(imageOf(500));

    upload(image.path());

    EXPECT_THAT(view().announcements(kLine),
                ElementsAre("Line 1 of 500, about 50 s left", "Line 150 of 500, about 35 s left",
                            "Line 250 of 500, about 25 s left", "Line 350 of 500, about 15 s left",
                            "Line 450 of 500, about 5 s left"));
}

TEST_F(UploadProgressOnTheScreen, BeginsAnewWithTheNextUpload)
{
    const TemporaryFile first(imageOf(300));
    const TemporaryFile second("a\nb");
    upload(first.path());
    world.alerts.forget();
    const auto& seen = watch(2);

    upload(second.path());

    EXPECT_THAT(seen,
                ElementsAre(Seen{{1, 2}, "Line 1 of 2, about 5 s left"}, Seen{{2, 2}, "Line 2 of 2, about 5 s left"}));
}

} // namespace
