#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"
#include "unit/device/Texts.h"

#include <cerrno>
#include <cstring>

using namespace vorrano;
using namespace vorrano::device;
using support::TerminalCall;

namespace {

constexpr const char* kLabel = "connectionNoticeLabel";
const std::string kPath = "/dev/cu.usbserial-A1B2";

// In the words of the system, whose language is the person's.
std::string failureOfInput()
{
    return std::string("The Vorrano's port could not be opened: ") + std::strerror(EIO) + ".";
}

// A tab whose port can't be opened at first.
struct ARefusedPort : DeviceTabTest<WifiSetupViewController> {
    FakeLine& chooseTabWithoutPermission()
    {
        auto& line = world.plugVorrano();
        // A try before permission has come would succeed, and be noticed by that.
        line.failNext(TerminalCall::Open, EACCES);
        world.portAccess.forbid(kPath);
        world.portAccess.setGroup(kPath, "dialout");
        chooseTab();
        return line;
    }

    FakeLine& chooseTabWithPortInUse()
    {
        auto& line = world.plugVorrano();
        line.setHeldByAnother(true);
        chooseTab();
        return line;
    }

    // What the notice says; none while it is hidden.
    [[nodiscard]] std::optional<std::string> notice() { return noticeOf(view()); }
    [[nodiscard]] static std::optional<std::string> noticeOf(const FakeView& view)
    {
        return view.isHidden(kLabel) ? std::nullopt : std::optional(view.labelText(kLabel));
    }

