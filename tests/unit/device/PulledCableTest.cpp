#include "unit/device/FirmwareUpdateTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

constexpr int kLines = 20;
constexpr int kCharactersPerLine = 12;
constexpr int kPoints = 50;

enum class Where { BeforeTheBootloader, BeforeTheUpload, AtACharacter, InAPause };

// A point of an update; `which` counts characters or pauses from 0.
struct Point {
    Where where;
    int which;
};

void PrintTo(const Point& point, std::ostream* out)
{
    *out << (point.where == Where::AtACharacter ? "character " : "point ") << point.which;
}

// Before each of the two prompts, in 10 of the pauses, and at 38 characters from the first to the last.
std::vector<Point> points()
{
    std::vector<Point> all = {{Where::BeforeTheBootloader, 0}, {Where::BeforeTheUpload, 0}};
    for (int pause = 0; pause < 10; ++pause) {
        all.push_back({Where::InAPause, pause * 2});
    }
    const int characters = kPoints - static_cast<int>(all.size());
    for (int i = 0; i < characters; ++i) {
        all.push_back({Where::AtACharacter, i * (kLines * kCharactersPerLine - 1) / (characters - 1)});
    }
    return all;
}

std::string imageText()
{
    std::string image;
    for (int i = 0; i < kLines; ++i) {
        image += ":0000000" + std::to_string(100 + i) + "\r\n";
    }
    return image;
}

std::string sentFor(const std::string& image)
{
    std::string sent;
    for (const char character : image) {
        if (character != '\n') {
            sent += character;
        }
    }
    return sent;
}

class APulledCable : public FirmwareUpdateTest, public testing::WithParamInterface<Point> {
protected:
    // Pulls the cable right after the character of that number.
    void pullAtCharacter(int number)
    {
        line().onWrite([this, number](const std::string&) {
            if (m_written++ == number) {
                world.unplug(line());
            }
        });
    }
    void pullInPause(int number)
    {
        for (int i = 0; i < number; ++i) {
            world.pause.whilePaused([] {});
        }
        world.pause.whilePaused([this] { world.unplug(line()); });
    }

    // The update as far as it goes; says whether it came to its end.
    bool updateUntilThePull(const std::filesystem::path& image)
    {
        beginUpdate(image);
        if (GetParam().where == Where::BeforeTheBootloader) {
            world.unplug(line());
            return false;
        }
        reply(">");
        if (GetParam().where == Where::BeforeTheUpload) {
            world.unplug(line());
            return false;
        }
        GetParam().where == Where::InAPause ? pullInPause(GetParam().which) : pullAtCharacter(GetParam().which);
        reply("U");
        return true;
    }

private:
    int m_written = 0;
};

TEST_P(APulledCable, LeadsToNoAlertButTheFinishingOneAndTheNextUpdateSucceeds)
{
    const TemporaryFile image(imageText());

    const bool finished = updateUntilThePull(image.path());
    world.advance(10s);

    EXPECT_EQ(alerts(), finished ? std::vector<Alert>{kFinished} : std::vector<Alert>{});
    EXPECT_EQ(isBusy(), !finished);
    EXPECT_EQ(tab->serialPort(), nullptr);
    EXPECT_EQ(world.terminal.openDescriptors(), 0U);
    EXPECT_THAT(world.log.lines(), IsEmpty());

    if (GetParam().where == Where::AtACharacter) {
        const auto reached = static_cast<std::size_t>(GetParam().which) + 1;
        EXPECT_EQ(line().written(), "7bu" + sentFor(imageText()).substr(0, reached));
    }

    world.alerts.forget();
    auto& again = world.plugVorrano();
    world.run();
    beginUpdate(image.path());
    reply(">");
    reply("U");

    EXPECT_EQ(again.written(), "7bu" + sentFor(imageText()));
    EXPECT_EQ(world.alerts.only(), kFinished);
    EXPECT_FALSE(isBusy());
}

INSTANTIATE_TEST_SUITE_P(AtEachPoint, APulledCable, testing::ValuesIn(points()));

TEST(ThePoints, AreFiftyFromTheFirstCharacterToTheLast)
{
    EXPECT_EQ(points().size(), 50U);
    EXPECT_EQ(points()[12].which, 0);
    EXPECT_EQ(points().back().which, 20 * 12 - 1);
    EXPECT_EQ(sentFor(imageText()).size(), 20U * 12U);
}

} // namespace
