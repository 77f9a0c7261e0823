#include "platform/linux/NetworkManagerWifi.h"
#include "linux/EventLoop.h"
#include "linux/MockedService.h"
#include "linux/PrivateBus.h"

#include <chrono>
#include <future>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using support::MockedService;
using support::PrivateBus;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

const QString kService = "org.freedesktop.NetworkManager";
const QString kManager = "/org/freedesktop/NetworkManager";
const QString kWireless = "org.freedesktop.NetworkManager.Device.Wireless";
constexpr int kUnmanaged = 10;
constexpr int kUnavailable = 20;
constexpr int kDisconnected = 30;
constexpr int kActivated = 100;

} // namespace

class WifiScan : public testing::Test {
protected:
    QString addWifiDevice(const QString& name, int state = kActivated)
    {
        return service.mock(kManager, "AddWiFiDevice", {name, name, state}).toString();
    }

    // A device in that state which sees one access point, of the same name.
    void addWifiDeviceThatSees(const QString& name, int state)
    {
        addAccessPoint(addWifiDevice("wlan" + name, state), name, name);
    }

    QString addAccessPoint(const QString& device, const QString& name, const QString& ssid)
    {
        return service
            .mock(kManager, "AddAccessPoint",
                  {device, name, ssid, "00:23:F8:7E:12:BB", 2u, 2425u, 5400u, QVariant::fromValue<uchar>(82), 0x400u})
            .toString();
    }

    void setSsid(const QString& accessPoint, const QByteArray& ssid)
    {
        service.mock(accessPoint, "UpdateProperties",
                     {"org.freedesktop.NetworkManager.AccessPoint", QVariantMap{{"Ssid", ssid}}});
    }

    MockedService service{kService, "networkmanager"};
    linux_platform::NetworkManagerWifi wifi;
};

TEST_F(WifiScan, FindsTheAccessPointsInTheirOrder)
{
    const auto device = addWifiDevice("wlan0");
    addAccessPoint(device, "1", "My Home Net");
    addAccessPoint(device, "2", "Caf\u00e9");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("My Home Net", "Caf\xc3\xa9")));
}

TEST_F(WifiScan, NamesANetworkOfSeveralAccessPointsOnce)
{
    const auto device = addWifiDevice("wlan0");
    addAccessPoint(device, "1", "Mesh");
    addAccessPoint(device, "2", "Other");
    addAccessPoint(device, "3", "Mesh");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Mesh", "Other")));
}

TEST_F(WifiScan, LeavesOutHiddenNetworks)
{
    const auto device = addWifiDevice("wlan0");
    addAccessPoint(device, "1", "");
    setSsid(addAccessPoint(device, "2", "zeros"), QByteArray(8, '\0'));
    addAccessPoint(device, "3", "Seen");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Seen")));
}

TEST_F(WifiScan, LeavesOutNamesThatAreNoUtf8)
{
    const auto device = addWifiDevice("wlan0");
    setSsid(addAccessPoint(device, "1", "latin"), QByteArray("Caf\xe9"));
    addAccessPoint(device, "2", "Seen");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Seen")));
}

TEST_F(WifiScan, LeavesOutAnAccessPointThatVanishesMeanwhile)
{
    const auto device = addWifiDevice("wlan0");
    const auto gone = addAccessPoint(device, "1", "Gone");
    addAccessPoint(device, "2", "Seen");
    service.mock(gone, "RemoveObject", {gone});

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Seen")));
}

TEST_F(WifiScan, IsEmptyWithNothingInRange)
{
    addWifiDevice("wlan0");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(IsEmpty()));
}

TEST_F(WifiScan, TakesTheFirstWifiDeviceOfAll)
{
    service.mock(kManager, "AddEthernetDevice", {"eth0", "eth0", kActivated});
    const auto first = addWifiDevice("wlan0");
    const auto second = addWifiDevice("wlan1");
    addAccessPoint(second, "1", "Second");
    addAccessPoint(first, "2", "First");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("First")));
}

TEST_F(WifiScan, TakesTheActivatedDeviceBeforeTheFirst)
{
    addWifiDeviceThatSees("First", kDisconnected);
    addWifiDeviceThatSees("InUse", kActivated);

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("InUse")));
}

