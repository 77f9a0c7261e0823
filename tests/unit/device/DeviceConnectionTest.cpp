#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"
#include "unit/device/Texts.h"

#include <cerrno>

using namespace vorrano;
using namespace vorrano::device;
using support::TerminalCall;

namespace {

// The connection that all of the device's tabs have alike, in one of them.
struct DeviceConnection : DeviceTabTest<WifiSetupViewController> {
    // What the notice says; none while it is hidden.
    [[nodiscard]] std::optional<std::string> notice()
    {
        const auto* const label = "connectionNoticeLabel";
        return view().isHidden(label) ? std::nullopt : std::optional(view().labelText(label));
    }
};

// The operations that no person can ask for.
struct OpenTab : WifiSetupViewController {
    using WifiSetupViewController::displayAlertWithMessage;
    using WifiSetupViewController::initializeSerialPortForCommunication;
    using WifiSetupViewController::m_exchange;
    using WifiSetupViewController::setSerialPort;

    static std::shared_ptr<OpenTab> create() { return std::make_shared<OpenTab>(); }
};

struct ATabByItself : DeviceTabTest<OpenTab> {};

TEST_F(DeviceConnection, TakesTheFirstPortWhosePathNamesAVorrano)
{
    world.plugSerialDevice("/dev/cu.Bluetooth-Incoming-Port");
    auto& vorrano = world.plugVorrano("A1B2");

    chooseTab();

    EXPECT_EQ(tab->serialPort()->path(), "/dev/cu.usbserial-A1B2");
    EXPECT_TRUE(vorrano.isOpen());
    EXPECT_EQ(world.terminal.openDescriptors(), 1U);
}

TEST_F(DeviceConnection, DoesNotTakeADialInPathForAVorranos)
{
    auto& first = world.plugSerialDevice("/dev/ttyS0");
    world.plugSerialDevice("/dev/tty.usbserial-A1B2");

    chooseTab();

    EXPECT_TRUE(first.isOpen());
}

TEST_F(DeviceConnection, FindsTheNameAnywhereInThePath)
{
    world.plugSerialDevice("/dev/ttyS0");
    world.plugSerialDevice("/net/dev/cu.usbserial-A1B2");

    chooseTab();

    EXPECT_EQ(tab->serialPort()->path(), "/net/dev/cu.usbserial-A1B2");
}

TEST_F(DeviceConnection, NeverTakesASecondVorrano)
{
    auto& first = world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");

    chooseTab();

    EXPECT_TRUE(first.isOpen());
    EXPECT_FALSE(second.isOpen());
}

TEST_F(DeviceConnection, TakesTheFirstPortWhereNoneIsAVorranos)
{
    auto& first = world.plugSerialDevice("/dev/ttyS0");
    world.plugSerialDevice("/dev/ttyS1");

    chooseTab();

    EXPECT_TRUE(first.isOpen());
    EXPECT_EQ(world.terminal.openDescriptors(), 1U);
}

TEST_F(DeviceConnection, Sets9600BaudAfterTheOpening)
{
    chooseTabWithVorrano();

    EXPECT_EQ(*tab->serialPort()->baudRate(), 9600U);
    const auto calls = world.terminal.callTexts({TerminalCall::Open, TerminalCall::SetSpeed});
    EXPECT_THAT(calls, ElementsAre("open", "setSpeed 19200", "setSpeed 9600"));
    EXPECT_EQ(::cfgetospeed(&line().attributes().record), speed_t{B9600});
}

TEST_F(DeviceConnection, BecomesThePortsDelegate)
{
    chooseTabWithVorrano();

    EXPECT_EQ(tab->serialPort()->delegate(), tab);
}

TEST_F(DeviceConnection, TakesANewlyPluggedVorrano)
{
    chooseTab();
    EXPECT_EQ(tab->serialPort(), nullptr);

    auto& vorrano = world.plugVorrano();
    world.run();

    EXPECT_TRUE(vorrano.isOpen());
    EXPECT_EQ(tab->serialPort()->delegate(), tab);
}

TEST_F(DeviceConnection, LeavesAnotherPortForAVorranoThatIsPluggedIn)
{
    auto& other = world.plugSerialDevice("/dev/ttyS0");
    chooseTab();
    const auto otherPort = tab->serialPort();

    auto& vorrano = world.plugVorrano();
    world.run();

    EXPECT_FALSE(other.isOpen());
    EXPECT_EQ(otherPort->delegate(), nullptr);
    EXPECT_TRUE(vorrano.isOpen());
}

TEST_F(DeviceConnection, StaysOpenWhenAnotherSerialDeviceIsPluggedIn)
{
    chooseTabWithVorrano();
    const auto port = tab->serialPort();

    world.plugSerialDevice("/dev/ttyS0");
    world.run();

    EXPECT_EQ(tab->serialPort(), port);
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open, TerminalCall::Close}), ElementsAre("open"));
}

