#include "ctl/Tool.h"

#include "unit/ctl/FakeConsole.h"

#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vorrano::ctl {

using namespace std::chrono_literals;
using support::FakeLine;
using support::TerminalCall;
using testing::HasSubstr;

namespace {

// 0.1 s in single precision, in whole microseconds, not shorter.
constexpr auto kPace = 100001us;
const std::string kFirst = "/dev/cu.usbserial-A1B2";
const std::string kSecond = "/dev/cu.usbserial-C3D4";

} // namespace

class CtlTool : public testing::Test {
protected:
    ~CtlTool() override
    {
        tool.reset();
        serial::SerialPortManager::releaseShared();
    }

    // As far as it comes by itself at this point of time.
    void begin(Arguments arguments, Task task)
    {
        tool.emplace(std::move(arguments), std::move(task), ToolInterfaces{console, world.portAccess, world.stayAwake});
        tool->start([this](ExitStatus ended) { status = ended; });
        world.run();
    }
    void get(device::DeviceCommand command, Arguments arguments = {})
    {
        begin(std::move(arguments), Exchanges{{{"item", command, ""}}});
    }
    void update(std::string image, Arguments arguments = {}) { begin(std::move(arguments), Upload{std::move(image)}); }

    void reply(FakeLine& line, const std::string& bytes)
    {
        line.reply(bytes);
        world.run();
    }
    // The device in its bootloader, ready for the image.
    void enterBootloader(FakeLine& line)
    {
        reply(line, ">");
        reply(line, "U");
    }

    support::World world;
    FakeConsole console;
    std::optional<Tool> tool;
    std::optional<ExitStatus> status;
};

TEST_F(CtlTool, ListsWhatItKnowsOfEachPort)
{
    world.plugVorrano();
    support::DeviceProperties other;
    other.calloutPath = other.dialinPath = "/dev/ttyS0";
    other.adapterName = "Odd\nOne";
    other.adapterSerialNumber = "7";
    world.plugSerialDevice(other);
    world.portAccess.forbid("/dev/ttyS0");
    world.portAccess.setUser(kFirst, "minicom");

    begin({}, ListPorts{});

    EXPECT_EQ(status, ExitStatus::Done);
    EXPECT_EQ(console.written, "PORT                    NODE          VORRANO  ADAPTER   SERIAL  ALLOWED  USED BY\n"
                               "/dev/cu.usbserial-A1B2  /dev/ttyUSB0  yes      -         -       yes      minicom\n"
                               "/dev/ttyS0              /dev/ttyS0    no       Odd\\nOne  7       no       -\n");
}

TEST_F(CtlTool, AsksAllVorranosAtTheSameTimeAndNoOtherPort)
{
    auto& first = world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");
    auto& other = world.plugSerialDevice("/dev/cu.usbmodem-1");

    get(device::DeviceCommand::MacAddress, {.all = true});

    EXPECT_EQ(first.written(), "3");
    EXPECT_EQ(second.written(), "3");
    EXPECT_EQ(other.written(), "");
    reply(second, "00:1E:5C:0A:1B:2C\n\r");
    EXPECT_EQ(status, std::nullopt);
    reply(first, "00:1E:5C:0A:1B:2D\n\r");
    world.advance(1s);
    EXPECT_EQ(status, ExitStatus::Done);
    EXPECT_EQ(console.written, kSecond + ": 00:1E:5C:0A:1B:2C\n" + kFirst + ": 00:1E:5C:0A:1B:2D\n");
}

TEST_F(CtlTool, ADeviceThatTakesLongToOpenDelaysNoOther)
{
    auto& slow = world.plugVorrano("A1B2");
    auto& quick = world.plugVorrano("C3D4");
    slow.delayNext(TerminalCall::Open, 3s);

    get(device::DeviceCommand::MacAddress, {.all = true});

    EXPECT_EQ(quick.written(), "3");
    EXPECT_EQ(slow.written(), "");
    world.advance(3s);
    EXPECT_EQ(slow.written(), "3");
}

TEST_F(CtlTool, GivesThePortItsSettingsBackAndLeavesItClosed)
{
    auto& line = world.plugVorrano();
    const auto speed = line.attributes().record.c_ospeed;

    get(device::DeviceCommand::MacAddress);
    EXPECT_TRUE(line.isOpen());
    reply(line, "00:1E:5C:0A:1B:2C\n\r");
    world.advance(1s);

    EXPECT_FALSE(line.isOpen());
    EXPECT_EQ(line.attributes().record.c_ospeed, speed);
}

TEST_F(CtlTool, WaitsForTheRestOfAnAnswerAndTakesItsQuietForItsEnd)
{
    auto& line = world.plugVorrano();
    get(device::DeviceCommand::PowerStatus);

    reply(line, "USB ");
    world.advance(150ms);
    reply(line, "power");
    world.advance(150ms);
    EXPECT_EQ(console.written, "");

    world.advance(1s);
    EXPECT_EQ(console.written, "USB power\n");
}

