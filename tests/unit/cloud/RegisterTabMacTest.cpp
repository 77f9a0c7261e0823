#include "unit/cloud/RegisterTab.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(RegisterTab, AsksTheVorranoForItsMacAddressWhenItIsBuilt)
{
    auto& line = world.plugVorrano();

    chooseTab();

    EXPECT_EQ(line.written(), "3");
    EXPECT_EQ(controller->exchange().queryNumber(), device::DeviceCommand::MacAddress);
    EXPECT_EQ(controller->macAddressString(), std::nullopt);
    EXPECT_EQ(view().alpha(), 1.0);
}

TEST_F(RegisterTab, KeepsTheReplyAsItCame)
{
    plugVorranoThatAnswers(kMacReply);

    chooseTab();

    EXPECT_EQ(controller->macAddressString(), kMacReply);
    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_TRUE(world.log.lines().empty());
}

TEST_F(RegisterTab, PutsAReplyTogetherFromItsParts)
{
    auto& line = world.plugVorrano();
    chooseTab();

    line.reply(kMac);
    world.advance(500ms);
    EXPECT_EQ(controller->macAddressString(), std::nullopt);
    line.reply("\n\r");
    world.run();

    EXPECT_EQ(controller->macAddressString(), kMacReply);
}

TEST_F(RegisterTab, TimesOutOnAReplyOf18BytesAndOnlyWritesTheLogLine)
{
    plugVorranoThatAnswers(std::string(18, 'A'));
    chooseTab();

    world.advance(1999ms);
    EXPECT_TRUE(world.log.lines().empty());
    world.advance(401ms);

    EXPECT_EQ(world.log.lines(), std::vector<std::string>{kNoMacLine});
    EXPECT_EQ(controller->macAddressString(), std::nullopt);
    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(RegisterTab, TakesAReplyOf19Bytes)
{
    plugVorranoThatAnswers(std::string(19, 'A'));

    chooseTab();

    EXPECT_EQ(controller->macAddressString(), std::string(19, 'A'));
}

TEST_F(RegisterTab, WritesTheLogLineWhenTheVorranoIsSilent)
{
    world.plugVorrano();
    chooseTab();

    world.advance(3s);

    EXPECT_EQ(world.log.lines(), std::vector<std::string>{kNoMacLine});
    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(RegisterTab, HasNoMacAddressOfAReplyThatIsNoText)
{
    plugVorranoThatAnswers(std::string(19, '\xff'));

    chooseTab();

    EXPECT_EQ(controller->macAddressString(), std::nullopt);
}

TEST_F(RegisterTab, OpensTheFirstPortAndAsksNothingWhenNoneIsAVorranos)
{
    auto& first = world.plugSerialDevice("/dev/cu.Bluetooth-Incoming-Port");
    auto& second = world.plugSerialDevice("/dev/tty.usbserial-A1B2");

    chooseTab();
    world.advance(3s);

    EXPECT_TRUE(first.isOpen());
    EXPECT_FALSE(second.isOpen());
    EXPECT_EQ(first.written(), "");
    EXPECT_EQ(controller->deviceIndex(), 0);
    EXPECT_EQ(controller->exchange().queryNumber(), std::nullopt);
    EXPECT_TRUE(world.log.lines().empty());
    save("Kitchen");
    EXPECT_EQ(world.alerts.only(), kNoMac);
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(RegisterTab, AsksTheFirstVorranoAmongThePorts)
{
    auto& other = world.plugSerialDevice("/dev/cu.Bluetooth-Incoming-Port");
    auto& vorrano = plugVorranoThatAnswers(kMacReply);
    auto& second = world.plugVorrano("C3D4");

    chooseTab();

    EXPECT_EQ(controller->deviceIndex(), 1);
    EXPECT_EQ(vorrano.written(), "3");
    EXPECT_EQ(other.written() + second.written(), "");
    EXPECT_EQ(controller->macAddressString(), kMacReply);
}

TEST_F(RegisterTab, AsksNothingWhereThereIsNoPort)
{
    chooseTab();
    world.advance(3s);

    EXPECT_EQ(controller->serialPort(), nullptr);
    EXPECT_EQ(controller->deviceIndex(), 0);
    EXPECT_EQ(controller->exchange().queryNumber(), std::nullopt);
    EXPECT_TRUE(world.log.lines().empty());
    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(RegisterTab, ConnectsAVorranoThatIsPluggedInLaterButAsksItNothing)
{
    GlobalVariables::setGlobalAccountID("57");
    chooseTab();

    auto& line = plugVorranoThatAnswers(kMacReply);
    world.advance(3s);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(line.written(), "");
    EXPECT_EQ(controller->macAddressString(), std::nullopt);
    save("Kitchen");
    EXPECT_EQ(world.alerts.only(), kNoMac);
}

TEST_F(RegisterTab, AsksAgainWhenItIsChosenAgain)
{
    chooseTab();
    auto& line = plugVorranoThatAnswers(kMacReply);
    world.run();

    chooseTab();

    EXPECT_EQ(line.written(), "3");
    EXPECT_EQ(controller->macAddressString(), kMacReply);
}

TEST_F(RegisterTab, OverwritesTheMacAddressWithALaterReply)
{
    auto& line = world.plugVorrano();
    const auto tab = std::make_shared<OpenRegisterTab>();
    tab->awakeFromNib();
    line.reply(kMacReply);
    world.run();
    const std::string later = "00:1B:44:11:3A:B8\n\r";

    tab->queryForMacAddress();
    line.reply(later);
    world.run();

    EXPECT_EQ(tab->macAddressString(), later);
}

TEST_F(RegisterTab, KeepsTheMacAddressWhenTheVorranoIsUnplugged)
{
    openWithMac();
    const auto port = controller->serialPort();

    world.unplug("/dev/cu.usbserial-A1B2");
    world.run();

    EXPECT_EQ(controller->serialPort(), nullptr);
    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(controller->macAddressString(), kMacReply);
    world.urlFetch.answer("{}");
    save("Kitchen");
    EXPECT_EQ(world.alerts.only(), kRegistered);
}

TEST_F(RegisterTab, LosesTheQueryOfAVorranoThatIsUnpluggedBeforeItAnswers)
{
    world.plugVorrano();
    chooseTab();

    world.unplug("/dev/cu.usbserial-A1B2");
    world.advance(3s);

    EXPECT_EQ(controller->macAddressString(), std::nullopt);
    EXPECT_TRUE(world.alerts.shown().empty());
}