    [[nodiscard]] std::size_t opens() const { return world.terminal.calls({TerminalCall::Open}).size(); }
};

TEST_F(ARefusedPort, IsReportedWithTheGroupThatMayUseIt)
{
    const auto& line = chooseTabWithoutPermission();

    EXPECT_FALSE(line.isOpen());
    EXPECT_EQ(notice(), kNotAllowed);
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(ARefusedPort, IsUsedASecondAfterPermissionHasCome)
{
    auto& line = chooseTabWithoutPermission();
    world.advance(10s);
    EXPECT_EQ(opens(), 1U) << "a port that may not be used is not tried";

    world.portAccess.permit(kPath);
    world.advance(1s);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(notice(), std::nullopt);
    EXPECT_EQ(::cfgetospeed(&line.attributes().record), speed_t{B9600});
    press("buttonCheckSSID");
    reply("Net\n\n\r");
    EXPECT_EQ(world.alerts.only(), alertOf("Net\n\n\r", "Success"));
}

TEST_F(ARefusedPort, IsReportedWithTheProgramThatUsesIt)
{
    world.portAccess.setUser(kPath, "kettle");

    chooseTabWithPortInUse();

    EXPECT_EQ(notice(), kInUseByKettle);
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(ARefusedPort, IsReportedInUseWhereNobodyKnowsByWhichProgram)
{
    chooseTabWithPortInUse();

    EXPECT_EQ(notice(), kInUse);
}

TEST_F(ARefusedPort, IsUsedASecondAfterTheOtherProgramHasLetGo)
{
    auto& line = chooseTabWithPortInUse();
    world.advance(10s);
    EXPECT_EQ(opens(), 11U);

    line.setHeldByAnother(false);
    world.advance(1s);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(ARefusedPort, AsksOnceWhoUsesIt)
{
    chooseTabWithPortInUse();

    world.advance(10s);

    EXPECT_EQ(world.portAccess.questionsForPrograms(), 1);
}

TEST_F(ARefusedPort, IsReportedAnewWhenTheReasonChanges)
{
    auto& line = chooseTabWithPortInUse();
    line.setHeldByAnother(false);
    line.failNext(TerminalCall::Open, EIO);

    world.advance(1s);
    EXPECT_EQ(notice(), failureOfInput());
    world.advance(1s);

    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(ARefusedPort, IsReadOutOnceForEachReason)
{
    auto& line = chooseTabWithPortInUse();
    world.advance(10s);
    EXPECT_THAT(view().announcements(kLabel), ElementsAre(kInUse));
    line.setHeldByAnother(false);
    line.failNext(TerminalCall::Open, EIO);
    world.advance(1s);

    EXPECT_THAT(view().announcements(kLabel), ElementsAre(kInUse, failureOfInput()));
}

TEST_F(ARefusedPort, IsNotLookedAtAnyMoreOnceItIsOpen)
{
    auto& line = chooseTabWithPortInUse();
    line.setHeldByAnother(false);
    world.advance(1s);
    ASSERT_TRUE(line.isOpen());
    tab->serialPort()->close();

    world.advance(60s);

    EXPECT_EQ(opens(), 2U);
}

TEST_F(ARefusedPort, IsNotLookedAtAfterAnotherWayToOpenIt)
{
    auto& line = chooseTabWithPortInUse();
    world.advance(500ms);
    line.setHeldByAnother(false);
    // Every device that is plugged in makes the connection anew.
    world.plugSerialDevice("/dev/ttyS0");
    world.run();
    ASSERT_TRUE(line.isOpen());
    tab->serialPort()->close();

    world.advance(60s);

    EXPECT_EQ(opens(), 2U);
}

TEST_F(ARefusedPort, IsNotReportedWithTheProgramThatUsedThePortBefore)
{
    world.portAccess.setUser(kPath, "kettle");
    auto& line = chooseTabWithPortInUse();
    ASSERT_EQ(notice(), kInUseByKettle);
    world.unplug(line);
    world.advance(200ms);

    world.terminal.failNext(TerminalCall::Open, EBUSY);
    world.plugVorrano("C3D4");
    world.run();

    EXPECT_EQ(notice(), kInUse);
}

TEST_F(ARefusedPort, IsNotLookedAtWhereNothingIsWrong)
{
    chooseTabWithVorrano();
    tab->serialPort()->close();

    world.advance(60s);

    EXPECT_EQ(opens(), 1U);
    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(ARefusedPort, ThatIsUnpluggedIsReportedAsNoVorranoAndNotTriedAgain)
{
    auto& line = chooseTabWithPortInUse();

    world.unplug(line);
    world.run();
    const auto before = opens();
    world.advance(60s);

    EXPECT_EQ(opens(), before);
    EXPECT_EQ(notice(), kNoVorrano);
    EXPECT_EQ(tab->serialPort(), nullptr);
    EXPECT_THAT(view().announcements(kLabel), ElementsAre(kInUse, kNoVorrano));
}

TEST_F(ARefusedPort, OfADeviceThatIsNoVorranoIsTriedOnceAndNotReported)
{
    world.plugSerialDevice("/dev/ttyS0").setHeldByAnother(true);
    chooseTab();

    world.advance(60s);

    EXPECT_EQ(opens(), 1U);
    EXPECT_EQ(notice(), kNoVorrano);
}

TEST_F(ARefusedPort, IsTriedByOneOfTheTabsThatShareItAndReportedOnAll)
{
    auto& line = chooseTabWithPortInUse();
    const auto second = WifiSetupViewController::create();
    second->awakeFromNib();
    const auto& otherView = static_cast<FakeView&>(*second->view());
    EXPECT_EQ(notice(), kInUse);
    EXPECT_EQ(noticeOf(otherView), kInUse);
    const auto before = opens();

    world.advance(10s);
    EXPECT_EQ(opens() - before, 10U);
    line.setHeldByAnother(false);
    world.advance(1s);

    EXPECT_EQ(notice(), std::nullopt);
    EXPECT_EQ(noticeOf(otherView), std::nullopt);
    EXPECT_EQ(second->serialPort()->delegate(), second);
}

TEST_F(ARefusedPort, IsNotTriedForATabThatHasGone)
{
    chooseTabWithPortInUse();
    tab.reset();
    const auto before = opens();

    world.advance(60s);

    EXPECT_EQ(opens(), before);
}

TEST_F(ARefusedPort, IsReportedWhenItCannotBeOpenedAfterASleep)
{
    auto& line = chooseTabWithVorrano();
    world.power.sleep();
    line.setHeldByAnother(true);

    world.power.wake();
    world.run();
    EXPECT_EQ(notice(), kInUse);
    line.setHeldByAnother(false);
    world.advance(1s);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(ARefusedPort, SendsNothingAgainThatWasSentBeforeItOpened)
{
    auto& line = chooseTabWithPortInUse();
    press("buttonCheckSSID");
    line.setHeldByAnother(false);

    world.advance(3s);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(line.written(), "");
    EXPECT_EQ(world.alerts.only(), kTryAgain);
    EXPECT_FALSE(isBusy());
}

TEST_F(ARefusedPort, IsNotLookedAtWhileAnAlertIsUp)
{
    auto& line = chooseTabWithPortInUse();
    world.alerts.whileUp([&] {
        line.setHeldByAnother(false);
        world.advance(10s);
        EXPECT_FALSE(line.isOpen());
    });

    press("buttonResetDevice");
    world.run();

    EXPECT_TRUE(line.isOpen());
}

} // namespace