TEST_F(CtlTool, IsNotAllowedToOpenAPort)
{
    auto& line = world.plugVorrano();
    line.failNext(TerminalCall::Open, EACCES);

    get(device::DeviceCommand::MacAddress);
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::NotAllowed);
    EXPECT_THAT(console.errors, HasSubstr(kFirst + ": You are not allowed to open the port."));
}

TEST_F(CtlTool, NamesTheProgramThatHasThePort)
{
    auto& line = world.plugVorrano();
    line.setHeldByAnother(true);
    world.portAccess.setUser(kFirst, "minicom");

    get(device::DeviceCommand::MacAddress);
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_EQ(console.errors, "vorranoctl: " + kFirst + ": The port is in use by minicom.\n");
}

TEST_F(CtlTool, AFailedDeviceCountsMoreThanOneThatMayNotBeOpened)
{
    world.plugVorrano();
    const auto port = serial::SerialPort::serialPortWithPath(kFirst);
    const Outcome failed{.failure = Outcome::Failure{ExitStatus::DeviceFailed, "It failed."}};
    const Outcome notAllowed{.failure = Outcome::Failure{ExitStatus::NotAllowed, "It may not be opened."}};
    Report report(console, Report::Form::Value);

    report.add(*port, notAllowed);
    EXPECT_EQ(report.status(), ExitStatus::NotAllowed);
    report.add(*port, failed);
    report.add(*port, notAllowed);
    report.add(*port, {});

    EXPECT_EQ(report.status(), ExitStatus::DeviceFailed);
}

TEST_F(CtlTool, SaysWhyAWriteFailed)
{
    auto& line = world.plugVorrano();
    line.failNext(TerminalCall::Write, EIO);

    get(device::DeviceCommand::MacAddress);
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_THAT(console.errors, HasSubstr("Writing to the port failed: "));
}

TEST_F(CtlTool, KeepsTheComputerAwakeFromTheUploadToItsEnd)
{
    auto& line = world.plugVorrano();
    update("a\nb");
    EXPECT_FALSE(world.stayAwake.isOn());

    enterBootloader(line);
    EXPECT_TRUE(world.stayAwake.isOn());
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::Done);
    EXPECT_FALSE(world.stayAwake.isOn());
}

TEST_F(CtlTool, KeepsTheComputerAwakeForNoUploadThatBroke)
{
    auto& line = world.plugVorrano();
    update("a\nb\nc");
    enterBootloader(line);

    world.unplug(line);
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_FALSE(world.stayAwake.isOn());
}

TEST_F(CtlTool, SendsAnImageAtThePaceOfItsLines)
{
    auto& line = world.plugVorrano();
    update("ab\r\nc\n");
    enterBootloader(line);
    world.advance(1s);

    const auto& writes = line.writes();
    ASSERT_EQ(line.written(), "7buab\rc");
    EXPECT_EQ(writes[6].at - writes[3].at, kPace);
    EXPECT_EQ(console.written, "Finished Updating Firmware\n");
}

TEST_F(CtlTool, GivesABootloaderThatSaysNothingFiveSeconds)
{
    world.plugVorrano();
    update("a");

    world.advance(4999ms);
    EXPECT_EQ(status, std::nullopt);
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_EQ(console.errors, "vorranoctl: " + kFirst + ": Failed to enter bootloader mode\n");
}

TEST_F(CtlTool, AnInterruptionAsksOnlyWhileAnUploadIsUnderWay)
{
    auto& line = world.plugVorrano();
    update("a\nb\nc\nd");
    enterBootloader(line);

    tool->interrupt();
    world.run();
    EXPECT_EQ(status, std::nullopt);
    EXPECT_THAT(console.errors, HasSubstr("Press Ctrl-C again"));
    tool->interrupt();
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_THAT(console.errors, HasSubstr(kFirst + ": Interrupted.\n"));
}

TEST_F(CtlTool, AnInterruptionBeforeTheUploadEndsAtOnce)
{
    world.plugVorrano();
    update("a");

    tool->interrupt();
    world.advance(1s);

    EXPECT_EQ(status, ExitStatus::DeviceFailed);
    EXPECT_EQ(console.errors, "vorranoctl: " + kFirst + ": Interrupted.\n");
}

TEST_F(CtlTool, ShowsTheDeviceThatHasTheMostLinesToGo)
{
    console.isTerminal = true;
    auto& first = world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");
    update("a\nb\nc\nd", {.all = true});
    enterBootloader(first);
    world.advance(250ms);
    enterBootloader(second);
    world.advance(120ms);

    EXPECT_TRUE(console.errors.ends_with("] 25 %, line 1 of 4, about 1 s left")) << console.errors;
    world.advance(1s);
    EXPECT_EQ(status, ExitStatus::Done);
    EXPECT_TRUE(console.errors.ends_with("\r\x1b[K"));
}

} // namespace vorrano::ctl