TEST_F(WifiScan, TakesTheFirstAvailableDeviceWhenNoneIsActivated)
{
    addWifiDeviceThatSees("First", kDisconnected);
    addWifiDeviceThatSees("Second", kDisconnected);

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("First")));
}

TEST_F(WifiScan, PassesOverDevicesThatAreUnmanagedOrUnavailable)
{
    addWifiDeviceThatSees("Unmanaged", kUnmanaged);
    addWifiDeviceThatSees("Unavailable", kUnavailable);
    addWifiDeviceThatSees("Usable", kDisconnected);

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Usable")));
}

TEST_F(WifiScan, HasNoResultWhenNoWifiDeviceCanBeUsed)
{
    addWifiDeviceThatSees("Unmanaged", kUnmanaged);
    addWifiDeviceThatSees("Unavailable", kUnavailable);

    EXPECT_EQ(wifi.scanForNetworks(), std::nullopt);
}

TEST_F(WifiScan, HasNoResultWithoutAWifiDevice)
{
    service.mock(kManager, "AddEthernetDevice", {"eth0", "eth0", kActivated});

    EXPECT_EQ(wifi.scanForNetworks(), std::nullopt);
}

TEST_F(WifiScan, AsksForAScanForTheNextReader)
{
    const auto device = addWifiDevice("wlan0");

    EXPECT_THAT(wifi.scanForNetworks(), Optional(IsEmpty()));

    // Answered after the request, which the bus delivers in order.
    EXPECT_EQ(service.callsOf(device, "RequestScan"), 1);
}

TEST_F(WifiScan, TakesARefusedScanRequestForNoError)
{
    const auto device = addWifiDevice("wlan0");
    addAccessPoint(device, "1", "Seen");
    service.mock(device, "AddMethod",
                 {kWireless, "RequestScan", "a{sv}", "",
                  "raise dbus.exceptions.DBusException('too soon', name='org.freedesktop.NetworkManager.NotAllowed')"});

    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Seen")));
    EXPECT_THAT(wifi.scanForNetworks(), Optional(ElementsAre("Seen")));
}

TEST_F(WifiScan, GivesUpAfterOneSecondWithoutAnAnswer)
{
    addAccessPoint(addWifiDevice("wlan0"), "1", "Seen");
    service.freeze();
    std::promise<void> givenUp;
    // Who waited on would get an answer at last.
    const auto thawing = std::async(std::launch::async, [&, over = givenUp.get_future()] {
        over.wait_for(std::chrono::seconds(10));
        service.thaw();
    });

    const auto begin = steady_clock::now();
    const auto result = wifi.scanForNetworks();
    givenUp.set_value();

    EXPECT_EQ(result, std::nullopt);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(950));
}

TEST_F(WifiScan, GivesNoHalfResultWhenTheSecondIsOver)
{
    const auto device = addWifiDevice("wlan0");
    addAccessPoint(device, "1", "Seen");
    // The service stops once it has told the access points.
    service.mock(device, "AddMethod",
                 {kWireless, "GetAllAccessPoints", "", "ao",
                  "import os, signal\nfrom gi.repository import GLib\n"
                  "GLib.idle_add(lambda os=os, signal=signal: os.kill(os.getpid(), signal.SIGSTOP), "
                  "priority=GLib.PRIORITY_HIGH)\n"
                  "ret = self.access_points"});

    EXPECT_EQ(wifi.scanForNetworks(), std::nullopt);
}

TEST(WifiScanWithoutNetworkManager, HasNoResultAndStartsNothing)
{
    PrivateBus& bus = PrivateBus::instance();
    linux_platform::NetworkManagerWifi wifi;

    EXPECT_EQ(wifi.scanForNetworks(), std::nullopt);

    EXPECT_FALSE(support::spinUntil([&] { return bus.wasAskedToStart(kService); }, milliseconds(300)));
    // The bus would have started it, had somebody asked.
    QDBusConnection::systemBus().interface()->startService(kService);
    EXPECT_TRUE(bus.wasAskedToStart(kService));
}

} // namespace vorrano
