#include "platform/linux/SerialDevice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::isOlder;
using linux_platform::isSameDevice;
using linux_platform::propertyOf;
using linux_platform::SerialDevice;
using linux_platform::serialDeviceOf;
using linux_platform::TtyFacts;
using testing::ElementsAre;

namespace {

TtyFacts usbAdapter()
{
    TtyFacts facts;
    facts.sysPath = "/sys/devices/usb1/1-1/1-1:1.0/ttyUSB0/tty/ttyUSB0";
    facts.name = "ttyUSB0";
    facts.node = "/dev/ttyUSB0";
    facts.hasParent = true;
    facts.parentSubsystem = "usb-serial";
    facts.parentDriver = "ftdi_sio";
    facts.serialNumber = "A1B2";
    facts.path = "pci-0000:00:14.0-usb-0:2:1.0";
    facts.bus = "usb";
    facts.usbDriver = "ftdi_sio";
    facts.usbInterface = "00";
    facts.usbInterfaceCount = 1;
    return facts;
}

TtyFacts communicationDevice()
{
    auto facts = usbAdapter();
    facts.name = "ttyACM0";
    facts.node = "/dev/ttyACM0";
    facts.parentSubsystem = "usb";
    facts.parentDriver = "cdc_acm";
    facts.usbDriver = "cdc_acm";
    facts.usbInterfaceCount = 2;
    return facts;
}

TtyFacts uart(std::optional<std::string> type)
{
    TtyFacts facts;
    facts.name = "ttyS0";
    facts.node = "/dev/ttyS0";
    facts.hasParent = true;
    facts.parentSubsystem = "platform";
    facts.parentDriver = "serial8250";
    facts.uartType = std::move(type);
    return facts;
}

template <typename Change>
TtyFacts with(TtyFacts facts, Change change)
{
    change(facts);
    return facts;
}

} // namespace

struct Naming {
    const char* name;
    TtyFacts facts;
    const char* calloutPath;

    friend void PrintTo(const Naming& tested, std::ostream* out) { *out << tested.name; }
};

class CalloutPath : public testing::TestWithParam<Naming> {};

TEST_P(CalloutPath, Is)
{
    const auto device = serialDeviceOf(GetParam().facts);

    ASSERT_TRUE(device.has_value());
    EXPECT_EQ(device->calloutPaths.front(), GetParam().calloutPath);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CalloutPath,
    testing::Values(Naming{"TheSerialNumberOfAUsbSerialAdapter", usbAdapter(), "/dev/cu.usbserial-A1B2"},
                    Naming{"TheSerialNumberAndInterfaceWhereThereAreSeveral",
                           with(usbAdapter(), [](auto& f) { f.usbInterfaceCount = 4; }), "/dev/cu.usbserial-A1B2-00"},
                    Naming{"TheSerialNumberAndInterfaceOfALaterInterface",
                           with(usbAdapter(),
                                [](auto& f) {
                                    f.usbInterfaceCount = 0;
                                    f.usbInterface = "02";
                                }),
                           "/dev/cu.usbserial-A1B2-02"},
                    Naming{"ThePlaceWithoutASerialNumber", with(usbAdapter(), [](auto& f) { f.serialNumber = ""; }),
                           "/dev/cu.usbserial-0:2:1.0"},
                    Naming{"TheTtyWithoutASerialNumberAndPlace",
                           with(usbAdapter(),
                                [](auto& f) {
                                    f.serialNumber = "";
                                    f.path = "";
                                }),
                           "/dev/cu.usbserial-ttyUSB0"},
                    Naming{"WithoutBlanksSlashesOrOtherThanAscii",
                           with(usbAdapter(), [](auto& f) { f.serialNumber = "a/b c\xc3\xa4\n"; }),
                           "/dev/cu.usbserial-a_b_c___"},
                    Naming{"TheSerialNumberOfACommunicationDevice", communicationDevice(), "/dev/cu.usbmodem-A1B2"},
                    Naming{"TheInterfaceToOfACommunicationDeviceWithSeveralLines",
                           with(communicationDevice(), [](auto& f) { f.usbInterfaceCount = 4; }),
                           "/dev/cu.usbmodem-A1B2-00"},
                    Naming{"TheNodeOfAUart", uart("4"), "/dev/ttyS0"},
                    Naming{"TheNodeOfAnyOtherDevice",
                           with(uart(std::nullopt),
                                [](auto& f) {
                                    f.name = "rfcomm0";
                                    f.node = "/dev/rfcomm0";
                                    f.parentSubsystem = "bluetooth";
                                    f.parentDriver = "";
                                }),
                           "/dev/rfcomm0"}),
    [](const auto& tested) { return tested.param.name; });