TEST_F(DeviceConnection, ClosesAndDropsAPortThatIsRemoved)
{
    auto& vorrano = chooseTabWithVorrano();
    const auto port = tab->serialPort();

    world.unplug(vorrano);
    world.advance(200ms);

    EXPECT_EQ(tab->serialPort(), nullptr);
    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(port->delegate(), nullptr);
    EXPECT_EQ(world.terminal.openDescriptors(), 0U);
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(DeviceConnection, NoticesTheRemovalByItselfToo)
{
    auto& vorrano = chooseTabWithVorrano();

    vorrano.unplug();
    world.advance(200ms);

    EXPECT_EQ(tab->serialPort(), nullptr);
}

TEST_F(DeviceConnection, LosesWhatIsSentWithoutAPortAndStaysBusy)
{
    auto& vorrano = chooseTabWithVorrano();
    world.unplug(vorrano);
    world.advance(200ms);

    press("buttonCheckSSID");
    world.advance(10s);

    EXPECT_EQ(vorrano.written(), "");
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::ReadSSID);
    EXPECT_TRUE(isBusy());
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(DeviceConnection, ComesBackWithTheCable)
{
    world.unplug(chooseTabWithVorrano());
    world.advance(200ms);

    auto& again = world.plugVorrano();
    world.run();
    press("buttonCheckSSID");
    again.reply("Net\n\n\r");
    world.run();

    EXPECT_EQ(again.written(), "c");
    EXPECT_EQ(world.alerts.only(), alertOf("Net\n\n\r", "Success"));
}

TEST_F(DeviceConnection, WithoutAnyPortActsAsAfterItsRemoval)
{
    chooseTab();

    view().type("SSID", "");
    press("saveSSIDButton");
    EXPECT_EQ(world.alerts.only(), error("Please enter a valid SSID"));
    world.alerts.forget();

    view().type("SSID", "Net");
    press("saveSSIDButton");
    world.advance(10s);
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::SetSSID);
    EXPECT_TRUE(isBusy());
    EXPECT_THAT(alerts(), IsEmpty());

    press("buttonResetDevice");
    EXPECT_EQ(world.alerts.only(), alertOf("Finished Resetting Device", "Success"));
    EXPECT_FALSE(isBusy());
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(ATabByItself, LetsItsPortGoWhenItIsMadeAnewFromAnEmptyList)
{
    auto& vorrano = chooseTabWithVorrano();
    serial::SerialPortManager::sharedSerialPortManager()->setAvailablePorts({});

    tab->initializeSerialPortForCommunication();

    EXPECT_EQ(tab->serialPort(), nullptr);
    EXPECT_FALSE(vorrano.isOpen());
}

TEST_F(DeviceConnection, SaysWhenNoVorranoIsConnected)
{
    world.plugSerialDevice("/dev/ttyS0");

    chooseTab();
    EXPECT_EQ(notice(), kNoVorrano);

    auto& vorrano = world.plugVorrano();
    world.run();
    EXPECT_EQ(notice(), std::nullopt);

    world.unplug(vorrano);
    world.advance(200ms);
    EXPECT_EQ(notice(), kNoVorrano);
}

TEST_F(DeviceConnection, SaysNothingWhileItsVorranoIsListed)
{
    chooseTabWithVorrano();

    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(DeviceConnection, SaysThatNoVorranoIsConnectedWhereThereIsNoPortAtAll)
{
    chooseTab();

    EXPECT_EQ(notice(), kNoVorrano);
}

TEST_F(DeviceConnection, SaysHowToUseTheOtherVorranoWhenTheOneInUseIsUnplugged)
{
    auto& first = world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    chooseTab();

    world.unplug(first);
    world.advance(200ms);

    EXPECT_EQ(tab->serialPort(), nullptr);
    EXPECT_EQ(notice(), kOtherVorrano);
}

TEST_F(DeviceConnection, SaysHowToUseTheOtherVorranoAlsoToAPersonWhosePressDimsTheTab)
{
    auto& first = world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    chooseTab();
    world.unplug(first);
    world.advance(200ms);

    press("buttonCheckSSID");
    world.advance(10s);

    EXPECT_TRUE(isBusy());
    EXPECT_EQ(notice(), kOtherVorrano);
}

TEST_F(DeviceConnection, UsesTheOtherVorranoWhenTheTabIsChosenAgain)
{
    auto& first = world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");
    chooseTab();
    world.unplug(first);
    world.advance(200ms);

    chooseTab();

    EXPECT_TRUE(second.isOpen());
    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(DeviceConnection, SaysNothingWhenAVorranoThatIsNotInUseIsUnplugged)
{
    world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");
    chooseTab();

    world.unplug(second);
    world.advance(200ms);

    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(DeviceConnection, TakesTheOtherVorranoWithTheNextSerialDeviceThatIsPluggedIn)
{
    auto& first = world.plugVorrano("A1B2");
    auto& second = world.plugVorrano("C3D4");
    chooseTab();
    world.unplug(first);
    world.advance(200ms);

    world.plugSerialDevice("/dev/ttyS0");
    world.run();

    EXPECT_TRUE(second.isOpen());
    EXPECT_EQ(notice(), std::nullopt);
}

TEST_F(ATabByItself, EmptiesTheIncomingBufferWhenItIsMadeAnew)
{
    chooseTabWithVorrano();
    tab->m_exchange.receiveChunk("old");

    tab->initializeSerialPortForCommunication();

    EXPECT_EQ(tab->exchange().incomingDataBuffer(), "");
}

TEST_F(ATabByItself, DoesNothingWhenTheSamePortIsSetAgain)
{
    chooseTabWithVorrano();

    tab->setSerialPort(tab->serialPort());

    EXPECT_TRUE(tab->serialPort()->isOpen());
    EXPECT_EQ(tab->serialPort()->delegate(), tab);
}

TEST_F(DeviceConnection, TimesOutOnAPortThatSomebodyElseHasOpen)
{
    world.plugVorrano().setHeldByAnother(true);
    chooseTab();

    press("buttonCheckSSID");
    EXPECT_TRUE(isBusy());
    world.advance(3s);

    EXPECT_EQ(world.alerts.only(), kTryAgain);
    EXPECT_FALSE(isBusy());
}

TEST_F(ATabByItself, SurvivesAPortThatIsGoneBeforeItIsTaken)
{
    world.plugVorrano();
    chooseTab();
    const auto ports = serial::SerialPortManager::sharedSerialPortManager();
    world.unplug("/dev/cu.usbserial-A1B2");

    // Before the removal has been reported.
    tab->initializeSerialPortForCommunication();
    world.advance(200ms);

    EXPECT_EQ(tab->serialPort(), nullptr);
}

TEST_F(DeviceConnection, SleepsAndWakesWithTheComputer)
{
    auto& vorrano = chooseTabWithVorrano();

    world.power.sleep();
    EXPECT_FALSE(vorrano.isOpen());
    world.power.wake();
    world.run();
    press("buttonCheckSSID");
    reply("Net\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("Net\n\n\r", "Success"));
    EXPECT_EQ(::cfgetospeed(&vorrano.attributes().record), speed_t{B9600});
}

TEST_F(ATabByItself, ShowsNoAlertForAnAbsentMessage)
{
    chooseTab();

    tab->displayAlertWithMessage(std::nullopt);

    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(DeviceConnection, HoldsCallbacksBackWhileAnAlertIsUpAndThenDeliversThemInOrder)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");
    press("buttonCheckPassword");
    world.alerts.whileUp([this] {
        line().reply("secret\n\n\r");
        world.advance(500ms);
        EXPECT_EQ(alerts().size(), 1U);
    });

    reply("Net\n\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("Net\n\n\r", "Success"), alertOf("secret\n\n\r", "Success")));
}

} // namespace