struct Absence {
    const char* name;
    TtyFacts facts;

    friend void PrintTo(const Absence& tested, std::ostream* out) { *out << tested.name; }
};

class NotListed : public testing::TestWithParam<Absence> {};

TEST_P(NotListed, Is) { EXPECT_EQ(serialDeviceOf(GetParam().facts), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(
    Table, NotListed,
    testing::Values(Absence{"A8250PortOfTypeZero", uart("0")}, Absence{"A8250PortOfUnreadableType", uart(std::nullopt)},
                    Absence{"A8250PortOfNoNumberAsType", uart("what")},
                    Absence{"APortOfAnother8250DriverThatIsNotThere", with(uart("0"),
                                                                           [](auto& f) {
                                                                               f.name = "ttyX0";
                                                                               f.parentDriver = "of_8250";
                                                                           })},
                    Absence{"ATerminalWithoutHardware", with(uart("4"), [](auto& f) { f.hasParent = false; })},
                    Absence{"ADeviceWithoutANode", with(usbAdapter(), [](auto& f) { f.node = ""; })},
                    Absence{"AUsbAdapterWhosePropertiesAreStillToCome", with(usbAdapter(),
                                                                             [](auto& f) {
                                                                                 f.serialNumber = f.path = f.bus = "";
                                                                                 f.initialized = false;
                                                                             })}),
    [](const auto& tested) { return tested.param.name; });

SerialDevice deviceSeenAt(std::uint64_t time)
{
    auto facts = usbAdapter();
    facts.initializedAt = time;
    return serialDeviceOf(facts).value();
}

TEST(SerialDevice, IsAnotherOneAfterItWentAndCameBack)
{
    EXPECT_TRUE(isSameDevice(deviceSeenAt(1000), deviceSeenAt(1000)));
    EXPECT_FALSE(isSameDevice(deviceSeenAt(1000), deviceSeenAt(2000)));
    EXPECT_FALSE(isSameDevice(deviceSeenAt(2000), deviceSeenAt(1000)));
}

TEST(SerialDevice, IsTheSameOneWhereATimeIsNotKnown)
{
    EXPECT_TRUE(isSameDevice(deviceSeenAt(0), deviceSeenAt(1000)));
    EXPECT_TRUE(isSameDevice(deviceSeenAt(1000), deviceSeenAt(0)));
}

TEST(SerialDevice, IsAnotherOneWhereOneFactDiffers)
{
    const auto device = deviceSeenAt(1000);
    for (const auto change : {&SerialDevice::sysPath, &SerialDevice::node, &SerialDevice::name}) {
        auto other = device;
        other.*change += "1";
        EXPECT_FALSE(isSameDevice(device, other));
    }
    auto renamed = device;
    renamed.calloutPaths.pop_back();
    EXPECT_FALSE(isSameDevice(device, renamed));
}

TEST(SerialDevice, IsOlderThanOneThatUdevSawLater)
{
    EXPECT_TRUE(isOlder(deviceSeenAt(1000), deviceSeenAt(2000)));
    EXPECT_FALSE(isOlder(deviceSeenAt(1000), deviceSeenAt(1000)));
    EXPECT_FALSE(isOlder(deviceSeenAt(2000), deviceSeenAt(1000)));
    EXPECT_FALSE(isOlder(deviceSeenAt(0), deviceSeenAt(1000)));
    EXPECT_FALSE(isOlder(deviceSeenAt(1000), deviceSeenAt(0)));
}

TEST(SerialDevice, HasAFurtherPathForEachWayInWhichItsPathMayBeTaken)
{
    const auto device = serialDeviceOf(usbAdapter());

    EXPECT_THAT(device->calloutPaths, ElementsAre("/dev/cu.usbserial-A1B2", "/dev/cu.usbserial-A1B2-0:2:1.0",
                                                  "/dev/cu.usbserial-A1B2-0:2:1.0-ttyUSB0"));
}

TEST(SerialDevice, SplitsItsNameBeforeTheNumber)
{
    const SerialDevice device{"", "/dev/ttyUSB12", "ttyUSB12", {}};

    EXPECT_EQ(propertyOf(device, "", platform::kTTYBaseNameKey), "ttyUSB");
    EXPECT_EQ(propertyOf(device, "", platform::kTTYSuffixKey), "12");
}

TEST(SerialDevice, HasNoSuffixWithoutANumber)
{
    const SerialDevice device{"", "/dev/ttyprintk", "ttyprintk", {}};

    EXPECT_EQ(propertyOf(device, "", platform::kTTYBaseNameKey), "ttyprintk");
    EXPECT_EQ(propertyOf(device, "", platform::kTTYSuffixKey), "");
}

} // namespace vorrano
